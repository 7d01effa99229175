#include "client/shell_history.h"

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "client/command_table.h"
#include "client/names.h"
#include "client/replace_file.h"

constexpr char FILE_NAME[] = "vlk_wlan_config_history";

bool history_path(char *path, size_t size) {
    const char *state = getenv("XDG_STATE_HOME");
    const char *home = getenv("HOME");
    bool has_state = state && *state == '/';  // others are to be ignored
    if (!has_state && !(home && *home == '/'))
        return false;
    int length = has_state ? snprintf(path, size, "%s/%s", state, FILE_NAME)
                           : snprintf(path, size, "%s/.local/state/%s", home, FILE_NAME);
    return length > 0 && static_cast<size_t>(length) < size;
}

// Names of arguments that nobody else shall read.
static constexpr const char *SECRETS[] = {"key", "passphrase", "pin", "secret", "password"};

static bool has_secret(const procedure_row *row) {
    for (size_t i = 0; i < row->argument_count; i++)
        for (const char *secret : SECRETS)
            if (row->arguments[i].kind == argument_kind::TEXT && strcmp(row->arguments[i].name, secret) == 0)
                return true;
    return false;
}

bool may_be_kept(const line_words *split) {
    bool is_known = false;
    for (size_t i = 0; i < split->count; i++) {
        const procedure_row *row = find_operation(split->words[i]);
        bool is_last = i + 1 == split->count;
        is_known = is_known || row || find_command(split->words[i]);
        if (row && has_secret(row) && !is_last)
            return false;
    }
    return is_known && !split->open;
}

// Reads the lines of a file one by one; `read` of it are counted.
static size_t each_line(FILE *in, size_t first, line_function take, void *receiver) {
    char *line = nullptr;
    size_t size = 0, read = 0;
    for (ssize_t length; (length = getline(&line, &size, in)) > 0; read++) {
        if (line[length - 1] == '\n')
            line[length - 1] = '\0';
        if (read >= first && static_cast<size_t>(length) <= LINE_LENGTH_MAX && *line)
            take(receiver, line);
    }
    free(line);
    return read;
}

static void forget(void *, const char *) {}

static void write_line(void *out, const char *line) {
    fprintf(static_cast<FILE *>(out), "%s\n", line);
}

// Replaces the file by its last lines; a shell that writes to it at this moment loses a line at most.
static void shorten(const char *path, FILE *in, size_t first) {
    replaced_file shorter;
    if (!begin_replacing(&shorter, path, PRIVATE))
        return;
    rewind(in);
    each_line(in, first, write_line, shorter.stream);
    end_replacing(&shorter);
}

void load_history(const char *path, line_function take, void *receiver) {
    FILE *in = fopen(path, "re");
    struct stat found;
    if (!in)
        return;
    // A pipe or a device would have no end.
    if (fstat(fileno(in), &found) == 0 && S_ISREG(found.st_mode)) {
        size_t count = each_line(in, ~size_t{0}, forget, nullptr);
        size_t first = count > HISTORY_LINES_MAX ? count - HISTORY_LINES_MAX : 0;
        rewind(in);
        each_line(in, first, take, receiver);
        if (count > 2 * HISTORY_LINES_MAX)
            shorten(path, in, first);
    }
    fclose(in);
}

static void make_folders(const char *path) {
    char folder[PATH_MAX];
    snprintf(folder, sizeof folder, "%s", path);
    for (char *slash = strchr(folder + 1, '/'); slash; slash = strchr(slash + 1, '/')) {
        *slash = '\0';
        mkdir(folder, 0700);
        *slash = '/';
    }
}

void keep_line(const char *path, const char *line) {
    make_folders(path);
    int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0600);
    struct stat found;
    if (fd < 0)
        return;
    bool is_private =
        fstat(fd, &found) == 0 && S_ISREG(found.st_mode) && ((found.st_mode & 077) == 0 || fchmod(fd, 0600) == 0);
    FILE *out = is_private ? fdopen(fd, "a") : nullptr;
    if (!out) {
        close(fd);
        return;
    }
    fprintf(out, "%s\n", line);
    fclose(out);
}
