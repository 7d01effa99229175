// The lines that were typed into the shell, kept from one shell to the next.
//
// A file of lines, readable by its owner only: $XDG_STATE_HOME/vlk_wlan_config_history, or the same in ~/.local/state.
// Lines with secrets are never in it. A file that cannot be read or written is no error: there is no history then.
#pragma once

#include <stddef.h>

#include "client/words.h"

// As many lines as are remembered.
constexpr size_t HISTORY_LINES_MAX = 500;

// The file's path; false when there is no home or the path is too long.
bool history_path(char *path, size_t size);

// Whether a line may be written to a file: not when it carries out an operation with a secret among its arguments, nor
// when it may be one mistyped. `split` are its words.
bool may_be_kept(const line_words *split);

using line_function = void (*)(void *receiver, const char *line);

// Hands over the last lines of the file, the oldest first. Shortens a file that has grown to twice as many.
void load_history(const char *path, line_function take, void *receiver);

// Appends one line; makes the file and its folders when they are missing.
void keep_line(const char *path, const char *line);
