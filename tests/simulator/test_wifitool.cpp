// wifitool: band steering's state in words, and the emptying of the temporary black list.
#include <string>

#include "tests/simulator/platform.h"

namespace {

class Wifitool : public Platform {};

std::string status_of(const std::string &interface) {
    outcome shown = run({"wifitool", interface, "bandsteering_status"});
    EXPECT_EQ(shown.status, 0) << shown.errors;
    EXPECT_EQ(shown.errors, "");
    return shown.output;
}

bool needs_to(const std::string &interface) {
    std::string shown = status_of(interface);
    size_t place = shown.find("need to");
    // Where it stands at all, readers of the first 128 bytes see it.
    EXPECT_TRUE(place == std::string::npos || place + 7 <= 128) << shown;
    return place != std::string::npos;
}

TEST_F(Wifitool, SaysThatBandSteeringIsDisabledAndHowLongItsListsAre) {
    EXPECT_EQ(status_of("ath0"),
              "ath0: band steering is disabled\n"
              "5 GHz capable stations: 3\n"
              "2.4 GHz temporary black list: 2\n");
    EXPECT_EQ(status_of("ath8"),
              "ath8: band steering is disabled\n"
              "5 GHz capable stations: 0\n"
              "2.4 GHz temporary black list: 0\n");
}

TEST_F(Wifitool, SaysThatTheInterfaceNeedsToComeUpUntilTheDriverHasTakenTheSettingOver) {
    set_store("BS_BSS_ENABLE=1");
    EXPECT_TRUE(needs_to("ath0"));
    EXPECT_TRUE(
        status_of("ath0").starts_with("ath0: band steering 1 is set, the driver has 0: need to up the interface\n"));
    run({"apup"});
    EXPECT_FALSE(needs_to("ath0"));
    EXPECT_TRUE(status_of("ath0").starts_with("ath0: band steering is enabled\n"));
}

TEST_F(Wifitool, SaysSoForAnotherMethodToo) {
    set_store("BS_BSS_ENABLE=1");
    run({"apup"});
    set_store("BS_BSS_ENABLE=2");
    EXPECT_TRUE(needs_to("ath0"));
}

TEST_F(Wifitool, ASettingThatWasSwitchedOffNeedsNothing) {
    set_store("BS_BSS_ENABLE=2");
    run({"apup"});
    set_store("BS_BSS_ENABLE=0");
    EXPECT_FALSE(needs_to("ath0"));
    EXPECT_TRUE(status_of("ath0").starts_with("ath0: band steering is enabled\n"));
    run({"cfg", "-r", "BS_BSS_ENABLE"});
    EXPECT_FALSE(needs_to("ath0"));
    run({"apup"});
    EXPECT_TRUE(status_of("ath0").starts_with("ath0: band steering is disabled\n"));
}

TEST_F(Wifitool, AVapHasItsOwnSetting) {
    set_store("BS_BSS_ENABLE_9=1");
    EXPECT_FALSE(needs_to("ath0"));
    EXPECT_TRUE(needs_to("ath8"));
}

TEST_F(Wifitool, AMethodThatTheDriverDoesNotKnowIsNeverTakenOver) {
    set_store("BS_BSS_ENABLE=3");
    run({"apup"});
    EXPECT_TRUE(needs_to("ath0"));
    set_store("BS_BSS_ENABLE=" + std::string(250, '1'));
    EXPECT_TRUE(needs_to("ath0"));
}

TEST_F(Wifitool, EmptiesTheBlackListOfTheInterfaceAlone) {
    add_to_scenario("blacklist2g 2 mac=28:6A:BA:4C:10:01 rssi=1 seconds=1000\n");
    set_store("AP_ENABLE_2=1");
    run({"apup"});
    outcome cleared = run({"wifitool", "ath0", "clr_tmpblacklist2g"});
    EXPECT_EQ(cleared.status, 0);
    EXPECT_EQ(cleared.output + cleared.errors, "");
    EXPECT_NE(status_of("ath0").find("5 GHz capable stations: 3\n2.4 GHz temporary black list: 0\n"),
              std::string::npos);
    EXPECT_NE(status_of("ath1").find("black list: 1\n"), std::string::npos);
    // Once more: there is nothing to empty.
    EXPECT_EQ(run({"wifitool", "ath0", "clr_tmpblacklist2g"}).status, 0);
}

TEST_F(Wifitool, AnInterfaceThatIsNotUpIsRefused) {
    for (const std::string interface : {"ath2", "wifi0", "ath16", "ath-1", "eth0", ""}) {
        for (const std::string command : {"bandsteering_status", "clr_tmpblacklist2g"}) {
            outcome refused = run({"wifitool", interface, command});
            EXPECT_EQ(refused.status, 255) << interface;
            EXPECT_EQ(refused.output, "") << interface;
            EXPECT_EQ(refused.errors, "wifitool: " + interface + ": No such device\n");
        }
    }
}

TEST_F(Wifitool, RefusesBadUsageWithStatus1) {
    for (const lines &words :
         {lines{"wifitool"}, lines{"wifitool", "ath0"}, lines{"wifitool", "ath0", "fly"},
          lines{"wifitool", "ath0", "bandsteering_status", "now"}, lines{"wifitool", "ath0", "bandsteering"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_EQ(refused.output, "") << words.back();
        EXPECT_TRUE(refused.errors.starts_with("usage: wifitool ")) << words.back();
    }
}

TEST_F(Wifitool, ObeysFaults) {
    run({"fault", "wifitool", "silent"});
    EXPECT_EQ(status_of("ath0"), "");
    run({"fault", "wifitool", "missing"});
    EXPECT_EQ(run({"wifitool", "ath0", "clr_tmpblacklist2g"}).status, 127);
    run({"fault", "wifitool", "off"});
    EXPECT_NE(status_of("ath0").find("black list: 2\n"), std::string::npos);
}

}  // namespace
