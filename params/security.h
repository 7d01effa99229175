// Security of a VAP: encryption and authentication modes, WEP keys, pre-shared key, RADIUS and accounting servers.
//
// Touches the store, nothing else. Service thread.
//
// The security family itself (none, WEP, WPA) is the beacon type of params/vap.h; the operations here refine it.
//
// Every operation takes the VAP index as the client sent it and returns 0, whatever becomes of a write, except where
// -1 is said. An index below 1 is refused only where that is said; elsewhere it selects the bare keys. What is not
// stored is no error: integers read as 0, texts as empty, or as "null_key" where that is said. A text output has
// `size` bytes (at least 1), is always terminated and is cut to fit.
//
// A text that is set is written as it came, of any length, and is not escaped: what the shell makes of it between
// double quotes is the client's business. Two setters do escape, wlan_setKeyPassphrase and wlan_setRadiusServerKey.
#pragma once

#include <stddef.h>
#include <sys/types.h>

// --- modes, in the clients' words ---

// "None", "WEPEncryption", or "NOTWEP" for every other family. Whatever is set but "WEPEncryption" means "None".
int wlan_getBasicEncryptionModes(int index, char *modes, size_t size);
int wlan_setBasicEncryptionModes(int index, const char *modes);

// "None", "SharedAuthentication", "WepAutoAuthentication" or "EAPAuthentication". Other words are ignored. Shared (and
// none, on a WEP network) are written where the getter does not look.
int wlan_getBasicAuthenticationModes(int index, char *modes, size_t size);
int wlan_setBasicAuthenticationModes(int index, const char *modes);

// "TKIPandAESEncryption", "TKIPEncryption" or "AESEncryption"; read also "enc_none". Setting another word: -1.
int wlan_getWpaEncryptionModes(int index, char *modes, size_t size);
int wlan_setWpaEncryptionModes(int index, const char *modes);

// "WPA1WPA2", "WPA2", "WPA", "WPAPSKWPA2PSK", "WPA2PSK" or "WPAPSK"; read also "WEPEncryption" and "None", and the
// output stays untouched when WPA is stored with anything unknown. Other words are ignored.
int wlan_getWpaAuthenticationModes(int index, char *modes, size_t size);
int wlan_setWpaBasicAuthenticationModes(int index, const char *modes);

// --- WEP: one set of keys for each radio ---

// Default key, 1 to 4 by intention; any number is taken, and is stored as a signed one.
int wlan_getWepKeyIndex(int index, u_int *key_index);
int wlan_setWepKeyIndex(int index, u_int key_index);

// One key; a key_index outside 1 to 4 means the default key. "null_key" when it is not stored. A key that is set is
// always marked hexadecimal.
int wlan_getWepKey(int index, int key_index, char *key, size_t size);
int wlan_setWepKey(int index, int key_index, const char *key);

// The default key, "null_key" when it is not stored.
int wlan_getWepKeyPassphrase(int index, char *passphrase, size_t size);
int wlan_setWepKeyPassphrase(int index, const char *passphrase);  // accepted, no effect

// "104-bit" when key 1 has 26 or 13 characters, else "40-bit".
int wlan_getWepEncryptionLevel(int index, char *level, size_t size);
int wlan_setWepEncryptionLevel(int index, const char *level);  // no effect; -1 below 0

// --- WPA: pre-shared key and rekeying ---

// Both pairs are one setting, "null_key" when it is not stored; key_index is ignored. The passphrase is escaped, and
// cut so that its escaped form has at most 127 characters; the pre-shared key is neither.
int wlan_getPreSharedKey(int index, int key_index, char *key, size_t size);
int wlan_setPreSharedKey(int index, int key_index, const char *key);
int wlan_getKeyPassphrase(int index, int key_index, char *passphrase, size_t size);
int wlan_setKeyPassphrase(int index, int key_index, const char *passphrase);

// Both pairs are one setting, in seconds. -1 below 0, the output untouched.
int wlan_getWPAGroupReAuthInterval(int index, u_int *interval);
int wlan_setWPAGroupReAuthInterval(int index, u_int interval);
int wlan_getWPAReAuthInterval(int index, u_int *interval);
int wlan_setWPAReAuthInterval(int index, u_int interval);

// Pre-authentication flag. -1 below 0, the output untouched.
int wlan_getWPAPreAuth(int index, int *enabled);
int wlan_setWPAPreAuth(int index, int enabled);

// --- RADIUS and accounting servers ---

int wlan_getRadiusServerAddress(int index, char *address, size_t size);
int wlan_setRadiusServerAddress(int index, const char *address);
int wlan_getRadiusServerPort(int index, int *port);
int wlan_setRadiusServerPort(int index, int port);
int wlan_getRadiusServerIPV6Enable(int index, int *enabled);
int wlan_setRadiusServerIPV6Enable(int index, int enabled);

// The shared secret is escaped, and cut so that its escaped form has at most 127 characters.
int wlan_getRadiusServerKey(int index, char *key, size_t size);
int wlan_setRadiusServerKey(int index, const char *key);

int wlan_getRadiusReAuthInterval(int index, int *interval);  // seconds
int wlan_setRadiusReAuthInterval(int index, int interval);

int wlan_getAcctServerAddress(int index, char *address, size_t size);
int wlan_setAcctServerAddress(int index, const char *address);
int wlan_getAcctServerPort(int index, int *port);
int wlan_setAcctServerPort(int index, int port);
int wlan_getAcctServerKey(int index, char *key, size_t size);
int wlan_setAcctServerKey(int index, const char *key);

int wlan_getRadiusServerPMKCaching(int index, int *enabled);
int wlan_setRadiusServerPMKCaching(int index, int enabled);
int wlan_getRadiusServerPMKLifetime(int index, int *lifetime);  // seconds
int wlan_setRadiusServerPMKLifetime(int index, int lifetime);

int wlan_getRadiusOperatorName(int index, char *name, size_t size);
int wlan_setRadiusOperatorName(int index, const char *name);
int wlan_getRadiusLocationData(int index, char *location, size_t size);
int wlan_setRadiusLocationData(int index, const char *location);
