// WMM settings over the wire: the reply, the commands that were run, the store afterwards.
#include <gtest/gtest.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Wmm : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with({"AP_WMMEN=1", "AP_WMMAPSD=1"});
    }
};

int set_category(uint32_t procedure, int index, int category, uint32_t number) {
    return code_of(call(procedure, vap(index) + xdr_word(static_cast<uint32_t>(category)) + xdr_word(number)));
}

number_result get_category(uint32_t procedure, int index, int category) {
    return number_of(call(procedure, vap(index) + xdr_word(static_cast<uint32_t>(category))));
}

TEST_F(Wmm, SupportIsWhatIsSwitchedOn) {
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_supported, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_supported, 2), (number_result{0, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_supported, -1), (number_result{-1, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_uaspd_supported, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_uaspd_supported, 2), (number_result{0, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_uaspd_supported, -1), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Wmm, TheWmmSwitchIsKeptForTheVap) {
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_enable, 3, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_enable, 1, 0), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_WMMEN_3=\"1\"", "cfg -a AP_WMMEN=\"0\""}));
    EXPECT_EQ(store_value("AP_WMMEN_3"), "1");
    EXPECT_EQ(store_value("AP_WMMEN"), "0");
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_enable, 3), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_enable, 1), (number_result{0, 0}));
}

TEST_F(Wmm, ThePowerSaveSwitchIsKeptForTheVap) {
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_uaspd_enable, 3, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_apsd, 1, 0), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_WMMAPSD_3=\"1\"", "cfg -a AP_WMMAPSD=\"0\""}));
    EXPECT_EQ(store_value("AP_WMMAPSD_3"), "1");
    EXPECT_EQ(store_value("AP_WMMAPSD"), "0");
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_apsd, 3), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_uaspd_enable, 1), (number_result{0, 0}));
}

TEST_F(Wmm, ANegativeIndexIsRefusedByAllSwitchesButTheApsdSetter) {
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_enable, -1, 1), -1);
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_enable, -1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_uaspd_enable, -1, 1), -1);
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_uaspd_enable, -1), (number_result{-1, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_wmm_apsd, -1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_wmm_apsd, -1, 1), 0);
    EXPECT_TRUE(commands().empty());
}

// An ACK policy travels as a truth value: every number but 0 arrives as 1.
struct list_row {
    uint32_t getter;
    uint32_t setter;
    std::string key;
    std::string sent_seven;
};

const list_row LISTS[] = {
    {PROC_wlan_get_og_aifsn, PROC_wlan_set_og_aifsn, "AP_WMMAIFS", "7"},
    {PROC_wlan_get_og_ecw_min, PROC_wlan_set_og_ecw_min, "AP_WMMCWMIN", "7"},
    {PROC_wlan_get_og_ecw_max, PROC_wlan_set_og_ecw_max, "AP_WMMCWMAX", "7"},
    {PROC_wlan_get_og_tx_op, PROC_wlan_set_og_tx_op, "AP_WMMTXOP", "7"},
    {PROC_wlan_get_og_ack_policy, PROC_wlan_set_og_ack_policy, "AP_WMMACKPOLICY", "1"},
    {PROC_wlan_get_ic_aifsn, PROC_wlan_set_ic_aifsn, "AP_WMMBSSAIFS", "7"},
    {PROC_wlan_get_ic_ecw_min, PROC_wlan_set_ic_ecw_min, "AP_WMMBSSCWMIN", "7"},
    {PROC_wlan_get_ic_ecw_max, PROC_wlan_set_ic_ecw_max, "AP_WMMBSSCWMAX", "7"},
    {PROC_wlan_get_wmm_ic_tx_op, PROC_wlan_set_wmm_ic_tx_op, "AP_WMMBSSTXOP", "7"},
    {PROC_wlan_get_wmm_ic_ack_policy, PROC_wlan_set_wmm_ic_ack_policy, "AP_WMMBSSACKPOLICY", "1"},
};

TEST_F(Wmm, ACategoryIsReplacedInTheListOfItsParameter) {
    for (const list_row &row : LISTS) {
        SCOPED_TRACE(row.key);
        set_store({row.key + "=9", row.key + "_3=15;16;3;2"});
        size_t before = mark_of(JOURNAL_FILE);
        EXPECT_EQ(set_category(row.setter, 3, 3, 7), 0);
        EXPECT_EQ(commands_since(before), strings{"cfg -a " + row.key + "_3=\"15;16;" + row.sent_seven + ";2\""});
        EXPECT_EQ(store_value(row.key + "_3"), "15;16;" + row.sent_seven + ";2");
        EXPECT_EQ(store_value(row.key), "9");
        EXPECT_EQ(get_category(row.getter, 3, 2), (number_result{0, 16}));
        EXPECT_EQ(get_category(row.getter, 3, 3), (number_result{0, atoi(row.sent_seven.c_str())}));
        EXPECT_EQ(get_category(row.getter, 3, 5), (number_result{0, 0}));
        EXPECT_EQ(get_category(row.getter, 0, 1), (number_result{0, 9}));
    }
}

TEST_F(Wmm, ANegativeIndexHasNoLists) {
    for (const list_row &row : LISTS) {
        EXPECT_EQ(set_category(row.setter, -1, 1, 7), -1) << row.key;
        EXPECT_EQ(get_category(row.getter, -1, 1), (number_result{-1, 0})) << row.key;
    }
    EXPECT_TRUE(commands().empty());
}

TEST_F(Wmm, AListGrowsByOneCategoryAtATime) {
    EXPECT_EQ(set_category(PROC_wlan_set_og_aifsn, 2, 2, 7), 0);
    EXPECT_EQ(store_value("AP_WMMAIFS_2"), "(absent)");
    for (int category = 1; category <= 4; category++) {
        EXPECT_EQ(set_category(PROC_wlan_set_og_aifsn, 2, category, 7), 0);
    }
    EXPECT_EQ(set_category(PROC_wlan_set_og_aifsn, 2, 6, 7), 0);
    EXPECT_EQ(store_value("AP_WMMAIFS_2"), "7;7;7;7");
    EXPECT_EQ(commands().size(), 4u);
}

TEST_F(Wmm, CategoryZeroReplacesTheFirstAndCannotBeRead) {
    set_store({"AP_WMMTXOP_2=1;2"});
    EXPECT_EQ(set_category(PROC_wlan_set_og_tx_op, 2, 0, 94), 0);
    EXPECT_EQ(store_value("AP_WMMTXOP_2"), "94;2");
    EXPECT_EQ(get_category(PROC_wlan_get_og_tx_op, 2, 0), (number_result{0, 0}));
}

TEST_F(Wmm, AListThatWouldOutgrowAValueStaysAsItWas) {
    std::string list(1727, ';');
    set_store({"AP_WMMBSSAIFS=" + list});
    EXPECT_EQ(set_category(PROC_wlan_set_ic_aifsn, 1, 1, 7), 0);
    EXPECT_TRUE(commands().empty());
    EXPECT_EQ(store_value("AP_WMMBSSAIFS"), list);
}

}  // namespace
