// The device event library as the unit tests need it: what it was told, instead of telling it. What it was told is a
// step too (tests/support/steps.h): "event TEXT".
#pragma once

#include <string>
#include <vector>

struct sent_event {
    int type;
    int level;
    int flags;
    std::string text;  // of the given length
    size_t text_end;   // where its NUL stands

    bool operator==(const sent_event &) const = default;
};

// Since the last look.
std::vector<sent_event> take_events();
