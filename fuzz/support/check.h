// What a target asserts.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The entry of every target; libFuzzer's name.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// Ends the process, which is a crash for the fuzzer, with a line on standard error, unless `holds`.
void must(bool holds, const char *sentence);

// The same where there is no way on.
[[noreturn]] void fail(const char *sentence);

// Whether a NUL is among the first `size` characters.
void must_be_terminated(const char *text, size_t size, const char *what);
