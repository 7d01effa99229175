// What the authenticator answers, asked with its client: its configuration, and WPS exchanges that lead somewhere.
#include <signal.h>

#include <string>

#include "tests/simulator/platform.h"

namespace {

const std::string FILE_0 = "/nvram/etc/wpa2/WSC_ath0.conf";
const std::string RESTART =
    "kill $(cat /run/hostapd.pid); /sbin/hostapd -B $(cat /tmp/conf_filename) -e /etc/wpa2/entropy";

const char NO_EXCHANGE_YET[] = "PBC Status: Disabled\nLast WPS result: None\n";
const char ACTIVE[] = "PBC Status: Active\nLast WPS result: None\n";
const char TIMED_OUT[] = "PBC Status: Timed-out\nLast WPS result: Timeout\n";

class HostapdCli : public Platform {};

outcome cli(const lines &arguments) {
    lines words = {"hostapd_cli"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(words);
}

// What the authenticator of ath0 answers.
std::string ask(const lines &command) {
    lines arguments = {"-iath0"};
    arguments.insert(arguments.end(), command.begin(), command.end());
    outcome asked = cli(arguments);
    EXPECT_EQ(asked.status, 0) << command[0];
    EXPECT_EQ(asked.errors, "") << command[0];
    return asked.output;
}

std::string status() {
    return ask({"wps_status"});
}

// A gateway of one VAP with what becomes of its WPS exchanges.
void use_scenario(const std::string &wps) {
    write_file(GATEWAY_SCENARIO, SMALL_SCENARIO + wps);
}

// The client

TEST_F(HostapdCli, TakesTheInterfaceWithAndWithoutABlank) {
    EXPECT_EQ(cli({"-iath0", "ping"}).output, "PONG\n");
    EXPECT_EQ(cli({"-i", "ath8", "ping"}).output, "PONG\n");
}

TEST_F(HostapdCli, WithoutAnAuthenticatorSaysSoOnStandardErrorWithStatus255) {
    outcome none = cli({"-iath3", "wps_pbc"});
    EXPECT_EQ(none.status, 255);
    EXPECT_EQ(none.output, "");
    EXPECT_EQ(none.errors, "Failed to connect to hostapd - wpa_ctrl_open: No such file or directory\n");
    end_authenticators(SIGKILL);
    outcome killed = cli({"-i", "ath0", "wps_status"});
    EXPECT_EQ(killed.status, 255);
    EXPECT_EQ(killed.output, "");
    EXPECT_EQ(killed.errors, "Failed to connect to hostapd - wpa_ctrl_open: Connection refused\n");
}

TEST_F(HostapdCli, AnInterfaceNameThatIsTooLongForASocketHasNoAuthenticator) {
    EXPECT_EQ(cli({"-i" + std::string(200, 'a'), "ping"}).status, 255);
    EXPECT_EQ(cli({"-i", "", "ping"}).status, 255);
}

TEST_F(HostapdCli, RefusesBadUsageWithStatus1) {
    for (const lines &arguments : {lines{}, lines{"ping"}, lines{"-i"}, lines{"-i", "ath0"}, lines{"-iath0"},
                                   lines{"-i../hostapd/ath0", "ping"}, lines{"-x", "ath0", "ping"}}) {
        outcome refused = cli(arguments);
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.output, "");
        EXPECT_EQ(refused.errors, "usage: hostapd_cli -iINTERFACE COMMAND [ARGUMENT...]\n");
    }
}

TEST_F(HostapdCli, SaysWhatItDoesNotKnowWithoutAskingAnybody) {
    EXPECT_EQ(ask({"dance"}), "Unknown command 'dance'\n");
    EXPECT_EQ(ask({"wps_pin", "any"}), "Invalid 'wps_pin' command - at least 2 arguments are required.\n");
    EXPECT_EQ(ask({"wps_pin", "any", std::string(600, '1')}), "Too long command.\n");
}

TEST_F(HostapdCli, DoesNotWaitForEverForAnAuthenticatorThatDoesNotAnswer) {
    run_shell("killall -STOP hostapd");
    EXPECT_EQ(ask({"wps_pbc"}), "'WPS_PBC' command timed out.\n");
    run_shell("killall -CONT hostapd");
}

TEST_F(HostapdCli, StandsInTheJournalAndObeysFaults) {
    cli({"-iath0", "wps_pin", "any", "12345670"});
    EXPECT_EQ(journal(), lines{"run hostapd_cli -iath0 wps_pin any 12345670"});
    run({"fault", "hostapd_cli", "slow", "0.3"});
    EXPECT_GE(duration_of([] { EXPECT_EQ(cli({"-iath0", "ping"}).output, "PONG\n"); }), 0.3);
    run({"fault", "hostapd_cli", "missing"});
    outcome missing = cli({"-iath0", "wps_pbc"});
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.output, "");
    run({"fault", "hostapd_cli", "garbage"});
    EXPECT_EQ(cli({"-iath0", "wps_pbc"}).output.find("OK"), std::string::npos);
}

