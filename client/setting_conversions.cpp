#include "client/setting_conversions.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "client/ask.h"

// The highest channel of the 2.4 GHz band.
constexpr int64_t CHANNEL_MAX_2G = 14;

// What getters of keys say when there is none. A key that is really called that cannot be told from it.
constexpr const char NULL_KEY[] = "null_key";

void end_without_memory(void) {
    static const char problem[] = "out of memory\n";
    if (write(STDERR_FILENO, problem, sizeof problem - 1) < 0)
        _exit(EXIT_STATUS_LOCAL);
    _exit(EXIT_STATUS_LOCAL);
}

bool is_settable_text(const value *text) {
    return !memchr(text->text, '\0', text->length) && !memchr(text->text, '\n', text->length) &&
           !memchr(text->text, '\r', text->length);
}

// --- texts that the shell sees ---

// These setters put their text between double quotes as it comes, and the shell takes the backslashes off again.
// Without them a name with a "$" in it would come back as something else, or run a command.
static char *write_for_shell(const setting_change *change) {
    char *text = static_cast<char *>(malloc(2 * change->then->length + 1));
    if (!text)
        return nullptr;
    char *end = text;
    for (const char *c = change->then->text; *c; c++) {
        if (strchr("\"`\\$", *c))
            *end++ = '\\';
        *end++ = *c;
    }
    *end = '\0';
    return text;
}

// --- keys ---

// Setting an empty key makes the getter say that there is none.
static bool read_key(value *found) {
    if (strcmp(found->text, NULL_KEY) == 0) {
        *found->text = '\0';
        found->length = 0;
    }
    return true;
}

// --- words ---

struct word_list {
    const char *const *words;
    size_t count;
    const char *wanted;
};

static bool is_word(const word_list *list, const value *text) {
    for (size_t i = 0; i < list->count; i++)
        if (strcmp(text->text, list->words[i]) == 0)
            return true;
    return false;
}

static bool accept_word(const word_list *list, const value *said, const char **wanted) {
    *wanted = list->wanted;
    return is_word(list, said);
}

#define WORDS(words) words, sizeof(words) / sizeof *(words)

static const char *const beacon_words[] = {"None", "Basic", "WPA", "11i", "WPAand11i"};
static const word_list beacon_types = {WORDS(beacon_words), "None, Basic, WPA, 11i or WPAand11i"};

static bool read_beacon_type(value *found) {
    return is_word(&beacon_types, found);
}

static bool accept_beacon_type(value *said, const char **wanted) {
    return accept_word(&beacon_types, said, wanted);
}

static const char *const wpa_words[] = {"WPA1WPA2", "WPA2", "WPA", "WPAPSKWPA2PSK", "WPA2PSK", "WPAPSK"};
static const word_list wpa_modes = {WORDS(wpa_words), "WPA, WPA2, WPA1WPA2, WPAPSK, WPA2PSK or WPAPSKWPA2PSK"};

// Without WPA the getter repeats the family, which no setter of these words takes.
static bool read_wpa_authentication(value *found) {
    return is_word(&wpa_modes, found);
}

static bool accept_wpa_authentication(value *said, const char **wanted) {
    return accept_word(&wpa_modes, said, wanted);
}

static const char *const cipher_words[] = {"TKIPandAESEncryption", "TKIPEncryption", "AESEncryption"};
static const word_list ciphers = {WORDS(cipher_words), "TKIPEncryption, AESEncryption or TKIPandAESEncryption"};

// "enc_none", where there is none yet, cannot be set.
static bool read_wpa_encryption(value *found) {
    return is_word(&ciphers, found);
}

static bool accept_wpa_encryption(value *said, const char **wanted) {
    return accept_word(&ciphers, said, wanted);
}

// Of the other words, "EAPAuthentication" follows from wpa_authentication_modes, "None" would make any network an open
// one when it is set, and "SharedAuthentication" is kept where the getter does not look.
static const char *const wep_words[] = {"WepAutoAuthentication"};
static const word_list wep_modes = {WORDS(wep_words), "WepAutoAuthentication"};

static bool read_wep_authentication(value *found) {
    return is_word(&wep_modes, found);
}

static bool accept_wep_authentication(value *said, const char **wanted) {
    return accept_word(&wep_modes, said, wanted);
}

