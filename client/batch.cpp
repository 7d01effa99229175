#include "client/batch.h"

#include <errno.h>
#include <string.h>

#include "client/commands.h"

enum class read_outcome { LINE, END, TOO_LONG, NO_TEXT, UNREADABLE };

// A line as it is read: one character more than fits, so that a line that is too long is seen to be.
struct read_line {
    size_t length;
    char text[LINE_LENGTH_MAX + 2];
};

// The rest of a line that is too long is read and forgotten, so that the next line is one.
static read_outcome read_one(FILE *in, read_line *line) {
    bool any = false, has_nul = false;
    line->length = 0;
    for (int c; (c = getc_unlocked(in)) != EOF && c != '\n';) {
        any = true;
        has_nul = has_nul || c == '\0';
        if (has_nul)
            return read_outcome::NO_TEXT;
        if (line->length <= LINE_LENGTH_MAX)
            line->text[line->length++] = static_cast<char>(c);
    }
    line->text[line->length] = '\0';
    if (ferror(in))
        return read_outcome::UNREADABLE;
    if (feof(in) && !any)
        return read_outcome::END;
    return line->length > LINE_LENGTH_MAX ? read_outcome::TOO_LONG : read_outcome::LINE;
}

static void echo_line(client_session *session, const char *text) {
    if (session->settings.format == output_format::JSON)
        session->origin.text = text;
    else
        fprintf(session->out, "+ %s\n", text);
}

bool says_end(const line_words *split) {
    return split->count == 1 && (strcmp(split->words[0], "exit") == 0 || strcmp(split->words[0], "quit") == 0);
}

// One line that is in `line`. True in `ended` when it is one that ends the batch.
static client_exit_status carry_out(client_session *session, const read_line *line, const batch_options *options,
                                    bool *ended) {
    line_words split;
    char problem[PROBLEM_SIZE];
    bool is_split = split_line(line->text, line->length, &split, problem);
    if (is_split && split.count == 0)
        return EXIT_STATUS_SUCCESS;
    *ended = is_split && options->ends_early && says_end(&split);
    if (*ended)
        return EXIT_STATUS_SUCCESS;
    if (options->echo)
        echo_line(session, line->text);
    client_exit_status status =
        is_split ? run_line(session, split.count, split.words) : complain(session, EXIT_STATUS_USAGE, "%s", problem);
    fflush(session->out);
    return status;
}

static client_exit_status complain_of_reading(client_session *session, read_outcome outcome) {
    if (outcome == read_outcome::UNREADABLE)
        return complain(session, EXIT_STATUS_LOCAL, "cannot be read: %s", strerror(errno));
    return complain(session, EXIT_STATUS_LOCAL, "is no text: there is a NUL in it");
}

// One line's words in a session of their own, so that nothing of it stays for the next.
static client_exit_status run_one(client_session *session, const read_line *line, read_outcome outcome,
                                  const batch_options *options, bool *ended) {
    switch (outcome) {
        case read_outcome::LINE:
            return carry_out(session, line, options, ended);
        case read_outcome::TOO_LONG:
            return complain(session, EXIT_STATUS_USAGE, "the line is longer than %zu bytes", LINE_LENGTH_MAX);
        case read_outcome::END:
            *ended = true;
            return EXIT_STATUS_SUCCESS;
        case read_outcome::NO_TEXT:
        case read_outcome::UNREADABLE:
            *ended = true;
            return complain_of_reading(session, outcome);
    }
    return EXIT_STATUS_LOCAL;
}

client_exit_status run_lines(client_session *session, FILE *in, const char *name, const batch_options *options) {
    client_exit_status first_failure = EXIT_STATUS_SUCCESS;
    bool ended = false;
    for (size_t number = 1; !ended && !ferror(session->out); number++) {
        read_line line;
        read_outcome outcome = read_one(in, &line);
        client_session one = *session;
        one.speaker = nullptr;
        one.origin = {line_source::BATCH, name, number, nullptr};
        if (in == stdin)
            one.input_taken = "the lines come from there";
        client_exit_status status = run_one(&one, &line, outcome, options, &ended);
        if (first_failure == EXIT_STATUS_SUCCESS)
            first_failure = status;
        if (status == EXIT_STATUS_SUCCESS || options->keep_going || ended)
            continue;
        remark(session, "%s:%zu: stopped here; the lines behind it were not sent\n", name, number);
        break;
    }
    return first_failure;
}

client_exit_status run_batch(client_session *session, const command_line *line) {
    const char *file = line->word_count == 0 ? "-" : line->words[0];
    bool from_file = strcmp(file, "-") != 0;
    if (session->origin.source == line_source::BATCH)
        return complain(session, EXIT_STATUS_USAGE, "a batch within a batch is refused");
    if (!from_file && session->origin.source == line_source::SHELL)
        return complain(session, EXIT_STATUS_USAGE, "lines already come from standard input");
    if (!from_file && session->input_taken)
        return complain(session, EXIT_STATUS_USAGE, "standard input cannot be read: %s", session->input_taken);
    const batch_options options = {option_value(line, "keep-going") != nullptr, option_value(line, "echo") != nullptr,
                                   false};
    if (!from_file)
        return run_lines(session, stdin, "stdin", &options);
    FILE *in = fopen(file, "re");
    if (!in)
        return complain(session, EXIT_STATUS_LOCAL, "cannot read \"%.200s\": %s", file, strerror(errno));
    client_exit_status status = run_lines(session, in, file, &options);
    fclose(in);
    return status;
}
