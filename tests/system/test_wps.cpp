// WPS over the wire: the reply, the commands that were run, the store, the WPS files and the authenticator afterwards.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

const char WPS_FILES[] = "/nvram/etc/wpa2";
const char NAME_FILE[] = "/tmp/conf_filename";
const char METHOD_FILE[] = "/tmp/wps_method";
const char CONFIGURATION[] = "/tmp/system_tests.hostapd";
const char START[] = "/sbin/hostapd -B /tmp/system_tests.hostapd -e /etc/wpa2/entropy";

std::string wps_file(int interface) {
    return std::string(WPS_FILES) + "/WSC_ath" + std::to_string(interface) + ".conf";
}

// Process ids of the authenticators, each with a line break.
std::string authenticators() {
    return run_command("pgrep -x hostapd").text;
}

// Ends them all, by their ids, and waits until they are gone.
void end_authenticators() {
    for (int i = 0; i < 500 && !authenticators().empty(); i++) {
        run_command("for pid in $(pgrep -x hostapd); do kill $pid; done");
        usleep(10000);
    }
    EXPECT_EQ(authenticators(), "");
}

// A gateway without WPS files but those a test writes, and without an authenticator; what was there comes back.
class Wps : public WatchedGateway {
protected:
    void SetUp() override {
        authenticator_ran = !authenticators().empty();
        name_existed = std::filesystem::exists(NAME_FILE);
        name = read_file(NAME_FILE);
        for (const auto &entry : std::filesystem::directory_iterator(WPS_FILES))
            files.push_back({entry.path(), read_file(entry.path().c_str())});
        remove_wps_files();
        end_authenticators();
        unlink(METHOD_FILE);
        write_file(CONFIGURATION, "interface=ath0\n");
        write_file(NAME_FILE, std::string(CONFIGURATION) + "\n");
        write_file(wps_file(0).c_str(),
                   "friendly_name=Gateway\nap_pin=12345670\nuuid=11-22\ndevice_name=AP\nmodel_name=M1\n"
                   "ap_setup_locked=1\nwps_state=2\n");
        begin_with({"AP_ENABLE=1", "WPS_ENABLE=2", "AP_ENABLE_9=1"});
    }

    void TearDown() override {
        run_command("fault off");
        end_authenticators();
        remove_wps_files();
        for (const kept_file &file : files)
            write_file(file.path.c_str(), file.content);
        unlink(CONFIGURATION);
        unlink(METHOD_FILE);
        if (name_existed)
            write_file(NAME_FILE, name);
        else
            unlink(NAME_FILE);
        if (authenticator_ran)
            run_command("/sbin/hostapd -B $(cat /tmp/conf_filename) -e /etc/wpa2/entropy");
    }

private:
    struct kept_file {
        std::string path;
        std::string content;
    };

    static void remove_wps_files() {
        for (const auto &entry : std::filesystem::directory_iterator(WPS_FILES))
            std::filesystem::remove(entry.path());
    }

    std::vector<kept_file> files;
    std::string name;
    bool name_existed = false;
    bool authenticator_ran = false;
};

text_result get_registrar_text(uint32_t procedure, int index) {
    return text_of(call(procedure, vap(index) + xdr_word(1)));
}

// --- settings of the store ---

TEST_F(Wps, SwitchAndModeAreOneSetting) {
    EXPECT_EQ(set_number(PROC_wlan_set_wps_enable, 3, 1), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a WPS_ENABLE_3=\"2\""});
    EXPECT_EQ(get_number(PROC_wlan_get_wps_enable, 3), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_wps_mode, 3), (number_result{0, 2}));
    EXPECT_EQ(set_number(PROC_wlan_set_wps_mode, 3, 0), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a WPS_ENABLE_3=\"0\""});
    EXPECT_EQ(get_number(PROC_wlan_get_wps_enable, 3), (number_result{0, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_wps_mode, 3), (number_result{0, 0}));
}

