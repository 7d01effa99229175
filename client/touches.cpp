#include "client/touches.h"

#include <string.h>

#include "client/names.h"

// A kind's items behind each other, each with a comma: READS("AP_SSID") becomes "AP_SSID",
#define ITEMS_SAMPLE(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_READS(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_WRITES(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_COMMANDS(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_FILES(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_REQUESTS(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_DATAGRAMS(...) __VA_ARGS__ __VA_OPT__(, )
#define ITEMS_MESSAGES(...) __VA_ARGS__ __VA_OPT__(, )

// The lists of a row: static const char *const wlan_set_ssid_writes[] = {"AP_SSID", nullptr};
#define TOUCHES(number, procedure, sample, reads, writes, commands, files, requests, datagrams, messages) \
    static const char *const procedure##_sample[] = {ITEMS_##sample nullptr};                             \
    static const char *const procedure##_reads[] = {ITEMS_##reads nullptr};                               \
    static const char *const procedure##_writes[] = {ITEMS_##writes nullptr};                             \
    static const char *const procedure##_commands[] = {ITEMS_##commands nullptr};                         \
    static const char *const procedure##_files[] = {ITEMS_##files nullptr};                               \
    static const char *const procedure##_requests[] = {ITEMS_##requests nullptr};                         \
    static const char *const procedure##_datagrams[] = {ITEMS_##datagrams nullptr};                       \
    static const char *const procedure##_messages[] = {ITEMS_##messages nullptr};
#include "client/touches.def"

// And the row: {22, wlan_set_ssid_sample, wlan_set_ssid_reads, ...},
#define TOUCHES(number, procedure, ...) \
    {number,                            \
     procedure##_sample,                \
     procedure##_reads,                 \
     procedure##_writes,                \
     procedure##_commands,              \
     procedure##_files,                 \
     procedure##_requests,              \
     procedure##_datagrams,             \
     procedure##_messages},
const touch_row touch_rows[] = {
#include "client/touches.def"
};
const size_t touch_row_count = sizeof(touch_rows) / sizeof(touch_rows[0]);

// Where the items of a kind begin, and where a line of keys ends.
constexpr int ITEM_COLUMN = 11;
constexpr int LINE_WIDTH = 100;

const touch_row *find_touches(uint32_t number) {
    for (const touch_row &row : touch_rows) {
        if (row.number == number) {
            return &row;
        }
    }
    return nullptr;
}

void print_sample(FILE *out, const procedure_row *row, const touch_row *touches) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    fputs(name, out);
    for (const char *const *word = touches->sample; *word; word++) {
        fprintf(out, " %s", *word);
    }
}

bool touches_nothing(const touch_row *touches) {
    return !*touches->reads && !*touches->writes && !*touches->commands && !*touches->files && !*touches->requests &&
           !*touches->datagrams && !*touches->messages;
}

// Keys behind each other, as many as a line has room for.
static void print_keys(FILE *out, const char *label, const char *const *keys) {
    int column = 0;
    for (const char *const *key = keys; *key; key++) {
        int length = static_cast<int>(strlen(*key));
        if (key == keys) {
            column = fprintf(out, "%-*s%s", ITEM_COLUMN, label, *key);
        } else if (column + length + 1 <= LINE_WIDTH) {
            column += fprintf(out, " %s", *key);
        } else {
            column = fprintf(out, "\n%-*s%s", ITEM_COLUMN, "", *key) - 1;
        }
    }
    if (keys[0]) {
        putc('\n', out);
    }
}

// Texts that have blanks of their own: one a line.
static void print_lines(FILE *out, const char *label, const char *const *items) {
    for (const char *const *item = items; *item; item++) {
        fprintf(out, "%-*s%s\n", ITEM_COLUMN, item == items ? label : "", *item);
    }
}

void print_touches(FILE *out, const procedure_row *row) {
    const touch_row *touches = find_touches(row->number);
    if (!touches) {
        return;
    }
    fputs("\nOn a gateway, `", out);
    print_sample(out, row, touches);
    if (touches_nothing(touches)) {
        fputs("` touches nothing.\n", out);
        return;
    }
    fputs("` touches\n", out);
    print_keys(out, "looks up", touches->reads);
    print_keys(out, "writes", touches->writes);
    print_lines(out, "runs", touches->commands);
    print_lines(out, "opens", touches->files);
    print_lines(out, "ioctl", touches->requests);
    print_lines(out, "sends to", touches->datagrams);
    print_lines(out, "reports", touches->messages);
}
