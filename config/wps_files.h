// The WPS settings of each VAP: one text file an interface, which the authenticator reads when it starts.
//
// Touches the files WSC_athN.conf of WPS_DIRECTORY: reads them through the shell, rewrites them by way of a temporary
// file. Service thread; nothing is cached and nothing is locked.
//
// VAP index 1 is the file of interface ath0. Any index may be given: a VAP without a file reads and writes as -1.
#pragma once

#include <stddef.h>

constexpr const char WPS_DIRECTORY[] = "/nvram/etc/wpa2";

// Reads the setting `key`. value (size bytes, at least 1) receives what stands behind the first "=" of all lines that
// contain the key, without the line break at the very end, cut to fit; with several such lines the later ones follow
// whole. It is left alone when nothing is found.
// Returns 0 when a value, even an empty one, was found, else -1.
//
// The key goes to the shell as it stands: callers pass names of their own, never a client's text.
int athwps_getbyname(int index, const char *key, char *value, size_t size);

// Rewrites the file with every line KEY=... (or ...KEY=...) replaced by "key=value", appended when there was none.
// value is written as it stands, of any length. Returns 0 when the file was rewritten; -1 when the interface has no
// file or the rewriting failed, and the file is then as it was. What becomes of the last step, the renaming, is not
// examined.
int athwps_setbyname(int index, const char *key, const char *value);