TEST_F(Wps, ModeRefusesANegativeIndexAndTheSwitchDoesNot) {
    EXPECT_EQ(get_number(PROC_wlan_get_wps_mode, -1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_wps_mode, -1, 1), -1);
    EXPECT_EQ(get_number(PROC_wlan_get_wps_enable, -1), (number_result{0, 1}));
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Wps, SetupLockIsAFlagOfTheVap) {
    EXPECT_EQ(get_number(PROC_wlan_get_wps_setup_lock, 2), (number_result{-1, 0})) << "absent";
    EXPECT_EQ(set_number(PROC_wlan_set_wps_setup_lock, 2, 1), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a AP_SETUP_LOCKED_2=\"1\""});
    EXPECT_EQ(get_number(PROC_wlan_get_wps_setup_lock, 2), (number_result{0, 1}));
}

TEST_F(Wps, TimeoutIsOneForTheDevice) {
    EXPECT_EQ(get_number(PROC_wlan_get_wps_config_timeout, 5), (number_result{-1, 0})) << "absent";
    EXPECT_EQ(set_number(PROC_wlan_set_wps_config_timeout, 9, 120), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a AP_WPS_TIMEOUT=\"120\""});
    EXPECT_EQ(get_number(PROC_wlan_get_wps_config_timeout, 5), (number_result{0, 120}));
    EXPECT_EQ(get_number(PROC_wlan_get_wps_config_timeout, -1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_wps_config_timeout, -1, 60), -1);
}

TEST_F(Wps, MethodsAreWrittenToTheStoreAndTheMethodFileAndSwitchTheFirstVaps) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_config_methods_enabled, 5, "PushButton,Label"), 0);
    EXPECT_EQ(commands_since(journal_mark, "system "),
              strings{"echo label push_button virtual_push_button physical_push_button > /tmp/wps_method"});
    EXPECT_EQ(new_commands(),
              (strings{"cfg -a WPS_CONFIG_METHOD=\"label push_button virtual_push_button physical_push_button\"",
                       "cfg -a WPS_ENABLE=\"2\"", "cfg -a WPS_ENABLE_9=\"2\""}));
    EXPECT_EQ(read_file(METHOD_FILE), "label push_button virtual_push_button physical_push_button\n");
    EXPECT_EQ(get_text(PROC_wlan_get_wps_config_methods_enabled, 16), (text_result{0, "Label,PushButton"}));
}

TEST_F(Wps, LabelAndKeypadSwitchWpsOff) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_config_methods_enabled, 1, "Label,Keypad"), 0);
    EXPECT_EQ(store_value("WPS_CONFIG_METHOD"), "label keypad");
    EXPECT_EQ(store_value("WPS_ENABLE"), "0");
    EXPECT_EQ(store_value("WPS_ENABLE_9"), "0");
}

TEST_F(Wps, MethodsWithoutAKnownWordChangeNothing) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_config_methods_enabled, 1, "none; touch /tmp/x"), 0);
    EXPECT_TRUE(new_commands().empty());
    EXPECT_FALSE(std::filesystem::exists(METHOD_FILE));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_config_methods_enabled, 1), (text_result{-1, ""}));
}

// --- attributes of the WPS file ---

