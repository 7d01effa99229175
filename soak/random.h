// Numbers that follow from a seed alone, the same on every machine.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct random_source {
    uint64_t state;
};

// One of several sources of the same seed, each with a sequence of its own.
inline random_source random_source_of(uint64_t seed, uint64_t number) {
    return {seed * 0x9E3779B97F4A7C15u + number * 0xD1B54A32D192ED03u};
}

// The next number; the function is SplitMix64.
inline uint64_t next_number(random_source *source) {
    uint64_t word = source->state += 0x9E3779B97F4A7C15u;
    word = (word ^ (word >> 30)) * 0xBF58476D1CE4E5B9u;
    word = (word ^ (word >> 27)) * 0x94D049BB133111EBu;
    return word ^ (word >> 31);
}

// The next number below a limit, which is not 0.
inline size_t next_below(random_source *source, size_t limit) {
    return next_number(source) % limit;
}

// The next number from least to most.
inline double next_between(random_source *source, double least, double most) {
    constexpr double LARGEST = 1u << 31;
    return least + (most - least) * static_cast<double>(next_number(source) >> 33) / LARGEST;
}

inline bool next_is_one_in(random_source *source, size_t limit) {
    return next_below(source, limit) == 0;
}

// Shuffles a vector.
template <typename List>
void shuffle(List *list, random_source *source) {
    for (size_t left = list->size(); left > 1; left--) {
        size_t other = next_below(source, left);
        auto kept = (*list)[left - 1];
        (*list)[left - 1] = (*list)[other];
        (*list)[other] = kept;
    }
}
