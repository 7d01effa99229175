// Factory defaults over the wire: the reply, the commands that were run, the store, the WPS files and the getters
// afterwards.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "config/store.h"
#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

const char DEFAULTS[] = "/tmp/wifi_defaults.dat";
const char FETCHING_TOOL[] = "/usr/sbin/wps_gpio";
const char TOOL_ASIDE[] = "/usr/sbin/wps_gpio.aside";
const char BLACK_LIST[] = "/nvram/blackList.dat";
const char WPS_FILE[] = "/nvram/etc/wpa2/WSC_ath0.conf";

// The settings of both radios, as a client left them and as they are delivered.
const strings CHANGED = {"AP_VAP_NUM=8",    "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_SSID=Mine",
                         "AP_SSID_9=Mine5", "AP_ENABLE_9=0", "AP_PRIMARY_CH=44"};
const char DELIVERED[] =
    "SETTING_DELIMETER=50_RADIO_START\n"
    "AP_SSID_9=Factory5\nAP_ENABLE_9=1\nAP_PRIMARY_CH=36\n"
    "SETTING_DELIMETER=50_RADIO_STOP\n"
    "SETTING_DELIMETER=24_RADIO_START\n"
    "AP_SSID=Factory\n"
    "SETTING_DELIMETER=24_RADIO_STOP\n"
    "AP_VAP_NUM=8\nAP_RADIO_ID=0\nAP_RADIO_ID_9=1\n";

int restore(int scope) {
    return code_of(call(PROC_wlan_set_restore_defaults, xdr_word(static_cast<uint32_t>(scope))));
}

bool exists(const char *path) {
    return access(path, F_OK) == 0;
}

// Process ids of the soft-block daemons, each with a line break.
std::string daemons() {
    return run_command("pgrep -x softblock").text;
}

// The gateway with a client's settings, a defaults file, and a fetching tool of its own that fetches nothing. What was
// there comes back.
class FactoryDefaults : public WatchedGateway {
protected:
    void SetUp() override {
        if (exists(FETCHING_TOOL)) {
            ASSERT_EQ(rename(FETCHING_TOOL, TOOL_ASIDE), 0);
        }
        place_tool("exit 0");
        write_file(DEFAULTS, DELIVERED);
        begin_with(CHANGED);
    }

    void TearDown() override {
        unlink(FETCHING_TOOL);
        if (exists(TOOL_ASIDE)) {
            EXPECT_EQ(rename(TOOL_ASIDE, FETCHING_TOOL), 0);
        }
        kept.put_back();
        // It reads its list when it starts.
        if (daemon_ended)
            start_soft_block();
    }

    static void place_tool(const std::string &does) {
        write_file(FETCHING_TOOL, "#!/bin/sh\n" + does + "\n");
        EXPECT_EQ(chmod(FETCHING_TOOL, 0755), 0);
    }

    // Without the daemon the black list is the file that it keeps.
    void end_daemon() {
        daemon_ended = !daemons().empty();
        for (int i = 0; i < 500 && !daemons().empty(); i++) {
            run_command("for pid in $(pgrep -x softblock); do kill $pid; done");
            usleep(10000);
        }
        EXPECT_EQ(daemons(), "");
        write_file(BLACK_LIST, "02:00:00:00:00:aa");
    }

private:
    kept_settings kept;
    bool daemon_ended = false;
};

// How many lines of the store set the key.
long lines_of(const std::string &key) {
    strings lines = lines_since(STORE_FILE, 0);
    return std::count_if(lines.begin(), lines.end(),
                         [&](const std::string &line) { return line.starts_with(key + "="); });
}

TEST_F(FactoryDefaults, ScopeZeroRestoresTheFiveGigahertzRadioOnly) {
    EXPECT_EQ(restore(0), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 9), (text_result{0, "Factory5"}));
    EXPECT_EQ(get_number(PROC_wlan_get_enable, 9), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel, 9), (number_result{0, 36}));
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "Mine"}));
}

TEST_F(FactoryDefaults, ScopeOneRestoresTheOtherRadioOnly) {
    EXPECT_EQ(restore(1), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "Factory"}));
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 9), (text_result{0, "Mine5"}));
    EXPECT_EQ(get_number(PROC_wlan_get_enable, 9), (number_result{0, 0}));
}

TEST_F(FactoryDefaults, ScopeTwoRestoresEverythingAndForgetsWhatTheFileDoesNotName) {
    set_store({"AP_SSID=Mine", "AP_SSID_3=Guest", "AP_SSID_9=Mine5"});
    EXPECT_EQ(restore(2), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "Factory"}));
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 9), (text_result{0, "Factory5"}));
    EXPECT_EQ(store_value("AP_SSID_3"), "(absent)");
}

