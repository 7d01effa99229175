#include "simulator/authenticator/bss.h"

#include <ctype.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/paths.h"
#include "simulator/store.h"

// How long an exchange waits for its peer when the store does not say it: the two minutes of the protocol.
constexpr double WALK_TIME_SECONDS = 120;

// Configuration.

// Copies a value that must fit.
static bool take(const char *value, char *out, size_t size) {
    if (strlen(value) >= size)
        return false;
    snprintf(out, size, "%s", value);
    return true;
}

// A line KEY=VALUE; keys that make no difference here are passed over. False when the value is none for its key.
static bool take_line(bss *configured, const char *key, const char *value) {
    if (strcmp(key, "interface") == 0)
        return take(value, configured->interface, sizeof configured->interface);
    if (strcmp(key, "ssid") == 0)
        return take(value, configured->ssid, sizeof configured->ssid);
    if (strcmp(key, "wpa_key_mgmt") == 0)
        return take(value, configured->key_mgmt, sizeof configured->key_mgmt);
    if (strcmp(key, "wpa") == 0)
        configured->wpa = atoi(value);
    if (strcmp(key, "wps_state") == 0) {
        configured->wps_state = atoi(value);
        return configured->wps_state >= 0 && configured->wps_state <= 2;
    }
    return true;
}

static bool read_line(bss *configured, char *line, int number) {
    if (line[0] == '#' || line[0] == '\0')
        return true;
    char *value = strchr(line, '=');
    if (value == nullptr) {
        printf("Line %d: invalid line '%s'\n", number, line);
        return false;
    }
    *value++ = '\0';
    if (take_line(configured, line, value))
        return true;
    printf("Line %d: invalid %s '%s'\n", number, line, value);
    return false;
}

// All complaints at once, and how many there were.
static bool read_lines(bss *configured, const store_text *lines, const char *path) {
    int errors = 0;
    int number = 0;
    for (size_t start = 0; start < lines->length; number++) {
        size_t length = strcspn(lines->text + start, "\n");
        // The text ends in a line end, which makes room for the NUL.
        lines->text[start + length] = '\0';
        errors += read_line(configured, lines->text + start, number + 1) ? 0 : 1;
        start += length + 1;
    }
    if (errors > 0)
        printf("%d errors found in configuration file '%s'\n", errors, path);
    return errors == 0;
}

static bool find_interface(bss *configured, const driver_state *state, const scenario *scene) {
    configured->vap = vap_of_interface(configured->interface);
    if (configured->vap < 0 || !state->vaps[configured->vap].up || !scene->vaps[configured->vap].declared) {
        printf("Could not read interface %s flags: %s\n", configured->interface, strerror(ENODEV));
        return false;
    }
    const char *bssid = scene->vaps[configured->vap].bssid;
    for (size_t i = 0; i < sizeof configured->bssid; i++)
        configured->bssid[i] = (char)tolower((unsigned char)bssid[i]);
    return true;
}

static int store_number(const char *name, int index) {
    char key[SETTING_KEY_SIZE];
    char value[SETTING_VALUE_SIZE];
    store_key(name, index, key, sizeof key);
    store_value(APCFG_STORE, key, value, sizeof value);
    return atoi(value);
}

bool bss_configure(bss *configured, const char *path, const driver_state *state, const scenario *scene) {
    store_text lines;
    *configured = {};
    printf("Configuration file: %s\n", path);
    bool good = lines_load(path, &lines) == 0;
    if (!good)
        printf("Could not open configuration file '%s' for reading.\n", path);
    good = good && read_lines(configured, &lines, path) && find_interface(configured, state, scene);
    store_free(&lines);
    if (!good)
        return false;
    // The switch that the store has for the VAP is in force from here on: it is not looked at again.
    if (store_number("WPS_ENABLE", configured->vap + 1) == 0)
        configured->wps_state = 0;
    printf("Using interface %s with hwaddr %s and ssid \"%s\"\n", configured->interface, configured->bssid,
           configured->ssid);
    return true;
}

// Answers.

