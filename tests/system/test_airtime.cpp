// Airtime fairness over the wire: the reply, the commands that were run, the store afterwards. What the driver's tool
// answers is not looked at here.
#include <gtest/gtest.h>
#include <string.h>

#include "server/records.h"
#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Airtime : public WatchedGateway {
protected:
    void SetUp() override {
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
    set_debug(false);
    std::string name = "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: ";
    EXPECT_EQ(lines_with({name}), (strings{name + "sta_count: 1 ", name + "smac aabbccddeeff",
                                           name + "sta_index: 1 mac aa:bb:cc:dd:ee:ff weight:30"}));
}

}  // namespace
