#include "client/print.h"

#include <string.h>

struct word_names {
    const char *type;
    size_t count;
    const char *names[11];
};

static const word_names word_records[] = {
    {"wlan_basicStats_t", 5, {"tx_bytes", "rx_bytes", "tx_packets", "rx_packets", "assoc_count"}},
    {"wlan_stats_t",
     11,
     {"word_0", "rx_errors", "tx_unicast", "word_3", "word_4", "word_5", "tx_multicast", "word_7", "word_8", "word_9",
      "word_10"}},
};
static_assert(sizeof(wlan_basicStats_t) == 5 * sizeof(uint32_t));
static_assert(sizeof(wlan_stats_t) == 11 * sizeof(uint32_t));

const char *word_name(const char *type, size_t word) {
    for (const word_names &record : word_records)
        if (strcmp(record.type, type) == 0 && word < record.count)
            return record.names[word];
    return "word";
}

// How many integers and bytes a row's result has at least; a text has its NUL.
struct payload_size {
    size_t integers;
    size_t bytes;
};

static payload_size promised_payload(const result_row *row) {
    switch (row->kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            return {0, 0};
        case result_kind::INTEGERS:
            return {row->output_count, 0};
        case result_kind::INTEGERS64:
            return {2 * row->size, 0};
        case result_kind::WORDS:
            return {row->size / sizeof(uint32_t), 0};
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return {0, 1};
        case result_kind::IMAGE:
            return {0, row->size};
        case result_kind::COUNTED_IMAGE:
            return {1, row->size};
    }
    return {0, 0};
}

static bool is_text(result_kind kind) {
    return kind == result_kind::STRING || kind == result_kind::LONG_STRING;
}

static bool is_empty(const wlan_config_result_data_t *result) {
    return result->return_values.return_values_len == 0 && result->return_data.return_data_len == 0;
}

bool check_result(const procedure_row *row, const wlan_config_result_data_t *result, char problem[PROBLEM_SIZE]) {
    payload_size promised = promised_payload(&row->result);
    size_t integers = result->return_values.return_values_len;
    size_t bytes = result->return_data.return_data_len;
    if (result->return_code != WLAN_CONFIG_SUCCESS && is_empty(result))
        return true;
    if (integers < promised.integers) {
        snprintf(problem, PROBLEM_SIZE, "the server's answer is damaged: %zu integers instead of %zu", integers,
                 promised.integers);
        return false;
    }
    if (is_text(row->result.kind)) {
        if (bytes > 0 && memchr(result->return_data.return_data_val, '\0', bytes))
            return true;
        snprintf(problem, PROBLEM_SIZE, "the server's answer is damaged: a text without an end (%zu bytes)", bytes);
        return false;
    }
    if (promised.bytes > 0 && bytes != promised.bytes) {
        snprintf(problem, PROBLEM_SIZE, "the server's answer is damaged: %zu bytes of %s instead of %zu", bytes,
                 row->result.type, promised.bytes);
        return false;
    }
    return true;
}

static void print_integer(FILE *out, output_kind kind, uint32_t value) {
    switch (kind) {
        case output_kind::INT:
        case output_kind::BOOL:
            fprintf(out, "%d\n", static_cast<int32_t>(value));
            break;
        case output_kind::UINT:
            fprintf(out, "%u\n", value);
            break;
    }
}

static void print_integers(FILE *out, const result_row *row, const uint32_t *values) {
    for (size_t i = 0; i < row->output_count; i++) {
        if (row->output_count > 1)
            fprintf(out, "%s ", row->outputs[i].name);
        print_integer(out, row->outputs[i].kind, values[i]);
    }
}

static void print_integers64(FILE *out, const result_row *row, const uint32_t *values) {
    for (size_t i = 0; i < row->size; i++) {
        uint64_t value = uint64_t{values[2 * i + 1]} << 32 | values[2 * i];
        fprintf(out, "%lld\n", static_cast<long long>(value));
    }
}

