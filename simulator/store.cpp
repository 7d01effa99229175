#include "simulator/store.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// Reads the rest of a file onto the heap, with a NUL behind it. Null with errno on failure.
static char *read_whole(int file, size_t *length) {
    struct stat status;
    if (fstat(file, &status) != 0)
        return nullptr;
    size_t size = (size_t)status.st_size;
    char *content = (char *)malloc(size + 1);
    if (content == nullptr)
        return nullptr;
    size_t have = 0;
    while (have < size) {
        ssize_t got = read(file, content + have, size - have);
        if (got < 0) {
            free(content);
            return nullptr;
        }
        if (got == 0)
            break;
        have += (size_t)got;
    }
    content[have] = '\0';
    *length = have;
    return content;
}

// Keeps the lines of a text: up to the first zero byte.
static int take_lines(const char *lines, size_t length, store_text *store) {
    size_t size = strnlen(lines, length);
    store->text = (char *)malloc(size + 1);
    if (store->text == nullptr)
        return -1;
    memcpy(store->text, lines, size);
    // A last line without LF would run into the next one that is appended.
    if (size > 0 && lines[size - 1] != '\n')
        store->text[size++] = '\n';
    store->length = size;
    return 0;
}

// Reads the lines that stand behind a header of this length; a file without a whole header has none.
static int load(const char *path, size_t header_length, store_text *store) {
    store->text = nullptr;
    store->length = 0;
    int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return -1;
    size_t length = 0;
    char *content = read_whole(file, &length);
    close(file);
    if (content == nullptr)
        return -1;
    int result = length < header_length ? 0 : take_lines(content + header_length, length - header_length, store);
    free(content);
    return result;
}

int store_load(const char *path, store_text *store) {
    return load(path, STORE_HEADER_LENGTH, store) == 0 || errno == ENOENT ? 0 : -1;
}

int lines_load(const char *path, store_text *lines) {
    return load(path, 0, lines);
}

static bool write_whole(int file, const char *bytes, size_t length) {
    while (length > 0) {
        ssize_t written = write(file, bytes, length);
        if (written < 0)
            return false;
        bytes += written;
        length -= (size_t)written;
    }
    return true;
}

