// The driver's debug requests: the temporary black list in two requests, and forgetting the 5 GHz capable stations.
#include <string>

#include "tests/simulator/platform.h"

namespace {

const std::string FETCH = " count=64 fetches=1 size=2048";

// ath0 has two stations on its black list and two that are 5 GHz capable, ath1 has one on its list.
class DebugRequests : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        write_file(GATEWAY_SCENARIO, SMALL_SCENARIO +
                                         "radio 1 band=5 mac=00:03:7F:10:00:04\n"
                                         "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                                         "vap 3 radio=0 bssid=06:03:7F:10:00:01\n"
                                         "vap 9 radio=1 bssid=00:03:7F:10:00:05 enable=1\n"
                                         "blacklist2g 1 mac=28:6A:ba:4C:10:01 rssi=42 seconds=86400 reason=5\n"
                                         "blacklist2g 1 mac=F0:D1:A9:27:33:02 rssi=-3 seconds=1000\n"
                                         "blacklist2g 2 mac=00:11:22:33:44:55 rssi=1 seconds=1000\n"
                                         "capable5g 1 mac=28:6A:BA:4C:10:01\n"
                                         "capable5g 1 mac=F0:D1:A9:27:33:02\n"
                                         "capable5g 2 mac=28:6A:BA:4C:10:01\n");
        set_store("AP_ENABLE_2=1");
        ASSERT_EQ(run({"apup"}).status, 0);
        mark = journal_mark();
    }
};

std::string debug(const std::string &arguments) {
    return probe("debug " + arguments).output;
}

// Line number `number` of an answer, the result being line 0.
std::string line_of(const std::string &text, int number) {
    size_t from = 0;
    for (; number > 0 && from != std::string::npos; number--)
        from = text.find('\n', from) == std::string::npos ? from : text.find('\n', from) + 1;
    return text.substr(from, text.find('\n', from) - from);
}

// The driver's memory of an interface, as plain text.
std::string kept(const std::string &key) {
    return run_shell("sed -n 's/^" + key + "=//p' /run/gateway/parameters").output;
}

// The black list

TEST_F(DebugRequests, AProbeOfTheBlackListAnswersTheNumberOfStations) {
    EXPECT_EQ(debug("ath0"), "0 \n02000000\n");
    EXPECT_EQ(debug("ath1"), "0 \n01000000\n");
    EXPECT_EQ(journal(), (lines{"ioctl ath0 0x8bf8 211 = 0", "ioctl ath1 0x8bf8 211 = 0"}));
}

TEST_F(DebugRequests, AFetchFillsAnEntryOf32BytesAStation) {
    std::string fetched = debug("ath0 count=2 fetches=1 size=64");
    std::string first = line_of(fetched, 1), second = line_of(fetched, 2);
    EXPECT_EQ(line_of(fetched, 0), "0 ");
    // Address, reason, rssi; the seconds that are left; zeros.
    EXPECT_EQ(first.substr(0, 16), "286aba4c1001052a");
    EXPECT_EQ(second.substr(0, 16), "f0d1a927330200fd");
    EXPECT_EQ(first.substr(24), std::string(40, '0'));
    // 86400 or a moment less, rounded up; so is 1000.
    EXPECT_EQ(first.substr(16, 8), "80510100");
    EXPECT_EQ(second.substr(16, 8), "e8030000");
    EXPECT_EQ(line_of(fetched, 3), "");
}

TEST_F(DebugRequests, AFetchFillsNoMoreEntriesThanWereAskedFor) {
    std::string fetched = debug("ath0 count=1 fetches=1 size=2048");
    EXPECT_EQ(line_of(fetched, 1).substr(0, 12), "286aba4c1001");
    EXPECT_EQ(line_of(fetched, 2), "");
}

TEST_F(DebugRequests, AFetchFillsNoMoreEntriesThanTheBufferHasRoomFor) {
    std::string fetched = debug("ath0 count=64 fetches=1 size=63");
    EXPECT_EQ(line_of(fetched, 1).substr(0, 12), "286aba4c1001");
    EXPECT_EQ(line_of(fetched, 2), "");
    // Not one entry fits; the two words stay as the caller wrote them.
    EXPECT_EQ(debug("ath0 count=64 fetches=1 size=31"), "0 \n4000000001000000\n");
}

