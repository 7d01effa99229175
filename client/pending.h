// Changes that are taken back unless somebody confirms them in time.
//
// Before the first change a process of its own is started: it keeps the old settings and waits. It puts them back when
// the time is over, and at once when the client that makes the changes ends before it is done. It belongs to no
// terminal. Touches one file, /run/vlk_rpc_wlan_config_client.pending (of an ordinary user below $XDG_RUNTIME_DIR), as
// long as there is something to confirm: it has the old settings as a document. The process holds a lock on it, so a
// file without a lock is one whose process was killed. Its ending becomes .restoring while the old settings are put
// back, and .lost (.lost.2, ...) when that is not possible or the process was killed.
#pragma once

#include <limits.h>

#include "client/changes.h"
#include "client/session.h"

struct pending_changes {
    int pipe;  // to the process; -1 without one
};

// EXIT_STATUS_LOCAL when changes of somebody wait for their confirmation. Settings that nobody puts back any more,
// since the process was killed, get a name of their own and are told of; `lost` is it, "" when there are none.
client_exit_status check_nothing_pending(client_session *session, char lost[PATH_MAX]);

// Starts the process. `old_settings` are the whole settings from before, `document` the same as it goes into the file.
// `changes` are those that are to be made. EXIT_STATUS_LOCAL with session->problem when that cannot be done; then
// nothing may be changed.
client_exit_status begin_pending(client_session *session, const value *old_settings, const value *document,
                                 const change_list *changes, int seconds, pending_changes *pending);

// The changes are made: the time begins to run.
void start_countdown(pending_changes *pending);

// Confirms. EXIT_STATUS_NOT_FOUND when nothing is pending, with session->problem.
client_exit_status confirm_pending(client_session *session);
