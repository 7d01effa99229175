// Texts in the records that the driver fills.
//
// Any thread.
#pragma once

#include <stddef.h>

// Writes a text into a field of a record: cut to its size and ended by a NUL, zeros behind it. With the fault of the
// texts it has no NUL, and letters "x" behind it to the field's last byte.
void put_text(char *field, size_t size, const char *text);
