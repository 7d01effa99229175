// Band steering: what each operation reads, writes, asks the driver, prints and refuses.
#include "steering/band_steering.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "steering/steering_tables.h"
#include "tests/support/driver.h"
#include "tests/support/low_memory.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

const char TABLE_FILE[] = "/nvram/5gcapabletable";

void reset_all() {
    reset_platform();
    reset_driver();
    install_tool("cfg");
    install_tool("wifitool");
    write_store({});
    std::error_code error;
    std::filesystem::create_directories("/nvram", error);
    ASSERT_FALSE(error) << error.message();
    std::filesystem::remove_all(TABLE_FILE, error);
    ASSERT_FALSE(error) << error.message();
}

struct BandSteering : testing::Test {
    void SetUp() override {
        reset_all();
    }
};

// The descriptor that is given out next: the same before and after a call that leaves none open.
int lowest_free_descriptor() {
    int descriptor = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    close(descriptor);
    return descriptor;
}

// --- settings of the whole device ---

// One key, as it was agreed: who reads and writes it, which values it takes, what is added to them in the store.
struct device_row {
    const char *key;
    const char *getter;
    std::function<int(int *)> get;
    std::function<int(int)> set;
    int lowest;
    int highest;
    int offset;
};

std::function<int(int *)> with_unsigned(int (*getter)(u_int *)) {
    return [getter](int *value) { return getter(reinterpret_cast<u_int *>(value)); };
}

std::function<int(int)> with_unsigned(int (*setter)(u_int)) {
    return [setter](int value) { return setter(static_cast<u_int>(value)); };
}

std::function<int(int *)> at(int index, int (*getter)(int, u_int *)) {
    return [=](int *value) { return getter(index, reinterpret_cast<u_int *>(value)); };
}

std::function<int(int)> at(int index, int (*setter)(int, u_int)) {
    return [=](int value) { return setter(index, static_cast<u_int>(value)); };
}

std::function<int(int *)> at(int index, int (*getter)(int, int *)) {
    return [=](int *value) { return getter(index, value); };
}

std::function<int(int)> at(int index, int (*setter)(int, int)) {
    return [=](int value) { return setter(index, value); };
}

const device_row DEVICE_ROWS[] = {
    {"BS_ENABLE", "wlan_getBandSteerEnable", wlan_getBandSteerEnable, wlan_setBandSteerEnable, 0, 3, 0},
    {"BS_IS_RSSI_STEERPOINT_DG", "wlan_getBandSteer2gRssiLowLimitThreshold", wlan_getBandSteer2gRssiLowLimitThreshold,
     wlan_setBandSteer2gRssiLowLimitThreshold, -255, 0, 100},
    {"BS_IS_RSSI_STEERING_POINT_UG", "wlan_getBandSteer5gRssiGoodLimitThreshold",
     wlan_getBandSteer5gRssiGoodLimitThreshold, wlan_setBandSteer5gRssiGoodLimitThreshold, -255, 0, 100},
    {"BS_BANDMON_MUCHECK_INTERVAL_W2", "wlan_getBandSteerUtilSampleRate", at(1, wlan_getBandSteerUtilSampleRate),
     at(1, wlan_setBandSteerUtilSampleRate), INT_MIN, INT_MAX, 0},
    {"BS_OL_MU_AVG_PERIOD", "wlan_getBandSteerUtilAvgPeriod", at(1, wlan_getBandSteerUtilAvgPeriod),
     at(1, wlan_setBandSteerUtilAvgPeriod), INT_MIN, INT_MAX, 0},
    {"BS_SE_STEERINGPROHIBITTIME", "wlan_getBandSteerDeferPeriod", at(1, wlan_getBandSteerDeferPeriod),
     at(1, wlan_setBandSteerDeferPeriod), INT_MIN, INT_MAX, 0},
    {"BS_SE_TARGETLOWRSSITHRESHOLD_W2", "wlan_getBandSteerAssocLowRssiThreshold",
     at(1, wlan_getBandSteerAssocLowRssiThreshold), at(1, wlan_setBandSteerAssocLowRssiThreshold), -255, 0, 100},
    {"BS_SE_TARGETLOWRSSITHRESHOLD_W2", "wlan_getBandSteerAssocLowRssiThreshold",
     at(8, wlan_getBandSteerAssocLowRssiThreshold), at(8, wlan_setBandSteerAssocLowRssiThreshold), -255, 0, 100},
    {"BS_SE_TARGETLOWRSSITHRESHOLD_W5", "wlan_getBandSteerAssocLowRssiThreshold",
     at(9, wlan_getBandSteerAssocLowRssiThreshold), at(9, wlan_setBandSteerAssocLowRssiThreshold), -255, 0, 100},
    {"BS_SE_TARGETLOWRSSITHRESHOLD_W5", "wlan_getBandSteerAssocLowRssiThreshold",
     at(16, wlan_getBandSteerAssocLowRssiThreshold), at(16, wlan_setBandSteerAssocLowRssiThreshold), -255, 0, 100},
    {"BS_SE_TSTEERING", "wlan_getBandSteerTime", with_unsigned(wlan_getBandSteerTime),
     with_unsigned(wlan_setBandSteerTime), 0, 20, 0},
    {"BS_SE_AUTHREJMAX", "wlan_getBandSteerCount", with_unsigned(wlan_getBandSteerCount),
     with_unsigned(wlan_setBandSteerCount), 0, 3, 0},
};

// How the rows' keys stand in a store, each with the same value.
std::vector<std::string> every_key_with(const std::string &value) {
    std::vector<std::string> lines;
    for (const device_row &row : DEVICE_ROWS) {
        lines.push_back(row.key + ("=" + value));
    }
    return lines;
}

// Runs the same check for every row on a clean platform.
template <typename Check>
void for_every_device_row(Check check) {
    for (const device_row &row : DEVICE_ROWS) {
        SCOPED_TRACE(row.key);
        reset_all();
        check(row);
    }
}

TEST_F(BandSteering, EveryDeviceSettingIsWrittenUnderItsPlainKeyFromBorderToBorder) {
    for_every_device_row([](const device_row &row) {
        calls expected;
        for (int value : {row.lowest, row.lowest + 1, row.highest - 1, row.highest}) {
            EXPECT_EQ(row.set(value), 0) << value;
            expected.push_back(std::string("cfg -a ") + row.key + "=" + std::to_string(value + row.offset));
        }
        EXPECT_EQ(tool_calls(), expected);
    });
}

TEST_F(BandSteering, ADeviceSettingBesideItsRangeIsRefusedAndNotWritten) {
    for_every_device_row([](const device_row &row) {
        if (row.lowest == INT_MIN) {
            return;
        }
        for (int value : {row.lowest - 1, row.highest + 1, INT_MIN, INT_MAX}) {
            EXPECT_EQ(row.set(value), -1) << value;
        }
        EXPECT_EQ(tool_calls(), calls{});
    });
}

TEST_F(BandSteering, ADeviceSettingIsReadFromItsPlainKeyAlone) {
    for_every_device_row([](const device_row &row) {
        std::vector<std::string> lines;
        for (const device_row &other : DEVICE_ROWS) {
            bool same = strcmp(other.key, row.key) == 0;
            lines.push_back(other.key + std::string(same ? "=2" : "=11"));
            lines.push_back(other.key + std::string("_2=12"));
            lines.push_back(other.key + std::string("_9=13"));
        }
        write_store(lines);
        int value = UNTOUCHED;
        EXPECT_EQ(row.get(&value), 0);
        EXPECT_EQ(value, 2 - row.offset);
    });
}

TEST_F(BandSteering, ADeviceSettingThatIsNotStoredFailsAndLeavesTheOutput) {
    for_every_device_row([](const device_row &row) {
        for (const auto &lines : {std::vector<std::string>{}, every_key_with("")}) {
            write_store(lines);
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(&value), -1);
            EXPECT_EQ(value, UNTOUCHED);
        }
    });
}

