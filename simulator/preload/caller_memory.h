// What a caller's request points to, read and written through a pipe: the kernel then says which addresses are not the
// caller's, where a plain access would end him.
//
// Any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Moves bytes from one place to another, either of which may be none of the caller's. 0 or an error number. The size is
// one that a pipe holds at once: 65536.
int move_bytes(const void *from, void *to, size_t size);

// The place that a 32-bit address and an offset lead to.
void *caller_place(uint32_t address, uint64_t offset);
