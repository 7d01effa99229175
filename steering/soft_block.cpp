// Soft block. See the header.
#include "steering/soft_block.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "config/command.h"
#include "config/log.h"
#include "survey/control_channel.h"

// The black list that the daemon keeps over its restarts.
constexpr const char BLACK_LIST_FILE[] = "/nvram/blackList.dat";

// The messages of most tunables and of the list are cut to this, NUL included.
constexpr size_t SHORT_MESSAGE_SIZE = 32;

int sendDataToSBCtrl(const char *data) {
    if (!data) {
        log_error("[VLK-API] Error %s NULL data\n", __func__);
        return -1;
    }
    rad_ctrl_conn *connection = rad_ctrl_open(STEERING_SOCKET, RAD_CTRL_STEERING);
    if (!connection) {
        log_error("[VLK-API] Error %s Could not connect\n", __func__);
        return -1;
    }
    int status = rad_ctrl_send(connection, data, strlen(data) + 1);
    rad_ctrl_close(connection);
    return status;
}

int wlan_setSBBlackListClear(int, int which) {
    log_debug("[VLK-API] %s %s: wlan_setBlackListClear entered\n", __func__, __func__);
    char message[SHORT_MESSAGE_SIZE];
    snprintf(message, sizeof(message), "clearL:%d", which);
    if (sendDataToSBCtrl(message) != 0) {
        unlink(BLACK_LIST_FILE);
        log_error("[VLK-API] Error %s send data to SBCtrl failed\n", __func__);
    }
    return 0;
}

int loadSB(int on) {
    log_debug("[VLK-API] %s loadSB: onOff:%d\n", __func__, on);
    if (on) {
        run_shell("killall softblock");
        log_debug("[VLK-API] %s enable SB\n", __func__);
        // Not through the capturing runner: the daemon would hold its pipe open for ever.
        run_shell("softblock &");
    } else {
        log_debug("[VLK-API] %s disable SB\n", __func__);
        run_shell("killall softblock");
    }
    return 0;
}

int notifyWiFiRestartToSBCtrl(void) {
    if (sendDataToSBCtrl("restart") != 0) {
        log_error("[VLK-API] Error %s something is wrong, need to restart soft block\n", __func__);
        return loadSB(1);
    }
    return 0;
}
