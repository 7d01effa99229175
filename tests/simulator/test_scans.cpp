// Scans: starting one, its state, and the networks that the driver has.
#include <set>
#include <string>
#include <utility>

#include "simulator/driver/scans.h"
#include "tests/simulator/driver_answers.h"

namespace {

const std::string CAFE =
    "neighbour bssid=9C:3D:CF:01:02:03 ssid=\"Cafe am Eck\" channel=1 rssi=-71 auth=WPA2 mode=11ng\n";
const std::string PRINTER = "neighbour bssid=64:70:02:AA:10:20 ssid=printer channel=6 rssi=-80 auth=OPEN mode=11g\n";
const std::string NUMBER_12 = "neighbour bssid=c0:4a:00:77:88:9d ssid=\"\" channel=36 rssi=12 auth=WPA mode=11ac\n";
const std::string UPSTAIRS = "neighbour bssid=9C:3D:CF:0A:0B:0C ssid=Upstairs channel=6 rssi=-58 auth=WEP mode=11b\n";

// ath0 and ath1 on one radio, ath8 on another; ath2 is down. Nobody hears what is on channel 99.
class Scans : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        set_store("AP_ENABLE_2=1");
        set_neighbours(CAFE + NUMBER_12 +
                       "neighbour bssid=00:00:00:00:00:01 ssid=far channel=99 rssi=1 auth=a mode=b\n" + PRINTER);
        // A driver that was just loaded.
        ASSERT_EQ(run({"fast_down.sh"}).status, 0);
        ASSERT_EQ(run({"apup"}).status, 0);
        mark = journal_mark();
    }

    // From now on this is nearby, and scans take so long.
    void set_neighbours(const std::string &neighbours, const std::string &seconds = "0") {
        write_file(GATEWAY_SCENARIO, "radio 0 band=2.4 mac=00:03:7F:10:00:00 scan_seconds=" + seconds +
                                         "\n"
                                         "radio 1 band=5 mac=00:03:7F:10:00:04 scan_seconds=" +
                                         seconds +
                                         "\n"
                                         "channel 0 1 frequency=2412 flags=0\n"
                                         "channel 0 6 frequency=2437 flags=0\n"
                                         "channel 1 36 frequency=5180 flags=0\n"
                                         "vap 1 radio=0 bssid=00:03:7F:10:00:01\n"
                                         "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                                         "vap 3 radio=0 bssid=06:03:7F:10:00:01\n"
                                         "vap 9 radio=1 bssid=00:03:7F:10:00:05\n" +
                                         neighbours);
    }
};

std::string scan(const std::string &interface) {
    return probe("request " + interface + " 0x8b18").output;
}

std::string status(const std::string &interface) {
    return driver_command(interface + " command=38").result;
}

// The command's words say the number.
std::string count(const std::string &interface) {
    return driver_command(interface + " command=39 value=4711").words;
}

// Brings a scan to a point of its time: so many seconds after its beginning, of so many that it takes.
void put_scan_at(int radio, double elapsed, double seconds) {
    driver_state state;
    driver_state_read(&state);
    double since = driver_clock() - elapsed;
    state.scans[radio] = {true, since, since + seconds};
    ASSERT_EQ(driver_state_write(&state), 0);
}

// The last octets of the addresses, in the order of the list; a star behind what only the scan before had found.
std::string listed(const std::string &interface) {
    std::string octets;
    for (const record &network : networks(interface).records) {
        char octet[8];
        snprintf(octet, sizeof octet, "%02x%s ", network.at(5), network.at(124) == 1 ? "" : "*");
        octets += octet;
    }
    return octets;
}

std::string many_neighbours(int number) {
    std::string items;
    for (int i = 0; i < number; i++) {
        char item[128];
        snprintf(item, sizeof item,
                 "neighbour bssid=00:11:22:33:%02X:%02X ssid=n%d channel=6 rssi=-%d auth=WPA2 mode=11ng\n", i / 256,
                 i % 256, i, i % 100);
        items += item;
    }
    return items;
}

// The life of a scan

TEST_F(Scans, BeforeTheFirstScanThereIsNoneAndNoNetworkIsKnown) {
    EXPECT_EQ(status("ath0"), "0");
    EXPECT_EQ(count("ath0"), "39 0 kept");
    EXPECT_EQ(networks("ath0").result, "0");
    EXPECT_EQ(networks("ath0").records.size(), 0u);
}

