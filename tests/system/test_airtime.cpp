// Airtime fairness over the wire: the reply, the commands that were run, the store afterwards, with and without the
// driver's tool.
#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "config/store.h"
#include "server/records.h"
#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Airtime : public BrokenGateway {
protected:
    void SetUp() override {
        BrokenGateway::SetUp();
        begin_with(TWO_RADIOS);
    }

    // A store with these lines behind those of the radios.
    void set_lines(const strings &lines) {
        strings all = TWO_RADIOS;
        all.insert(all.end(), lines.begin(), lines.end());
        set_store(all);
    }
};

// Index and station number, and what is behind them.
bytes station(int index, int number) {
    return vap(index) + vap(number);
}

struct setting_row {
    uint32_t getter;
    uint32_t setter;
    const char *key;
    const char *key_of_vap_2;
    const char *key_of_vap_9;
    uint32_t value;  // for VAP 9; a switch travels as 0 or 1
};

const setting_row SETTINGS[] = {
    {PROC_wlan_get_advairtime_algorithm_type, PROC_wlan_set_advairtime_algorithm_type, "ATF_ALGO_TYPE",
     "ATF_ALGO_TYPE_2", "ATF_ALGO_TYPE", 7},
    {PROC_wlan_get_advairtime_bssweight_enable, PROC_wlan_set_advairtime_bssweight_enable, "ATF_BSS_WEIGHT_EN",
     "ATF_BSS_WEIGHT_EN_2", "ATF_BSS_WEIGHT_EN", 1},
    {PROC_wlan_get_advairtime_staweight_enable, PROC_wlan_set_advairtime_staweight_enable, "ATF_STA_WEIGHT_EN",
     "ATF_STA_WEIGHT_EN_2", "ATF_STA_WEIGHT_EN", 1},
    {PROC_wlan_get_advairtime_traffic_direction, PROC_wlan_set_advairtime_traffic_direction, "ATF_TRAFFIC_DIR",
     "ATF_TRAFFIC_DIR_2", "ATF_TRAFFIC_DIR", 7},
    {PROC_wlan_get_advairtime_application_atm_enable, PROC_wlan_set_advairtime_application_atm_enable, "ATF_APP_EN",
     "ATF_APP_EN_2", "ATF_APP_EN", 1},
    {PROC_wlan_get_advairtime_distribution_type, PROC_wlan_set_advairtime_distribution_type, "ATF_DISTRIBUT_TYPE",
     "ATF_DISTRIBUT_TYPE_2", "ATF_DISTRIBUT_TYPE_9", 7},
};

TEST_F(Airtime, SettingIsStoredForRadioOrVapAndReadBack) {
    for (const setting_row &row : SETTINGS) {
        new_commands();
        std::string value = std::to_string(row.value);
        EXPECT_EQ(set_number(row.setter, 9, row.value), 0) << row.key;
        EXPECT_EQ(set_number(row.setter, 2, 0), 0) << row.key;
        EXPECT_EQ(new_commands(), (strings{std::string("cfg -a ") + row.key_of_vap_9 + "=\"" + value + "\"",
                                           std::string("cfg -a ") + row.key_of_vap_2 + "=\"0\""}));
        EXPECT_EQ(store_value(row.key_of_vap_9), value);
        EXPECT_EQ(store_value(row.key_of_vap_2), "0");
        EXPECT_EQ(get_number(row.getter, 9), (number_result{0, static_cast<int>(row.value)})) << row.key;
        EXPECT_EQ(get_number(row.getter, 2), (number_result{0, 0})) << row.key;
    }
}

TEST_F(Airtime, AbsentSettingIsZero) {
    for (const setting_row &row : SETTINGS) {
        EXPECT_EQ(get_number(row.getter, 1), (number_result{0, 0})) << row.key;
        EXPECT_EQ(get_number(row.getter, -1), (number_result{0, 0})) << row.key;
    }
}

