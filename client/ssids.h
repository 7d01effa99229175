// The SSIDs of all VAPs for completion, where somebody waits for a key to take effect: within a second, or not at all.
//
// Calls in a process of its own, which is ended when the second is over.
#pragma once

#include "client/session.h"
#include "client/vaps.h"

// More than an SSID has; what a server may say beyond that is cut.
constexpr size_t SSID_TEXT_SIZE = 128;

// The SSID of VAP i in ssids[i - 1], of which there are VAP_COUNT_MAX; those that no answer came for are left alone.
// `server` is asked, or with nullptr the session's.
void find_ssids(const client_session *session, const char *server, char (*ssids)[SSID_TEXT_SIZE]);
