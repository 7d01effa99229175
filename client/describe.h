// All about one operation, for people: what it takes and gives, an example, its names, what it touches. Everything
// comes from the tables; client/description.h has the same for programs.
//
// Writes to the given stream only.
#pragma once

#include <stdio.h>

#include "client/operations.h"

void print_operation_help(FILE *out, const procedure_row *row, bool colour);