TEST_F(Airtime, StationIsNamedByTheSecondNumberAndNotByTheIndex) {
    set_lines(
        {"ATF_STA_MAC_2=aabbccddeeff", "ATF_STA_WEIGHT_2=30", "ATF_STA_MAC_5=001122334455", "ATF_STA_WEIGHT_5=50"});
    EXPECT_EQ(text_of(call(PROC_wlan_get_advairtime_sta_mac, station(5, 2))), (text_result{0, "aa:bb:cc:dd:ee:ff"}));
    EXPECT_EQ(number_of(call(PROC_wlan_get_advairtime_sta_weight, station(5, 2))), (number_result{0, 30}));
    call(PROC_wlan_get_advairtime_sta_period, station(5, 2));
    EXPECT_EQ(commands(), strings{"airtime get_sta_time 2"});
    call(PROC_wlan_set_advairtime_sta_period, station(5, 2) + vap(100));
    EXPECT_EQ(commands_since(journal_mark, "system "), strings{"airtime sta_time 2 100"});
}

TEST_F(Airtime, UnknownStationHasAnEmptyMacAndNoWeight) {
    EXPECT_EQ(text_of(call(PROC_wlan_get_advairtime_sta_mac, station(1, -1))), (text_result{0, ""}));
    EXPECT_EQ(number_of(call(PROC_wlan_get_advairtime_sta_weight, station(1, -1))), (number_result{0, 0}));
}

TEST_F(Airtime, ListOfStationsIsLeftToTheTool) {
    EXPECT_EQ(code_of(call(PROC_wlan_set_advairtime_sta_weight_destroy_all, vap(1))), 0);
    EXPECT_EQ(code_of(call(PROC_wlan_set_advairtime_sta_entry_add,
                           vap(1) + xdr_string_bytes("02:00:00:00:00:01") + xdr_word(30))),
              0);
    EXPECT_EQ(result_of(call(PROC_wlan_get_advairtime_sta_entry_count, vap(1))).code, 0);
    EXPECT_EQ(set_text(PROC_wlan_set_advairtime_sta_entry_del, 1, "02:00:00:00:00:01"), 0);
    EXPECT_EQ(commands(), (strings{"airtime del_all_sta", "airtime add_sta 020000000001 30", "airtime sta_count",
                                   "airtime del_sta 020000000001"}));
}

// The image of a list as it came.
wlan_airtime_sta_list_t list_of(int count) {
    decoded_result result = result_of(call(PROC_wlan_get_advairtime_sta_list, vap(count)));
    EXPECT_EQ(result.code, 0);
    EXPECT_TRUE(result.values.empty());
    EXPECT_EQ(result.data.size(), 2052U);
    wlan_airtime_sta_list_t list = {};
    memcpy(&list, result.data.data(), std::min(result.data.size(), sizeof(list)));
    return list;
}

TEST_F(Airtime, ListHasTheStationsOfTheStore) {
    set_lines({"ATF_STA_MAC_1=aabbccddeeff", "ATF_STA_WEIGHT_1=30", "ATF_STA_MAC_2=001122334455"});
    wlan_airtime_sta_list_t list = list_of(3);
    EXPECT_EQ(list.count, 3);
    EXPECT_EQ(list.stations[0].index, 1U);
    EXPECT_STREQ(list.stations[0].mac, "aa:bb:cc:dd:ee:ff");
    EXPECT_EQ(list.stations[0].weight, 30U);
    EXPECT_EQ(list.stations[1].index, 2U);
    EXPECT_STREQ(list.stations[1].mac, "00:11:22:33:44:55");
    EXPECT_EQ(list.stations[1].weight, 0U);
    EXPECT_EQ(list.stations[2].index, 3U);
    EXPECT_STREQ(list.stations[2].mac, "");
    EXPECT_EQ(list.stations[3].index, 0U);
    EXPECT_EQ(commands(), (strings{"airtime get_sta_time 1", "airtime get_sta_time 2", "airtime get_sta_time 3"}));
}

TEST_F(Airtime, ListOfAHundredStationsHasSixtyFour) {
    wlan_airtime_sta_list_t list = list_of(100);
    EXPECT_EQ(list.count, 64);
    EXPECT_EQ(list.stations[63].index, 64U);
    EXPECT_EQ(commands().size(), 64U);
}

TEST_F(Airtime, ListOfANegativeCountHasThatCountAndNoStation) {
    wlan_airtime_sta_list_t list = list_of(-3);
    EXPECT_EQ(list.count, -3);
    EXPECT_EQ(list.stations[0].index, 0U);
    EXPECT_TRUE(commands().empty());
}

