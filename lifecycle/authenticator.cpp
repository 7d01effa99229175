// The authenticator (hostapd), which reads its configuration only when it starts.
//
// Touches the authenticator's process and /tmp/conf_filename. Runs on the service thread.
#include "lifecycle/authenticator.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"

// What the command has around the configuration's name: 38 characters and the NUL. The two to spare are kept because
// the number is in the debug line, where people look for it.
constexpr size_t COMMAND_OVERHEAD = 41;

static bool has_word(const char *line, size_t length, const char *word) {
    return memmem(line, length, word, strlen(word)) != nullptr;
}

// The number a line of the process list begins with, 0 when that is no process id. Read as a number that is wide on
// every machine: cut to an int, one that is too large would look like the largest id.
static int process_id(const char *line) {
    long long number = strtoll(line, nullptr, 10);
    return number > 0 && number <= INT_MAX ? static_cast<int>(number) : 0;
}

// Process id in the first line that names the authenticator and is not that of the search for it; 0 when there is none.
// A line without an id counts as none: `kill 0` or a negative number would end the server and everything beside it.
static int find_authenticator(const char *list) {
    while (*list) {
        size_t length = strcspn(list, "\n");
        if (has_word(list, length, "hostapd") && !has_word(list, length, "grep")) {
            return process_id(list);
        }
        list += length;
        list += strspn(list, "\n");
    }
    return 0;
}

static void kill_authenticator(const char *list) {
    int pid = find_authenticator(list);
    if (pid == 0) {
        return;
    }
    log_debug("[VLK-API] %s %s: kill hostapd pid %d\n", "wps_hostapd_restart", "wps_hostapd_restart", pid);
    athcfg_runcmdf("wps_hostapd_restart", "kill %d", pid);
}

// Starts the authenticator with the content of the name file, whose last line break would end the command too early.
static void start_authenticator(char *name) {
    size_t size = strlen(name) + COMMAND_OVERHEAD;
    size_t length = strlen(name);
    if (length > 0 && name[length - 1] == '\n') {
        name[length - 1] = '\0';
    }
    if (*name == '\0') {
        return;
    }
    char *command = static_cast<char *>(malloc(size));
    log_debug("[VLK-API] %s cmd_hostapd_len:%d\n", "wps_hostapd_restart", static_cast<int>(size));
    if (!command) {
        return;
    }
    snprintf(command, size, "/sbin/hostapd -B %s -e /etc/wpa2/entropy", name);
    log_debug("[VLK-API] %s restart hostapd -- %s\n", "wps_hostapd_restart", command);
    athcfg_runcmdf("wps_hostapd_restart", "%s", command);
    free(command);
}

void wps_hostapd_restart(void) {
    log_debug("[VLK-API] %s WPS hostapd restart\n", __func__);
    char *list = nullptr;
    athcfg_executecmd(__func__, "/bin/ps | grep hostapd", &list);
    if (!list) {
        return;
    }
    kill_authenticator(list);
    free(list);
    char *name = nullptr;
    athcfg_executecmdf(__func__, &name, "cat %s", CONFIGURATION_NAME_FILE);
    if (!name) {
        return;
    }
    start_authenticator(name);
    free(name);
}
