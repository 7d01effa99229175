// Conversions between what getters say, what setters take and what the document says.
//
// Pure functions.
#pragma once

#include "client/settings.h"

extern const setting_conversion PLAIN;               // both say the same
extern const setting_conversion VERBATIM;            // a text whose setter has the shell interpret it
extern const setting_conversion WEP_KEY;             // the same, of a key that may be missing
extern const setting_conversion PASSPHRASE;          // a text that may be missing
extern const setting_conversion COUNTRY;             // two letters
extern const setting_conversion STANDARD_LETTERS;    // set by another standard where "n" has two meanings
extern const setting_conversion FIXED_MCS;           // where 1 is another 0
extern const setting_conversion BEACON_TYPE;         // one of five words
extern const setting_conversion WPA_AUTHENTICATION;  // one of six words; says nothing without WPA
extern const setting_conversion WPA_ENCRYPTION;      // one of three words
extern const setting_conversion WEP_AUTHENTICATION;  // the one word that can be set without losing another
extern const setting_conversion METHODS;             // words with commas between

// Whether a text can be set at all: the driver's store keeps a setting on a line.
bool is_settable_text(const value *text);

// Memory that cannot be had ends the program as it does in client/value.h.
[[noreturn]] void end_without_memory(void);