TEST_F(Scans, AScanRunsForItsTimeAndIsCompleteThen) {
    set_neighbours(CAFE, "0.4");
    EXPECT_EQ(scan("ath0"), "0 \n");
    driver_state state;
    driver_state_read(&state);
    EXPECT_NEAR(state.scans[0].until - state.scans[0].since, 0.4, 1e-5);
    EXPECT_EQ(scan_status_at(&state, 0, state.scans[0].until - 0.001), SCAN_RUNNING);
    EXPECT_EQ(scan_status_at(&state, 0, state.scans[0].until), SCAN_COMPLETE);
    EXPECT_TRUE(eventually([] { return status("ath0") == "3"; }));
    EXPECT_GE(driver_clock(), state.scans[0].until);
    EXPECT_EQ(count("ath0"), "39 1 kept");
}

TEST_F(Scans, AScanThatTakesNoTimeIsCompleteAtOnce) {
    EXPECT_EQ(scan("ath0"), "0 \n");
    EXPECT_EQ(status("ath0"), "3");
    EXPECT_EQ(count("ath0"), "39 2 kept");
}

TEST_F(Scans, AScanWhileOneRunsIsRefusedAndChangesNothing) {
    set_neighbours(CAFE, "1000");
    EXPECT_EQ(scan("ath0"), "0 \n");
    std::string before = read_file(GATEWAY_DRIVER_STATE);
    set_neighbours(CAFE + PRINTER, "1000");
    // The radio scans, so it does for all of its VAPs.
    EXPECT_EQ(scan("ath0"), "-1 EBUSY\n");
    EXPECT_EQ(scan("ath1"), "-1 EBUSY\n");
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), before);
    put_scan_at(0, 2, 1);
    EXPECT_EQ(count("ath0"), "39 1 kept");
}

TEST_F(Scans, EachRadioScansForItselfAndForAllOfItsVaps) {
    set_neighbours(CAFE + NUMBER_12, "1000");
    EXPECT_EQ(scan("ath1"), "0 \n");
    EXPECT_EQ(status("ath0"), "1");
    EXPECT_EQ(status("ath8"), "0");
    EXPECT_EQ(scan("ath8"), "0 \n");
    put_scan_at(0, 1, 1);
    EXPECT_EQ(status("ath0") + status("ath8"), "31");
    EXPECT_EQ(listed("ath0"), "03 ");
    put_scan_at(1, 1, 1);
    EXPECT_EQ(listed("ath8"), "9d ");
}

TEST_F(Scans, EachRadioTakesItsOwnTime) {
    set_neighbours(CAFE, "1000");
    run_shell("sed -i '/^radio 1/s/1000/50/' /run/gateway/scenario");
    scan("ath0");
    scan("ath8");
    driver_state state;
    driver_state_read(&state);
    EXPECT_NEAR(state.scans[0].until - state.scans[0].since, 1000, 1e-5);
    EXPECT_NEAR(state.scans[1].until - state.scans[1].since, 50, 1e-5);
}

TEST_F(Scans, NetworksComeInEvenlyOverTheTimeOfTheScan) {
    const driver_scan at_100 = {true, 100, 110};
    EXPECT_EQ(scan_found(&at_100, 4, 100), 0);
    EXPECT_EQ(scan_found(&at_100, 4, 102.4), 0);
    EXPECT_EQ(scan_found(&at_100, 4, 102.5), 1);
    EXPECT_EQ(scan_found(&at_100, 4, 107.5), 3);
    EXPECT_EQ(scan_found(&at_100, 4, 109.9), 3);
    EXPECT_EQ(scan_found(&at_100, 4, 110), 4);
    EXPECT_EQ(scan_found(&at_100, 0, 105), 0);
    // A clock that somebody has put back, and no scan at all.
    EXPECT_EQ(scan_found(&at_100, 4, 99), 0);
    const driver_scan none = {};
    EXPECT_EQ(scan_found(&none, 4, 105), 0);
}

TEST_F(Scans, TheFirstScanHasWhatItHasFoundUpToNow) {
    set_neighbours(many_neighbours(4), "1000");
    scan("ath0");
    EXPECT_EQ(listed("ath0"), "");
    put_scan_at(0, 625, 1000);
    EXPECT_EQ(count("ath0"), "39 2 kept");
    EXPECT_EQ(listed("ath0"), "00 01 ");
}

