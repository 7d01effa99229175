#include "simulator/preload/record_text.h"

#include <string.h>

#include "simulator/faults.h"

void put_text(char *field, size_t size, const char *text) {
    char value[FAULT_VALUE_SIZE];
    bool unterminated = fault_get(TEXTS_FAULT, value, sizeof value);
    size_t room = unterminated ? size : size - 1;
    size_t length = strnlen(text, room);
    memset(field, unterminated ? 'x' : '\0', size);
    memcpy(field, text, length);
}
