// The statistics collector: what it measures, and its processes, one an interface.
#include <string.h>

#include <algorithm>
#include <string>

#include "simulator/daemons/measurement.h"
#include "tests/simulator/daemons.h"

namespace {

// Measurements, at moments that the test chooses.

const std::string TWO_RADIOS =
    "radio 0 band=2.4 mac=00:03:7F:10:00:00\n"
    "radio 1 band=5 mac=00:03:7F:10:00:04\n"
    "vap 1 radio=0 bssid=00:03:7F:10:00:01\n"
    "vap 2 radio=0 bssid=00:03:7F:10:00:02\n"
    "vap 3 radio=0 bssid=00:03:7F:10:00:03\n"
    "vap 9 radio=1 bssid=00:03:7F:10:00:05\n";

// VAPs 1, 2 and 9 are up, since second 100, 105 and 100.
struct Measurement : testing::Test {
    scenario *scene = nullptr;
    driver_state state = {};

    void Take(const std::string &text) {
        char error[SCENARIO_ERROR_SIZE] = "";
        scenario_free(scene);
        scene = scenario_parse("test.scn", text.data(), text.size(), error, sizeof error);
        ASSERT_NE(scene, nullptr) << error;
        state.vaps[0] = state.vaps[8] = {true, 100};
        state.vaps[1] = {true, 105};
    }

    void TearDown() override {
        scenario_free(scene);
    }