TEST_F(Scans, WhileAScanRunsTheListBeforeStandsBehindWhatItHasFound) {
    scan("ath0");
    EXPECT_EQ(listed("ath0"), "03 20 ");
    // One that is new, one again with another strength, one that has gone.
    set_neighbours(UPSTAIRS + "neighbour bssid=64:70:02:aa:10:20 ssid=printer channel=6 rssi=-33 auth=OPEN mode=11g\n",
                   "1000");
    scan("ath0");
    EXPECT_EQ(listed("ath0"), "03* 20* ");
    put_scan_at(0, 625, 1000);
    EXPECT_EQ(listed("ath0"), "0c 03* 20* ");
    EXPECT_EQ(count("ath0"), "39 3 kept");
    put_scan_at(0, 900, 1000);
    EXPECT_EQ(listed("ath0"), "0c 03* 20* ");
    EXPECT_EQ(static_cast<int8_t>(networks("ath0").records.at(2).at(87)), -80);
    put_scan_at(0, 1000, 1000);
    EXPECT_EQ(listed("ath0"), "0c 20 ");
    EXPECT_EQ(static_cast<int8_t>(networks("ath0").records.at(1).at(87)), -33);
}

TEST_F(Scans, ANetworkThatIsFoundAgainStandsThereOnce) {
    scan("ath0");
    // The spelling of an address is of no meaning.
    set_neighbours("neighbour bssid=9c:3d:cf:01:02:03 ssid=x channel=1 rssi=-1 auth=WPA2 mode=11ng\n" + PRINTER,
                   "1000");
    scan("ath0");
    put_scan_at(0, 500, 1000);
    EXPECT_EQ(listed("ath0"), "03 20* ");
}

TEST_F(Scans, AListStaysUntilThereIsAnotherScan) {
    scan("ath0");
    set_neighbours(UPSTAIRS);
    EXPECT_EQ(listed("ath0"), "03 20 ");
    EXPECT_EQ(status("ath0"), "3");
    scan("ath0");
    EXPECT_EQ(listed("ath0"), "0c ");
}

TEST_F(Scans, AScanFindsWhatIsThereWhenItBegins) {
    set_neighbours(CAFE, "1000");
    scan("ath0");
    set_neighbours(UPSTAIRS, "0");
    EXPECT_EQ(status("ath0"), "1");
    put_scan_at(0, 1000, 1000);
    EXPECT_EQ(listed("ath0"), "03 ");
}

TEST_F(Scans, TheListIsPlainTextInTheWordsOfTheScenario) {
    scan("ath0");
    EXPECT_EQ(read_file("/run/gateway/scan.wifi0"),
              "neighbour bssid=9C:3D:CF:01:02:03 ssid=\"Cafe am Eck\" channel=1 rssi=-71 auth=\"WPA2\" mode=\"11ng\"\n"
              "neighbour bssid=64:70:02:AA:10:20 ssid=\"printer\" channel=6 rssi=-80 auth=\"OPEN\" mode=\"11g\"\n");
    EXPECT_EQ(access("/run/gateway/scan.wifi0.before", F_OK), -1);
    scan("ath0");
    EXPECT_EQ(read_file("/run/gateway/scan.wifi0.before"), read_file("/run/gateway/scan.wifi0"));
    EXPECT_EQ(access("/run/gateway/scan.wifi0.new", F_OK), -1);
}

TEST_F(Scans, AStartOfTheVapsKeepsWhatIsKnownAndARemovedDriverForgetsIt) {
    scan("ath0");
    scan("ath0");
    scan("ath8");
    run({"apup"});
    EXPECT_EQ(status("ath0"), "3");
    EXPECT_EQ(listed("ath0"), "03 20 ");
    run({"fast_down.sh"});
    EXPECT_EQ(run_shell("ls /run/gateway | grep scan").output, "");
    EXPECT_EQ(scan("ath0"), "-1 ENODEV\n");
    run({"apup"});
    EXPECT_EQ(status("ath0") + status("ath8"), "00");
    EXPECT_EQ(listed("ath0") + listed("ath8"), "");
}

TEST_F(Scans, WithoutADriverNoScanBegins) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    ASSERT_NE(scene, nullptr) << error;
    run({"fast_down.sh"});
    EXPECT_EQ(scan_begin(scene, 0), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE).find("scan"), std::string::npos);
    scenario_free(scene);
}

