// Finding and understanding an operation: list and describe, for people and for programs.
#include "client/description.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "client/operation_text.h"
#include "client/record_fields.h"
#include "tests/support/client_runs.h"

namespace {

using nlohmann::json;

json answer_to(const std::vector<std::string> &words) {
    std::vector<std::string> all = {"-o", "json"};
    all.insert(all.end(), words.begin(), words.end());
    return json::parse(run(all).out, nullptr, false);
}

std::string description_of(const std::string &operation) {
    return run({"describe", operation}).out;
}

TEST(ClientDescribe, SetterHasMeaningsExampleAndNames) {
    EXPECT_EQ(description_of("setBssWeight").substr(0, description_of("setBssWeight").find("\nsubject")),
              "setBssWeight: set the airtime weight of the BSS\n"
              "\n"
              "usage: vlk_rpc_wlan_config_client setBssWeight <index> <weight>\n"
              "  <index>       VAP\n"
              "                1 to 16; any other is taken as it is\n"
              "  <weight>      airtime weight, in %\n"
              "                0 to 100; any other is taken as it is\n"
              "\n"
              "result     success or failure\n"
              "\n"
              "example\n"
              "$ vlk_rpc_wlan_config_client setBssWeight 1 40\n"
              "ok\n");
}

TEST(ClientDescribe, GetterHasItsOutputsWithUnits) {
    std::string text = description_of("getChannelNoiseFloor");
    EXPECT_NE(text.find("\nresult\n"
                        "  minimum       lowest; -1 without a collector, in dBm (integer)\n"
                        "  maximum       highest; -1 without a collector, in dBm (integer)\n"
                        "  median        median; -1 without a collector, in dBm (integer)\n"
                        "  average       average; -1 without a collector, in dBm (integer)\n"
                        "\n"
                        "example\n"
                        "$ vlk_rpc_wlan_config_client getChannelNoiseFloor 1\n"
                        "minimum  -98\n"
                        "maximum  -90\n"
                        "median   -95\n"
                        "average  -94\n"),
              std::string::npos)
        << text;
}

TEST(ClientDescribe, RangeOfAnOutputStandsBehindIt) {
    EXPECT_NE(description_of("getGuardInterval").find("0 for short, 1 for long (integer, 0 or 1)\n"),
              std::string::npos);
    EXPECT_NE(description_of("getBeaconType").find("security family (text, None, Basic, WPA, 11i, WPAand11i)\n"),
              std::string::npos);
}

TEST(ClientDescribe, NumbersOfTheSecondBlockAreHexadecimal) {
    for (auto [number, shown] :
         {std::pair{uint32_t{1}, "1"}, {0xffffff, "16777215"}, {0x1000000, "0x1000000"}, {0x100000c, "0x100000C"}})
        EXPECT_EQ(written([number = number](FILE *out) { print_procedure_number(out, number); }), shown);
}

TEST(ClientDescribe, TruthIsToldWithoutItsRange) {
    EXPECT_NE(description_of("getWmmEnable").find("  enabled       1 for on, 0 for off (0 or 1)\n"), std::string::npos);
}

TEST(ClientDescribe, ProgramsHaveTheRangeOfAnOutputAsPeopleDo) {
    EXPECT_EQ(answer_to({"describe", "getBeaconType"})["result"]["result"]["values"][0]["range"],
              "None, Basic, WPA, 11i, WPAand11i");
    EXPECT_EQ(answer_to({"describe", "getGuardInterval"})["result"]["result"]["values"][0]["range"], "0 or 1");
    EXPECT_EQ(answer_to({"describe", "getSsid"})["result"]["result"]["values"][0]["range"], nullptr);
}

TEST(ClientDescribe, RecordHasTheFieldsThatPeopleReadAndTheNamesOfTheOthers) {
    std::string text = description_of("getApScanResult");
    EXPECT_NE(text.find("\nresult\n"
                        "  table         a row for each (scan_table, 8196 bytes)\n"
                        "    entries             list, as many as num_entries says, 64 at most\n"
                        "      bssid             MAC\n"
                        "      ssid              text\n"
                        "      rssi              integer, in dBm\n"
                        "      auth_mode         text\n"
                        "      wireless_mode     text\n"
                        "      and for programs scan_octets_1, scan_byte_1, scan_octets_2, scan_byte_2, scan_octets_3, "
                        "scan_flag, scan_byte_3, scan_text_1, scan_text_2, scan_value, scan_byte_4\n"
                        "    and for programs num_entries\n"),
              std::string::npos)
        << text;
}

TEST(ClientDescribe, LastLinesAreTheNamesAndWhatItTouches) {
    EXPECT_TRUE(
        description_of("setSsid").ends_with("\n"
                                            "subject    VAP identity and basic settings\n"
                                            "procedure  wlan_set_ssid, number 22\n"
                                            "handler    wlan_set_ssid_1_svc in handlers/regular.cpp\n"
                                            "back end   wlan_setSSID in params/vap.cpp\n"
                                            "\n"
                                            "On a gateway, `setSsid 1 word` touches\n"
                                            "writes     AP_SSID\n"
                                            "runs       cfg -a AP_SSID=\"word\"\n"))
        << description_of("setSsid");
}

TEST(ClientDescribe, ExampleThatFailsSaysWhy) {
    EXPECT_NE(description_of("getDot11uEnable")
                  .find("$ vlk_rpc_wlan_config_client getDot11uEnable 1\nfails: it has not been implemented\n"),
              std::string::npos);
}

TEST(ClientDescribe, EveryOperationIsDescribedForPeople) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row *row = &procedure_rows[i];
        run_outcome outcome = run({"describe", row->name});
        EXPECT_EQ(outcome.status, 0) << row->name;
        EXPECT_TRUE(outcome.out.starts_with(name_of(row) + ": " + row->summary + "\n")) << row->name;
        for (const char *piece : {"\nusage: ", "\nresult", "\nexample\n$ ", "\nsubject ", "\nprocedure "})
            EXPECT_NE(outcome.out.find(piece), std::string::npos) << row->name << piece;
    }
}