TEST_F(Wps, AttributesAreReadFromTheFile) {
    EXPECT_EQ(get_text(PROC_wlan_get_wps_device_name, 1), (text_result{0, "Gateway"}));
    EXPECT_EQ(new_commands(), strings{"cat /nvram/etc/wpa2/WSC_ath0.conf | grep friendly_name"});
    EXPECT_EQ(get_text(PROC_wlan_get_wps_uuid, 1), (text_result{0, "11-22"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_model_name, 1), (text_result{0, "M1"}));
    EXPECT_EQ(get_registrar_text(PROC_wlan_get_wps_registrar_uuid, 1), (text_result{0, "11-22"}));
    EXPECT_EQ(get_registrar_text(PROC_wlan_get_wps_registrar_device_name, 1), (text_result{0, "AP"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_setup_locked_state, 1), (text_result{0, "LockedByLocalManagement"}));
}

TEST_F(Wps, AttributesOfAVapWithoutAFileFail) {
    for (uint32_t procedure : {PROC_wlan_get_wps_device_name, PROC_wlan_get_wps_uuid, PROC_wlan_get_wps_model_name,
                               PROC_wlan_get_wps_setup_locked_state})
        EXPECT_EQ(get_text(procedure, 9), (text_result{-1, ""})) << procedure;
    for (uint32_t procedure : {PROC_wlan_get_wps_registrar_uuid, PROC_wlan_get_wps_registrar_device_name})
        EXPECT_EQ(get_registrar_text(procedure, 9), (text_result{-1, ""})) << procedure;
}

TEST_F(Wps, ApPinIsTheFilesElseTheStores) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_device_password, 1, "99999999"), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a WSC_PIN=\"99999999\""});
    EXPECT_EQ(get_text(PROC_wlan_get_wps_device_password, 1), (text_result{0, "12345670"}));
    write_file(wps_file(0).c_str(), "ap_pin=\n");
    EXPECT_EQ(get_text(PROC_wlan_get_wps_device_password, 1), (text_result{0, "99999999"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_device_password, 9), (text_result{0, ""}));
}

TEST_F(Wps, ModelNameOfAVapThatIsOffIsRefused) {
    write_file(wps_file(1).c_str(), "model_name=M2\n");
    EXPECT_EQ(get_text(PROC_wlan_get_wps_model_name, 2), (text_result{-1, ""}));
    EXPECT_EQ(set_text(PROC_wlan_set_wps_model_name, 2, "M3"), -1);
    EXPECT_TRUE(new_commands().empty());
    EXPECT_EQ(read_file(wps_file(1).c_str()), "model_name=M2\n");
}

// --- attributes that restart the authenticator ---

const strings CHANGED = {
    "ls /nvram/etc/wpa2 | grep ath0",
    "rm /nvram/etc/wpa2/WSC_ath0.conf;mv /nvram/etc/wpa2/WSC_ath0.conf.tmp /nvram/etc/wpa2/WSC_ath0.conf",
};

// The commands of a change, and of the restart that follows; `killed` is the old authenticator, if there is one.
strings changed_and_restarted(const std::string &killed = "") {
    strings lines = CHANGED;
    lines.push_back("/bin/ps | grep hostapd");
    if (!killed.empty())
        lines.push_back("kill " + killed);
    lines.push_back("cat /tmp/conf_filename");
    lines.push_back(START);
    return lines;
}

TEST_F(Wps, UuidIsWrittenToTheFileAndStartsTheAuthenticatorAnew) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, 1, "33-44"), 0);
    EXPECT_EQ(new_commands(), changed_and_restarted());
    EXPECT_EQ(get_text(PROC_wlan_get_wps_uuid, 1), (text_result{0, "33-44"}));
    new_commands();
    std::string first = authenticators();
    ASSERT_EQ(std::count(first.begin(), first.end(), '\n'), 1) << first;

    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, 1, "55-66"), 0);
    EXPECT_EQ(new_commands(), changed_and_restarted(first.substr(0, first.size() - 1)));
    std::string second;
    for (int i = 0; i < 500; i++, usleep(10000)) {  // nobody waits for the end of the old one
        second = authenticators();
        if (std::count(second.begin(), second.end(), '\n') == 1)
            break;
    }
    EXPECT_NE(second, first);
    EXPECT_EQ(std::count(second.begin(), second.end(), '\n'), 1) << second;
}

TEST_F(Wps, ModelNameIsWrittenToTheFileAndStartsTheAuthenticatorAnew) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_model_name, 1, "M \"2\""), 0);
    EXPECT_EQ(new_commands(), changed_and_restarted());
    EXPECT_EQ(get_text(PROC_wlan_get_wps_model_name, 1), (text_result{0, "M \"2\""}));
}

TEST_F(Wps, OutOfTheBoxIsWrittenToTheFileAndStartsTheAuthenticatorAnew) {
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_oob, vap(1))), 0);
    EXPECT_EQ(new_commands(), changed_and_restarted());
    EXPECT_TRUE(read_file(wps_file(0).c_str()).ends_with("\nap_setup_locked=1\nwps_state=1\n"));
}

