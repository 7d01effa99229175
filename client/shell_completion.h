// Completion of the line that is being typed into the shell.
//
// Changes the editor's line, and shows candidates on its terminal. Reads folders for the names of files; asks the
// server for the names of networks.
#pragma once

#include <histedit.h>

#include "client/session.h"

// What a key that completes is bound to, besides the session: libedit's CC_ number for what has to be drawn again.
unsigned char complete_typed_line(EditLine *editor, const client_session *session);
