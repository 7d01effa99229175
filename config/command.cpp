// The doors through which the server runs shell commands: with captured output, with the beginning of it, without.
//
// Touches the platform shell and the PATH of this process. Runs on the service thread and on lifecycle workers.
#include "config/command.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/log.h"

// One line is read at a time, and the buffer grows by this much for each: what the tools print has short lines.
constexpr size_t OUTPUT_STEP = 256;

constexpr const char SCRIPT_DIRECTORY[] = "/etc/ath";

// What the shell searches when nobody gave it a PATH. Extending an absent PATH would otherwise take the board's
// tools away from it.
constexpr const char DEFAULT_PATH[] = "/usr/sbin:/usr/bin:/sbin:/bin";

// Appends everything the command prints to *output. A line that begins with NUL ends the reading, as end of file
// does. Returns -1 when memory runs out, with the text so far left in *output.
static int read_output(FILE *pipe, char **output) {
    size_t count = 0;
    while (!feof(pipe)) {
        char *text = static_cast<char *>(realloc(*output, count + OUTPUT_STEP));
        if (!text) {
            return -1;
        }
        *output = text;
        text[count] = '\0';
        if (!fgets(text + count, OUTPUT_STEP, pipe)) {
            // After a read error the C library does not say what it left behind the text.
            text[count] = '\0';
        }
        if (text[count] == '\0') {
            break;
        }
        count += strlen(text + count);
    }
    return 0;
}

int athcfg_executecmd(const char *caller, const char *command, char **output) {
    *output = nullptr;
    log_debug("[VLK-API] %s %s: cmd:%s\n", __func__, __func__, command);
    FILE *pipe = popen(command, "re");
    if (!pipe) {
        log_debug("[VLK-API] %s %s: popen %s error\n", __func__, caller, command);
        return -1;
    }
    int status = read_output(pipe, output);
    if (status != 0) {
        log_debug("[VLK-API] %s %s: realloc %s error\n", __func__, caller, command);
    }
    pclose(pipe);
    return status;
}

__attribute__((format(printf, 3, 0))) static int execute_formatted(const char *caller, char **output,
                                                                   const char *format, va_list arguments) {
    *output = nullptr;
    char *command = nullptr;
    if (vasprintf(&command, format, arguments) < 0) {
        return -1;
    }
    int status = athcfg_executecmd(caller, command, output);
    free(command);
    return status;
}

int athcfg_executecmdf(const char *caller, char **output, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int status = execute_formatted(caller, output, format, arguments);
    va_end(arguments);
    return status;
}

int athcfg_runcmdf(const char *caller, const char *format, ...) {
    char *output;
    va_list arguments;
    va_start(arguments, format);
    int status = execute_formatted(caller, &output, format, arguments);
    va_end(arguments);
    free(output);
    return status;
}

int run_shell(const char *command) {
    return system(command);
}

ssize_t read_command(const char *command, char *bytes, size_t size) {
    FILE *pipe = popen(command, "re");
    if (!pipe) {
        return -1;
    }
    size_t length = fread(bytes, 1, size, pipe);
    pclose(pipe);
    return static_cast<ssize_t>(length);
}

static void append_script_directory(void) {
    const char *path = getenv("PATH");
    if (!path || *path == '\0') {
        path = DEFAULT_PATH;
    }
    if (strstr(path, SCRIPT_DIRECTORY)) {
        return;
    }
    char *longer = nullptr;
    if (asprintf(&longer, "%s:%s", path, SCRIPT_DIRECTORY) < 0) {
        return;
    }
    setenv("PATH", longer, 1);
    free(longer);
}

int athcfg_set_path(void) {
    // Workers may come here at the same time; the second one waits until the path is there.
    static pthread_once_t path_set = PTHREAD_ONCE_INIT;
    pthread_once(&path_set, append_script_directory);
    return 0;
}
