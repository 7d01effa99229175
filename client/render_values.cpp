#include <string.h>

#include "client/render.h"

static void print_bare(FILE *out, const value *shown) {
    switch (shown->kind) {
        case value_kind::NOTHING:
            break;
        case value_kind::BOOLEAN:
            fputs(shown->truth ? "true" : "false", out);
            break;
        case value_kind::SIGNED:
            fprintf(out, "%lld", static_cast<long long>(shown->number));
            break;
        case value_kind::UNSIGNED:
            fprintf(out, "%llu", static_cast<unsigned long long>(shown->natural));
            break;
        case value_kind::TEXT:
            fwrite(shown->text, 1, shown->length, out);
            break;
        case value_kind::LIST:
        case value_kind::OBJECT:
            return;
    }
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

static size_t print_field(FILE *out, const value *parent, const char *field) {
    size_t count = 0;
    for (const value *child = parent->first; child; child = child->next) {
        bool named = child->name && strcasecmp(child->name, field) == 0;
        if (child->readers == audience::PEOPLE)
            continue;
        if (named && is_scalar(child)) {
            print_bare(out, child);
            count++;
        } else {
            count += named ? print_everything(out, child) : print_field(out, child, field);
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
