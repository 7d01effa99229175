// The client's command radio against the real server: the numbers of a collector, its histogram, and none at all.
#include <gtest/gtest.h>
#include <limits.h>

#include <nlohmann/json.hpp>

#include "tests/support/daemon.h"
#include "tests/system/gateway.h"

namespace {

using nlohmann::json;

// What a collector measures, as it answers: utilisation, activity, busy, noise (maximum, minimum, median, average),
// retries, packets sent and received, 37 entries.
using measurement = std::vector<int32_t>;

std::string answer_of(const measurement &numbers) {
    std::string answer;
    for (int32_t number : numbers)
        for (int shift = 0; shift < 32; shift += 8)
            answer += static_cast<char>(static_cast<uint32_t>(number) >> shift);
    answer.resize(192);
    return answer;
}

measurement usual() {
    measurement numbers = {35, 12, 41, -90, -98, -95, -94, 4, 3416, 1206};
    numbers.resize(47);
    return numbers;
}

constexpr size_t HISTOGRAM = 10;  // where its entries begin

class ClientRadio : public ScenarioGateway {
protected:
    void SetUp() override {
        ScenarioGateway::SetUp();
        client("setRadStatEnable 1 0 0 0");
        client("setRadStatEnable 9 0 0 0");
    }

    command_output text_for(const measurement &numbers) const {
        fake_daemon collector("/var/run/radstat/ath0");
        collector.answer(answer_of(numbers));
        return client("radio 1");
    }

