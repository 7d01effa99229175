// The client's command metrics against the real server, read by Prometheus' own parser.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/support/daemon.h"
#include "tests/system/gateway.h"

namespace {

using nlohmann::json;

constexpr const char METRICS_FILE[] = "/tmp/wlan.prom";

// What the parser makes of a text.
json read_metrics(const std::string &text) {
    write_file("/tmp/metrics.txt", text);
    command_output output = run_command("/usr/bin/python3 " WLAN_OPEN_METRICS_PARSER " /tmp/metrics.txt");
    EXPECT_EQ(output.status, 0) << output.errors << text;
    return json::parse(output.text, nullptr, false);
}

// Of the samples of a family: labels and number.
json samples_of(const json &families, const char *family) {
    json found = json::array();
    if (!families.contains(family))
        return found;
    for (const json &sample : families[family]["samples"])
        found.push_back({sample[1], sample[2]});
    return found;
}

class ClientMetrics : public ScenarioGateway {
protected:
    void SetUp() override {
        ScenarioGateway::SetUp();
        set_items(
            "station 1 mac=28:6A:BA:4C:10:01 ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117\n"
            "counters 1 rx_packets=2000 tx_packets=800 rx_bytes=157000 tx_bytes=4294967295\n"
            "counters 9 rx_packets=0 tx_packets=0 rx_bytes=0 tx_bytes=0\n");
        begin_with({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_2=0", "AP_RADIO_ID_9=1", "AP_RADIO_ID_16=1",
                    "AP_PRIMARY_CH_2=6", "AP_PRIMARY_CH=36", "AP_TXPWR_2=20", "AP_CHMODE_2=11NGHT20",
                    "AP_CHMODE=11ACVHT80", "AP_RADIO_ENABLED_2=1", "AP_RADIO_ENABLED=1", "AP_ENABLE=1", "AP_ENABLE_9=1",
                    "AP_SSID=Home", "AP_SECMODE=None"});
        unlink(METRICS_FILE);
    }

    json families() const {
        command_output output = client("metrics");
        EXPECT_EQ(output.status, 0) << output.errors;
        EXPECT_TRUE(output.text.ends_with("\n# EOF\n"));
        return read_metrics(output.text);
    }
};

TEST_F(ClientMetrics, CountersAreCountersInBaseUnits) {
    json all = families();
    EXPECT_EQ(all["wlan_vap_transmitted_bytes"]["type"], "counter");
    EXPECT_EQ(all["wlan_vap_transmitted_bytes"]["unit"], "bytes");
    EXPECT_EQ(all["wlan_vap_transmitted_bytes"]["samples"],
              json::parse(R"([["wlan_vap_transmitted_bytes_total",{"vap":"1"},4294967295],
                              ["wlan_vap_transmitted_bytes_total",{"vap":"9"},0],
                              ["wlan_vap_transmitted_bytes_total",{"vap":"16"},0]])"));
    const std::pair<const char *, double> counters[] = {
        {"wlan_vap_received_bytes", 157000},
        {"wlan_vap_transmitted_packets", 800},
        {"wlan_vap_received_packets", 2000},
        {"wlan_vap_transmitted_unicast_packets", 700},
        {"wlan_vap_transmitted_multicast_packets", 100},
        {"wlan_vap_receive_errors", 2},
    };
    for (auto [family, number] : counters) {
        EXPECT_EQ(all[family]["type"], "counter") << family;
        EXPECT_EQ(samples_of(all, family)[0], (json{{{"vap", "1"}}, number})) << family;
    }
}

TEST_F(ClientMetrics, ZerosAreThereAndWhatIsNotKnownIsNot) {
    json all = families();
    EXPECT_EQ(samples_of(all, "wlan_vap_stations"),
              json::parse(R"([[{"vap":"1"},1],[{"vap":"9"},0],[{"vap":"16"},0]])"));
    EXPECT_EQ(samples_of(all, "wlan_vap_enabled").size(), 16u);
    EXPECT_EQ(samples_of(all, "wlan_vap_enabled")[1], json::parse(R"([{"vap":"2"},0])"));
    // Counters of a VAP that is up but switched off: the server tells the details of none.
    EXPECT_EQ(samples_of(all, "wlan_vap_receive_errors"), json::parse(R"([[{"vap":"1"},2],[{"vap":"9"},0]])"));
    for (const char *absent : {"wlan_radio_utilisation_ratio", "wlan_radio_noise_floor_median_dbm",
                               "wlan_radio_transmitted_packets", "wlan_radio_rssi_stations"})
        EXPECT_FALSE(all.contains(absent)) << "no collector runs: " << absent;
}

TEST_F(ClientMetrics, EveryVapHasItsInfo) {
    json info = samples_of(families(), "wlan_vap_info");
    ASSERT_EQ(info.size(), 16u);
    EXPECT_EQ(info[0], json::parse(R"([{"vap":"1","radio":"0","interface":"ath0","ssid":"Home",
        "bssid":"00:03:7F:10:00:01","security":"open"},1])"));
    EXPECT_EQ(info[8][0]["radio"], "1");
    EXPECT_EQ(info[15][0]["interface"], "ath15");
}

