// Radio statistics. See the header.
#include "survey/collector.h"

#include <endian.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "params/rates.h"
#include "params/vap.h"
#include "survey/control_channel.h"

// Where each number stands in an answer: signed 32-bit words, little-endian.
enum answer_offset {
    UTILISATION = 0,
    ACTIVITY = 4,
    BUSY = 8,
    NOISE_MAXIMUM = 12,
    NOISE_MINIMUM = 16,
    NOISE_MEDIAN = 20,
    NOISE_AVERAGE = 24,
    RETRY_PERCENT = 28,
    TX_PACKETS = 32,
    RX_PACKETS = 36,
    RSSI_TABLE = 40,
};
static_assert(RSSI_TABLE + 4 * RSSI_TABLE_ENTRIES <= COLLECTOR_ANSWER_SIZE);

// Values of RSG_Enable.
constexpr int RSG_2G_ONLY = 1;
constexpr int RSG_5G_ONLY = 2;
constexpr int RSG_BOTH = 3;

// What the collectors are started with where the store says nothing, and the value of their option -R.
constexpr int RSG_DEFAULT_RATE = 30;
constexpr int RSG_DEFAULT_INTERVAL = 1800;
constexpr int RSG_R = 30;

// "/var/run/radstat%d" with the longest number.
constexpr size_t LINK_PATH_SIZE = 40;

std::atomic<int> rad_stat_index;

struct collector_answer {
    uint8_t bytes[COLLECTOR_ANSWER_SIZE];
};

// False without an answer.
static bool ask(int index, collector_answer *answer) {
    static constexpr char request[] = "result";
    // What a short answer does not cover reads as 0.
    *answer = {};
    size_t length = sizeof(answer->bytes);
    return rad_ctrl_request_buffered(index, request, sizeof(request), answer->bytes, &length, RAD_CTRL_STATISTICS) == 0;
}

static int32_t number_at(const collector_answer *answer, int offset) {
    uint32_t word;
    memcpy(&word, answer->bytes + offset, sizeof(word));
    return static_cast<int32_t>(le32toh(word));
}

// One number of an answer. False without one; the number is as it was then.
static bool ask_for(int index, int offset, int *number) {
    collector_answer answer;
    if (!ask(index, &answer)) {
        return false;
    }
    *number = number_at(&answer, offset);
    return true;
}

int wlan_getChannelStatistics(int index, int *utilisation, int *activity, int *busy) {
    *utilisation = *activity = *busy = -1;
    collector_answer answer;
    if (!ask(index, &answer)) {
        return 0;
    }
    *utilisation = number_at(&answer, UTILISATION);
    *activity = number_at(&answer, ACTIVITY);
    *busy = number_at(&answer, BUSY);
    log_debug("[VLK-API] %s Channel Statistics - CST: %d%% AP_act: %d%% BusyTime: %d%%\n", __func__, *utilisation,
              *activity, *busy);
    return 0;
}

int wlan_getChannelNoiseFloor(int index, int *minimum, int *maximum, int *median, int *average) {
    *minimum = *maximum = *median = *average = -1;
    collector_answer answer;
    if (!ask(index, &answer)) {
        return 0;
    }
    *minimum = number_at(&answer, NOISE_MINIMUM);
    *maximum = number_at(&answer, NOISE_MAXIMUM);
    *median = number_at(&answer, NOISE_MEDIAN);
    *average = number_at(&answer, NOISE_AVERAGE);
    log_debug("[VLK-API] %s Channel NF - Min: %d Max: %d Med: %d Avg: %d\n", __func__, *minimum, *maximum, *median,
              *average);
    return 0;
}

int wlan_getRadioTxPackets(int index, int64_t *packets) {
    int count = 0;
    if (ask_for(index, TX_PACKETS, &count)) {
        log_debug("[VLK-API] %s TxCount : %d\n", __func__, count);
    }
    *packets = count;
    return 0;
}

int wlan_getRadioRxPackets(int index, int64_t *packets) {
    int count = 0;
    if (ask_for(index, RX_PACKETS, &count)) {
        log_debug("[VLK-API] %s Rx Count : %d\n", __func__, count);
    }
    *packets = count;
    return 0;
}

int wlan_getRetransmissionMetric(int index, int *percent) {
    *percent = -1;
    if (ask_for(index, RETRY_PERCENT, percent)) {
        log_debug("[VLK-API] %s Retry percent : %d%%\n", __func__, *percent);
    }
    return 0;
}

int wlan_getRSSITable(int index, int64_t *entries) {
    for (int i = 0; i < RSSI_TABLE_ENTRIES; i++) {
        entries[i] = -1;
    }
    collector_answer answer;
    if (!ask(index, &answer)) {
        return 0;
    }
    for (int i = 0; i < RSSI_TABLE_ENTRIES; i++) {
        entries[i] = number_at(&answer, RSSI_TABLE + 4 * i);
    }
    log_debug("[VLK-API] %s Completed copying %d RSSI table entries\n", __func__, RSSI_TABLE_ENTRIES);
    return 0;
}