TEST_F(Airtime, ListIsLoggedStationByStation) {
    set_lines({"ATF_STA_MAC_1=aabbccddeeff", "ATF_STA_WEIGHT_1=30"});
    set_debug(true);
    list_of(1);
    std::string name = "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: ";
    EXPECT_EQ(lines_with({name}), (strings{name + "sta_count: 1 ", name + "smac aabbccddeeff",
                                           name + "sta_index: 1 mac aa:bb:cc:dd:ee:ff weight:30"}));
}

// --- with the tool ---

int add_station(const std::string &mac, int weight) {
    return code_of(call(PROC_wlan_set_advairtime_sta_entry_add, vap(1) + xdr_string_bytes(mac) + vap(weight)));
}
int delete_station(const std::string &mac) {
    return set_text(PROC_wlan_set_advairtime_sta_entry_del, 1, mac);
}
int delete_all_stations() {
    return code_of(call(PROC_wlan_set_advairtime_sta_weight_destroy_all, vap(1)));
}
number_result station_count() {
    return number_of(call(PROC_wlan_get_advairtime_sta_entry_count, vap(1)));
}
text_result mac_of(int number) {
    return text_of(call(PROC_wlan_get_advairtime_sta_mac, station(1, number)));
}
number_result weight_of(int number) {
    return number_of(call(PROC_wlan_get_advairtime_sta_weight, station(1, number)));
}
int set_period(int number, int period) {
    return code_of(call(PROC_wlan_set_advairtime_sta_period, station(1, number) + vap(period)));
}
number_result period_of(int number) {
    return number_of(call(PROC_wlan_get_advairtime_sta_period, station(1, number)));
}

// The lines of the store that belong to the list, in their order.
strings stored_stations() {
    strings found;
    for (const std::string &line : lines_since(STORE_FILE, 0))
        if (line.starts_with("ATF_STA_"))
            found.push_back(line);
    return found;
}

void add_three_stations() {
    EXPECT_EQ(add_station("28:6A:BA:4C:10:01", 30), 0);
    EXPECT_EQ(add_station("F0D1A9273302", 0), 0);
    EXPECT_EQ(add_station("3c:15:c2:e0:44:03", 100), 0);
}

TEST_F(Airtime, StationsThatAreAddedAreCountedAndReadByTheirNumbers) {
    EXPECT_EQ(station_count(), (number_result{0, 0}));
    new_commands();
    add_three_stations();
    EXPECT_EQ(new_commands(), (strings{"airtime add_sta 286ABA4C1001 30", "airtime add_sta F0D1A9273302 0",
                                       "airtime add_sta 3c15c2e04403 100"}));
    EXPECT_EQ(stored_stations(),
              (strings{"ATF_STA_MAC_1=286aba4c1001", "ATF_STA_WEIGHT_1=30", "ATF_STA_MAC_2=f0d1a9273302",
                       "ATF_STA_WEIGHT_2=0", "ATF_STA_MAC_3=3c15c2e04403", "ATF_STA_WEIGHT_3=100"}));
    EXPECT_EQ(station_count(), (number_result{0, 3}));
    EXPECT_EQ(mac_of(1), (text_result{0, "28:6a:ba:4c:10:01"}));
    EXPECT_EQ(mac_of(2), (text_result{0, "f0:d1:a9:27:33:02"}));
    EXPECT_EQ(mac_of(3), (text_result{0, "3c:15:c2:e0:44:03"}));
    EXPECT_EQ(weight_of(1), (number_result{0, 30}));
    EXPECT_EQ(weight_of(2), (number_result{0, 0}));
    EXPECT_EQ(weight_of(3), (number_result{0, 100}));
    EXPECT_EQ(commands(), strings{"airtime sta_count"});
}

TEST_F(Airtime, StationThatIsAddedAgainKeepsItsNumberAndPeriod) {
    add_three_stations();
    EXPECT_EQ(set_period(2, 70), 0);
    EXPECT_EQ(add_station("f0:d1:a9:27:33:02", 45), 0);
    EXPECT_EQ(station_count(), (number_result{0, 3}));
    EXPECT_EQ(weight_of(2), (number_result{0, 45}));
    EXPECT_EQ(period_of(2), (number_result{0, 70}));
}