TEST_F(Scans, FiveHundredAndTwelveNetworksAreFoundInTheirOrder) {
    set_neighbours(many_neighbours(512));
    scan("ath0");
    EXPECT_EQ(count("ath0"), "39 512 kept");
    driver_answer all = networks("ath0");
    ASSERT_EQ(all.records.size(), 512u);
    for (size_t i = 0; i < 512; i++) {
        ASSERT_EQ(all.records[i].size(), NETWORK_SIZE);
        EXPECT_EQ(text_at(all.records[i], 6, 32), "n" + std::to_string(i));
    }
    // The next one finds as many others; for a moment the driver has both.
    std::string others = run_shell("sed -n 's/00:11:22/00:11:23/p' /run/gateway/scenario").output;
    set_neighbours(others, "1000");
    scan("ath0");
    put_scan_at(0, 99900, 100000);
    EXPECT_EQ(count("ath0"), "39 1023 kept");
    EXPECT_EQ(networks("ath0").records.size(), 1023u);
}

// The record

// What every network has, with the rates of 2.4 GHz.
record common_network() {
    record network(NETWORK_SIZE);
    put(&network, 38, "\x82\x84\x8b\x96\x0c\x12\x18\x24\x30\x48\x60\x6c\x0c");
    network[64] = 100;
    network[66] = 0x21;
    network[67] = 0x04;
    network[80] = 1;
    put(&network, 81, "2GHz");
    network[124] = 1;
    return network;
}

TEST_F(Scans, ANetworkWithKeysIsARecordOf128Bytes) {
    scan("ath0");
    record expected = common_network();
    put(&expected, 0, "\x9c\x3d\xcf\x01\x02\x03");
    put(&expected, 6, "Cafe am Eck");
    put(&expected, 51, "\xff\xff");
    expected[63] = 2;
    expected[66] = 0x31;
    expected[79] = 0x10;
    expected[87] = static_cast<uint8_t>(-71);
    put(&expected, 88, "WPA2");
    put(&expected, 103, "AES");
    put(&expected, 111, "11ng");
    put_word(&expected, 120, 1);
    EXPECT_EQ(networks("ath0").records.at(0), expected);
}

TEST_F(Scans, AnOpenNetworkIsARecordWithoutTheFlag) {
    scan("ath0");
    record expected = common_network();
    put(&expected, 0, "\x64\x70\x02\xaa\x10\x20");
    put(&expected, 6, "printer");
    expected[87] = static_cast<uint8_t>(-80);
    put(&expected, 88, "OPEN");
    put(&expected, 103, "NONE");
    put(&expected, 111, "11g");
    put_word(&expected, 120, 6);
    EXPECT_EQ(networks("ath0").records.at(1), expected);
}

TEST_F(Scans, ANetworkOfTheOtherBandHasItsRates) {
    scan("ath8");
    record expected = common_network();
    put(&expected, 0, std::string("\xc0\x4a\x00\x77\x88\x9d", 6));
    put(&expected, 38, std::string("\x8c\x12\x98\x24\xb0\x48\x60\x6c\0\0\0\0\x08", 13));
    put(&expected, 51, "\xff\xff");
    expected[63] = 2;
    expected[66] = 0x31;
    expected[79] = 0x10;
    put(&expected, 81, "5GHz");
    expected[87] = 12;
    put(&expected, 88, "WPA");
    put(&expected, 103, "TKIP");
    put(&expected, 111, "11ac");
    put_word(&expected, 120, 36);
    EXPECT_EQ(networks("ath8").records.at(0), expected);
}

TEST_F(Scans, TheCipherFollowsFromTheAuthentication) {
    set_neighbours(UPSTAIRS + "neighbour bssid=00:00:00:00:00:01 ssid=x channel=255 rssi=1 auth=WPA3 mode=11na\n");
    run_shell("echo channel 0 255 frequency=2484 flags=0 >>/run/gateway/scenario");
    scan("ath0");
    driver_answer found = networks("ath0");
    EXPECT_EQ(text_at(found.records.at(0), 103, 8), "WEP");
    EXPECT_EQ(text_at(found.records.at(1), 103, 8), "AES");
    EXPECT_EQ(word_at(found.records.at(1), 120), 255u);
}

