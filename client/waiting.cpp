#include "client/waiting.h"

#include <stdarg.h>
#include <time.h>
#include <unistd.h>

constexpr int64_t MS_PER_SECOND = 1000;
constexpr long NS_PER_MS = 1000000;

// Longer lines would break in a narrow window, and a broken line cannot be written over.
constexpr int LINE_WIDTH = 70;

int64_t clock_ms(void) {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * MS_PER_SECOND + now.tv_nsec / NS_PER_MS;
}

void pause_ms(int64_t duration) {
    int64_t end = clock_ms() + duration;
    const timespec until = {static_cast<time_t>(end / MS_PER_SECOND),
                            static_cast<long>(end % MS_PER_SECOND) * NS_PER_MS};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) != 0 && clock_ms() < end) {
    }
}

time_limit begin_waiting(int seconds) {
    int64_t now = clock_ms();
    return {now, now + seconds * MS_PER_SECOND};
}

int64_t left_ms(const time_limit *limit) {
    int64_t left = limit->end - clock_ms();
    return left > 0 ? left : 0;
}

int seconds_waited(const time_limit *limit) {
    return static_cast<int>((clock_ms() - limit->begin) / MS_PER_SECOND);
}

void pause_within(const time_limit *limit, int64_t duration) {
    int64_t left = left_ms(limit);
    pause_ms(duration < left ? duration : left);
}

int call_seconds(int allowed, const time_limit *limit) {
    int64_t left = (left_ms(limit) + MS_PER_SECOND - 1) / MS_PER_SECOND;
    if (left < 1)
        return 1;
    return left < allowed ? static_cast<int>(left) : allowed;
}

progress_line begin_progress(client_session *session) {
    int file = fileno(session->errors);
    bool for_people = session->settings.format != output_format::JSON && file >= 0;
    bool terminal = for_people && isatty(file);
    return {session, false, terminal, for_people && !terminal};
}

void step_progress(progress_line *progress, const char *format, ...) {
    FILE *errors = progress->session->errors;
    if (progress->dots)
        putc('.', errors);
    if (progress->terminal) {
        char text[LINE_WIDTH + 1];
        va_list arguments;
        va_start(arguments, format);
        vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        // Blanks over what stood there, and no escape sequence: whatever ends the program leaves a terminal as it was.
        fprintf(errors, "\r%-*s", LINE_WIDTH, text);
    }
    progress->shown = true;
    fflush(errors);
}

void end_progress(progress_line *progress) {
    FILE *errors = progress->session->errors;
    if (progress->terminal && progress->shown)
        fprintf(errors, "\r%*s\r", LINE_WIDTH, "");
    if (progress->dots && progress->shown)
        putc('\n', errors);
    progress->shown = false;
    fflush(errors);
}