TEST_F(Airtime, PeriodIsKeptByTheTool) {
    add_three_stations();
    new_commands();
    size_t mark = journal_mark;
    EXPECT_EQ(set_period(3, 2147483647), 0);
    EXPECT_EQ(period_of(3), (number_result{0, 2147483647}));
    EXPECT_EQ(period_of(1), (number_result{0, 0}));
    EXPECT_EQ(store_value("ATF_STA_PERIOD_3"), "2147483647");
    EXPECT_EQ(commands_since(mark, "system "), strings{"airtime sta_time 3 2147483647"});
    EXPECT_EQ(commands(), (strings{"airtime get_sta_time 3", "airtime get_sta_time 1"}));
    EXPECT_EQ(set_period(3, -1), -1);
    EXPECT_EQ(set_period(4, 1), -1);
    EXPECT_EQ(period_of(3), (number_result{0, 2147483647}));
}

TEST_F(Airtime, StationsBehindOneThatIsTakenOffMoveUp) {
    add_three_stations();
    EXPECT_EQ(set_period(3, 50), 0);
    new_commands();
    EXPECT_EQ(delete_station("28:6A:BA:4C:10:01"), 0);
    EXPECT_EQ(delete_station("286aba4c1001"), 0);
    EXPECT_EQ(new_commands(), (strings{"airtime del_sta 286ABA4C1001", "airtime del_sta 286aba4c1001"}));
    EXPECT_EQ(station_count(), (number_result{0, 2}));
    EXPECT_EQ(mac_of(1), (text_result{0, "f0:d1:a9:27:33:02"}));
    EXPECT_EQ(mac_of(2), (text_result{0, "3c:15:c2:e0:44:03"}));
    EXPECT_EQ(mac_of(3), (text_result{0, ""}));
    EXPECT_EQ(period_of(2), (number_result{0, 50}));
}

TEST_F(Airtime, ListThatIsDestroyedLeavesTheStoreAsItWas) {
    std::string before = read_file(STORE_FILE);
    add_three_stations();
    EXPECT_EQ(set_period(1, 50), 0);
    EXPECT_EQ(delete_all_stations(), 0);
    EXPECT_EQ(read_file(STORE_FILE), before);
    EXPECT_EQ(station_count(), (number_result{0, 0}));
    EXPECT_EQ(delete_all_stations(), 0);
    EXPECT_EQ(read_file(STORE_FILE), before);
}

// The tool refuses all of them, which no client is told.
TEST_F(Airtime, MacThatIsNoneIsLeftToTheToolAsItCame) {
    add_three_stations();
    std::string before = read_file(STORE_FILE);
    const std::string longest(300, 'a');
    const std::pair<std::string, std::string> macs[] = {
        {"aab", "aab"},
        {"", ""},
        {":::", ""},
        {"28:6A:BA:4C:10:0g", "286ABA4C100g"},
        {"28:6A:BA:4C:10:01:01", "286ABA4C100101"},
        {"28-6A-BA-4C-10-01", "28-6A-BA-4C-10-01"},
        {longest, longest},
    };
    for (const auto &[sent, bare] : macs) {
        new_commands();
        EXPECT_EQ(add_station(sent, 5), 0) << sent;
        EXPECT_EQ(delete_station(sent), 0) << sent;
        EXPECT_EQ(new_commands(), (strings{"airtime add_sta " + bare + " 5", "airtime del_sta " + bare}));
    }
    EXPECT_EQ(read_file(STORE_FILE), before);
}

TEST_F(Airtime, WeightThatIsNoneIsLeftToTheTool) {
    std::string before = read_file(STORE_FILE);
    for (int weight : {-1, 101, INT32_MAX, INT32_MIN}) {
        new_commands();
        EXPECT_EQ(add_station("28:6A:BA:4C:10:01", weight), 0);
        EXPECT_EQ(new_commands(), strings{"airtime add_sta 286ABA4C1001 " + std::to_string(weight)});
    }
    EXPECT_EQ(read_file(STORE_FILE), before);
}

TEST_F(Airtime, NumbersOutsideTheListAreReadFromTheStoreAllTheSame) {
    set_lines({"ATF_STA_MAC_0=aab", "ATF_STA_WEIGHT_0=7", "ATF_STA_MAC_65=001122334455667788", "ATF_STA_WEIGHT_65=-9"});
    EXPECT_EQ(mac_of(0), (text_result{0, "aa:b"}));
    EXPECT_EQ(weight_of(0), (number_result{0, 7}));
    // Fifteen characters of it, and their colons.
    EXPECT_EQ(mac_of(65), (text_result{0, "00:11:22:33:44:55:66:7"}));
    EXPECT_EQ(weight_of(65), (number_result{0, -9}));
    EXPECT_EQ(commands(), strings{});
    for (int number : {0, 65}) {
        EXPECT_EQ(period_of(number), (number_result{0, 0}));
        EXPECT_EQ(set_period(number, 5), -1);
    }
}