TEST_F(Scans, TextsAreCutSoThatTheyEndWithANul) {
    set_neighbours(
        "neighbour bssid=00:00:00:00:00:01 ssid=0123456789abcdef0123456789abcdeF channel=6 rssi=-128 "
        "auth=0123456789abcdef0123456789abcde mode=0123456789abcdef0123456789abcde\n");
    scan("ath0");
    record found = networks("ath0").records.at(0);
    EXPECT_EQ(text_at(found, 6, 32), "0123456789abcdef0123456789abcde");
    EXPECT_EQ(text_at(found, 88, 15), "0123456789abcd");
    EXPECT_EQ(text_at(found, 111, 8), "0123456");
    EXPECT_EQ(found[87], 0x80);
    // Nothing of them stands in the neighbouring fields.
    EXPECT_EQ(found[38], 0x82);
    EXPECT_EQ(text_at(found, 103, 8), "AES");
    EXPECT_EQ(word_at(found, 120), 6u);
}

// The caller's buffer

TEST_F(Scans, AListGoesAsFarAsTheCallersNumberSays) {
    scan("ath0");
    EXPECT_EQ(networks("ath0", 0).records.size(), 0u);
    driver_answer one = networks("ath0", 1);
    EXPECT_EQ(one.words, "40 1 kept");
    ASSERT_EQ(one.records.size(), 1u);
    EXPECT_EQ(one.records[0].size(), NETWORK_SIZE);
    EXPECT_EQ(one.records[0][5], 0x03);
}

TEST_F(Scans, BehindTheListTheBufferStaysAsItWas) {
    scan("ath0");
    driver_answer all = networks("ath0", 4294967295);
    EXPECT_EQ(all.result, "0");
    EXPECT_EQ(all.words, "40 4294967295 kept");
    EXPECT_EQ(all.records.size(), 2u);
    EXPECT_EQ(all.records.back().size(), NETWORK_SIZE);
}

TEST_F(Scans, AnAddressThatIsNoneOfTheCallersIsAFault) {
    scan("ath0");
    // Below the buffer, behind it, and where its end cuts a record.
    for (const char *where : {"address=0x20000000", "address=0x20021000", "address=4294967295", "room=127",
                              "room=255 value=2", "address=0x20000ff0"})
        EXPECT_EQ(driver_command(std::string("ath0 command=40 value=1 ") + where).result, "-1 EFAULT") << where;
    EXPECT_EQ(driver_command("ath0 command=40 value=1 room=128").result, "0");
    EXPECT_EQ(driver_command("ath0 command=40 value=1 room=255").result, "0");
    for (const char *command : {"38", "39", "40"})
        EXPECT_EQ(driver_command(std::string("ath0 pointer=0x10 command=") + command).result, "-1 EFAULT") << command;
    // The command's end is nobody's memory.
    EXPECT_EQ(driver_command("ath0 command=38 pointer=0x20020ff8").result, "-1 EFAULT");
}

// What is refused

TEST_F(Scans, ARequestOfAnotherLengthIsRefused) {
    for (const char *length : {"0", "4", "11", "13", "65535"})
        EXPECT_EQ(driver_command(std::string("ath0 command=38 length=") + length).result, "-1 EINVAL") << length;
    EXPECT_EQ(journal()[2], "ioctl ath0 0x89fc 11 = -1 EINVAL");
}

TEST_F(Scans, OtherCommandsAreNotSupported) {
    for (const char *command : {"0", "37", "43", "4294967295"})
        EXPECT_EQ(driver_command(std::string("ath0 command=") + command).result, "-1 EOPNOTSUPP") << command;
}

TEST_F(Scans, ARadioItselfIsNotAskedThese) {
    EXPECT_EQ(scan("wifi0"), "-1 EOPNOTSUPP\n");
    for (const char *command : {"38", "39", "40"})
        EXPECT_EQ(driver_command(std::string("wifi0 command=") + command).result, "-1 EOPNOTSUPP") << command;
}

TEST_F(Scans, AnInterfaceThatIsNotUpIsNoSuchDevice) {
    EXPECT_EQ(scan("ath2"), "-1 ENODEV\n");
    for (const char *command : {"38", "39", "40"})
        EXPECT_EQ(driver_command(std::string("ath2 command=") + command).result, "-1 ENODEV") << command;
}

TEST_F(Scans, AScenarioOrAListThatMakesNoSenseIsAnError) {
    scan("ath0");
    write_file("/run/gateway/scan.wifi0", "nonsense\n");
    EXPECT_EQ(networks("ath0").result, "-1 EIO");
    write_file(GATEWAY_SCENARIO, "nonsense\n");
    EXPECT_EQ(scan("ath0"), "-1 EIO\n");
    EXPECT_EQ(status("ath0"), "-1 EIO");
    EXPECT_EQ(driver_command("ath0 command=39").result, "-1 EIO");
}

