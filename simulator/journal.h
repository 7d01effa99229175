// The journal: what was done to the gateway, one line an event, in the order in which it was begun.
//
// Touches /run/gateway/journal. Each event is one write under O_APPEND, so lines of different processes and threads
// never mix. Where there is no journal (outside the gateway) events are dropped without a word. Any thread may call;
// texts of any length are put together on the heap because the server's workers have small stacks.
//
// In every line a backslash is written "\\" and a control byte "\n", "\r", "\t" or "\xNN", so a line is one event and
// its text can be got back exactly.
#pragma once

#include <stddef.h>

// "popen TEXT" and "system TEXT": a shell command as it was handed over.
void journal_shell(const char *door, const char *command);

// "read KEY": a setting was looked up in the store; what follows the first "=" of the search key is not shown.
void journal_read(const char *search_key);

// "file read PATH" and "file write PATH": the server opened a file of its own accord.
void journal_file(const char *purpose, const char *path);

// "run TOOL ARG...": a tool was started. An argument that is not made of plain characters only stands in double
// quotes, with \" for a quote inside.
void journal_run(const char *tool, int argument_count, char *const *arguments);

// "ioctl athN 0x8be7 5104 = 0", or "= -1 ENODEV" when error is not 0. A command that is not 0 stands behind the
// request: "0x89fc.41".
void journal_ioctl(const char *interface, unsigned long request, unsigned command, unsigned length, int result,
                   int error);

// "datagram NAME TEXT": a daemon received a datagram, `have` bytes of `length`; what is cut has " of LENGTH bytes"
// behind it. The text is quoted like an argument; the NUL that ends it is not shown, and where there is none it is said
// (" without NUL").
void journal_datagram(const char *name, const char *bytes, size_t have, size_t length);