// Configuration

TEST_F(HostapdCli, GetConfigShowsWhatTheFileSays) {
    EXPECT_EQ(ask({"get_config"}),
              "bssid=00:03:7f:10:00:01\n"
              "ssid=Home network\n"
              "wps_state=configured\n"
              "wpa=2\n"
              "key_mgmt=WPA-PSK\n");
}

TEST_F(HostapdCli, StatusNamesTheInterface) {
    EXPECT_EQ(ask({"status"}),
              "state=ENABLED\n"
              "bss[0]=ath0\n"
              "bssid[0]=00:03:7f:10:00:01\n"
              "ssid[0]=Home network\n");
}

TEST_F(HostapdCli, AnEditedFileShowsAfterARestartAndNotBefore) {
    run_shell("sed -i -e 's/^wps_state=.*/wps_state=1/' -e 's/^ssid=.*/ssid=Edited/' " + FILE_0);
    std::string before = ask({"get_config"});
    EXPECT_NE(before.find("\nssid=Home network\nwps_state=configured\n"), std::string::npos) << before;
    ASSERT_EQ(run_shell(RESTART).status, 0);
    std::string after = ask({"get_config"});
    EXPECT_NE(after.find("\nssid=Edited\nwps_state=not configured\n"), std::string::npos) << after;
}

TEST_F(HostapdCli, AFileWithoutWpsStateHasWpsDisabled) {
    run_shell("sed -i '/^wps_state=/d' " + FILE_0);
    ASSERT_EQ(run_shell(RESTART).status, 0);
    EXPECT_NE(ask({"get_config"}).find("\nwps_state=disabled\n"), std::string::npos);
    EXPECT_EQ(ask({"wps_pbc"}), "FAIL\n");
}

TEST_F(HostapdCli, ShowsTheKeyManagementOfARadiusNetworkAndNoneOfAnOpenOne) {
    set_store("AP_SECFILE=EAP");
    run({"apup"});
    EXPECT_NE(ask({"get_config"}).find("\nkey_mgmt=WPA-EAP\n"), std::string::npos);
    run_shell("sed -i 's/^wpa=.*/wpa=0/' " + FILE_0);
    ASSERT_EQ(run_shell(RESTART).status, 0);
    EXPECT_EQ(ask({"get_config"}), "bssid=00:03:7f:10:00:01\nssid=Home network\nwps_state=configured\n");
}