TEST_F(Wps, NothingIsRestartedWhileWpsIsOff) {
    set_store({"AP_ENABLE=1", "WPS_ENABLE=0"});
    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, 1, "33-44"), 0);
    EXPECT_EQ(new_commands(), CHANGED);
    EXPECT_EQ(set_text(PROC_wlan_set_wps_model_name, 1, "M2"), 0);
    EXPECT_EQ(new_commands(), CHANGED);
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_oob, vap(1))), 0);
    EXPECT_TRUE(new_commands().empty());
    EXPECT_EQ(authenticators(), "");
}

TEST_F(Wps, UuidOfAVapWithoutAFileFailsAndRestartsAllTheSame) {
    set_store({"WPS_ENABLE_9=2"});
    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, 9, "33-44"), -1);
    EXPECT_EQ(new_commands(),
              (strings{"ls /nvram/etc/wpa2 | grep ath8", "/bin/ps | grep hostapd", "cat /tmp/conf_filename", START}));
    EXPECT_FALSE(std::filesystem::exists(wps_file(8)));
    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, -1, "33-44"), -1);
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Wps, WithoutTheNameOfItsConfigurationNoAuthenticatorIsStarted) {
    unlink(NAME_FILE);
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_oob, vap(1))), 0);
    EXPECT_EQ(new_commands().back(), "cat /tmp/conf_filename");
    EXPECT_EQ(authenticators(), "");
}

TEST_F(Wps, AnAuthenticatorThatDoesNotStartIsNotReported) {
    run_command("fault hostapd fail");
    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, 1, "33-44"), 0);
    EXPECT_EQ(new_commands(), changed_and_restarted());
    EXPECT_EQ(authenticators(), "");
}

TEST_F(Wps, UuidOfAnyLengthOnTheWireIsTakenAndReadAsFarAsAResultHoldsIt) {
    EXPECT_EQ(set_text(PROC_wlan_set_wps_uuid, 1, std::string(8000, 'x')), 0);
    EXPECT_NE(read_file(wps_file(0).c_str()).find("uuid=" + std::string(8000, 'x') + "\n"), std::string::npos);
    EXPECT_EQ(get_text(PROC_wlan_get_wps_uuid, 1), (text_result{0, std::string(1727, 'x')}));
}

// --- what the authenticator inherits ---

// In place of the authenticator a script that writes down its descriptors.
class RecordingAuthenticator {
public:
    RecordingAuthenticator() {
        std::filesystem::rename("/sbin/hostapd", "/sbin/hostapd.kept");
        write_file("/sbin/hostapd", "#!/bin/sh\nls -l /proc/$$/fd >/tmp/system_tests.descriptors\n");
        chmod("/sbin/hostapd", 0755);
    }
    ~RecordingAuthenticator() {
        std::filesystem::rename("/sbin/hostapd.kept", "/sbin/hostapd");
        unlink("/tmp/system_tests.descriptors");
    }
};

TEST_F(Wps, AuthenticatorInheritsNoSocketOfTheServer) {
    RecordingAuthenticator recording;
    std::string servers =
        run_command("for pid in $(pgrep -f vlk_rpc_wlan_config_server); do ls -l /proc/$pid/fd; done").text;
    ASSERT_NE(servers.find("socket:"), std::string::npos) << "the server itself has one: " << servers;
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_oob, vap(1))), 0);
    std::string inherited = read_file("/tmp/system_tests.descriptors");
    EXPECT_NE(inherited.find(" 0 -> "), std::string::npos) << inherited;
    EXPECT_EQ(inherited.find("socket:"), std::string::npos) << inherited;
}

// --- what is always the same ---

