// Moving stations without a daemon: an announced channel switch, and the time after which an idle station is dropped.
//
// Touches the store (AP_INACT) and runs `iwpriv`. Runs on the service thread.
#include "steering/channel_switch.h"

#include <stdio.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "params/settings.h"

// The command with four numbers of eleven characters.
constexpr size_t SWITCH_COMMAND_SIZE = 96;

constexpr number_setting IDLE_TIMEOUT = {"AP_INACT", SCOPE_VAP, CHECK_INDEX, ABSENT_FAILS, LOGGED};

int wlan_setChannelSwitch(int index, u_int, u_int channel, u_int count, u_int width) {
    log_debug("[VLK-API] %s %s: wlan_setChannelSwitch entered\n", __func__, __func__);
    // The words are unsigned on the wire; the tool has always been given them as signed numbers.
    char command[SWITCH_COMMAND_SIZE];
    snprintf(command, sizeof(command), "iwpriv ath%d doth_ch_chwidth %d %d %d", interface_number(index),
             static_cast<int>(channel), static_cast<int>(count), static_cast<int>(width));
    log_always("Command is %s\n", command);
    athcfg_runcmdf(__func__, "%s", command);
    return 0;
}

int wlan_getIdleTimeout(int index, u_int *seconds) {
    int stored = 0;
    if (get_number(&IDLE_TIMEOUT, __func__, index, &stored) != 0) {
        return -1;
    }
    *seconds = static_cast<u_int>(stored);
    return 0;
}

int wlan_setIdleTimeout(int index, int seconds) {
    if (set_number(&IDLE_TIMEOUT, index, seconds) != 0) {
        return -1;
    }
    // The driver reads the store when it brings the VAP up; this tells it now.
    athcfg_runcmdf(__func__, "iwpriv ath%d inact %d", interface_number(index), seconds);
    return 0;
}