TEST_F(FactoryDefaults, TheToolSettlesWhatWasAppended) {
    EXPECT_EQ(restore(0), 0);
    EXPECT_EQ(lines_of("AP_SSID_9"), 1);
    EXPECT_EQ(store_value("AP_SSID_9"), "Factory5");
    EXPECT_EQ(read_file(STORE_FILE).substr(0, 4), "CFG\n");
}

TEST_F(FactoryDefaults, OldSettingsBehindTheEndAreForgotten) {
    set_store({"AP_SSID=Mine", "LONG=" + std::string(2000, 'x'), "AP_SSID_3=Guest"});
    EXPECT_EQ(restore(2), 0);
    EXPECT_EQ(store_value("LONG"), "(absent)");
    EXPECT_EQ(store_value("AP_SSID_3"), "(absent)");
    EXPECT_EQ(store_value("AP_SSID"), "Factory");
}

TEST_F(FactoryDefaults, TheWpsFilesAreRemoved) {
    write_file(WPS_FILE, "uuid=1\n");
    unlink("/nvram/5gcapabletable");
    EXPECT_EQ(restore(0), 0);
    EXPECT_TRUE(std::filesystem::is_empty("/nvram/etc/wpa2"));
    EXPECT_EQ(commands(), (strings{"cfg -c", "rm -f /nvram/etc/wpa2/*"}));
}

TEST_F(FactoryDefaults, TheCapableTableAndTheDriversLogAreRemoved) {
    write_file("/nvram/5gcapabletable", "table");
    write_file("/nvram/wlanlog", "log");
    EXPECT_EQ(restore(1), 0);
    EXPECT_FALSE(exists("/nvram/5gcapabletable"));
    EXPECT_FALSE(exists("/nvram/wlanlog"));
    EXPECT_EQ(commands(),
              (strings{"cfg -c", "rm -f /nvram/etc/wpa2/*", "rm -f /nvram/5gcapabletable", "rm -f /nvram/wlanlog"}));
}

TEST_F(FactoryDefaults, AnotherScopeFailsAndTouchesNothing) {
    end_daemon();
    write_file(WPS_FILE, "uuid=1\n");
    std::string store = read_file(STORE_FILE);
    EXPECT_EQ(restore(3), -1);
    EXPECT_EQ(restore(-1), -1);
    EXPECT_EQ(read_file(STORE_FILE), store);
    EXPECT_TRUE(exists(WPS_FILE));
    EXPECT_TRUE(exists(BLACK_LIST));
    EXPECT_EQ(commands(), strings{});
}

TEST_F(FactoryDefaults, DefaultsThatCannotBeFetchedFailAfterTheBlackListIsCleared) {
    end_daemon();
    unlink(DEFAULTS);
    write_file(WPS_FILE, "uuid=1\n");
    std::string store = read_file(STORE_FILE);
    EXPECT_EQ(restore(2), -1);
    EXPECT_FALSE(exists(BLACK_LIST));
    EXPECT_EQ(read_file(STORE_FILE), store);
    EXPECT_TRUE(exists(WPS_FILE));
    EXPECT_EQ(commands(), strings{"wps_gpio wifi_conf"});
}

TEST_F(FactoryDefaults, MissingDefaultsAreFetched) {
    ASSERT_EQ(rename(DEFAULTS, "/tmp/system_tests.defaults"), 0);
    place_tool("[ \"$*\" = wifi_conf ] && mv /tmp/system_tests.defaults /tmp/wifi_defaults.dat");
    set_debug(true);
    EXPECT_EQ(restore(1), 0);
    set_debug(false);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "Factory"}));
    EXPECT_EQ(lines_with({"[VLK-API] wlan_setRestoreDefaults "}),
              (strings{"[VLK-API] wlan_setRestoreDefaults file not found: /tmp/wifi_defaults.dat",
                       "[VLK-API] wlan_setRestoreDefaults file successfully retrieved from ARM: "
                       "/tmp/wifi_defaults.dat"}));
}

TEST_F(FactoryDefaults, AMissingStoreFailsAndStaysMissing) {
    unlink(STORE_FILE);
    EXPECT_EQ(restore(2), -1);
    EXPECT_FALSE(exists(STORE_FILE));
    EXPECT_EQ(commands(), strings{});
}

}  // namespace