TEST_F(BandSteering, TextThatIsNoNumberReadsAsZero) {
    for_every_device_row([](const device_row &row) {
        for (const std::string &text : {std::string("never"), std::string(1700, 'x')}) {
            write_store(every_key_with(text));
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(&value), 0);
            EXPECT_EQ(value, 0 - row.offset);
        }
        write_store(every_key_with("7 dB"));
        int value = UNTOUCHED;
        EXPECT_EQ(row.get(&value), 0);
        EXPECT_EQ(value, 7 - row.offset);
    });
}

// What the range would refuse may be there all the same; at the lower end the subtraction wraps.
TEST_F(BandSteering, WhateverNumberIsStoredIsRead) {
    for_every_device_row([](const device_row &row) {
        write_store(every_key_with("2147483647"));
        int value = UNTOUCHED;
        EXPECT_EQ(row.get(&value), 0);
        EXPECT_EQ(value, INT_MAX - row.offset);
        write_store(every_key_with("-2147483648"));
        EXPECT_EQ(row.get(&value), 0);
        EXPECT_EQ(value, row.offset == 0 ? INT_MIN : 2147483548);
    });
}

TEST_F(BandSteering, ReadingADeviceSettingIsLoggedWithItsKeyAndText) {
    for_every_device_row([](const device_row &row) {
        write_store(every_key_with("30 x"));
        std::string key = row.key;
        std::string name = row.getter;
        EXPECT_EQ(debug_lines([&] {
                      int value = UNTOUCHED;
                      EXPECT_EQ(row.get(&value), 0);
                  }),
                  "[VLK-API] athcfg_getbyname index -1, Param: " + key + "= is 30 x\n" + "[VLK-API] " + name + " " +
                      name + ": get " + key + " 30 x\n");
    });
}

TEST_F(BandSteering, ReadingADeviceSettingThatIsNotStoredIsLoggedByTheStoreAlone) {
    for_every_device_row([](const device_row &row) {
        std::string key = row.key;
        EXPECT_EQ(debug_lines([&] {
                      int value = UNTOUCHED;
                      EXPECT_EQ(row.get(&value), -1);
                  }),
                  "[VLK-API] getWifiParam " + key + "= does not exist in /tmp/.apcfg\n" +
                      "[VLK-API] athcfg_getbyname index -1, Param: " + key + "= is \n");
    });
}

TEST_F(BandSteering, WritingADeviceSettingSucceedsWhateverBecomesOfIt) {
    for_every_device_row([](const device_row &row) {
        begin_descriptor_shortage();
        int status = row.set(0);
        end_descriptor_shortage();
        EXPECT_EQ(status, 0);
        install_tool("cfg", "garbage\n", 1);
        EXPECT_EQ(row.set(0), 0);
    });
}

TEST_F(BandSteering, UtilisationAndDeferSettingsIgnoreTheIndex) {
    for (int index : {INT_MIN, -1, 0, 1, 2, 16, 17, INT_MAX}) {
        reset_all();
        write_store({"BS_BANDMON_MUCHECK_INTERVAL_W2=1", "BS_OL_MU_AVG_PERIOD=2", "BS_SE_STEERINGPROHIBITTIME=3"});
        EXPECT_EQ(number_of(wlan_getBandSteerUtilSampleRate, index), 1);
        EXPECT_EQ(number_of(wlan_getBandSteerUtilAvgPeriod, index), 2);
        EXPECT_EQ(number_of(wlan_getBandSteerDeferPeriod, index), 3);
        EXPECT_EQ(wlan_setBandSteerUtilSampleRate(index, 4), 0);
        EXPECT_EQ(wlan_setBandSteerUtilAvgPeriod(index, 5), 0);
        EXPECT_EQ(wlan_setBandSteerDeferPeriod(index, 6), 0);
        EXPECT_EQ(tool_calls(), (calls{"cfg -a BS_BANDMON_MUCHECK_INTERVAL_W2=4", "cfg -a BS_OL_MU_AVG_PERIOD=5",
                                       "cfg -a BS_SE_STEERINGPROHIBITTIME=6"}))
            << index;
    }
}

// --- the association threshold chooses its key by the index ---

constexpr int NO_VAP[] = {INT_MIN, -1, 0, 17, 20, INT_MAX};