// Faults and the journal

TEST_F(Scans, TheJournalTellsTheCommand) {
    scan("ath0");
    status("ath0");
    count("ath8");
    driver_command("ath0 command=40 value=1 room=1");
    driver_command("ath0 command=7");
    driver_command("ath0 pointer=0x10");
    EXPECT_EQ(journal(), (lines{"ioctl ath0 0x8b18 0 = 0", "ioctl ath0 0x89fc.38 12 = 3", "ioctl ath8 0x89fc.39 12 = 0",
                                "ioctl ath0 0x89fc.40 12 = -1 EFAULT", "ioctl ath0 0x89fc.7 12 = -1 EOPNOTSUPP",
                                "ioctl ath0 0x89fc 12 = -1 EFAULT"}));
}

TEST_F(Scans, EachRequestFailsOnItsOwn) {
    scan("ath0");
    const std::vector<std::string> commands = {"38", "39", "40", "41", "42"};
    for (const std::string &broken : commands) {
        run({"fault", "ioctl:0x89fc." + broken, "EPERM"});
        for (const std::string &command : commands)
            EXPECT_EQ(driver_command("ath0 command=" + command).result.substr(0, 2) == "-1", command == broken)
                << broken << " " << command;
        EXPECT_EQ(driver_command("ath0 command=" + broken).result, "-1 EPERM");
        run({"fault", "ioctl:0x89fc." + broken, "off"});
    }
    run({"fault", "ioctl:0x89fc", "ENOSYS"});
    for (const std::string &command : commands)
        EXPECT_EQ(driver_command("ath0 command=" + command).result, "-1 ENOSYS") << command;
    EXPECT_EQ(scan("ath0"), "0 \n");
    run({"fault", "ioctl:0x8b18", "EPERM"});
    EXPECT_EQ(scan("ath0"), "-1 EPERM\n");
}

TEST_F(Scans, ARequestThatIsNoCommandFailsByItsLength) {
    for (const std::string length : {"36", "5824"}) {
        run({"fault", "ioctl:0x89fc." + length, "EPERM"});
        EXPECT_EQ(driver_command("ath0 length=" + length).result, "-1 EPERM");
        EXPECT_EQ(journal().back(), "ioctl ath0 0x89fc " + length + " = -1 EPERM");
        EXPECT_EQ(status("ath0"), "0");
        run({"fault", "off"});
    }
}

TEST_F(Scans, FaultsOfPartsHaveOneSpelling) {
    run({"fault", "ioctl:35324.041"});
    EXPECT_EQ(run({"fault"}).output, "ioctl:0x89fc.41 EIO\n");
    run({"fault", "ioctl:0x89fc.41", "off"});
    EXPECT_EQ(run({"fault"}).output, "");
}

TEST_F(Scans, TheDriverCanLieAboutTheNumberOfNetworks) {
    scan("ath0");
    for (const auto &[told, word] : {std::pair{"0", "0"},
                                     {"65", "65"},
                                     {"256", "256"},
                                     {"300", "300"},
                                     {"-1", "4294967295"},
                                     {"-2147483648", "2147483648"},
                                     {"2147483647", "2147483647"},
                                     {"4294967295", "4294967295"}}) {
        ASSERT_EQ(run({"fault", "scan_count", told}).status, 0) << told;
        EXPECT_EQ(count("ath0"), "39 " + std::string(word) + " kept");
    }
    run({"fault", "scan_count", "off"});
    EXPECT_EQ(count("ath0"), "39 2 kept");
    run({"fault", "scan_count"});
    EXPECT_EQ(count("ath0"), "39 300 kept");
}

TEST_F(Scans, ADriverThatTellsOfFewerNetworksStillHasThemAll) {
    scan("ath0");
    for (const char *told : {"0", "1", "2", "-1"}) {
        run({"fault", "scan_count", told});
        EXPECT_EQ(networks("ath0").records.size(), 2u) << told;
    }
    EXPECT_EQ(networks("ath0", 1).records.size(), 1u);
}

