#include "simulator/driver/driver_parameters.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/paths.h"

// Three chains, so masks of three bits. A VAP's SSID has the access category best effort, until it is given another.
static const driver_parameter parameters[] = {
    {"txchainmask", "get_txchainmask", true, PARAMETER_NUMBER, 1, 7, "7", "TX_CHAINMASK"},
    {"rxchainmask", "get_rxchainmask", true, PARAMETER_NUMBER, 1, 7, "7", "RX_CHAINMASK"},
    {"ssidqos_ena", "get_ssidqos_ena", true, PARAMETER_NUMBER, 0, 9, "0", nullptr},
    {"ssidqos_lvl", "get_ssidqos_lvl", false, PARAMETER_TEXT, 2, 2, "BE", nullptr},
    {"l2tif", "get_l2tif", false, PARAMETER_NUMBER, 0, 1, "0", "AP_STATIONISOLATE"},
    {"inact", "get_inact", false, PARAMETER_NUMBER, 0, 65535, "300", "AP_INACT"},
    {"maccmd", "get_maccmd", false, PARAMETER_NUMBER, 0, MACCMD_DETACH, "0", nullptr},
    // No private command: what the band steering was started with, for those that ask about its state.
    {"bandsteering", "get_bandsteering", false, PARAMETER_NUMBER, 0, 2, "0", "BS_BSS_ENABLE"},
};

// Room for "ath15." and a parameter's name.
constexpr size_t LINE_KEY_SIZE = 40;

const driver_parameter *driver_parameter_find(const char *command) {
    for (const driver_parameter &parameter : parameters) {
        if (strcmp(parameter.name, command) == 0 || strcmp(parameter.getter, command) == 0)
            return &parameter;
    }
    return nullptr;
}

static bool take_number(const driver_parameter *parameter, const char *text, char *value) {
    char *end;
    errno = 0;
    long number = strtol(text, &end, 0);
    if (end == text || errno != 0 || number < parameter->least || number > parameter->most)
        return false;
    snprintf(value, PARAMETER_VALUE_SIZE, "%ld", number);
    return true;
}

static bool take_text(const driver_parameter *parameter, const char *text, char *value) {
    size_t length = strlen(text);
    if ((long)length < parameter->least || (long)length > parameter->most)
        return false;
    for (const char *at = text; *at != '\0'; at++) {
        if (*at <= ' ' || *at > '~')
            return false;
    }
    snprintf(value, PARAMETER_VALUE_SIZE, "%s", text);
    return true;
}

bool driver_parameter_take(const driver_parameter *parameter, const char *text, char *value) {
    switch (parameter->kind) {
        case PARAMETER_NUMBER:
            return take_number(parameter, text, value);
        case PARAMETER_TEXT:
            return take_text(parameter, text, value);
    }
    return false;
}

static void line_key(const driver_parameter *parameter, const char *interface, char *key, size_t size) {
    snprintf(key, size, "%s.%s", interface, parameter->name);
}

int driver_parameters_read(store_text *lines) {
    return lines_load(GATEWAY_PARAMETERS, lines) == 0 || errno == ENOENT ? 0 : -1;
}

void driver_parameter_get(const driver_parameter *parameter, const char *interface, char *value) {
    char key[LINE_KEY_SIZE];
    store_text lines;
    size_t length = 0;
    line_key(parameter, interface, key, sizeof key);
    const char *kept = driver_parameters_read(&lines) == 0 ? store_find(&lines, key, &length) : nullptr;
    if (kept == nullptr) {
        kept = parameter->start;
        length = strlen(kept);
    }
    snprintf(value, PARAMETER_VALUE_SIZE, "%.*s", (int)length, kept);
    store_free(&lines);
}

int driver_parameters_change(int (*how)(store_text *lines, const char *key, const char *value), const char *key,
                             const char *value) {
    int lock = driver_state_lock();
    store_text lines;
    int failed = driver_parameters_read(&lines);
    if (failed == 0)
        failed = how(&lines, key, value);
    if (failed == 0)
        failed = lines_save(GATEWAY_PARAMETERS, &lines);
    store_free(&lines);
    if (lock >= 0)
        close(lock);
    return failed;
}

int driver_parameter_set(const driver_parameter *parameter, const char *interface, const char *value) {
    char key[LINE_KEY_SIZE];
    line_key(parameter, interface, key, sizeof key);
    return driver_parameters_change(store_set, key, value);
}

// Takes one parameter of an interface over from the store, when it is there and the driver would accept it.
static int load_parameter(const driver_parameter *parameter, const char *interface, const store_text *store, int index,
                          store_text *lines) {
    char setting[SETTING_KEY_SIZE];
    store_key(parameter->setting, index, setting, sizeof setting);
    size_t length;
    const char *found = store_find(store, setting, &length);
    char *text = found != nullptr ? strndup(found, length) : nullptr;
    char value[PARAMETER_VALUE_SIZE];
    char key[LINE_KEY_SIZE];
    line_key(parameter, interface, key, sizeof key);
    int failed = text != nullptr && driver_parameter_take(parameter, text, value) ? store_set(lines, key, value) : 0;
    free(text);
    return failed;
}

int driver_parameters_load(const char *interface, const store_text *store, int index, store_text *lines) {
    bool is_radio = radio_of_device(interface) >= 0;
    int failed = 0;
    for (const driver_parameter &parameter : parameters) {
        if (parameter.of_radio == is_radio && parameter.setting != nullptr)
            failed |= load_parameter(&parameter, interface, store, index, lines);
    }
    return failed;
}

void driver_parameters_forget(void) {
    unlink(GATEWAY_PARAMETERS);
}
