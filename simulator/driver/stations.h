// The stations that are associated at a moment: those of the scenario whose VAP is up and whose time has come.
//
// Touches nothing but what it is given. Any thread.
#pragma once

#include "simulator/driver/driver_state.h"

// As many as the driver tells of a VAP, which counts them in seven bits.
constexpr int STATIONS_TOLD = 127;

// Whether a station is associated at this time (driver_clock).
bool station_is_there(const scenario_station *station, const driver_state *state, double now);

// How long it has been there, in seconds; of no meaning for one that is not.
double station_seconds(const scenario_station *station, const driver_state *state, double now);

// The number of its association: the place that the scenario gives it among the stations of its VAP, from 1, which it
// keeps when others come and go.
int station_association(const scenario *scene, const scenario_station *station);

// The stations of a VAP (0 to 15) in the order in which the scenario has them, at most `size` of them. Returns how many
// there are, which may be more.
int stations_of_vap(const scenario *scene, const driver_state *state, int vap, double now,
                    const scenario_station **stations, int size);

// The station of a VAP that has this address (6 octets), null when it is not there.
const scenario_station *station_of_vap(const scenario *scene, const driver_state *state, int vap, double now,
                                       const uint8_t *mac);
