// The gateway's authenticator, asked and restarted through the server: push button, PIN, status, configuration state.
#include <gtest/gtest.h>
#include <unistd.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

const char SCENARIO_FILE[] = "/run/gateway/scenario";
const char WPS_FILE[] = "/nvram/etc/wpa2/WSC_ath0.conf";
const char PEER[] = "5c:f9:38:0d:21:aa";

// VAPs 1 and 9 are up, with an authenticator and with WPS, as when the gateway was started. A WPS exchange of VAP 1
// succeeds in half a second, one of VAP 9 finds nobody.
class Authenticator : public WatchedGateway {
protected:
    void SetUp() override {
        scenario = read_file(SCENARIO_FILE);
        wps_settings = read_file(WPS_FILE);
        write_file(SCENARIO_FILE, without_exchanges(scenario) + "wps 1 seconds=0.5 result=success mac=" + PEER +
                                      "\nwps 9 result=timeout\n");
        restart_driver();
        begin_watching();
    }

    void TearDown() override {
        run_command("fault off");
        write_file(SCENARIO_FILE, scenario);
        write_file(WPS_FILE, wps_settings);
        restart_driver();
    }

private:
    static std::string without_exchanges(const std::string &text) {
        std::string kept;
        for (size_t at = 0; at < text.size();) {
            size_t end = text.find('\n', at);
            std::string line = text.substr(at, end == std::string::npos ? end : end - at + 1);
            if (!line.starts_with("wps "))
                kept += line;
            at += line.size();
        }
        return kept;
    }

    std::string scenario;
    std::string wps_settings;
};

std::string status_of(int index) {
    text_result result = get_text(PROC_wlan_get_wps_status, index);
    EXPECT_EQ(result.code, 0);
    return result.text;
}

// Waits until the authenticator says this of the VAP's exchange; the last answer.
std::string wait_for_status(int index, const std::string &words) {
    std::string status;
    for (int i = 0; i < 500; i++, usleep(10000)) {
        status = status_of(index);
        if (status.find(words) != std::string::npos)
            break;
    }
    return status;
}

int push_button(int index) {
    return code_of(call(PROC_wlan_set_wps_pushbutton, vap(index)));
}

TEST_F(Authenticator, PushButtonLeadsToAStatusThatChanges) {
    EXPECT_EQ(status_of(1), "PBC Status: Disabled\nLast WPS result: None\n");
    EXPECT_EQ(push_button(1), 0);
    EXPECT_EQ(status_of(1), "PBC Status: Active\nLast WPS result: None\n");
    EXPECT_EQ(wait_for_status(1, "Success"),
              std::string("PBC Status: Disabled\nLast WPS result: Success\nPeer Address: ") + PEER + "\n");
    EXPECT_EQ(get_text(PROC_wlan_get_wps_result_status, 1), (text_result{0, status_of(1)}));
}

TEST_F(Authenticator, QueriesHaveABlankBehindTheOptionAndActionsHaveNone) {
    EXPECT_EQ(push_button(9), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_wps_pinstart, 9, "12345670"), 0);
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_cancel, vap(9))), 0);
    status_of(9);
    get_text(PROC_wlan_get_wps_result_status, 9);
    get_text(PROC_wlan_get_wps_configuration_state, 9);
    EXPECT_EQ(commands(), (strings{"hostapd_cli -iath8 wps_pbc", "hostapd_cli -iath8 wps_pin any 12345670",
                                   "hostapd_cli -iath8 wps_cancel", "hostapd_cli -i ath8 wps_status",
                                   "hostapd_cli -i ath8 wps_status", "hostapd_cli -i ath8 get_config"}));
}

TEST_F(Authenticator, AnotherVapsExchangeIsNotTouched) {
    EXPECT_EQ(push_button(1), 0);
    EXPECT_EQ(status_of(9), "PBC Status: Disabled\nLast WPS result: None\n");
}