TEST(ClientDescribe, ObjectForProgramsHasTheSameMembersForEveryOperation) {
    const std::set<std::string> members = {"operation", "summary", "usage",   "subject",  "procedure", "number",
                                           "arguments", "result",  "handler", "back_end", "example",   "touches"};
    const std::set<std::string> of_argument = {"name",    "kind",    "meaning", "unit",  "least",  "most",
                                               "outside", "accepts", "used",    "shell", "example"};
    const std::set<std::string> of_value = {"name", "kind", "meaning", "unit", "least", "most", "range", "count"};
    auto names = [](const json &object) {
        std::set<std::string> keys;
        for (const auto &[key, member] : object.items())
            keys.insert(key);
        return keys;
    };
    json operations = answer_to({"list"})["result"]["operations"];
    ASSERT_EQ(operations.size(), procedure_row_count);
    for (const json &one : operations) {
        EXPECT_EQ(names(one), members) << one["operation"];
        EXPECT_EQ(names(one["result"]), (std::set<std::string>{"kind", "values", "record", "bytes", "fields"}));
        EXPECT_EQ(names(one["example"]), (std::set<std::string>{"command", "words", "status", "result"}));
        for (const json &argument : one["arguments"])
            EXPECT_EQ(names(argument), of_argument) << one["operation"];
        for (const json &value : one["result"]["values"])
            EXPECT_EQ(names(value), of_value) << one["operation"];
    }
}

TEST(ClientDescribe, ObjectForProgramsIsWhole) {
    EXPECT_EQ(answer_to({"describe", "setChannelBw"}), json::parse(R"({"command":"describe","result":{
        "operation":"setChannelBw","summary":"set the channel width, 0 for 20 MHz to 3 for 80 MHz",
        "usage":"setChannelBw <index> <width>","subject":"radio tuning and regulatory settings",
        "procedure":"wlan_set_channel_bw","number":147,
        "arguments":[
          {"name":"index","kind":"vap","meaning":"VAP","unit":null,"least":1,"most":16,"outside":"refused",
           "accepts":"1 to 16; below 0 fails","used":true,"shell":null,"example":"1"},
          {"name":"width","kind":"integer","meaning":"0 for 20 MHz, 1 and 2 for 40 MHz (2 with the extension channel found out), 3 for 80 MHz; the widest where the channel is narrower",
           "unit":null,"least":0,"most":3,"outside":"counts-as","accepts":"0 to 3; any other counts as 3","used":true,
           "shell":null,"example":"0"}],
        "result":{"kind":"code","values":[],"record":null,"bytes":null,"fields":[]},
        "handler":{"function":"wlan_set_channel_bw_1_svc","file":"handlers/regular.cpp"},
        "back_end":{"function":"wlan_setChannelBW","file":"params/tuning.cpp"},
        "example":{"command":"vlk_rpc_wlan_config_client setChannelBw 1 0","words":["setChannelBw","1","0"],
                   "status":0,"result":{}},
        "touches":{"sample":["1","1"],"reads":["AP_CHMODE_2","AP_PRIMARY_CH_2","AP_RADIO_ID","PUREG_2","PUREN_2"],
                   "writes":["AP_CHMODE_2","AP_DISCOEXT_2"],
                   "commands":["cfg -a AP_DISCOEXT_2=\"0\"","cfg -a AP_CHMODE_2=\"11NGHT40\""],
                   "files":[],"requests":["ath0 0x8be7"],"datagrams":[],"messages":[]}}})",
                                                                   nullptr, false));
}

