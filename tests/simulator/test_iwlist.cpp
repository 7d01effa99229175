// iwlist: the channels of an interface's radio, in the tool's words.
#include <string>

#include "tests/simulator/platform.h"

namespace {

class Iwlist : public Platform {};

TEST_F(Iwlist, ListsTheChannelsOfTheRadioAndTheOneItIsOn) {
    outcome shown = run({"iwlist", "ath0", "freq"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output,
              "ath0      13 channels in total; available frequencies :\n"
              "          Channel 01 : 2.412 GHz\n"
              "          Channel 02 : 2.417 GHz\n"
              "          Channel 03 : 2.422 GHz\n"
              "          Channel 04 : 2.427 GHz\n"
              "          Channel 05 : 2.432 GHz\n"
              "          Channel 06 : 2.437 GHz\n"
              "          Channel 07 : 2.442 GHz\n"
              "          Channel 08 : 2.447 GHz\n"
              "          Channel 09 : 2.452 GHz\n"
              "          Channel 10 : 2.457 GHz\n"
              "          Channel 11 : 2.462 GHz\n"
              "          Channel 12 : 2.467 GHz\n"
              "          Channel 13 : 2.472 GHz\n"
              "          Current Frequency:2.437 GHz (Channel 6)\n\n");
}

TEST_F(Iwlist, WritesFrequenciesOfTheUpperBandWithoutZerosAtTheEnd) {
    std::string shown = run({"iwlist", "ath8", "channel"}).output;
    EXPECT_TRUE(
        shown.starts_with("ath8      17 channels in total; available frequencies :\n"
                          "          Channel 36 : 5.18 GHz\n"
                          "          Channel 40 : 5.2 GHz\n"))
        << shown;
    EXPECT_NE(shown.find("          Channel 165 : 5.825 GHz\n          Current Frequency:5.18 GHz (Channel 36)\n\n"),
              std::string::npos);
}

TEST_F(Iwlist, FollowsTheChannelThatTheRadioIsGiven) {
    run({"iwconfig", "ath0", "channel", "11"});
    EXPECT_NE(run({"iwlist", "ath0", "freq"}).output.find("Current Frequency:2.462 GHz (Channel 11)\n"),
              std::string::npos);
}

TEST_F(Iwlist, ShowsNoCurrentFrequencyOnAChannelThatTheRadioHasNot) {
    set_store("AP_PRIMARY_CH_2=36");
    std::string shown = run({"iwlist", "ath0", "freq"}).output;
    EXPECT_NE(shown.find("Channel 13 : 2.472 GHz\n\n"), std::string::npos);
    EXPECT_EQ(shown.find("Current"), std::string::npos);
}

TEST_F(Iwlist, ListsThirtyTwoChannelsAtMostButCountsThemAll) {
    std::string channels;
    for (int i = 100; i < 140; i++)
        channels += "channel 0 " + std::to_string(i) + " frequency=5" + std::to_string(i) + " flags=0\n";
    write_file(GATEWAY_SCENARIO, SMALL_SCENARIO + channels);
    std::string shown = run({"iwlist", "ath0", "freq"}).output;
    EXPECT_EQ(shown.substr(0, shown.find(';')), "ath0      41 channels in total");
    EXPECT_NE(shown.find("Channel 130 : "), std::string::npos);
    EXPECT_EQ(shown.find("Channel 131 : "), std::string::npos);
}

TEST_F(Iwlist, TakesTheBeginningOfACommandInAnyLetters) {
    std::string whole = run({"iwlist", "ath0", "frequency"}).output;
    for (const char *command : {"f", "freq", "FREQ", "c", "chan", "channel"})
        EXPECT_EQ(run({"iwlist", "ath0", command}).output, whole) << command;
}

TEST_F(Iwlist, WithoutAnInterfaceListsAllThatAreUp) {
    EXPECT_EQ(run({"iwlist", "freq"}).output,
              run({"iwlist", "ath0", "freq"}).output + run({"iwlist", "ath8", "freq"}).output);
    run({"fast_down.sh"});
    outcome nothing = run({"iwlist", "freq"});
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.output, "");
}

TEST_F(Iwlist, OfAnInterfaceThatIsNotUpHasNoFrequencyInformation) {
    for (const char *interface : {"ath3", "ath-1", "eth0", ""}) {
        outcome shown = run({"iwlist", interface, "freq"});
        EXPECT_EQ(shown.status, 0) << interface;
        EXPECT_EQ(shown.output, "") << interface;
        EXPECT_NE(shown.errors.find("  no frequency information.\n\n"), std::string::npos) << interface;
    }
    EXPECT_EQ(run({"iwlist", "ath3", "freq"}).errors, "ath3      no frequency information.\n\n");
}

TEST_F(Iwlist, RefusesBadUsageWithStatus1) {
    EXPECT_EQ(run({"iwlist"}).status, 1);
    outcome unknown = run({"iwlist", "ath0", "colour"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.errors, "iwlist: unknown command `colour' (check 'iwlist --help').\n");
    EXPECT_EQ(run({"iwlist", "ath0", ""}).status, 1);
    EXPECT_EQ(run({"iwlist", "ath0", "frequencyx"}).status, 1);
    outcome more = run({"iwlist", "ath0", "freq", "6"});
    EXPECT_EQ(more.status, 1);
    EXPECT_EQ(more.errors, "iwlist: command `freq' needs fewer arguments (max 0)\n");
}

TEST_F(Iwlist, ObeysAFault) {
    run({"fault", "iwlist", "fail"});
    outcome failed = run({"iwlist", "ath0", "freq"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.output, "");
    EXPECT_EQ(failed.errors, "iwlist: failed\n");
    EXPECT_EQ(journal().back(), "run iwlist ath0 freq");
}

}  // namespace
