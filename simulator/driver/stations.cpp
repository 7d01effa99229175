#include "simulator/driver/stations.h"

#include <string.h>

double station_seconds(const scenario_station *station, const driver_state *state, double now) {
    return now - state->vaps[station->vap - 1].since - station->from;
}

bool station_is_there(const scenario_station *station, const driver_state *state, double now) {
    const driver_vap *vap = &state->vaps[station->vap - 1];
    bool has_come = station_seconds(station, state, now) >= 0;
    bool has_gone = station->until > 0 && now >= vap->since + station->until;
    return vap->up && has_come && !has_gone;
}

int station_association(const scenario *scene, const scenario_station *station) {
    int number = 1;
    for (const scenario_station *before = scene->stations; before < station; before++)
        number += before->vap == station->vap ? 1 : 0;
    return number;
}

int stations_of_vap(const scenario *scene, const driver_state *state, int vap, double now,
                    const scenario_station **stations, int size) {
    int count = 0;
    for (int i = 0; i < scene->station_count; i++) {
        const scenario_station *station = &scene->stations[i];
        if (station->vap - 1 != vap || !station_is_there(station, state, now))
            continue;
        if (count < size)
            stations[count] = station;
        count++;
    }
    return count;
}

const scenario_station *station_of_vap(const scenario *scene, const driver_state *state, int vap, double now,
                                       const uint8_t *mac) {
    for (int i = 0; i < scene->station_count; i++) {
        const scenario_station *station = &scene->stations[i];
        uint8_t octets[6];
        mac_octets(station->mac, octets);
        if (station->vap - 1 == vap && memcmp(octets, mac, sizeof octets) == 0 && station_is_there(station, state, now))
            return station;
    }
    return nullptr;
}