    measurement At(double now, int radio = 0) {
        measurement result;
        measure(scene, &state, radio, now, &result);
        return result;
    }
};

std::string station(int vap, int rssi) {
    return "station " + std::to_string(vap) + " mac=28:6A:BA:4C:10:01 ip=192.168.0.20 rssi=" + std::to_string(rssi) +
           " tx_rate=1 rx_rate=1\n";
}

TEST_F(Measurement, PacketsAreThoseOfTheRadiosVapsThatAreUp) {
    Take(TWO_RADIOS +
         "counters 1 rx_packets=1000+10 tx_packets=2000+20 rx_bytes=0 tx_bytes=0\n"
         "counters 2 rx_packets=1+1 tx_packets=3+2 rx_bytes=0 tx_bytes=0\n"
         "counters 3 rx_packets=70000 tx_packets=70000 rx_bytes=0 tx_bytes=0\n"
         "counters 9 rx_packets=5 tx_packets=6 rx_bytes=0 tx_bytes=0\n");
    EXPECT_EQ(At(110).rx_packets, 1000 + 10 * 10 + 1 + 5);
    EXPECT_EQ(At(110).tx_packets, 2000 + 20 * 10 + 3 + 2 * 5);
    EXPECT_EQ(At(110, 1).rx_packets, 5);
    EXPECT_EQ(At(110, 1).tx_packets, 6);
}

TEST_F(Measurement, PacketCountsBeginAgainAtTheirEnd) {
    Take(TWO_RADIOS + "counters 1 rx_packets=2147483648 tx_packets=18446744073709551615+3 rx_bytes=0 tx_bytes=0\n");
    EXPECT_EQ(At(100).rx_packets, INT32_MIN);
    EXPECT_EQ(At(100).tx_packets, -1);
    EXPECT_EQ(At(101).tx_packets, 2);
}

TEST_F(Measurement, TheRssiTableCountsStationsInStepsOfTwo) {
    std::string text = TWO_RADIOS;
    for (int rssi : {-128, -1, 0, 1, 2, 3, 4, 71, 72, 73, 74, 127})
        text += station(rssi % 2 == 0 ? 1 : 2, rssi);
    Take(text);
    measurement table = At(110);
    EXPECT_EQ(table.rssi[0], 4);
    EXPECT_EQ(table.rssi[1], 2);
    EXPECT_EQ(table.rssi[2], 1);
    EXPECT_EQ(table.rssi[35], 1);
    EXPECT_EQ(table.rssi[36], 4);
    EXPECT_EQ(std::count(table.rssi, table.rssi + RSSI_ENTRIES, 0), RSSI_ENTRIES - 5);
    EXPECT_EQ(table.unused, 0);
}

TEST_F(Measurement, StationsOfVapsThatAreDownOrOfTheOtherRadioAreNotInTheTable) {
    Take(TWO_RADIOS + station(3, 10) + station(9, 20));
    measurement none = At(110);
    EXPECT_EQ(std::count(none.rssi, none.rssi + RSSI_ENTRIES, 0), RSSI_ENTRIES);
    EXPECT_EQ(At(110, 1).rssi[10], 1);
}

TEST_F(Measurement, WithoutSwingTheAirIsAsTheScenarioHasIt) {
    Take(TWO_RADIOS + "air 0 utilisation=35 activity=12 busy=41 noise=-95 retry=4 swing=0\n");
    for (double now : {110.0, 123.4, 1e6}) {
        measurement calm = At(now);
        EXPECT_EQ(calm.utilisation, 35);
        EXPECT_EQ(calm.activity, 12);
        EXPECT_EQ(calm.busy, 41);
        EXPECT_EQ(calm.noise_most, -95);
        EXPECT_EQ(calm.noise_least, -95);
        EXPECT_EQ(calm.noise_median, -95);
        EXPECT_EQ(calm.noise_average, -95);
        EXPECT_EQ(calm.retry, 4);
    }
}

TEST_F(Measurement, EveryRadioHasItsOwnAir) {
    Take(TWO_RADIOS + "air 1 utilisation=70 swing=0\n");
    EXPECT_EQ(At(110, 1).utilisation, 70);
    EXPECT_NE(At(110, 0).utilisation, 70);
}

TEST_F(Measurement, TheSameMomentIsMeasuredTheSameAndSoIsOneAMinuteLater) {
    Take(TWO_RADIOS + "air 0 swing=20\n");
    measurement first = At(111);
    measurement again = At(111);
    measurement later = At(171);
    EXPECT_EQ(memcmp(&first, &again, sizeof first), 0);
    EXPECT_EQ(memcmp(&first, &later, sizeof first), 0);
}

TEST_F(Measurement, TheAirMovesSlowlyUpToItsSwingToEitherSide) {
    Take(TWO_RADIOS + "air 0 utilisation=35 activity=40 busy=41 noise=-80 retry=30 swing=15\n");
    struct value {
        int32_t measurement::*member;
        int middle;
    };
    for (const value &moving :
         {value{&measurement::utilisation, 35}, value{&measurement::activity, 40}, value{&measurement::busy, 41},
          value{&measurement::noise_median, -80}, value{&measurement::retry, 30}}) {
        int least = INT32_MAX, most = INT32_MIN, before = At(120).*moving.member;
        for (int second = 120; second <= 180; second++) {
            int now = At(second).*moving.member;
            EXPECT_LE(abs(now - before), 1) << second;
            before = now;
            least = std::min(least, now);
            most = std::max(most, now);
        }
        EXPECT_EQ(least, moving.middle - 15);
        EXPECT_EQ(most, moving.middle + 15);
    }
}

TEST_F(Measurement, PercentagesStayPercentages) {
    Take(TWO_RADIOS + "air 0 utilisation=0 activity=100 busy=99 retry=1 swing=50\n");
    for (int second = 120; second < 180; second++) {
        measurement wild = At(second);
        for (int value : {wild.utilisation, wild.activity, wild.busy, wild.retry}) {
            EXPECT_GE(value, 0);
            EXPECT_LE(value, 100);
        }
    }
}

TEST_F(Measurement, TheNoiseReachesFurtherUpThanDown) {
    Take(TWO_RADIOS + "air 0 noise=-95 swing=8\n");
    measurement noise = At(123);
    EXPECT_EQ(noise.noise_most, noise.noise_median + 8);
    EXPECT_EQ(noise.noise_least, noise.noise_median - 4);
    EXPECT_EQ(noise.noise_average, noise.noise_median + 2);
}

TEST_F(Measurement, ARadioOfWhichTheScenarioSaysNothingHasSomeAir) {
    Take(TWO_RADIOS);
    EXPECT_GT(At(110).utilisation, 0);
    EXPECT_GT(At(110).busy, At(110).utilisation);
    EXPECT_LT(At(110).noise_most, -80);
}

// When a collector has measured.

const measurement NOTHING = {};

TEST_F(Measurement, TheFirstOneIsThereWhenItsTimeIsOver) {
    Take(TWO_RADIOS + "air 0 seconds=3\n");
    collector self = {0, 120, {}};
    collector_look(&self, scene, &state, 122.9);
    EXPECT_EQ(memcmp(&self.last, &NOTHING, sizeof NOTHING), 0);
    collector_look(&self, scene, &state, 123);
    measurement expected = At(123);
    EXPECT_EQ(memcmp(&self.last, &expected, sizeof expected), 0);
}

TEST_F(Measurement, TheFirstOneCanBeThereFromTheBeginning) {
    Take(TWO_RADIOS + "air 0 seconds=0\n");
    collector self = {0, 120, {}};
    collector_look(&self, scene, &state, 120);
    EXPECT_NE(memcmp(&self.last, &NOTHING, sizeof NOTHING), 0);
}

TEST_F(Measurement, TheFirstOneOfAnInterfaceThatCameUpLaterIsThereLater) {
    Take(TWO_RADIOS + "air 0 seconds=3\n");
    collector self = {0, 90, {}};
    collector_look(&self, scene, &state, 102);
    EXPECT_EQ(memcmp(&self.last, &NOTHING, sizeof NOTHING), 0);
    collector_look(&self, scene, &state, 103);
    EXPECT_NE(memcmp(&self.last, &NOTHING, sizeof NOTHING), 0);
}

TEST_F(Measurement, WithoutItsInterfaceTheLastOneStays) {
    Take(TWO_RADIOS + "air 0 seconds=0 swing=20\n");
    collector self = {0, 90, {}};
    collector_look(&self, scene, &state, 110);
    measurement last = self.last;
    state.vaps[0].up = false;
    collector_look(&self, scene, &state, 125);
    EXPECT_EQ(memcmp(&self.last, &last, sizeof last), 0);
}

TEST_F(Measurement, OfAnInterfaceThatTheScenarioDoesNotHaveThereIsNone) {
    Take(TWO_RADIOS + "air 0 seconds=0\n");
    state.vaps[4] = {true, 100};
    collector self = {4, 90, {}};
    collector_look(&self, scene, &state, 110);
    EXPECT_EQ(memcmp(&self.last, &NOTHING, sizeof NOTHING), 0);
}

TEST_F(Measurement, ItsRadioIsThatOfItsInterface) {
    Take(TWO_RADIOS + "air 1 seconds=0 utilisation=70 swing=0\n");
    collector self = {8, 90, {}};
    collector_look(&self, scene, &state, 110);
    EXPECT_EQ(self.last.utilisation, 70);
}

// Processes, under the names that links give them.

const std::string OPTIONS = " -r 30 -m 1800 -R 30";
const std::string SOCKET_0 = "/var/run/radstat/ath0";
const std::string SOCKET_8 = "/var/run/radstat/ath8";

class Radstat : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        run_shell("ln -sfT /usr/sbin/radstat /var/run/radstat0; ln -sfT /usr/sbin/radstat /var/run/radstat8");
        // Numbers that do not move but for the packets, which are there at once.
        replace_in_scenario("s/^air .*//");
        add_to_scenario("air 0 utilisation=35 swing=0 seconds=0\nair 1 utilisation=14 swing=0 seconds=0\n");
        mark = journal_mark();
    }

    void TearDown() override {
        for (const char *name : {"radstat", "radstat0", "radstat8"})
            end_all(name, SIGKILL);
        run_shell("rm -rf /var/run/radstat /var/run/radstat0 /var/run/radstat8");
        Platform::TearDown();
    }

    static void replace_in_scenario(const std::string &rule) {
        EXPECT_EQ(run({"sed", "-i", rule, GATEWAY_SCENARIO}).status, 0);
    }

    static void start(int interface) {
        std::string number = std::to_string(interface);
        start_in_background("/var/run/radstat" + number + " -i ath" + number + OPTIONS,
                            "/var/run/radstat/ath" + number);
    }
};

