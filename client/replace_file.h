// Files that others read at any moment: written beside their place and put there in one step, so that nobody ever sees
// half of one.
//
// Touches the file and, until it is complete, one beside it whose name begins with a dot and ends with six random
// characters. Of a link that leads to a file, that file is replaced. What is no ordinary file, such as a device or a
// pipe, is written to as it is and never replaced.
#pragma once

#include <limits.h>
#include <stdio.h>
#include <sys/types.h>

struct replaced_file {
    FILE *stream;  // to be written to in between
    bool in_place;
    char target[PATH_MAX];  // behind all links
    char temporary[PATH_MAX];
};

// Readable for everybody: whoever collects the file is another user than who writes it.
constexpr mode_t READABLE_FOR_ALL = 0644;
// For what has secrets in it.
constexpr mode_t PRIVATE = 0600;

// The new file has this mode, whatever the old one had. False with errno set when it cannot be made; nothing is there
// then.
bool begin_replacing(replaced_file *file, const char *path, mode_t mode);

// Puts it into its place. False with errno set when it could not be written completely: then the old file is as it was.
bool end_replacing(replaced_file *file);
