// The WPS files: what the gateway lays down, and what apup does to those that are there.
#include <string>

#include "tests/simulator/platform.h"

namespace {

const std::string FOLDER = "/nvram/etc/wpa2/";

class WpsFiles : public Platform {};

// Lays the files down anew, as at the start of the gateway.
void lay_down() {
    ASSERT_EQ(run_shell("rm -f /nvram/etc/wpa2/*").status, 0);
    ASSERT_EQ(run({"apup"}).status, 0);
}

std::string file_of(int interface) {
    return read_file(FOLDER + "WSC_ath" + std::to_string(interface) + ".conf");
}

// The value of the file's line of a key.
std::string value_in(const std::string &file, const std::string &key) {
    size_t place = ("\n" + file).find("\n" + key + "=");
    if (place == std::string::npos)
        return "(absent)";
    place += key.size() + 1;
    return file.substr(place, file.find('\n', place) - place);
}

TEST_F(WpsFiles, EveryVapHasOne) {
    std::string names;
    for (int i = 0; i < 16; i++)
        names += "WSC_ath" + std::to_string(i) + ".conf\n";
    EXPECT_EQ(run_shell("ls /nvram/etc/wpa2 | sort -V").output, names);
}

TEST_F(WpsFiles, HoldsWhatTheAuthenticatorWantsToKnow) {
    EXPECT_EQ(file_of(8),
              "interface=ath8\n"
              "bridge=br0\n"
              "ctrl_interface=/var/run/hostapd\n"
              "ssid=Home network 5G\n"
              "wpa=2\n"
              "wpa_key_mgmt=WPA-PSK\n"
              "wps_state=2\n"
              "ap_setup_locked=0\n"
              "ap_pin=12345670\n"
              "uuid=6a9f1c20-7b3e-4d58-8f01-00037f100005\n"
              "friendly_name=Home router 5G\n"
              "device_name=Wireless gateway\n"
              "model_name=Simulated\n");
}

TEST_F(WpsFiles, OfAVapThatWasNeverSetUpSaysNotConfigured) {
    EXPECT_EQ(file_of(2),
              "interface=ath2\n"
              "bridge=br2\n"
              "ctrl_interface=/var/run/hostapd\n"
              "ssid=\n"
              "wpa=2\n"
              "wpa_key_mgmt=WPA-PSK\n"
              "wps_state=1\n"
              "ap_setup_locked=0\n"
              "ap_pin=12345670\n"
              "uuid=6a9f1c20-7b3e-4d58-8f01-06037f100001\n"
              "friendly_name=Access point ath2\n"
              "device_name=Wireless gateway\n"
              "model_name=Simulated\n");
}

TEST_F(WpsFiles, TakeTheirValuesFromTheStoreWhereItHasThem) {
    set_store("WSC_PIN_3=00000017");
    set_store("AP_SETUP_LOCKED_3=1");
    set_store("AP_SSID_3=Guests = welcome");
    set_store("AP_BRNAME_3=br7");
    set_store("AP_WPA_3=3");
    set_store("AP_SECFILE_3=EAP");
    lay_down();
    std::string file = file_of(2);
    EXPECT_EQ(value_in(file, "ap_pin"), "00000017");
    EXPECT_EQ(value_in(file, "ap_setup_locked"), "1");
    EXPECT_EQ(value_in(file, "ssid"), "Guests = welcome");
    EXPECT_EQ(value_in(file, "bridge"), "br7");
    EXPECT_EQ(value_in(file, "wpa"), "3");
    EXPECT_EQ(value_in(file, "wpa_key_mgmt"), "WPA-EAP");
    EXPECT_EQ(value_in(file, "wps_state"), "2");
    EXPECT_EQ(value_in(file_of(0), "ap_pin"), "12345670");
}

TEST_F(WpsFiles, OfAnOpenVapHasNoWpa) {
    set_store("AP_SECMODE=None");
    lay_down();
    EXPECT_EQ(value_in(file_of(0), "wpa"), "0");
}

TEST_F(WpsFiles, TakeTheLinesOfTheScenarioInThePlaceOfTheirOwnOrBehindThem) {
    write_file(GATEWAY_SCENARIO, SMALL_SCENARIO + "wps 1 device_name=\"Living room\" wps_state=1 wpa_ssid=x ap_pin=\n");
    lay_down();
    std::string file = file_of(0);
    EXPECT_EQ(value_in(file, "device_name"), "Living room");
    EXPECT_EQ(value_in(file, "wps_state"), "1");
    EXPECT_EQ(value_in(file, "ap_pin"), "");
    EXPECT_TRUE(file.ends_with("model_name=Simulated\nwpa_ssid=x\n")) << file;
    EXPECT_EQ(value_in(file, "seconds"), "(absent)");
    EXPECT_EQ(access("/nvram/etc/wpa2/WSC_ath1.conf", F_OK), -1) << "a VAP that is not declared";
}

// Readers look for a key anywhere in the file.
TEST_F(WpsFiles, HaveTheirKeysInNoOtherLine) {
    for (const char *key :
         {"friendly_name", "ap_pin", "uuid", "device_name", "model_name", "ap_setup_locked", "wps_state"})
        for (int i = 0; i < 16; i++)
            EXPECT_EQ(
                run_shell("grep -c " + std::string(key) + " /nvram/etc/wpa2/WSC_ath" + std::to_string(i) + ".conf")
                    .output,
                "1\n")
                << key << " of ath" << i;
}

TEST_F(WpsFiles, ApupLeavesWhatWasSetForWpsAndFollowsTheStoreWithTheRest) {
    run_shell(
        "sed -i -e 's/^model_name=.*/model_name=Edited/' -e 's/^wps_state=.*/wps_state=1/' "
        "-e 's/^friendly_name=.*/friendly_name=Edited too/' -e 's/^bridge=.*/bridge=edited/' " +
        FOLDER + "WSC_ath0.conf");
    run_shell("echo own_line=kept >> " + FOLDER + "WSC_ath0.conf");
    set_store("AP_SSID=New name");
    set_store("AP_SETUP_LOCKED=1");
    set_store("WSC_PIN=00000017");
    run({"apup"});
    EXPECT_EQ(file_of(0),
              "interface=ath0\n"
              "bridge=br0\n"
              "ctrl_interface=/var/run/hostapd\n"
              "ssid=New name\n"
              "wpa=2\n"
              "wpa_key_mgmt=WPA-PSK\n"
              "wps_state=1\n"
              "ap_setup_locked=0\n"
              "ap_pin=12345670\n"
              "uuid=6a9f1c20-7b3e-4d58-8f01-00037f100001\n"
              "friendly_name=Edited too\n"
              "device_name=Wireless gateway\n"
              "model_name=Edited\n"
              "own_line=kept\n");
}

TEST_F(WpsFiles, ApupSaysWhichOnesItCannotWriteAndDoesTheRest) {
    run_shell("rm " + FOLDER + "WSC_ath*.conf; mkdir " + FOLDER + "WSC_ath4.conf");
    outcome done = run({"apup"});
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(done.errors, "apup: /nvram/etc/wpa2: Is a directory\n");
    EXPECT_EQ(run({"hostapd_cli", "-iath8", "ping"}).output, "PONG\n");
}

}  // namespace
