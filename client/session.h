// What one run of the client has in common: the server, how to answer, and where to.
//
// Commands get a session, make a tree of values of what they have to say, and hand it to show(); whatever goes wrong is
// said by complain(), which also gives the exit status. So every command speaks text, JSON and bare values alike.
#pragma once

#include <stdio.h>

#include "client/call.h"
#include "client/exit_status.h"
#include "client/value.h"

enum class output_format { TEXT, JSON, VALUE, DUMP };

struct client_settings {
    int timeout_seconds;  // of one call
    output_format format;
    const char *field;  // of VALUE: whose values, nullptr for the only one
    bool terminal;      // standard output is one
    bool colour;
    bool shell_text = false;  // texts that the server's shell would obey are sent as they stand
};

// Where a command comes from that is one line of many.
enum class line_source { NONE, BATCH, SHELL };

struct line_origin {
    line_source source = line_source::NONE;
    const char *file = nullptr;  // stands before each error, with the line; nullptr for no such beginning
    size_t line = 0;             // from 1; 0 without a number
    const char *text = nullptr;  // the line itself, for answers that repeat it
};

struct client_session {
    server_connection *connection;
    client_settings settings;
    FILE *out;
    FILE *errors;
    const char *speaker;         // the operation or command that is carried out
    bool is_operation;           // what the speaker is
    char problem[PROBLEM_SIZE];  // what went wrong with the last call
    line_origin origin = {};     // of a line of a batch or of the shell
    // Why a command may not read standard input, as the end of a sentence; nullptr when it may.
    const char *input_taken = nullptr;
    bool is_watched = false;  // what it prints is gathered and shown at its end, so it has to have one
};

// {"operation":"setSsid"} or {"command":"status"}, to which result and error are added; the line of a batch stands
// before that: {"line":3,"operation":"setSsid"}. The caller owns it.
value *new_answer(const client_session *session);

// Whether text for people is wanted: also with DUMP, which is for results of operations and makes no difference else.
bool speaks_to_people(const client_session *session);

// Whether what is one page for people, such as a help, goes out as it stands. As a bare value it does, too, unless a
// part of it is asked for by its name.
bool wants_page(const client_session *session);

// Prints a result (an object) in the session's format and frees it; flushes, since a reader may wait for each line of a
// stream. EXIT_STATUS_SUCCESS, or what went wrong with picking a bare value.
client_exit_status show(client_session *session, value *result);

// For commands that change something and have many values to say: whether show() will be able to answer. False, and
// complained of, when a bare value is wanted without a field; nothing may be changed then, for the status is
// EXIT_STATUS_USAGE.
bool can_show_many(client_session *session);

// Says that something failed, on standard error; as JSON on standard output, where programs look. Gives back `status`.
__attribute__((format(printf, 3, 4))) client_exit_status complain(client_session *session, client_exit_status status,
                                                                  const char *format, ...);

// The same with the answer that has been made so far: {"operation":"getSsid","code":-1,...}. Frees it.
client_exit_status complain_in(client_session *session, value *answer, client_exit_status status, const char *problem);

// Says what session->problem has: what the last call ended with.
client_exit_status complain_of_call(client_session *session, client_exit_status status);

// Prints something that is neither result nor error, such as progress, on standard error and for people only.
__attribute__((format(printf, 2, 3))) void remark(client_session *session, const char *format, ...);