TEST(ClientDescribe, ResultsOfProgramsHaveKindsCountsAndFields) {
    json result = answer_to({"describe", "getRssiTable"})["result"]["result"];
    EXPECT_EQ(result["kind"], "numbers");
    EXPECT_EQ(result["values"][0]["count"], 37);
    EXPECT_EQ(result["values"][0]["unit"], "stations");
    EXPECT_EQ(answer_to({"describe", "getRssiTable"})["result"]["example"]["result"], nullptr);
    EXPECT_EQ(answer_to({"describe", "getRadioTxPackets"})["result"]["example"]["result"], (json{{"packets", 52000}}));
    result = answer_to({"describe", "getAssocDevicesTable"})["result"]["result"];
    EXPECT_EQ(result["kind"], "record");
    EXPECT_EQ(result["record"], "wlan_assoc_devices_table");
    EXPECT_EQ(result["bytes"], 7556);
    EXPECT_EQ(result["fields"][1]["name"], "Devices");
    EXPECT_EQ(result["fields"][1]["count"], 32);
    EXPECT_EQ(result["fields"][1]["fields"][4]["unit"], "s");
    EXPECT_EQ(result["fields"][1]["fields"][3]["detail"], true);
    EXPECT_EQ(answer_to({"describe", "getSsid"})["result"]["result"]["kind"], "text");
    result = answer_to({"describe", "getBsBss5gCapableTable"})["result"]["result"];
    EXPECT_EQ(result["values"][0]["name"], "count");
    EXPECT_EQ(result["values"][1]["kind"], "record");
    EXPECT_EQ(answer_to({"describe", "getAdvairtimeWaitThreshold"})["result"]["back_end"], nullptr);
    EXPECT_EQ(answer_to({"describe", "getDot11uEnable"})["result"]["example"]["status"], 1);
}

TEST(ClientDescribe, FieldsOfProgramsAreAllButPadding) {
    json fields = answer_to({"describe", "getSoftblockBlackList"})["result"]["result"]["fields"];
    std::string names;
    for (const json &field : fields[2]["fields"])
        names += field["name"].get<std::string>() + " ";
    EXPECT_EQ(names, "mac timestamp ");
}

TEST(ClientDescribe, UnknownOperationIsNotFoundWithSuggestions) {
    run_outcome outcome = run({"describe", "getSid"});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_NE(outcome.errors.find("Did you mean getSsid"), std::string::npos) << outcome.errors;
}

TEST(ClientList, SubjectIsAWordToo) {
    std::string text = run({"list", "MAC access control list"}).out;
    EXPECT_TRUE(text.starts_with("MAC access control list\n  setMacAddressControlClear ")) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 6) << text;
}

TEST(ClientList, HeadingsAreBoldWithColoursAndNothingElseChanges) {
    std::string plain = run({"list"}).out, coloured = run({"--color", "always", "list"}).out;
    EXPECT_TRUE(coloured.starts_with("\033[1mdriver lifecycle\033[0m\n")) << coloured.substr(0, 80);
    EXPECT_EQ(plain.find('\033'), std::string::npos);
    std::string stripped;
    std::istringstream lines(coloured);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("\033[1m")) {
            line = line.substr(4, line.size() - 8);
        }
        stripped += line + "\n";
    }
    EXPECT_EQ(stripped, plain);
}

TEST(ClientList, DescriptionIsBoldInItsHeadingsOnlyWithColours) {
    std::string coloured = run({"--color", "always", "describe", "getSsid"}).out;
    for (const char *heading : {"\033[1mgetSsid\033[0m: SSID", "\n\033[1mresult\033[0m\n", "\n\033[1mexample\033[0m\n"})
        EXPECT_NE(coloured.find(heading), std::string::npos) << heading;
    EXPECT_EQ(description_of("getSsid").find('\033'), std::string::npos);
}

TEST(ClientList, NoSummaryIsCut) {
    std::string text = run({"list"}).out;
    for (size_t i = 0; i < procedure_row_count; i++)
        EXPECT_NE(text.find(std::string("  ") + procedure_rows[i].summary + "\n"), std::string::npos)
            << procedure_rows[i].name;
}

TEST(ClientList, NothingFoundIsAnErrorForProgramsToo) {
    json answer = answer_to({"list", "xylophone"});
    EXPECT_EQ(answer["command"], "list");
    EXPECT_EQ(answer["error"]["kind"], "not-found");
    EXPECT_EQ(answer["error"]["status"], 6);
}

TEST(ClientList, FilteredListOfProgramsHasTheSameOperationsAsThatOfPeople) {
    std::string text = run({"list", "wmm"}).out;
    json operations = answer_to({"list", "wmm"})["result"]["operations"];
    size_t lines = 0;
    for (size_t at = 0; (at = text.find("\n  ", at)) != std::string::npos; at++)
        lines++;
    EXPECT_EQ(operations.size(), lines);
    for (const json &one : operations)
        EXPECT_NE(text.find("  " + one["operation"].get<std::string>() + " "), std::string::npos);
}

}  // namespace
