// Descriptors over a long life: which procedures open a socket for each call, and that ten thousand calls of each leave
// nothing open.
#include <gtest/gtest.h>
#include <string.h>

#include <set>
#include <string>

#include "client/names.h"
#include "client/operations.h"
#include "survey/control_channel.h"
#include "tests/support/daemon.h"
#include "tests/support/driver.h"
#include "tests/support/loopback_server.h"
#include "tests/support/platform.h"
#include "tests/support/sockets.h"
#include "tests/support/steps.h"

namespace {

// The thread sanitizer makes each call take ten times as long, and looks for something else.
#ifdef __SANITIZE_THREAD__
constexpr int MANY_CALLS = 500;
#else
constexpr int MANY_CALLS = 10000;
#endif

// Those that talk to a helper daemon, and those whose request to the driver goes out on a socket of its own. The other
// requests share one socket for ever.
const std::set<std::string> SOCKET_OPENERS = {
    "wlan_ap_scan",
    "wlan_get_advairtime_statscl_atftable",
    "wlan_get_bs_bss_2g_temp_blacklist_table",
    "wlan_get_channel_noise_floor",
    "wlan_get_channel_statistics",
    "wlan_get_radio_rx_packets",
    "wlan_get_radio_tx_packets",
    "wlan_get_retransmission_metric",
    "wlan_get_rssi_table",
    "wlan_get_softblock_black_list",
    "wlan_query_wlan_info",
    "wlan_set_bs_bss_5g_capable_clear",
    "wlan_set_bss_client_rssi_threshold",
    "wlan_set_restore_defaults",
    "wlan_set_softblock_allow_timer",
    "wlan_set_softblock_auth_response_st_code",
    "wlan_set_softblock_black_list_add",
    "wlan_set_softblock_black_list_clear",
    "wlan_set_softblock_black_list_del",
    "wlan_set_softblock_black_list_selector_mask",
    "wlan_set_softblock_enable",
    "wlan_set_softblock_ignore_probereq_type",
    "wlan_set_softblock_selector_mask",
    "wlan_set_softblock_waiting_time",
};

bytes sample_arguments(const procedure_row &row) {
    bytes arguments;
    for (size_t i = 0; i < row.argument_count; i++) {
        arguments += row.arguments[i].kind == argument_kind::TEXT ? xdr_string_bytes("28:6A:BA:4C:10:01") : xdr_word(1);
    }
    return arguments;
}

// A platform without programs and threads, with both helper daemons, and with a driver that does what it is asked.
class Descriptors : public testing::TestWithParam<std::string> {
protected:
    fake_daemon collector{"/var/run/radstat/ath0"};
    fake_daemon soft_block{STEERING_SOCKET};

    void SetUp() override {
        reset_platform();
        reset_driver();
        write_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "BS_BSS_ENABLE=1"});
        collector.answer(std::string(192, '\1'));
        soft_block.answer(std::string(776, '\0'));
        step_rules rules;
        rules.run_commands = false;
        begin_steps(rules);
        begin_capture();
    }
    void TearDown() override {
        end_capture();
        end_steps();
        reset_driver();
    }
};

call_outcome call_row(const procedure_row &row) {
    return serve(header_of(row.number) + sample_arguments(row)).outcome;
}

TEST_F(Descriptors, OnlyTheseProceduresOpenASocketForEachCall) {
    std::set<std::string> openers;
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row &row = procedure_rows[i];
        if (strcmp(row.room, "lifecycle/requests") == 0) {
            continue;  // these only start workers, which would be missed by the tests of those
        }
        call_row(row);  // what is opened once is open then
        unsigned before = sockets_opened();
        call_row(row);
        if (sockets_opened() != before) {
            openers.insert(row.name);
        }
    }
    EXPECT_EQ(openers, SOCKET_OPENERS);
}

TEST_P(Descriptors, TenThousandCallsLeaveNothingOpen) {
    const procedure_row *found = find_operation(GetParam().c_str());
    ASSERT_NE(found, nullptr);
    const procedure_row &row = *found;
    ASSERT_EQ(call_row(row), call_outcome::SUCCESS);
    size_t before = open_descriptors();
    for (int i = 0; i < MANY_CALLS; i++) {
        ASSERT_EQ(call_row(row), call_outcome::SUCCESS);
        requests.clear();
        debug_requests.clear();
    }
    EXPECT_EQ(open_descriptors(), before);
}

std::string name_of(const testing::TestParamInfo<std::string> &parameter) {
    return parameter.param;
}

INSTANTIATE_TEST_SUITE_P(Each, Descriptors, testing::ValuesIn(SOCKET_OPENERS), name_of);

}  // namespace
