// What stands between the settings that a gateway has and those that it is to have, and the way from one to the other.
//
// Calls go through client/ask.h.
#pragma once

#include "client/settings.h"

struct change_list {
    setting_change *changes;
    size_t count;
    size_t room;
};

// All changes in the order in which they are to be made: those that are expected, and behind them those of the same
// family that may become necessary by their side effects. Values are not copied: both trees have to outlive the list.
change_list find_changes(const value *now, const value *then);
void free_changes(change_list *list);

// How many are expected.
size_t count_expected(const change_list *list);

struct change_outcome {
    const setting_change *change;
    const procedure_row *procedure;  // of the call that failed
    client_exit_status status;
    char problem[PROBLEM_SIZE];
};

// Whether every call that the changes need fits a datagram. False with a sentence in session->problem: better before
// the first of them is made.
bool check_sizes(client_session *session, const change_list *list);

// Whether the changes can be taken back without the server's shell obeying a text of the gateway's: a station of an
// access list cannot when its list has a name with such characters. False with a sentence in session->problem. Always
// true when the session sends such texts.
bool check_way_back(client_session *session, const change_list *list);

// Told of each change that was made or has failed.
using change_listener = void (*)(void *context, const change_outcome *outcome);

// Makes the changes. Stops at the first failure, or goes on with the next setting if `keep_going` and the server still
// answers. Returns the status of the first failure.
client_exit_status make_changes(client_session *session, const change_list *list, bool keep_going,
                                change_listener listener, void *context);
