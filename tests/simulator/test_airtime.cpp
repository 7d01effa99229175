// airtime: the numbered list of stations with an airtime weight of their own.
#include <string>

#include "simulator/store.h"
#include "tests/simulator/platform.h"

namespace {

class Airtime : public Platform {};

const std::string FIRST = "286aba4c1001", SECOND = "f0d1a9273302", THIRD = "3c15c2e04403";

// The store's lines of the list, in their order.
std::string entries() {
    return run_shell("cfg -s | grep -a ^ATF_STA_ | grep -av ^ATF_STA_WEIGHT_EN").output;
}

void done(const lines &words) {
    lines whole = {"airtime"};
    whole.insert(whole.end(), words.begin(), words.end());
    outcome result = run(whole);
    EXPECT_EQ(result.status, 0) << words[0];
    EXPECT_EQ(result.output + result.errors, "") << words[0];
}

std::string answer(const lines &words) {
    lines whole = {"airtime"};
    whole.insert(whole.end(), words.begin(), words.end());
    outcome result = run(whole);
    EXPECT_EQ(result.status, 0) << words[0] << result.errors;
    return result.output;
}

// A refusal, after which the store is as it was.
void refused(const lines &words, const std::string &message) {
    lines whole = {"airtime"};
    whole.insert(whole.end(), words.begin(), words.end());
    std::string before = read_file(APCFG_STORE);
    outcome result = run(whole);
    EXPECT_EQ(result.status, 1) << message;
    EXPECT_EQ(result.output, "") << message;
    EXPECT_EQ(result.errors, "airtime: " + message + "\n");
    EXPECT_EQ(read_file(APCFG_STORE), before) << message;
}

void add_three() {
    done({"add_sta", FIRST, "10"});
    done({"add_sta", SECOND, "0"});
    done({"add_sta", THIRD, "100"});
}

TEST_F(Airtime, TheListIsEmptyAtFirst) {
    EXPECT_EQ(answer({"sta_count"}), "0\n");
    EXPECT_EQ(entries(), "");
}

TEST_F(Airtime, AnAddedStationIsANumberedEntryOfTheStore) {
    add_three();
    EXPECT_EQ(entries(),
              "ATF_STA_MAC_1=286aba4c1001\nATF_STA_WEIGHT_1=10\n"
              "ATF_STA_MAC_2=f0d1a9273302\nATF_STA_WEIGHT_2=0\n"
              "ATF_STA_MAC_3=3c15c2e04403\nATF_STA_WEIGHT_3=100\n");
    EXPECT_EQ(answer({"sta_count"}), "3\n");
    // The store keeps its shape.
    std::string store = read_file(APCFG_STORE);
    EXPECT_TRUE(store.starts_with("CFG\n"));
    EXPECT_TRUE(store.ends_with(std::string("\n\0\0\0\0", 5)));
}

TEST_F(Airtime, AddressesAreKeptInLowerCase) {
    done({"add_sta", "286ABA4C1001", "10"});
    EXPECT_EQ(entries(), "ATF_STA_MAC_1=286aba4c1001\nATF_STA_WEIGHT_1=10\n");
}

TEST_F(Airtime, AddingAStationThatIsKnownChangesItsWeightAlone) {
    add_three();
    done({"sta_time", "2", "30"});
    done({"add_sta", "F0D1A9273302", "77"});
    EXPECT_EQ(entries(),
              "ATF_STA_MAC_1=286aba4c1001\nATF_STA_WEIGHT_1=10\n"
              "ATF_STA_MAC_2=f0d1a9273302\nATF_STA_WEIGHT_2=77\n"
              "ATF_STA_MAC_3=3c15c2e04403\nATF_STA_WEIGHT_3=100\n"
              "ATF_STA_PERIOD_2=30\n");
}

TEST_F(Airtime, ARemovedStationLeavesNoGap) {
    add_three();
    done({"sta_time", "1", "5"});
    done({"sta_time", "3", "30"});
    done({"del_sta", "286ABA4c1001"});
    EXPECT_EQ(answer({"sta_count"}), "2\n");
    EXPECT_EQ(entries(),
              "ATF_STA_MAC_1=f0d1a9273302\nATF_STA_WEIGHT_1=0\n"
              "ATF_STA_MAC_2=3c15c2e04403\nATF_STA_WEIGHT_2=100\n"
              "ATF_STA_PERIOD_2=30\n");
    done({"del_sta", THIRD});
    EXPECT_EQ(entries(), "ATF_STA_MAC_1=f0d1a9273302\nATF_STA_WEIGHT_1=0\n");
    done({"del_sta", SECOND});
    EXPECT_EQ(entries(), "");
}

TEST_F(Airtime, DelAllStaEmptiesTheListAndTouchesNothingElse) {
    std::string before = read_file(APCFG_STORE);
    add_three();
    done({"sta_time", "1", "5"});
    done({"del_all_sta"});
    EXPECT_EQ(answer({"sta_count"}), "0\n");
    EXPECT_EQ(read_file(APCFG_STORE), before);
    done({"del_all_sta"});
    EXPECT_EQ(read_file(APCFG_STORE), before);
}

TEST_F(Airtime, APeriodIsKeptWithItsStation) {
    add_three();
    EXPECT_EQ(answer({"get_sta_time", "3"}), "0\n");
    done({"sta_time", "3", "2147483647"});
    EXPECT_EQ(answer({"get_sta_time", "3"}), "2147483647\n");
    EXPECT_EQ(answer({"get_sta_time", "2"}), "0\n");
    done({"sta_time", "3", "0"});
    EXPECT_EQ(answer({"get_sta_time", "3"}), "0\n");
    EXPECT_EQ(run({"cfg", "-v", "ATF_STA_PERIOD_3"}).status, 1);
}

TEST_F(Airtime, TheListHasRoomFor64Stations) {
    run_shell("for i in $(seq 10 73); do airtime add_sta 0200000000$i 1; done");
    EXPECT_EQ(answer({"sta_count"}), "64\n");
    EXPECT_EQ(run({"cfg", "-v", "ATF_STA_MAC_64"}).output, "020000000073\n");
    refused({"add_sta", FIRST, "1"}, "\"286aba4c1001\" has no room in the list");
    done({"add_sta", "020000000073", "2"});
    EXPECT_EQ(run({"cfg", "-v", "ATF_STA_WEIGHT_64"}).output, "2\n");
    done({"sta_time", "64", "9"});
    EXPECT_EQ(answer({"get_sta_time", "64"}), "9\n");
    refused({"get_sta_time", "65"}, "\"65\" is no number of the list");
    done({"del_all_sta"});
    EXPECT_EQ(entries(), "");
}

TEST_F(Airtime, TheListEndsAtTheFirstNumberWithoutAnAddress) {
    add_three();
    run({"cfg", "-r", "ATF_STA_MAC_2"});
    EXPECT_EQ(answer({"sta_count"}), "1\n");
    run({"cfg", "-a", "ATF_STA_MAC_2=no address"});
    EXPECT_EQ(answer({"sta_count"}), "1\n");
    // What stands behind it goes with the next change.
    done({"add_sta", FIRST, "11"});
    EXPECT_EQ(entries(), "ATF_STA_MAC_1=286aba4c1001\nATF_STA_WEIGHT_1=11\n");
}

TEST_F(Airtime, AnAddressThatIsNoneIsRefused) {
    add_three();
    for (const std::string mac :
         {"", "286aba4c100", "286aba4c10011", "28:6A:BA:4C:10:01", "286aba4c100g", "-86aba4c1001", " 86aba4c1001"}) {
        refused({"add_sta", mac, "1"}, "\"" + mac + "\" is no address of 12 hex digits");
        refused({"del_sta", mac}, "\"" + mac + "\" is no address of 12 hex digits");
    }
    refused({"del_sta", "000000000000"}, "\"000000000000\" is not in the list");
}

TEST_F(Airtime, ANumberThatIsNoneIsRefused) {
    add_three();
    for (const std::string weight : {"", "101", "-1", "1x", " 1", "+1", "99999999999999999999"})
        refused({"add_sta", "020000000001", weight}, "\"" + weight + "\" is no weight from 0 to 100");
    for (const std::string number : {"", "0", "4", "-1", "1x", "99999999999999999999"}) {
        refused({"sta_time", number, "1"}, "\"" + number + "\" is no number of the list");
        refused({"get_sta_time", number}, "\"" + number + "\" is no number of the list");
    }
    for (const std::string period : {"", "2147483648", "-1", "1x"})
        refused({"sta_time", "1", period}, "\"" + period + "\" is no period");
}

TEST_F(Airtime, RefusesBadUsage) {
    for (const lines &words : {lines{"airtime"}, lines{"airtime", "fly"}, lines{"airtime", "sta_count", "1"},
                               lines{"airtime", "del_all_sta", "1"}, lines{"airtime", "add_sta", FIRST},
                               lines{"airtime", "add_sta", FIRST, "1", "2"}, lines{"airtime", "del_sta"},
                               lines{"airtime", "sta_time", "1"}, lines{"airtime", "get_sta_time"}}) {
        outcome result = run(words);
        EXPECT_EQ(result.status, 1) << words.back();
        EXPECT_EQ(result.output, "") << words.back();
        EXPECT_TRUE(result.errors.starts_with("usage: airtime del_all_sta | sta_count | ")) << words.back();
    }
}

TEST_F(Airtime, WaitsForTheStoresLock) {
    int lock = store_lock(APCFG_LOCK);
    ASSERT_GE(lock, 0);
    for (const std::string command : {"sta_count", "add_sta 286aba4c1001 1"})
        EXPECT_EQ(run_shell("timeout 0.2 airtime " + command).status, 124) << command;
    EXPECT_EQ(run_shell("grep -ac ATF_STA_MAC_1 " + std::string(APCFG_STORE)).output, "0\n");
    close(lock);
    EXPECT_EQ(answer({"sta_count"}), "0\n");
}

TEST_F(Airtime, ObeysTheFaultsOfAllTools) {
    run({"fault", "airtime", "silent"});
    done({"add_sta", FIRST, "1"});
    EXPECT_EQ(entries(), "");
    run({"fault", "airtime", "fail"});
    EXPECT_EQ(run({"airtime", "sta_count"}).status, 1);
}

}  // namespace
