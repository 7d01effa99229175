// The client's command status against the real server: what people read, what programs get, and what it costs.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <tuple>
#include <utility>

#include "tests/support/daemon.h"
#include "tests/system/gateway.h"

namespace {

using nlohmann::json;

json result_for(const std::string &words) {
    command_output output = client(words + " -o json");
    EXPECT_EQ(output.status, 0) << output.errors;
    json answer = json::parse(output.text, nullptr, false);
    EXPECT_FALSE(answer.is_discarded()) << output.text;
    return answer.value("result", json());
}

const strings GATEWAY = {"AP_VAP_NUM=8",
                         "AP_RADIO_ID=0",
                         "AP_RADIO_ID_2=0",
                         "AP_RADIO_ID_9=1",
                         "AP_RADIO_ID_16=1",
                         "AP_PRIMARY_CH_2=6",
                         "AP_PRIMARY_CH=36",
                         "AP_TXPWR_2=20",
                         "AP_TXPWR=23",
                         "AP_CHMODE_2=11NGHT20",
                         "AP_CHMODE=11ACVHT80PLUSMINUS",
                         "AP_RADIO_ENABLED_2=1",
                         "AP_ENABLE=1",
                         "AP_ENABLE_9=1",
                         "AP_ENABLE_2=1",
                         "AP_SSID=Home",
                         "AP_SSID_2=Guests",
                         "AP_SSID_9=Home 5G",
                         "AP_SECMODE=WPA",
                         "AP_WPA=2",
                         "AP_SECFILE=PSK",
                         "AP_SECMODE_9=None",
                         "AP_HIDESSID_9=1"};

strings with(strings lines, const strings &further) {
    lines.insert(lines.begin(), further.begin(), further.end());  // the first line of a key wins
    return lines;
}

class ClientStatus : public ScenarioGateway {
protected:
    void SetUp() override {
        ScenarioGateway::SetUp();
        set_items("station 1 mac=28:6A:BA:4C:10:01 ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117\n");
        begin_with(GATEWAY);
    }
};

const char RADIO_LINES[] =
    "radios\n"
    "RADIO  VAPS  ENABLED  STANDARD  CHANNEL  CONFIGURED  WIDTH   TRANSMIT_POWER  UTILISATION\n"
    "    0  1-8   yes      bgn             6           6  20 MHz              20  -\n"
    "    1  9-16  no       anac           36          36  80 MHz              23  -\n"
    "\n";

constexpr const char VAP_HEAD[] =
    "vaps\n"
    "VAP  INTERFACE  ENABLED  STATUS   SSID     BSSID              CHANNEL  WIDTH   SECURITY  HIDDEN  STATIONS\n";

// A line of a VAP that is switched off and has never been set up.
std::string off_line(int index) {
    char line[128];
    snprintf(line, sizeof line,
             " %2d  ath%-2d      no       Disable           -                        -  -       -         no           "
             "  -\n",
             index, index - 1);
    return line;
}

TEST_F(ClientStatus, PeopleSeeBothRadiosAndAllVaps) {
    std::string expected =
        std::string(RADIO_LINES) + VAP_HEAD +
        "  1  ath0       yes      Up       Home     00:03:7F:10:00:01        6  20 MHz  WPA2-PSK  no             1\n"
        "  2  ath1       yes      Disable  Guests   -                        -  -       -         no             -\n";
    for (int index = 3; index <= 8; index++)
        expected += off_line(index);
    expected +=
        "  9  ath8       yes      Up       Home 5G  00:03:7F:10:00:05       36  80 MHz  open      yes            0\n";
    for (int index = 10; index <= 15; index++)
        expected += off_line(index);
    expected +=
        " 16  ath15      no       Up                1A:03:7F:10:00:05       36  80 MHz  -         no             0\n";
    EXPECT_EQ(client("status").text, expected);
}

TEST_F(ClientStatus, OnlyVapsThatAreSwitchedOnAreShownOnDemand) {
    EXPECT_EQ(client("status --enabled").text, std::string(RADIO_LINES) + VAP_HEAD +
                                                   "  1  ath0       yes      Up       Home     00:03:7F:10:00:01       "
                                                   " 6  20 MHz  WPA2-PSK  no             1\n"
                                                   "  2  ath1       yes      Disable  Guests   -                       "
                                                   " -  -       -         no             -\n"
                                                   "  9  ath8       yes      Up       Home 5G  00:03:7F:10:00:05       "
                                                   "36  80 MHz  open      yes            0\n");
}

TEST_F(ClientStatus, ProgramsGetEveryFact) {
    json result = result_for("status");
    EXPECT_EQ(result["radios"][0], json::parse(R"({"radio":0,"first_vap":1,"last_vap":8,"enabled":true,"standard":"bgn",
        "channel":6,"configured_channel":6,"auto_channel":false,"width":20,"transmit_power":20,"utilisation":null})"));
    EXPECT_EQ(result["radios"][1], json::parse(R"({"radio":1,"first_vap":9,"last_vap":16,"enabled":false,
        "standard":"anac","channel":36,"configured_channel":36,"auto_channel":false,"width":80,"transmit_power":23,
        "utilisation":null})"));
    EXPECT_EQ(result["radios"].size(), 2u);
    EXPECT_EQ(result["vaps"].size(), 16u);
    EXPECT_EQ(result["vaps"][0], json::parse(R"({"vap":1,"interface":"ath0","enabled":true,"status":"Up","ssid":"Home",
        "bssid":"00:03:7F:10:00:01","channel":6,"width":20,"security":"WPA2-PSK","hidden":false,"stations":1})"));
    EXPECT_EQ(result["vaps"][1], json::parse(R"({"vap":2,"interface":"ath1","enabled":true,"status":"Disable",
        "ssid":"Guests","bssid":null,"channel":null,"width":null,"security":null,"hidden":false,"stations":null})"));
    EXPECT_EQ(result["vaps"][8], json::parse(R"({"vap":9,"interface":"ath8","enabled":true,"status":"Up",
        "ssid":"Home 5G","bssid":"00:03:7F:10:00:05","channel":36,"width":80,"security":"open","hidden":true,
        "stations":0})"));
}

TEST_F(ClientStatus, VapIsAskedByItsIndexAlone) {
    json vaps = result_for("status")["vaps"];
    for (int i = 0; i < 16; i++) {
        EXPECT_EQ(vaps[i]["vap"], i + 1);
        EXPECT_EQ(vaps[i]["interface"], "ath" + std::to_string(i));
        EXPECT_EQ(vaps[i]["status"], i == 0 || i == 8 || i == 15 ? "Up" : "Disable") << i;
    }
}

// What the store says of a VAP's security, and the word for it.
TEST_F(ClientStatus, SecurityIsOneWord) {
    const std::pair<strings, json> rows[] = {
        {{"AP_SECMODE=None"}, "open"},
        {{"AP_SECMODE=WEP"}, "WEP"},
        {{"AP_SECMODE=WEP-104"}, "WEP"},
        {{"AP_SECMODE=WPA", "AP_WPA=1", "AP_SECFILE=PSK"}, "WPA-PSK"},
        {{"AP_SECMODE=WPA", "AP_WPA=2", "AP_SECFILE=PSK"}, "WPA2-PSK"},
        {{"AP_SECMODE=WPA", "AP_WPA=3", "AP_SECFILE=PSK"}, "WPA/WPA2-PSK"},
        {{"AP_SECMODE=WPA", "AP_WPA=1", "AP_SECFILE=EAP"}, "WPA-Enterprise"},
        {{"AP_SECMODE=WPA", "AP_WPA=2", "AP_SECFILE=EAP"}, "WPA2-Enterprise"},
        {{"AP_SECMODE=WPA", "AP_WPA=3", "AP_SECFILE=EAP"}, "WPA/WPA2-Enterprise"},
        {{"AP_SECMODE=WPA", "AP_WPA=2", "AP_SECFILE=EAP-TLS"}, "WPA2-Enterprise"},
        {{"AP_SECMODE=WPA", "AP_WPA=3"}, "WPA/WPA2"},
        {{"AP_SECMODE=WPA"}, "WPA"},
        {{}, nullptr},
        {{"AP_SECMODE=OTHER"}, nullptr},
    };
    strings lines;
    int index = 2;  // the first VAP has no suffix
    for (const auto &row : rows) {
        for (const std::string &line : row.first)
            lines.push_back(std::string(line).insert(line.find('='), "_" + std::to_string(index)));
        index++;
    }
    set_store(with({"AP_VAP_NUM=8"}, lines));
    json vaps = result_for("status")["vaps"];
    for (size_t i = 0; i < std::size(rows); i++)
        EXPECT_EQ(vaps[i + 1]["security"], rows[i].second) << testing::PrintToString(rows[i].first);
}

TEST_F(ClientStatus, ChannelThatTheDriverChoosesIsAutoForPeopleAndNullForPrograms) {
    set_store(with(GATEWAY, {"AP_PRIMARY_CH_2=0"}));
    run_command("iwconfig ath0 channel 1");
    EXPECT_NE(client("status").text.find("    0  1-8   yes      bgn             1  auto        20 MHz"),
              std::string::npos)
        << client("status").text;
    json radio = result_for("status")["radios"][0];
    EXPECT_EQ(radio["channel"], 1);
    EXPECT_EQ(radio["configured_channel"], nullptr);
    EXPECT_EQ(radio["auto_channel"], true);
}

TEST_F(ClientStatus, RadioWhoseVapsAreDownHasNoChannelOfItsOwn) {
    write_file("/run/gateway/driver", "loaded\nup ath15 0\n");
    json radios = result_for("status")["radios"];
    EXPECT_EQ(radios[0]["channel"], nullptr);
    EXPECT_EQ(radios[0]["configured_channel"], 6);
    EXPECT_EQ(radios[1]["channel"], 36);
}

TEST_F(ClientStatus, WidthIsInMegahertz) {
    for (auto [mode, extension, width] : {std::tuple{"11NGHT20", "0", 20},
                                          {"11NGHT40PLUS", "0", 40},
                                          {"11NGHT40PLUS", "1", 40},
                                          {"11ACVHT80", "0", 80}}) {
        set_store(with(GATEWAY, {std::string("AP_CHMODE_2=") + mode, std::string("AP_DISCOEXT_2=") + extension}));
        json result = result_for("status --enabled");
        EXPECT_EQ(result["radios"][0]["width"], width) << mode;
        EXPECT_EQ(result["vaps"][0]["width"], width) << mode;
    }
}

TEST_F(ClientStatus, UtilisationIsThereWhileTheCollectorIs) {
    fake_daemon collector("/var/run/radstat/ath8");
    collector.answer(std::string("\x23\0\0\0", 4));
    json radios = result_for("status")["radios"];
    EXPECT_EQ(radios[0]["utilisation"], nullptr);
    EXPECT_EQ(radios[1]["utilisation"], 35);
    EXPECT_NE(client("status").text.find(" 23  35 %\n"), std::string::npos);
}

TEST_F(ClientStatus, GetterThatFailsLeavesOneValueOut) {
    fault("ioctl:0x89fc.41 EPERM");
    fault("ifconfig silent");
    json first = result_for("status")["vaps"][0];
    EXPECT_EQ(first["stations"], nullptr);
    EXPECT_EQ(first["bssid"], nullptr) << "no address is none";
    EXPECT_EQ(first["channel"], 6);
    fault("popen ENOMEM");
    first = result_for("status")["vaps"][0];
    EXPECT_EQ(first["status"], nullptr);
    EXPECT_EQ(first["ssid"], "Home");
    EXPECT_EQ(first["security"], "WPA2-PSK");
}

TEST_F(ClientStatus, SsidOfAnyBytesIsTextAndHexadecimal) {
    set_store(with(GATEWAY, {"AP_SSID=K\xc3\xbc\xff"}));
    json first = result_for("status")["vaps"][0];
    EXPECT_EQ(first["ssid"], "K\xc3\xbc\xef\xbf\xbd");
    EXPECT_EQ(first["ssid_hex"], "4bc3bcff");
}

int count_of(const std::string &text, const std::string &piece) {
    int count = 0;
    for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
        count++;
    return count;
}

TEST_F(ClientStatus, ColoursTellWhatIsUpWhatShouldBeAndWhatIsOpen) {
    std::string text = client("--color always status").text;
    EXPECT_EQ(count_of(text, "\033[32mUp"), 3) << text;
    EXPECT_EQ(count_of(text, "\033[31mDisable"), 1) << "VAP 2 is switched on\n" << text;
    EXPECT_EQ(count_of(text, "\033[2mDisable"), 12) << text;
    EXPECT_EQ(count_of(text, "\033[33mopen"), 1) << text;
    EXPECT_EQ(client("status").text.find('\033'), std::string::npos);
}

// Every tool is a process. The channel is asked for where there is one only, and so is the address.
TEST_F(ClientStatus, RunsOneToolAVapAndTwoMoreForEachThatIsUp) {
    EXPECT_EQ(client("status").status, 0);
    strings run = commands();
    EXPECT_EQ(std::count_if(run.begin(), run.end(), [](auto &line) { return line.starts_with("iwconfig "); }), 16 + 3);
    EXPECT_EQ(std::count_if(run.begin(), run.end(), [](auto &line) { return line.starts_with("ifconfig "); }), 3);
    EXPECT_EQ(run.size(), 22u) << testing::PrintToString(run);
    EXPECT_EQ(requests().size(), 3u);
}

TEST_F(ClientStatus, ServerThatIsAwayEndsItWithoutAHalfAnswer) {
    fault("address missing");
    command_output text = client("status");
    command_output document = client("status -o json");
    fault("address off");
    EXPECT_EQ(text.status, 3);
    EXPECT_EQ(text.text, "");
    EXPECT_TRUE(text.errors.starts_with("status: ")) << text.errors;
    json answer = json::parse(document.text, nullptr, false);
    EXPECT_EQ(document.status, 3);
    EXPECT_EQ(answer["error"]["kind"], "no-answer") << document.text;
    EXPECT_FALSE(answer.contains("result"));
}

TEST_F(ClientStatus, ServerThatIsSlowInTheMiddleEndsItAtOnce) {
    fault("iwconfig slow 1.2");
    command_output output = client("-t 1 status");
    fault("iwconfig off");
    EXPECT_EQ(output.status, 4);
    EXPECT_EQ(output.text, "");
    EXPECT_EQ(output.errors.find("status: no answer from 192.168.254.254"), 0u) << output.errors;
}

TEST_F(ClientStatus, TakesNoWords) {
    EXPECT_EQ(client("status 1").status, 2);
    EXPECT_EQ(client("status --all").status, 2);
}

}  // namespace
