// One interface of the authenticator: its configuration, read once, and its answers to control commands.
//
// Touches its WPS file, the store and the driver's state when it is configured, and scenario and store when an
// exchange begins. The authenticator's one thread.
#pragma once

#include "simulator/authenticator/exchange.h"
#include "simulator/driver/driver_state.h"

// The longest answer: an SSID, a few names and addresses, and the words around them, several times over.
constexpr size_t BSS_ANSWER_SIZE = 1024;

struct bss {
    char interface[16];  // "ath15" and more than enough
    int vap;             // 0 to 15
    char bssid[MAC_TEXT_SIZE];
    char ssid[SSID_SIZE];
    int wpa;  // 0 when the interface is not protected by it
    char key_mgmt[SCENARIO_WORD_SIZE];
    int wps_state;  // 0 disabled, 1 not configured, 2 configured
    exchange wps;
};

// Reads the file of an interface. False after saying what is wrong on standard output, as the authenticator does: it
// cannot be read, a line is none, or the interface is not there.
bool bss_configure(bss *configured, const char *path, const driver_state *state, const scenario *scene);

// Answers a control command such as "WPS_PIN any 12345670": lines, or "OK" or "FAIL" in one.
void bss_answer(bss *asked, const char *command, char *answer, size_t size);
