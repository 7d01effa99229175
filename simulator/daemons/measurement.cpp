#include "simulator/daemons/measurement.h"

#include <math.h>

#include "simulator/driver/stations.h"

// How long a value takes from its lowest to its highest and back.
constexpr double PERIOD_SECONDS = 60;

// How far the moving of a value lies behind that of another, so that a person sees them go their own ways.
constexpr double ACTIVITY_BEHIND = 15;
constexpr double RETRY_BEHIND = 25;
constexpr double NOISE_BEHIND = 40;

// Where a value stands that moves up to `swing` to either side: evenly up and evenly down.
static int moved(int middle, int swing, double time) {
    double place = fmod(time, PERIOD_SECONDS) / PERIOD_SECONDS;
    double height = place < 0.5 ? 4 * place - 1 : 3 - 4 * place;
    return middle + (int)lround(swing * height);
}

static int percent(int middle, int swing, double time) {
    int value = moved(middle, swing, time);
    return value < 0 ? 0 : value > 100 ? 100 : value;
}

static void measure_air(const scenario_air *air, double now, measurement *result) {
    result->utilisation = percent(air->utilisation, air->swing, now);
    result->activity = percent(air->activity, air->swing, now + ACTIVITY_BEHIND);
    // The busy time contains the utilisation, so they move together.
    result->busy = percent(air->busy, air->swing, now);
    result->retry = percent(air->retry, air->swing, now + RETRY_BEHIND);
    // Noise comes in peaks: they reach further up than the rest goes down, and pull the average with them.
    result->noise_median = moved(air->noise, air->swing, now + NOISE_BEHIND);
    result->noise_most = result->noise_median + air->swing;
    result->noise_least = result->noise_median - air->swing / 2;
    result->noise_average = result->noise_median + air->swing / 4;
}

// A 32-bit counter, as the driver's are: beyond its end it begins again.
static void add(int32_t *sum, uint64_t count) {
    *sum = (int32_t)((uint32_t)*sum + (uint32_t)count);
}

static int rssi_entry(int rssi) {
    int entry = rssi < 0 ? 0 : rssi / RSSI_ENTRY_WIDTH;
    return entry < RSSI_ENTRIES ? entry : RSSI_ENTRIES - 1;
}

static bool serves(const scenario *scene, const driver_state *state, int vap, int radio) {
    return state->vaps[vap].up && scene->vaps[vap].declared && scene->vaps[vap].radio == radio;
}

void measure(const scenario *scene, const driver_state *state, int radio, double now, measurement *result) {
    *result = {};
    measure_air(&scene->radios[radio].air, now, result);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (!serves(scene, state, i, radio))
            continue;
        add(&result->tx_packets, scenario_count(&scene->vaps[i].tx_packets, now - state->vaps[i].since));
        add(&result->rx_packets, scenario_count(&scene->vaps[i].rx_packets, now - state->vaps[i].since));
    }
    for (int i = 0; i < scene->station_count; i++) {
        const scenario_station *station = &scene->stations[i];
        if (scene->vaps[station->vap - 1].radio == radio && station_is_there(station, state, now))
            result->rssi[rssi_entry(station->rssi)]++;
    }
}

void collector_look(collector *self, const scenario *scene, const driver_state *state, double now) {
    const driver_vap *vap = &state->vaps[self->vap];
    if (!vap->up || !scene->vaps[self->vap].declared)
        return;
    int radio = scene->vaps[self->vap].radio;
    double begin = vap->since > self->started ? vap->since : self->started;
    if (now >= begin + scene->radios[radio].air.seconds)
        measure(scene, state, radio, now, &self->last);
}
