#include "client/value.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "client/exit_status.h"

// Nothing useful can be said or undone without memory.
static void *allocated(void *memory) {
    if (memory)
        return memory;
    static const char problem[] = "out of memory\n";
    ssize_t written = write(STDERR_FILENO, problem, sizeof problem - 1);
    (void)written;
    _exit(EXIT_STATUS_LOCAL);
}

static value *new_value(value_kind kind) {
    value *made = static_cast<value *>(allocated(calloc(1, sizeof(value))));
    made->kind = kind;
    return made;
}

static char *copied(const char *text, size_t length) {
    char *copy = static_cast<char *>(allocated(malloc(length + 1)));
    memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

value *new_object(void) {
    return new_value(value_kind::OBJECT);
}

value *new_list(void) {
    return new_value(value_kind::LIST);
}

void free_value(value *root) {
    if (!root)
        return;
    for (value *child = root->first; child;) {
        value *next = child->next;
        free_value(child);
        child = next;
    }
    free(root->name);
    free(root->text);
    free(root);
}

value *add_value(value *to, const char *name, value *tree) {
    if (name)
        tree->name = copied(name, strlen(name));
    if (to->last)
        to->last->next = tree;
    else
        to->first = tree;
    to->last = tree;
    return tree;
}

static value *append(value *to, const char *name, value_kind kind) {
    return add_value(to, name, new_value(kind));
}

value *add_object(value *to, const char *name) {
    return append(to, name, value_kind::OBJECT);
}

value *add_list(value *to, const char *name) {
    return append(to, name, value_kind::LIST);
}

value *add_nothing(value *to, const char *name) {
    return append(to, name, value_kind::NOTHING);
}

value *add_boolean(value *to, const char *name, bool truth) {
    value *added = append(to, name, value_kind::BOOLEAN);
    added->truth = truth;
    return added;
}

value *add_number(value *to, const char *name, int64_t number) {
    value *added = append(to, name, value_kind::SIGNED);
    added->number = number;
    return added;
}

value *add_unsigned(value *to, const char *name, uint64_t natural) {
    value *added = append(to, name, value_kind::UNSIGNED);
    added->natural = natural;
    return added;
}

value *add_text(value *to, const char *name, const char *text, size_t length) {
    value *added = append(to, name, value_kind::TEXT);
    added->text = copied(text, length);
    added->length = length;
    return added;
}

value *add_string(value *to, const char *name, const char *text) {
    return add_text(to, name, text, strlen(text));
}

void begin_text(printed_text *printed) {
    *printed = {};
    printed->out = static_cast<FILE *>(allocated(open_memstream(&printed->text, &printed->length)));
}

value *add_printed(value *to, const char *name, printed_text *printed) {
    bool complete = !ferror(printed->out);
    complete = fclose(printed->out) == 0 && complete;
    value *added = append(to, name, value_kind::TEXT);
    added->text = static_cast<char *>(allocated(complete ? printed->text : nullptr));
    added->length = printed->length;
    return added;
}

value *add_mac(value *to, const char *name, const void *octets) {
    const unsigned char *octet = static_cast<const unsigned char *>(octets);
    char text[sizeof "28:6a:ba:4c:10:01"];
    int length = snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", octet[0], octet[1], octet[2], octet[3],
                          octet[4], octet[5]);
    return add_text(to, name, text, static_cast<size_t>(length));
}

const value *find_member(const value *object, const char *name) {
    if (object->kind != value_kind::OBJECT)
        return nullptr;
    for (const value *member = object->first; member; member = member->next)
        if (strcmp(member->name, name) == 0)
            return member;
    return nullptr;
}

bool is_scalar(const value *shown) {
    return shown->kind != value_kind::LIST && shown->kind != value_kind::OBJECT;
}

size_t count_values(const value *parent) {
    size_t count = 0;
    for (const value *child = parent->first; child; child = child->next)
        count++;
    return count;
}

static bool same_children(const value *one, const value *other) {
    const value *a = one->first;
    const value *b = other->first;
    for (; a && b; a = a->next, b = b->next) {
        bool same_name = !a->name || !b->name ? a->name == b->name : strcmp(a->name, b->name) == 0;
        if (!same_name || !same_value(a, b))
            return false;
    }
    return !a && !b;
}

bool same_value(const value *one, const value *other) {
    if (one->kind != other->kind)
        return false;
    switch (one->kind) {
        case value_kind::NOTHING:
            return true;
        case value_kind::BOOLEAN:
            return one->truth == other->truth;
        case value_kind::SIGNED:
            return one->number == other->number;
        case value_kind::UNSIGNED:
            return one->natural == other->natural;
        case value_kind::TEXT:
            return one->length == other->length && memcmp(one->text, other->text, one->length) == 0;
        case value_kind::LIST:
        case value_kind::OBJECT:
            return same_children(one, other);
    }
    return false;
}

value *add_copy(value *to, const char *name, const value *tree) {
    value *copy = append(to, name, tree->kind);
    copy->readers = tree->readers;
    copy->shown = tree->shown;
    copy->truth = tree->truth;
    copy->number = tree->number;
    copy->natural = tree->natural;
    if (tree->text) {
        copy->text = copied(tree->text, tree->length);
        copy->length = tree->length;
    }
    for (const value *child = tree->first; child; child = child->next)
        add_copy(copy, child->name, child);
    return copy;
}
