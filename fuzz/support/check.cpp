// What a target asserts. See the header.
#include "fuzz/support/check.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

void fail(const char *sentence) {
    fprintf(stderr, "does not hold: %s\n", sentence);
    abort();
}

void must(bool holds, const char *sentence) {
    if (!holds) {
        fail(sentence);
    }
}

void must_be_terminated(const char *text, size_t size, const char *what) {
    if (!memchr(text, '\0', size)) {
        fprintf(stderr, "does not hold: %s is terminated\n", what);
        abort();
    }
}