TEST_F(ClientMetrics, SsidOfAnyBytesSurvivesTheParser) {
    strings lines = {"AP_VAP_NUM=8", "AP_ENABLE=1"};
    lines.push_back("AP_SSID=a\"b\\c{},K\xc3\xbc\xff");
    set_store(lines);
    EXPECT_EQ(samples_of(families(), "wlan_vap_info")[0][0]["ssid"], "a\"b\\c{},K\xc3\xbc\xef\xbf\xbd");
}

TEST_F(ClientMetrics, RadiosHaveTheirSettingsInBaseUnits) {
    json all = families();
    EXPECT_EQ(samples_of(all, "wlan_config_up"), json::parse("[[{},1]]"));
    EXPECT_EQ(samples_of(all, "wlan_radio_info"),
              json::parse(R"([[{"radio":"0","standard":"bgn"},1],[{"radio":"1","standard":"anac"},1]])"));
    EXPECT_EQ(samples_of(all, "wlan_radio_channel"), json::parse(R"([[{"radio":"0"},6],[{"radio":"1"},36]])"));
    EXPECT_EQ(samples_of(all, "wlan_radio_channel_width_hertz"),
              json::parse(R"([[{"radio":"0"},20000000],[{"radio":"1"},80000000]])"));
    EXPECT_EQ(samples_of(all, "wlan_radio_transmit_power"), json::parse(R"([[{"radio":"0"},20],[{"radio":"1"},0]])"));
    EXPECT_EQ(all["wlan_radio_channel_width_hertz"]["unit"], "hertz");
}

TEST_F(ClientMetrics, CollectorsNumbersAreRatiosAndDecibels) {
    fake_daemon collector("/var/run/radstat/ath8");
    std::string answer;
    for (int32_t number : {35, 5, 100, -90, -98, -95, -94, 4, -1, 7, 3})
        for (int shift = 0; shift < 32; shift += 8)
            answer += static_cast<char>(static_cast<uint32_t>(number) >> shift);
    answer.resize(192);
    collector.answer(answer);
    json all = families();
    const std::pair<const char *, double> numbers[] = {
        {"wlan_radio_utilisation_ratio", 0.35},
        {"wlan_radio_activity_ratio", 0.05},
        {"wlan_radio_busy_ratio", 1},
        {"wlan_radio_retransmission_ratio", 0.04},
        {"wlan_radio_noise_floor_minimum_dbm", -98},
        {"wlan_radio_noise_floor_maximum_dbm", -90},
        {"wlan_radio_noise_floor_median_dbm", -95},
        {"wlan_radio_noise_floor_average_dbm", -94},
        {"wlan_radio_transmitted_packets", 4294967295},
        {"wlan_radio_received_packets", 7},
    };
    for (auto [family, number] : numbers)
        EXPECT_EQ(samples_of(all, family), (json{{{{"radio", "1"}}, number}})) << family;
    json histogram = samples_of(all, "wlan_radio_rssi_stations");
    EXPECT_EQ(histogram.size(), 37u);
    EXPECT_EQ(histogram[0], json::parse(R"([{"radio":"1","rssi":"0"},3])"));
    EXPECT_EQ(histogram[36], json::parse(R"([{"radio":"1","rssi":"72"},0])"));
}

TEST_F(ClientMetrics, EveryFamilyHasHelpAndATypeThatTextfileCollectorsKnow) {
    json all = families();
    EXPECT_GT(all.size(), 15u);
    for (auto &[name, family] : all.items()) {
        EXPECT_TRUE(name.starts_with("wlan_")) << name;
        EXPECT_NE(family["help"], "") << name;
        EXPECT_TRUE(family["type"] == "gauge" || family["type"] == "counter") << name;
    }
}

TEST_F(ClientMetrics, JsonIsTheSameFactsAsATree) {
    command_output output = client("metrics -o json");
    EXPECT_EQ(output.status, 0) << output.errors;
    json result = json::parse(output.text, nullptr, false)["result"];
    EXPECT_EQ(result["up"], true);
    EXPECT_EQ(result["vaps"][0], json::parse(R"({"vap":1,"interface":"ath0","enabled":true,"status":"Up","ssid":"Home",
        "bssid":"00:03:7F:10:00:01","channel":6,"width":20,"security":"open","hidden":false,"stations":1,"radio":0,
        "up":true,"tx_bytes":4294967295,"rx_bytes":157000,"tx_packets":800,"rx_packets":2000,"rx_errors":2,
        "tx_unicast":700,"tx_multicast":100})"));
    EXPECT_EQ(result["vaps"][1]["tx_bytes"], nullptr);
    EXPECT_EQ(result["radios"][0], json::parse(R"({"radio":0,"first_vap":1,"last_vap":8,"enabled":true,"standard":"bgn",
        "channel":6,"configured_channel":6,"auto_channel":false,"width":20,"transmit_power":20,"utilisation":null,
        "activity":null,"busy":null,"retransmission":null,"tx_packets":null,"rx_packets":null,"noise_floor":null,
        "rssi_histogram":null})"));
}