TEST_F(Radstat, AnswersTheRecordOfItsRadio) {
    start(0);
    start(8);
    std::string first = ask(SOCKET_0, "result");
    ASSERT_EQ(first.size(), 192u);
    EXPECT_EQ(number_at(first, 0), 35);
    // The home's two stations there, with 42 and 27 dB.
    EXPECT_EQ(number_at(first, 40 + 4 * 21), 1);
    EXPECT_EQ(number_at(first, 40 + 4 * 13), 1);
    EXPECT_EQ(number_at(ask(SOCKET_8, "result"), 0), 14);
}

TEST_F(Radstat, TheRecordHasEveryNumberInItsPlace) {
    replace_in_scenario("s/^\\(air\\|counters\\|station\\) .*//");
    add_to_scenario(
        "air 0 utilisation=11 activity=12 busy=13 noise=-90 retry=14 swing=0 seconds=0\n"
        "counters 1 rx_packets=15 tx_packets=16 rx_bytes=0 tx_bytes=0\n" +
        station(1, 0) + station(1, 73));
    start(0);
    std::string record = ask(SOCKET_0, "result");
    const int head[] = {11, 12, 13, -90, -90, -90, -90, 14, 16, 15, 1};
    for (size_t i = 0; i < sizeof head / sizeof head[0]; i++)
        EXPECT_EQ(number_at(record, 4 * i), head[i]) << 4 * i;
    EXPECT_EQ(number_at(record, 184), 1);
    EXPECT_EQ(number_at(record, 188), 0);
}

