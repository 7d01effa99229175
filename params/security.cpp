// Security of a VAP: encryption and authentication modes, WEP keys, pre-shared key, RADIUS and accounting servers.
//
// Touches the store, nothing else. Runs on the service thread.
#include "params/security.h"

#include <stdio.h>
#include <string.h>

#include "config/log.h"
#include "config/store.h"
#include "config/text.h"
#include "params/settings.h"
#include "params/vap.h"

// What clients read for a key that is not stored.
constexpr const char NULL_KEY[] = "null_key";

// The longest passphrase has 63 characters and escaping can double them; a longer secret is cut to fit.
constexpr size_t ESCAPED_SECRET_SIZE = 128;

// "WEP_RADIO_NUM%d_IS_HEX_%d" with the longest numbers.
constexpr size_t WEP_NAME_SIZE = 48;

// The keys of the WEP settings name their radio themselves and are kept without a suffix.
constexpr int WEP_STORE_INDEX = 1;

// Open and shared authentication go under a key with the suffix "_2", automatic goes under the bare key, which is the
// one that is read. So a client that sets "SharedAuthentication" does not read it back. Do not mend this: the
// driver's scripts take each from the name under which it is written here.
constexpr int WEP_AUTO_STORE_INDEX = WEP_STORE_INDEX;
constexpr int WEP_OPEN_OR_SHARED_STORE_INDEX = 2;

constexpr const char WEP_OPEN[] = "1";
constexpr const char WEP_SHARED[] = "2";
constexpr const char WEP_AUTO[] = "4";

constexpr int WEP_KEY_MAX = 4;

// Key lengths of the stronger WEP, in hexadecimal digits and in characters.
constexpr size_t WEP_104_HEX_LENGTH = 26;
constexpr size_t WEP_104_TEXT_LENGTH = 13;

// What a word becomes that contains this text. Of a list, the first row that fits is the one.
struct translation {
    const char *contained;
    const char *becomes;
};

// Every word contains it.
constexpr const char ANYTHING_ELSE[] = "";

// Null when no row fits.
template <size_t count>
static const char *translate(const translation (&rows)[count], const char *word) {
    for (const translation &row : rows) {
        if (strstr(word, row.contained)) {
            return row.becomes;
        }
    }
    return nullptr;
}

// --- basic modes ---

static const translation BASIC_ENCRYPTION_READ[] = {
    {"WEP", "WEPEncryption"},
    {"None", "None"},
    {ANYTHING_ELSE, "NOTWEP"},
};

static const translation BASIC_ENCRYPTION_WRITTEN[] = {
    {"WEPEncryption", "WEP"},
    {ANYTHING_ELSE, "None"},
};