// --- WPS methods ---

static const char *const method_words[] = {"Label", "Display", "PushButton", "Keypad"};

// Nothing at all cannot be set.
static bool read_methods(value *found) {
    return found->length > 0;
}

// Words in the getter's order, each once.
static bool accept_methods(value *said, const char **wanted) {
    *wanted = "some of Label,Display,PushButton,Keypad, in this order and with commas between";
    const char *at = said->text;
    for (const char *word : method_words) {
        size_t length = strlen(word);
        if (strncmp(at, word, length) != 0 || (at[length] && at[length] != ','))
            continue;
        at += length;
        if (!*at)
            return true;
        at++;
    }
    return false;
}

// --- the mode ---

static const char *const standard_words[] = {"a", "b", "bg", "g", "an", "gn", "bgn", "n", "ac", "nac", "anac"};
static const word_list standards = {WORDS(standard_words), "a, b, bg, g, an, gn, bgn, n, ac, nac or anac"};

// A radio without a mode has no letters, and there is no way back to that.
static bool read_standard(value *found) {
    return is_word(&standards, found);
}

static bool accept_standard(value *said, const char **wanted) {
    return accept_word(&standards, said, wanted);
}

static const value *channel_of(const value *settings, int radio) {
    const setting_row *channel = find_setting("radios", "channel");
    return settings ? find_setting_value(settings, channel, radio) : nullptr;
}

// Whether the radio is to work in the 2.4 GHz band: by its channel, and by its number when the channel is automatic.
static bool in_lower_band(const setting_change *change) {
    const value *channel = channel_of(change->settings_then, change->place);
    channel = channel ? channel : channel_of(change->settings_now, change->place);
    if (!channel || channel->number == 0)
        return change->place == 0;
    return channel->number <= CHANNEL_MAX_2G;
}

// The setter takes "n" for the other band than a radio's own. The letters are "n" also when the pure switch is set
// afterwards, which ht_mode does.
static char *write_standard(const setting_change *change) {
    if (strcmp(change->then->text, "n") == 0)
        return strdup(in_lower_band(change) ? "bgn" : "an");
    return strdup(change->then->text);
}

// 1 is automatic too, and reads back as 0.
static bool accept_fixed_mcs(value *said, const char **wanted) {
    *wanted = "";
    said->number = said->number == 1 ? 0 : said->number;
    return true;
}

static bool accept_country(value *said, const char **wanted) {
    *wanted = "a country's two letters";
    return said->length == 2;
}

// Setting the letters of the standard is half of "n".
static void plan_pure_switch(call_plan *plan, const setting_change *change) {
    if (strcmp(change->then->text, "n") != 0)
        return;
    const procedure_row *setter = row_of(PROC_wlan_set_ht_mode);
    const int64_t numbers[ARGUMENTS_MAX] = {call_index(change->setting, change->place), 1};
    call_arguments arguments = number_arguments(setter, numbers);
    plan_call(plan, change, setter->number, &arguments);
}

const setting_conversion PLAIN = {nullptr, nullptr, nullptr, nullptr};
const setting_conversion VERBATIM = {nullptr, nullptr, write_for_shell, nullptr};
const setting_conversion WEP_KEY = {read_key, nullptr, write_for_shell, nullptr};
const setting_conversion PASSPHRASE = {read_key, nullptr, nullptr, nullptr};
const setting_conversion COUNTRY = {nullptr, accept_country, nullptr, nullptr};
const setting_conversion STANDARD_LETTERS = {read_standard, accept_standard, write_standard, plan_pure_switch};
const setting_conversion FIXED_MCS = {nullptr, accept_fixed_mcs, nullptr, nullptr};
const setting_conversion BEACON_TYPE = {read_beacon_type, accept_beacon_type, nullptr, nullptr};
const setting_conversion WPA_AUTHENTICATION = {read_wpa_authentication, accept_wpa_authentication, nullptr, nullptr};
const setting_conversion WPA_ENCRYPTION = {read_wpa_encryption, accept_wpa_encryption, nullptr, nullptr};
const setting_conversion WEP_AUTHENTICATION = {read_wep_authentication, accept_wep_authentication, nullptr, nullptr};
const setting_conversion METHODS = {read_methods, accept_methods, nullptr, nullptr};
