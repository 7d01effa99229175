// iwconfig and ifconfig: what the driver's interfaces look like, in the words of the tools of its time.
//
// Built from the scenario, the store and the driver's state at the moment of the call: a channel or an SSID in the
// store shows at once, where a real driver takes it up with the next apup.
#include <errno.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/tools/interface.h"
#include "simulator/tools/tools.h"

// What the tools return for an interface that is not there: the error number of "no such device", negated.
constexpr int STATUS_NO_DEVICE = 256 - ENODEV;

// A mode of the store with the name and the rate that the tool shows for it.
struct mode_name {
    const char *begins;
    const char *protocol;
    const char *rate;
};

static const mode_name mode_names[] = {
    {"11ACVHT80", "802.11ac", "1.3 Gb/s"}, {"11ACVHT40", "802.11ac", "600 Mb/s"}, {"11AC", "802.11ac", "288.8 Mb/s"},
    {"11NAHT40", "802.11na", "450 Mb/s"},  {"11NA", "802.11na", "216.7 Mb/s"},    {"11NGHT40", "802.11ng", "450 Mb/s"},
    {"11NG", "802.11ng", "216.7 Mb/s"},    {"11A", "802.11a", "54 Mb/s"},         {"11G", "802.11g", "54 Mb/s"},
    {"11B", "802.11b", "11 Mb/s"},
};

static const mode_name *current_mode(const interface *wanted) {
    char value[SETTING_VALUE_SIZE];
    interface_radio_setting(wanted, "AP_CHMODE", value, sizeof value);
    for (const mode_name &mode : mode_names) {
        if (strncmp(value, mode.begins, strlen(mode.begins)) == 0)
            return &mode;
    }
    // A mode string that the driver does not know leaves it in the plain mode of its band.
    return &mode_names[interface_radio(wanted)->five_ghz ? 7 : 8];
}

static void print_wireless(const interface *wanted) {
    char ssid[SETTING_VALUE_SIZE];
    char frequency[16];
    interface_setting(wanted, "AP_SSID", ssid, sizeof ssid);
    const scenario_radio *radio = interface_radio(wanted);
    const scenario_channel *channel = scenario_find_channel(radio, interface_channel(wanted));
    const mode_name *mode = current_mode(wanted);
    printf("%-9s IEEE %s  ESSID:\"%s\"  \n", wanted->name, mode->protocol, ssid);
    fputs("          Mode:Master  ", stdout);
    // A channel that the radio does not have leaves it without a frequency.
    if (channel != nullptr) {
        frequency_text(channel->frequency, frequency, sizeof frequency);
        printf("Frequency:%s GHz  ", frequency);
    }
    printf("Access Point: %s   \n", interface_vap(wanted)->bssid);
    printf("          Bit Rate:%s   Tx-Power:%d dBm   \n", mode->rate, radio->txpower);
    fputs(
        "          RTS thr:off   Fragment thr:off\n"
        "          Encryption key:off\n"
        "          Power Management:off\n"
        "          Link Quality=94/94  Signal level=-96 dBm  Noise level=-95 dBm\n"
        "          Rx invalid nwid:0  Rx invalid crypt:0  Rx invalid frag:0\n"
        "          Tx excessive retries:0  Invalid misc:0   Missed beacon:0\n\n",
        stdout);
}

// iwconfig athN channel auto|NUMBER
static int choose_channel(const interface *wanted, const char *text) {
    int radio = interface_vap(wanted)->radio;
    unsigned channel = (unsigned)atoi(text);
    if (strcmp(text, "auto") == 0)
        channel = scenario_quietest_channel(wanted->scene, radio);
    if (scenario_find_channel(interface_radio(wanted), channel) == nullptr) {
        fprintf(stderr, "Error for wireless request \"Set Frequency\" (8B04) :\n    SET failed on device %s ; %s.\n",
                wanted->name, strerror(EINVAL));
        return 256 - EINVAL;
    }
    return interface_move(wanted, channel, 0) == 0 ? 0 : 1;
}

int tool_iwconfig(int argument_count, char *const *arguments) {
    bool sets_channel = argument_count == 3 && strcmp(arguments[1], "channel") == 0;
    if (argument_count != 1 && !sets_channel)
        return tool_usage("iwconfig");
    interface wanted;
    int status = 0;
    if (!interface_find(&wanted, arguments[0])) {
        fprintf(stderr, "%-9s No such device\n", arguments[0]);
        status = STATUS_NO_DEVICE;
    } else if (sets_channel) {
        status = choose_channel(&wanted, arguments[2]);
    } else {
        print_wireless(&wanted);
    }
    interface_free(&wanted);
    return status;
}

static void print_bytes(const char *label, uint64_t bytes) {
    static const char *const units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    double shown = (double)bytes;
    int unit = 0;
    for (; shown >= 1024 && unit < 4; unit++)
        shown /= 1024;
    printf("%s bytes:%" PRIu64 " (%.1f %s)", label, bytes, shown, units[unit]);
}

static void print_interface(const interface *wanted) {
    const scenario_vap *vap = interface_vap(wanted);
    double seconds = driver_clock() - wanted->state.vaps[wanted->vap].since;
    printf("%-9s Link encap:Ethernet  HWaddr %s  \n", wanted->name, vap->bssid);
    fputs("          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n", stdout);
    printf("          RX packets:%" PRIu64 " errors:0 dropped:0 overruns:0 frame:0\n",
           scenario_count(&vap->rx_packets, seconds));
    printf("          TX packets:%" PRIu64 " errors:0 dropped:0 overruns:0 carrier:0\n",
           scenario_count(&vap->tx_packets, seconds));
    fputs("          collisions:0 txqueuelen:0 \n          ", stdout);
    print_bytes("RX", scenario_count(&vap->rx_bytes, seconds));
    fputs("  ", stdout);
    print_bytes("TX", scenario_count(&vap->tx_bytes, seconds));
    fputs("\n\n", stdout);
}

int tool_ifconfig(int argument_count, char *const *arguments) {
    if (argument_count != 1)
        return tool_usage("ifconfig");
    interface wanted;
    bool up = interface_find(&wanted, arguments[0]);
    if (up)
        print_interface(&wanted);
    else
        fprintf(stderr, "%s: error fetching interface information: Device not found\n", arguments[0]);
    interface_free(&wanted);
    return up ? 0 : 1;
}