int wlan_getBasicEncryptionModes(int index, char *modes, size_t size) {
    char secmode[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECMODE", secmode, sizeof(secmode));
    put_text(modes, size, translate(BASIC_ENCRYPTION_READ, secmode));
    return 0;
}

int wlan_setBasicEncryptionModes(int index, const char *modes) {
    athcfg_setbyname(index, "AP_SECMODE", translate(BASIC_ENCRYPTION_WRITTEN, modes));
    return 0;
}

static const char *get_wep_authentication(int index) {
    char name[WEP_NAME_SIZE];
    char mode[STORE_VALUE_SIZE];
    snprintf(name, sizeof(name), "AP_WEP_MODE_%d", athcfg_get_radio(index));
    athcfg_getbyname(WEP_AUTO_STORE_INDEX, name, mode, sizeof(mode));
    if (strcmp(mode, WEP_SHARED) == 0) {
        return "SharedAuthentication";
    }
    return strcmp(mode, WEP_AUTO) == 0 ? "WepAutoAuthentication" : "None";
}

static void set_wep_authentication(int index, int store_index, const char *mode) {
    char name[WEP_NAME_SIZE];
    snprintf(name, sizeof(name), "AP_WEP_MODE_%d", athcfg_get_radio(index));
    athcfg_setbyname(store_index, name, mode);
}

static const char *get_key_management(int index) {
    char secfile[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECFILE", secfile, sizeof(secfile));
    return strstr(secfile, "EAP") ? "EAPAuthentication" : "None";
}

int wlan_getBasicAuthenticationModes(int index, char *modes, size_t size) {
    char secmode[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECMODE", secmode, sizeof(secmode));
    if (strstr(secmode, "None")) {
        put_text(modes, size, "None");
    } else if (strstr(secmode, "WEP")) {
        put_text(modes, size, get_wep_authentication(index));
    } else {
        put_text(modes, size, get_key_management(index));
    }
    return 0;
}

// The whole text goes into the store as it came, not just the word "None" that it contains. Do not mend this: the
// driver's scripts find in AP_SECMODE what the client said.
static void set_no_authentication(int index, const char *modes) {
    char secmode[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECMODE", secmode, sizeof(secmode));
    if (strstr(secmode, "WEP")) {
        set_wep_authentication(index, WEP_OPEN_OR_SHARED_STORE_INDEX, WEP_OPEN);
    }
    athcfg_setbyname(index, "AP_SECMODE", modes);
}

int wlan_setBasicAuthenticationModes(int index, const char *modes) {
    if (strstr(modes, "None")) {
        set_no_authentication(index, modes);
    } else if (strstr(modes, "SharedAuthentication")) {
        set_wep_authentication(index, WEP_OPEN_OR_SHARED_STORE_INDEX, WEP_SHARED);
    } else if (strstr(modes, "EAPAuthentication")) {
        athcfg_setbyname(index, "AP_SECFILE", "EAP");
    } else if (strstr(modes, "WepAutoAuthentication")) {
        athcfg_setbyname(index, "AP_SECMODE", "WEP");
        set_wep_authentication(index, WEP_AUTO_STORE_INDEX, WEP_AUTO);
    }
    return 0;
}

// --- WPA modes ---

static const translation WPA_ENCRYPTION_READ[] = {
    {"TKIP CCMP", "TKIPandAESEncryption"},
    {"CCMP TKIP", "TKIPandAESEncryption"},
    {"TKIP", "TKIPEncryption"},
    {"CCMP", "AESEncryption"},
    {ANYTHING_ELSE, "enc_none"},
};

static const translation WPA_ENCRYPTION_WRITTEN[] = {
    {"TKIPandAESEncryption", "TKIP CCMP"},
    {"TKIPEncryption", "TKIP"},
    {"AESEncryption", "CCMP"},
};

int wlan_getWpaEncryptionModes(int index, char *modes, size_t size) {
    char cypher[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_CYPHER", cypher, sizeof(cypher));
    put_text(modes, size, translate(WPA_ENCRYPTION_READ, cypher));
    return 0;
}

int wlan_setWpaEncryptionModes(int index, const char *modes) {
    const char *cypher = translate(WPA_ENCRYPTION_WRITTEN, modes);
    if (!cypher) {
        log_debug("[VLK-API] %s %s: unknown wpa encryption %s\n", __func__, __func__, modes);
        return -1;
    }
    athcfg_setbyname(index, "AP_CYPHER", cypher);
    return 0;
}

// All compared exactly; written in the order of the columns.
static const struct {
    const char *word;
    const char *secmode;
    const char *wpa;
    const char *secfile;
} WPA_AUTHENTICATION[] = {
    {"WPA1WPA2", "WPA", "3", "EAP"},      {"WPA2", "WPA", "2", "EAP"},    {"WPA", "WPA", "1", "EAP"},
    {"WPAPSKWPA2PSK", "WPA", "3", "PSK"}, {"WPA2PSK", "WPA", "2", "PSK"}, {"WPAPSK", "WPA", "1", "PSK"},
};

static void get_wpa_authentication(int index, char *modes, size_t size) {
    char secfile[STORE_VALUE_SIZE];
    char wpa[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECFILE", secfile, sizeof(secfile));
    athcfg_getbyname(index, "AP_WPA", wpa, sizeof(wpa));
    for (const auto &row : WPA_AUTHENTICATION) {
        if (strcmp(wpa, row.wpa) == 0 && strcmp(secfile, row.secfile) == 0) {
            put_text(modes, size, row.word);
        }
    }
}

int wlan_getWpaAuthenticationModes(int index, char *modes, size_t size) {
    char secmode[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECMODE", secmode, sizeof(secmode));
    if (strcmp(secmode, "WPA") == 0) {
        get_wpa_authentication(index, modes, size);
    } else if (strcmp(secmode, "WEP") == 0) {
        put_text(modes, size, "WEPEncryption");
    } else {
        put_text(modes, size, "None");
    }
    return 0;
}

int wlan_setWpaBasicAuthenticationModes(int index, const char *modes) {
    for (const auto &row : WPA_AUTHENTICATION) {
        if (strcmp(modes, row.word) == 0) {
            athcfg_setbyname(index, "AP_SECMODE", row.secmode);
            athcfg_setbyname(index, "AP_WPA", row.wpa);
            athcfg_setbyname(index, "AP_SECFILE", row.secfile);
        }
    }
    return 0;
}

// --- WEP ---

static int get_default_wep_key(int radio) {
    char name[WEP_NAME_SIZE];
    int key_index = 0;
    snprintf(name, sizeof(name), "AP_PRIMARY_KEY_%d", radio);
    athcfg_getint(WEP_STORE_INDEX, name, &key_index);
    return key_index;
}

int wlan_getWepKeyIndex(int index, u_int *key_index) {
    *key_index = static_cast<u_int>(get_default_wep_key(athcfg_get_radio(index)));
    return 0;
}

int wlan_setWepKeyIndex(int index, u_int key_index) {
    char name[WEP_NAME_SIZE];
    snprintf(name, sizeof(name), "AP_PRIMARY_KEY_%d", athcfg_get_radio(index));
    athcfg_setint(WEP_STORE_INDEX, name, static_cast<int>(key_index));
    return 0;
}

static int choose_wep_key(int radio, int key_index) {
    bool exists = key_index >= 1 && key_index <= WEP_KEY_MAX;
    return exists ? key_index : get_default_wep_key(radio);
}

// The key becomes empty when it is not stored. Returns 0, or -1 for that.
static int read_wep_key(int radio, int key_index, char *key, size_t size) {
    char name[WEP_NAME_SIZE];
    snprintf(name, sizeof(name), "WEP_RADIO_NUM%d_KEY_%d", radio, key_index);
    return athcfg_getbyname(WEP_STORE_INDEX, name, key, size);
}

static void get_wep_key(int radio, int key_index, char *key, size_t size) {
    if (read_wep_key(radio, key_index, key, size) != 0) {
        put_text(key, size, NULL_KEY);
    }
}

int wlan_getWepKey(int index, int key_index, char *key, size_t size) {
    int radio = athcfg_get_radio(index);
    int chosen = choose_wep_key(radio, key_index);
    log_debug("[VLK-API] %s %s: key_idx = %d\n", __func__, __func__, chosen);
    get_wep_key(radio, chosen, key, size);
    return 0;
}

int wlan_setWepKey(int index, int key_index, const char *key) {
    int radio = athcfg_get_radio(index);
    int chosen = choose_wep_key(radio, key_index);
    log_debug("[VLK-API] %s %s: key_idx = %d\n", __func__, __func__, chosen);
    char name[WEP_NAME_SIZE];
    snprintf(name, sizeof(name), "WEP_RADIO_NUM%d_KEY_%d", radio, chosen);
    athcfg_setbyname(WEP_STORE_INDEX, name, key);
    snprintf(name, sizeof(name), "WEP_RADIO_NUM%d_IS_HEX_%d", radio, chosen);
    athcfg_setbyname(WEP_STORE_INDEX, name, "1");
    return 0;
}

int wlan_getWepKeyPassphrase(int index, char *passphrase, size_t size) {
    int radio = athcfg_get_radio(index);
    get_wep_key(radio, get_default_wep_key(radio), passphrase, size);
    return 0;
}

int wlan_setWepKeyPassphrase(int, const char *) {
    return 0;
}

int wlan_getWepEncryptionLevel(int index, char *level, size_t size) {
    char key[STORE_VALUE_SIZE];
    read_wep_key(athcfg_get_radio(index), 1, key, sizeof(key));
    size_t length = strlen(key);
    bool strong = length == WEP_104_HEX_LENGTH || length == WEP_104_TEXT_LENGTH;
    put_text(level, size, strong ? "104-bit" : "40-bit");
    return 0;
}

int wlan_setWepEncryptionLevel(int index, const char *) {
    return index < 0 ? -1 : 0;
}

// --- settings that are one value under one key of the VAP ---

// How a text goes into the store. Passphrase and RADIUS secret are escaped, pre-shared key, accounting secret and WEP
// keys are not. Do not even this out: a client that gets its keys through today would set others.
enum text_writing {
    VERBATIM,  // as it came, of any length
    ESCAPED,   // with pre_process_ssid, cut so that it fits ESCAPED_SECRET_SIZE
};

struct text_setting {
    const char *key;
    const char *absent;  // what the getter gives out then
    text_writing writing;
};

static int get_setting(const text_setting *setting, int index, char *text, size_t size) {
    if (athcfg_getbyname(index, setting->key, text, size) != 0) {
        put_text(text, size, setting->absent);
    }
    return 0;
}

static int set_setting(const text_setting *setting, int index, const char *text) {
    switch (setting->writing) {
        case VERBATIM:
            athcfg_setbyname(index, setting->key, text);
            break;
        case ESCAPED: {
            char escaped[ESCAPED_SECRET_SIZE] = {};
            pre_process_ssid(text, escaped, sizeof(escaped));
            athcfg_setbyname(index, setting->key, escaped);
            break;
        }
    }
    return 0;
}

// Defines both operations of a text, for example
//
//   VAP_TEXT(wlan_getAcctServerKey, wlan_setAcctServerKey, "AP_ACCT_SECRET", "", VERBATIM)
//
// becomes  int wlan_getAcctServerKey(int index, char *text, size_t size);
//          int wlan_setAcctServerKey(int index, const char *text);
#define VAP_TEXT(getter, setter, key, absent, writing)                  \
    int getter(int index, char *text, size_t size) {                    \
        static constexpr text_setting setting = {key, absent, writing}; \
        return get_setting(&setting, index, text, size);                \
    }                                                                   \
    int setter(int index, const char *text) {                           \
        static constexpr text_setting setting = {key, absent, writing}; \
        return set_setting(&setting, index, text);                      \
    }

// The same with the number of a key behind the index. It is ignored: a VAP has one pre-shared key.
#define VAP_KEY(getter, setter, key, absent, writing)                   \
    int getter(int index, int, char *text, size_t size) {               \
        static constexpr text_setting setting = {key, absent, writing}; \
        return get_setting(&setting, index, text, size);                \
    }                                                                   \
    int setter(int index, int, const char *text) {                      \
        static constexpr text_setting setting = {key, absent, writing}; \
        return set_setting(&setting, index, text);                      \
    }

// All numbers of this room are alike but for the index check.
#define VAP_NUMBER(getter, setter, type, key, check) \
    NUMBER_SETTING(getter, setter, type, key, SCOPE_VAP, check, ABSENT_ZERO, QUIET)

VAP_KEY(wlan_getPreSharedKey, wlan_setPreSharedKey, "PSK_KEY", NULL_KEY, VERBATIM)
VAP_KEY(wlan_getKeyPassphrase, wlan_setKeyPassphrase, "PSK_KEY", NULL_KEY, ESCAPED)
VAP_NUMBER(wlan_getWPAGroupReAuthInterval, wlan_setWPAGroupReAuthInterval, u_int, "AP_WPA_GROUP_REKEY", CHECK_INDEX)
VAP_NUMBER(wlan_getWPAReAuthInterval, wlan_setWPAReAuthInterval, u_int, "AP_WPA_GROUP_REKEY", CHECK_INDEX)
VAP_NUMBER(wlan_getWPAPreAuth, wlan_setWPAPreAuth, int, "AP_RSN_ENA_PREAUTH", CHECK_INDEX)
VAP_TEXT(wlan_getRadiusServerAddress, wlan_setRadiusServerAddress, "AP_AUTH_SERVER", "", VERBATIM)
VAP_NUMBER(wlan_getRadiusServerPort, wlan_setRadiusServerPort, int, "AP_AUTH_PORT", ANY_INDEX)
VAP_NUMBER(wlan_getRadiusServerIPV6Enable, wlan_setRadiusServerIPV6Enable, int, "RADIUS_SERVER_IPV6", ANY_INDEX)
VAP_TEXT(wlan_getRadiusServerKey, wlan_setRadiusServerKey, "AP_AUTH_SECRET", "", ESCAPED)
VAP_NUMBER(wlan_getRadiusReAuthInterval, wlan_setRadiusReAuthInterval, int, "AP_EAP_REAUTH_PER", ANY_INDEX)
VAP_TEXT(wlan_getAcctServerAddress, wlan_setAcctServerAddress, "AP_ACCT_SERVER", "", VERBATIM)
VAP_NUMBER(wlan_getAcctServerPort, wlan_setAcctServerPort, int, "AP_ACCT_PORT", ANY_INDEX)
VAP_TEXT(wlan_getAcctServerKey, wlan_setAcctServerKey, "AP_ACCT_SECRET", "", VERBATIM)
VAP_NUMBER(wlan_getRadiusServerPMKCaching, wlan_setRadiusServerPMKCaching, int, "AP_AUTH_PMK_CACHING", ANY_INDEX)
VAP_NUMBER(wlan_getRadiusServerPMKLifetime, wlan_setRadiusServerPMKLifetime, int, "AP_AUTH_PMK_LIFETIME", ANY_INDEX)
VAP_TEXT(wlan_getRadiusOperatorName, wlan_setRadiusOperatorName, "AP_RADIUS_OPER_NAME", "", VERBATIM)
VAP_TEXT(wlan_getRadiusLocationData, wlan_setRadiusLocationData, "AP_RADIUS_LOCAL_DATA", "", VERBATIM)
