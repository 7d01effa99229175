// What a document of settings would change: read, compared and shown.
//
// Reads the document's file, or standard input; calls go through client/ask.h.
#pragma once

#include "client/changes.h"

// What a diff and an apply begin with: what the gateway is to be and what it is. The changes point into both trees.
struct comparison {
    value *document;
    value *then;
    value *now;
    change_list changes;
};

// Reads as much of the gateway as the document has; all of it when it has to be put back later. Anything but
// EXIT_STATUS_SUCCESS comes with session->problem. `compared` is empty before, and to be freed in any case.
client_exit_status compare(client_session *session, const char *path, bool everything, comparison *compared);
void free_comparison(comparison *compared);

// Appends {"where":"vap 3","setting":"ssid","now":"old","then":"new"} to a list. Secrets are not shown.
value *add_change(value *list, const setting_change *change);
