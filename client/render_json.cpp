#include <string.h>

#include "client/render.h"
#include "client/scalar.h"
#include "client/utf8.h"

constexpr int INDENTATION = 2;
constexpr int ON_ONE_LINE = -1;

static constexpr scalar_words JSON_WORDS = {"null", "false", "true"};

static void print_json_escape(FILE *out, char c) {
    switch (c) {
        case '"':
        case '\\':
            fprintf(out, "\\%c", c);
            break;
        case '\n':
            fputs("\\n", out);
            break;
        case '\t':
            fputs("\\t", out);
            break;
        default:
            fprintf(out, "\\u%04x", static_cast<unsigned char>(c));
    }
}

static void print_json_text(FILE *out, const char *text, size_t length) {
    putc('"', out);
    while (length > 0) {
        size_t used = utf8_length(text, length);
        if (used == 0)
            fputs("\\ufffd", out);
        else if (used == 1 &&
                 (static_cast<unsigned char>(*text) < 0x20 || *text == '"' || *text == '\\' || *text == 0x7f))
            print_json_escape(out, *text);
        else
            fwrite(text, 1, used, out);
        used = used ? used : 1;
        text += used;
        length -= used;
    }
    putc('"', out);
}

static void print_hex(FILE *out, const char *bytes, size_t length) {
    putc('"', out);
    for (size_t i = 0; i < length; i++)
        fprintf(out, "%02x", static_cast<unsigned char>(bytes[i]));
    putc('"', out);
}

// To the next line of a document, indented by so many levels.
static void print_break(FILE *out, int level) {
    if (level != ON_ONE_LINE)
        fprintf(out, "\n%*s", level * INDENTATION, "");
}

static void print_name(FILE *out, const char *name, const char *ending, int level) {
    putc('"', out);
    fputs(name, out);  // names are our own words
    fprintf(out, "%s\":%s", ending, level == ON_ONE_LINE ? "" : " ");
}

static void print_json(FILE *out, const value *shown, int level);

static int deeper(int level) {
    return level == ON_ONE_LINE ? level : level + 1;
}

static void print_member(FILE *out, const value *member, int level) {
    if (member->name)
        print_name(out, member->name, "", level);
    print_json(out, member, level);
    if (!member->name || member->kind != value_kind::TEXT || is_utf8(member->text, member->length))
        return;
    putc(',', out);
    print_break(out, level);
    print_name(out, member->name, "_hex", level);
    print_hex(out, member->text, member->length);
}

static void print_children(FILE *out, const value *parent, const char *brackets, int level) {
    putc(brackets[0], out);
    bool any = false;
    for (const value *child = parent->first; child; child = child->next) {
        if (child->readers == audience::PEOPLE)
            continue;
        fputs(any ? "," : "", out);
        print_break(out, deeper(level));
        print_member(out, child, deeper(level));
        any = true;
    }
    if (any)
        print_break(out, level);
    putc(brackets[1], out);
}

static void print_json(FILE *out, const value *shown, int level) {
    switch (shown->kind) {
        case value_kind::NOTHING:
        case value_kind::BOOLEAN:
        case value_kind::SIGNED:
        case value_kind::UNSIGNED:
            print_scalar(out, shown, &JSON_WORDS);
            break;
        case value_kind::TEXT:
            print_json_text(out, shown->text, shown->length);
            break;
        case value_kind::LIST:
            print_children(out, shown, "[]", level);
            break;
        case value_kind::OBJECT:
            print_children(out, shown, "{}", level);
            break;
    }
}

void render_json(FILE *out, const value *tree) {
    print_json(out, tree, ON_ONE_LINE);
    putc('\n', out);
}

void render_json_document(FILE *out, const value *tree) {
    print_json(out, tree, 0);
    putc('\n', out);
}
