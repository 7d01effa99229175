// Texts that back ends give out. See the header.
#include "config/text.h"

#include <stdio.h>
#include <string.h>

void put_text(char *output, size_t size, const char *text) {
    snprintf(output, size, "%s", text);
}

void put_characters(char *output, size_t size, const char *text, size_t length) {
    length = strnlen(text, length);
    if (length > size - 1) {
        length = size - 1;
    }
    memcpy(output, text, length);
    output[length] = '\0';
}

void put_zeros(char *output, size_t size) {
    memset(output, 0, size < 4 ? size : 4);
}
