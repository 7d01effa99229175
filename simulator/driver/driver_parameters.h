// What the driver keeps for its private commands: one row a parameter, and the file where the values stand.
//
// Touches /run/gateway/parameters, lines like "ath0.inact=300" and "wifi1.txchainmask=7"; the VAPs' MAC filters and
// band steering's tables stand in it too (mac_filter, steering_tables). Written under the driver's lock and replaced in
// one step, read by anybody. A parameter without a line has its start value, so a driver that was just loaded has no
// file at all.
#pragma once

#include <stddef.h>

#include "simulator/driver/driver_state.h"
#include "simulator/store.h"

constexpr size_t PARAMETER_VALUE_SIZE = 16;  // a number of at most 11 characters, or the short text of a text

// The numbers of "maccmd": up to 2 a policy (0 everybody, 1 only those on the list, 2 all others), 3 empties the list,
// 4 does that and ends the policy.
constexpr int MACCMD_FLUSH = 3;
constexpr int MACCMD_DETACH = 4;

enum parameter_kind {
    PARAMETER_NUMBER,  // from least to most
    PARAMETER_TEXT     // least to most printable characters without blanks
};

struct driver_parameter {
    const char *name;    // the private command that sets it
    const char *getter;  // and the one that reads it
    bool of_radio;       // wifiN has it, else athN
    parameter_kind kind;
    long least, most;
    const char *start;    // its value in a driver that was just loaded
    const char *setting;  // the key of the store from which the start of the VAPs takes it, null for none
};

// The row of a private command that sets or reads a parameter, null when there is none.
const driver_parameter *driver_parameter_find(const char *command);

// Brings a text into the form in which the parameter is kept (PARAMETER_VALUE_SIZE bytes). Numbers may be written in
// any base and end where their digits end. False when it is no value for it.
bool driver_parameter_take(const driver_parameter *parameter, const char *text, char *value);

// The value that an interface has (PARAMETER_VALUE_SIZE bytes).
void driver_parameter_get(const driver_parameter *parameter, const char *interface, char *value);

// Keeps a value that was taken. Returns 0, or -1 with errno.
int driver_parameter_set(const driver_parameter *parameter, const char *interface, const char *value);

// Reads the file; without one there are no lines.
int driver_parameters_read(store_text *lines);

// Reads the file, has its lines changed, and replaces it, all under the driver's lock; `how` gets the two texts.
// Returns 0, or -1 with errno.
int driver_parameters_change(int (*how)(store_text *lines, const char *key, const char *value), const char *key,
                             const char *value);

// Puts what the store says for an interface, at its store index, into the lines; values that the driver would refuse
// are passed over. Returns 0, or -1 when memory ran out.
int driver_parameters_load(const char *interface, const store_text *store, int index, store_text *lines);

// Forgets all values, as a driver that is taken down does.
void driver_parameters_forget(void);
