// The MAC access control list: what its text becomes, and what each operation runs, writes, prints and refuses.
#include "steering/mac_list.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <random>
#include <string>
#include <vector>

#include "server/records.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

const char MAC[] = "02:00:00:00:00:01";

// --- the text of a list ---

// A copy that ends where its text ends, so that the sanitizers see every step beyond it.
std::vector<char> exact_copy(const std::string &text) {
    return {text.c_str(), text.c_str() + text.size() + 1};
}

struct removal {
    bool removed;
    std::string list;
    bool operator==(const removal &) const = default;
};

std::ostream &operator<<(std::ostream &out, const removal &result) {
    return out << (result.removed ? "removed, \"" : "not found, \"") << result.list << '"';
}

removal remove_from(const std::string &list, const std::string &mac) {
    std::vector<char> text = exact_copy(list);
    bool removed = mac_list_remove(text.data(), mac.c_str());
    return {removed, text.data()};
}

removal left(const std::string &list) {
    return {true, list};
}

removal not_found(const std::string &list) {
    return {false, list};
}

TEST(MacListText, AnEntryGoesWithItsSemicolon) {
    EXPECT_EQ(remove_from("a,x;b,y;c,z;", "a"), left("b,y;c,z;"));
    EXPECT_EQ(remove_from("a,x;b,y;c,z;", "b"), left("a,x;c,z;"));
    EXPECT_EQ(remove_from("a,x;b,y;c,z;", "c"), left("a,x;b,y;"));
}

TEST(MacListText, TheOnlyEntryLeavesAnEmptyList) {
    EXPECT_EQ(remove_from("a,x;", "a"), left(""));
    EXPECT_EQ(remove_from("a,x", "a"), left(""));
    EXPECT_EQ(remove_from("a,", "a"), left(""));
}

TEST(MacListText, ALastEntryWithoutSemicolonTakesTheSeparatorBeforeIt) {
    EXPECT_EQ(remove_from("a,x;b,y", "b"), left("a,x"));
    EXPECT_EQ(remove_from("a,x;;b,y", "b"), left("a,x;"));
    EXPECT_EQ(remove_from(";b,y", "b"), left(""));
}

TEST(MacListText, WhatIsNoSeparatorStaysBeforeALastEntry) {
    EXPECT_EQ(remove_from("xb,y", "b"), left("x"));
}

TEST(MacListText, TheFirstEntriesOfAListWithoutLastSemicolonAreOrdinary) {
    EXPECT_EQ(remove_from("a,x;b,y", "a"), left("b,y"));
}

TEST(MacListText, AnEntryWithAnEmptyNameIsAnEntry) {
    EXPECT_EQ(remove_from("a,;b,;c,z;", "b"), left("a,;c,z;"));
}

TEST(MacListText, OnlyTheFirstOfSeveralEntriesOfAMacGoes) {
    EXPECT_EQ(remove_from("a,x;b,y;a,z;", "a"), left("b,y;a,z;"));
}

TEST(MacListText, AMacThatIsNotThereIsNotFound) {
    EXPECT_EQ(remove_from("a,x;b,y;", "c"), not_found("a,x;b,y;"));
    EXPECT_EQ(remove_from("", "a"), not_found(""));
}

TEST(MacListText, AMacInsideANameIsNotFound) {
    EXPECT_EQ(remove_from("a,b;c,xb;d,bx;", "b"), not_found("a,b;c,xb;d,bx;"));
    EXPECT_EQ(remove_from("a,b;b,y;", "b"), left("a,b;"));
}

TEST(MacListText, TheBeginningOfALongerMacIsNotFound) {
    EXPECT_EQ(remove_from("abc,x;", "ab"), not_found("abc,x;"));
    EXPECT_EQ(remove_from("abc,x;ab,y;", "ab"), left("abc,x;"));
}

TEST(MacListText, AMacAtTheEndOfTheListIsNotFound) {
    EXPECT_EQ(remove_from("b,y;a", "a"), not_found("b,y;a"));
    EXPECT_EQ(remove_from("a", "a"), not_found("a"));
}

// The list is searched as text: a client that names the end of a MAC, or what stands in a name before a comma, gets
// the list that it has always got.
TEST(MacListText, TheEndOfALongerMacIsFound) {
    EXPECT_EQ(remove_from("abc,x;d,y;", "bc"), left("ad,y;"));
}

