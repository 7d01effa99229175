#include "client/utf8.h"

#include <stdint.h>
#include <string.h>

// How many bytes follow a lead byte, the smallest number that needs as many, and how such a lead byte looks.
struct utf8_form {
    size_t following;
    uint32_t least;
    unsigned char mask;
    unsigned char lead;
};

static const utf8_form forms[] = {
    {0, 0, 0x80, 0x00},
    {1, 0x80, 0xe0, 0xc0},
    {2, 0x800, 0xf0, 0xe0},
    {3, 0x10000, 0xf8, 0xf0},
};

static bool is_character(uint32_t number, uint32_t least) {
    bool surrogate = number >= 0xd800 && number <= 0xdfff;
    return number >= least && number <= 0x10ffff && !surrogate;
}

// The character's number; `used` becomes its length in bytes, 0 when there is none.
static uint32_t decode(const char *text, size_t length, size_t *used) {
    *used = 0;
    if (length == 0)
        return 0;
    unsigned char lead = static_cast<unsigned char>(*text);
    for (const utf8_form &form : forms) {
        if ((lead & form.mask) != form.lead || length < form.following + 1)
            continue;
        uint32_t number = lead & static_cast<unsigned char>(~form.mask);
        for (size_t i = 1; i <= form.following; i++) {
            unsigned char next = static_cast<unsigned char>(text[i]);
            if ((next & 0xc0) != 0x80)
                return 0;
            number = number << 6 | (next & 0x3f);
        }
        *used = is_character(number, form.least) ? form.following + 1 : 0;
        return number;
    }
    return 0;
}

size_t utf8_length(const char *text, size_t length) {
    size_t used;
    decode(text, length, &used);
    return used;
}

bool is_utf8(const char *text, size_t length) {
    for (size_t used; length > 0; text += used, length -= used) {
        used = utf8_length(text, length);
        if (used == 0)
            return false;
    }
    return true;
}

bool is_control_character(const char *text, size_t length) {
    size_t used;
    uint32_t number = decode(text, length, &used);
    return used > 0 && (number < 0x20 || (number >= 0x7f && number < 0xa0));
}

void print_visible(FILE *out, const char *text) {
    size_t used;
    for (size_t left = strlen(text); left > 0; text += used, left -= used) {
        used = utf8_length(text, left);
        bool visible = used > 0 && !is_control_character(text, left);
        used = used ? used : 1;
        if (visible)
            fwrite(text, 1, used, out);
        for (size_t i = 0; !visible && i < used; i++)
            fprintf(out, "\\x%02x", static_cast<unsigned char>(text[i]));
    }
}
