// One operation as an object for programs: the members of `describe` and `list` in JSON.
#pragma once

#include "client/operations.h"
#include "client/value.h"

// All that the tables know about it. The caller owns the object.
value *described_operation(const procedure_row *row);

// What the example may have as its result: the examples of the outputs, empty where there are none. The caller owns it;
// nullptr where the result is a record or a list.
value *example_result(const procedure_row *row);
