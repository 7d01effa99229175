#include <string.h>

#include "client/render.h"
#include "client/scalar.h"

// What could not be found out is an empty line.
static constexpr scalar_words BARE_WORDS = {"", "false", "true"};

static void print_bare(FILE *out, const value *shown) {
    if (shown->kind == value_kind::TEXT)
        fwrite(shown->text, 1, shown->length, out);
    else
        print_scalar(out, shown, &BARE_WORDS);
    putc('\n', out);
}

static size_t count_scalars(const value *parent) {
    size_t count = 0;
    for (const value *child = parent->first; child; child = child->next)
        if (child->readers != audience::PEOPLE)
            count += is_scalar(child) ? 1 : count_scalars(child);
    return count;
}

static size_t print_everything(FILE *out, const value *parent) {
    size_t count = 0;
    for (const value *child = parent->first; child; child = child->next) {
        if (child->readers == audience::PEOPLE)
            continue;
        if (is_scalar(child)) {
            print_bare(out, child);
            count++;
        } else {
            count += print_everything(out, child);
        }
    }
    return count;
}

// Where the names behind the first one begin, in "vaps.channel" for what is called vaps; "" for what is called as the
// last one, nullptr for what has another name.
static const char *names_behind(const char *field, const char *name) {
    size_t length = name ? strlen(name) : 0;
    if (!name || strncasecmp(field, name, length) != 0 || (field[length] && field[length] != '.'))
        return nullptr;
    return field[length] ? field + length + 1 : field + length;
}

static size_t print_field(FILE *out, const value *parent, const char *field) {
    size_t count = 0;
    for (const value *child = parent->first; child; child = child->next) {
        const char *behind = names_behind(field, child->name);
        if (child->readers == audience::PEOPLE)
            continue;
        if (!behind || *behind) {
            count += print_field(out, child, behind ? behind : field);
        } else if (is_scalar(child)) {
            print_bare(out, child);
            count++;
        } else {
            count += print_everything(out, child);
        }
    }
    return count;
}

size_t render_values(FILE *out, const value *object, const char *field) {
    if (field)
        return print_field(out, object, field);
    size_t count = count_scalars(object);
    return count == 1 ? print_everything(out, object) : count;
}
