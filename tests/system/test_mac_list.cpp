// The MAC access control list over the wire: the reply, the commands that were run, the store afterwards.
#include <gtest/gtest.h>

#include <random>

#include "server/records.h"
#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

int add_station(int index, const std::string &mac, const std::string &name) {
    return code_of(
        call(PROC_wlan_set_mac_address_control_add, vap(index) + xdr_string_bytes(mac) + xdr_string_bytes(name)));
}

int delete_station(int index, const std::string &mac) {
    return set_text(PROC_wlan_set_mac_address_control_delete, index, mac);
}

text_result list_of(int index) {
    return get_text(PROC_wlan_get_mac_address_control_list, index);
}

number_result count_of(int index) {
    return get_number(PROC_wlan_get_mac_address_control_count, index);
}

class MacList : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with({"AP_VAP_NUM=8"});
    }

    strings shell_commands() {
        return commands_since(journal_mark, "system ");
    }
};

TEST_F(MacList, SteeredStationIsGivenToTheDriverStoredAndReadBack) {
    EXPECT_EQ(add_station(1, "02:00:00:00:00:01", "steerlist"), 0);
    EXPECT_EQ(shell_commands(), strings{"iwpriv ath0 addmac 02:00:00:00:00:01"});
    EXPECT_EQ(commands(), strings{"cfg -a AP_MACLIST=\"02:00:00:00:00:01,steerlist;\""});
    EXPECT_EQ(store_value("AP_MACLIST"), "02:00:00:00:00:01,steerlist;");
    EXPECT_EQ(list_of(1), (text_result{0, "02:00:00:00:00:01=steerlist;;"}));
    EXPECT_EQ(count_of(1), (number_result{0, 1}));
}

TEST_F(MacList, DriverIsToldBeforeTheStore) {
    add_station(1, "m", "steerlist");
    delete_station(1, "m");
    strings events;
    for (const std::string &line : lines_since(JOURNAL_FILE, journal_mark))
        if (line.starts_with("popen ") || line.starts_with("system "))
            events.push_back(line.substr(0, line.find(" -a ")));
    EXPECT_EQ(events,
              (strings{"system iwpriv ath0 addmac m", "popen cfg", "system iwpriv ath0 delmac m", "popen cfg"}));
}

TEST_F(MacList, StationOfAnotherListIsStoredWithoutTheDriver) {
    EXPECT_EQ(add_station(9, "02:00:00:00:00:01", "allow"), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_MACLIST_9=\"02:00:00:00:00:01,allow;\""});
    EXPECT_TRUE(shell_commands().empty());
}

TEST_F(MacList, StationThatIsAddedAgainHasOnlyItsNewName) {
    EXPECT_EQ(add_station(1, "02:00:00:00:00:01", "steerlist"), 0);
    EXPECT_EQ(add_station(1, "02:00:00:00:00:02", "steerlist"), 0);
    EXPECT_EQ(add_station(1, "02:00:00:00:00:01", "allow"), 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "02:00:00:00:00:02,steerlist;02:00:00:00:00:01,allow;");
    EXPECT_EQ(count_of(1), (number_result{0, 2}));
}

TEST_F(MacList, DeletedStationLeavesDriverAndList) {
    set_store({"AP_MACLIST_3=02:00:00:00:00:01,steerlist;02:00:00:00:00:02,allow;"});
    EXPECT_EQ(delete_station(3, "02:00:00:00:00:01"), 0);
    EXPECT_EQ(shell_commands(), strings{"iwpriv ath2 delmac 02:00:00:00:00:01"});
    EXPECT_EQ(commands(), strings{"cfg -a AP_MACLIST_3=\"02:00:00:00:00:02,allow;\""});
    EXPECT_EQ(store_value("AP_MACLIST_3"), "02:00:00:00:00:02,allow;");
    EXPECT_TRUE(lines_with({"not exist"}).empty());
}

TEST_F(MacList, StationThatIsNotListedIsReportedAndLeavesTheDriverAllTheSame) {
    set_store({"AP_MACLIST=02:00:00:00:00:01,allow;"});
    EXPECT_EQ(delete_station(1, "02:00:00:00:00:0"), 0);
    EXPECT_EQ(lines_with({"not exist"}), strings{"not exist 02:00:00:00:00:0,"});
    EXPECT_EQ(shell_commands(), strings{"iwpriv ath0 delmac 02:00:00:00:00:0"});
    EXPECT_TRUE(commands().empty());
    EXPECT_EQ(store_value("AP_MACLIST"), "02:00:00:00:00:01,allow;");
}

