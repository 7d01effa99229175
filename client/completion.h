// Completion: what the last word of a command line can become.
//
// Everything follows from the tables that the client is made of. Offline but for the SSIDs beside the indices of VAPs,
// which are asked for in a process of their own for one second at most. Never says that something is wrong.
#pragma once

#include "client/command_table.h"
#include "client/words.h"

// The words behind the program's name, the last of which is to be completed; `count` may be 0. {"candidates":[{"word":
// ...,"description":...}],"files":...,"hint":...}: `files` is what stands before a file name that is wanted (mostly
// ""), null when none is; `hint` says what has to be typed where nothing can be completed, null otherwise. The caller
// owns it.
value *complete_words(client_session *session, size_t count, char *const *words);

// The same for a line that was split as far as its end: with the program's name when that stands before it.
value *complete_line(client_session *session, const line_words *split);

// __complete WORD...: the candidates for the last word, a line each with its description behind a TAB. A line that
// begins with a TAB is none: "\tfiles\tPREFIX" wants file names, each behind PREFIX, and "\thint\tTEXT" says what is
// wanted.
client_exit_status run_complete(client_session *session, const command_line *line);

// __complete_line LINE: the same for a line as it was typed into a shell, up to the cursor.
client_exit_status run_complete_line(client_session *session, const command_line *line);