// --- the list to the byte ---

// A word of a record, in the machine's order.
bytes host_word(uint32_t word) {
    return bytes(reinterpret_cast<const char *>(&word), sizeof word);
}

bytes list_record(int number, const std::string &mac, uint32_t weight, uint32_t period) {
    bytes text = mac;
    text.resize(20, '\0');
    return host_word(static_cast<uint32_t>(number)) + text + host_word(weight) + host_word(period);
}

// The whole reply: code 0, no numbers, 2052 bytes.
bytes list_reply(int count, const bytes &records) {
    bytes list = host_word(static_cast<uint32_t>(count)) + records;
    list.resize(2052, '\0');
    return xdr_word(0) + xdr_word(0) + xdr_word(2052) + list;
}

bytes list_asked_for(int count) {
    return call(PROC_wlan_get_advairtime_sta_list, vap(count)).result;
}

TEST_F(Airtime, ListOfTheToolsStationsTravelsToTheByte) {
    add_three_stations();
    EXPECT_EQ(set_period(2, 70000), 0);
    bytes first = list_record(1, "28:6a:ba:4c:10:01", 30, 0);
    bytes three = first + list_record(2, "f0:d1:a9:27:33:02", 0, 70000) + list_record(3, "3c:15:c2:e0:44:03", 100, 0);
    EXPECT_TRUE(list_asked_for(3) == list_reply(3, three));
    EXPECT_TRUE(list_asked_for(1) == list_reply(1, first));
    EXPECT_TRUE(list_asked_for(5) == list_reply(5, three + list_record(4, "", 0, 0) + list_record(5, "", 0, 0)));
    new_commands();
    EXPECT_TRUE(list_asked_for(0) == list_reply(0, ""));
    EXPECT_TRUE(list_asked_for(-1) == list_reply(-1, ""));
    EXPECT_TRUE(list_asked_for(INT32_MIN) == list_reply(INT32_MIN, ""));
    EXPECT_EQ(commands(), strings{});
}

// Of a MAC that is too long the field holds seventeen characters.
TEST_F(Airtime, ListKeepsOddMacsInTheirField) {
    set_lines({"ATF_STA_MAC_1=aab", "ATF_STA_MAC_2=001122334455667788", "ATF_STA_WEIGHT_2=-1", "ATF_STA_MAC_3=:"});
    EXPECT_TRUE(list_asked_for(3) ==
                list_reply(3, list_record(1, "aa:b", 0, 0) + list_record(2, "00:11:22:33:44:55", 0xffffffff, 0) +
                                  list_record(3, ":", 0, 0)));
}

// A store with a whole list; station i has the weight i and the period 1000 i.
class AirtimeFullList : public Airtime {
protected:
    void SetUp() override {
        Airtime::SetUp();
        strings lines;
        for (int i = 1; i <= 64; i++)
            add_entry(i, &lines);
        set_lines(lines);
    }

    void add_entry(int number, strings *lines) {
        char octet[3];
        snprintf(octet, sizeof octet, "%02d", number);
        std::string text = std::to_string(number);
        std::string period = std::to_string(1000 * number);
        for (const std::string &line : {std::string("MAC_").append(text).append("=0200000000").append(octet),
                                        std::string("WEIGHT_").append(text).append("=").append(text),
                                        std::string("PERIOD_").append(text).append("=").append(period)})
            lines->push_back("ATF_STA_" + line);
        expected += list_record(number, std::string("02:00:00:00:00:") + octet, static_cast<uint32_t>(number),
                                static_cast<uint32_t>(1000 * number));
        questions.push_back("airtime get_sta_time " + text);
    }

    bytes expected;
    strings questions;
};

TEST_F(AirtimeFullList, TravelsToTheByteHoweverManyAreAskedFor) {
    for (int count : {64, 100}) {
        new_commands();
        EXPECT_TRUE(list_asked_for(count) == list_reply(64, expected)) << count;
        EXPECT_EQ(new_commands(), questions) << count;
    }
}

