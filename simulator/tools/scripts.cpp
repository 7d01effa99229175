// apup, apup_simple, fast_down.sh: the driver's scripts, which load it, start its VAPs and take it down.
//
// They take the time that the scenario gives them and work all the while: a script that is killed leaves what it has
// done so far. Loading is the work of insmod, a process of its own, which goes on when its script is killed. Several
// scripts may run at once: each moment is one change of the driver's state, and one script at a time begins or ends
// what runs beside the driver.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/authenticator/restart.h"
#include "simulator/driver/capable_table.h"
#include "simulator/driver/driver_life.h"
#include "simulator/internal_address.h"
#include "simulator/paths.h"
#include "simulator/store.h"
#include "simulator/tools/driver_time.h"
#include "simulator/tools/tools.h"
#include "simulator/wps_files.h"

static int complain(const char *script, const char *what) {
    fprintf(stderr, "%s: %s: %s\n", script, what, strerror(errno));
    return 1;
}

static double script_seconds(const scenario *scene, const char *script) {
    for (int i = 0; i < scene->script_count; i++) {
        if (strcmp(scene->scripts[i].name, script) == 0)
            return scene->scripts[i].seconds;
    }
    return 0;
}

// Runs a script with the scenario of the moment.
static int run_script(const char *name, int (*work)(const scenario *scene, double seconds)) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr) {
        fprintf(stderr, "%s: %s\n", name, error);
        return 1;
    }
    int status = work(scene, script_seconds(scene, name));
    scenario_free(scene);
    return status;
}

// Loading.

[[noreturn]] static void become_insmod(double seconds) {
    char name[] = "insmod";
    char module[sizeof DRIVER_MODULE];
    char time[32];
    snprintf(module, sizeof module, "%s", DRIVER_MODULE);
    snprintf(time, sizeof time, "seconds=%g", seconds);
    char *arguments[] = {name, module, time, nullptr};
    execv(INSMOD_PROGRAM, arguments);
    _exit(127);
}

// Has the driver inserted into the kernel and waits for it. Returns insmod's exit status.
static int load(const char *script, double seconds) {
    pid_t child = fork();
    if (child == 0)
        become_insmod(seconds);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return complain(script, INSMOD_PROGRAM);
    int result = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (result != 0)
        fprintf(stderr, "%s: %s ended with status %d\n", script, INSMOD_PROGRAM, result);
    return result;
}

static int load_only(const scenario *, double seconds) {
    return load("apup_simple", seconds) == 0 ? 0 : 1;
}

// Starting.

static void start_services(const driver_state *state, const scenario *scene) {
    if (internal_address_add() != 0)
        complain("apup", GATEWAY_ADDRESS);
    if (wps_files_prepare(scene, APCFG_STORE) != 0)
        complain("apup", WPS_DIRECTORY);
    authenticator_end();
    int status = authenticator_start(state, APCFG_STORE);
    if (status < 0)
        complain("apup", HOSTAPD_PROGRAM);
    if (status > 0)
        fprintf(stderr, "apup: %s ended with status %d\n", HOSTAPD_PROGRAM, status);
}

// The VAPs are up, unless another script has taken them down in the meantime.
static int end_start(const scenario *scene) {
    driver_state state;
    int lock = store_lock(GATEWAY_SCRIPTS_LOCK);
    int failed = driver_start_end(scene, APCFG_STORE);
    driver_state_read(&state);
    int status = failed == 0 ? 0 : complain("apup", DRIVER_MODULE);
    if (failed == 0)
        start_services(&state, scene);
    if (lock >= 0)
        close(lock);
    // Not under the lock: whoever reads the table may hold its own lock for as long as he likes.
    if (failed == 0 && capable_table_complete(&state, scene) != 0)
        complain("apup", CAPABLE_TABLE);
    return status;
}

// One VAP after another, each when its part of the time is over.
static int start_vaps(const scenario *scene, double seconds) {
    int coming[SCENARIO_VAPS];
    int count = 0;
    if (driver_start_begin(scene, APCFG_STORE, coming, &count) != 0)
        return complain("apup", DRIVER_MODULE);
    name_absent_radios("apup", scene);
    for (int i = 0; i < count; i++) {
        sleep_seconds(seconds / count);
        if (driver_start_vap(scene, APCFG_STORE, coming[i]) != 0)
            return complain("apup", DRIVER_MODULE);
    }
    if (count == 0)
        sleep_seconds(seconds);
    return end_start(scene);
}

// A driver that has to be loaded first takes the first half of the time for that.
static int start(const scenario *scene, double seconds) {
    driver_state state;
    driver_state_read(&state);
    if (state.loaded)
        return start_vaps(scene, seconds);
    return load("apup", seconds / 2) == 0 ? start_vaps(scene, seconds / 2) : 1;
}

// Taking down.

static int remove_driver(void) {
    int lock = store_lock(GATEWAY_SCRIPTS_LOCK);
    int failed = driver_remove();
    int status = failed == 0 ? 0 : complain("fast_down.sh", GATEWAY_DRIVER_STATE);
    if (failed == 0) {
        authenticator_end();
        authenticator_clear_up();
    }
    if (lock >= 0)
        close(lock);
    return status;
}

// One VAP after another, the driver itself when the time is over.
static int take_down(const scenario *, double seconds) {
    driver_state state;
    int vaps[SCENARIO_VAPS];
    driver_state_read(&state);
    int count = driver_vaps_up(&state, vaps);
    for (int i = 0; i < count; i++) {
        if (driver_stop_vap(vaps[i]) != 0)
            return complain("fast_down.sh", GATEWAY_DRIVER_STATE);
        sleep_seconds(seconds / count);
    }
    if (count == 0)
        sleep_seconds(seconds);
    return remove_driver();
}

int tool_apup(int, char *const *) {
    return run_script("apup", start);
}

int tool_apup_simple(int, char *const *) {
    return run_script("apup_simple", load_only);
}

int tool_fast_down(int, char *const *) {
    return run_script("fast_down.sh", take_down);
}
