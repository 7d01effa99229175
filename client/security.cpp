#include "client/security.h"

#include <string.h>

#include "client/ask.h"

struct security_word {
    const char *told;  // by the server
    const char *word;
};

// What the WPA authentication modes tell, all that there is to say. "None" is not among them: the server says it of
// open networks and of everything that it does not know.
static const security_word authentication_words[] = {
    {"WPAPSK", "WPA-PSK"},     {"WPA2PSK", "WPA2-PSK"},     {"WPAPSKWPA2PSK", "WPA/WPA2-PSK"},
    {"WPA", "WPA-Enterprise"}, {"WPA2", "WPA2-Enterprise"}, {"WPA1WPA2", "WPA/WPA2-Enterprise"},
    {"WEPEncryption", "WEP"},
};

// The families that the beacon type tells.
static const security_word family_words[] = {
    {"None", "open"}, {"Basic", "WEP"}, {"WPA", "WPA"}, {"11i", "WPA2"}, {"WPAand11i", "WPA/WPA2"},
};

// The longest is WPA/WPA2-Enterprise.
constexpr size_t SECURITY_WORD_SIZE = 32;

template <size_t count>
static const char *find_word(const security_word (&words)[count], const char *told) {
    for (const security_word &row : words)
        if (strcmp(row.told, told) == 0)
            return row.word;
    return nullptr;
}

static bool is_wpa(const char *word) {
    return strncmp(word, "WPA", 3) == 0;
}

// For a VAP whose WPA authentication modes say nothing: its family and whether a server checks its stations.
static bool find_family(gathering *from, int index, char word[SECURITY_WORD_SIZE]) {
    char told[GATHERED_TEXT_SIZE];
    if (!gather_text(from, PROC_wlan_get_beacon_type, index, told))
        return false;
    const char *family = find_word(family_words, told);
    if (!family)
        return false;
    bool enterprise = is_wpa(family) && gather_text(from, PROC_wlan_get_basic_authentication_modes, index, told) &&
                      strcmp(told, "EAPAuthentication") == 0;
    snprintf(word, SECURITY_WORD_SIZE, "%s%s", family, enterprise ? "-Enterprise" : "");
    return true;
}

void add_security(gathering *from, value *to, int index) {
    char told[GATHERED_TEXT_SIZE];
    char word[SECURITY_WORD_SIZE];
    bool is_told = gather_text(from, PROC_wlan_get_wpa_authentication_modes, index, told);
    const char *known = is_told ? find_word(authentication_words, told) : nullptr;
    if (known)
        snprintf(word, sizeof word, "%s", known);
    else if (!find_family(from, index, word)) {
        add_nothing(to, "security");
        return;
    }
    bool weak = !is_wpa(word);
    add_string(to, "security", word)->shown = weak ? emphasis::WARNING : emphasis::NONE;
}