TEST_F(MacList, MacInsideANameIsNoEntry) {
    set_store({"AP_MACLIST=a,m;b,mm;m"});
    EXPECT_EQ(add_station(1, "m", "n"), 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "a,m;b,mm;mm,n;");
}

TEST_F(MacList, IndexZeroChangesTheStoreOnly) {
    EXPECT_EQ(add_station(0, "m", "steerlist"), 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "m,steerlist;");
    EXPECT_EQ(delete_station(0, "m"), 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "");
    EXPECT_TRUE(shell_commands().empty());
}

TEST_F(MacList, NegativeIndexIsRefused) {
    set_store({"AP_MACLIST=m,n;"});
    EXPECT_EQ(add_station(-1, "m", "steerlist"), -1);
    EXPECT_EQ(delete_station(-1, "m"), -1);
    EXPECT_EQ(code_of(call(PROC_wlan_set_mac_address_control_clear, vap(-1))), -1);
    EXPECT_EQ(list_of(-1), (text_result{-1, ""}));
    EXPECT_EQ(count_of(-1), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
    EXPECT_TRUE(shell_commands().empty());
}

TEST_F(MacList, ClearingEmptiesTheStoreAndThenTheDriver) {
    set_store({"AP_MACLIST_2=m,n;"});
    EXPECT_EQ(code_of(call(PROC_wlan_set_mac_address_control_clear, vap(2))), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_MACLIST_2=\"\"", "iwpriv ath1 maccmd 3"}));
    EXPECT_TRUE(shell_commands().empty());
    EXPECT_EQ(store_value("AP_MACLIST_2"), "");
    EXPECT_EQ(list_of(2), (text_result{0, ";"}));
    EXPECT_EQ(count_of(2), (number_result{0, 0}));
}

TEST_F(MacList, ListOfTwoQuotesIsReplaced) {
    set_store({"AP_MACLIST=\"\""});
    EXPECT_EQ(add_station(1, "m", "n"), 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "m,n;");
}

// Clients rely on the shell seeing their text as it is.
TEST_F(MacList, TextsReachTheShellUnescaped) {
    EXPECT_EQ(add_station(1, "$(echo m)", "steerlist"), 0);
    EXPECT_EQ(shell_commands(), strings{"iwpriv ath0 addmac $(echo m)"});
    EXPECT_EQ(commands(), strings{"cfg -a AP_MACLIST=\"$(echo m),steerlist;\""});
    EXPECT_EQ(store_value("AP_MACLIST"), "m,steerlist;");
}

TEST_F(MacList, ListGrowsToTheLimitAndNoFurther) {
    std::string name(59, 'n');
    std::string list;
    for (int i = 100; i < 149; i++)
        list += "m" + std::to_string(i) + "," + name + ";";
    std::string last(MAC_LIST_SIZE - 1 - list.size() - 3, 'z');
    set_store({"AP_MACLIST=" + list});
    EXPECT_EQ(add_station(1, "m", last + "z"), -1);
    EXPECT_TRUE(commands().empty());
    EXPECT_EQ(store_value("AP_MACLIST"), list);
    EXPECT_EQ(add_station(1, "m", last), 0);
    EXPECT_EQ(store_value("AP_MACLIST"), list + "m," + last + ";");
    EXPECT_EQ(count_of(1), (number_result{0, 50}));
    EXPECT_EQ(add_station(1, "x", "steerlist"), -1);
    EXPECT_EQ(shell_commands(), strings{"iwpriv ath0 addmac x"});
}

TEST_F(MacList, ListOf3197CharactersIsSentWhole) {
    set_store({"AP_MACLIST=" + std::string(3195, 'm') + ",;"});
    EXPECT_EQ(list_of(1), (text_result{0, std::string(3195, 'm') + "=;;"}));
    EXPECT_TRUE(lines_with({"[VLK-API] Error"}).empty());
}

TEST_F(MacList, ListOf3198CharactersFailsAndIsSentAsItIsStored) {
    set_store({"AP_MACLIST=" + std::string(3196, 'm') + ",;"});
    EXPECT_EQ(list_of(1), (text_result{-1, std::string(3196, 'm') + ",;"}));
    EXPECT_EQ(lines_with({"[VLK-API] Error"}),
              strings{"[VLK-API] Error wlan_getMacAddressControlList wlan_getMacAddressControlList: list is too long "
                      "[3198]"});
}

TEST_F(MacList, TextsAsLongAsADatagramAreRefusedByTheListAndTakenByTheDriver) {
    std::string endless(8000, 'm');
    EXPECT_EQ(add_station(1, endless, "steerlist"), -1);
    EXPECT_EQ(delete_station(1, endless), 0);
    EXPECT_EQ(shell_commands(), (strings{"iwpriv ath0 addmac " + endless, "iwpriv ath0 delmac " + endless}));
    EXPECT_EQ(lines_with({"not exist"}), strings{"not exist " + endless + ","});
    EXPECT_TRUE(commands().empty());
}

