#include "simulator/daemons/processes.h"

#include <ctype.h>
#include <dirent.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "simulator/driver/driver_state.h"

// How long a daemon may take to end, far more than it needs, and the pause between two looks at it.
constexpr double END_SECONDS = 1;
constexpr long LOOK_NANOSECONDS = 2'000'000;

bool is_name_of(const char *program, const char *name) {
    size_t length = strlen(program);
    return strncmp(name, program, length) == 0 && name[length + strspn(name + length, "0123456789")] == '\0';
}

// Whether the process is one of the program that still runs.
static bool is_process_of(const char *pid, const char *program) {
    char path[64];
    char line[256] = "";
    snprintf(path, sizeof path, "/proc/%.20s/stat", pid);
    FILE *file = fopen(path, "re");
    if (file == nullptr)
        return false;
    bool got = fgets(line, sizeof line, file) != nullptr;
    fclose(file);
    // "12 (hostapd) S ..."
    char *name = strchr(line, '(');
    char *end = strrchr(line, ')');
    if (!got || name == nullptr || end == nullptr || strlen(end) < strlen(") Z"))
        return false;
    *end = '\0';
    return is_name_of(program, name + 1) && end[2] != 'Z';
}

// Sends a signal to every process of the program (0: none). Returns how many there are.
static int signal_all(const char *program, int number) {
    DIR *processes = opendir("/proc");
    int count = 0;
    while (const dirent *entry = processes != nullptr ? readdir(processes) : nullptr) {
        if (isdigit((unsigned char)entry->d_name[0]) == 0 || !is_process_of(entry->d_name, program))
            continue;
        kill((pid_t)atoi(entry->d_name), number);
        count++;
    }
    if (processes != nullptr)
        closedir(processes);
    return count;
}

void end_processes(const char *program) {
    double end = driver_clock() + END_SECONDS;
    if (signal_all(program, SIGTERM) == 0)
        return;
    while (signal_all(program, driver_clock() > end ? SIGKILL : 0) > 0) {
        timespec pause = {0, LOOK_NANOSECONDS};
        nanosleep(&pause, nullptr);
    }
}
