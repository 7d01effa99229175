// The page of all procedures, emitted from the tables: docs/procedures.md is this function's output.
//
// Writes to the given stream only, and the same bytes every time.
#pragma once

#include <stdio.h>

// Two tables: every name derived from a procedure's row in full, and what it touches.
void print_reference(FILE *out);
