#include "client/dump.h"

#include <string.h>

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
static void print_bytes(FILE *out, const char *image, size_t size) {
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

void print_dump(FILE *out, const wlan_config_result_data_t *result) {
    for (u_int i = 0; i < result->return_values.return_values_len; i++)
        fprintf(out, "%s%08x", i % 4 ? " " : (i ? "\n" : ""), result->return_values.return_values_val[i]);
    fputs(result->return_values.return_values_len ? "\n" : "", out);
    print_bytes(out, result->return_data.return_data_val, result->return_data.return_data_len);
}