// Every tool is a process, and most VAPs are down most of the time.
TEST_F(ClientMetrics, RunsOneToolAVapAndFewMoreForEachThatIsUp) {
    EXPECT_EQ(client("metrics").status, 0);
    strings run = commands();
    auto count = [&](const char *tool) {
        return std::count_if(run.begin(), run.end(), [&](const std::string &line) { return line.starts_with(tool); });
    };
    EXPECT_EQ(count("iwconfig "), 16 + 3);
    EXPECT_EQ(count("ifconfig "), 3 + 3);
    EXPECT_EQ(count("wlanconfig "), 3);
    EXPECT_EQ(count("apstats "), 2) << "VAP 16 is switched off";
    EXPECT_EQ(run.size(), 30u) << testing::PrintToString(run);
}

TEST_F(ClientMetrics, FileGetsTheTextAndIsReadableForAll) {
    command_output output = client(std::string("metrics --file ") + METRICS_FILE);
    EXPECT_EQ(output.status, 0) << output.errors;
    EXPECT_EQ(output.text, "");
    EXPECT_EQ(samples_of(read_metrics(read_file(METRICS_FILE)), "wlan_config_up"), json::parse("[[{},1]]"));
    struct stat status;
    ASSERT_EQ(stat(METRICS_FILE, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644u);
    EXPECT_EQ(run_command("ls -A /tmp | grep prom").text, "wlan.prom\n");
}

TEST_F(ClientMetrics, FileThatCannotBeWrittenIsALocalError) {
    command_output output = client("metrics --file /nowhere/wlan.prom");
    EXPECT_EQ(output.status, 7);
    EXPECT_EQ(output.errors, "metrics: cannot write /nowhere/wlan.prom: No such file or directory\n");
}

TEST_F(ClientMetrics, FileThatIsAPipeIsWrittenToAndStaysOne) {
    ASSERT_EQ(mkfifo("/tmp/pipe", 0600), 0);
    command_output output =
        run_command("timeout 10 cat /tmp/pipe & /usr/sbin/vlk_rpc_wlan_config_client metrics --file /tmp/pipe; wait");
    EXPECT_TRUE(output.text.ends_with("# EOF\n")) << output.text;
    struct stat found = {};
    ASSERT_EQ(lstat("/tmp/pipe", &found), 0);
    EXPECT_TRUE(S_ISFIFO(found.st_mode));
    unlink("/tmp/pipe");
}

TEST_F(ClientMetrics, ServerThatIsAwayIsAMetricToo) {
    fault("address missing");
    command_output text = client("metrics");
    command_output document = client("metrics -o json");
    command_output file = client(std::string("metrics --file ") + METRICS_FILE);
    fault("address off");
    const char expected[] =
        "# HELP wlan_config_up Whether the Wi-Fi configuration server answered.\n"
        "# TYPE wlan_config_up gauge\n"
        "wlan_config_up 0\n"
        "# EOF\n";
    EXPECT_EQ(text.status, 3);
    EXPECT_EQ(text.text, expected);
    EXPECT_TRUE(text.errors.starts_with("metrics: ")) << text.errors;
    EXPECT_EQ(file.status, 3);
    EXPECT_EQ(file.text, "");
    EXPECT_EQ(read_file(METRICS_FILE), expected);
    json answer = json::parse(document.text, nullptr, false);
    EXPECT_EQ(document.status, 3);
    EXPECT_EQ(answer["result"], json::parse(R"({"up":false})")) << document.text;
    EXPECT_EQ(answer["error"]["kind"], "no-answer");
    EXPECT_EQ(samples_of(read_metrics(text.text), "wlan_config_up"), json::parse("[[{},0]]"));
}

TEST_F(ClientMetrics, ServerThatIsSlowInTheMiddleIsNoGatewayWithHalfItsVaps) {
    fault("ifconfig slow 1.2");
    command_output output = client("-t 1 metrics");
    fault("ifconfig off");
    EXPECT_EQ(output.status, 4);
    EXPECT_NE(output.text.find("\nwlan_config_up 0\n# EOF\n"), std::string::npos) << output.text;
    EXPECT_EQ(output.text.find("wlan_vap"), std::string::npos);
}

}  // namespace