TEST_F(Radstat, ItsNumbersMove) {
    replace_in_scenario("s/^counters 1 .*/counters 1 rx_packets=0+10000 tx_packets=5+20000 rx_bytes=0 tx_bytes=0/");
    start(0);
    int32_t before = number_at(ask(SOCKET_0, "result"), 32);
    EXPECT_TRUE(eventually([&] { return number_at(ask(SOCKET_0, "result"), 32) > before; }));
}

TEST_F(Radstat, AnswersZerosUntilItsFirstMeasurementIsThere) {
    replace_in_scenario("s/seconds=0/seconds=0.3/");
    start(0);
    EXPECT_EQ(ask(SOCKET_0, "result"), std::string(192, '\0'));
    EXPECT_TRUE(eventually([] { return number_at(ask(SOCKET_0, "result"), 0) == 35; }));
}

TEST_F(Radstat, FollowsAnEditedScenarioAtOnceAndKeepsItsValuesWhileThatMakesNoSense) {
    start(0);
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 35);
    replace_in_scenario("s/utilisation=35/utilisation=77/");
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 77);
    replace_in_scenario("s/utilisation=77/utilisation=/");
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 77);
}

TEST_F(Radstat, WaitsForItsInterfaceAndKeepsTheLastValuesWhenThatGoes) {
    run({"fast_down.sh"});
    start(0);
    EXPECT_EQ(ask(SOCKET_0, "result"), std::string(192, '\0'));
    run({"apup"});
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 35);
    run({"fast_down.sh"});
    replace_in_scenario("s/utilisation=35/utilisation=77/");
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 35);
}

TEST_F(Radstat, KilledByItsNameItLeavesTheOtherOneAlone) {
    start(0);
    start(8);
    EXPECT_EQ(run_shell("/bin/ps | grep -c ' radstat[08]$'").output, "2\n");
    EXPECT_EQ(run({"killall", "radstat0"}).status, 0);
    EXPECT_TRUE(eventually([] { return pids_of("radstat0").empty(); }));
    EXPECT_FALSE(exists(SOCKET_0));
    EXPECT_EQ(ask(SOCKET_8, "result").size(), 192u);
    EXPECT_EQ(journal().back(), "datagram radstat8 result");
}

