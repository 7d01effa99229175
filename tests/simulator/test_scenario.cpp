// The scenario's parser: what it takes, and how it refuses the rest.
#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "simulator/initial_store.h"
#include "simulator/scenario.h"

namespace {

struct parsed {
    scenario *scene;
    std::string error;
    explicit parsed(const std::string &text) {
        char message[SCENARIO_ERROR_SIZE] = "";
        scene = scenario_parse("test.scn", text.data(), text.size(), message, sizeof message);
        error = message;
    }
    parsed(const parsed &) = delete;
    ~parsed() {
        scenario_free(scene);
    }
};

const std::string RADIO = "radio 0 band=2.4 mac=00:03:7F:10:00:00\n";
const std::string VAP = RADIO + "vap 1 radio=0 bssid=00:03:7F:10:00:01 ssid=\"Home network\" enable=1\n";

// The first complaint about a scenario that must be refused.
std::string refusal(const std::string &text) {
    parsed scenario_text(text);
    EXPECT_EQ(scenario_text.scene, nullptr) << "taken: " << text;
    return scenario_text.error;
}

TEST(Scenario, TheHomeScenarioHasTwoRadiosOfEightVapsWithTheFirstOfEachEnabled) {
    char error[SCENARIO_ERROR_SIZE] = "";
    scenario *scene = scenario_new(HOME_SCENARIO, error, sizeof error);
    ASSERT_NE(scene, nullptr) << error;
    EXPECT_FALSE(scene->radios[0].five_ghz);
    EXPECT_TRUE(scene->radios[1].five_ghz);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        EXPECT_TRUE(scene->vaps[i].declared) << i;
        EXPECT_EQ(scene->vaps[i].radio, i / VAPS_PER_RADIO) << i;
        EXPECT_EQ(scene->vaps[i].enabled, i == 0 || i == 8) << i;
    }
    EXPECT_STREQ(scene->vaps[0].ssid, "Home network");
    EXPECT_STREQ(scene->vaps[0].bssid, "00:03:7F:10:00:01");
    EXPECT_EQ(scene->station_count, 7);
    EXPECT_EQ(scene->neighbour_count, 6);
    EXPECT_EQ(scene->vaps[0].wps.result, WPS_SUCCEEDS);
    scenario_free(scene);
}

TEST(Scenario, AFileThatIsNotThereIsRefusedWithItsName) {
    char error[SCENARIO_ERROR_SIZE] = "";
    EXPECT_EQ(scenario_new("/nowhere.scn", error, sizeof error), nullptr);
    EXPECT_STREQ(error, "/nowhere.scn: No such file or directory");
}

TEST(Scenario, AnEmptyTextCommentsAndBlankLinesAreAScenarioWithNothingInIt) {
    parsed nothing("");
    ASSERT_NE(nothing.scene, nullptr) << nothing.error;
    parsed comments("# one\n\n   # two\n\t\n");
    ASSERT_NE(comments.scene, nullptr) << comments.error;
    EXPECT_FALSE(comments.scene->radios[0].declared);
}

TEST(Scenario, ALastLineWithoutLineEndCounts) {
    parsed one("driver loaded");
    ASSERT_NE(one.scene, nullptr) << one.error;
    EXPECT_EQ(one.scene->driver, DRIVER_LOADED);
}

TEST(Scenario, TextInQuotesKeepsItsBlanks) {
    parsed one(VAP);
    ASSERT_NE(one.scene, nullptr) << one.error;
    EXPECT_STREQ(one.scene->vaps[0].ssid, "Home network");
}