TEST_F(Wps, SomeAnswersAreAlwaysTheSame) {
    EXPECT_EQ(get_number(PROC_wlan_get_wps_version, 1), (number_result{0, 2}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_config_methods_supported, 1),
              (text_result{0, "Label,Display,PushButton,Keypad"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wps_last_configuration_error, 1), (text_result{0, "NoError"}));
    EXPECT_EQ(get_number(PROC_wlan_get_wps_registrar_entries_num, 1), (number_result{0, 1}));
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Wps, TheRegistrarIsThereAndCannotBeSwitched) {
    EXPECT_EQ(get_number(PROC_wlan_get_wps_registrar_established, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_wps_registrar_established, -1), (number_result{0, 0}));
    EXPECT_EQ(number_of(call(PROC_wlan_get_wps_registrar_enabled, vap(1) + xdr_word(1))), (number_result{0, 1}));
    EXPECT_EQ(number_of(call(PROC_wlan_get_wps_registrar_enabled, vap(-1) + xdr_word(1))), (number_result{-1, 0}));
    EXPECT_EQ(code_of(call(PROC_wlan_set_wps_registrar_enabled, vap(1) + xdr_word(1) + xdr_word(0))), 0);
    EXPECT_TRUE(new_commands().empty());
}

// --- exchanges ---

struct exchange {
    uint32_t procedure;
    bytes arguments;
    const char *words;
};

std::vector<exchange> exchanges() {
    return {{PROC_wlan_set_wps_pushbutton, "", "wps_pbc"},
            {PROC_wlan_set_wps_pinstart, xdr_string_bytes("12345670"), "wps_pin any 12345670"},
            {PROC_wlan_set_wps_cancel, "", "wps_cancel"}};
}

TEST_F(Wps, ExchangesAreCommandedWithoutABlankBeforeTheInterface) {
    set_store({"AP_ENABLE=1", "WPS_ENABLE=2", "AP_ENABLE_9=1", "WPS_ENABLE_9=1"});
    for (const exchange &row : exchanges()) {
        code_of(call(row.procedure, vap(1) + row.arguments));
        EXPECT_EQ(new_commands(), strings{std::string("hostapd_cli -iath0 ") + row.words});
        code_of(call(row.procedure, vap(9) + row.arguments));
        EXPECT_EQ(new_commands(), strings{std::string("hostapd_cli -iath8 ") + row.words});
    }
}

TEST_F(Wps, ExchangesWithTheVapOrWpsOffRunNothing) {
    for (const char *line : {"AP_ENABLE=1", "WPS_ENABLE=2"}) {
        set_store({line});
        for (const exchange &row : exchanges())
            EXPECT_EQ(code_of(call(row.procedure, vap(1) + row.arguments)), -1) << row.words;
    }
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Wps, ExchangesRefuseANegativeIndex) {
    for (const exchange &row : exchanges())
        EXPECT_EQ(code_of(call(row.procedure, vap(-1) + row.arguments)), -1) << row.words;
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Wps, QueriesAreCommandedWithABlankBeforeTheInterface) {
    get_text(PROC_wlan_get_wps_status, 1);
    get_text(PROC_wlan_get_wps_result_status, 9);
    get_text(PROC_wlan_get_wps_configuration_state, 16);
    EXPECT_EQ(new_commands(), (strings{"hostapd_cli -i ath0 wps_status", "hostapd_cli -i ath8 wps_status",
                                       "hostapd_cli -i ath15 get_config"}));
}

TEST_F(Wps, QueriesRefuseANegativeIndex) {
    for (uint32_t procedure :
         {PROC_wlan_get_wps_status, PROC_wlan_get_wps_result_status, PROC_wlan_get_wps_configuration_state})
        EXPECT_EQ(get_text(procedure, -1), (text_result{-1, ""})) << procedure;
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Wps, EverythingThatAsksTheAuthenticatorFailsWithoutTheShell) {
    run_command("fault popen EMFILE");
    for (const exchange &row : exchanges())
        EXPECT_EQ(code_of(call(row.procedure, vap(1) + row.arguments)), -1) << row.words;
    for (uint32_t procedure :
         {PROC_wlan_get_wps_status, PROC_wlan_get_wps_result_status, PROC_wlan_get_wps_configuration_state})
        EXPECT_EQ(get_text(procedure, 1), (text_result{-1, ""})) << procedure;
    EXPECT_EQ(new_commands().size(), 6u);
}

}  // namespace
