// Files that others read at any moment: written beside their place and put there in one step, so that nobody ever sees
// half of one.
//
// Touches the file and, until it is complete, one beside it whose name begins with a dot and ends with six random
// characters. The file is readable for everybody and writable for its owner, whatever it was before.
#pragma once

#include <limits.h>
#include <stdio.h>

struct replaced_file {
    FILE *stream;  // to be written to in between
    const char *path;
    char temporary[PATH_MAX];
};

// False with errno set when it cannot be made; nothing is there then. The path has to live until the end.
bool begin_replacing(replaced_file *file, const char *path);

// Puts it into its place. False with errno set when it could not be written completely: then the old file is as it was.
bool end_replacing(replaced_file *file);