TEST_F(HostapdCli, WpsIsDisabledWhereTheStoreHadItSwitchedOffAtTheStart) {
    set_store("WPS_ENABLE=0");
    EXPECT_EQ(ask({"wps_pbc"}), "OK\n") << "it has not been restarted yet";
    ASSERT_EQ(run_shell(RESTART).status, 0);
    set_store("WPS_ENABLE=2");
    EXPECT_NE(ask({"get_config"}).find("\nwps_state=disabled\n"), std::string::npos);
    EXPECT_EQ(ask({"wps_pbc"}), "FAIL\n");
    EXPECT_EQ(ask({"wps_pin", "any", "12345670"}), "FAIL\n");
    EXPECT_EQ(ask({"wps_cancel"}), "FAIL\n");
    EXPECT_EQ(status(), NO_EXCHANGE_YET);
    EXPECT_EQ(cli({"-iath8", "wps_pbc"}).output, "OK\n") << "each VAP has its own switch";
    ASSERT_EQ(run_shell(RESTART).status, 0);
    EXPECT_EQ(ask({"wps_pbc"}), "OK\n");
}

TEST_F(HostapdCli, WithoutASwitchInTheStoreWpsIsDisabled) {
    run({"cfg", "-r", "WPS_ENABLE"});
    ASSERT_EQ(run_shell(RESTART).status, 0);
    EXPECT_EQ(ask({"wps_pbc"}), "FAIL\n");
}

// Exchanges

TEST_F(HostapdCli, BeforeAnyExchangeThereIsNoResult) {
    EXPECT_EQ(status(), NO_EXCHANGE_YET);
}

TEST_F(HostapdCli, APushedButtonLeadsToThePeerOfTheScenarioAfterItsSeconds) {
    use_scenario("wps 1 seconds=0.5 result=success mac=5C:F9:38:0D:21:06\n");
    double taken = duration_of([] {
        EXPECT_EQ(ask({"wps_pbc"}), "OK\n");
        EXPECT_EQ(status(), ACTIVE);
        EXPECT_TRUE(eventually([] { return status() != ACTIVE; }));
    });
    EXPECT_GE(taken, 0.5);
    EXPECT_EQ(status(), "PBC Status: Disabled\nLast WPS result: Success\nPeer Address: 5c:f9:38:0d:21:06\n");
}

TEST_F(HostapdCli, APinLeadsToThePeerToo) {
    use_scenario("wps 1 seconds=0.2 result=success mac=5C:F9:38:0D:21:06\n");
    EXPECT_EQ(ask({"wps_pin", "any", "12345670"}), "OK\n");
    EXPECT_EQ(status(), ACTIVE);
    EXPECT_TRUE(eventually([] { return status().find("Last WPS result: Success\n") != std::string::npos; }));
}