static void answer_config(const bss *asked, char *answer, size_t size) {
    static const char *const states[] = {"disabled", "not configured", "configured"};
    int length = snprintf(answer, size, "bssid=%s\nssid=%s\nwps_state=%s\n", asked->bssid, asked->ssid,
                          states[asked->wps_state]);
    if (asked->wpa != 0)
        snprintf(answer + length, size - (size_t)length, "wpa=%d\nkey_mgmt=%s\n", asked->wpa, asked->key_mgmt);
}

static void answer_status(const bss *asked, char *answer, size_t size) {
    snprintf(answer, size, "state=ENABLED\nbss[0]=%s\nbssid[0]=%s\nssid[0]=%s\n", asked->interface, asked->bssid,
             asked->ssid);
}

static const char *begin_exchange(bss *asked) {
    if (asked->wps_state == 0)
        return "FAIL\n";
    // A scenario that is being edited and makes no sense is one in which nobody comes.
    scenario_wps plan = {};
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene != nullptr)
        plan = scene->vaps[asked->vap].wps;
    scenario_free(scene);
    int timeout = store_number("AP_WPS_TIMEOUT", 1);
    exchange_begin(&asked->wps, &plan, timeout > 0 ? timeout : WALK_TIME_SECONDS, driver_clock());
    return "OK\n";
}

static const char *cancel_exchange(bss *asked) {
    if (asked->wps_state == 0)
        return "FAIL\n";
    exchange_cancel(&asked->wps);
    return "OK\n";
}

static bool all_digits(const char *text, size_t length) {
    return strspn(text, "0123456789") == length && text[length] == '\0';
}

// Four digits, or eight of which the last is the checksum: the odd places weigh three times as much as the even ones,
// and the sum is a multiple of ten.
static bool is_pin(const char *text) {
    if (strlen(text) == 4)
        return all_digits(text, 4);
    if (strlen(text) != 8 || !all_digits(text, 8))
        return false;
    int sum = 0;
    for (int i = 0; i < 8; i++)
        sum += (text[i] - '0') * (i % 2 == 0 ? 3 : 1);
    return sum % 10 == 0;
}

// "any", or the 36 characters of a UUID.
static bool is_enrollee(const char *text, size_t length) {
    static const char shape[] = "hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh";
    if (length == 3 && strncmp(text, "any", 3) == 0)
        return true;
    if (length != sizeof shape - 1)
        return false;
    for (size_t i = 0; i < length; i++) {
        if (shape[i] == '-' ? text[i] != '-' : isxdigit((unsigned char)text[i]) == 0)
            return false;
    }
    return true;
}

// ENROLLEE PIN; what may follow (a timeout, an address) makes no difference.
static const char *take_pin(bss *asked, const char *arguments) {
    size_t enrollee = strcspn(arguments, " ");
    if (arguments[enrollee] == '\0' || !is_enrollee(arguments, enrollee))
        return "FAIL\n";
    char pin[16];
    snprintf(pin, sizeof pin, "%.*s", (int)strcspn(arguments + enrollee + 1, " "), arguments + enrollee + 1);
    return is_pin(pin) ? begin_exchange(asked) : "FAIL\n";
}

void bss_answer(bss *asked, const char *command, char *answer, size_t size) {
    static const char pin_command[] = "WPS_PIN ";
    const char *word = "UNKNOWN COMMAND\n";
    exchange_settle(&asked->wps, driver_clock());
    if (strcmp(command, "GET_CONFIG") == 0)
        return answer_config(asked, answer, size);
    if (strcmp(command, "STATUS") == 0)
        return answer_status(asked, answer, size);
    if (strcmp(command, "WPS_GET_STATUS") == 0)
        return exchange_describe(&asked->wps, answer, size);
    if (strcmp(command, "PING") == 0)
        word = "PONG\n";
    else if (strcmp(command, "WPS_PBC") == 0)
        word = begin_exchange(asked);
    else if (strcmp(command, "WPS_CANCEL") == 0)
        word = cancel_exchange(asked);
    else if (strncmp(command, pin_command, strlen(pin_command)) == 0)
        word = take_pin(asked, command + strlen(pin_command));
    snprintf(answer, size, "%s", word);
}
