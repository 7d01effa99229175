// Reading a scenario's items: a line, its words, and the fields name=value among them.
//
// Touches nothing but the text it is given. What the items mean is in scenario.cpp; a new item is a function there,
// made of what is here.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simulator/scenario.h"

constexpr int MOST_WORDS = 20;         // the longest item has fewer
constexpr size_t LONGEST_LINE = 1024;  // a setting with key and value, and a margin

// A scenario being read, with the line that is being looked at.
struct scenario_reader {
    scenario *scene;
    const char *name;
    int line;
    int vap_line[SCENARIO_VAPS];  // where a VAP was declared, for what can only be judged at the end
    char *error;
    size_t error_size;
    char text[LONGEST_LINE + 1];  // the line
    char *words[MOST_WORDS];      // its words, pointing into text
    int word_count;
};

// Writes "file:line: message" into the reader's error. Always false, so that a parser can end with it.
bool complain(scenario_reader *reader, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Cuts the text into words at blanks; a part in double quotes keeps its blanks and loses its quotes. False after a
// complaint.
bool cut_words(scenario_reader *reader);

// How a field's value is read, and what its target points to.
enum field_kind {
    FIELD_MAC,      // char[MAC_TEXT_SIZE]
    FIELD_SSID,     // char[SSID_SIZE]
    FIELD_WORD,     // char[SCENARIO_WORD_SIZE], not empty
    FIELD_INTEGER,  // int
    FIELD_FLAG,     // bool, written 0 or 1
    FIELD_NUMBER,   // unsigned, in any base
    FIELD_SECONDS,  // double, a day at most
    FIELD_ADDRESS,  // char[16], an IPv4 address
    FIELD_COUNTER   // scenario_counter
};

struct field {
    const char *name;
    void *target;
    int64_t least, most;  // of integers and numbers
    field_kind kind;
    bool required;
    bool seen;
};

// The field that a word "name=value" stands for, null when it is none of these.
field *find_field(field *fields, int count, const char *word);

// Reads the value of a word into the field it stands for. False after a complaint.
bool read_field(scenario_reader *reader, field *wanted, const char *word);

// Reads the words from `first` on as fields, each at most once and the required ones at least once. False after a
// complaint.
bool read_fields(scenario_reader *reader, int first, field *fields, int count);

// Reads word number `position` as an integer in a range. False after a complaint.
bool read_position(scenario_reader *reader, int position, const char *what, int least, int most, int *number);

// Whether a word has the form name=value; complains when it has not.
bool is_assignment(scenario_reader *reader, const char *word);

// Copies a text with its NUL. False, and nothing copied, when it does not fit.
bool copy_text(const char *text, char *out, size_t size);

// Reads "0.5" or "2" as seconds, a day at most.
bool parse_seconds(const char *text, double *seconds);
