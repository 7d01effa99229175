#include "simulator/driver/driver_state.h"

#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "simulator/paths.h"
#include "simulator/store.h"

double driver_clock(void) {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

static void read_state_line(driver_state *state, const char *line) {
    int number;
    unsigned channel;
    double time, end;
    if (strcmp(line, "loaded\n") == 0)
        state->loaded = true;
    else if (sscanf(line, "absent wifi%d", &number) == 1 && number >= 0 && number < SCENARIO_RADIOS)
        state->absent[number] = true;
    else if (sscanf(line, "up ath%d %lf", &number, &time) == 2 && number >= 0 && number < SCENARIO_VAPS)
        state->vaps[number] = {true, time};
    else if (sscanf(line, "channel wifi%d %u", &number, &channel) == 2 && number >= 0 && number < SCENARIO_RADIOS)
        state->channel[number] = channel;
    else if (sscanf(line, "switch wifi%d %u %lf", &number, &channel, &time) == 3 && number >= 0 &&
             number < SCENARIO_RADIOS)
        state->announced[number] = {channel, time};
    else if (sscanf(line, "scan wifi%d %lf %lf", &number, &time, &end) == 3 && number >= 0 && number < SCENARIO_RADIOS)
        state->scans[number] = {true, time, end};
}

void driver_state_read(driver_state *state) {
    *state = {};
    FILE *file = fopen(GATEWAY_DRIVER_STATE, "re");
    if (file == nullptr)
        return;
    char line[64];
    while (fgets(line, sizeof line, file) != nullptr)
        read_state_line(state, line);
    fclose(file);
}

int driver_state_write(const driver_state *state) {
    char beside[sizeof GATEWAY_DRIVER_STATE + 8];
    snprintf(beside, sizeof beside, "%s.new", GATEWAY_DRIVER_STATE);
    FILE *file = fopen(beside, "we");
    if (file == nullptr)
        return -1;
    if (state->loaded)
        fputs("loaded\n", file);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (state->vaps[i].up)
            fprintf(file, "up ath%d %.6f\n", i, state->vaps[i].since);
    }
    for (int i = 0; i < SCENARIO_RADIOS; i++) {
        if (state->absent[i])
            fprintf(file, "absent wifi%d\n", i);
        if (state->channel[i] != 0)
            fprintf(file, "channel wifi%d %u\n", i, state->channel[i]);
        if (state->announced[i].channel != 0)
            fprintf(file, "switch wifi%d %u %.6f\n", i, state->announced[i].channel, state->announced[i].at);
        if (state->scans[i].begun)
            fprintf(file, "scan wifi%d %.6f %.6f\n", i, state->scans[i].since, state->scans[i].until);
    }
    if (fclose(file) != 0)
        return -1;
    return rename(beside, GATEWAY_DRIVER_STATE);
}

int driver_state_lock(void) {
    // The same kind of lock as the store's, on a file of its own.
    return store_lock(GATEWAY_DRIVER_LOCK);
}

bool driver_has_interface(const driver_state *state, const char *name) {
    int vap = vap_of_interface(name);
    if (vap >= 0)
        return state->vaps[vap].up;
    int radio = radio_of_device(name);
    return radio >= 0 && state->loaded && !state->absent[radio];
}

unsigned driver_channel(const driver_state *state, int radio) {
    const driver_switch *announced = &state->announced[radio];
    return announced->channel != 0 && driver_clock() >= announced->at ? announced->channel : state->channel[radio];
}

void driver_choose_channel(driver_state *state, int radio, unsigned channel) {
    state->channel[radio] = channel;
    state->announced[radio] = {};
}

void driver_announce_channel(driver_state *state, int radio, unsigned channel, double at) {
    // Until then the radio stays where it is, which may be where an earlier announcement led it.
    state->channel[radio] = driver_channel(state, radio);
    state->announced[radio] = {channel, at};
}