TEST(Scenario, ASettingsValueIsTheRestOfTheLineAsItStands) {
    parsed one("set PSK_KEY  two  blanks \"and quotes\" # no comment \nset EMPTY\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    ASSERT_EQ(one.scene->setting_count, 2);
    EXPECT_STREQ(one.scene->settings[0].key, "PSK_KEY");
    EXPECT_STREQ(one.scene->settings[0].value, " two  blanks \"and quotes\" # no comment ");
    EXPECT_STREQ(one.scene->settings[1].key, "EMPTY");
    EXPECT_STREQ(one.scene->settings[1].value, "");
}

TEST(Scenario, CountersTakeAStartAndASpeed) {
    parsed one(VAP + "counters 1 rx_packets=5+12 tx_packets=7 rx_bytes=18446744073709551615 tx_bytes=0+1\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    const scenario_vap *vap = &one.scene->vaps[0];
    EXPECT_EQ(vap->rx_packets.start, 5u);
    EXPECT_EQ(vap->rx_packets.per_second, 12u);
    EXPECT_EQ(vap->tx_packets.start, 7u);
    EXPECT_EQ(vap->tx_packets.per_second, 0u);
    EXPECT_EQ(vap->rx_bytes.start, 18446744073709551615u);
    EXPECT_EQ(vap->tx_bytes.per_second, 1u);
}

TEST(Scenario, StationsAndNeighboursKeepTheirOrderAndFields) {
    parsed one(VAP +
               "station 1 mac=28:6A:BA:4C:10:01 ip=192.168.0.20 rssi=-3 tx_rate=130 rx_rate=117\n"
               "neighbour bssid=9C:3D:CF:01:02:03 ssid=\"\" channel=6 rssi=-71 auth=WPA2 mode=11ng\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    EXPECT_EQ(one.scene->stations[0].vap, 1);
    EXPECT_STREQ(one.scene->stations[0].ip, "192.168.0.20");
    EXPECT_EQ(one.scene->stations[0].rssi, -3);
    EXPECT_EQ(one.scene->stations[0].rx_rate, 117);
    EXPECT_STREQ(one.scene->neighbours[0].ssid, "");
    EXPECT_EQ(one.scene->neighbours[0].channel, 6u);
    EXPECT_EQ(one.scene->neighbours[0].rssi, -71);
    EXPECT_STREQ(one.scene->neighbours[0].mode, "11ng");
}

TEST(Scenario, ScriptTimesAreSecondsWithFractions) {
    parsed one("script apup seconds=1.25\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    EXPECT_EQ(one.scene->scripts[0].seconds, 1.25);
}

TEST(Scenario, ADefaultIsALineOfItsOwnBesideTheSettings) {
    parsed one("set AP_SSID Home\ndefault AP_SSID  factory \"name\"\ndefault EMPTY\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    ASSERT_EQ(one.scene->setting_count, 1);
    ASSERT_EQ(one.scene->default_count, 2);
    EXPECT_STREQ(one.scene->settings[0].value, "Home");
    EXPECT_STREQ(one.scene->defaults[0].key, "AP_SSID");
    EXPECT_STREQ(one.scene->defaults[0].value, " factory \"name\"");
    EXPECT_STREQ(one.scene->defaults[1].value, "");
    EXPECT_FALSE(one.scene->no_defaults);
    parsed none("defaults none\n");
    ASSERT_NE(none.scene, nullptr) << none.error;
    EXPECT_TRUE(none.scene->no_defaults);
}

TEST(Scenario, StationsOfBandSteeringsTablesKeepTheirOrderAndFields) {
    parsed one(VAP +
               "blacklist2g 1 mac=28:6A:BA:4C:10:01 rssi=-3 seconds=1.5\n"
               "blacklist2g 1 seconds=0 reason=255 rssi=1 mac=28:6A:BA:4C:10:02\n"
               "capable5g 1 mac=28:6A:BA:4C:10:03\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    ASSERT_EQ(one.scene->blacklisted_count, 2);
    ASSERT_EQ(one.scene->capable_count, 1);
    EXPECT_EQ(one.scene->blacklisted[0].vap, 1);
    EXPECT_STREQ(one.scene->blacklisted[0].mac, "28:6A:BA:4C:10:01");
    EXPECT_EQ(one.scene->blacklisted[0].rssi, -3);
    EXPECT_EQ(one.scene->blacklisted[0].seconds, 1.5);
    EXPECT_EQ(one.scene->blacklisted[0].reason, 0);
    EXPECT_EQ(one.scene->blacklisted[1].reason, 255);
    EXPECT_STREQ(one.scene->capable[0].mac, "28:6A:BA:4C:10:03");
}

TEST(Scenario, ItemsOfTheDefaultsAndTheTablesThatMakeNoSenseAreRefused) {
    EXPECT_EQ(refusal("default A=B\n"), "test.scn:1: default needs a key without \"=\" and a value");
    EXPECT_EQ(refusal("default\n"), "test.scn:1: default needs a key without \"=\" and a value");
    EXPECT_EQ(refusal("defaults\n"), "test.scn:1: defaults is none, or not there");
    EXPECT_EQ(refusal("defaults none none\n"), "test.scn:1: defaults is none, or not there");
    EXPECT_EQ(refusal(VAP + "capable5g 9 mac=28:6A:BA:4C:10:01\n"), "test.scn:3: \"9\" is no VAP from 1 to 8");
    EXPECT_EQ(refusal(VAP + "capable5g 2 mac=28:6A:BA:4C:10:01\n"), "test.scn:3: VAP 2 is not declared yet");
    EXPECT_EQ(refusal(VAP + "capable5g 1\n"), "test.scn:3: capable5g needs mac=");
    EXPECT_EQ(refusal(VAP + "blacklist2g 1 mac=28:6A:BA:4C:10:01 rssi=1\n"), "test.scn:3: blacklist2g needs seconds=");
    EXPECT_EQ(refusal(VAP + "blacklist2g 1 mac=28:6A:BA:4C:10:01 rssi=1 seconds=1 reason=256\n"),
              "test.scn:3: \"256\" is no good value for reason");
}

TEST(Scenario, MoreDefaultsOrStationsOfTheTablesThanThereIsRoomForAreRefused) {
    std::string defaults, blacklisted = VAP, capable = VAP;
    for (int i = 0; i <= SCENARIO_DEFAULTS; i++)
        defaults += "default KEY value\n";
    for (int i = 0; i <= SCENARIO_BLACKLISTED; i++)
        blacklisted += "blacklist2g 1 mac=28:6A:BA:4C:10:01 rssi=1 seconds=1\n";
    for (int i = 0; i <= SCENARIO_CAPABLE; i++)
        capable += "capable5g 1 mac=28:6A:BA:4C:10:01\n";
    EXPECT_EQ(refusal(defaults), "test.scn:257: more than 256 defaults");
    EXPECT_EQ(refusal(blacklisted), "test.scn:1019: more than 1016 stations on black lists");
    EXPECT_EQ(refusal(capable), "test.scn:1019: more than 1016 stations known to be 5 GHz capable");
}

TEST(Scenario, AWpsItemSaysWhatBecomesOfAnExchangeAndWhichLinesTheFileHas) {
    parsed one(VAP +
               "wps 1 seconds=1.5 friendly_name=\"Living room\" result=success mac=28:6A:BA:4C:10:01 ap_pin= a=b=c\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    const scenario_wps *wps = &one.scene->vaps[0].wps;
    EXPECT_EQ(wps->result, WPS_SUCCEEDS);
    EXPECT_EQ(wps->seconds, 1.5);
    EXPECT_STREQ(wps->mac, "28:6A:BA:4C:10:01");
    ASSERT_EQ(one.scene->wps_line_count, 3);
    EXPECT_EQ(one.scene->wps_lines[0].vap, 1);
    EXPECT_STREQ(one.scene->wps_lines[0].key, "friendly_name");
    EXPECT_STREQ(one.scene->wps_lines[0].value, "Living room");
    EXPECT_STREQ(one.scene->wps_lines[1].value, "");
    EXPECT_STREQ(one.scene->wps_lines[2].key, "a");
    EXPECT_STREQ(one.scene->wps_lines[2].value, "b=c");
}

TEST(Scenario, AnAirItemKeepsWhatItDoesNotName) {
    parsed plain(RADIO);
    ASSERT_NE(plain.scene, nullptr) << plain.error;
    parsed one(RADIO + "air 0 activity=12 noise=-101 swing=5 seconds=1.5\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    const scenario_air *air = &one.scene->radios[0].air;
    EXPECT_EQ(air->activity, 12);
    EXPECT_EQ(air->noise, -101);
    EXPECT_EQ(air->swing, 5);
    EXPECT_EQ(air->seconds, 1.5);
    EXPECT_EQ(air->utilisation, plain.scene->radios[0].air.utilisation);
    parsed rest(RADIO + "air 0 utilisation=100 busy=0 retry=99\n");
    ASSERT_NE(rest.scene, nullptr) << rest.error;
    EXPECT_EQ(rest.scene->radios[0].air.utilisation, 100);
    EXPECT_EQ(rest.scene->radios[0].air.busy, 0);
    EXPECT_EQ(rest.scene->radios[0].air.retry, 99);
}

TEST(Scenario, AnAirItemThatDoesNotFitIsRefused) {
    EXPECT_EQ(refusal("air 0\n"), "test.scn:1: radio 0 is not declared yet");
    EXPECT_EQ(refusal("air\n"), "test.scn:1: air needs a radio");
    EXPECT_EQ(refusal("air 2\n"), "test.scn:1: \"2\" is no radio from 0 to 1");
    EXPECT_EQ(refusal(RADIO + "air 0\nair 0\n"), "test.scn:3: air of radio 0 stands twice");
    for (const char *good : {"utilisation=0", "noise=-128", "noise=0", "swing=50"})
        EXPECT_NE(parsed(RADIO + "air 0 " + good + "\n").scene, nullptr) << good;
    EXPECT_EQ(refusal(RADIO + "air 0 wind=5\n"), "test.scn:2: air has no \"wind\"");
    for (const char *bad : {"utilisation=101", "activity=-1", "busy=101", "retry=101", "noise=-129", "noise=1",
                            "swing=51", "swing=-1", "seconds=-1"}) {
        std::string text = bad;
        size_t equals = text.find('=');
        EXPECT_EQ(refusal(RADIO + "air 0 " + text + "\n"),
                  "test.scn:2: \"" + text.substr(equals + 1) + "\" is no good value for " + text.substr(0, equals));
    }
}

TEST(Scenario, WithoutAResultNobodyComesToAnExchange) {
    parsed none(VAP);
    ASSERT_NE(none.scene, nullptr) << none.error;
    EXPECT_EQ(none.scene->vaps[0].wps.result, WPS_RUNS_OUT);
    parsed lines_only(VAP + "wps 1 ap_pin=0\n");
    ASSERT_NE(lines_only.scene, nullptr) << lines_only.error;
    EXPECT_EQ(lines_only.scene->vaps[0].wps.result, WPS_RUNS_OUT);
    parsed said(VAP + "wps 1 result=timeout\n");
    ASSERT_NE(said.scene, nullptr) << said.error;
    EXPECT_EQ(said.scene->vaps[0].wps.result, WPS_RUNS_OUT);
    parsed failed(VAP + "wps 1 seconds=0 result=failed\n");
    ASSERT_NE(failed.scene, nullptr) << failed.error;
    EXPECT_EQ(failed.scene->vaps[0].wps.result, WPS_FAILS);
}

TEST(Scenario, AWpsItemThatDoesNotFitIsRefused) {
    EXPECT_EQ(refusal("wps 1 ap_pin=0\n"), "test.scn:1: VAP 1 is not declared yet");
    EXPECT_EQ(refusal(VAP + "wps\n"), "test.scn:3: wps needs a VAP");
    EXPECT_EQ(refusal(VAP + "wps 17\n"), "test.scn:3: \"17\" is no VAP from 1 to 16");
    EXPECT_EQ(refusal(VAP + "wps 1 a=1\nwps 1 b=1\n"), "test.scn:4: wps of VAP 1 stands twice");
    EXPECT_EQ(refusal(VAP + "wps 1 button\n"), "test.scn:3: \"button\" is no name=value");
    EXPECT_EQ(refusal(VAP + "wps 1 seconds=1 seconds=1\n"), "test.scn:3: seconds stands twice");
    EXPECT_EQ(refusal(VAP + "wps 1 a=1 b=1 a=2\n"), "test.scn:3: a stands twice");
    EXPECT_EQ(refusal(VAP + "wps 1 seconds=soon\n"), "test.scn:3: \"soon\" is no good value for seconds");
    EXPECT_EQ(refusal(VAP + "wps 1 mac=28:6A\n"), "test.scn:3: \"28:6A\" is no good value for mac");
    EXPECT_EQ(refusal(VAP + "wps 1 seconds=1 result=perhaps\n"),
              "test.scn:3: result is success, failed or timeout, not \"perhaps\"");
    EXPECT_EQ(refusal(VAP + "wps 1 result=success mac=28:6A:BA:4C:10:01\n"),
              "test.scn:3: wps needs seconds= with result=success");
    EXPECT_EQ(refusal(VAP + "wps 1 result=failed\n"), "test.scn:3: wps needs seconds= with result=failed");
    EXPECT_EQ(refusal(VAP + "wps 1 seconds=1 result=success\n"), "test.scn:3: wps needs mac= with result=success");
    EXPECT_EQ(refusal(VAP + "wps 1 =1\n"), "test.scn:3: \"\" is no key of a WPS file");
    EXPECT_EQ(refusal(VAP + "wps 1 \"a key\"=1\n"), "test.scn:3: \"a key\" is no key of a WPS file");
    EXPECT_EQ(refusal(VAP + "wps 1 " + std::string(64, 'k') + "=1\n"),
              "test.scn:3: \"" + std::string(64, 'k') + "\" is no key of a WPS file");
    EXPECT_EQ(refusal(VAP + "wps 1 a=" + std::string(256, 'v') + "\n"),
              "test.scn:3: a value has at most 255 characters");
}

TEST(Scenario, EveryVapCanHaveAsManyWpsLinesAsAnItemHasWords) {
    std::string text = RADIO;
    for (int i = 1; i <= SCENARIO_VAPS; i++) {
        text += "vap " + std::to_string(i) + " radio=0 bssid=00:03:7F:10:00:01\nwps " + std::to_string(i);
        for (char key = 'a'; key < 'a' + 14; key++)
            text += std::string(" ") + key + "=1";
        text += "\n";
    }
    parsed full(text);
    ASSERT_NE(full.scene, nullptr) << full.error;
    EXPECT_EQ(full.scene->wps_line_count, SCENARIO_WPS_LINES);
}

TEST(Scenario, AMistakeIsReportedWithFileAndLine) {
    EXPECT_EQ(refusal("# first\nnonsense 1\n"), "test.scn:2: \"nonsense\" is no item of a scenario");
}

TEST(Scenario, AMissingFieldIsRefused) {
    EXPECT_EQ(refusal("radio 0 band=5\n"), "test.scn:1: radio needs mac=");
}

TEST(Scenario, AnUnknownFieldIsRefused) {
    EXPECT_EQ(refusal("radio 0 band=5 colour=red\n"), "test.scn:1: radio has no \"colour\"");
}

TEST(Scenario, AFieldThatStandsTwiceIsRefused) {
    EXPECT_EQ(refusal("radio 0 band=5 band=5\n"), "test.scn:1: band stands twice");
}

TEST(Scenario, AWordThatIsNoFieldIsRefused) {
    EXPECT_EQ(refusal("radio 0 band\n"), "test.scn:1: \"band\" is no name=value");
}

TEST(Scenario, ABadValueIsRefused) {
    EXPECT_EQ(refusal("radio 0 mac=00:03:7F:10:00\n"), "test.scn:1: \"00:03:7F:10:00\" is no good value for mac");
    EXPECT_EQ(refusal("radio 0 mac=00-03-7F-10-00-00\n"), "test.scn:1: \"00-03-7F-10-00-00\" is no good value for mac");
    EXPECT_EQ(refusal(RADIO + "channel 0 6 frequency=24370 flags=0\n"),
              "test.scn:2: \"24370\" is no good value for frequency");
    EXPECT_EQ(refusal(RADIO + "channel 0 6 frequency=2437 flags=-1\n"),
              "test.scn:2: \"-1\" is no good value for flags");
    EXPECT_EQ(refusal(RADIO + "vap 1 enable=yes\n"), "test.scn:2: \"yes\" is no good value for enable");
    EXPECT_EQ(refusal(VAP + "station 1 ip=1.2.3\n"), "test.scn:3: \"1.2.3\" is no good value for ip");
    EXPECT_EQ(refusal(VAP + "counters 1 rx_packets=+3\n"), "test.scn:3: \"+3\" is no good value for rx_packets");
}

TEST(Scenario, AnSsidOfMoreThan32CharactersIsRefused) {
    EXPECT_EQ(refusal(RADIO + "vap 1 ssid=" + std::string(33, 'x') + "\n"),
              "test.scn:2: \"" + std::string(33, 'x') + "\" is no good value for ssid");
    parsed longest(RADIO + "vap 1 radio=0 bssid=00:03:7F:10:00:01 ssid=" + std::string(32, 'x') + "\n");
    EXPECT_NE(longest.scene, nullptr) << longest.error;
}

TEST(Scenario, ABandThatDoesNotExistIsRefused) {
    EXPECT_EQ(refusal("radio 0 band=6 mac=00:03:7F:10:00:00\n"), "test.scn:1: band is 2.4 or 5, not \"6\"");
}

TEST(Scenario, NumbersOutsideTheirRangeAreRefused) {
    EXPECT_EQ(refusal("radio 2 band=5\n"), "test.scn:1: \"2\" is no radio from 0 to 1");
    EXPECT_EQ(refusal(RADIO + "vap 17\n"), "test.scn:2: \"17\" is no VAP from 1 to 16");
    EXPECT_EQ(refusal(RADIO + "channel 0 256\n"), "test.scn:2: \"256\" is no channel from 1 to 255");
    EXPECT_EQ(refusal("vap\n"), "test.scn:1: vap needs a VAP");
}

TEST(Scenario, WhatIsDeclaredTwiceIsRefused) {
    EXPECT_EQ(refusal(RADIO + RADIO), "test.scn:2: radio 0 is declared twice");
    EXPECT_EQ(refusal(VAP + "vap 1\n"), "test.scn:3: VAP 1 is declared twice");
    EXPECT_EQ(refusal(RADIO + "channel 0 6 frequency=2437 flags=0\nchannel 0 6\n"),
              "test.scn:3: channel 6 of radio 0 stands twice");
    EXPECT_EQ(refusal("script apup seconds=1\nscript apup seconds=1\n"), "test.scn:2: script apup stands twice");
}

TEST(Scenario, WhatRefersToSomethingUndeclaredIsRefused) {
    EXPECT_EQ(refusal("channel 1 36 frequency=5180 flags=0\n"), "test.scn:1: radio 1 is not declared yet");
    EXPECT_EQ(refusal("station 3\n"), "test.scn:1: VAP 3 is not declared yet");
    EXPECT_EQ(refusal("counters 3\n"), "test.scn:1: VAP 3 is not declared yet");
}

TEST(Scenario, AVapWithoutItsRadioIsReportedAtTheVapsLine) {
    EXPECT_EQ(refusal("\nvap 9 radio=1 bssid=00:03:7F:10:00:05\n# end\n"),
              "test.scn:2: radio 1 of VAP 9 is not declared");
}

TEST(Scenario, AQuoteThatIsNotClosedIsRefused) {
    EXPECT_EQ(refusal(RADIO + "vap 1 ssid=\"Home\n"), "test.scn:2: a quote is not closed");
}

TEST(Scenario, ALineWithTooManyWordsIsRefused) {
    EXPECT_EQ(refusal("driver a b c d e f g h i j k l m n o p q r s t\n"), "test.scn:1: too many words");
}

TEST(Scenario, AnOverlongLineIsRefused) {
    EXPECT_EQ(refusal("# " + std::string(1023, 'x') + "\n"), "test.scn:1: a line has at most 1024 characters");
    parsed longest("# " + std::string(1022, 'x') + "\n");
    EXPECT_NE(longest.scene, nullptr) << longest.error;
}

TEST(Scenario, AZeroByteIsRefused) {
    EXPECT_EQ(refusal(std::string("driver up\ndri\0ver\n", 18)), "test.scn:2: a zero byte");
}

TEST(Scenario, ASettingWithoutAKeyOrWithAnEqualsSignIsRefused) {
    EXPECT_EQ(refusal("set\n"), "test.scn:1: set needs a key without \"=\" and a value");
    EXPECT_EQ(refusal("set A=B\n"), "test.scn:1: set needs a key without \"=\" and a value");
}

TEST(Scenario, AnOverlongKeyOrValueIsRefused) {
    EXPECT_EQ(refusal("set " + std::string(64, 'K') + " v\n"), "test.scn:1: a key has at most 63 characters");
    EXPECT_EQ(refusal("set K " + std::string(256, 'v') + "\n"), "test.scn:1: a value has at most 255 characters");
}

TEST(Scenario, AScriptThatTheDriverDoesNotHaveIsRefused) {
    EXPECT_EQ(refusal("script reboot seconds=1\n"),
              "test.scn:1: script is apup, apup_simple or fast_down.sh, not \"reboot\"");
    EXPECT_EQ(refusal("script apup seconds=soon\n"), "test.scn:1: script needs seconds= with 0 to 86400");
}

TEST(Scenario, ADriverStateThatDoesNotExistIsRefused) {
    EXPECT_EQ(refusal("driver broken\n"), "test.scn:1: driver is unloaded, loaded or up");
}

TEST(Scenario, MoreChannelsThanTheDriversTableHoldsCannotBeDeclared) {
    // Channel numbers end where the table does, so the table is full when all are used.
    std::string text = RADIO;
    for (int i = 1; i <= SCENARIO_CHANNELS; i++)
        text += "channel 0 " + std::to_string(i) + " frequency=2412 flags=0\n";
    parsed full(text);
    ASSERT_NE(full.scene, nullptr) << full.error;
    EXPECT_EQ(full.scene->radios[0].channel_count, SCENARIO_CHANNELS);
}

TEST(Scenario, MoreStationsNeighboursOrSettingsThanThereIsRoomForAreRefused) {
    std::string stations = VAP, neighbours, settings;
    for (int i = 0; i <= SCENARIO_STATIONS; i++)
        stations += "station 1 mac=28:6A:BA:4C:10:01 ip=192.168.0.20 rssi=1 tx_rate=1 rx_rate=1\n";
    for (int i = 0; i <= SCENARIO_NEIGHBOURS; i++)
        neighbours += "neighbour bssid=9C:3D:CF:01:02:03 ssid=a channel=6 rssi=-71 auth=WPA2 mode=11ng\n";
    for (int i = 0; i <= SCENARIO_SETTINGS; i++)
        settings += "set KEY value\n";
    EXPECT_EQ(refusal(stations), "test.scn:2035: more than 2032 stations");
    EXPECT_EQ(refusal(neighbours), "test.scn:513: more than 512 neighbours");
    EXPECT_EQ(refusal(settings), "test.scn:1025: more than 1024 settings");
}

TEST(Scenario, TheQuietestChannelIsTheFirstOfThoseWithTheFewestNeighbours) {
    std::string text = RADIO;
    for (const char *channel : {"1", "6", "11"})
        text += std::string("channel 0 ") + channel + " frequency=2412 flags=0\n";
    parsed quiet(text);
    EXPECT_EQ(scenario_quietest_channel(quiet.scene, 0), 1u);
    parsed busy(text + "neighbour bssid=9C:3D:CF:01:02:03 ssid=a channel=1 rssi=-71 auth=WPA2 mode=11ng\n");
    EXPECT_EQ(scenario_quietest_channel(busy.scene, 0), 6u);
    EXPECT_EQ(scenario_quietest_channel(busy.scene, 1), 0u);
}

TEST(Scenario, InterfaceNamesAreTakenOnlyInTheirOneSpelling) {
    EXPECT_EQ(vap_of_interface("ath0"), 0);
    EXPECT_EQ(vap_of_interface("ath15"), 15);
    EXPECT_EQ(radio_of_device("wifi1"), 1);
    for (const char *name : {"ath", "ath16", "ath01", "ath-1", "ath1x", "ath100", "eth0", "wifi0", ""})
        EXPECT_EQ(vap_of_interface(name), -1) << name;
    for (const char *name : {"wifi", "wifi2", "wifi00", "ath0"})
        EXPECT_EQ(radio_of_device(name), -1) << name;
}

// The value of a key in a store, "(absent)" when it has no such line.
std::string value_in(const store_text &store, const char *key) {
    size_t length = 0;
    const char *value = store_find(&store, key, &length);
    return value != nullptr ? std::string(value, length) : "(absent)";
}

TEST(InitialStore, RadioOneHasTheBareKeysAndRadioZeroTheSuffix2) {
    parsed both(
        "radio 0 band=2.4 mac=00:03:7F:10:00:00 txpower=17\n"
        "radio 1 band=5 mac=00:03:7F:10:00:04 txpower=23\n");
    ASSERT_NE(both.scene, nullptr) << both.error;
    store_text store;
    ASSERT_EQ(initial_store(both.scene, &store), 0);
    EXPECT_EQ(value_in(store, "AP_PRIMARY_CH"), "36");
    EXPECT_EQ(value_in(store, "AP_PRIMARY_CH_2"), "6");
    EXPECT_EQ(value_in(store, "AP_CHMODE"), "11ACVHT80");
    EXPECT_EQ(value_in(store, "AP_CHMODE_2"), "11NGHT20");
    EXPECT_EQ(value_in(store, "AP_TXPWR"), "23");
    EXPECT_EQ(value_in(store, "AP_TXPWR_2"), "17");
    store_free(&store);
}

TEST(InitialStore, AVapsKeysCarryItsNumberAndOneWithoutSsidHasNoSsidLine) {
    parsed two(VAP + "vap 2 radio=0 bssid=02:03:7F:10:00:01\n");
    ASSERT_NE(two.scene, nullptr) << two.error;
    store_text store;
    ASSERT_EQ(initial_store(two.scene, &store), 0);
    EXPECT_EQ(value_in(store, "AP_SSID"), "Home network");
    EXPECT_EQ(value_in(store, "AP_ENABLE"), "1");
    EXPECT_EQ(value_in(store, "AP_SSID_2"), "(absent)");
    EXPECT_EQ(value_in(store, "AP_ENABLE_2"), "0");
    EXPECT_EQ(value_in(store, "AP_BSSID_2"), "02:03:7F:10:00:01");
    EXPECT_EQ(value_in(store, "AP_RADIO_ID_2"), "0");
    EXPECT_EQ(value_in(store, "AP_VAP_NUM"), "8");
    store_free(&store);
}

TEST(InitialStore, ASettingOfTheScenarioReplacesTheLineThatIsThereAnyway) {
    parsed one(RADIO + "set AP_PRIMARY_CH_2 11\nset OWN_KEY own value\n");
    ASSERT_NE(one.scene, nullptr) << one.error;
    store_text store;
    ASSERT_EQ(initial_store(one.scene, &store), 0);
    EXPECT_EQ(value_in(store, "AP_PRIMARY_CH_2"), "11");
    EXPECT_EQ(value_in(store, "OWN_KEY"), "own value");
    store_free(&store);
}

// --- stations that come and go, and their airtime ---

const std::string STATION = VAP + "station 1 mac=28:6A:BA:00:00:01 ip=192.168.1.20 rssi=45 tx_rate=130 rx_rate=117";

TEST(Scenario, AStationIsThereFromTheBeginningToTheEndUnlessItSaysOtherwise) {
    parsed always(STATION);
    ASSERT_NE(always.scene, nullptr) << always.error;
    EXPECT_EQ(always.scene->stations[0].from, 0);
    EXPECT_EQ(always.scene->stations[0].until, 0);
    parsed some_time(STATION + " from=1.5 until=60");
    ASSERT_NE(some_time.scene, nullptr) << some_time.error;
    EXPECT_EQ(some_time.scene->stations[0].from, 1.5);
    EXPECT_EQ(some_time.scene->stations[0].until, 60);
}

TEST(Scenario, AStationDoesNotGoBeforeItCame) {
    EXPECT_EQ(refusal(STATION + " from=5 until=5"),
              "test.scn:3: a station goes after it came: until is larger than from");
    EXPECT_EQ(refusal(STATION + " until=0"), "test.scn:3: a station goes after it came: until is larger than from");
}

TEST(Scenario, AStationHasCountersAndTokens) {
    parsed one(STATION +
               " packets=10+3 airtime=20000+1500 tokens=4294967295 act_tokens=600 unused=200 capabilities=QoS");
    ASSERT_NE(one.scene, nullptr) << one.error;
    const scenario_station *station = &one.scene->stations[0];
    EXPECT_EQ(scenario_count(&station->packets, 2), 16U);
    EXPECT_EQ(scenario_count(&station->airtime, 2), 23000U);
    EXPECT_EQ(station->tokens, 4294967295U);
    EXPECT_EQ(station->act_tokens, 600U);
    EXPECT_EQ(station->unused, 200U);
    EXPECT_STREQ(station->capabilities, "QoS");
}

TEST(Scenario, AVapHasAShareOfTheAirtimeOfItsOwnOrInAGroup) {
    parsed own(VAP + "airtime 1 share=125");
    ASSERT_NE(own.scene, nullptr) << own.error;
    EXPECT_TRUE(own.scene->vaps[0].airtime.declared);
    EXPECT_EQ(own.scene->vaps[0].airtime.share, 125);
    EXPECT_STREQ(own.scene->vaps[0].airtime.group, "");
    EXPECT_FALSE(own.scene->vaps[1].airtime.declared);
    parsed grouped(VAP + "airtime 1 share=1000 group=Guests");
    ASSERT_NE(grouped.scene, nullptr) << grouped.error;
    EXPECT_STREQ(grouped.scene->vaps[0].airtime.group, "Guests");
}

TEST(Scenario, AShareOfTheAirtimeIsRefusedTwiceBeyondTheWholeAndWithoutItsVap) {
    EXPECT_EQ(refusal(VAP + "airtime 1 share=1\nairtime 1 share=2"), "test.scn:4: airtime of VAP 1 stands twice");
    EXPECT_EQ(refusal(VAP + "airtime 2 share=1"), "test.scn:3: VAP 2 is not declared yet");
    EXPECT_NE(refusal(VAP + "airtime 1 share=1001"), "");
    EXPECT_NE(refusal(VAP + "airtime 1"), "");
}

TEST(Scenario, AScanTakesTwoSecondsUnlessTheRadioSaysOtherwise) {
    parsed silent(RADIO);
    ASSERT_NE(silent.scene, nullptr) << silent.error;
    EXPECT_EQ(silent.scene->radios[0].scan_seconds, 2);
    parsed said("radio 0 band=2.4 mac=00:03:7F:10:00:00 scan_seconds=0.5");
    ASSERT_NE(said.scene, nullptr) << said.error;
    EXPECT_EQ(said.scene->radios[0].scan_seconds, 0.5);
}

}  // namespace