TEST_F(Radstat, OneFaultIsThatOfBoth) {
    start(0);
    start(8);
    run({"fault", "radstat", "zeros"});
    EXPECT_EQ(ask(SOCKET_0, "result") + ask(SOCKET_8, "result"), std::string(384, '\0'));
    run({"fault", "radstat", "missing"});
    EXPECT_EQ(pids_of("radstat0") + pids_of("radstat8"), "");
}

TEST_F(Radstat, RunsUnderItsOwnNameToo) {
    start_in_background("radstat -i ath0" + OPTIONS, SOCKET_0);
    EXPECT_NE(pids_of("radstat"), "");
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 35);
    EXPECT_EQ(journal(), (lines{"run radstat -i ath0" + OPTIONS, "datagram radstat result"}));
}

TEST_F(Radstat, TakesItsOptionsInAnyOrderAndWhateverNumbersTheyHave) {
    start_in_background("radstat -R 0 -m -1 -i ath0 -r -2147483648", SOCKET_0);
    EXPECT_EQ(number_at(ask(SOCKET_0, "result"), 0), 35);
}

TEST_F(Radstat, ServesAnInterfaceThatTheScenarioDoesNotHaveWithZeros) {
    start_in_background("radstat -i ath15" + OPTIONS, "/var/run/radstat/ath15");
    EXPECT_EQ(ask("/var/run/radstat/ath15", "result"), std::string(192, '\0'));
}

TEST_F(Radstat, RefusesBadUsageWithStatus1) {
    for (const char *options :
         {"", "-i ath0", "-i ath0 -r 30 -m 1800", "-r 30 -m 1800 -R 30", "-i ath0 -r 30 -m 1800 -R",
          "-i ath0 -r 30 -m 1800 -R 30 more", "-i ath0 -r 30 -m 1800 -R 30 -i ath1", "-i ath0 -r 30 -m 1800 -R 30 -x 1",
          "-i ath0 -r 30 -m 1800 -R ''", "-i ath0 -r 30s -m 1800 -R 30", "-i ath0 -r 30 -m 2147483648 -R 30",
          "ath0 30 1800 30", "-iath0 -r 30 -m 1800 -R 30"}) {
        outcome refused = run_shell(std::string("timeout 5 radstat ") + options);
        EXPECT_EQ(refused.status, 1) << options;
        EXPECT_EQ(refused.errors, "usage: radstat -i athN -r RATE -m INTERVAL -R VALUE\n") << options;
    }
    for (const char *interface : {"ath16", "ath-1", "wifi0", "../ath0", "''"}) {
        outcome refused = run_shell(std::string("timeout 5 radstat -i ") + interface + OPTIONS);
        EXPECT_EQ(refused.status, 1) << interface;
        EXPECT_TRUE(refused.errors.starts_with("radstat: there is no interface \"")) << refused.errors;
    }
    EXPECT_FALSE(exists("/var/run/radstat"));
}

TEST_F(Radstat, SaysWhyItsSocketCannotBeOpened) {
    write_file("/var/run/radstat", "in the way of the folder");
    outcome refused = run_shell("timeout 5 radstat -i ath0" + OPTIONS);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "radstat: /var/run/radstat/ath0: Not a directory\n");
}

TEST_F(Radstat, TakesThePlaceOfAPlainFileOfItsSocketsName) {
    run_shell("mkdir /var/run/radstat; echo text > " + SOCKET_0);
    start(0);
    EXPECT_EQ(ask(SOCKET_0, "result").size(), 192u);
}

TEST_F(Radstat, ANameThatOnlyBeginsLikeItsOwnIsNone) {
    run_shell("ln -sfT /usr/sbin/radstat /tmp/radstatx");
    EXPECT_EQ(run_shell("/tmp/radstatx -i ath0" + OPTIONS).status, 127);
}

}  // namespace