// The collectors live longer than this call, so none of these commands may have its output captured.
__attribute__((format(printf, 1, 2))) static void execute(const char *format, ...) {
    char *command = nullptr;
    va_list arguments;
    va_start(arguments, format);
    int length = vasprintf(&command, format, arguments);
    va_end(arguments);
    if (length < 0) {
        return;
    }
    log_debug("[VLK-API] %s executing %s\n", "wlan_setRadStatEnable_1", command);
    run_shell(command);
    free(command);
}

int wlan_setRadStatEnable(int index, int on, int rate, int interval) {
    return wlan_setRadStatEnable_1(index, on, rate, interval, 0);
}

int wlan_setRadStatEnable_1(int index, int on, int rate, int interval, int r) {
    if (index < 1) {
        return -1;
    }
    int n = interface_number(index);
    char link[LINK_PATH_SIZE];
    snprintf(link, sizeof(link), "/var/run/radstat%d", n);
    // Each collector runs under a name of its own, so that it can be ended alone. A link that leads nowhere counts as
    // none: `ln` then says that there is one.
    if (access(link, F_OK) != 0) {
        execute("ln -s -T /usr/sbin/radstat /var/run/radstat%d", n);
    }
    execute("killall radstat%d", n);
    if (on) {
        execute("/var/run/radstat%d -i ath%d -r %d -m %d -R %d&", n, n, rate, interval, r);
    } else {
        rad_ctrl_forget(index);
    }
    rad_stat_index = index;
    if (index == FIRST_VAP_5G) {
        execute("iwpriv wifi1 enable_ol_stats %d", on ? 1 : 0);
    }
    return 0;
}

// Replaces a number by the stored one. True when there is one, with its text (STORE_VALUE_SIZE bytes).
static bool read_stored(const char *key, char *text, int *number) {
    if (athcfg_getbyname(0, key, text, STORE_VALUE_SIZE) != 0) {
        return false;
    }
    *number = atoi(text);
    return true;
}

void getRSGSettings(int *mode, int *rate, int *interval) {
    char text[STORE_VALUE_SIZE];
    if (read_stored("RSG_Enable", text, mode)) {
        log_debug("[VLK-API] %s %s: get RSG_Enable %s\n", __func__, __func__, text);
    }
    if (read_stored("RSG_Rate", text, rate)) {
        log_debug("[VLK-API] %s %s: get RSG_Rate %s\n", __func__, __func__, text);
    }
    if (read_stored("RSG_Interval", text, interval)) {
        log_debug("[VLK-API] %s %s: get RSG_Interval %s\n", __func__, __func__, text);
    }
}

static bool is_radio_enabled(int index) {
    int enabled = 0;
    wlan_getRadioEnabled(index, &enabled);
    return enabled != 0;
}

static bool has_enabled_vap(int first) {
    for (int index = first; index < first + VAPS_PER_RADIO; index++) {
        int enabled = 0;
        wlan_getEnable(index, &enabled);
        if (enabled) {
            return true;
        }
    }
    return false;
}

void wlan_applyRSGSettings(int index) {
    if (index != FIRST_VAP_2G && index != FIRST_VAP_5G) {
        return;
    }
    int mode = 0;
    int rate = RSG_DEFAULT_RATE;
    int interval = RSG_DEFAULT_INTERVAL;
    getRSGSettings(&mode, &rate, &interval);
    bool wished = mode == RSG_BOTH || mode == (index == FIRST_VAP_2G ? RSG_2G_ONLY : RSG_5G_ONLY);
    bool wanted = wished && is_radio_enabled(index) && has_enabled_vap(index);
    wlan_setRadStatEnable_1(index, wanted ? 1 : 0, rate, interval, RSG_R);
}

int wlan_apAutoChannelSelect(int index) {
    athcfg_runcmdf(__func__, "iwconfig ath%d channel auto", interface_number(index));
    return 0;
}

int ath_getApNoiseFloor(int index, int *noise_floor) {
    char command[sizeof("iwpriv ath-2147483648 get_channf")];
    snprintf(command, sizeof(command), "iwpriv ath%d get_channf", interface_number(index));
    log_debug("[VLK-API] %s %s: index %d, execute cmd: %s\n", __func__, __func__, index, command);
    char *output = nullptr;
    int status = athcfg_executecmd(__func__, command, &output);
    if (status == 0) {
        // "ath0      get_channf:-95"; a tool that says nothing of it reads as 0, like every absent text.
        const char *colon = output ? strchr(output, ':') : nullptr;
        *noise_floor = colon ? atoi(colon + 1) : 0;
    }
    free(output);
    return status;
}