TEST_F(HostapdCli, AnExchangeFailsWhereTheScenarioSaysSo) {
    use_scenario("wps 1 seconds=0.1 result=failed mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    EXPECT_TRUE(eventually([] { return status() != ACTIVE; }));
    EXPECT_EQ(status(), "PBC Status: Disabled\nLast WPS result: Failed\nPeer Address: 5c:f9:38:0d:21:06\n");
    use_scenario("wps 1 seconds=0 result=failed\n");
    ask({"wps_pbc"});
    EXPECT_EQ(status(), "PBC Status: Disabled\nLast WPS result: Failed\n");
}

TEST_F(HostapdCli, WithoutAPeerAnExchangeEndsAfterTheStoresTime) {
    set_store("AP_WPS_TIMEOUT=1");
    use_scenario("");
    double taken = duration_of([] {
        ask({"wps_pbc"});
        EXPECT_TRUE(eventually([] { return status() != ACTIVE; }));
    });
    EXPECT_GE(taken, 1.0);
    EXPECT_EQ(status(), TIMED_OUT);
}

TEST_F(HostapdCli, APeerThatComesAfterTheTimeComesTooLate) {
    set_store("AP_WPS_TIMEOUT=1");
    use_scenario("wps 1 seconds=1.01 result=success mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    EXPECT_TRUE(eventually([] { return status() != ACTIVE; }));
    EXPECT_EQ(status(), TIMED_OUT);
    use_scenario("wps 1 seconds=1 result=success mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    EXPECT_TRUE(eventually([] { return status() != ACTIVE; }));
    EXPECT_NE(status().find("Success"), std::string::npos);
}

TEST_F(HostapdCli, AScenarioThatMakesNoSenseIsOneInWhichNobodyComes) {
    write_file(GATEWAY_SCENARIO, "nonsense\n");
    set_store("AP_WPS_TIMEOUT=1");
    EXPECT_EQ(ask({"wps_pbc"}), "OK\n");
    EXPECT_TRUE(eventually([] { return status() == TIMED_OUT; }));
}

TEST_F(HostapdCli, CancellingEndsAnExchangeWithoutAResult) {
    use_scenario("wps 1 seconds=0.2 result=success mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    EXPECT_EQ(ask({"wps_cancel"}), "OK\n");
    EXPECT_EQ(status(), NO_EXCHANGE_YET);
    usleep(250000);
    EXPECT_EQ(status(), NO_EXCHANGE_YET);
    EXPECT_EQ(ask({"wps_cancel"}), "OK\n") << "also when there is nothing to cancel";
}

TEST_F(HostapdCli, ANewExchangeForgetsTheResultOfTheLast) {
    use_scenario("wps 1 seconds=0 result=success mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    EXPECT_NE(status().find("Success"), std::string::npos);
    use_scenario("wps 1 seconds=60 result=success mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    EXPECT_EQ(status(), ACTIVE);
}

TEST_F(HostapdCli, AnInterfaceHasItsOwnExchange) {
    ask({"wps_pbc"});
    EXPECT_EQ(status(), ACTIVE);
    EXPECT_EQ(cli({"-iath8", "wps_status"}).output, NO_EXCHANGE_YET);
}

TEST_F(HostapdCli, ARestartedAuthenticatorKnowsOfNoExchange) {
    ask({"wps_pbc"});
    ASSERT_EQ(run_shell(RESTART).status, 0);
    EXPECT_EQ(status(), NO_EXCHANGE_YET);
}

TEST_F(HostapdCli, WithoutATimeInTheStoreAnExchangeLastsTwoMinutes) {
    run({"cfg", "-r", "AP_WPS_TIMEOUT"});
    use_scenario("wps 1 seconds=120 result=success mac=5C:F9:38:0D:21:06\n");
    ask({"wps_pbc"});
    usleep(50000);
    EXPECT_EQ(status(), ACTIVE);
    set_store("AP_WPS_TIMEOUT=0");
    ask({"wps_pbc"});
    EXPECT_EQ(status(), ACTIVE);
}

TEST_F(HostapdCli, APinHasFourDigitsOrEightWithTheirChecksum) {
    for (const char *pin : {"1234", "0000", "12345670", "00000000", "00000017", "98765423"})
        EXPECT_EQ(ask({"wps_pin", "any", pin}), "OK\n") << pin;
    ask({"wps_cancel"});
    for (const char *pin : {"", "1", "123", "12345", "1234567", "12345671", "76543211", "123456700", "1234567x", "12x4",
                            "+234", "1234-567", "12345678901234567890"})
        EXPECT_EQ(ask({"wps_pin", "any", pin}), "FAIL\n") << pin;
    EXPECT_EQ(status(), NO_EXCHANGE_YET) << "a PIN that is none begins nothing";
}

TEST_F(HostapdCli, APinIsForAnybodyOrForAUuid) {
    EXPECT_EQ(ask({"wps_pin", "6a9f1c20-7b3e-4d58-8F01-00037f100001", "12345670"}), "OK\n");
    for (const char *enrollee : {"", "anybody", "an", "6a9f1c20-7b3e-4d58-8f01-00037f10000",
                                 "6a9f1c20x7b3e-4d58-8f01-00037f100001", "6a9f1c20-7b3e-4d58-8f01-00037f10000g"})
        EXPECT_EQ(ask({"wps_pin", enrollee, "12345670"}), "FAIL\n") << enrollee;
}

TEST_F(HostapdCli, WhatFollowsAPinMakesNoDifference) {
    EXPECT_EQ(ask({"wps_pin", "any", "12345670", "300", "5c:f9:38:0d:21:06"}), "OK\n");
}

}  // namespace
