#include "simulator/driver/driver_start.h"

#include <stdio.h>

#include "simulator/driver/driver_parameters.h"
#include "simulator/driver/mac_filter.h"
#include "simulator/driver/steering_tables.h"
#include "simulator/paths.h"
#include "simulator/store.h"

static int load_all(const driver_state *state, const scenario *scene, const store_text *store, store_text *lines) {
    char interface[16];
    int failed = 0;
    for (int i = 0; i < SCENARIO_RADIOS; i++) {
        snprintf(interface, sizeof interface, "wifi%d", i);
        // A radio's settings stand under the bare key for radio 1 and under suffix _2 for radio 0.
        if (scene->radios[i].declared)
            failed |= driver_parameters_load(interface, store, i == 1 ? 1 : 2, lines);
    }
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        snprintf(interface, sizeof interface, "ath%d", i);
        if (state->vaps[i].up)
            failed |= driver_parameters_load(interface, store, i + 1, lines) |
                      mac_filter_load(interface, store, i + 1, lines) |
                      steering_tables_load(interface, scene, i + 1, lines);
    }
    return failed;
}

int driver_start_parameters(const driver_state *state, const scenario *scene, const char *store_path) {
    store_text store;
    store_text lines = {};
    int failed = store_load(store_path, &store);
    if (failed == 0)
        failed = load_all(state, scene, &store, &lines);
    if (failed == 0)
        failed = lines_save(GATEWAY_PARAMETERS, &lines);
    store_free(&store);
    store_free(&lines);
    return failed;
}