TEST(MacListText, AMacWithACommaBehindItInsideANameIsFound) {
    EXPECT_EQ(remove_from("a,xb,y;c,z;", "b"), left("a,xc,z;"));
}

TEST(MacListText, AnEmptyMacIsNotFound) {
    EXPECT_EQ(remove_from("a,x;", ""), not_found("a,x;"));
    EXPECT_EQ(remove_from(",x;", ""), not_found(",x;"));
    EXPECT_EQ(remove_from(",", ""), not_found(","));
}

TEST(MacListText, OverlappingBeginningsOfAMacDoNotHideIt) {
    EXPECT_EQ(remove_from("aaa,x;", "aa"), left("a"));
    EXPECT_EQ(remove_from("ababa,x;", "aba"), left("ab"));
}

TEST(MacListText, AMacLongerThanTheListIsNotFound) {
    EXPECT_EQ(remove_from("a,x;", std::string(9000, 'a')), not_found("a,x;"));
}

// The same said slowly: every place of the list is tried, in order.
std::string without_first_entry(const std::string &list, const std::string &mac) {
    for (size_t start = 0; start < list.size() && !mac.empty(); start++) {
        if (list.substr(start, mac.size() + 1) != mac + ",") {
            continue;
        }
        std::string before = list.substr(0, start);
        std::string behind = list.substr(start + mac.size() + 1);
        size_t end = behind.find(';');
        if (end != std::string::npos) {
            return before + behind.substr(end + 1);
        }
        return before.ends_with(';') ? before.substr(0, before.size() - 1) : before;
    }
    return list;
}

// Every text of these letters up to a length, in a fixed order.
std::vector<std::string> all_texts(const std::string &letters, size_t longest) {
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < longest; i++) {
        for (char letter : letters) {
            texts.push_back(texts[i] + letter);
        }
    }
    return texts;
}

TEST(MacListText, EveryShortListLosesExactlyTheFirstEntryOfAMac) {
    std::vector<std::string> macs = all_texts("ab,;", 2);
    macs.insert(macs.end(), {"aba", "a,b", "b;a", "ab,"});
    size_t removed = 0;
    for (const std::string &list : all_texts("ab,;", 7)) {
        for (const std::string &mac : macs) {
            std::string expected = without_first_entry(list, mac);
            removal wanted = {expected.size() < list.size(), expected};
            removed += wanted.removed;
            ASSERT_EQ(remove_from(list, mac), wanted) << "\"" << list << "\" without \"" << mac << "\"";
        }
    }
    EXPECT_GT(removed, 50000U) << "the lists held hardly any entry";
}

// Adding removes until nothing is found: that ends, and nothing is left to find.
TEST(MacListText, RemovingAgainAndAgainEndsForEveryShortList) {
    for (const std::string &list : all_texts("a,;", 8)) {
        for (const std::string &mac : all_texts("a,;", 3)) {
            std::vector<char> text = exact_copy(list);
            size_t rounds = 0;
            while (mac_list_remove(text.data(), mac.c_str())) {
                ASSERT_LE(++rounds, list.size()) << "\"" << list << "\" without \"" << mac << "\"";
            }
            ASSERT_TRUE(mac.empty() || !contains(text.data(), mac + ","))
                << "\"" << list << "\" without \"" << mac << "\" is \"" << text.data() << "\"";
        }
    }
}

// A list as its entries, for lists whose MACs are equally long and whose names hold no comma.
struct model_list {
    std::vector<std::pair<std::string, std::string>> entries;
    bool ends_in_semicolon;

    std::string text() const {
        std::string text;
        for (const auto &[mac, name] : entries) {
            text += mac + "," + name + ";";
        }
        return ends_in_semicolon || text.empty() ? text : text.substr(0, text.size() - 1);
    }

    bool remove(const std::string &mac) {
        for (auto entry = entries.begin(); entry != entries.end(); entry++) {
            if (entry->first == mac) {
                entries.erase(entry);
                return true;
            }
        }
        return false;
    }
};

