// The sequences that a terminal understands as colours and as bold.
//
// Each is "" where there are no colours. Constant texts.
#pragma once

#include "client/value.h"

// Begin and end a value; "" for NONE too.
const char *emphasis_begin(emphasis shown, bool colour);
const char *emphasis_end(emphasis shown, bool colour);

// Begin and end a heading, which is bold.
const char *heading_begin(bool colour);
const char *heading_end(bool colour);
