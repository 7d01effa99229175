// apup, apup_simple, fast_down.sh: the driver's scripts, which load it, start its VAPs and take it down.
//
// They take the time that the scenario gives them, and do their work at the end of it: a script that is killed
// halfway has done nothing.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "simulator/driver_state.h"
#include "simulator/internal_address.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"

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

static void start(driver_state *state, const scenario *scene) {
    driver_bring_up(state, scene, APCFG_STORE);
    if (internal_address_add() != 0)
        fprintf(stderr, "apup: %s: %s\n", GATEWAY_ADDRESS, strerror(errno));
}

static void load(driver_state *state, const scenario *) {
    state->loaded = true;
}

static void take_down(driver_state *state, const scenario *) {
    *state = {};
}

// Takes the script's time and changes the driver's state under its lock.
static int run_script(const char *name, void (*change)(driver_state *state, const scenario *scene)) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr) {
        fprintf(stderr, "%s: %s\n", name, error);
        return 1;
    }
    take_time(scene, name);
    int lock = driver_state_lock();
    driver_state state;
    driver_state_read(&state);
    change(&state, scene);
    int failed = driver_state_write(&state);
    if (lock >= 0)
        close(lock);
    scenario_free(scene);
    if (failed != 0)
        fprintf(stderr, "%s: %s: %s\n", name, GATEWAY_DRIVER_STATE, strerror(errno));
    return failed == 0 ? 0 : 1;
}

int tool_apup(int, char *const *) {
    return run_script("apup", start);
}

int tool_apup_simple(int, char *const *) {
    return run_script("apup_simple", load);
}

int tool_fast_down(int, char *const *) {
    return run_script("fast_down.sh", take_down);
}