TEST_F(Scans, ADriverThatTellsOfMoreNetworksRepeatsThemWithOtherAddresses) {
    scan("ath0");
    record first = networks("ath0").records.at(0);
    run({"fault", "scan_count", "300"});
    driver_answer many = networks("ath0", 300);
    ASSERT_EQ(many.records.size(), 300u);
    EXPECT_EQ(many.records[0], first);
    EXPECT_EQ(many.records[1][5], 0x20);
    // Place 298 is 0x012a; it repeats the first one.
    first[0] |= 2;
    first[4] = 1;
    first[5] = 0x2a;
    EXPECT_EQ(many.records[298], first);
    EXPECT_EQ(text_at(many.records[299], 6, 32), "printer");
    std::set<record> different(many.records.begin(), many.records.end());
    EXPECT_EQ(different.size(), 300u);
    EXPECT_EQ(networks("ath0", 1000).records.size(), 1000u);
    EXPECT_EQ(networks("ath0", 1).records.size(), 1u);
}

TEST_F(Scans, WhereThereIsNothingThereIsNothingToRepeat) {
    run({"fault", "scan_count", "300"});
    EXPECT_EQ(count("ath0"), "39 300 kept");
    EXPECT_EQ(networks("ath0", 300).records.size(), 0u);
}

TEST_F(Scans, RepeatedNetworksEndWhereTheCallersMemoryDoes) {
    scan("ath0");
    run({"fault", "scan_count", "4294967295"});
    driver_answer cut = networks("ath0", 4294967295);
    EXPECT_EQ(cut.result, "-1 EFAULT");
    EXPECT_EQ(cut.records.size(), 1024u);
}

TEST_F(Scans, TheDriverCanLieAboutTheStateOfAScan) {
    for (const char *told : {"0", "2", "3", "2147483647"}) {
        run({"fault", "scan_status", told});
        EXPECT_EQ(status("ath0"), told);
    }
    run({"fault", "scan_status"});
    EXPECT_EQ(status("ath0"), "1");
    run({"fault", "scan_status", "off"});
    EXPECT_EQ(status("ath0"), "0");
}

TEST_F(Scans, TextsCanComeWithoutTheirNul) {
    scan("ath0");
    EXPECT_EQ(run({"fault", "texts"}).status, 0);
    EXPECT_EQ(run({"fault"}).output, "texts unterminated\n");
    record found = networks("ath0").records.at(0);
    EXPECT_EQ(text_at(found, 6, 32), "Cafe am Eck" + std::string(21, 'x'));
    EXPECT_EQ(text_at(found, 81, 6), "2GHzxx");
    EXPECT_EQ(text_at(found, 88, 15), "WPA2xxxxxxxxxxx");
    EXPECT_EQ(text_at(found, 103, 8), "AESxxxxx");
    EXPECT_EQ(text_at(found, 111, 8), "11ngxxxx");
    set_neighbours(
        "neighbour bssid=00:00:00:00:00:01 ssid=0123456789abcdef0123456789abcdef channel=6 rssi=1 auth=a mode=b\n");
    scan("ath0");
    EXPECT_EQ(text_at(networks("ath0").records.at(0), 6, 32), "0123456789abcdef0123456789abcdef");
    // The fields around them are as ever.
    EXPECT_EQ(found[38], 0x82);
    EXPECT_EQ(found[80], 1);
    EXPECT_EQ(static_cast<int8_t>(found[87]), -71);
    EXPECT_EQ(found[119], 0);
}

TEST_F(Scans, FaultsRefuseWhatMakesNoSense) {
    for (const auto &[name, value] : {std::pair{"scan_status", "-1"},
                                      {"scan_status", "2147483648"},
                                      {"scan_count", "-2147483649"},
                                      {"scan_count", "4294967296"},
                                      {"scan_count", "many"},
                                      {"scan_count", "-"},
                                      {"station_count", "+1"},
                                      {"station_count", "1x"},
                                      {"table_count", "4294967296"},
                                      {"table_count", "99999999999999999999"},
                                      {"texts", "short"},
                                      {"ioctl:0x89fc.43", "EIO"},
                                      {"ioctl:0x89fc.", "EIO"},
                                      {"ioctl:0x89fc.38x", "EIO"},
                                      {"ioctl:0x89fc.-38", "EIO"},
                                      {"ioctl:0x8be7.38", "EIO"},
                                      {"ioctl:0x89fc.38", "ENONSENSE"}}) {
        EXPECT_EQ(run({"fault", name, value}).status, 1) << name << " " << value;
    }
    EXPECT_EQ(run({"fault"}).output, "");
}

}  // namespace
