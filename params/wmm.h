// Wi-Fi multimedia (WMM) settings of a VAP: its two switches and the parameters of the access categories.
//
// Touches the store. Service thread.
//
// Every operation takes the VAP index as the client sent it (1 to 16). A negative index is refused with -1 where
// nothing else is said; everything else succeeds with 0.
//
// A parameter is one store value: a list with an element an access category, separated by ";". Elements may be empty;
// behind a last ";" there is none. Categories count from 1. As many as the list has are read; one more can be written.
#pragma once

#include <stddef.h>
#include <sys/types.h>

// The switches. An absent one reads as 0.
int wlan_getWmmSupported(int index, int *supported);       // the same setting as wlan_getWmmEnable
int wlan_getWmmUaspdSupported(int index, int *supported);  // the same setting as wlan_getWmmUaspdEnable
int wlan_getWmmEnable(int index, int *enabled);
int wlan_setWmmEnable(int index, int enabled);
int wlan_getWmmUaspdEnable(int index, int *enabled);
int wlan_setWmmUaspdEnable(int index, int enabled);

// The power-save switch once more, with other edges.
int wlan_getWMMAPSD(int index, int *enabled);  // untouched when it is absent
int wlan_setWMMAPSD(int index, int enabled);   // a negative index succeeds and writes nothing

// The lists that the access point uses itself (Og) and those that it advertises to the stations of the BSS (Ic).
//
// The getters leave the output untouched for a category that the list does not have (below 1 too). The setters write
// nothing for a category beyond the list's length and one, nor when the list would then be longer than a value of the
// store (1727 characters) or is so already; category 1 and every category below it replace the first element.
int wlan_getWmmOgAifsn(int index, int category, u_int *aifsn);
int wlan_setWmmOgAifsn(int index, int category, u_int aifsn);
int wlan_getWmmOgEcwMin(int index, int category, u_int *ecw_min);
int wlan_setWmmOgEcwMin(int index, int category, u_int ecw_min);
int wlan_getWmmOgEcwMax(int index, int category, u_int *ecw_max);
int wlan_setWmmOgEcwMax(int index, int category, u_int ecw_max);
int wlan_getWmmOgTxOp(int index, int category, u_int *txop);
int wlan_setWmmOgTxOp(int index, int category, u_int txop);
int wlan_getWmmOgAckPolicy(int index, int category, int *ack_policy);
int wlan_setWmmOgAckPolicy(int index, int category, int ack_policy);
int wlan_getWmmIcAifsn(int index, int category, u_int *aifsn);
int wlan_setWmmIcAifsn(int index, int category, u_int aifsn);
int wlan_getWmmIcEcwMin(int index, int category, u_int *ecw_min);
int wlan_setWmmIcEcwMin(int index, int category, u_int ecw_min);
int wlan_getWmmIcEcwMax(int index, int category, u_int *ecw_max);
int wlan_setWmmIcEcwMax(int index, int category, u_int ecw_max);
int wlan_getWmmIcTxOp(int index, int category, u_int *txop);
int wlan_setWmmIcTxOp(int index, int category, u_int txop);
int wlan_getWmmIcAckPolicy(int index, int category, int *ack_policy);
int wlan_setWmmIcAckPolicy(int index, int category, int ack_policy);

// Copies an element into item (size bytes), terminated and cut to fit. -1 when the list does not have it; item is then
// untouched.
int list_get_item(const char *list, char separator, int category, char *item, size_t size);

// Puts the list with the element replaced by value, or with value behind its last element, into changed (size bytes).
// Category 0 and below replace the first. A separator at the list's end goes with the element before it when that is
// replaced. -1 when elements before it are missing or the list does not fit; changed is then not to be used. list and
// changed must not overlap.
int list_set_item(const char *list, char separator, int category, const char *value, char *changed, size_t size);
