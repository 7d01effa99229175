#include "simulator/driver/driver_life.h"

#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

#include "simulator/board.h"
#include "simulator/driver/driver_parameters.h"
#include "simulator/driver/driver_start.h"
#include "simulator/driver/scans.h"
#include "simulator/store.h"

// A change of the driver's state, and what it needs.
struct change {
    const scenario *scene;
    const char *store_path;
    int vap;
    int *coming;
    int *count;
    // Returns 0, or -1 with errno; then nothing is written.
    int (*make)(driver_state *state, const change *wanted);
};

static int under_lock(const change *wanted) {
    int lock = driver_state_lock();
    driver_state state;
    driver_state_read(&state);
    int failed = wanted->make(&state, wanted);
    if (failed == 0)
        failed = driver_state_write(&state);
    int reason = errno;
    if (lock >= 0)
        close(lock);
    errno = reason;
    return failed;
}

// The same for a driver that has to be loaded.
static int when_loaded(driver_state *state) {
    errno = ENODEV;
    return state->loaded ? 0 : -1;
}

static void look_for_radios(driver_state *state) {
    for (int i = 0; i < SCENARIO_RADIOS; i++)
        state->absent[i] = !board_has_radio(i);
}

static int insert(driver_state *state, const change *) {
    if (!state->loaded)
        look_for_radios(state);
    state->loaded = true;
    return 0;
}

int driver_insert(void) {
    const change wanted = {nullptr, nullptr, 0, nullptr, nullptr, insert};
    return under_lock(&wanted);
}

// A decimal setting of the store, 0 when absent.
static int setting(const store_text *store, const char *name, int index) {
    char key[SETTING_KEY_SIZE];
    store_key(name, index, key, sizeof key);
    size_t length;
    const char *value = store_find(store, key, &length);
    // The value ends in LF, which atoi stops at, unless it is the first thing it sees.
    return value != nullptr && length > 0 ? atoi(value) : 0;
}

static bool is_wanted(const driver_state *state, const scenario_vap *vap, const store_text *store, int number) {
    // A radio's settings stand under the bare key for radio 1 and under suffix _2 for radio 0.
    return vap->declared && !state->absent[vap->radio] &&
           setting(store, "AP_RADIO_ENABLED", vap->radio == 1 ? 1 : 2) != 0 && setting(store, "AP_ENABLE", number) != 0;
}

// Takes the VAPs down that the store does not want, and gathers those that it does and that are not up. Returns 0, or
// -1 with errno.
static int compare_with_store(driver_state *state, const change *wanted, int *coming, int *count) {
    store_text store;
    *count = 0;
    if (store_load(wanted->store_path, &store) != 0)
        return -1;
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (!is_wanted(state, &wanted->scene->vaps[i], &store, i + 1))
            state->vaps[i] = {};
        else if (!state->vaps[i].up)
            coming[(*count)++] = i;
    }
    store_free(&store);
    return 0;
}

static int begin_start(driver_state *state, const change *wanted) {
    if (when_loaded(state) != 0)
        return -1;
    look_for_radios(state);
    for (int i = 0; i < SCENARIO_RADIOS; i++)
        driver_choose_channel(state, i, 0);
    return compare_with_store(state, wanted, wanted->coming, wanted->count);
}

int driver_start_begin(const scenario *scene, const char *store_path, int *coming, int *count) {
    const change wanted = {scene, store_path, 0, coming, count, begin_start};
    return under_lock(&wanted);
}

static int start_vap(driver_state *state, const change *wanted) {
    if (when_loaded(state) != 0)
        return -1;
    if (!state->vaps[wanted->vap].up)
        state->vaps[wanted->vap] = {true, driver_clock()};
    return driver_start_parameters(state, wanted->scene, wanted->store_path);
}

int driver_start_vap(const scenario *scene, const char *store_path, int vap) {
    const change wanted = {scene, store_path, vap, nullptr, nullptr, start_vap};
    return under_lock(&wanted);
}

static int end_start(driver_state *state, const change *wanted) {
    int late[SCENARIO_VAPS];
    int count;
    if (when_loaded(state) != 0 || compare_with_store(state, wanted, late, &count) != 0)
        return -1;
    for (int i = 0; i < count; i++)
        state->vaps[late[i]] = {true, driver_clock()};
    return driver_start_parameters(state, wanted->scene, wanted->store_path);
}

int driver_start_end(const scenario *scene, const char *store_path) {
    const change wanted = {scene, store_path, 0, nullptr, nullptr, end_start};
    return under_lock(&wanted);
}

static int stop_vap(driver_state *state, const change *wanted) {
    state->vaps[wanted->vap] = {};
    return 0;
}

int driver_stop_vap(int vap) {
    const change wanted = {nullptr, nullptr, vap, nullptr, nullptr, stop_vap};
    return under_lock(&wanted);
}

static int remove_driver(driver_state *state, const change *) {
    *state = {};
    driver_parameters_forget();
    scans_forget();
    return 0;
}

int driver_remove(void) {
    const change wanted = {nullptr, nullptr, 0, nullptr, nullptr, remove_driver};
    return under_lock(&wanted);
}

int driver_vaps_up(const driver_state *state, int *vaps) {
    int count = 0;
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (state->vaps[i].up)
            vaps[count++] = i;
    }
    return count;
}
