// What a command has to say, before it is known whether people or programs read it: a tree of named values.
//
// An object has members with names, a list has elements without. Whoever makes a tree frees its root. Texts and names
// are copied. When memory runs out the program ends with EXIT_STATUS_LOCAL and a line on standard error. Not
// thread-safe; different trees are independent.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

enum class value_kind { NOTHING, BOOLEAN, SIGNED, UNSIGNED, TEXT, LIST, OBJECT };

// Programs get every fact; people get what fits a line and means something to them, and drawings.
enum class audience { EVERYONE, PROGRAMS, PEOPLE };

// How a value is shown on a terminal with colours.
enum class emphasis { NONE, GOOD, WARNING, BAD, FAINT };

struct value {
    value_kind kind;
    audience readers;
    emphasis shown;
    char *name;        // of a member, else nullptr
    bool truth;        // of BOOLEAN
    int64_t number;    // of SIGNED
    uint64_t natural;  // of UNSIGNED
    char *text;        // of TEXT, with a NUL behind it
    size_t length;     // of TEXT, without that NUL
    value *first;      // of LIST and OBJECT
    value *last;
    value *next;  // the member or element behind this one
};

value *new_object(void);
value *new_list(void);
void free_value(value *root);

// Append to an object under a name, or to a list with nullptr for the name. Return what was appended, so that its
// readers and its emphasis can be set.
value *add_object(value *to, const char *name);
value *add_list(value *to, const char *name);
value *add_nothing(value *to, const char *name);
value *add_boolean(value *to, const char *name, bool truth);
value *add_number(value *to, const char *name, int64_t number);
value *add_unsigned(value *to, const char *name, uint64_t natural);
// The first `length` characters, which need not be UTF-8.
value *add_text(value *to, const char *name, const char *text, size_t length);
// A text with a NUL.
value *add_string(value *to, const char *name, const char *text);
// A text that is printed: it is what stands in `out` when it is added.
struct printed_text {
    FILE *out;
    char *text;
    size_t length;
};
void begin_text(printed_text *printed);
value *add_printed(value *to, const char *name, printed_text *printed);
// Six octets as 28:6a:ba:4c:10:01.
value *add_mac(value *to, const char *name, const void *octets);
// An existing tree as a member or element; `to` owns it from now on.
value *add_value(value *to, const char *name, value *tree);

// The member with this name, nullptr when there is none or when `object` is none.
const value *find_member(const value *object, const char *name);

// Neither a list nor an object.
bool is_scalar(const value *shown);

// How many members or elements.
size_t count_values(const value *parent);

// Whether both are of the same kind and content, names aside. Members have to stand in the same order.
bool same_value(const value *one, const value *other);

// A copy of a whole tree as a member or element under this name.
value *add_copy(value *to, const char *name, const value *tree);
