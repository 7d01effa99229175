// MAC access control list of a VAP: its stations, each with the name of the list that it is on.
//
// Touches the store (AP_MACLIST) and runs `iwpriv`, which keeps the driver's own filter. Service thread only. Whether
// the filter is enforced is a setting of the VAP (params/vap).
//
// The stored text is MAC,NAME; for each entry, MAC and name as the client sent them. An empty list is the empty text.
//
// Every operation takes the VAP index as the client sent it and returns 0 or -1. A negative index: -1, nothing is done,
// outputs stay as they were. Index 0 has the list of VAP 1 and no interface of its own. Texts from clients are never
// null and may be of any length; they stand in commands and in the store as they came.
#pragma once

#include <stddef.h>
#include <sys/types.h>

// Replaces every entry of the MAC by one with this list name. A station that is put on "steerlist" is given to the
// driver, before the store is looked at: it stays there when the list then has no room for it.
// -1, and nothing written, when the stored list or the new one does not fit MAC_LIST_SIZE bytes (server/records.h).
int wlan_setMacAddressControlAdd(int index, const char *mac, const char *list_name);

// Takes the station from the driver, then its first entry from the list. A MAC that is not in the list is reported on
// standard output and is no failure. Only what MAC_LIST_SIZE bytes hold of a stored list is read, and written again.
int wlan_setMacAddressControlDelete(int index, const char *mac);

int wlan_setMacAddressControlClear(int index);

// The list as clients know it: MAC=NAME; for each entry and one ";" more. list has size bytes (MAC_LIST_SIZE); a stored
// text that comes within three bytes of that gives -1 and stays in list as it is.
int wlan_getMacAddressControlList(int index, char *list, size_t size);

int wlan_getMacAddressControlCount(int index, u_int *count);

// --- the text of a list, apart from where it is kept ---

// Removes the first entry of the MAC from list, which gets shorter. Returns false when there is none, and always for an
// empty MAC. An entry is found where the text of the MAC is followed by a comma.
bool mac_list_remove(char *list, const char *mac);

// Appends an entry, "MAC,NAME;", to list, which has room for size bytes. Returns false, with list as it was, when it
// does not fit.
bool mac_list_append(char *list, size_t size, const char *entry);
