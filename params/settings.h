// Settings that are one decimal number under one key: what their getters and setters do, said once. A room lists its
// own with one NUMBER_SETTING row each.
//
// Touches the store. Service thread; lifecycle workers where a back end says so.
#pragma once

// Whose key it is.
enum setting_scope {
    SCOPE_DEVICE,  // the bare key, whatever the index
    SCOPE_VAP,     // the VAP's own key
    SCOPE_RADIO,   // the key of the VAP's radio
    SCOPE_GROUP,   // read from the VAP's own key, written to all VAPs of its radio's group (1 to 8 or 9 to 16)
};

enum setting_check {
    CHECK_INDEX,  // a negative index: -1, nothing is read or written
    ANY_INDEX,
};

// What a getter gives out when the key is absent or empty.
enum setting_absence {
    ABSENT_UNTOUCHED,  // the output as it was, 0
    ABSENT_ZERO,       // 0, 0
    ABSENT_FAILS,      // the output as it was, -1
};

// Whether the getter writes "get KEY VALUE" while debugging is on.
enum setting_log {
    QUIET,
    LOGGED,
};

struct number_setting {
    const char *key;
    setting_scope scope;
    setting_check check;
    setting_absence absence;
    setting_log log;
};

// Reads the setting; text that is no number reads as 0. caller is the operation's name, for the debug line.
// Returns 0 or -1 as the setting says.
int get_number(const number_setting *setting, const char *caller, int index, int *value);

// Writes the setting as "%d". Returns 0, or -1 for an index that the setting refuses.
int set_number(const number_setting *setting, int index, int value);

// Defines both operations of a setting. type is int or u_int: both travel as one word and are stored as "%d".
//
//   NUMBER_SETTING(wlan_getDtimPeriod, wlan_setDtimPeriod, u_int, "AP_DTIM", SCOPE_VAP, CHECK_INDEX, ABSENT_UNTOUCHED,
//                  LOGGED)
//
// becomes  int wlan_getDtimPeriod(int index, u_int *value);
//          int wlan_setDtimPeriod(int index, u_int value);
#define NUMBER_SETTING(getter, setter, type, key, scope, check, absence, log)        \
    int getter(int index, type *value) {                                             \
        static constexpr number_setting setting = {key, scope, check, absence, log}; \
        return get_number(&setting, #getter, index, reinterpret_cast<int *>(value)); \
    }                                                                                \
    int setter(int index, type value) {                                              \
        static constexpr number_setting setting = {key, scope, check, absence, log}; \
        return set_number(&setting, index, static_cast<int>(value));                 \
    }