TEST(MacListText, GeneratedListsLoseWhatTheirEntriesLose) {
    const std::vector<std::string> macs = {"02:00:00:00:00:01", "02:00:00:00:00:10", "02:00:00:00:00:02",
                                           "20:00:00:00:00:01"};
    const std::vector<std::string> names = {"", "steerlist", "allow", "02:00:00:00:00:01", "x02:00:00:00:00:02y", "="};
    std::mt19937 random(61);
    for (int round = 0; round < 20000; round++) {
        model_list model = {{}, random() % 4 != 0};
        for (size_t i = random() % 7; i > 0; i--) {
            model.entries.emplace_back(macs[random() % macs.size()], names[random() % names.size()]);
        }
        std::string list = model.text();
        std::string mac = macs[random() % macs.size()];
        bool removed = model.remove(mac);
        ASSERT_EQ(remove_from(list, mac), (removal{removed, model.text()}))
            << "\"" << list << "\" without \"" << mac << "\"";
    }
}

struct appending {
    bool fits;
    std::string list;
    bool operator==(const appending &) const = default;
};

std::ostream &operator<<(std::ostream &out, const appending &result) {
    return out << (result.fits ? "fits, \"" : "does not fit, \"") << result.list << '"';
}

appending append_to(const std::string &list, size_t size, const std::string &entry) {
    std::vector<char> text = exact_copy(list);
    text.resize(size, '?');
    bool fits = mac_list_append(text.data(), size, entry.c_str());
    return {fits, text.data()};
}

TEST(MacListText, AnEntryIsAppended) {
    EXPECT_EQ(append_to("", 20, "a,x;"), (appending{true, "a,x;"}));
    EXPECT_EQ(append_to("b,y;", 20, "a,x;"), (appending{true, "b,y;a,x;"}));
}

TEST(MacListText, AnEntryFitsWithItsNulOrNotAtAll) {
    EXPECT_EQ(append_to("b,y;", 9, "a,x;"), (appending{true, "b,y;a,x;"}));
    EXPECT_EQ(append_to("b,y;", 8, "a,x;"), (appending{false, "b,y;"}));
    EXPECT_EQ(append_to("", 5, "a,x;"), (appending{true, "a,x;"}));
    EXPECT_EQ(append_to("", 4, "a,x;"), (appending{false, ""}));
}

TEST(MacListText, AListOfTwoQuotesIsReplaced) {
    EXPECT_EQ(append_to("\"\"", 20, "a,x;"), (appending{true, "a,x;"}));
}

TEST(MacListText, NothingButTwoQuotesIsReplaced) {
    EXPECT_EQ(append_to("\"", 20, "a,x;"), (appending{true, "\"a,x;"}));
    EXPECT_EQ(append_to("\"\"\"", 20, "a,x;"), (appending{true, "\"\"\"a,x;"}));
    EXPECT_EQ(append_to("\"\";", 20, "a,x;"), (appending{true, "\"\";a,x;"}));
}

TEST(MacListText, OfAnEntryInPlaceOfTwoQuotesSixtyFourCharactersAreKept) {
    std::string longest = std::string(61, 'm') + ",x;";
    EXPECT_EQ(append_to("\"\"", 200, longest), (appending{true, longest}));
    EXPECT_EQ(append_to("\"\"", 200, "m" + longest), (appending{true, std::string(62, 'm') + ",x"}));
}

// --- the operations ---

std::string long_list(size_t length) {
    std::string list = "a,x;";
    return list + std::string(length - list.size() - 4, 'm') + ",yy;";
}

struct MacList : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        install_tool("iwpriv");
        write_store({});
    }
};

TEST_F(MacList, ASteeredStationIsGivenToTheDriverAndThenStored) {
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, MAC, "steerlist"), 0);
    EXPECT_EQ(tool_calls(),
              (calls{"iwpriv ath0 addmac 02:00:00:00:00:01", "cfg -a AP_MACLIST=02:00:00:00:00:01,steerlist;"}));
}

TEST_F(MacList, AStationOfAnotherListIsOnlyStored) {
    for (const char *name : {"allow", "", "steerlis", "steerlist2", "Steerlist", " steerlist"}) {
        EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", name), 0);
        EXPECT_EQ(tool_calls().back(), "cfg -a AP_MACLIST=m," + std::string(name) + ";");
    }
    EXPECT_EQ(tool_calls().size(), 6U);
}