TEST_F(BandSteering, AnAssociationThresholdOfNoVapIsNotWrittenAndIsNoFailure) {
    for (int index : NO_VAP) {
        EXPECT_EQ(wlan_setBandSteerAssocLowRssiThreshold(index, -60), 0) << index;
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(BandSteering, AnAssociationThresholdOutOfRangeIsRefusedForEveryIndex) {
    for (int index : NO_VAP) {
        EXPECT_EQ(wlan_setBandSteerAssocLowRssiThreshold(index, -256), -1) << index;
        EXPECT_EQ(wlan_setBandSteerAssocLowRssiThreshold(index, 1), -1) << index;
    }
}

TEST_F(BandSteering, AnAssociationThresholdOfNoVapCannotBeRead) {
    write_store({"BS_SE_TARGETLOWRSSITHRESHOLD_W2=20", "BS_SE_TARGETLOWRSSITHRESHOLD_W5=25"});
    for (int index : NO_VAP) {
        int dbm = UNTOUCHED;
        EXPECT_EQ(wlan_getBandSteerAssocLowRssiThreshold(index, &dbm), -1) << index;
        EXPECT_EQ(dbm, UNTOUCHED) << index;
    }
}

TEST_F(BandSteering, EveryVapHasTheAssociationThresholdOfItsRadio) {
    write_store({"BS_SE_TARGETLOWRSSITHRESHOLD_W2=20", "BS_SE_TARGETLOWRSSITHRESHOLD_W5=25"});
    for (int index = 1; index <= 16; index++) {
        EXPECT_EQ(number_of(wlan_getBandSteerAssocLowRssiThreshold, index), index <= 8 ? -80 : -75) << index;
    }
}

// --- the inactivity times ---

const std::vector<std::string> INACTIVITY_STORE = {"BS_IS_NORM_INACT_TIMEOUT=10", "BS_IS_OVERLOAD_INACT_TIMEOUT=20"};

struct inactivity_times {
    int status;
    u_int normal;
    u_int overload;
    bool operator==(const inactivity_times &) const = default;
};

inactivity_times inactivity(int index) {
    inactivity_times times = {0, 4711, 4712};
    times.status = wlan_getBandSteerInactivitySteerTime(index, &times.normal, &times.overload);
    return times;
}

constexpr inactivity_times NO_TIMES = {-1, 4711, 4712};

TEST_F(BandSteering, InactivityTimesAreWrittenUnderTheSameKeysForEveryVap) {
    for (int index = 1; index <= 16; index++) {
        reset_all();
        EXPECT_EQ(wlan_setBandSteerInactivitySteerTime(index, 10, 20), 0);
        EXPECT_EQ(tool_calls(), (calls{"cfg -a BS_IS_NORM_INACT_TIMEOUT=10", "cfg -a BS_IS_OVERLOAD_INACT_TIMEOUT=20"}))
            << index;
    }
}

TEST_F(BandSteering, InactivityTimesOfNoVapAreNotWrittenAndAreNoFailure) {
    for (int index : NO_VAP) {
        EXPECT_EQ(wlan_setBandSteerInactivitySteerTime(index, 10, 20), 0) << index;
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(BandSteering, InactivityTimesMayBeAnyNumber) {
    EXPECT_EQ(wlan_setBandSteerInactivitySteerTime(1, UINT_MAX, 0x80000000U), 0);
    EXPECT_EQ(tool_calls(),
              (calls{"cfg -a BS_IS_NORM_INACT_TIMEOUT=-1", "cfg -a BS_IS_OVERLOAD_INACT_TIMEOUT=-2147483648"}));
    write_store({"BS_IS_NORM_INACT_TIMEOUT=-1", "BS_IS_OVERLOAD_INACT_TIMEOUT=soon"});
    EXPECT_EQ(inactivity(1), (inactivity_times{0, UINT_MAX, 0}));
}

TEST_F(BandSteering, InactivityTimesAreReadForOneIndexMoreThanTheyAreWrittenFor) {
    write_store(INACTIVITY_STORE);
    for (int index = 1; index <= 17; index++) {
        EXPECT_EQ(inactivity(index), (inactivity_times{0, 10, 20})) << index;
    }
    EXPECT_EQ(wlan_setBandSteerInactivitySteerTime(17, 1, 2), 0);
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(BandSteering, InactivityTimesOfNoVapCannotBeRead) {
    write_store(INACTIVITY_STORE);
    for (int index : {INT_MIN, -1, 0, 18, INT_MAX}) {
        EXPECT_EQ(inactivity(index), NO_TIMES) << index;
    }
}

TEST_F(BandSteering, InactivityTimesAreReadOnlyWhenBothAreStored) {
    for (const std::vector<std::string> &lines :
         {std::vector<std::string>{}, {INACTIVITY_STORE[0]}, {INACTIVITY_STORE[1]}}) {
        write_store(lines);
        EXPECT_EQ(inactivity(1), NO_TIMES);
    }
}

TEST_F(BandSteering, InactivityTimesAreReadFromThePlainKeys) {
    write_store({"BS_IS_NORM_INACT_TIMEOUT_9=1", "BS_IS_OVERLOAD_INACT_TIMEOUT_9=2"});
    EXPECT_EQ(inactivity(9), NO_TIMES);
}

TEST_F(BandSteering, ReadingTheInactivityTimesIsLoggedInOneLine) {
    write_store({"BS_IS_NORM_INACT_TIMEOUT=10 s", "BS_IS_OVERLOAD_INACT_TIMEOUT=" + std::string(1600, '2')});
    std::string lines = debug_lines([] { inactivity(9); });
    EXPECT_EQ(lines,
              "[VLK-API] athcfg_getbyname index -1, Param: BS_IS_NORM_INACT_TIMEOUT= is 10 s\n"
              "[VLK-API] athcfg_getbyname index -1, Param: BS_IS_OVERLOAD_INACT_TIMEOUT= is " +
                  std::string(1600, '2') +
                  "\n"
                  "[VLK-API] wlan_getBandSteerInactivitySteerTime wlan_getBandSteerInactivitySteerTime: get "
                  "BS_IS_NORM_INACT_TIMEOUT 10 s, BS_IS_OVERLOAD_INACT_TIMEOUT " +
                  std::string(1600, '2') + "\n");
}

TEST_F(BandSteering, ReadingOneInactivityTimeAloneIsNotLogged) {
    write_store({INACTIVITY_STORE[0]});
    EXPECT_FALSE(contains(debug_lines([] { inactivity(1); }), "wlan_getBandSteerInactivitySteerTime"));
}

// --- settings of a BSS ---

struct pair_row {
    const char *key;
    int (*get)(int, int *);  // null for the one that asks the driver as well
    const char *getter;
    int (*set)(int, int);
    int lowest;
    int highest;
};

const pair_row PAIR_ROWS[] = {
    {"BS_BSS_ENABLE", nullptr, nullptr, wlan_setBssBandSteerEnable, 0, 2},
    {"BS_BSS_RSSI_THRESHOLD5", wlan_getBssBandSteer5gRssiThreshold, "wlan_getBssBandSteer5gRssiThreshold",
     wlan_setBssBandSteer5gRssiThreshold, -100, -1},
    {"BS_BSS_RSSI_DELTA_THRESHOLD", wlan_getBssBandSteerDelta5gRssiThreshold,
     "wlan_getBssBandSteerDelta5gRssiThreshold", wlan_setBssBandSteerDelta5gRssiThreshold, 0, 100},
    {"BS_BSS_TEMP_TIMEOUT2", wlan_getBssBandSteer2gTempTimeout, "wlan_getBssBandSteer2gTempTimeout",
     wlan_setBssBandSteer2gTempTimeout, 0, 100000},
};

// What stands behind the keys of a pair.
const struct {
    int index;
    const char *suffix_2g;
    const char *suffix_5g;
} PAIRS[] = {
    {1, "", "_9"},    {2, "_2", "_10"}, {3, "_3", "_11"}, {4, "_4", "_12"},
    {5, "_5", "_13"}, {6, "_6", "_14"}, {7, "_7", "_15"}, {8, "_8", "_16"},
};

constexpr int NO_PAIR[] = {INT_MIN, -1, 0, 9, 10, 16, 17, INT_MAX};

struct BandSteeringOfABss : BandSteering {};

TEST_F(BandSteeringOfABss, IsWrittenUnderTheKeysOfBothVaps) {
    for (const pair_row &row : PAIR_ROWS) {
        for (const auto &pair : PAIRS) {
            SCOPED_TRACE(row.key + std::string(pair.suffix_2g));
            reset_all();
            EXPECT_EQ(row.set(pair.index, row.lowest + 1), 0);
            std::string value = "=" + std::to_string(row.lowest + 1);
            EXPECT_EQ(tool_calls(), (calls{std::string("cfg -a ") + row.key + pair.suffix_2g + value,
                                           std::string("cfg -a ") + row.key + pair.suffix_5g + value}));
        }
    }
}

TEST_F(BandSteeringOfABss, IsTakenAtTheBordersOfItsRangeAndRefusedBesideThem) {
    for (const pair_row &row : PAIR_ROWS) {
        SCOPED_TRACE(row.key);
        reset_all();
        for (int value : {row.lowest - 1, row.highest + 1, INT_MIN, INT_MAX}) {
            EXPECT_EQ(row.set(1, value), -1) << value;
            EXPECT_EQ(row.set(8, value), -1) << value;
        }
        EXPECT_EQ(tool_calls(), calls{});
        EXPECT_EQ(row.set(1, row.lowest), 0);
        EXPECT_EQ(row.set(8, row.highest), 0);
        std::string low = "=" + std::to_string(row.lowest);
        std::string high = "=" + std::to_string(row.highest);
        std::string write = std::string("cfg -a ") + row.key;
        EXPECT_EQ(tool_calls(), (calls{write + low, write + "_9" + low, write + "_8" + high, write + "_16" + high}));
    }
}

TEST_F(BandSteeringOfABss, IsRefusedForAnIndexOfThe5GhzRadioOrOfNoVap) {
    for (const pair_row &row : PAIR_ROWS) {
        for (int index : NO_PAIR) {
            EXPECT_EQ(row.set(index, row.lowest), -1) << row.key << " of " << index;
        }
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(BandSteeringOfABss, IsWrittenAsWholeKeyNames) {
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_setBssBandSteerEnable(3, 1), 0); }),
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index -1, execute cmd: cfg -a BS_BSS_ENABLE_3=\"1\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a BS_BSS_ENABLE_3=\"1\"\n"
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index -1, execute cmd: cfg -a BS_BSS_ENABLE_11=\"1\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a BS_BSS_ENABLE_11=\"1\"\n");
}

TEST_F(BandSteeringOfABss, WritingSucceedsWhateverBecomesOfIt) {
    for (const pair_row &row : PAIR_ROWS) {
        begin_descriptor_shortage();
        int status = row.set(2, row.lowest);
        end_descriptor_shortage();
        EXPECT_EQ(status, 0) << row.key;
    }
    install_tool("cfg", "garbage\n", 1);
    EXPECT_EQ(wlan_setBssBandSteerEnable(2, 1), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a BS_BSS_ENABLE_2=1", "cfg -a BS_BSS_ENABLE_10=1"}));
}

TEST_F(BandSteeringOfABss, IsReadFromTheKeyOfThe2GhzVap) {
    for (const pair_row &row : PAIR_ROWS) {
        for (const auto &pair : PAIRS) {
            SCOPED_TRACE(row.key + std::string(pair.suffix_2g));
            std::vector<std::string> lines;
            for (const auto &other : PAIRS) {
                lines.push_back(std::string(row.key) + other.suffix_2g + "=" + std::to_string(other.index));
                lines.push_back(std::string(row.key) + other.suffix_5g + "=99");
            }
            write_store(lines);
            auto get = row.get ? row.get : wlan_getBssBandSteerEnable;
            EXPECT_EQ(number_of(get, pair.index), pair.index);
        }
    }
}

TEST_F(BandSteeringOfABss, CannotBeReadForAnIndexOfThe5GhzRadioOrOfNoVap) {
    std::vector<std::string> lines;
    for (const pair_row &row : PAIR_ROWS) {
        for (const char *suffix : {"=1", "_9=1", "_10=1", "_16=1", "_17=1"}) {
            lines.push_back(std::string(row.key) + suffix);
        }
    }
    write_store(lines);
    for (const pair_row &row : PAIR_ROWS) {
        for (int index : NO_PAIR) {
            int value = UNTOUCHED;
            auto get = row.get ? row.get : wlan_getBssBandSteerEnable;
            EXPECT_EQ(get(index, &value), -1) << row.key << " of " << index;
            EXPECT_EQ(value, UNTOUCHED) << row.key << " of " << index;
        }
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(BandSteeringOfABss, ReadingFailsWhenNothingIsStored) {
    write_store({"BS_BSS_RSSI_THRESHOLD5_3=", "BS_BSS_RSSI_DELTA_THRESHOLD_3=", "BS_BSS_TEMP_TIMEOUT2_3="});
    for (const pair_row &row : PAIR_ROWS) {
        for (int index : {1, 3}) {
            int value = UNTOUCHED;
            if (row.get) {
                EXPECT_EQ(row.get(index, &value), -1) << row.key;
            }
            EXPECT_EQ(value, UNTOUCHED) << row.key;
        }
    }
}

TEST_F(BandSteeringOfABss, WhateverIsStoredIsReadAsItIs) {
    for (const pair_row &row : PAIR_ROWS) {
        if (!row.get) {
            continue;
        }
        std::string key = row.key;
        write_store({key + "=-2147483648", key + "_2=2147483647", key + "_3=" + std::string(1700, 'x')});
        EXPECT_EQ(number_of(row.get, 1), INT_MIN) << key;
        EXPECT_EQ(number_of(row.get, 2), INT_MAX) << key;
        EXPECT_EQ(number_of(row.get, 3), 0) << key;
    }
}

TEST_F(BandSteeringOfABss, ReadingIsLoggedWithTheKeyWithoutItsSuffix) {
    for (const pair_row &row : PAIR_ROWS) {
        if (!row.get) {
            continue;
        }
        std::string key = row.key;
        std::string name = row.getter;
        write_store({key + "_3=7 x"});
        EXPECT_EQ(debug_lines([&] { number_of(row.get, 3); }), "[VLK-API] athcfg_getbyname index 2, Param: " + key +
                                                                   "_3= is 7 x\n" + "[VLK-API] " + name + " " + name +
                                                                   ": get " + key + " 7 x\n");
    }
}

// --- whether a BSS really steers ---

struct BandSteeringStatus : BandSteering {};

// What the getter gives, with the driver's tool saying this.
int enabled_when_tool_says(const std::string &output) {
    install_tool("wifitool", output);
    int enabled = UNTOUCHED;
    capture([&] { EXPECT_EQ(wlan_getBssBandSteerEnable(3, &enabled), 0); });
    return enabled;
}

TEST_F(BandSteeringStatus, IsAskedOfTheInterfaceOfTheVap) {
    for (int index : {1, 3, 8}) {
        int enabled = UNTOUCHED;
        wlan_getBssBandSteerEnable(index, &enabled);
    }
    EXPECT_EQ(tool_calls(), (calls{"wifitool ath0 bandsteering_status", "wifitool ath2 bandsteering_status",
                                   "wifitool ath7 bandsteering_status"}));
}

TEST_F(BandSteeringStatus, OfADriverThatNeedsToBeBroughtUpIsZero) {
    write_store({"BS_BSS_ENABLE_3=1"});
    EXPECT_EQ(enabled_when_tool_says("band steering is enabled, need to up the VAP\n"), 0);
    EXPECT_EQ(enabled_when_tool_says("ath2 is fine\nath10: need to\n"), 0);
    EXPECT_EQ(enabled_when_tool_says("need to"), 0);
    EXPECT_EQ(enabled_when_tool_says("\xff\xfe need to \xff"), 0);
}

TEST_F(BandSteeringStatus, OfADriverThatSaysAnythingElseIsTheStoredValue) {
    write_store({"BS_BSS_ENABLE_3=2 x"});
    for (const char *output : {"", "\n", "enabled\n", "need  to", "need", "eed to", "NEED TO", "needto", "\xff\xfe"}) {
        EXPECT_EQ(enabled_when_tool_says(output), 2) << output;
    }
}

TEST_F(BandSteeringStatus, IsLookedForIn128Bytes) {
    write_store({"BS_BSS_ENABLE_3=1"});
    EXPECT_EQ(enabled_when_tool_says(std::string(120, 'x') + "need to"), 0);
    EXPECT_EQ(enabled_when_tool_says(std::string(121, 'x') + "need to"), 0);
    EXPECT_EQ(enabled_when_tool_says(std::string(121, 'x') + "need to" + std::string(5000, 'x')), 0);
    EXPECT_EQ(enabled_when_tool_says(std::string(122, 'x') + "need to"), 1);
    EXPECT_EQ(enabled_when_tool_says(std::string(128, 'x') + "need to"), 1);
    EXPECT_EQ(enabled_when_tool_says(std::string(100'000, 'x')), 1);
}

TEST_F(BandSteeringStatus, IsATextThatEndsAtANul) {
    write_store({"BS_BSS_ENABLE_3=1"});
    EXPECT_EQ(enabled_when_tool_says(std::string("up\0need to", 10)), 1);
    EXPECT_EQ(enabled_when_tool_says(std::string("need to\0up", 10)), 0);
    EXPECT_EQ(enabled_when_tool_says(std::string(300, '\0')), 1);
}

TEST_F(BandSteeringStatus, WithoutAToolIsTheStoredValue) {
    write_store({"BS_BSS_ENABLE_3=1"});
    unlink((std::string(FAKE_TOOLS) + "/wifitool").c_str());
    int enabled = UNTOUCHED;
    printed_text printed = capture([&] { EXPECT_EQ(wlan_getBssBandSteerEnable(3, &enabled), 0); });
    EXPECT_EQ(enabled, 1);
    EXPECT_EQ(printed.out, "");
}

TEST_F(BandSteeringStatus, WhenNothingCanBeAskedTheOutputIsAsItWas) {
    int enabled = UNTOUCHED;
    begin_descriptor_shortage();
    int status = wlan_getBssBandSteerEnable(3, &enabled);
    end_descriptor_shortage();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(enabled, UNTOUCHED);
}

TEST_F(BandSteeringStatus, WithoutAStoredValueIsTheDriversAlone) {
    EXPECT_EQ(enabled_when_tool_says("enabled\n"), UNTOUCHED);
    EXPECT_EQ(enabled_when_tool_says("need to\n"), 0);
}

TEST_F(BandSteeringStatus, ThatItNeedsToBeBroughtUpIsPrintedAlwaysAndWithoutALineBreak) {
    install_tool("wifitool", "need to\n");
    printed_text printed = capture([] {
        int enabled = UNTOUCHED;
        wlan_getBssBandSteerEnable(3, &enabled);
    });
    EXPECT_EQ(printed.out, "Debug info: involve the need to up");
    EXPECT_EQ(printed.err, "");
}

TEST_F(BandSteeringStatus, IsLoggedUnderTheKeyOfTheWholeDevice) {
    write_store({"BS_BSS_ENABLE_3=1 x"});
    EXPECT_EQ(debug_lines([] { number_of(wlan_getBssBandSteerEnable, 3); }),
              "[VLK-API] athcfg_getbyname index 2, Param: BS_BSS_ENABLE_3= is 1 x\n"
              "[VLK-API] wlan_getBssBandSteerEnable wlan_getBssBandSteerEnable: get BS_ENABLE 1 x\n");
}

TEST_F(BandSteeringStatus, WithoutAStoredValueIsLoggedByTheStoreAlone) {
    EXPECT_EQ(debug_lines([] {
                  int enabled = UNTOUCHED;
                  EXPECT_EQ(wlan_getBssBandSteerEnable(1, &enabled), 0);
              }),
              "[VLK-API] getWifiParam BS_BSS_ENABLE= does not exist in /tmp/.apcfg\n"
              "[VLK-API] athcfg_getbyname index 0, Param: BS_BSS_ENABLE= is \n");
}

// --- the file of the stations that can use 5 GHz ---

constexpr size_t SLOT_SIZE = 1536;
constexpr int SLOTS = 8;

// A slot that no other looks like: its first word, then bytes that follow from its number.
std::string slot_bytes(int number, uint32_t count) {
    std::string slot(reinterpret_cast<const char *>(&count), sizeof(count));
    for (size_t i = slot.size(); i < SLOT_SIZE; i++) {
        slot += static_cast<char>(static_cast<size_t>(number) * 31 + i);
    }
    return slot;
}

// The whole file with a count a slot.
std::string table_bytes(int slots = SLOTS) {
    std::string file;
    for (int i = 1; i <= slots; i++) {
        file += slot_bytes(i, static_cast<uint32_t>(10 * i));
    }
    return file;
}

std::string bytes_of(const wlan_5g_capable_table_t &table) {
    return {reinterpret_cast<const char *>(&table), sizeof(table)};
}

struct capable_result {
    int status;
    int count;
    std::string bytes;
};

capable_result read_capable_table(int index) {
    wlan_5g_capable_table_t table = {};
    int count = UNTOUCHED;
    int status = wlan_getBssBandSteer5gCapableTable(index, &count, &table);
    return {status, count, bytes_of(table)};
}

const std::string NO_STATIONS(SLOT_SIZE, '\0');

// Puts something at the table's place that is there and cannot be opened.
void put_a_socket_there() {
    int listener = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, TABLE_FILE, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    close(listener);
}

// Whether nobody holds the lock of the file.
bool is_unlocked() {
    int file = open(TABLE_FILE, O_RDONLY | O_CLOEXEC);
    bool free = flock(file, LOCK_EX | LOCK_NB) == 0;
    close(file);
    return free;
}

// Whether somebody waits for such a lock.
bool is_anybody_waiting() {
    std::string locks = read_file("/proc/locks");
    return contains(locks, "-> FLOCK");
}

// Runs the block in a thread while this one holds a shared lock of the file, and writes this into the file as soon as
// the block waits for its own. Returns whether it ever waited.
template <typename Block>
bool waits_for_the_lock(const std::string &new_content, Block block) {
    int file = open(TABLE_FILE, O_RDWR | O_CLOEXEC);
    EXPECT_EQ(flock(file, LOCK_SH), 0);
    std::thread thread(block);
    bool waited = false;
    for (int i = 0; i < 500 && !waited; i++) {
        usleep(10'000);
        waited = is_anybody_waiting();
    }
    EXPECT_EQ(pwrite(file, new_content.data(), new_content.size(), 0), static_cast<ssize_t>(new_content.size()));
    close(file);
    thread.join();
    return waited;
}

struct CapableTable : BandSteering {};

TEST_F(CapableTable, IsTheSlotOfTheVap) {
    write_file(TABLE_FILE, table_bytes());
    for (int index = 1; index <= SLOTS; index++) {
        capable_result result = read_capable_table(index);
        EXPECT_EQ(result.status, 0) << index;
        EXPECT_EQ(result.count, 10 * index) << index;
        EXPECT_TRUE(result.bytes == slot_bytes(index, static_cast<uint32_t>(10 * index))) << index;
    }
}

TEST_F(CapableTable, HasTheCountOfItsFirstWordWhateverItSays) {
    for (uint32_t count : {0U, 1U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
        write_file(TABLE_FILE, slot_bytes(1, count));
        capable_result result = read_capable_table(1);
        EXPECT_EQ(result.status, 0) << count;
        EXPECT_EQ(result.count, static_cast<int>(count));
        EXPECT_TRUE(result.bytes == slot_bytes(1, count)) << count;
    }
}

TEST_F(CapableTable, WithoutAFileIsEmpty) {
    capable_result result = read_capable_table(3);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.count, 0);
    EXPECT_TRUE(result.bytes == NO_STATIONS);
}

TEST_F(CapableTable, WithoutAFileIsEmptyWhateverTheCallerLeftInIt) {
    wlan_5g_capable_table_t table;
    memset(&table, 'x', sizeof(table));
    int count = UNTOUCHED;
    EXPECT_EQ(wlan_getBssBandSteer5gCapableTable(3, &count, &table), 0);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(bytes_of(table) == NO_STATIONS);
}

TEST_F(CapableTable, ReadFromAnAbsentFileIsAsTheCallerLeftIt) {
    wlan_5g_capable_table_t table;
    memset(&table, 'x', sizeof(table));
    EXPECT_EQ(read5GHzCapableTable(3, &table), 0);
    EXPECT_TRUE(bytes_of(table) == std::string(SLOT_SIZE, 'x'));
}

TEST_F(CapableTable, ThatIsNotWholeCannotBeRead) {
    for (size_t missing : {size_t{1}, SLOT_SIZE - 1, SLOT_SIZE, 3 * SLOT_SIZE}) {
        std::string file = table_bytes(4);
        write_file(TABLE_FILE, file.substr(0, file.size() - missing));
        capable_result result = read_capable_table(4);
        EXPECT_EQ(result.status, -1) << missing;
        EXPECT_EQ(result.count, 0) << missing;
        // What there is of the slot.
        std::string rest = missing < SLOT_SIZE ? slot_bytes(4, 40).substr(0, SLOT_SIZE - missing) : "";
        EXPECT_TRUE(result.bytes == rest + std::string(SLOT_SIZE - rest.size(), '\0')) << missing;
        EXPECT_EQ(read_capable_table(1).status, 0) << missing;
    }
}

TEST_F(CapableTable, ThatEndsWithTheSlotIsWhole) {
    write_file(TABLE_FILE, table_bytes(4));
    EXPECT_EQ(read_capable_table(4).status, 0);
    EXPECT_EQ(read_capable_table(5).status, -1);
}

TEST_F(CapableTable, LongerThanEightSlotsHasEight) {
    write_file(TABLE_FILE, table_bytes(10));
    EXPECT_EQ(read_capable_table(8).count, 80);
    EXPECT_EQ(read_capable_table(9).status, -1);
    EXPECT_EQ(wlan_setBssBandSteer5gCapableClear(9, 0), -1);
    EXPECT_TRUE(read_file(TABLE_FILE) == table_bytes(10));
}

TEST_F(CapableTable, OfAnIndexWithoutASlotCannotBeRead) {
    write_file(TABLE_FILE, table_bytes(20));
    for (int index : NO_PAIR) {
        capable_result result = read_capable_table(index);
        EXPECT_EQ(result.status, -1) << index;
        EXPECT_EQ(result.count, 0) << index;
        EXPECT_TRUE(result.bytes == NO_STATIONS) << index;
        wlan_5g_capable_table_t table = {};
        EXPECT_EQ(read5GHzCapableTable(index, &table), -1) << index;
    }
}

TEST_F(CapableTable, CannotBeReadIntoNothing) {
    write_file(TABLE_FILE, table_bytes());
    int count = UNTOUCHED;
    EXPECT_EQ(wlan_getBssBandSteer5gCapableTable(1, &count, nullptr), -1);
    EXPECT_EQ(count, 0);
    unlink(TABLE_FILE);
    EXPECT_EQ(read5GHzCapableTable(1, nullptr), -1);
}

TEST_F(CapableTable, InWhosePlaceIsADirectoryCannotBeRead) {
    ASSERT_EQ(mkdir(TABLE_FILE, 0755), 0);
    capable_result result = read_capable_table(1);
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.count, 0);
    EXPECT_TRUE(result.bytes == NO_STATIONS);
}

TEST_F(CapableTable, ThatIsThereAndCannotBeOpenedCannotBeRead) {
    put_a_socket_there();
    EXPECT_EQ(read_capable_table(1).status, -1);
}

TEST_F(CapableTable, OfAProcessWithoutDescriptorsIsEmptyOnlyWithoutAFile) {
    begin_descriptor_shortage();
    int absent = read_capable_table(1).status;
    end_descriptor_shortage();
    write_file(TABLE_FILE, table_bytes());
    begin_descriptor_shortage();
    int present = read_capable_table(1).status;
    end_descriptor_shortage();
    EXPECT_EQ(absent, 0);
    EXPECT_EQ(present, -1);
}

TEST_F(CapableTable, IsReadWhenTheFileIsNotLockedByAnybody) {
    write_file(TABLE_FILE, table_bytes());
    capable_result result;
    EXPECT_TRUE(waits_for_the_lock(slot_bytes(1, 77), [&] { result = read_capable_table(1); }));
    EXPECT_EQ(result.count, 77);
    EXPECT_TRUE(is_unlocked());
}

TEST_F(CapableTable, IsReadWithoutLeavingADescriptorOpen) {
    int before = lowest_free_descriptor();
    read_capable_table(1);
    EXPECT_EQ(lowest_free_descriptor(), before);
    write_file(TABLE_FILE, table_bytes(1));
    read_capable_table(1);
    read_capable_table(2);
    EXPECT_EQ(lowest_free_descriptor(), before);
    EXPECT_TRUE(is_unlocked());
}

TEST_F(CapableTable, PrintsNothing) {
    set_debug(true);
    printed_text printed = capture([] {
        read_capable_table(1);
        read_capable_table(9);
        put_a_socket_there();
        read_capable_table(1);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- clearing it ---

// Code of a clear, and what it prints.
struct clear_result {
    int status;
    std::string out;
};

clear_result clear_capable_table(int index, int method = 0) {
    clear_result result = {};
    printed_text printed = capture([&] { result.status = wlan_setBssBandSteer5gCapableClear(index, method); });
    EXPECT_EQ(printed.err, "");
    result.out = printed.out;
    return result;
}

const char CLEARED[] = "IEEE80211_IOCTL_DBGREQ: IEEE80211_DBGREQ_CLRCAPABLETABLE_5G OK  ";
const char REFUSED[] = "error in ioctl ";

// The bytes of a debug request for a buffer of this size and at this address.
std::string debug_request_bytes(uint8_t command, uint32_t size, uint32_t address) {
    std::string request(211, '\0');
    request[0] = static_cast<char>(command);
    memcpy(&request[11], &size, sizeof(size));
    memcpy(&request[15], &address, sizeof(address));
    return request;
}

struct CapableTableClear : CapableTable {};

TEST_F(CapableTableClear, WritesZerosOnlyIntoTheSlotOfTheVap) {
    for (int index = 1; index <= SLOTS; index++) {
        write_file(TABLE_FILE, table_bytes(9));
        EXPECT_EQ(clear_capable_table(index).status, 0) << index;
        std::string expected = table_bytes(9);
        expected.replace(static_cast<size_t>(index - 1) * SLOT_SIZE, SLOT_SIZE, SLOT_SIZE, '\0');
        EXPECT_TRUE(read_file(TABLE_FILE) == expected) << index;
    }
}

TEST_F(CapableTableClear, TellsTheDriver) {
    write_file(TABLE_FILE, table_bytes());
    EXPECT_EQ(clear_capable_table(3).out, CLEARED);
    ASSERT_EQ(debug_requests.size(), 1U);
    const seen_debug_request &request = debug_requests[0];
    EXPECT_EQ(std::string(request.record.ifr_name, 16), std::string("ath2") + std::string(12, '\0'));
    EXPECT_EQ(request.record.u.data.length, 211);
    EXPECT_EQ(request.record.u.data.flags, 0);
    EXPECT_TRUE(request.bytes == debug_request_bytes(89, 0, 0));
    EXPECT_TRUE(request.is_internet_datagram_socket);
}

TEST_F(CapableTableClear, NamesTheInterfaceOfEveryVap) {
    for (int index = 1; index <= SLOTS; index++) {
        clear_capable_table(index);
        EXPECT_STREQ(debug_requests.back().record.ifr_name, ("ath" + std::to_string(index - 1)).c_str());
    }
}

TEST_F(CapableTableClear, WithoutAFileTellsTheDriverAndMakesNone) {
    clear_result result = clear_capable_table(3);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, CLEARED);
    EXPECT_EQ(debug_requests.size(), 1U);
    EXPECT_NE(access(TABLE_FILE, F_OK), 0);
}

TEST_F(CapableTableClear, SucceedsWhenTheDriverRefuses) {
    debug_answers = {{EPERM, "", 0}};
    write_file(TABLE_FILE, table_bytes(1));
    clear_result result = clear_capable_table(1);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, REFUSED);
    EXPECT_TRUE(read_file(TABLE_FILE) == NO_STATIONS);
}

TEST_F(CapableTableClear, TakesWhateverTheDriverReturnsButAFailure) {
    debug_answers = {{0, "", 5}};
    EXPECT_EQ(clear_capable_table(1).out, CLEARED);
}

TEST_F(CapableTableClear, SucceedsWhenTheDriverCannotBeAsked) {
    int status = 0;
    printed_text printed = capture([&] {
        begin_descriptor_shortage();
        status = wlan_setBssBandSteer5gCapableClear(1, 0);
        end_descriptor_shortage();
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(printed.out, REFUSED);
    EXPECT_EQ(debug_requests.size(), 0U);
}

TEST_F(CapableTableClear, IgnoresTheMethod) {
    for (int method : {INT_MIN, -1, 1, 2, INT_MAX}) {
        write_file(TABLE_FILE, table_bytes(1));
        EXPECT_EQ(clear_capable_table(1, method).status, 0);
        EXPECT_TRUE(read_file(TABLE_FILE) == NO_STATIONS) << method;
        EXPECT_TRUE(debug_requests.back().bytes == debug_request_bytes(89, 0, 0)) << method;
    }
}

TEST_F(CapableTableClear, IsRefusedForAnIndexWithoutASlot) {
    write_file(TABLE_FILE, table_bytes(20));
    for (int index : NO_PAIR) {
        clear_result result = clear_capable_table(index);
        EXPECT_EQ(result.status, -1) << index;
        EXPECT_EQ(result.out, "") << index;
        EXPECT_EQ(clear5GHzCapableTable(index), -1) << index;
    }
    EXPECT_EQ(debug_requests.size(), 0U);
    EXPECT_TRUE(read_file(TABLE_FILE) == table_bytes(20));
}

void expect_failure_before_the_request(const char *why) {
    clear_result result = clear_capable_table(1);
    EXPECT_EQ(result.status, -1) << why;
    EXPECT_EQ(result.out, "") << why;
    EXPECT_EQ(debug_requests.size(), 0U) << why;
}

TEST_F(CapableTableClear, ThatTheFileRefusesDoesNotReachTheDriver) {
    ASSERT_EQ(mkdir(TABLE_FILE, 0755), 0);
    expect_failure_before_the_request("a directory");
    rmdir(TABLE_FILE);
    put_a_socket_there();
    expect_failure_before_the_request("a socket");
    unlink(TABLE_FILE);
    ASSERT_EQ(symlink("/dev/full", TABLE_FILE), 0);
    expect_failure_before_the_request("no room");
}

TEST_F(CapableTableClear, OfAProcessWithoutDescriptorsFailsWithAFile) {
    write_file(TABLE_FILE, table_bytes());
    begin_descriptor_shortage();
    int status = wlan_setBssBandSteer5gCapableClear(1, 0);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_TRUE(read_file(TABLE_FILE) == table_bytes());
}

TEST_F(CapableTableClear, OfAShortFileMakesTheSlot) {
    write_file(TABLE_FILE, slot_bytes(1, 5).substr(0, 100));
    EXPECT_EQ(clear_capable_table(2).status, 0);
    EXPECT_TRUE(read_file(TABLE_FILE) == slot_bytes(1, 5).substr(0, 100) + std::string(2 * SLOT_SIZE - 100, '\0'));
}

TEST_F(CapableTableClear, WritesWhenTheFileIsNotLockedByAnybody) {
    write_file(TABLE_FILE, table_bytes(1));
    EXPECT_TRUE(waits_for_the_lock(slot_bytes(1, 77), [] { EXPECT_EQ(clear5GHzCapableTable(1), 0); }));
    EXPECT_TRUE(read_file(TABLE_FILE) == NO_STATIONS);
    EXPECT_TRUE(is_unlocked());
}

TEST_F(CapableTableClear, LeavesNoDescriptorOpen) {
    int before = lowest_free_descriptor();
    clear_capable_table(1);
    write_file(TABLE_FILE, table_bytes(1));
    clear_capable_table(1);
    debug_answers = {{EPERM, "", 0}};
    clear_capable_table(1);
    unlink(TABLE_FILE);
    ASSERT_EQ(symlink("/dev/full", TABLE_FILE), 0);
    clear_capable_table(1);
    EXPECT_EQ(lowest_free_descriptor(), before);
}

// --- the 2.4 GHz temporary black list ---

constexpr size_t BLACKLIST_SIZE = 2048;

struct blacklist_result {
    int status;
    int count;
    std::string bytes;
};

blacklist_result read_blacklist(int index) {
    wlan_2g_temp_blacklist_table_t table = {};
    int count = UNTOUCHED;
    int status = wlan_getBssBandSteer2gTempBlacklistTable(index, &count, &table);
    return {status, count, {reinterpret_cast<const char *>(&table), sizeof(table)}};
}

std::string words_as_bytes(std::initializer_list<uint32_t> words) {
    std::string bytes;
    for (uint32_t word : words) {
        bytes.append(reinterpret_cast<const char *>(&word), sizeof(word));
    }
    return bytes;
}

// Bytes with zeros behind them up to the size of the table.
std::string filled_up(const std::string &bytes) {
    return bytes + std::string(BLACKLIST_SIZE - bytes.size(), '\0');
}

// So many entries that no two bytes beside each other are alike.
std::string entries(size_t count) {
    std::string bytes;
    for (size_t i = 0; i < 32 * count; i++) {
        bytes += static_cast<char>(i * 7 + 1);
    }
    return bytes;
}

struct TemporaryBlacklist : BandSteering {};

TEST_F(TemporaryBlacklist, IsWhatTheDriverGives) {
    debug_answers = {{0, words_as_bytes({3}), 0}, {0, entries(3), 0}};
    blacklist_result result = read_blacklist(5);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.count, 3);
    // What the driver does not write is as it was asked with, which three entries cover.
    EXPECT_TRUE(result.bytes == filled_up(entries(3)));
}

TEST_F(TemporaryBlacklist, IsAskedForInTwoRequests) {
    debug_answers = {{0, words_as_bytes({3, 88, 99}), 0}, {0, entries(3), 0}};
    read_blacklist(5);
    ASSERT_EQ(debug_requests.size(), 2U);
    uint32_t address = buffer_address_of(debug_requests[0].bytes);
    EXPECT_NE(address, 0U);
    EXPECT_TRUE(debug_requests[0].bytes == debug_request_bytes(87, 32, address));
    EXPECT_TRUE(debug_requests[0].buffer == filled_up(""));
    EXPECT_TRUE(debug_requests[1].bytes == debug_request_bytes(87, 96, address));
    EXPECT_TRUE(debug_requests[1].buffer == filled_up(words_as_bytes({3, 1})));
    for (const seen_debug_request &request : debug_requests) {
        EXPECT_EQ(std::string(request.record.ifr_name, 16), std::string("ath4") + std::string(12, '\0'));
        EXPECT_EQ(request.record.u.data.length, 211);
        EXPECT_EQ(request.record.u.data.flags, 0);
        EXPECT_TRUE(request.is_internet_datagram_socket);
    }
}

TEST_F(TemporaryBlacklist, IsAskedOfTheInterfaceOfTheVap) {
    for (int index = 1; index <= 8; index++) {
        debug_requests.clear();
        read_blacklist(index);
        ASSERT_EQ(debug_requests.size(), 2U);
        for (const seen_debug_request &request : debug_requests) {
            EXPECT_STREQ(request.record.ifr_name, ("ath" + std::to_string(index - 1)).c_str());
        }
    }
}

TEST_F(TemporaryBlacklist, HasAtMost64Entries) {
    const struct {
        uint32_t said;
        uint32_t count;
    } cases[] = {{0, 0},    {1, 1},           {63, 63},         {64, 64},        {65, 64},
                 {100, 64}, {0x7fffffff, 64}, {0x80000000, 64}, {0xffffffff, 64}};
    for (const auto &row : cases) {
        reset_driver();
        debug_answers = {{0, words_as_bytes({row.said}), 0}, {0, entries(row.count), 0}};
        blacklist_result result = read_blacklist(1);
        EXPECT_EQ(result.status, 0) << row.said;
        EXPECT_EQ(result.count, static_cast<int>(row.count)) << row.said;
        ASSERT_EQ(debug_requests.size(), 2U) << row.said;
        uint32_t address = buffer_address_of(debug_requests[1].bytes);
        EXPECT_TRUE(debug_requests[1].bytes == debug_request_bytes(87, 32 * row.count, address)) << row.said;
        EXPECT_TRUE(debug_requests[1].buffer == filled_up(words_as_bytes({row.count, 1}))) << row.said;
        EXPECT_TRUE(result.bytes == filled_up(row.count == 0 ? words_as_bytes({0, 1}) : entries(row.count)))
            << row.said;
    }
}

TEST_F(TemporaryBlacklist, TakesWhateverTheDriverReturnsButAFailure) {
    debug_answers = {{0, words_as_bytes({1}), 7}, {0, entries(1), 9}};
    blacklist_result result = read_blacklist(1);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.count, 1);
}

TEST_F(TemporaryBlacklist, PrintsNothingAlsoWhileDebuggingIsOn) {
    set_debug(true);
    printed_text printed = capture([] { read_blacklist(1); });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(TemporaryBlacklist, WhoseNumberTheDriverRefusesIsEmpty) {
    debug_answers = {{EPERM, "", 0}};
    blacklist_result result;
    printed_text printed = capture([&] { result = read_blacklist(1); });
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.count, 0);
    EXPECT_TRUE(result.bytes == filled_up(""));
    EXPECT_EQ(debug_requests.size(), 1U);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(TemporaryBlacklist, WhoseNumberTheDriverRefusesIsLogged) {
    debug_answers = {{EPERM, "", 0}};
    EXPECT_EQ(debug_lines([] { read_blacklist(1); }),
              "[VLK-API] wlan_getBssBandSteer2gTempBlacklistTable error in ioctl \n");
}

TEST_F(TemporaryBlacklist, WhoseEntriesTheDriverRefusesIsThatOrder) {
    debug_answers = {{0, words_as_bytes({70, 88}), 0}, {EPERM, "", 0}};
    blacklist_result result;
    printed_text printed = capture([&] { result = read_blacklist(1); });
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.count, 64);
    EXPECT_TRUE(result.bytes == filled_up(words_as_bytes({64, 1})));
    EXPECT_EQ(printed.err, "IEEE80211_IOCTL_DBGREQ: IEEE80211_DBGREQ_RRMSTATSREQ failed: Operation not permitted\n");
    EXPECT_EQ(printed.out, "error in ioctl ");
}

// The driver is given the caller's table, as far as anybody can see.
TEST_F(TemporaryBlacklist, HasWhatTheDriverWroteBeforeItRefused) {
    debug_answers = {{EPERM, "begun", 0}};
    EXPECT_TRUE(read_blacklist(1).bytes == filled_up("begun"));
    debug_answers = {{0, words_as_bytes({2}), 0}, {EPERM, "begun...", 0}};
    capture([] { EXPECT_TRUE(read_blacklist(1).bytes == filled_up("begun...")); });
}

TEST_F(TemporaryBlacklist, IsAskedForWithWhatTheCallerHasInIt) {
    wlan_2g_temp_blacklist_table_t table;
    memset(&table, 'x', sizeof(table));
    int count = UNTOUCHED;
    debug_answers = {{0, "", 0}};
    EXPECT_EQ(wlan_getBssBandSteer2gTempBlacklistTable(1, &count, &table), 0);
    ASSERT_EQ(debug_requests.size(), 2U);
    EXPECT_TRUE(debug_requests[0].buffer == std::string(BLACKLIST_SIZE, 'x'));
    EXPECT_EQ(count, 64);  // "xxxx"
}

TEST_F(TemporaryBlacklist, CannotBeAskedForWithoutASocket) {
    blacklist_result result;
    set_debug(true);
    printed_text printed = capture([&] {
        begin_descriptor_shortage();
        result = read_blacklist(1);
        end_descriptor_shortage();
    });
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.count, 0);
    EXPECT_EQ(printed.out, "[VLK-API] wlan_getBssBandSteer2gTempBlacklistTable error in ioctl \n");
    EXPECT_EQ(debug_requests.size(), 0U);
}

TEST_F(TemporaryBlacklist, IsRefusedForAnIndexOfThe5GhzRadioOrOfNoVap) {
    set_debug(true);
    printed_text printed = capture([] {
        for (int index : NO_PAIR) {
            blacklist_result result = read_blacklist(index);
            EXPECT_EQ(result.status, -1) << index;
            EXPECT_EQ(result.count, UNTOUCHED) << index;
            EXPECT_TRUE(result.bytes == filled_up("")) << index;
        }
    });
    EXPECT_EQ(debug_requests.size(), 0U);
    EXPECT_EQ(printed.out, "");
}

TEST_F(TemporaryBlacklist, CannotBeReadIntoNothing) {
    int count = UNTOUCHED;
    EXPECT_EQ(debug_lines([&] { EXPECT_EQ(wlan_getBssBandSteer2gTempBlacklistTable(1, &count, nullptr), -1); }),
              "[VLK-API] wlan_getBssBandSteer2gTempBlacklistTable memory error\n");
    EXPECT_EQ(count, UNTOUCHED);
    EXPECT_EQ(debug_requests.size(), 0U);
}

TEST_F(TemporaryBlacklist, CannotBeReadWithoutMemoryForTheDriver) {
    held_low_memory held;
    rlimit whole = {};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &whole), 0);
    rlimit none = whole;
    none.rlim_cur = 1;
    wlan_2g_temp_blacklist_table_t table;
    memset(&table, 'x', sizeof(table));
    int count = UNTOUCHED;
    int status = 0;
    std::string lines = debug_lines([&] {
        setrlimit(RLIMIT_AS, &none);
        status = wlan_getBssBandSteer2gTempBlacklistTable(1, &count, &table);
        setrlimit(RLIMIT_AS, &whole);
    });
    EXPECT_EQ(lines, "[VLK-API] wlan_getBssBandSteer2gTempBlacklistTable memory error\n");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(count, UNTOUCHED);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(&table), sizeof(table)), std::string(BLACKLIST_SIZE, 'x'));
    EXPECT_EQ(debug_requests.size(), 0U);
}

TEST_F(TemporaryBlacklist, LeavesNoDescriptorOpen) {
    int before = lowest_free_descriptor();
    read_blacklist(1);
    debug_answers = {{EPERM, "", 0}};
    read_blacklist(1);
    debug_answers = {{0, words_as_bytes({2}), 0}, {EPERM, "", 0}};
    capture([] { read_blacklist(1); });
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(TemporaryBlacklist, GivesTheDriversMemoryBackOnEveryRoad) {
    for (const std::vector<debug_answer> &answers :
         {std::vector<debug_answer>{}, {{EPERM, "", 0}}, {{0, "", 0}, {EPERM, "", 0}}}) {
        reset_driver();
        debug_answers = answers;
        capture([] { read_blacklist(1); });
        ASSERT_FALSE(debug_requests.empty());
        EXPECT_TRUE(is_given_back(static_cast<uint32_t>(buffer_address_of(debug_requests[0].bytes))));
    }
}

// --- clearing it ---

TEST_F(TemporaryBlacklist, IsClearedByTheDriversTool) {
    printed_text printed = capture([] {
        EXPECT_EQ(wlan_setBssBandSteer2gTempBlacklistClear(1, 0), 0);
        EXPECT_EQ(wlan_setBssBandSteer2gTempBlacklistClear(8, 0), 0);
    });
    EXPECT_EQ(tool_calls(), (calls{"wifitool ath0 clr_tmpblacklist2g", "wifitool ath7 clr_tmpblacklist2g"}));
    EXPECT_EQ(printed.out,
              "wlan_setBssBandSteer2gTempBlacklistClear cmd: wifitool ath0 clr_tmpblacklist2g\n"
              "wlan_setBssBandSteer2gTempBlacklistClear cmd: wifitool ath7 clr_tmpblacklist2g\n");
}

TEST_F(TemporaryBlacklist, IsClearedThroughTheShellWithoutCapturing) {
    install_tool("wifitool", "done\n", 1);
    set_debug(true);
    printed_text printed = capture([] { EXPECT_EQ(wlan_setBssBandSteer2gTempBlacklistClear(2, 0), 0); });
    EXPECT_TRUE(contains(printed.out, "done\n"));
    EXPECT_FALSE(contains(printed.out, "athcfg_executecmd"));
}

TEST_F(TemporaryBlacklist, ClearingIgnoresTheMethod) {
    capture([] {
        for (int method : {INT_MIN, -1, 7}) {
            EXPECT_EQ(wlan_setBssBandSteer2gTempBlacklistClear(3, method), 0);
        }
    });
    EXPECT_EQ(tool_calls(), (calls{"wifitool ath2 clr_tmpblacklist2g", "wifitool ath2 clr_tmpblacklist2g",
                                   "wifitool ath2 clr_tmpblacklist2g"}));
}

TEST_F(TemporaryBlacklist, ClearingSucceedsWithoutATool) {
    unlink((std::string(FAKE_TOOLS) + "/wifitool").c_str());
    printed_text printed = capture([] { EXPECT_EQ(wlan_setBssBandSteer2gTempBlacklistClear(1, 0), 0); });
    EXPECT_TRUE(contains(printed.err, "wifitool"));
}

TEST_F(TemporaryBlacklist, ClearingIsRefusedForAnIndexOfThe5GhzRadioOrOfNoVap) {
    printed_text printed = capture([] {
        for (int index : NO_PAIR) {
            EXPECT_EQ(wlan_setBssBandSteer2gTempBlacklistClear(index, 0), -1) << index;
        }
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(tool_calls(), calls{});
}

}  // namespace