TEST_F(AirtimeFullList, HasNoRoomForAnother) {
    std::string before = read_file(STORE_FILE);
    EXPECT_EQ(add_station("28:6A:BA:4C:10:01", 5), 0);
    EXPECT_EQ(station_count(), (number_result{0, 64}));
    EXPECT_EQ(read_file(STORE_FILE), before);
}

// --- with a tool that does not work ---

TEST_F(Airtime, OnlyThePeriodsSetterTellsThatTheToolFailed) {
    add_three_stations();
    std::string before = read_file(STORE_FILE);
    // A tool that says nothing has worked as far as anybody can tell; "-1" is what the shell's failure becomes.
    const std::pair<const char *, int> faults[] = {{"silent", 0}, {"garbage", 0}, {"fail", -1}, {"missing", -1}};
    for (const auto &[fault, code] : faults) {
        SCOPED_TRACE(fault);
        ASSERT_EQ(run_command(std::string("fault airtime ") + fault).status, 0);
        EXPECT_EQ(set_period(1, 9), code);
        EXPECT_EQ(add_station("02:00:00:00:00:09", 9), 0);
        EXPECT_EQ(delete_station("28:6A:BA:4C:10:01"), 0);
        EXPECT_EQ(delete_all_stations(), 0);
        EXPECT_EQ(station_count(), (number_result{0, 0}));
        EXPECT_EQ(period_of(1), (number_result{0, 0}));
        EXPECT_TRUE(list_asked_for(1) == list_reply(1, list_record(1, "28:6a:ba:4c:10:01", 30, 0)));
    }
    EXPECT_EQ(read_file(STORE_FILE), before);
}

TEST_F(Airtime, CommandsThatCannotBeStartedLookLikeATools) {
    add_three_stations();
    EXPECT_EQ(set_period(1, 9), 0);
    ASSERT_EQ(run_command("fault popen ENOMEM; fault system ENOMEM").status, 0);
    EXPECT_EQ(set_period(1, 10), -1);
    EXPECT_EQ(add_station("02:00:00:00:00:09", 9), 0);
    EXPECT_EQ(delete_all_stations(), 0);
    EXPECT_EQ(station_count(), (number_result{0, 0}));
    EXPECT_EQ(period_of(1), (number_result{0, 0}));
    EXPECT_TRUE(list_asked_for(1) == list_reply(1, list_record(1, "28:6a:ba:4c:10:01", 30, 0)));
    ASSERT_EQ(run_command("fault off").status, 0);
    EXPECT_EQ(station_count(), (number_result{0, 3}));
    EXPECT_EQ(period_of(1), (number_result{0, 9}));
}

TEST_F(Airtime, SlowToolIsWaitedFor) {
    add_three_stations();
    ASSERT_EQ(run_command("fault airtime slow 0.1").status, 0);
    EXPECT_EQ(station_count(), (number_result{0, 3}));
}

// --- the switch, and what has no back end ---

TEST_F(Airtime, SwitchOfVapOneHasTheSuffixAndThatOfVapNineHasNone) {
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 1, 1), 0);
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 9), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 9, 0), 0);
    EXPECT_EQ(store_value("AP_ENABLE_ATF_2"), "1");
    EXPECT_EQ(store_value("AP_ENABLE_ATF"), "0");
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 9), (number_result{0, 0}));
    for (int index : {2, 8, 10, 0, -1, INT32_MIN}) {
        EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, index, 1), -1) << index;
        EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, index), (number_result{-1, 0})) << index;
    }
    EXPECT_EQ(commands(), (strings{"cfg -a AP_ENABLE_ATF_2=\"1\"", "cfg -a AP_ENABLE_ATF=\"0\""}));
}

TEST_F(Airtime, WaitThresholdIsAcceptedAndNeverKept) {
    std::string before = read_file(STORE_FILE);
    for (int index : {1, 9, -1}) {
        EXPECT_EQ(call(PROC_wlan_set_advairtime_wait_threshold, vap(index) + xdr_word(50)).result, xdr_word(0));
        EXPECT_EQ(call(PROC_wlan_get_advairtime_wait_threshold, vap(index)).result, bytes(12, '\0'));
    }
    EXPECT_EQ(read_file(STORE_FILE), before);
    EXPECT_TRUE(lines_since(JOURNAL_FILE, journal_mark).empty());
}

}  // namespace
