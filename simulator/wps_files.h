// The WPS files: what the authenticator knows about each VAP.
//
// Touches /nvram/etc/wpa2/WSC_athN.conf: lines KEY=VALUE in the manner of hostapd's configuration. Used by the
// launcher and by apup, which lay them down, and by whoever starts the authenticator. The server edits them.
#pragma once

#include <stddef.h>

#include "simulator/scenario.h"

// Room for the path of a VAP's file.
constexpr size_t WPS_PATH_SIZE = 64;

// The path of the file of VAP `vap` (0 to 15).
void wps_file_path(int vap, char *path, size_t size);

// Lays down the file of every VAP of the scenario that has none: its radio side from the store, its WPS side from the
// store where that has it, and the scenario's own lines in front of all. In a file that is there only the lines of the
// radio side follow the store: what WPS has was set by somebody who wants it kept. Returns 0, or -1 with errno.
int wps_files_prepare(const scenario *scene, const char *store_path);
