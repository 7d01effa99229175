// The client's command stations against the real server: one VAP, several, all; order, numbers, and lists that lie.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/system/gateway.h"

namespace {

using nlohmann::json;

json stations_for(const std::string &words) {
    command_output output = client(words + " -o json");
    EXPECT_EQ(output.status, 0) << output.errors;
    json answer = json::parse(output.text, nullptr, false);
    EXPECT_FALSE(answer.is_discarded()) << output.text;
    return answer["result"]["stations"];
}

strings members_of(const json &stations, const char *name) {
    strings found;
    for (const json &station : stations)
        found.push_back(station[name].is_string() ? station[name].get<std::string>() : station[name].dump());
    return found;
}

class ClientStations : public ScenarioGateway {
protected:
    void SetUp() override {
        ScenarioGateway::SetUp();
        set_items(
            "station 1 mac=F0:D1:A9:27:33:02 ip=192.168.0.21 rssi=27 tx_rate=65 rx_rate=52 packets=900\n"
            "station 1 mac=28:6A:BA:4C:10:01 ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117 packets=2100 "
            "capabilities=QoS/HT\n"
            "station 16 mac=40:98:AD:53:88:07 ip=10.0.0.1 rssi=-3 tx_rate=0 rx_rate=351 packets=4294967295\n");
        set_driver(100);
    }
};

TEST_F(ClientStations, OfAllVapsAreOneTableInTheOrderOfVapsAndAddresses) {
    EXPECT_EQ(client("stations").text,
              "VAP  MAC                IP            CAPABILITIES  CONNECTED_TIME  TX_PACKETS  TX_RATE  MAX_RATE\n"
              "  1  28:6A:BA:4C:10:01  192.168.0.20  QoS/HT                   100        2100      130       130\n"
              "  1  F0:D1:A9:27:33:02  192.168.0.21                           100         900       65        65\n"
              " 16  40:98:AD:53:88:07  10.0.0.1                               100  4294967295        0       351\n");
}

TEST_F(ClientStations, OfOneVapAreItsOwn) {
    EXPECT_EQ(client("stations 16").text,
              "VAP  MAC                IP        CAPABILITIES  CONNECTED_TIME  TX_PACKETS  TX_RATE  MAX_RATE\n"
              " 16  40:98:AD:53:88:07  10.0.0.1                           100  4294967295        0       351\n");
}

TEST_F(ClientStations, OfSeveralVapsComeInTheOrderInWhichTheyAreAskedFor) {
    EXPECT_EQ(members_of(stations_for("stations 16 1"), "vap"), (strings{"16", "1", "1"}));
}

TEST_F(ClientStations, ProgramsGetEveryFieldOfTheRecord) {
    json station = stations_for("stations 1")[0];
    EXPECT_GE(station["connected_time"], 100);
    station.erase("connected_time");
    EXPECT_EQ(station, json::parse(R"({"vap":1,"mac":"28:6A:BA:4C:10:01","ip":"192.168.0.20","capabilities":"QoS/HT",
        "field_4":"11NGHT20","state":1,"tx_packets":2100,"tx_rate":130,"max_rate":130,"field_10":42,
        "mc_tx_packets":210,"uc_tx_packets":1890,"field_13":2,"field_14":117,"field_15":0,"field_16":0,"interface":0,
        "field_18":-91,"reserved":0,"ssid":"Home"})"));
}

TEST_F(ClientStations, NobodyIsASuccess) {
    command_output nobody = client("stations 9");
    EXPECT_EQ(nobody.status, 0) << nobody.errors;
    EXPECT_EQ(nobody.text, "no stations\n");
    EXPECT_EQ(stations_for("stations 9"), json::array());
    set_items("");
    EXPECT_EQ(client("stations").text, "no stations\n");
}

TEST_F(ClientStations, OfAVapThatIsNotUpAreAFailureWhenItIsAskedFor) {
    command_output down = client("stations 1 2");
    EXPECT_EQ(down.status, 1);
    EXPECT_EQ(down.text, "");
    EXPECT_EQ(down.errors, "stations: the server has no list of the stations of VAP 2: is it up?\n");
    EXPECT_EQ(client("stations").status, 0);
}

TEST_F(ClientStations, VapsWithoutStationsAreCountedOnly) {
    EXPECT_EQ(client("stations").status, 0);
    strings made = requests();
    auto of_vap_9 = [](const std::string &line) { return line.starts_with("ioctl ath8 "); };
    EXPECT_EQ(std::count_if(made.begin(), made.end(), of_vap_9), 1) << testing::PrintToString(made);
    EXPECT_EQ(commands(), strings{});
}

std::string crowd(int count) {
    std::string items;
    for (int i = 0; i < count; i++) {
        char item[128];
        snprintf(item, sizeof item, "station 1 mac=02:00:00:00:00:%02X ip=10.0.0.%d rssi=1 tx_rate=1 rx_rate=1\n",
                 count - i, i + 1);
        items += item;
    }
    return items;
}

// One answer of the server carries 32 at most.
TEST_F(ClientStations, MoreThanOneAnswerCarriesAreAllThereInOneOrder) {
    for (int count : {32, 33, 127}) {
        set_items(crowd(count));
        strings found = members_of(stations_for("stations 1"), "mac");
        EXPECT_EQ(found.size(), static_cast<size_t>(count));
        EXPECT_TRUE(std::is_sorted(found.begin(), found.end())) << count;
        EXPECT_EQ(std::set(found.begin(), found.end()).size(), static_cast<size_t>(count));
    }
}

TEST_F(ClientStations, TableThatIsNotFullIsNotAskedForMore) {
    set_items(crowd(31));
    EXPECT_EQ(stations_for("stations 1").size(), 31u);
    EXPECT_EQ(requests().size(), 2u) << "the server itself counts before it lists";
}

TEST_F(ClientStations, DriverThatLiesAboutItsNumberGetsNoFurtherThanItCounts) {
    set_items(crowd(40));
    fault("station_count 4294967295");
    EXPECT_EQ(stations_for("stations 1").size(), 127u);
    fault("station_count 0");
    EXPECT_EQ(stations_for("stations 1").size(), 0u);
}

TEST_F(ClientStations, TextsWithoutAnEndStayInTheirFields) {
    fault("texts unterminated");
    json station = stations_for("stations 1")[0];
    EXPECT_EQ(station["mac"].get<std::string>().size(), 18u);
    EXPECT_EQ(station["ip"].get<std::string>().size(), 64u);
    EXPECT_EQ(station["ssid"].get<std::string>().size(), 32u);
}

TEST_F(ClientStations, WordsThatAreNoVapAreUsageAndNothingIsSent) {
    for (const char *words : {"stations 0", "stations 17", "stations 1 x", "stations 1 -- -1"}) {
        command_output output = client(words);
        EXPECT_EQ(output.status, 2) << words;
        EXPECT_EQ(output.text, "");
    }
    EXPECT_EQ(client("stations 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 1").status, 2);
    EXPECT_EQ(requests(), strings{});
}

TEST_F(ClientStations, ServerThatIsAwayIsNoGatewayWithoutStations) {
    fault("address missing");
    command_output all = client("stations");
    command_output one = client("stations 1");
    fault("address off");
    EXPECT_EQ(all.status, 3);
    EXPECT_EQ(all.text, "");
    EXPECT_EQ(one.status, 3);
    EXPECT_EQ(one.text, "");
}

}  // namespace
