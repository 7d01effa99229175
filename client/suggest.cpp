#include "client/suggest.h"

#include <ctype.h>
#include <stdio.h>
#include <string.h>

#include "client/session.h"

bool fold_word(const char *word, char folded[SUGGESTION_SIZE]) {
    size_t length = 0;
    for (; *word; word++) {
        if (*word == '_' || *word == '-')
            continue;
        if (length + 1 == SUGGESTION_SIZE)
            return false;
        folded[length++] = static_cast<char>(tolower(static_cast<unsigned char>(*word)));
    }
    folded[length] = '\0';
    return true;
}

static size_t smaller(size_t a, size_t b) {
    return a < b ? a : b;
}

// How many characters have to be inserted, removed, replaced or swapped with their neighbour to get from one word to
// the other. Both fit a suggestion.
static size_t edit_distance(const char *from, const char *to) {
    // From the part of `from` read so far, without its last character and without its last two, to each beginning of
    // `to`.
    size_t rows[3][SUGGESTION_SIZE] = {};
    size_t to_length = strlen(to);
    for (size_t i = 0; i <= to_length; i++)
        rows[0][i] = i;
    size_t read = 0;
    for (; from[read]; read++) {
        const size_t *one_less = rows[read % 3], *two_less = rows[(read + 2) % 3];
        size_t *here = rows[(read + 1) % 3];
        here[0] = read + 1;
        for (size_t i = 1; i <= to_length; i++) {
            here[i] = smaller(one_less[i - 1] + (from[read] != to[i - 1]), smaller(one_less[i], here[i - 1]) + 1);
            if (read > 0 && i > 1 && from[read] == to[i - 2] && from[read - 1] == to[i - 1])
                here[i] = smaller(here[i], two_less[i - 2] + 1);
        }
    }
    return rows[read % 3][to_length];
}

// A slip of the fingers: one character in four, but two in short words and never more than half of the word.
static size_t tolerated_distance(size_t length) {
    size_t tolerated = length / 4 > 2 ? length / 4 : 2;
    return smaller(tolerated, length / 2);
}

// Shorter words are part of too many names to say anything.
constexpr size_t TELLING_LENGTH = 3;

size_t slip_distance(const char *wanted, const char *candidate) {
    size_t length = strlen(wanted);
    if (length >= SUGGESTION_SIZE || strlen(candidate) >= SUGGESTION_SIZE)
        return TOO_FAR;
    size_t distance = edit_distance(wanted, candidate);
    if (distance <= tolerated_distance(length))
        return distance;
    // Further than any slip, since those have been told apart above.
    return length >= TELLING_LENGTH && strstr(candidate, wanted) ? distance : TOO_FAR;
}

static bool is_there(const suggestions *found, const char *word) {
    for (size_t i = 0; i < found->count; i++)
        if (strcmp(found->words[i], word) == 0)
            return true;
    return false;
}

void add_suggestion(suggestions *found, size_t distance, const char *word) {
    size_t place = found->count;
    while (place > 0 && distance < found->distances[place - 1])
        place--;
    if (distance == TOO_FAR || place == SUGGESTIONS_MAX || strlen(word) >= SUGGESTION_SIZE || is_there(found, word))
        return;
    found->count += found->count < SUGGESTIONS_MAX;
    for (size_t last = found->count - 1; last > place; last--) {
        found->distances[last] = found->distances[last - 1];
        memcpy(found->words[last], found->words[last - 1], SUGGESTION_SIZE);
    }
    found->distances[place] = distance;
    snprintf(found->words[place], SUGGESTION_SIZE, "%s", word);
}

void consider(suggestions *found, const char *wanted, const char *candidate) {
    char wanted_key[SUGGESTION_SIZE] = "", key[SUGGESTION_SIZE] = "";
    if (fold_word(wanted, wanted_key) && fold_word(candidate, key))
        add_suggestion(found, slip_distance(wanted_key, key), candidate);
}

client_exit_status complain_with_suggestions(client_session *session, client_exit_status status, const char *problem,
                                             const suggestions *found) {
    if (found->count == 0)
        return complain(session, status, "%s", problem);
    value *answer = new_answer(session);
    value *meant = add_list(answer, "suggestions");
    for (size_t i = 0; i < found->count; i++)
        add_string(meant, nullptr, found->words[i]);
    complain_in(session, answer, status, problem);
    for (size_t i = 0; i < found->count; i++)
        remark(session, "%s%s%s", i == 0 ? "Did you mean " : ", ", found->words[i], i + 1 == found->count ? "?\n" : "");
    return status;
}
