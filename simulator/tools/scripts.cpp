// apup, apup_simple, fast_down.sh: the driver's scripts, which load it, start its VAPs and take it down.
//
// They take the time that the scenario gives them, and do their work at the end of it: a script that is killed
// halfway has done nothing. The authenticator comes and goes with the VAPs.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "simulator/authenticator/restart.h"
#include "simulator/driver_parameters.h"
#include "simulator/driver_start.h"
#include "simulator/driver_state.h"
#include "simulator/internal_address.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"
#include "simulator/wps_files.h"

static void take_time(const scenario *scene, const char *script) {
    for (int i = 0; i < scene->script_count; i++) {
        if (strcmp(scene->scripts[i].name, script) != 0)
            continue;
        timespec left = {};
        double seconds = scene->scripts[i].seconds;
        left.tv_sec = (time_t)seconds;
        left.tv_nsec = (long)((seconds - (double)left.tv_sec) * 1e9);
        while (nanosleep(&left, &left) != 0) {
        }
    }
}

// What a script does to the driver, under the driver's lock, and what it does besides.
struct script {
    const char *name;
    void (*change)(driver_state *state, const scenario *scene);
    void (*then)(const driver_state *state, const scenario *scene);
};

static void complain(const char *script, const char *what) {
    fprintf(stderr, "%s: %s: %s\n", script, what, strerror(errno));
}

static void bring_up(driver_state *state, const scenario *scene) {
    driver_bring_up(state, scene, APCFG_STORE);
    if (driver_start_parameters(state, scene, APCFG_STORE) != 0)
        complain("apup", GATEWAY_PARAMETERS);
}

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

static void load(driver_state *state, const scenario *) {
    state->loaded = true;
}

static void leave_services(const driver_state *, const scenario *) {}

static void take_down(driver_state *state, const scenario *) {
    *state = {};
    driver_parameters_forget();
}

static void end_services(const driver_state *, const scenario *) {
    authenticator_end();
    authenticator_clear_up();
}

static const script apup = {"apup", bring_up, start_services};
static const script apup_simple = {"apup_simple", load, leave_services};
static const script fast_down = {"fast_down.sh", take_down, end_services};

// Changes the driver's state under its lock, and leaves the new state to the caller. Returns 0, or -1 with errno.
static int change_driver(const script *called, driver_state *state, const scenario *scene) {
    int lock = driver_state_lock();
    driver_state_read(state);
    called->change(state, scene);
    int failed = driver_state_write(state);
    if (lock >= 0)
        close(lock);
    return failed;
}

static int run_script(const script *called) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr) {
        fprintf(stderr, "%s: %s\n", called->name, error);
        return 1;
    }
    take_time(scene, called->name);
    driver_state state;
    int failed = change_driver(called, &state, scene);
    if (failed != 0)
        complain(called->name, GATEWAY_DRIVER_STATE);
    else
        called->then(&state, scene);
    scenario_free(scene);
    return failed == 0 ? 0 : 1;
}

int tool_apup(int, char *const *) {
    return run_script(&apup);
}

int tool_apup_simple(int, char *const *) {
    return run_script(&apup_simple);
}

int tool_fast_down(int, char *const *) {
    return run_script(&fast_down);
}