TEST_F(DebugRequests, AFetchFillsZerosWhereTheListHasNoMoreStations) {
    std::string fetched = debug("ath1 count=3 fetches=1 size=96");
    EXPECT_EQ(line_of(fetched, 1).substr(0, 12), "001122334455");
    EXPECT_EQ(line_of(fetched, 2), std::string(64, '0'));
    EXPECT_EQ(line_of(fetched, 3), std::string(64, '0'));
    EXPECT_EQ(line_of(fetched, 4), "");
}

TEST_F(DebugRequests, ARequestIsAFetchOnlyWhenTheSecondWordIs1) {
    EXPECT_EQ(debug("ath0 count=64 fetches=0 size=2048"), "0 \n0200000000000000\n");
    EXPECT_EQ(debug("ath0 count=64 fetches=2 size=2048"), "0 \n0200000002000000\n");
    // There is no second word.
    EXPECT_EQ(debug("ath0 count=64 fetches=1 size=7"), "0 \n0200000001000000\n");
}

TEST_F(DebugRequests, ABufferWithoutRoomForTheNumberIsRefused) {
    for (const char *size : {"1", "3"})
        EXPECT_EQ(debug(std::string("ath0 size=") + size), "-1 EINVAL\n") << size;
    EXPECT_EQ(debug("ath0 size=4"), "0 \n02000000\n");
    EXPECT_EQ(line_of(debug("ath0 size=0"), 0), "0 ");
}

TEST_F(DebugRequests, AnAddressThatIsNoneOfTheCallersIsAFault) {
    EXPECT_EQ(debug("ath0 address=0x20000000"), "-1 EFAULT\n");
    EXPECT_EQ(debug("ath0 address=0x20002000 size=4294967295"), "-1 EFAULT\n");
    EXPECT_EQ(journal(), (lines{"ioctl ath0 0x8bf8 211 = -1 EFAULT", "ioctl ath0 0x8bf8 211 = -1 EFAULT"}));
}

TEST_F(DebugRequests, ABufferThatEndsEarlierThanItsSizeSaysIsAFaultToo) {
    EXPECT_EQ(debug("ath0 room=3 size=32"), "-1 EFAULT\n");
    EXPECT_EQ(line_of(debug("ath0 room=40 size=64 count=2 fetches=1"), 0), "-1 EFAULT");
    EXPECT_EQ(line_of(debug("ath0 room=4096 size=4294967295 count=4294967295 fetches=1"), 0), "-1 EFAULT");
    EXPECT_EQ(debug("ath0 room=4 size=4"), "0 \n02000000\n");
}

TEST_F(DebugRequests, TheDriverCanLieAboutTheNumberOfStations) {
    run({"fault", "blacklist2g", "100"});
    EXPECT_EQ(debug("ath0"), "0 \n64000000\n");
    run({"fault", "blacklist2g", "4294967295"});
    EXPECT_EQ(debug("ath0"), "0 \nffffffff\n");
    EXPECT_EQ(line_of(debug("ath0" + FETCH), 1).substr(0, 12), "286aba4c1001");
    run({"fault", "blacklist2g", "0"});
    EXPECT_EQ(debug("ath0"), "0 \n00000000\n");
    run({"fault", "blacklist2g", "off"});
    EXPECT_EQ(debug("ath0"), "0 \n02000000\n");
}

TEST_F(DebugRequests, AListOf100StationsIsTold) {
    std::string items;
    for (int i = 10; i < 110; i++)
        items += "blacklist2g 1 mac=02:00:00:00:01:" + std::to_string(i % 90 + 10) + " rssi=1 seconds=1000\n";
    add_to_scenario(items);
    run({"apup"});
    EXPECT_EQ(debug("ath0"), "0 \n66000000\n");
    EXPECT_NE(line_of(debug("ath0" + FETCH), 64), "");
    EXPECT_EQ(line_of(debug("ath0" + FETCH), 65), "");
}

TEST_F(DebugRequests, AStationLeavesTheListWhenItsTimeIsOver) {
    add_to_scenario("blacklist2g 1 mac=02:00:00:00:01:01 rssi=1 seconds=0.3\n");
    run({"apup"});
    EXPECT_EQ(debug("ath0"), "0 \n03000000\n");
    EXPECT_TRUE(eventually([] { return debug("ath0") == "0 \n02000000\n"; }));
}

