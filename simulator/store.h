// The driver's store as its own tool sees it: the file as a whole, read, changed and written back. Other files that
// are made of lines KEY=VALUE are handled by the same functions.
//
// Touches the file it is given. The tool `cfg`, the launcher (which lays the first store down) and the simulated
// driver use it. Format of a store: a 4-byte header, lines KEY=VALUE with LF, 4 zero bytes. What follows the first zero
// byte behind the header is not content: a rewritten store may be shorter than the file.
#pragma once

#include <stddef.h>

constexpr const char STORE_HEADER[] = "CFG\n";
constexpr size_t STORE_HEADER_LENGTH = 4;
constexpr size_t STORE_END_LENGTH = 4;

// The lines of a store, each with its LF, on the heap.
struct store_text {
    char *text;
    size_t length;
};

// Reads a store file. A missing one, or one without a whole header, is an empty store. Returns 0, or -1 with errno;
// the text is the caller's to free with store_free in both cases.
int store_load(const char *path, store_text *store);

// Writes header, lines and end beside the file and renames it there: readers see the old or the new store, never
// a part. Returns 0, or -1 with errno.
int store_save(const char *path, const store_text *store);

void store_free(store_text *store);

// The same for a plain file of lines KEY=VALUE, without header and end. For lines_load a file that is not there is a
// failure like any other.
int lines_load(const char *path, store_text *lines);
int lines_save(const char *path, const store_text *lines);

// The value of a key's first line and its length, null when the key is not there. It points into the store.
const char *store_find(const store_text *store, const char *key, size_t *length);

// Copies the value of a key in the store file into value, cut to size - 1; empty and false when it is not there.
bool store_value(const char *path, const char *key, char *value, size_t size);

// Replaces a key's first line in its place, or appends a line; further lines of the key go away, because the newest
// value has to win. Returns 0, or -1 when memory ran out.
int store_set(store_text *store, const char *key, const char *value);

// Removes all lines of a key. True when there was one.
bool store_remove(store_text *store, const char *key);

// Settles duplicates: the last value of a key wins, at the place of its first line. Lines that are no KEY=VALUE go.
void store_settle(store_text *store);

// Takes the exclusive record lock around the store, waiting for it. Returns the descriptor whose closing gives it
// back, or -1 with errno.
int store_lock(const char *lock_path);

// Name of a key at a store index: the bare name for 1 and below, name_i from 2 on.
void store_key(const char *name, int index, char *key, size_t size);
