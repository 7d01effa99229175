// What the library's parts share: how a call goes on to whoever would have got it without the library.
#pragma once

// What the next library calls `name`: libc's function, or a sanitizer's in front of it.
void *next_function(const char *name);