TEST_F(MacList, StoreThatCannotBeWrittenIsNoFailure) {
    run_command("fault cfg fail");
    EXPECT_EQ(add_station(1, "m", "n"), 0);
    run_command("fault cfg off");
    EXPECT_EQ(commands(), strings{"cfg -a AP_MACLIST=\"m,n;\""});
    EXPECT_EQ(store_value("AP_MACLIST"), "(absent)");
}

TEST_F(MacList, ShellThatCannotBeStartedIsNoFailure) {
    run_command("fault system EAGAIN");
    EXPECT_EQ(add_station(1, "m", "steerlist"), 0);
    EXPECT_EQ(delete_station(1, "m"), 0);
    run_command("fault system off");
    EXPECT_EQ(commands(), (strings{"cfg -a AP_MACLIST=\"m,steerlist;\"", "cfg -a AP_MACLIST=\"\""}));
}

// A list as its entries: what the store must hold after each of many calls.
TEST_F(MacList, ManyAdditionsAndDeletionsLeaveWhatTheirEntriesSay) {
    using entry = std::pair<std::string, std::string>;
    std::vector<entry> entries;
    std::mt19937 random(20131337);
    for (int i = 0; i < 80; i++) {
        std::string mac = "02:00:00:00:00:0" + std::to_string(random() % 5);
        std::string name = random() % 2 ? "steerlist" : "name of 02:00:00:00:00:0" + std::to_string(random() % 5);
        std::erase_if(entries, [&mac](const entry &old) { return old.first == mac; });
        if (random() % 3) {
            entries.emplace_back(mac, name);
            ASSERT_EQ(add_station(4, mac, name), 0);
        } else {
            ASSERT_EQ(delete_station(4, mac), 0);
        }
        std::string stored;
        std::string answer;
        for (const entry &one : entries) {
            stored += one.first + "," + one.second + ";";
            answer += one.first + "=" + one.second + ";";
        }
        if (store_value("AP_MACLIST_4") != "(absent)" || !entries.empty()) {
            ASSERT_EQ(store_value("AP_MACLIST_4"), stored);
        }
        ASSERT_EQ(list_of(4), (text_result{0, answer + ";"}));
        ASSERT_EQ(count_of(4), (number_result{0, static_cast<int>(entries.size())}));
    }
}

// --- the driver's own list ---

strings driver_list() {
    strings macs;
    std::string text = run_command("iwpriv ath0 getmac").text;
    for (size_t at = 0; (at = text.find("02:", at)) != std::string::npos; at += 17)
        macs.push_back(text.substr(at, 17));
    return macs;
}

TEST_F(MacList, TheDriverHasTheSteeredStationsUntilTheyAreDeletedOrTheListIsCleared) {
    EXPECT_EQ(code_of(call(PROC_wlan_set_mac_address_control_clear, vap(1))), 0);
    EXPECT_EQ(driver_list(), strings{});
    EXPECT_EQ(add_station(1, "02:00:00:00:00:01", "steerlist"), 0);
    EXPECT_EQ(add_station(1, "02:00:00:00:00:02", "steerlist"), 0);
    EXPECT_EQ(add_station(1, "02:00:00:00:00:03", "allow"), 0);
    EXPECT_EQ(driver_list(), (strings{"02:00:00:00:00:01", "02:00:00:00:00:02"}));
    EXPECT_EQ(delete_station(1, "02:00:00:00:00:01"), 0);
    EXPECT_EQ(driver_list(), strings{"02:00:00:00:00:02"});
    EXPECT_EQ(code_of(call(PROC_wlan_set_mac_address_control_clear, vap(1))), 0);
    EXPECT_EQ(driver_list(), strings{});
}

TEST_F(MacList, ADriverThatRefusesAStationDoesNotKeepItOutOfTheList) {
    for (const char *fault : {"silent", "fail", "garbage", "missing"}) {
        ASSERT_EQ(run_command(std::string("fault iwpriv ") + fault).status, 0);
        EXPECT_EQ(add_station(1, "02:00:00:00:00:01", "steerlist"), 0) << fault;
        EXPECT_EQ(store_value("AP_MACLIST"), "02:00:00:00:00:01,steerlist;") << fault;
        EXPECT_EQ(delete_station(1, "02:00:00:00:00:01"), 0) << fault;
        EXPECT_EQ(count_of(1), (number_result{0, 0})) << fault;
    }
    run_command("fault off");
}

}  // namespace