TEST_F(DebugRequests, TheListIsPlainTextThatMayBeEditedAndWhatMakesNoSenseIsPassedOver) {
    EXPECT_TRUE(kept("ath0.blacklist2g").starts_with("28:6A:ba:4C:10:01/5/42/")) << kept("ath0.blacklist2g");
    run_shell(
        "echo ath2.blacklist2g=02:00:00:00:01:01/1/1/1e9 nonsense 02:00:00:00:01/1/1/1e9 02:00:00:00:01:02/1/1 "
        "02:00:00:00:01:03/1/1/1 02:00:00:00:01:04/1/1/1e9 >>/run/gateway/parameters");
    run_shell("echo up ath2 1 >>/run/gateway/driver");
    EXPECT_EQ(debug("ath2"), "0 \n02000000\n");
}

TEST_F(DebugRequests, TheListComesBackWithTheNextApupAndGoesWithTheDriver) {
    run({"wifitool", "ath0", "clr_tmpblacklist2g"});
    EXPECT_EQ(debug("ath0"), "0 \n00000000\n");
    run({"apup"});
    EXPECT_EQ(debug("ath0"), "0 \n02000000\n");
    run({"fast_down.sh"});
    EXPECT_EQ(access("/run/gateway/parameters", F_OK), -1);
}

TEST_F(DebugRequests, AVapOfTheOtherRadioHasAnEmptyList) {
    EXPECT_EQ(debug("ath8"), "0 \n00000000\n");
}

// The 5 GHz capable stations

TEST_F(DebugRequests, Command89ForgetsTheCapableStationsOfTheInterfaceAlone) {
    EXPECT_EQ(kept("ath0.capable5g"), "28:6A:BA:4C:10:01 F0:D1:A9:27:33:02\n");
    std::string table = read_file("/nvram/5gcapabletable");
    EXPECT_EQ(debug("ath0 command=89"), "0 \n");
    EXPECT_EQ(kept("ath0.capable5g"), "");
    EXPECT_EQ(kept("ath1.capable5g"), "28:6A:BA:4C:10:01\n");
    EXPECT_EQ(debug("ath0"), "0 \n02000000\n");
    // The file is the server's to clear.
    EXPECT_EQ(read_file("/nvram/5gcapabletable"), table);
}

// What is refused

TEST_F(DebugRequests, ARequestOfAnotherLengthIsRefused) {
    for (const char *length : {"0", "210", "212", "65535"})
        EXPECT_EQ(debug(std::string("ath0 length=") + length), "-1 EINVAL\n") << length;
    EXPECT_EQ(journal()[1], "ioctl ath0 0x8bf8 210 = -1 EINVAL");
}

TEST_F(DebugRequests, ARequestThatIsNoneOfTheCallersMemoryIsAFault) {
    EXPECT_EQ(debug("ath0 pointer=0x10"), "-1 EFAULT\n");
}

TEST_F(DebugRequests, OtherCommandsAreNotSupported) {
    for (const char *command : {"0", "86", "88", "90", "255"})
        EXPECT_EQ(debug(std::string("ath0 command=") + command), "-1 EOPNOTSUPP\n") << command;
    EXPECT_EQ(debug("wifi0"), "-1 EOPNOTSUPP\n");
}

TEST_F(DebugRequests, AnInterfaceThatIsNotUpIsNoSuchDevice) {
    EXPECT_EQ(debug("ath2"), "-1 ENODEV\n");
    EXPECT_EQ(debug("ath2 command=89"), "-1 ENODEV\n");
}

TEST_F(DebugRequests, FailWithTheErrorThatTheirFaultNames) {
    run({"fault", "ioctl:0x8bf8", "EPERM"});
    EXPECT_EQ(debug("ath0"), "-1 EPERM\n");
    EXPECT_EQ(debug("ath0 command=89"), "-1 EPERM\n");
    EXPECT_EQ(kept("ath0.capable5g"), "28:6A:BA:4C:10:01 F0:D1:A9:27:33:02\n");
}

}  // namespace
