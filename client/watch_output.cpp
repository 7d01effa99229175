#include "client/watch_output.h"

#include <string.h>
#include <time.h>

#include "client/render.h"

// To the upper left corner, and everything gone that is on the screen.
constexpr const char CLEAR_SCREEN[] = "\033[H\033[2J";

void format_time(char text[TIME_SIZE]) {
    timespec now = {};
    tm parts = {};
    char seconds[TIME_SIZE];
    clock_gettime(CLOCK_REALTIME, &now);
    gmtime_r(&now.tv_sec, &parts);
    strftime(seconds, sizeof seconds, "%Y-%m-%dT%H:%M:%S", &parts);
    snprintf(text, TIME_SIZE, "%.19s.%03dZ", seconds, static_cast<int>(now.tv_nsec / 1000000));
}

// The answer's line with "time" as its first member. What is no JSON object, because the command prints text whatever
// it is told, becomes the member "text".
static void print_json_line(FILE *out, const char *time, const char *line, size_t length) {
    bool is_object = length >= 2 && line[0] == '{' && line[length - 1] == '}';
    if (is_object) {
        fprintf(out, "{\"time\":\"%s\"%s", time, length == 2 ? "" : ",");
        fwrite(line + 1, 1, length - 1, out);
        putc('\n', out);
        return;
    }
    value *answer = new_object();
    add_string(answer, "time", time);
    add_text(answer, "text", line, length);
    render_json(out, answer);
    free_value(answer);
}

static bool all_lines_are_objects(const run_output *output) {
    bool at_begin = true;
    for (size_t i = 0; i < output->out_length; i++) {
        if (at_begin && output->out[i] != '{')
            return false;
        at_begin = output->out[i] == '\n';
    }
    return output->out_length > 0 && at_begin;
}

static void print_json(FILE *out, const char *time, const run_output *output) {
    if (!all_lines_are_objects(output)) {
        print_json_line(out, time, output->out, output->out_length);
        return;
    }
    const char *end = output->out + output->out_length;
    for (const char *line = output->out; line < end;) {
        const char *line_end = static_cast<const char *>(memchr(line, '\n', static_cast<size_t>(end - line)));
        print_json_line(out, time, line, static_cast<size_t>(line_end - line));
        line = line_end + 1;
    }
}

static bool has_frames(const client_settings *settings) {
    return settings->format == output_format::TEXT || settings->format == output_format::DUMP;
}

static void print_heading(client_session *session, const command_line *line, const char *time, bool first) {
    if (session->settings.terminal)
        fputs(CLEAR_SCREEN, session->out);
    else if (!first)
        putc('\n', session->out);
    fprintf(session->out, "%s ", time);
    for (size_t i = 0; i < line->word_count; i++)
        fprintf(session->out, " %s", line->words[i]);
    putc('\n', session->out);
}

void print_output(client_session *session, const command_line *line, const char *time, const run_output *output,
                  bool first) {
    bool unusable = output->status == EXIT_STATUS_USAGE;  // no answer that a frame could be made of
    if (session->settings.format == output_format::JSON) {
        print_json(session->out, time, output);
    } else {
        if (has_frames(&session->settings) && !unusable)
            print_heading(session, line, time, first);
        fwrite(output->out, 1, output->out_length, session->out);
    }
    fflush(session->out);
    fwrite(output->errors, 1, output->errors_length, session->errors);
    fflush(session->errors);
}
