// The client's lines: split into words as a shell does it, options taken off, arguments read by the kinds of the
// operation's row, and what the words may have stood for.
//
// Input: a line.
#include <ctype.h>
#include <string.h>

#include "client/names.h"
#include "client/options.h"
#include "client/suggest.h"
#include "client/words.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "server/wire.h"

static void check_suggestions(const suggestions *found) {
    must(found->count <= SUGGESTIONS_MAX, "no more suggestions than are kept");
    for (size_t i = 0; i < found->count; i++) {
        must_be_terminated(found->words[i], SUGGESTION_SIZE, "a suggestion");
    }
}

// What the client encodes, the server's routine for text and number decodes.
static void check_encoding(call_arguments *arguments) {
    static char bytes[2 * LINE_LENGTH_MAX];
    XDR stream;
    xdrmem_create(&stream, bytes, sizeof(bytes), XDR_ENCODE);
    must(xdr_call_arguments(&stream, arguments), "arguments of a line fit a datagram's stream");
    u_int length = XDR_GETPOS(&stream);
    xdrmem_create(&stream, bytes, length, XDR_DECODE);
    for (size_t i = 0; i < arguments->count; i++) {
        const argument_value *argument = &arguments->values[i];
        if (argument->kind == argument_kind::TEXT) {
            char *text = nullptr;
            must(xdr_text(&stream, &text) && strcmp(text, argument->text) == 0, "a text arrives as it was said");
            xdr_free(as_xdrproc(xdr_text), &text);
        } else {
            int number;
            must(xdr_int(&stream, &number) && number == static_cast<int>(argument->number),
                 "a number arrives as it was said");
        }
    }
    must(stream.x_handy == 0, "nothing stands behind the arguments");
}

static void try_operation(size_t count, char **words) {
    const procedure_row *row = find_operation(words[0]);
    if (!row) {
        suggestions found;
        consider_operations(&found, words[0]);
        check_suggestions(&found);
        return;
    }
    char problem[PROBLEM_SIZE] = "";
    call_arguments arguments;
    if (parse_arguments(row, count - 1, words + 1, &arguments, problem)) {
        check_encoding(&arguments);
    } else {
        must(*problem != '\0', "wrong arguments are complained of");
        must_be_terminated(problem, sizeof(problem), "a problem");
    }
}

static void try_command(size_t count, char **words) {
    const command_row *row = find_command(words[0]);
    if (!row) {
        return;
    }
    parsed_options options = {};
    options.settings = default_settings(stdout);
    command_line line = {};
    char problem[PROBLEM_SIZE] = "";
    if (!parse_command_options(row, static_cast<int>(count), words, &options, &line, problem)) {
        must(*problem != '\0', "wrong options are complained of");
        check_suggestions(&options.meant);
        return;
    }
    must(line.word_count < count, "options and the command's name are no words");
    must(options.settings.timeout_seconds >= 1 && options.settings.timeout_seconds <= TIMEOUT_SECONDS_MAX,
         "a timeout is within its range");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static line_words split;
    char problem[PROBLEM_SIZE] = "";
    fuzz_input input = new_input(data, size);
    std::string line = take_rest(&input).substr(0, LINE_LENGTH_MAX);
    line = line.substr(0, line.find('\0'));
    if (!split_line(line.c_str(), line.size(), &split, problem)) {
        must(*problem != '\0', "what is wrong with a line is said");
        return 0;
    }
    must(split.count <= LINE_WORDS_MAX && split.words[split.count] == nullptr, "words end with none");
    if (split.count == 0) {
        return 0;
    }
    must(split.last_begin <= line.size(), "the last word is in the line");
    client_settings settings = default_settings(stdout);
    adopt_format(&settings, static_cast<int>(split.count), split.words);
    try_operation(split.count, split.words);
    // Reorders the words, so it comes last.
    try_command(split.count, split.words);
    return 0;
}
