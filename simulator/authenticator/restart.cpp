#include "simulator/authenticator/restart.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/daemons/processes.h"
#include "simulator/paths.h"
#include "simulator/store.h"
#include "simulator/wps_files.h"

void authenticator_end(void) {
    end_processes("hostapd");
}

static bool wants_wpa(const store_text *store, int vap) {
    char key[SETTING_KEY_SIZE];
    size_t length = 0;
    store_key("AP_SECMODE", vap + 1, key, sizeof key);
    const char *mode = store_find(store, key, &length);
    return mode != nullptr && length == 3 && strncmp(mode, "WPA", 3) == 0;
}

// The files that the authenticator is started with. Returns how many.
static int list_files(const driver_state *state, const store_text *store, char (*files)[WPS_PATH_SIZE]) {
    int count = 0;
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (state->vaps[i].up && wants_wpa(store, i))
            wps_file_path(i, files[count++], WPS_PATH_SIZE);
    }
    return count;
}

// The list as a script's echo writes it: blanks between the names and a line end behind them. Without names the file
// is empty, so that nobody starts an authenticator without files.
static int write_list(const char (*files)[WPS_PATH_SIZE], int count) {
    FILE *file = fopen(HOSTAPD_FILE_LIST, "we");
    if (file == nullptr)
        return -1;
    for (int i = 0; i < count; i++)
        fprintf(file, "%s%s", files[i], i + 1 < count ? " " : "\n");
    return fclose(file);
}

[[noreturn]] static void become_authenticator(char (*files)[WPS_PATH_SIZE], int count) {
    static char name[] = "hostapd", background[] = "-B", entropy[] = "-e";
    char entropy_file[sizeof HOSTAPD_ENTROPY_FILE];
    char *arguments[SCENARIO_VAPS + 5] = {name, background};
    snprintf(entropy_file, sizeof entropy_file, "%s", HOSTAPD_ENTROPY_FILE);
    for (int i = 0; i < count; i++)
        arguments[i + 2] = files[i];
    arguments[count + 2] = entropy;
    arguments[count + 3] = entropy_file;
    int log = open(GATEWAY_HOSTAPD_LOG, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    execv(HOSTAPD_PROGRAM, arguments);
    _exit(127);
}

int authenticator_start(const driver_state *state, const char *store_path) {
    char files[SCENARIO_VAPS][WPS_PATH_SIZE];
    store_text store;
    int failed = store_load(store_path, &store);
    int count = failed == 0 ? list_files(state, &store, files) : 0;
    store_free(&store);
    if (failed != 0 || write_list(files, count) != 0)
        return -1;
    if (count == 0)
        return 0;
    pid_t child = fork();
    if (child == 0)
        become_authenticator(files, count);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void authenticator_clear_up(void) {
    unlink(HOSTAPD_FILE_LIST);
    unlink(HOSTAPD_PID_FILE);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        char path[64];
        snprintf(path, sizeof path, "%s/ath%d", HOSTAPD_SOCKETS, i);
        unlink(path);
    }
}
