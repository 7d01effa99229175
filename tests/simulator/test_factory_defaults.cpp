// The factory defaults: what the board's copy holds, and how it is handed out.
#include <sys/stat.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "simulator/factory_defaults.h"
#include "simulator/initial_store.h"
#include "tests/simulator/platform.h"

namespace {

constexpr const char COPY[] = "/tmp/wifi_defaults.dat";

class FactoryDefaults : public Platform {
protected:
    void SetUp() override {
        static const std::string first = read_file(GATEWAY_DEFAULTS);
        Platform::SetUp();
        board_copy = first;
        write_file(GATEWAY_DEFAULTS, first);
        unlink(COPY);
    }

    void TearDown() override {
        unlink(COPY);
        Platform::TearDown();
    }

    std::string board_copy;
};

// The part of the text between the markers of a radio.
std::string section(const std::string &text, const std::string &tag) {
    std::string begin = "\nSETTING_DELIMETER=" + tag + "_START\n", end = "SETTING_DELIMETER=" + tag + "_STOP\n";
    size_t from = text.find(begin), to = text.find(end);
    return from == std::string::npos || to == std::string::npos
               ? "none"
               : text.substr(from + begin.size(), to - from - begin.size());
}

bool has_line(const std::string &text, const std::string &line) {
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

lines lines_of(const std::string &text) {
    std::istringstream stream(text);
    lines result;
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

// The board's copy of a scenario of its own.
std::string copy_of(const std::string &text) {
    char error[SCENARIO_ERROR_SIZE] = "";
    scenario *scene = scenario_parse("test.scn", text.data(), text.size(), error, sizeof error);
    EXPECT_NE(scene, nullptr) << error;
    EXPECT_EQ(factory_defaults_lay_down(scene), 0);
    scenario_free(scene);
    return read_file(GATEWAY_DEFAULTS);
}

TEST_F(FactoryDefaults, WpsGpioPutsTheBoardsCopyWhereTheServerLooksForIt) {
    outcome fetched = run({"wps_gpio", "wifi_conf"});
    EXPECT_EQ(fetched.status, 0);
    EXPECT_EQ(fetched.output + fetched.errors, "");
    EXPECT_EQ(read_file(COPY), board_copy);
    EXPECT_EQ(run_shell("ls /tmp/wifi_defaults.dat.new 2>&1 >/dev/null | wc -l").output, "1\n");
}

TEST_F(FactoryDefaults, AnOlderCopyIsReplacedInOneStep) {
    write_file(COPY, "old");
    struct stat before = {}, after = {};
    ASSERT_EQ(stat(COPY, &before), 0);
    EXPECT_EQ(run({"wps_gpio", "wifi_conf"}).status, 0);
    ASSERT_EQ(stat(COPY, &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino);
    EXPECT_EQ(read_file(COPY), board_copy);
}

TEST_F(FactoryDefaults, WhatSomebodyMadeOfTheBoardsCopyIsHandedOutAsItStands) {
    std::string odd = std::string("A=1\nB=\0\xff", 8) + std::string(2000, 'x');
    write_file(GATEWAY_DEFAULTS, odd);
    EXPECT_EQ(run({"wps_gpio", "wifi_conf"}).status, 0);
    EXPECT_EQ(read_file(COPY), odd);
}

TEST_F(FactoryDefaults, ThatCannotBeRetrievedAreAMessageWithStatus1AndNoFile) {
    add_to_scenario("defaults none\n");
    outcome refused = run({"wps_gpio", "wifi_conf"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "wps_gpio: wifi_conf: the factory defaults cannot be retrieved\n");
    EXPECT_EQ(access(COPY, F_OK), -1);
}

TEST_F(FactoryDefaults, AnEmptyOrMissingBoardsCopyCannotBeRetrieved) {
    write_file(GATEWAY_DEFAULTS, "");
    outcome refused = run({"wps_gpio", "wifi_conf"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.errors, "");
    unlink(GATEWAY_DEFAULTS);
    EXPECT_EQ(run({"wps_gpio", "wifi_conf"}).status, 1);
    EXPECT_EQ(access(COPY, F_OK), -1);
}

TEST_F(FactoryDefaults, ThatCannotBeRetrievedLeaveAnOlderCopyAlone) {
    write_file(COPY, "old");
    write_file(GATEWAY_DEFAULTS, "");
    EXPECT_EQ(run({"wps_gpio", "wifi_conf"}).status, 1);
    EXPECT_EQ(read_file(COPY), "old");
}

TEST_F(FactoryDefaults, AreTheLinesOfTheFirstStoreEachOnceWithOtherValuesWhereTheScenarioHasThem) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    store_text store;
    ASSERT_NE(scene, nullptr) << error;
    ASSERT_EQ(initial_store(scene, &store), 0);
    lines expected = lines_of(std::string(store.text, store.length));
    store_free(&store);
    scenario_free(scene);
    for (auto &[old_line, new_line] : {std::pair<std::string, std::string>{"AP_SSID=Home network", "AP_SSID=Gateway"},
                                       {"AP_SSID_9=Home network 5G", "AP_SSID_9=Gateway 5G"},
                                       {"AP_PRIMARY_CH_2=6", "AP_PRIMARY_CH_2=1"},
                                       {"AP_PRIMARY_CH=36", "AP_PRIMARY_CH=44"}})
        std::replace(expected.begin(), expected.end(), old_line, new_line);
    for (const char *tag : {"24_RADIO", "50_RADIO"})
        for (const char *suffix : {"_START", "_STOP"})
            expected.push_back(std::string("SETTING_DELIMETER=") + tag + suffix);
    lines found = lines_of(board_copy);
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
}

TEST_F(FactoryDefaults, StandInTheSectionOfTheirRadioOrBeforeBothSections) {
    std::string device = board_copy.substr(0, board_copy.find("SETTING_DELIMETER"));
    std::string two = section(board_copy, "24_RADIO"), five = section(board_copy, "50_RADIO");
    for (const char *line : {"AP_VAP_NUM=8", "BS_ENABLE=0", "RSG_Rate=30", "AP_PRIMARY_KEY_1=1"})
        EXPECT_TRUE(has_line(device, line)) << line;
    for (const char *line : {"AP_PRIMARY_CH_2=1", "AP_TXPWR_2=20", "AP_ENABLE_ATF_2=0", "AP_SSID=Gateway",
                             "AP_ENABLE=1", "AP_ENABLE_2=0", "AP_WPA_8=2", "WPS_ENABLE=2"})
        EXPECT_TRUE(has_line(two, line)) << line;
    for (const char *line : {"AP_PRIMARY_CH=44", "AP_TXPWR=23", "AP_ENABLE_ATF=0", "AP_SSID_9=Gateway 5G",
                             "AP_ENABLE_9=1", "AP_WPA_16=2", "PSK_KEY_9=a long secret for the second radio"})
        EXPECT_TRUE(has_line(five, line)) << line;
}

TEST_F(FactoryDefaults, ASectionIsNamedAfterItsRadiosBand) {
    std::string copy = copy_of(
        "radio 0 band=5 mac=00:03:7F:10:00:00\nradio 1 band=2.4 mac=00:03:7F:10:00:04\n"
        "vap 1 radio=0 bssid=00:03:7F:10:00:01 ssid=Five enable=1\n");
    EXPECT_TRUE(has_line(section(copy, "50_RADIO"), "AP_SSID=Five"));
    EXPECT_TRUE(has_line(section(copy, "50_RADIO"), "AP_TXPWR_2=20"));
    EXPECT_TRUE(has_line(section(copy, "24_RADIO"), "AP_TXPWR=20"));
}

TEST_F(FactoryDefaults, ARadioThatIsNotThereHasNoSection) {
    std::string copy = copy_of("radio 1 band=5 mac=00:03:7F:10:00:04\nset TX_CHAINMASK_2 3\n");
    EXPECT_EQ(copy.find("24_RADIO"), std::string::npos);
    EXPECT_TRUE(has_line(copy.substr(0, copy.find("SETTING_DELIMETER")), "TX_CHAINMASK_2=3"));
}

TEST_F(FactoryDefaults, AKeyBelongsToTheRadioThatItsNameAndNumberSay) {
    std::string both =
        "radio 0 band=2.4 mac=00:03:7F:10:00:00\nradio 1 band=5 mac=00:03:7F:10:00:04\n"
        "vap 1 radio=0 bssid=00:03:7F:10:00:01\nvap 2 radio=1 bssid=00:03:7F:10:00:02\n";
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_parse("test.scn", both.data(), both.size(), error, sizeof error);
    ASSERT_NE(scene, nullptr) << error;
    struct {
        const char *key;
        int radio;
    } const cases[] = {
        {"AP_TXPWR", 1},   {"AP_TXPWR_2", 0},        {"TX_CHAINMASK_3", -1}, {"AP_SSID", 0},     {"AP_SSID_2", 1},
        {"AP_SSID_3", -1}, {"AP_SSID_02", -1},       {"AP_SSID_1", -1},      {"AP_SSID_17", -1}, {"OWN_KEY", -1},
        {"OWN_KEY_2", 1},  {"AP_PRIMARY_KEY_1", -1}, {"WSC_PIN", 0},         {"_2", 1},          {"", -1},
        {"AP_SSID_", -1},  {"AP_MACLIST_2", 1},      {"AP_SSI", -1}};
    for (const auto &one : cases)
        EXPECT_EQ(initial_store_radio(scene, one.key), one.radio) << one.key;
    scenario_free(scene);
}

}  // namespace
