// The WPS settings of each VAP: one text file an interface, which the authenticator reads when it starts.
//
// Touches the files WSC_athN.conf of WPS_DIRECTORY. Runs on the service thread.
#include "config/wps_files.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "config/text.h"

// The directory, "/WSC_ath", the longest number, ".conf.tmp": 43 characters.
constexpr size_t PATH_SIZE = 64;

// A line is read with its line break into this buffer: settings have at most 254 characters.
constexpr size_t LINE_SIZE = 256;

static void put_path(char *path, int index, const char *ending) {
    snprintf(path, PATH_SIZE, "%s/WSC_ath%d.conf%s", WPS_DIRECTORY, interface_number(index), ending);
}

// Everything behind the first "=", but for the line break at its end. Returns -1 when there is no "=".
static int put_value(const char *output, char *value, size_t size) {
    const char *equals = strchr(output, '=');
    if (!equals) {
        return -1;
    }
    put_text(value, size, equals + 1);
    size_t length = strlen(value);
    if (length > 0 && value[length - 1] == '\n') {
        value[length - 1] = '\0';
    }
    return 0;
}

// Do not anchor the search: clients read settings of files in which the key has a prefix, and get the first line that
// has it anywhere.
int athwps_getbyname(int index, const char *key, char *value, size_t size) {
    char path[PATH_SIZE];
    put_path(path, index, "");
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "cat %s | grep %s", path, key);
    if (!output) {
        return -1;
    }
    int status = put_value(output, value, size);
    free(output);
    return status;
}

// Whether the directory has a file for the interface. The name is not searched for as a whole, so ath1 finds the file
// of ath10 too; opening its own file then fails.
static bool has_file(int index) {
    char *output = nullptr;
    athcfg_executecmdf("athwps_setbyname", &output, "ls %s | grep ath%d", WPS_DIRECTORY, interface_number(index));
    bool found = output && *output != '\0';
    free(output);
    return found;
}

static FILE *open_file(const char *path, const char *mode) {
    FILE *file = fopen(path, mode);
    if (!file) {
        log_debug("[VLK-API] %s %s: open %s failed\n", "athwps_setbyname", "athwps_setbyname", path);
    }
    return file;
}

// Whether the line sets the key. What stands before the key does not matter, so that "ssid" also finds a line
// "wpa_ssid=x", which becomes one of "ssid". Do not mend this: the files in the field were written this way. Only the
// first place where the key occurs counts.
static bool is_line_of(const char *line, const char *key) {
    const char *found = strstr(line, key);
    return found && found[strlen(key)] == '=';
}

// Copies the lines, each that sets the key with the new value. Ends at a line without line break within the buffer,
// which is the unterminated last one or one that is too long: neither it nor what follows it is kept, which is how
// these files have always been cut down to what the authenticator can read.
static void copy_lines(FILE *from, FILE *to, const char *key, const char *value) {
    bool replaced = false;
    char line[LINE_SIZE];
    while (fgets(line, sizeof(line), from)) {
        size_t length = strlen(line);
        if (length == 0 || line[length - 1] != '\n') {
            break;
        }
        line[length - 1] = '\0';
        if (is_line_of(line, key)) {
            fprintf(to, "%s=%s\n", key, value);
            replaced = true;
        } else {
            fprintf(to, "%s\n", line);
        }
    }
    if (!replaced) {
        fprintf(to, "%s=%s\n", key, value);
    }
}

// Brings what was written to the storage and closes the file. Returns false when not all of it got there.
static bool finish(FILE *file) {
    bool written = fflush(file) == 0 && !ferror(file) && fsync(fileno(file)) == 0;
    return fclose(file) == 0 && written;
}

// Writes the new content of the file at `path` to `temporary`. Returns false when that did not work.
static bool write_temporary(const char *path, const char *temporary, const char *key, const char *value) {
    FILE *file = open_file(path, "re");
    if (!file) {
        return false;
    }
    FILE *copy = open_file(temporary, "we");
    if (!copy) {
        fclose(file);
        return false;
    }
    copy_lines(file, copy, key, value);
    bool complete = !ferror(file);
    fclose(file);
    complete = finish(copy) && complete;
    // Half a file must not take the place of a whole one: with full storage the settings stay as they were.
    if (!complete) {
        unlink(temporary);
    }
    return complete;
}

int athwps_setbyname(int index, const char *key, const char *value) {
    if (!has_file(index)) {
        return -1;
    }
    char path[PATH_SIZE];
    char temporary[PATH_SIZE];
    put_path(path, index, "");
    put_path(temporary, index, ".tmp");
    if (!write_temporary(path, temporary, key, value)) {
        return -1;
    }
    athcfg_runcmdf(__func__, "rm %s;mv %s %s", path, temporary, path);
    return 0;
}
