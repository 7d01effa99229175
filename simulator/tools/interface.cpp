#include "simulator/tools/interface.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/paths.h"
#include "simulator/store.h"

bool interface_find(interface *wanted, const char *name) {
    char error[SCENARIO_ERROR_SIZE];
    wanted->name = name;
    wanted->scene = nullptr;
    driver_state_read(&wanted->state);
    wanted->vap = vap_of_interface(name);
    if (wanted->vap < 0 || !wanted->state.vaps[wanted->vap].up)
        return false;
    wanted->scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (wanted->scene == nullptr)
        fprintf(stderr, "%s\n", error);
    return wanted->scene != nullptr && wanted->scene->vaps[wanted->vap].declared;
}

void interface_free(interface *wanted) {
    scenario_free(wanted->scene);
}

const scenario_vap *interface_vap(const interface *wanted) {
    return &wanted->scene->vaps[wanted->vap];
}

const scenario_radio *interface_radio(const interface *wanted) {
    return &wanted->scene->radios[interface_vap(wanted)->radio];
}

void interface_setting(const interface *wanted, const char *name, char *value, size_t size) {
    char key[SETTING_KEY_SIZE];
    store_key(name, wanted->vap + 1, key, sizeof key);
    store_value(APCFG_STORE, key, value, size);
}

void interface_radio_setting(const interface *wanted, const char *name, char *value, size_t size) {
    char key[SETTING_KEY_SIZE];
    // The bare key is radio 1's, suffix _2 is radio 0's.
    store_key(name, interface_vap(wanted)->radio == 1 ? 1 : 2, key, sizeof key);
    store_value(APCFG_STORE, key, value, size);
}

unsigned interface_channel(const interface *wanted) {
    int radio = interface_vap(wanted)->radio;
    unsigned given = driver_channel(&wanted->state, radio);
    if (given != 0)
        return given;
    char value[SETTING_VALUE_SIZE];
    interface_radio_setting(wanted, "AP_PRIMARY_CH", value, sizeof value);
    int channel = atoi(value);
    return channel > 0 ? (unsigned)channel : scenario_quietest_channel(wanted->scene, radio);
}

int interface_move(const interface *wanted, unsigned channel, double seconds) {
    int radio = interface_vap(wanted)->radio;
    int lock = driver_state_lock();
    driver_state state;
    driver_state_read(&state);
    if (seconds > 0)
        driver_announce_channel(&state, radio, channel, driver_clock() + seconds);
    else
        driver_choose_channel(&state, radio, channel);
    int failed = driver_state_write(&state);
    if (lock >= 0)
        close(lock);
    return failed;
}

void frequency_text(unsigned megahertz, char *text, size_t size) {
    snprintf(text, size, "%u.%03u", megahertz / 1000, megahertz % 1000);
    for (size_t length = strlen(text); length > 0 && text[length - 1] == '0'; length--)
        text[length - 1] = '\0';
    size_t length = strlen(text);
    if (length > 0 && text[length - 1] == '.')
        text[length - 1] = '\0';
}