TEST_F(Authenticator, AnExchangeThatIsCancelledIsOver) {
    EXPECT_EQ(push_button(9), 0);
    EXPECT_EQ(status_of(9), "PBC Status: Active\nLast WPS result: None\n");
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_cancel, vap(9))), 0);
    EXPECT_EQ(status_of(9), "PBC Status: Disabled\nLast WPS result: None\n");
}

TEST_F(Authenticator, AnExchangeEndsWithTheTimeoutThatWasSet) {
    EXPECT_EQ(set_number(PROC_wlan_set_wps_config_timeout, 1, 1), 0);
    EXPECT_EQ(push_button(9), 0);
    EXPECT_EQ(wait_for_status(9, "Timeout"), "PBC Status: Timed-out\nLast WPS result: Timeout\n");
}

TEST_F(Authenticator, APinWithAWrongChecksumIsRefused) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_pinstart, 1, "12345671"), -1);
    EXPECT_EQ(status_of(1), "PBC Status: Disabled\nLast WPS result: None\n");
}

TEST_F(Authenticator, AVapWithoutOneCannotStartAnExchange) {
    run_command("cfg -a AP_ENABLE_2=1; cfg -a WPS_ENABLE_2=2");
    EXPECT_EQ(push_button(2), -1);
    EXPECT_EQ(commands(), strings{"hostapd_cli -iath1 wps_pbc"});
    EXPECT_EQ(get_text(PROC_wlan_get_wps_status, 2), (text_result{0, ""})) << "a silent tool is no failure";
}

TEST_F(Authenticator, AVapThatIsOffIsNotEvenAsked) {
    EXPECT_EQ(push_button(2), -1);
    EXPECT_EQ(set_text(PROC_wlan_set_wps_pinstart, 2, "12345670"), -1);
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_cancel, vap(2))), -1);
    EXPECT_TRUE(commands().empty());
}

TEST_F(Authenticator, OutOfTheBoxShowsInTheConfigurationState) {
    EXPECT_EQ(get_text(PROC_wlan_get_wps_configuration_state, 1), (text_result{0, "Configured"}));
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_oob, vap(1))), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_wps_configuration_state, 1), (text_result{0, "Not configured"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_configuration_state, 9), (text_result{0, "Configured"}));
}

TEST_F(Authenticator, AToolThatIsSilentOrTalksNonsenseStartsNothing) {
    for (const char *fault : {"silent", "fail", "garbage", "missing"}) {
        ASSERT_EQ(run_command(std::string("fault hostapd_cli ") + fault).status, 0);
        EXPECT_EQ(push_button(1), -1) << fault;
        EXPECT_EQ(set_text(PROC_wlan_set_wps_pinstart, 1, "12345670"), -1) << fault;
        EXPECT_EQ(code_of(call(PROC_wlan_set_wps_cancel, vap(1))), -1) << fault;
        EXPECT_EQ(get_text(PROC_wlan_get_wps_configuration_state, 1), (text_result{0, "Not configured"})) << fault;
    }
}

TEST_F(Authenticator, NonsenseIsGivenOutAsTheStatus) {
    ASSERT_EQ(run_command("fault hostapd_cli garbage").status, 0);
    std::string nonsense = run_command("hostapd_cli -i ath0 wps_status").text;
    ASSERT_FALSE(nonsense.empty());
    EXPECT_EQ(get_text(PROC_wlan_get_wps_status, 1), (text_result{0, nonsense.substr(0, nonsense.find('\0'))}));
}

TEST_F(Authenticator, ToolsThatCannotBeStartedAreFailures) {
    ASSERT_EQ(run_command("fault popen ENOMEM").status, 0);
    EXPECT_EQ(get_text(PROC_wlan_get_wps_status, 1), (text_result{-1, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_configuration_state, 1), (text_result{-1, ""}));
    EXPECT_EQ(push_button(1), -1);
}

}  // namespace