static void print_words(FILE *out, const result_row *row, const uint32_t *values) {
    for (size_t i = 0; i < row->size / sizeof(uint32_t); i++)
        fprintf(out, "%s %u\n", word_name(row->type, i), values[i]);
}

// Control characters and their eight-bit cousins in UTF-8 (0xC2 and then 0x80 to 0x9F). Lines and tabs stay: several
// texts have more than one line.
static bool is_control(char c, char before) {
    unsigned char byte = static_cast<unsigned char>(c);
    if (byte == '\n' || byte == '\t')
        return false;
    return byte < 0x20 || byte == 0x7f || (byte >= 0x80 && byte < 0xa0 && before == '\xc2');
}

static void print_text(FILE *out, const char *text, text_style style) {
    char before = '\0';
    for (const char *c = text; *c; before = *c++)
        if (style == text_style::FOR_A_TERMINAL && is_control(*c, before))
            fprintf(out, "\\x%02x", static_cast<unsigned char>(*c));
        else
            putc(*c, out);
    putc('\n', out);
}

constexpr size_t DUMP_BYTES_A_LINE = 16;

// 00000010  00 03 7f aa bb cc 00 00  00 00 00 00 00 00 00 00  |................|
static void print_dump_line(FILE *out, const char *image, size_t size, size_t line) {
    fprintf(out, "%08zx ", line);
    for (size_t i = line; i < line + DUMP_BYTES_A_LINE; i++) {
        fputs(i % (DUMP_BYTES_A_LINE / 2) == 0 ? " " : "", out);
        if (i < size)
            fprintf(out, "%02x ", static_cast<unsigned char>(image[i]));
        else
            fputs("   ", out);
    }
    fputs(" |", out);
    for (size_t i = line; i < line + DUMP_BYTES_A_LINE && i < size; i++)
        putc(image[i] >= 0x20 && image[i] < 0x7f ? image[i] : '.', out);
    fputs("|\n", out);
}

static bool repeats_the_line_before(const char *image, size_t size, size_t line) {
    return line >= DUMP_BYTES_A_LINE && line + DUMP_BYTES_A_LINE < size &&
           memcmp(image + line, image + line - DUMP_BYTES_A_LINE, DUMP_BYTES_A_LINE) == 0;
}

// Most records are mostly empty: lines that say the same again become one "*". The last one is always there and shows
// where the record ends.
static void print_dump(FILE *out, const char *image, size_t size) {
    bool repeating = false;
    for (size_t line = 0; line < size; line += DUMP_BYTES_A_LINE) {
        bool repeated = repeats_the_line_before(image, size, line);
        if (!repeated)
            print_dump_line(out, image, size, line);
        else if (!repeating)
            fputs("*\n", out);
        repeating = repeated;
    }
}

static bool all_zero(const char *bytes, size_t size) {
    for (size_t i = 0; i < size; i++)
        if (bytes[i])
            return false;
    return true;
}

void print_result(FILE *out, const procedure_row *row, const wlan_config_result_data_t *result, text_style style) {
    bool failed = result->return_code != WLAN_CONFIG_SUCCESS;
    const uint32_t *values = result->return_values.return_values_val;
    const char *data = result->return_data.return_data_val;
    if (failed &&
        (is_empty(result) || row->result.kind == result_kind::CODE || row->result.kind == result_kind::ACTION))
        return;
    switch (row->result.kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            fputs("ok\n", out);
            break;
        case result_kind::INTEGERS:
            print_integers(out, &row->result, values);
            break;
        case result_kind::INTEGERS64:
            print_integers64(out, &row->result, values);
            break;
        case result_kind::WORDS:
            print_words(out, &row->result, values);
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            if (!failed || *data)
                print_text(out, data, style);
            break;
        case result_kind::COUNTED_IMAGE:
            fprintf(out, "count %d\n", static_cast<int32_t>(values[0]));
            [[fallthrough]];
        case result_kind::IMAGE:
            if (!failed || !all_zero(data, row->result.size))
                print_dump(out, data, row->result.size);
            break;
    }
}
