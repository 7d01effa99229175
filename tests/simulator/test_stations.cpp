// Which stations are associated at a moment.
#include <gtest/gtest.h>

#include "simulator/driver/stations.h"

namespace {

// Two VAPs that came up at 100 and 200, the first with a station that stays and one that is there from 10 to 30 seconds
// after it, the second with one.
struct Stations : testing::Test {
    scenario *scene = new scenario();
    driver_state state = {};

    Stations() {
        state.vaps[0] = {true, 100};
        state.vaps[8] = {true, 200};
        scene->stations[0].vap = 1;
        scene->stations[1].vap = 9;
        scene->stations[2].vap = 1;
        scene->stations[2].from = 10;
        scene->stations[2].until = 30;
        scene->station_count = 3;
    }
    ~Stations() override {
        delete scene;
    }
    int count(int vap, double now) {
        return stations_of_vap(scene, &state, vap, now, nullptr, 0);
    }
};

TEST_F(Stations, AStationIsThereFromItsFirstMomentToBeforeItsLast) {
    EXPECT_EQ(count(0, 109.9), 1);
    EXPECT_EQ(count(0, 110), 2);
    EXPECT_EQ(count(0, 129.9), 2);
    EXPECT_EQ(count(0, 130), 1);
}

TEST_F(Stations, AVapThatIsDownHasNone) {
    state.vaps[0].up = false;
    EXPECT_EQ(count(0, 115), 0);
    EXPECT_EQ(count(8, 205), 1);
}

TEST_F(Stations, TheyComeInTheOrderOfTheScenarioAndNoMoreThanAreAskedFor) {
    const scenario_station *stations[2] = {};
    EXPECT_EQ(stations_of_vap(scene, &state, 0, 115, stations, 2), 2);
    EXPECT_EQ(stations[0], &scene->stations[0]);
    EXPECT_EQ(stations[1], &scene->stations[2]);
    const scenario_station *one[2] = {};
    EXPECT_EQ(stations_of_vap(scene, &state, 0, 115, one, 1), 2);
    EXPECT_EQ(one[0], &scene->stations[0]);
    EXPECT_EQ(one[1], nullptr);
}

TEST_F(Stations, ItsSecondsRunFromItsComing) {
    EXPECT_EQ(station_seconds(&scene->stations[2], &state, 115), 5);
    EXPECT_EQ(station_seconds(&scene->stations[0], &state, 115), 15);
}

}  // namespace
