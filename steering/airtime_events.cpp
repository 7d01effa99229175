// Airtime fairness for the device's system log: a line for each connected station.
//
// Touches the driver (see steering/airtime_table.h), the device's event library, and runs `wlanconfig`. Runs on the
// service thread.
#include "steering/airtime_events.h"

#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "params/vap.h"
#include "platform/platform.h"
#include "steering/airtime_table.h"

// The room for a line. The longest, with the greatest numbers and names, has 189 characters.
constexpr size_t EVENT_LINE_SIZE = 200;

// How important the lines are, as the system log counts: information.
constexpr int EVENT_PRIORITY = 6;

// An interface and what the driver told of it.
struct interface_report {
    int vap;
    char name[INTERFACE_NAME_SIZE];
    char ssid[ESSID_SIZE];
    atf_table table;
};

// Whether a station has gone from an interface, as far as the tool can be asked. The list is searched as one text.
static bool has_left(const char *caller, const char *interface, const char *mac) {
    char *list;
    int status = athcfg_executecmdf(caller, &list, "wlanconfig %s list", interface);
    bool gone = status == 0 && list && !strstr(list, mac);
    free(list);
    return gone;
}

// Whole percent. More than an int holds, which only a driver's nonsense can be, is the greatest int.
static int percent_of(uint32_t used, uint32_t total) {
    if (total == 0) {
        return 0;
    }
    double percent = used * 100.0 / total;
    return percent < INT_MAX ? static_cast<int>(percent) : INT_MAX;
}

static void send_line_with_usage(const interface_report *report, const char *mac, uint32_t share) {
    sta_atm_stats stats = {};  // and so it stays when the driver refuses: nothing used
    wlan_getAdvAirtimeStatsCl_AirtimeStat(report->vap, mac, &stats);
    // Unsigned: tokens that were never used up make a large number, not a negative one. It is printed as int, though.
    uint32_t used = stats.act_tokens - stats.unused;
    char line[EVENT_LINE_SIZE];
    snprintf(line, sizeof(line),
             "<%d>ATM E2: <%s> connected to <%s> has <%d.%d%%> configured and is currently using <%d> us which is "
             "<%d%%> of total Airtime\n",
             EVENT_PRIORITY, mac, report->ssid, static_cast<int>(share / 10), static_cast<int>(share % 10),
             static_cast<int>(used), percent_of(used, stats.total));
    send_zubra_syslog(line);
}

static void send_line(const interface_report *report, const char *mac, uint32_t share) {
    char line[EVENT_LINE_SIZE];
    snprintf(line, sizeof(line), "<%d>ATM E2: <%s> connected to <%s> has <%d.%d%%> configured\n", EVENT_PRIORITY, mac,
             report->ssid, static_cast<int>(share / 10), static_cast<int>(share % 10));
    send_zubra_syslog(line);
}

// The first row makes no line, being the SSID of the interface itself. Every other one does while a MAC is remembered,
// rows of SSIDs too, which repeat the last station with their own share, and the MAC stays remembered on the following
// interfaces. Do not mend it: whoever collects the lines expects as many as there are rows.
static void report_rows(const char *caller, const interface_report *report, char (&mac)[MAC_TEXT_SIZE]) {
    for (int i = 1; i < report->table.info_cnt; i++) {
        const atf_info *info = &report->table.infos[i];
        if (is_named_row(&report->table, info) && is_station_row(info)) {
            put_station_mac(info, mac);
        }
        if (report->table.atf_status == 0 || mac[0] == '\0' || has_left(caller, report->name, mac)) {
            continue;
        }
        if (report->vap < FIRST_VAP_5G) {
            send_line_with_usage(report, mac, info->value);
        } else {
            send_line(report, mac, info->value);
        }
    }
}

// mac is the MAC that earlier interfaces left, empty for none, and becomes the one that this interface leaves.
static void report_interface(const char *caller, int vap, char (&mac)[MAC_TEXT_SIZE]) {
    interface_report report;
    report.vap = vap;
    interface_name(vap, report.name);
    if (getWlanStftableInfo(report.name, &report.table, report.ssid) != 0) {
        return;
    }
    // No error, and printed all the same, as is the last line: whoever reads the server's errors looks for them.
    log_error("[VLK-API] Error %s wlan_queryWlanInfo: ifname %s info_cnt %d\n", caller, report.name,
              report.table.info_cnt);
    if (report.table.info_cnt == 0) {
        return;
    }
    report_rows(caller, &report, mac);
    if (report.table.atf_status == 0) {
        log_error(
            "[VLK-API] Error %s \n\t ATF IS DISABLED!!! The above ATF configuration will not have any effect.\n\n",
            caller);
    }
}

int wlan_queryWlanInfo(int, int *done) {
    log_debug("[VLK-API] %s %s: wlan_queryWlanInfo entered\n", __func__, __func__);
    char mac[MAC_TEXT_SIZE] = "";
    for (int vap = FIRST_VAP_2G; vap < FIRST_VAP_5G + VAPS_PER_RADIO; vap++) {
        report_interface(__func__, vap, mac);
    }
    *done = 1;
    return 0;
}