    json result_for(const measurement &numbers) const {
        fake_daemon collector("/var/run/radstat/ath0");
        collector.answer(answer_of(numbers));
        command_output output = client("radio 1 -o json");
        EXPECT_EQ(output.status, 0) << output.errors;
        return json::parse(output.text, nullptr, false)["result"];
    }
};

TEST_F(ClientRadio, PeopleSeeTheNumbersWithTheirUnitsAndTheHistogram) {
    measurement numbers = usual();
    numbers[HISTOGRAM + 13] = 1;
    numbers[HISTOGRAM + 15] = 4;
    numbers[HISTOGRAM + 16] = 3;
    EXPECT_EQ(text_for(numbers).text,
              "vap             1\n"
              "utilisation     35 %\n"
              "activity        12 %\n"
              "busy            41 %\n"
              "retransmission  4 %\n"
              "tx_packets      3416\n"
              "rx_packets      1206\n"
              "\n"
              "noise_floor\n"
              "minimum  -98 dBm\n"
              "maximum  -90 dBm\n"
              "median   -95 dBm\n"
              "average  -94 dBm\n"
              "\n"
              "stations by rssi\n"
              "RSSI   STATIONS  BAR\n"
              "26-27         1  ##########\n"
              "28-29         0  \n"
              "30-31         4  ########################################\n"
              "32-33         3  ##############################\n");
}

TEST_F(ClientRadio, HistogramReachesToItsEndsWhenSomebodyIsThere) {
    measurement numbers = usual();
    numbers[HISTOGRAM] = 1;
    numbers[HISTOGRAM + 36] = 1;
    std::string text = text_for(numbers).text;
    EXPECT_NE(text.find("\n0-1           1  ####"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("\n72-73         1  ########################################\n")) << text;
}

TEST_F(ClientRadio, HistogramOfNobodyIsOneLine) {
    command_output output = text_for(usual());
    EXPECT_EQ(output.status, 0);
    EXPECT_TRUE(output.text.ends_with("\nstations by rssi  none\n")) << output.text;
}

TEST_F(ClientRadio, ProgramsGetEveryNumberAndAllEntries) {
    measurement numbers = usual();
    for (int i = 0; i < 37; i++)
        numbers[HISTOGRAM + static_cast<size_t>(i)] = 1000 + i;
    json result = result_for(numbers);
    json histogram = result["rssi_histogram"];
    ASSERT_EQ(histogram.size(), 37u);
    for (int i = 0; i < 37; i++)
        EXPECT_EQ(histogram[i], (json{{"rssi", 2 * i}, {"stations", 1000 + i}}));
    result.erase("rssi_histogram");
    EXPECT_EQ(result, json::parse(R"({"vap":1,"utilisation":35,"activity":12,"busy":41,"retransmission":4,
        "tx_packets":3416,"rx_packets":1206,"noise_floor":{"minimum":-98,"maximum":-90,"median":-95,"average":-94}})"));
}

TEST_F(ClientRadio, PacketsBeyondThirtyOneBitsAreNotNegative) {
    measurement numbers = usual();
    numbers[8] = -1;
    numbers[9] = INT_MIN;
    json result = result_for(numbers);
    EXPECT_EQ(result["tx_packets"], 4294967295u);
    EXPECT_EQ(result["rx_packets"], 2147483648u);
}

TEST_F(ClientRadio, SingleNumberThatIsNotMeasuredIsNull) {
    measurement numbers = usual();
    numbers[1] = -1;
    numbers[4] = -1;
    numbers[7] = -1;
    numbers[HISTOGRAM + 2] = -1;
    json result = result_for(numbers);
    EXPECT_EQ(result["utilisation"], 35);
    EXPECT_EQ(result["activity"], nullptr);
    EXPECT_EQ(result["retransmission"], nullptr);
    EXPECT_EQ(result["noise_floor"]["minimum"], nullptr);
    EXPECT_EQ(result["noise_floor"]["maximum"], -90);
    EXPECT_EQ(result["rssi_histogram"][2]["stations"], nullptr);
    EXPECT_EQ(result["rssi_histogram"][3]["stations"], 0);
}

TEST_F(ClientRadio, NumbersOfAnySizeAreShown) {
    measurement numbers(47, INT_MAX);
    command_output output = text_for(numbers);
    EXPECT_EQ(output.status, 0);
    EXPECT_NE(output.text.find("utilisation     2147483647 %\n"), std::string::npos) << output.text;
    EXPECT_EQ(text_for(measurement(47, INT_MIN)).status, 0);
}

TEST_F(ClientRadio, WithoutACollectorOneLineTellsWhatStartsIt) {
    command_output output = client("radio 1");
    EXPECT_EQ(output.status, 6);
    EXPECT_EQ(output.text, "");
    EXPECT_EQ(
        output.errors,
        "radio: no statistics collector has measured anything for VAP 1; this starts one: setRadStatEnable 1 1 30 "
        "1800\n");
    json answer = json::parse(client("radio 9 -o json").text, nullptr, false);
    EXPECT_EQ(answer["error"]["status"], 6);
    EXPECT_EQ(answer["error"]["kind"], "not-found");
}

TEST_F(ClientRadio, WhatTheLineTellsStartsIt) {
    EXPECT_EQ(client("radio 1").status, 6);
    EXPECT_EQ(client("setRadStatEnable 1 1 30 1800").status, 0);
    command_output output = {};
    for (int attempt = 0; attempt < 100 && output.text.empty(); attempt++)
        output = client("radio 1");
    EXPECT_EQ(output.status, 0) << output.errors;
    client("setRadStatEnable 1 0 0 0");
}

TEST_F(ClientRadio, CollectorThatIsNotThereIsAskedOnce) {
    fake_daemon collector("/var/run/radstat/ath0");
    collector.answer(answer_of(measurement(47, -1)));
    EXPECT_EQ(client("radio 1").status, 6);
    EXPECT_EQ(collector.requests().size(), 1u);
}

TEST_F(ClientRadio, TerminalWithUtf8GetsBlocks) {
    measurement numbers = usual();
    numbers[HISTOGRAM] = 2;
    numbers[HISTOGRAM + 1] = 1;
    fake_daemon collector("/var/run/radstat/ath0");
    collector.answer(answer_of(numbers));
    std::string half, whole;
    for (int i = 0; i < 40; i++)
        (i < 20 ? half : whole) += "█";
    whole += half;
    std::string text =
        run_command("LC_ALL=C.UTF-8 script -qec 'vlk_rpc_wlan_config_client --color never radio 1' /dev/null").text;
    EXPECT_NE(text.find("0-1          2  " + whole + "\r\n2-3          1  " + half + "\r\n"), std::string::npos)
        << text;
}

TEST_F(ClientRadio, WordThatIsNoVapIsUsage) {
    EXPECT_EQ(client("radio 17").status, 2);
    EXPECT_EQ(client("radio").status, 2);
    EXPECT_EQ(client("radio 1 9").status, 2);
}

TEST_F(ClientRadio, ServerThatIsAwayIsNoCollectorThatIs) {
    fault("address missing");
    command_output output = client("radio 1");
    fault("address off");
    EXPECT_EQ(output.status, 3);
    EXPECT_EQ(output.text, "");
}

}  // namespace
