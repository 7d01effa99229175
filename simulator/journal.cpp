#include "simulator/journal.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/paths.h"

static void append_byte(FILE *line, unsigned char byte) {
    switch (byte) {
        case '\\':
            fputs("\\\\", line);
            return;
        case '\n':
            fputs("\\n", line);
            return;
        case '\r':
            fputs("\\r", line);
            return;
        case '\t':
            fputs("\\t", line);
            return;
        default:
            if (byte < 0x20 || byte == 0x7F)
                fprintf(line, "\\x%02x", byte);
            else
                fputc(byte, line);
    }
}

static void append_text(FILE *line, const char *text) {
    for (; *text != '\0'; text++)
        append_byte(line, (unsigned char)*text);
}

static bool is_plain(const char *argument, size_t length) {
    static const char plain[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:=,+@%-";
    for (size_t i = 0; i < length; i++) {
        if (memchr(plain, argument[i], sizeof plain - 1) == nullptr)
            return false;
    }
    return length > 0;
}

static void append_argument(FILE *line, const char *argument, size_t length) {
    fputc(' ', line);
    if (is_plain(argument, length)) {
        fwrite(argument, 1, length, line);
        return;
    }
    fputc('"', line);
    for (size_t i = 0; i < length; i++) {
        if (argument[i] == '"')
            fputs("\\\"", line);
        else
            append_byte(line, (unsigned char)argument[i]);
    }
    fputc('"', line);
}

// One line under construction.
struct journal_line {
    FILE *stream;
    char *text;
    size_t length;
};

static bool begin_line(journal_line *line) {
    line->text = nullptr;
    line->length = 0;
    line->stream = open_memstream(&line->text, &line->length);
    return line->stream != nullptr;
}

static void end_line(journal_line *line) {
    fputc('\n', line->stream);
    if (fclose(line->stream) == 0) {
        int journal = open(GATEWAY_JOURNAL, O_WRONLY | O_APPEND | O_CLOEXEC);
        if (journal >= 0) {
            // A full tmpfs loses the event; the caller's own work must not suffer from that.
            [[maybe_unused]] ssize_t written = write(journal, line->text, line->length);
            close(journal);
        }
    }
    free(line->text);
}

void journal_shell(const char *door, const char *command) {
    journal_line line;
    if (!begin_line(&line))
        return;
    fprintf(line.stream, "%s ", door);
    append_text(line.stream, command);
    end_line(&line);
}

void journal_read(const char *search_key) {
    journal_line line;
    if (!begin_line(&line))
        return;
    fputs("read ", line.stream);
    for (; *search_key != '\0' && *search_key != '='; search_key++)
        append_byte(line.stream, (unsigned char)*search_key);
    end_line(&line);
}

void journal_file(const char *purpose, const char *path) {
    journal_line line;
    if (!begin_line(&line))
        return;
    fprintf(line.stream, "file %s ", purpose);
    append_text(line.stream, path);
    end_line(&line);
}

void journal_run(const char *tool, int argument_count, char *const *arguments) {
    journal_line line;
    if (!begin_line(&line))
        return;
    fprintf(line.stream, "run %s", tool);
    for (int i = 0; i < argument_count; i++)
        append_argument(line.stream, arguments[i], strlen(arguments[i]));
    end_line(&line);
}

void journal_ioctl(const char *interface, unsigned long request, unsigned command, unsigned length, int result,
                   int error) {
    journal_line line;
    if (!begin_line(&line))
        return;
    fputs("ioctl ", line.stream);
    append_text(line.stream, interface);
    fprintf(line.stream, " 0x%lx", request);
    if (command != 0)
        fprintf(line.stream, ".%u", command);
    fprintf(line.stream, " %u = %d", length, result);
    if (error != 0) {
        const char *name = strerrorname_np(error);
        fprintf(line.stream, " %s", name != nullptr ? name : "unknown");
    }
    end_line(&line);
}

void journal_datagram(const char *name, const char *bytes, size_t have, size_t length) {
    journal_line line;
    if (!begin_line(&line))
        return;
    bool ended = have == length && have > 0 && bytes[have - 1] == '\0';
    fprintf(line.stream, "datagram %s", name);
    append_argument(line.stream, bytes, ended ? have - 1 : have);
    if (have < length)
        fprintf(line.stream, " of %zu bytes", length);
    else if (!ended)
        fputs(" without NUL", line.stream);
    end_line(&line);
}