static int save(const char *path, const char *header, const store_text *store, size_t end_length) {
    static const char end[STORE_END_LENGTH] = {0, 0, 0, 0};
    char beside[PATH_MAX];
    snprintf(beside, sizeof beside, "%s.new", path);
    int file = open(beside, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return -1;
    bool written = write_whole(file, header, strlen(header)) && write_whole(file, store->text, store->length) &&
                   write_whole(file, end, end_length);
    if (close(file) != 0 || !written)
        return -1;
    return rename(beside, path);
}

int store_save(const char *path, const store_text *store) {
    return save(path, STORE_HEADER, store, STORE_END_LENGTH);
}

int lines_save(const char *path, const store_text *lines) {
    return save(path, "", lines, 0);
}

void store_free(store_text *store) {
    free(store->text);
    store->text = nullptr;
    store->length = 0;
}

// Offset of the line behind the one at `start`.
static size_t next_line(const store_text *store, size_t start) {
    const char *end = (const char *)memchr(store->text + start, '\n', store->length - start);
    return end != nullptr ? (size_t)(end - store->text) + 1 : store->length;
}

static bool has_key(const store_text *store, size_t start, const char *key, size_t key_length) {
    return store->length - start > key_length && memcmp(store->text + start, key, key_length) == 0 &&
           store->text[start + key_length] == '=';
}

// Offset of a key's first line at or behind `start`, or the store's length.
static size_t find_line(const store_text *store, size_t start, const char *key, size_t key_length) {
    while (start < store->length && !has_key(store, start, key, key_length))
        start = next_line(store, start);
    return start;
}

static void cut_out(store_text *store, size_t from, size_t to) {
    memmove(store->text + from, store->text + to, store->length - to);
    store->length -= to - from;
}

const char *store_find(const store_text *store, const char *key, size_t *length) {
    size_t key_length = strlen(key);
    size_t start = find_line(store, 0, key, key_length);
    if (start >= store->length)
        return nullptr;
    const char *value = store->text + start + key_length + 1;
    *length = (size_t)(store->text + next_line(store, start) - value) - 1;
    return value;
}

bool store_value(const char *path, const char *key, char *value, size_t size) {
    store_text store;
    value[0] = '\0';
    size_t length = 0;
    const char *found = store_load(path, &store) == 0 ? store_find(&store, key, &length) : nullptr;
    if (found != nullptr) {
        length = length < size - 1 ? length : size - 1;
        memcpy(value, found, length);
        value[length] = '\0';
    }
    store_free(&store);
    return found != nullptr;
}

// Puts `length` bytes in the place of those from `from` to `to`.
static int replace(store_text *store, size_t from, size_t to, const char *bytes, size_t length) {
    size_t size = store->length - (to - from) + length;
    if (size > store->length) {
        char *grown = (char *)realloc(store->text, size);
        if (grown == nullptr)
            return -1;
        store->text = grown;
    }
    if (store->length > to)
        memmove(store->text + from + length, store->text + to, store->length - to);
    memcpy(store->text + from, bytes, length);
    store->length = size;
    return 0;
}

static void remove_lines(store_text *store, size_t start, const char *key, size_t key_length) {
    while ((start = find_line(store, start, key, key_length)) < store->length)
        cut_out(store, start, next_line(store, start));
}

int store_set(store_text *store, const char *key, const char *value) {
    size_t key_length = strlen(key);
    size_t start = find_line(store, 0, key, key_length);
    size_t end = start < store->length ? next_line(store, start) : start;
    char *line = nullptr;
    int line_length = asprintf(&line, "%s=%s\n", key, value);
    if (line_length < 0)
        return -1;
    int result = replace(store, start, end, line, (size_t)line_length);
    free(line);
    if (result == 0)
        remove_lines(store, start + (size_t)line_length, key, key_length);
    return result;
}

bool store_remove(store_text *store, const char *key) {
    size_t before = store->length;
    remove_lines(store, 0, key, strlen(key));
    return store->length != before;
}

// Length of the key of the line at `start`, 0 when the line has none.
static size_t key_length_at(const store_text *store, size_t start) {
    size_t line = next_line(store, start) - start;
    const char *equals = (const char *)memchr(store->text + start, '=', line);
    return equals != nullptr ? (size_t)(equals - (store->text + start)) : 0;
}

// Gives the line at `start` the value of the last line of its key and removes the lines in between.
static void settle_line(store_text *store, size_t start, size_t key_length) {
    const char *key = store->text + start;
    size_t end = next_line(store, start);
    size_t again = find_line(store, end, key, key_length);
    while (again < store->length) {
        // The later line takes the place of the earlier one; everything in between keeps its order.
        size_t again_end = next_line(store, again);
        char *line = strndup(store->text + again, again_end - again);
        if (line == nullptr)
            return;
        size_t line_length = again_end - again;
        cut_out(store, again, again_end);
        int replaced = replace(store, start, end, line, line_length);
        free(line);
        if (replaced != 0)
            return;
        key = store->text + start;
        end = start + line_length;
        again = find_line(store, end, key, key_length);
    }
}

void store_settle(store_text *store) {
    size_t start = 0;
    while (start < store->length) {
        size_t key_length = key_length_at(store, start);
        if (key_length == 0) {
            cut_out(store, start, next_line(store, start));
            continue;
        }
        settle_line(store, start, key_length);
        start = next_line(store, start);
    }
}

int store_lock(const char *lock_path) {
    int file = open(lock_path, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0)
        return -1;
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    while (fcntl(file, F_SETLKW, &whole) != 0) {
        if (errno == EINTR)
            continue;
        close(file);
        return -1;
    }
    return file;
}

void store_key(const char *name, int index, char *key, size_t size) {
    if (index < 2)
        snprintf(key, size, "%s", name);
    else
        snprintf(key, size, "%s_%d", name, index);
}
