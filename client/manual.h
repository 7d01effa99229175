// The client's manual page, in mdoc, made from its tables of commands, options and exit statuses.
//
// Writes to the given stream only.
#pragma once

#include <stdio.h>

void print_manual(FILE *out);

// A text of a table as mdoc: each sentence begins a line, an empty line a paragraph, and lines that begin with a blank
// are shown as they stand.
void print_manual_text(FILE *out, const char *text);