TEST_F(MacList, AStationIsAppendedToTheList) {
    write_store({"AP_MACLIST=a,x;"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=a,x;m,n;"}));
}

TEST_F(MacList, AStationThatIsAddedAgainHasOnlyItsNewName) {
    write_store({"AP_MACLIST=a,x;m,old;b,y;m,older;m,;"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "new"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=a,x;b,y;m,new;"}));
}

TEST_F(MacList, AStationThatIsAddedAgainUnderItsNameMovesToTheEnd) {
    write_store({"AP_MACLIST=m,n;a,x;"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=a,x;m,n;"}));
}

TEST_F(MacList, AddingEndsWhenTheMacStandsInsideAName) {
    write_store({"AP_MACLIST=a,m;b,mm;m"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=a,m;b,mm;mm,n;"}));
}

TEST_F(MacList, AStationTakesThePlaceOfTwoQuotes) {
    write_store({"AP_MACLIST=\"\""});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=m,n;"}));
}

TEST_F(MacList, AStationTakesThePlaceOfTwoQuotesThatItsOldEntryLeaves) {
    write_store({"AP_MACLIST=\"\"m,old;"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=m,n;"}));
}

TEST_F(MacList, EveryVapHasAListAndAnInterfaceOfItsOwn) {
    write_store({"AP_MACLIST=a,x;", "AP_MACLIST_2=b,x;", "AP_MACLIST_16=c,x;", "AP_MACLIST_17=d,x;"});
    for (int index : {1, 2, 16, 17}) {
        EXPECT_EQ(wlan_setMacAddressControlAdd(index, "m", "steerlist"), 0);
    }
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 addmac m", "cfg -a AP_MACLIST=a,x;m,steerlist;", "iwpriv ath1 addmac m",
                                   "cfg -a AP_MACLIST_2=b,x;m,steerlist;", "iwpriv ath15 addmac m",
                                   "cfg -a AP_MACLIST_16=c,x;m,steerlist;", "iwpriv ath16 addmac m",
                                   "cfg -a AP_MACLIST_17=d,x;m,steerlist;"}));
}

TEST_F(MacList, IndexZeroChangesTheBareKeyAndTellsTheDriverNothing) {
    write_store({"AP_MACLIST=a,x;"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(0, "m", "steerlist"), 0);
    EXPECT_EQ(wlan_setMacAddressControlDelete(0, "a"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=a,x;m,steerlist;", "cfg -a AP_MACLIST="}));
}

TEST_F(MacList, ANegativeIndexIsRefusedBeforeAnythingIsDone) {
    write_store({"AP_MACLIST=a,x;"});
    for (int index : {-1, INT_MIN}) {
        text_buffer list;
        u_int count = UNTOUCHED;
        printed_text printed = capture([&] {
            set_debug(true);
            EXPECT_EQ(wlan_setMacAddressControlAdd(index, "m", "steerlist"), -1);
            EXPECT_EQ(wlan_setMacAddressControlDelete(index, "a"), -1);
            EXPECT_EQ(wlan_setMacAddressControlDelete(index, "m"), -1);
            EXPECT_EQ(wlan_setMacAddressControlClear(index), -1);
            EXPECT_EQ(wlan_getMacAddressControlList(index, list.text, sizeof(list.text)), -1);
            EXPECT_EQ(wlan_getMacAddressControlCount(index, &count), -1);
        });
        EXPECT_TRUE(list.is_untouched());
        EXPECT_EQ(count, static_cast<u_int>(UNTOUCHED));
        EXPECT_EQ(printed.out + printed.err, "");
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(MacList, AnEmptyMacIsStoredButNotGivenToTheDriver) {
    write_store({"AP_MACLIST=a,x;"});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "", "steerlist"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=a,x;,steerlist;"}));
}

TEST_F(MacList, AnEntryThatStandsInTheListAlreadyIsNotAddedAgain) {
    write_store({"AP_MACLIST=a,steerlist;"});
    printed_text printed = capture([] { EXPECT_EQ(wlan_setMacAddressControlAdd(1, "", "steerlist"), 0); });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_setMacAddressControlAdd(1, "", "steerlist"), 0); }),
              "[VLK-API] athcfg_getbyname index 0, Param: AP_MACLIST= is a,steerlist;\n"
              "[VLK-API] wlan_setMacAddressControlAdd exist ,steerlist;\n");
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(MacList, AListThatJustFitsIsStored) {
    std::string list = long_list(MAC_LIST_SIZE - 5);
    write_store({"AP_MACLIST=" + list});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "b", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=" + list + "b,n;"}));
}

// The driver is told first and not told again: the failure is all that a client sees of it.
TEST_F(MacList, AListThatDoesNotFitIsNotStoredAlthoughTheDriverHasTheStation) {
    write_store({"AP_MACLIST=" + long_list(MAC_LIST_SIZE - 12)});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "b", "steerlist"), -1);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 addmac b"}));
}

TEST_F(MacList, TheRoomOfTheOldEntryIsThereForTheNewOne) {
    std::string rest = long_list(MAC_LIST_SIZE - 5);
    write_store({"AP_MACLIST=b,o;" + rest});
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "b", "n"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=" + rest + "b,n;"}));
}

// What lies beyond the limit was not read and would be lost.
TEST_F(MacList, NothingIsAddedToAStoredListThatIsTooLong) {
    for (size_t length : {MAC_LIST_SIZE, MAC_LIST_SIZE + 1, MAC_LIST_SIZE + 4000}) {
        write_store({"AP_MACLIST=" + long_list(length)});
        EXPECT_EQ(wlan_setMacAddressControlAdd(1, "a", ""), -1) << length;
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(MacList, TextsOfAnyLengthAreRefusedWhereTheyDoNotFit) {
    std::string endless(20000, 'm');
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, endless.c_str(), "n"), -1);
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", endless.c_str()), -1);
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(MacList, TextsOfAnyLengthReachTheDriver) {
    std::string endless(20000, 'm');
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, endless.c_str(), "steerlist"), -1);
    capture([&endless] { EXPECT_EQ(wlan_setMacAddressControlDelete(1, endless.c_str()), 0); });
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 addmac " + endless, "iwpriv ath0 delmac " + endless}));
}

// Clients rely on the shell seeing their text as it is.
TEST_F(MacList, TextsAreNotEscaped) {
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "$(echo m)", "steerlist"), 0);
    capture([] { EXPECT_EQ(wlan_setMacAddressControlDelete(1, "m; echo x"), 0); });
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 addmac m", "cfg -a AP_MACLIST=m,steerlist;", "iwpriv ath0 delmac m"}));
}

TEST_F(MacList, AnAdditionIsLogged) {
    EXPECT_EQ(
        debug_lines([] { wlan_setMacAddressControlAdd(2, "m", "steerlist"); }),
        "[VLK-API] getWifiParam AP_MACLIST_2= does not exist in /tmp/.apcfg\n"
        "[VLK-API] athcfg_getbyname index 1, Param: AP_MACLIST_2= is \n"
        "[VLK-API] wlan_setMacAddressControlAdd wlan_setMacAddressControlAdd: set  AP_MACLIST m,steerlist; name "
        "steerlist mac m\n"
        "[VLK-API] athcfg_setbyname athcfg_setbyname: index 1, execute cmd: cfg -a AP_MACLIST_2=\"m,steerlist;\"\n"
        "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_MACLIST_2=\"m,steerlist;\"\n");
}

TEST_F(MacList, AStationIsAddedAlsoWhenNoToolIsThere) {
    reset_platform();
    write_store({});
    capture([] { EXPECT_EQ(wlan_setMacAddressControlAdd(1, "m", "steerlist"), 0); });
}

TEST_F(MacList, ADeletedStationIsTakenFromTheDriverAndThenFromTheList) {
    write_store({"AP_MACLIST=a,x;m,steerlist;b,y;"});
    EXPECT_EQ(wlan_setMacAddressControlDelete(1, "m"), 0);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 delmac m", "cfg -a AP_MACLIST=a,x;b,y;"}));
}

TEST_F(MacList, ADeletedStationIsTakenFromTheDriverWhateverItsList) {
    write_store({"AP_MACLIST_16=m,allow;"});
    EXPECT_EQ(wlan_setMacAddressControlDelete(16, "m"), 0);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath15 delmac m", "cfg -a AP_MACLIST_16="}));
}

TEST_F(MacList, OnlyTheFirstEntryOfAStationIsDeleted) {
    write_store({"AP_MACLIST=m,x;m,y;m,x;"});
    EXPECT_EQ(wlan_setMacAddressControlDelete(1, "m"), 0);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 delmac m", "cfg -a AP_MACLIST=m,y;m,x;"}));
}

TEST_F(MacList, AStationThatIsNotInTheListIsReportedAndTakenFromTheDriverAllTheSame) {
    write_store({"AP_MACLIST=a,m;mm,x;m"});
    printed_text printed = capture([] { EXPECT_EQ(wlan_setMacAddressControlDelete(1, "m "), 0); });
    EXPECT_EQ(printed.out, "not exist m ,\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 delmac m"}));
}

TEST_F(MacList, AnEmptyMacIsInNoListAndNotTakenFromTheDriver) {
    write_store({"AP_MACLIST=,x;"});
    printed_text printed = capture([] { EXPECT_EQ(wlan_setMacAddressControlDelete(1, ""), 0); });
    EXPECT_EQ(printed.out, "not exist ,\n");
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(MacList, ADeletionIsLogged) {
    write_store({"AP_MACLIST_3=a,x;m,y"});
    EXPECT_EQ(debug_lines([] { wlan_setMacAddressControlDelete(3, "m"); }),
              "[VLK-API] athcfg_getbyname index 2, Param: AP_MACLIST_3= is a,x;m,y\n"
              "[VLK-API] wlan_setMacAddressControlDelete wlan_setMacAddressControlDelete: set  AP_MACLIST a,x mac m\n"
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index 2, execute cmd: cfg -a AP_MACLIST_3=\"a,x\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_MACLIST_3=\"a,x\"\n");
}

TEST_F(MacList, TheLongestListLosesAnEntryAndNothingElse) {
    std::string list = long_list(MAC_LIST_SIZE - 1);
    write_store({"AP_MACLIST=" + list});
    EXPECT_EQ(wlan_setMacAddressControlDelete(0, "a"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=" + list.substr(4)}));
}

// What lies beyond the limit was not read and would be lost. The driver no longer has the station all the same.
TEST_F(MacList, NothingIsDeletedFromAStoredListThatIsTooLong) {
    write_store({"AP_MACLIST=" + long_list(MAC_LIST_SIZE)});
    EXPECT_EQ(wlan_setMacAddressControlDelete(1, "a"), -1);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 delmac a"}));
}

TEST_F(MacList, ClearingEmptiesTheListAndThenTheDriver) {
    write_store({"AP_MACLIST=a,x;"});
    EXPECT_EQ(wlan_setMacAddressControlClear(1), 0);
    EXPECT_EQ(wlan_setMacAddressControlClear(16), 0);
    EXPECT_EQ(tool_calls(),
              (calls{"cfg -a AP_MACLIST=", "iwpriv ath0 maccmd 3", "cfg -a AP_MACLIST_16=", "iwpriv ath15 maccmd 3"}));
}

// Only additions and deletions are held back for index 0.
TEST_F(MacList, ClearingIndexZeroNamesAnInterfaceThatIsNotThere) {
    EXPECT_EQ(wlan_setMacAddressControlClear(0), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=", "iwpriv ath-1 maccmd 3"}));
}

TEST_F(MacList, ClearingIsDoneByCapturedCommands) {
    install_tool("iwpriv", "ath1      maccmd:3\n");
    EXPECT_EQ(debug_lines([] { wlan_setMacAddressControlClear(2); }),
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index 1, execute cmd: cfg -a AP_MACLIST_2=\"\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_MACLIST_2=\"\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwpriv ath1 maccmd 3\n");
}

// What the tool says of an addition or a deletion goes where the server's own lines go.
TEST_F(MacList, AddingAndDeletingLeaveTheToolItsOutput) {
    install_tool("iwpriv", "said\n");
    write_store({"AP_MACLIST=m,x;"});
    EXPECT_EQ(capture([] { wlan_setMacAddressControlAdd(1, "m", "steerlist"); }).out, "said\n");
    EXPECT_EQ(capture([] { wlan_setMacAddressControlDelete(1, "m"); }).out, "said\n");
}

TEST_F(MacList, EverySetterSucceedsWhenNoCommandCanBeStarted) {
    begin_descriptor_shortage();
    int cleared = wlan_setMacAddressControlClear(1);
    int added = wlan_setMacAddressControlAdd(1, "m", "n");
    end_descriptor_shortage();
    EXPECT_EQ(cleared, 0);
    EXPECT_EQ(added, 0);
    EXPECT_EQ(tool_calls(), calls{});
}

// The list as the getter gives it, from a buffer of the size that handlers pass.
struct read_list {
    int status;
    std::string text;
};

read_list get_list(int index) {
    char list[MAC_LIST_SIZE];
    memset(list, '?', sizeof(list));
    int status = wlan_getMacAddressControlList(index, list, sizeof(list));
    return {status, list};
}

TEST_F(MacList, TheListIsReadInTheClientsFormWithOneSemicolonMore) {
    write_store({"AP_MACLIST=m,steerlist;", "AP_MACLIST_2=a,x;b,y;", "AP_MACLIST_3=a,,x"});
    EXPECT_EQ(get_list(1).text, "m=steerlist;;");
    EXPECT_EQ(get_list(0).text, "m=steerlist;;");
    EXPECT_EQ(get_list(2).text, "a=x;b=y;;");
    EXPECT_EQ(get_list(3).text, "a==x;");
    EXPECT_EQ(get_list(3).status, 0);
}

TEST_F(MacList, AnEmptyListReadsAsOneSemicolon) {
    write_store({"AP_MACLIST=", "AP_MACLIST_2=\"\""});
    EXPECT_EQ(get_list(1).text, ";");
    EXPECT_EQ(get_list(2).text, "\"\";");
    EXPECT_EQ(get_list(3).text, ";");
    EXPECT_EQ(get_list(3).status, 0);
}

TEST_F(MacList, ALineBreakBehindTheListIsNotPartOfIt) {
    write_store({"AP_MACLIST=m,n;\r"});
    EXPECT_EQ(get_list(1).text, "m=n;;");
    EXPECT_EQ(wlan_setMacAddressControlAdd(1, "a", "x"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_MACLIST=m,n;a,x;"}));
}

TEST_F(MacList, AListOf3197CharactersIsReadWhole) {
    std::string list = long_list(3197);
    write_store({"AP_MACLIST=" + list});
    read_list read = get_list(1);
    EXPECT_EQ(read.status, 0);
    std::string expected = list + ";";
    for (size_t comma; (comma = expected.find(',')) != std::string::npos;) {
        expected[comma] = '=';
    }
    EXPECT_EQ(read.text, expected);
}

TEST_F(MacList, AListOf3198CharactersIsTooLongAndGivenOutAsItIsStored) {
    std::string list = long_list(3198);
    write_store({"AP_MACLIST=" + list});
    read_list read;
    printed_text printed = capture([&read] { read = get_list(1); });
    EXPECT_EQ(read.status, -1);
    EXPECT_EQ(read.text, list);
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err,
              "[VLK-API] Error wlan_getMacAddressControlList wlan_getMacAddressControlList: list is too long [3198]\n");
}

TEST_F(MacList, OfALongerListAsMuchIsReadAsTheBufferTakes) {
    std::string list = long_list(5000);
    write_store({"AP_MACLIST=" + list});
    read_list read;
    printed_text printed = capture([&read] { read = get_list(1); });
    EXPECT_EQ(read.status, -1);
    EXPECT_EQ(read.text, list.substr(0, 3199));
    EXPECT_TRUE(contains(printed.err, "list is too long [3199]\n"));
}

TEST_F(MacList, ASmallBufferIsNeverOverrun) {
    write_store({"AP_MACLIST=a,x;"});
    for (size_t size : {1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
        text_buffer list;
        int status = 0;
        capture([&] { status = wlan_getMacAddressControlList(1, list.text, size); });
        EXPECT_EQ(status, size < 7 ? -1 : 0) << size;
        EXPECT_EQ(list.text[size], '?') << size;
    }
}

TEST_F(MacList, ReadingTheListIsLogged) {
    write_store({"AP_MACLIST=m,n;"});
    EXPECT_EQ(debug_lines([] { get_list(1); }),
              "[VLK-API] athcfg_getbyname index 0, Param: AP_MACLIST= is m,n;\n"
              "[VLK-API] wlan_getMacAddressControlList wlan_getMacAddressControlList: get  AP_MACLIST m=n;;\n");
}

TEST_F(MacList, TheCountIsThatOfTheSemicolons) {
    write_store({"AP_MACLIST=a,x;b,y;c,z;", "AP_MACLIST_2=a,x;b,y", "AP_MACLIST_3=", "AP_MACLIST_4=;;",
                 "AP_MACLIST_5=\"\"", "AP_MACLIST_6=" + std::string(5000, ';')});
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 1), 3);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 0), 3);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 2), 1);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 3), 0);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 4), 2);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 5), 0);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 6), 3199);
    EXPECT_EQ(number_of(wlan_getMacAddressControlCount, 7), 0);
}

TEST_F(MacList, TheGettersRunNoCommand) {
    write_store({"AP_MACLIST=a,x;"});
    get_list(1);
    number_of(wlan_getMacAddressControlCount, 1);
    EXPECT_EQ(tool_calls(), calls{});
}

}  // namespace
