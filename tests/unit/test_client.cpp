// The client without a gateway: names, arguments, results, help, and calls to a server and portmapper made up here.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "client/arguments.h"
#include "client/call.h"
#include "client/command_table.h"
#include "client/commands.h"
#include "client/dump.h"
#include "client/help.h"
#include "client/names.h"
#include "client/reference.h"
#include "client/render.h"
#include "client/results.h"
#include "server/wire.h"
#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

using bytes = std::string;

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), tolower);
    return text;
}

std::string upper_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), toupper);
    return text;
}

std::string without_underscores(std::string text) {
    std::erase(text, '_');
    return text;
}

std::string with_hyphens(std::string text) {
    std::replace(text.begin(), text.end(), '_', '-');
    return text;
}

// Names.

TEST(ClientNames, OperationIsTheProcedureInCamelCase) {
    EXPECT_EQ(name_of(row_named("wlan_check_thread_queue")), "checkThreadQueue");
    EXPECT_EQ(name_of(row_named("wlan_get_ssid")), "getSsid");
    EXPECT_EQ(name_of(row_named("wlan_load")), "load");
    EXPECT_EQ(name_of(row_named("wlan_query_wlan_info")), "queryWlanInfo");
    EXPECT_EQ(name_of(row_named("wlan_get_bs_5g_rssi_good_limit_threshold")), "getBs5gRssiGoodLimitThreshold");
}

TEST(ClientNames, EveryOperationIsFoundInEverySpelling) {
    ASSERT_EQ(procedure_row_count, 340u);
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row *row = &procedure_rows[i];
        std::string full = row->name, snake = full.substr(5), camel = name_of(row);
        for (const std::string &word :
             {full, snake, camel, upper_case(full), upper_case(snake), upper_case(camel), lower_case(camel),
              with_hyphens(full), with_hyphens(snake), without_underscores(full), "wlan" + camel, "WLAN-" + camel})
            EXPECT_EQ(find_operation(word.c_str()), row) << word;
    }
}

TEST(ClientNames, NoTwoOperationsHaveTheSameName) {
    std::set<std::string> keys;
    for (size_t i = 0; i < procedure_row_count; i++)
        keys.insert(lower_case(name_of(&procedure_rows[i])));
    EXPECT_EQ(keys.size(), procedure_row_count);
}

// Commands that carry out the operation of their name; the others have names that no operation has.
const std::set<std::string> OPERATIONS_AS_COMMANDS = {"load", "init", "reset"};

TEST(ClientNames, NoOperationHidesBehindACommand) {
    std::set<std::string> shared;
    for (size_t i = 0; i < command_row_count; i++)
        if (find_operation(command_rows[i].name))
            shared.insert(command_rows[i].name);
    EXPECT_EQ(shared, OPERATIONS_AS_COMMANDS);
    for (size_t i = 0; i < procedure_row_count; i++)
        EXPECT_EQ(find_command(procedure_rows[i].name), nullptr) << procedure_rows[i].name;
}

TEST(ClientNames, WordsThatAreNoOperationAreNotFound) {
    for (const char *word : {"", "_", "wlan", "wlan_", "getSsi", "getSsidd", "get ssid", "getSsid "})
        EXPECT_EQ(find_operation(word), nullptr) << word;
    EXPECT_EQ(find_operation(std::string(100000, 'g').c_str()), nullptr);
}

std::vector<std::string> suggestions_for(const std::string &word) {
    suggestions found;
    consider_operations(&found, word.c_str());
    return {found.words, found.words + found.count};
}

TEST(ClientNames, MistypedWordSuggestsTheNearestFirst) {
    for (auto [typed, meant] : {std::pair{"getSid", "getSsid"},
                                {"get_chanel", "getChannel"},
                                {"laod", "load"},
                                {"checkThreadQeue", "checkThreadQueue"},
                                {"SETCOUNTRYCOD", "setCountryCode"}}) {
        ASSERT_FALSE(suggestions_for(typed).empty()) << typed;
        EXPECT_EQ(suggestions_for(typed)[0], meant) << typed;
    }
}

TEST(ClientNames, PartOfANameSuggestsTheNamesThatContainIt) {
    std::vector<std::string> names = suggestions_for("countrycode");
    EXPECT_EQ(std::set(names.begin(), names.end()), (std::set<std::string>{"getCountryCode", "setCountryCode"}));
}

TEST(ClientNames, SuggestionsAreNeverMoreThanAFew) {
    EXPECT_EQ(suggestions_for("wps").size(), SUGGESTIONS_MAX);
    EXPECT_EQ(suggestions_for("get").size(), SUGGESTIONS_MAX);
}

TEST(ClientNames, WordFarFromEveryNameSuggestsNothing) {
    EXPECT_TRUE(suggestions_for("xylophone").empty());
    EXPECT_TRUE(suggestions_for(std::string(1000, 'x')).empty());
}

// Arguments.

bool parses(argument_kind kind, const std::string &word, int64_t *number) {
    argument_value value = {};
    std::string copy = word;
    bool fits = parse_argument(kind, copy.data(), &value);
    *number = value.number;
    return fits;
}

void expect_number(argument_kind kind, const char *word, int64_t expected) {
    int64_t number;
    EXPECT_TRUE(parses(kind, word, &number)) << word;
    EXPECT_EQ(number, expected) << word;
}

void expect_refused(argument_kind kind, const std::string &word) {
    int64_t number;
    EXPECT_FALSE(parses(kind, word, &number)) << "\"" << word << "\"";
}

TEST(ClientArguments, SignedNumbersReachFromTheLeastToTheMost) {
    for (argument_kind kind : {argument_kind::VAP, argument_kind::INT, argument_kind::IGNORED}) {
        expect_number(kind, "-2147483648", INT32_MIN);
        expect_number(kind, "2147483647", INT32_MAX);
        expect_number(kind, "0x7fffffff", INT32_MAX);
        expect_number(kind, "-0X80000000", INT32_MIN);
        expect_number(kind, "-0", 0);
        for (const char *word : {"-2147483649", "2147483648", "0x80000000", "18446744073709551617"})
            expect_refused(kind, word);
    }
}

TEST(ClientArguments, UnsignedNumbersReachToTheirWidth) {
    expect_number(argument_kind::UINT, "4294967295", UINT32_MAX);
    expect_number(argument_kind::UINT, "0xFFFFffff", UINT32_MAX);
    expect_number(argument_kind::USHORT, "65535", 65535);
    expect_refused(argument_kind::UINT, "4294967296");
    expect_refused(argument_kind::UINT, "18446744073709551617");  // one, for a parser that overflows
    expect_refused(argument_kind::UINT, "-1");
    expect_refused(argument_kind::USHORT, "65536");
    expect_refused(argument_kind::USHORT, "-1");
}

TEST(ClientArguments, NumberWithAnythingElseInItIsRefused) {
    for (const char *word : {"", "-", "0x", "-0x", "+1", " 1", "1 ", "1.0", "1e3", "0x1g", "--1", "one", "1-"})
        for (argument_kind kind : {argument_kind::VAP, argument_kind::INT, argument_kind::UINT, argument_kind::USHORT})
            expect_refused(kind, word);
}

TEST(ClientArguments, LeadingZerosMeanNothing) {
    expect_number(argument_kind::INT, "010", 10);
    expect_number(argument_kind::UINT, "00000000000000000000008", 8);
}

TEST(ClientArguments, BooleansAreTakenAsWordsAndAsDigits) {
    for (const char *word : {"1", "true", "on", "yes", "TRUE", "On", "0x1"})
        expect_number(argument_kind::BOOL, word, 1);
    for (const char *word : {"0", "false", "off", "no", "False", "OFF"})
        expect_number(argument_kind::BOOL, word, 0);
    for (const char *word : {"2", "-1", "", "y", "enabled", "o"})
        expect_refused(argument_kind::BOOL, word);
}

TEST(ClientArguments, TextIsTakenAsItStands) {
    for (std::string word : {"", "-1", "--help", " a b ", "\"$x`\\", "\xff\n"}) {
        argument_value value = {};
        EXPECT_TRUE(parse_argument(argument_kind::TEXT, word.data(), &value));
        EXPECT_EQ(value.text, word);
    }
}

// A procedure's arguments from words. The words have to outlive what is parsed.
bool parse_words(const procedure_row *row, std::vector<std::string> &words, call_arguments *arguments,
                 std::string *problem) {
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    char text[PROBLEM_SIZE] = "";
    bool fits = parse_arguments(row, pointers.size(), pointers.data(), arguments, text);
    *problem = text;
    return fits;
}

std::string problem_of(const char *procedure, std::vector<std::string> words) {
    call_arguments arguments;
    std::string problem;
    EXPECT_FALSE(parse_words(row_named(procedure), words, &arguments, &problem));
    return problem;
}

TEST(ClientArguments, ProblemNamesTheArgumentWhatWasGivenAndWhatIsWanted) {
    std::string problem = problem_of("wlan_associate_vlan", {"00:03:7f:10:00:01", "70000"});
    EXPECT_EQ(problem, "<vlan> is \"70000\", but has to be a number from 0 to 65535");
}

TEST(ClientArguments, WrongNumberOfArgumentsIsAProblem) {
    EXPECT_EQ(problem_of("wlan_set_ssid", {"1"}), "takes 2 arguments, not 1");
    EXPECT_EQ(problem_of("wlan_get_ssid", {"1", "2"}), "takes 1 argument, not 2");
    EXPECT_EQ(problem_of("wlan_init", {"1"}), "takes 0 arguments, not 1");
    EXPECT_EQ(problem_of("wlan_init", std::vector<std::string>(50, "1")), "takes 0 arguments, not 50");
}

TEST(ClientArguments, VapOutsideOneToSixteenIsLeftToTheServer) {
    for (const char *index : {"0", "-1", "17", "2147483647"})
        expect_number(argument_kind::VAP, index, atoll(index));
}

bytes encoded(xdrproc_t routine, void *value) {
    std::vector<char> buffer(1 << 14);
    XDR xdrs;
    xdrmem_create(&xdrs, buffer.data(), static_cast<u_int>(buffer.size()), XDR_ENCODE);
    EXPECT_TRUE(routine(&xdrs, value));
    return bytes(buffer.data(), XDR_GETPOS(&xdrs));
}

bytes encoded_words(const procedure_row *row, std::vector<std::string> words) {
    call_arguments arguments;
    std::string problem;
    EXPECT_TRUE(parse_words(row, words, &arguments, &problem)) << row->name << ": " << problem;
    return encoded(as_xdrproc(xdr_call_arguments), &arguments);
}

TEST(ClientArguments, EncodeToTheBytesOfTheirRecord) {
    char ssid[] = "home", bssid[] = "00:03:7f:10:00:01";
    wlan_set_ssid_1_argument set_ssid = {-3, ssid};
    EXPECT_EQ(encoded_words(row_named("wlan_set_ssid"), {"-3", ssid}),
              encoded(as_xdrproc(xdr_wlan_set_ssid_1_argument), &set_ssid));
    wlan_associate_vlan_1_argument vlan = {bssid, 65535};
    EXPECT_EQ(encoded_words(row_named("wlan_associate_vlan"), {bssid, "65535"}),
              encoded(as_xdrproc(xdr_wlan_associate_vlan_1_argument), &vlan));
    wlan_set_channel_switch_1_argument channel = {9, 1, 2, 36, 4, 5, 6, 80, 8, 0xffffffff};
    EXPECT_EQ(encoded_words(row_named("wlan_set_channel_switch"),
                            {"9", "1", "2", "36", "4", "5", "6", "80", "8", "4294967295"}),
              encoded(as_xdrproc(xdr_wlan_set_channel_switch_1_argument), &channel));
    wlan_set_dot11u_attribute_1_argument attribute = {1, 2, TRUE, FALSE, TRUE, FALSE};
    EXPECT_EQ(encoded_words(row_named("wlan_set_dot11u_attribute"), {"1", "2", "on", "off", "yes", "0"}),
              encoded(as_xdrproc(xdr_wlan_set_dot11u_attribute_1_argument), &attribute));
    wlan_set_band_steer_time_1_argument count = {3};
    EXPECT_EQ(encoded_words(row_named("wlan_set_band_steer_count"), {"3"}),
              encoded(as_xdrproc(xdr_wlan_set_band_steer_time_1_argument), &count));
}

TEST(ClientArguments, BareArgumentsEncodeWithoutARecord) {
    EXPECT_EQ(encoded_words(row_named("wlan_init"), {}), "");
    EXPECT_EQ(encoded_words(row_named("wlan_get_ssid"), {"-2"}), bytes("\xff\xff\xff\xfe"));
    EXPECT_EQ(encoded_words(row_named("wlan_get_bssid_port"), {"abcde"}), bytes("\0\0\0\5abcde\0\0\0", 12));
}

bytes from_hex(const std::string &hex) {
    bytes result;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        result += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return result;
}

// "record NAME TYPE=VALUE ... = HEX" as the words of the command line and the bytes they have to become.
struct golden_record {
    std::string record;
    std::vector<std::string> words;
    bytes wire;
};

std::vector<golden_record> golden_records() {
    std::ifstream file(WLAN_SOURCE_DIR "/tests/golden/wire.txt");
    std::vector<golden_record> records;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string word;
        golden_record record;
        if (!(words >> word >> record.record) || word != "record")
            continue;
        while (words >> word && word != "=") {
            std::string value = word.substr(word.find('=') + 1);
            bool is_text = word.starts_with("string=");
            record.words.push_back(!is_text ? value : value == "-" ? "" : from_hex(value));
        }
        while (words >> word)
            record.wire += word.find('*') == std::string::npos
                               ? from_hex(word)
                               : bytes(std::stoul(word.substr(word.find('*') + 1)), from_hex(word.substr(0, 2))[0]);
        records.push_back(record);
    }
    return records;
}

TEST(ClientArguments, EveryRecordEncodesFromWordsToItsGoldenBytes) {
    std::set<std::string> seen;
    std::map<std::string, golden_record> records;
    for (const golden_record &record : golden_records())
        records[record.record] = record;
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row *row = &procedure_rows[i];
        if (!*row->record)
            continue;
        ASSERT_TRUE(records.contains(row->record)) << row->record;
        EXPECT_EQ(encoded_words(row, records[row->record].words), records[row->record].wire) << row->name;
        seen.insert(row->record);
    }
    EXPECT_EQ(seen.size(), records.size());
}

// Results.

struct made_result {
    wlan_config_return_code_e code = WLAN_CONFIG_SUCCESS;
    std::vector<u_int> values = {};
    bytes data = {};
};

// Exactly sized copies, so that a sanitizer sees a read past the end.
wlan_config_result_data_t as_record(const made_result &made, std::vector<u_int> *values, std::vector<char> *data) {
    *values = std::vector<u_int>(made.values);
    *data = std::vector<char>(made.data.begin(), made.data.end());
    wlan_config_result_data_t result = {};
    result.return_code = made.code;
    result.return_values = {static_cast<u_int>(values->size()), values->data()};
    result.return_data = {static_cast<u_int>(data->size()), data->data()};
    return result;
}

// A checked result as people get it, with or without a terminal.
std::string printed(const char *procedure, const made_result &made, bool terminal = false) {
    std::vector<u_int> values;
    std::vector<char> data;
    wlan_config_result_data_t result = as_record(made, &values, &data);
    char problem[PROBLEM_SIZE] = "";
    EXPECT_TRUE(check_result(row_named(procedure), &result, problem)) << problem;
    value *payload = result_value(row_named(procedure), &result);
    const text_options options = {terminal, false};
    std::string text = written([&](FILE *out) { render_text(out, payload, &options); });
    free_value(payload);
    return text;
}

std::string dumped(const made_result &made) {
    std::vector<u_int> values;
    std::vector<char> data;
    wlan_config_result_data_t result = as_record(made, &values, &data);
    return written([&](FILE *out) { print_dump(out, &result); });
}

bool carries_something(const char *procedure, const made_result &made) {
    std::vector<u_int> values;
    std::vector<char> data;
    wlan_config_result_data_t result = as_record(made, &values, &data);
    return says_something(row_named(procedure), &result);
}

std::string damage(const char *procedure, const made_result &made) {
    std::vector<u_int> values;
    std::vector<char> data;
    wlan_config_result_data_t result = as_record(made, &values, &data);
    char problem[PROBLEM_SIZE] = "";
    return check_result(row_named(procedure), &result, problem) ? "none" : problem;
}

std::vector<u_int> padded(std::vector<u_int> values) {
    values.resize(4 * values.size());
    return values;
}

TEST(ClientResults, ResultWithoutAPayloadSaysNothing) {
    EXPECT_EQ(printed("wlan_set_ssid", {}), "");
    EXPECT_EQ(printed("wlan_ap_scan", {}), "");
}

TEST(ClientResults, OneIntegerStandsAloneWithTheSignOfItsKind) {
    const u_int minus_one = 0xffffffff;
    EXPECT_EQ(printed("wlan_get_number_of_entries", {.values = padded({16})}), "16\n");
    EXPECT_EQ(printed("wlan_get_number_of_entries", {.values = padded({minus_one})}), "-1\n");
    EXPECT_EQ(printed("wlan_get_channel", {.values = padded({minus_one})}), "4294967295\n");
    EXPECT_EQ(printed("wlan_get_enable", {.values = padded({1})}), "1\n");
}

TEST(ClientResults, SeveralIntegersHaveTheirNames) {
    EXPECT_EQ(printed("wlan_get_bssid_port", {.values = padded({5, 0xffffffff})}), "port   5\nindex  -1\n");
}

TEST(ClientResults, WideIntegersArePutTogetherFromTheirLowAndHighWords) {
    EXPECT_EQ(printed("wlan_get_radio_tx_packets", {.values = padded({0x90abcdef, 0x12345678})}),
              "1311768467294899695\n");
    std::vector<u_int> words;
    std::string line = "entries ";
    for (int i = 0; i < 37; i++) {
        words.insert(words.end(), {static_cast<u_int>(i - 5), i < 5 ? 0xffffffff : 0});
        line += " " + std::to_string(i - 5);
    }
    EXPECT_EQ(printed("wlan_get_rssi_table", {.values = padded(words)}), line + "\n");
}

TEST(ClientResults, StatisticsHaveTheNamesOfTheirFields) {
    EXPECT_EQ(printed("wlan_get_basic_stats", {.values = padded({1, 2, 3, 4, 0xffffffff})}),
              "tx_bytes     1\nrx_bytes     2\ntx_packets   3\nrx_packets   4\nassoc_count  4294967295\n");
    EXPECT_EQ(printed("wlan_get_stats", {.values = padded({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10})}),
              "rx_errors     1\ntx_unicast    2\ntx_multicast  6\n");
}

TEST(ClientResults, TextStandsAloneOnItsLine) {
    EXPECT_EQ(printed("wlan_get_ssid", {.data = bytes("home\0", 5)}), "home\n");
    EXPECT_EQ(printed("wlan_get_ssid", {.data = bytes("\0", 1)}), "\n");
    EXPECT_EQ(printed("wlan_get_wps_status", {.data = bytes("a\nb\0", 4)}), "a\nb\n");
}

TEST(ClientResults, TerminalDoesNotGetControlCharacters) {
    bytes evil("\033[31mr\303\244d\177\302\233\t.\n.\0", 18);
    EXPECT_EQ(printed("wlan_get_ssid", {.data = evil}), bytes(evil.c_str()) + "\n");
    EXPECT_EQ(printed("wlan_get_ssid", {.data = evil}, true), "\\x1b[31mr\303\244d\\x7f\\xc2\\x9b\t.\n.\n");
}

TEST(ClientResults, ImageIsDumpedSixteenBytesALine) {
    bytes image(236, '\0');
    image.replace(0, 17, "00:03:7f:aa:bb:cc");
    std::string dump = dumped({.data = image});
    EXPECT_TRUE(
        dump.starts_with("00000000  30 30 3a 30 33 3a 37 66  3a 61 61 3a 62 62 3a 63  |00:03:7f:aa:bb:c|\n"
                         "00000010  63 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |c...............|\n"))
        << dump;
    EXPECT_TRUE(dump.ends_with("000000e0  00 00 00 00 00 00 00 00  00 00 00 00              |............|\n")) << dump;
}

TEST(ClientResults, ImageHasOneStarForLinesThatRepeat) {
    bytes image(236, '\0');
    image[100] = 'x';
    EXPECT_EQ(dumped({.data = image}),
              "00000000  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n"
              "*\n"
              "00000060  00 00 00 00 78 00 00 00  00 00 00 00 00 00 00 00  |....x...........|\n"
              "00000070  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n"
              "*\n"
              "000000e0  00 00 00 00 00 00 00 00  00 00 00 00              |............|\n");
}

TEST(ClientResults, DumpBeginsWithTheIntegersFourALine) {
    EXPECT_EQ(dumped({.values = {2, 0, 0, 0, 0xffffffff}, .data = "ab"}),
              "00000002 00000000 00000000 00000000\nffffffff\n"
              "00000000  61 62                                             |ab|\n");
}

TEST(ClientResults, FailureShowsOnlyAPayloadThatCarriesSomething) {
    const auto failure = WLAN_CONFIG_FAILURE;
    EXPECT_FALSE(carries_something("wlan_set_ssid", {.code = failure}));
    EXPECT_FALSE(carries_something("wlan_ap_scan", {.code = failure}));
    EXPECT_FALSE(carries_something("wlan_get_ssid", {.code = failure, .data = bytes("\0", 1)}));
    EXPECT_TRUE(carries_something("wlan_get_ssid", {.code = failure, .data = bytes("x\0", 2)}));
    EXPECT_TRUE(carries_something("wlan_get_channel", {.code = failure, .values = padded({0})}));
    EXPECT_FALSE(carries_something("wlan_get_assoc_device", {.code = failure, .data = bytes(236, '\0')}));
    EXPECT_TRUE(carries_something("wlan_get_assoc_device", {.code = failure, .data = bytes(236, 'x')}));
}

TEST(ClientResults, FailureMayComeWithoutItsPayload) {
    for (size_t i = 0; i < procedure_row_count; i++)
        EXPECT_FALSE(carries_something(procedure_rows[i].name, {.code = WLAN_CONFIG_FAILURE}))
            << procedure_rows[i].name;
}

TEST(ClientResults, TextWithoutItsNulIsDamaged) {
    EXPECT_EQ(damage("wlan_get_ssid", {.data = "home"}),
              "the server's answer is damaged: a text without an end (4 bytes)");
    EXPECT_EQ(damage("wlan_get_ssid", {}), "the server's answer is damaged: a text without an end (0 bytes)");
    EXPECT_NE(damage("wlan_get_ssid", {.code = WLAN_CONFIG_FAILURE, .data = "home"}), "none");
}

TEST(ClientResults, FewerIntegersThanTheRowSaysAreDamage) {
    EXPECT_EQ(damage("wlan_get_bssid_port", {.values = {1}}),
              "the server's answer is damaged: 1 integers instead of 2");
    EXPECT_NE(damage("wlan_get_channel", {}), "none");
    EXPECT_NE(damage("wlan_get_basic_stats", {.values = {1, 2, 3, 4}}), "none");
    EXPECT_NE(damage("wlan_get_radio_tx_packets", {.values = {1}}), "none");
    EXPECT_NE(damage("wlan_get_rssi_table", {.values = std::vector<u_int>(73)}), "none");
    EXPECT_NE(damage("wlan_get_bs_bss_5g_capable_table", {.data = bytes(1536, '\0')}), "none");
}

TEST(ClientResults, ImageOfAnotherSizeIsDamaged) {
    EXPECT_EQ(damage("wlan_get_assoc_device", {.data = bytes(235, '\0')}),
              "the server's answer is damaged: 235 bytes of wlan_device_t instead of 236");
    EXPECT_NE(damage("wlan_get_assoc_device", {.data = bytes(237, '\0')}), "none");
    EXPECT_NE(damage("wlan_get_assoc_device", {}), "none");
}

// The program, with a server and a portmapper that say what a test wants them to.

constexpr uint32_t ACCEPTED = 0, PROCEDURE_UNAVAILABLE = 3, GARBAGE_ARGUMENTS = 4, SYSTEM_FAILURE = 5;

class ClientCalls : public testing::Test {
protected:
    void SetUp() override {
        portmapper.answer_with(accepted(ACCEPTED, word_bytes(server.port)));
    }

    run_outcome call(const std::vector<std::string> &words) {
        return run_at({"127.0.0.1", portmapper.port}, words);
    }

    FakePeer portmapper, server;
};

TEST_F(ClientCalls, AskThePortmapperForTheProgramOverUdp) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0)));
    EXPECT_EQ(call({"checkThreadQueue"}).status, 0);
    EXPECT_EQ(portmapper.arguments(), word_bytes(0x20131337) + word_bytes(1) + word_bytes(17) + word_bytes(0));
}

TEST_F(ClientCalls, SetterSendsItsArgumentsAndSaysOk) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0)));
    run_outcome outcome = call({"setSsid", "3", "-1"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "ok\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(server.procedure(), word_bytes(22));
    EXPECT_EQ(server.arguments(), word_bytes(3) + word_bytes(2) + bytes("-1\0\0", 4));
}

// The words of a command, and those of the operation that it stands for.
struct lifecycle_words {
    std::vector<std::string> command, operation;
    uint32_t procedure;
    bytes arguments;
};

const lifecycle_words LIFECYCLE_WORDS[] = {
    {{"load"}, {"wlan_load", "0"}, 1, word_bytes(0)},
    {{"load", "1"}, {"wlan_load", "1"}, 1, word_bytes(1)},
    {{"load", "-2"}, {"wlan_load", "-2"}, 1, word_bytes(0xfffffffe)},
    {{"init"}, {"wlan_init"}, 2, ""},
    {{"reset"}, {"wlan_reset"}, 3, ""},
    {{"reconnect"}, {"pciReconnect"}, 0x100000F, ""},
};

TEST_F(ClientCalls, LifecycleCommandsAreTheOperationsOfTheirName) {
    for (uint32_t code : {0u, 0xffffffffu}) {
        server.answer_with(accepted(ACCEPTED, word_bytes(code)));
        for (const lifecycle_words &words : LIFECYCLE_WORDS)
            for (const char *format : {"text", "json", "value", "dump"}) {
                std::vector<std::string> command = words.command, operation = words.operation;
                for (std::vector<std::string> *line : {&command, &operation})
                    line->insert(line->begin(), {"-o", format});
                run_outcome one = call(command);
                EXPECT_EQ(server.procedure(), word_bytes(words.procedure)) << words.command[0];
                EXPECT_EQ(server.arguments(), words.arguments) << words.command[0];
                run_outcome other = call(operation);
                EXPECT_EQ(one.status, code ? 1 : 0) << words.command[0];
                EXPECT_EQ(one.status, other.status) << words.command[0];
                EXPECT_EQ(one.out, other.out) << words.command[0] << format;
                EXPECT_EQ(one.errors, other.errors) << words.command[0] << format;
            }
    }
    EXPECT_EQ(server.received(), 2 * 2 * 4 * 6);
}

TEST_F(ClientCalls, LifecycleCommandSaysOkAsTheOperationDoes) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0)));
    for (const lifecycle_words &words : LIFECYCLE_WORDS)
        EXPECT_EQ(call(words.command).out, "ok\n") << words.command[0];
}

TEST_F(ClientCalls, RequestThatIsRefusedIsNotFollowed) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0xffffffff)));
    run_outcome outcome = call({"init", "--wait"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors, "init: the server answered failure (-1)\n");
    EXPECT_EQ(server.received(), 1);
}

TEST_F(ClientCalls, GetterPrintsItsResult) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0) + word_bytes(0) + word_bytes(5) + bytes("home\0\0\0\0", 8)));
    run_outcome outcome = call({"getSsid", "1"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "home\n");
}

TEST_F(ClientCalls, FailureOfTheServerIsStatusOne) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0xffffffff)));
    run_outcome outcome = call({"setSsid", "99", "x"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors, "setSsid: the server answered failure (-1)\n");
}

TEST_F(ClientCalls, EveryCodeButZeroIsAFailure) {
    server.answer_with(accepted(ACCEPTED, word_bytes(7)));
    EXPECT_EQ(call({"setSsid", "1", "x"}).errors, "setSsid: the server answered failure (7)\n");
}

TEST_F(ClientCalls, ErrorsOfTheRpcLayerAreStatusFiveWithALineEach) {
    for (auto [status, line] : {std::pair{PROCEDURE_UNAVAILABLE, "init: the server does not offer this operation\n"},
                                {GARBAGE_ARGUMENTS, "init: the server cannot decode the arguments\n"},
                                {SYSTEM_FAILURE, "init: the server met a system error while answering\n"}}) {
        server.answer_with(accepted(status, ""));
        run_outcome outcome = call({"init"});
        EXPECT_EQ(outcome.status, 5);
        EXPECT_EQ(outcome.errors, line);
    }
}

TEST_F(ClientCalls, AnswerCutShortAnywhereIsDamagedAndNotReadBeyond) {
    bytes result = word_bytes(0) + word_bytes(0) + word_bytes(5) + bytes("home\0\0\0\0", 8);
    for (size_t length = 0; length < result.size(); length++) {
        server.answer_with(accepted(ACCEPTED, result.substr(0, length)));
        run_outcome outcome = call({"getSsid", "1"});
        EXPECT_EQ(outcome.status, 5) << length;
        EXPECT_EQ(outcome.errors, "getSsid: the server's answer is damaged: it is no result of this operation\n")
            << length;
    }
}

TEST_F(ClientCalls, AnswerThatClaimsMoreThanItHoldsIsDamaged) {
    for (const bytes &claim :
         {word_bytes(0) + word_bytes(0xffffffff), word_bytes(0) + word_bytes(0x40000000) + word_bytes(1),
          word_bytes(0) + word_bytes(0) + word_bytes(8257), word_bytes(0) + word_bytes(0) + word_bytes(0xffffffff)}) {
        server.answer_with(accepted(ACCEPTED, claim));
        EXPECT_EQ(call({"getSsid", "1"}).status, 5);
    }
}

TEST_F(ClientCalls, AnswerOfAnotherShapeIsStatusFive) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0) + word_bytes(0) + word_bytes(4) + "home"));
    run_outcome outcome = call({"getSsid", "1"});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors, "getSsid: the server's answer is damaged: a text without an end (4 bytes)\n");
}

TEST_F(ClientCalls, SilentServerIsAskedOnceAndGivenUpAfterTheTimeout) {
    run_outcome outcome = call({"--timeout", "2", "setSsid", "1", "x"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_NE(outcome.errors.find("no answer from 127.0.0.1 port " + std::to_string(server.port) + " within 2 s"),
              std::string::npos)
        << outcome.errors;
    EXPECT_EQ(server.received(), 1) << "a repeated setter is carried out twice";
}

TEST_F(ClientCalls, AnswerThatComesFromElsewhereIsNoAnswer) {
    server.answer_with(accepted(ACCEPTED, word_bytes(0)));
    server.answer_from_elsewhere();
    run_outcome outcome = call({"--timeout", "1", "init"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(server.received(), 1);
}

TEST_F(ClientCalls, ServerThatHasEndedIsStatusThree) {
    portmapper.answer_with(accepted(ACCEPTED, word_bytes(1)));  // a port where nobody listens
    run_outcome outcome = call({"getSsid", "1"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors,
              "getSsid: nothing answers at 127.0.0.1 port 1, though the portmapper has it registered: has the server "
              "ended?\n");
}

TEST_F(ClientCalls, ServerThatIsNotRegisteredIsStatusThree) {
    portmapper.answer_with(accepted(ACCEPTED, word_bytes(0)));
    run_outcome outcome = call({"getSsid", "1"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors,
              "getSsid: the portmapper at 127.0.0.1 does not know program 0x20131337 version 1: is the server "
              "running?\n");
    EXPECT_EQ(server.received(), 0);
}

TEST_F(ClientCalls, PortmapperThatDoesNotAnswerIsStatusThree) {
    portmapper.answer_with("");
    run_outcome outcome = call({"--timeout", "1", "getSsid", "1"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors,
              "getSsid: the portmapper at 127.0.0.1 does not answer: does rpcbind or portmap hang there?\n");
}

TEST_F(ClientCalls, ArgumentsLongerThanADatagramAreUsageAndNotSent) {
    run_outcome outcome = call({"setSsid", "1", std::string(20000, 'x')});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(server.received(), 0);
}

TEST(ClientProgram, NoPortmapperIsStatusThree) {
    run_outcome outcome = run({"getSsid", "1"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "getSsid: there is no portmapper at 127.0.0.1: start rpcbind or portmap there\n");
}

TEST(ClientProgram, UnknownOperationIsUsageWithSuggestions) {
    run_outcome outcome = run({"getSid", "1"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(
        outcome.errors.starts_with("vlk_rpc_wlan_config_client: there is no command or operation \"getSid\"\n"
                                   "Did you mean getSsid, "))
        << outcome.errors;
}

TEST(ClientProgram, WrongArgumentIsUsageWithTheOperationsUsageLine) {
    run_outcome outcome = run({"set-enable", "1", "maybe"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors,
              "setEnable: <enabled> is \"maybe\", but has to be 1, true, on or yes, or 0, false, off or no\n"
              "usage: vlk_rpc_wlan_config_client setEnable <index> <enabled>\n");
}

TEST(ClientProgram, WordsThatAreNoCommandLineAreUsage) {
    for (const auto &[words, line] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{}, "an operation or a command is missing"},
             {{"--bogus"}, "--bogus is no option"},
             {{"-1"}, "-1 is no option"},
             {{"--timeout", "1", "-xy"}, "-x is no option"},
             {{"-t"}, "-t needs a value"},
             {{"--timeout"}, "--timeout needs a value"},
             {{"--timeout", "0", "init"}, "--timeout is \"0\", but has to be a number of seconds from 1 to 3600"},
             {{"--timeout=3601", "init"}, "--timeout is \"3601\", but has to be a number of seconds from 1 to 3600"},
             {{"-o", "xml", "init"}, "--output is \"xml\", but has to be text, json, value or dump"},
             {{"--color", "red", "init"}, "--color is \"red\", but has to be auto, always or never"}}) {
        run_outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.errors, "vlk_rpc_wlan_config_client: " + line + "\nTry: vlk_rpc_wlan_config_client --help\n");
    }
}

TEST(ClientProgram, OptionsOfCommandsHaveToMakeSense) {
    for (const auto &[words, line] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"scan", "one"}, "scan: VAP is \"one\", but has to be a number from 1 to 16\n"},
             {{"scan", "1", "--wait", "0"},
              "scan: --wait is \"0\", but has to be a number of seconds from 1 to 3600\n"},
             {{"scan", "1", "--wait", "-3"},
              "scan: --wait is \"-3\", but has to be a number of seconds from 1 to 3600\n"},
             {{"scan", "1", "--cached", "--wait", "3"}, "scan: with --cached there is nothing to --wait for\n"},
             {{"init", "--wait-for", "3601"},
              "init: --wait-for is \"3601\", but has to be a number of seconds from 1 to 3600\n"},
             {{"load", "--wait", "x"},
              "load: <radio> is \"x\", but has to be a number from -2147483648 to 2147483647, of no effect\n"},
             {{"watch", "--interval", "0", "list"},
              "watch: --interval is \"0\", but has to be a number of seconds from 0.1 to 86400\n"},
             {{"watch", "--count", "0", "list"}, "watch: --count is \"0\", but has to be a number from 1\n"},
             {{"watch", "watch", "list"}, "watch: a watch cannot be watched\n"}}) {
        run_outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.errors, line);
    }
}

TEST(ClientProgram, NegativeNumberBehindACommandIsAWordAndNoOption) {
    EXPECT_EQ(run({"list", "-4711"}).errors, "list: no operation has \"-4711\" in its name, subject or summary\n");
    EXPECT_TRUE(run({"list", "-t", "-1"}).errors.starts_with("list: --timeout is \"-1\", but has to be a number"));
    EXPECT_TRUE(run({"list", "-x1"}).errors.starts_with("list: -x is no option\n"));
}

TEST(ClientProgram, TooManyWordsBehindACommandAreUsage) {
    run_outcome outcome = run({"list", "a", "b"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "list: takes [WORD] behind it\nTry: vlk_rpc_wlan_config_client help list\n");
    EXPECT_EQ(run({"reference", "a"}).errors,
              "reference: takes nothing behind it\nTry: vlk_rpc_wlan_config_client help reference\n");
}

TEST(ClientProgram, OutputThatCannotBeWrittenIsNoSuccess) {
    FILE *full = fopen("/dev/full", "w");
    char program[] = "client", list[] = "list";
    char *words[] = {program, list, nullptr};
    std::string errors = written(
        [&](FILE *stream) { EXPECT_EQ(run_client(2, words, &GATEWAY_ENDPOINT, full, stream), EXIT_STATUS_LOCAL); });
    EXPECT_EQ(errors, "vlk_rpc_wlan_config_client: cannot write the output: No space left on device\n");
    fclose(full);
}

TEST(ClientHelp, ListHasEveryOperationOnceUnderItsSubject) {
    std::istringstream lines(run({"list"}).out);
    std::multiset<std::string> names;
    std::set<std::string> subjects;
    std::string subject;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("  ")) {
            EXPECT_TRUE(subjects.insert(line).second) << line << " twice";
            subject = line;
            continue;
        }
        std::string name = line.substr(2, line.find(' ', 2) - 2);
        names.insert(name);
        ASSERT_NE(find_operation(name.c_str()), nullptr) << line;
        EXPECT_EQ(find_operation(name.c_str())->subject, subject) << line;
    }
    EXPECT_EQ(names.size(), 340u);
    EXPECT_EQ(std::set(names.begin(), names.end()).size(), 340u);
}

TEST(ClientHelp, ListShowsArgumentsAndSummary) {
    EXPECT_NE(run({"list"}).out.find("\n  setSsid <index> <ssid>                          set the SSID of the VAP\n"),
              std::string::npos);
}

TEST(ClientHelp, ListIsFilteredByNameSubjectAndSummaryInAnyCase) {
    for (const char *word : {"getbssidport", "get_bssid_port", "get-bssid", "IDENTITY", "Switch Port"})
        EXPECT_NE(run({"list", word}).out.find("  getBssidPort <bssid> "), std::string::npos) << word;
    EXPECT_EQ(run({"list", "wlan"}).out, run({"list"}).out) << "which begins all procedures";
    std::string found = run({"list", "switch port"}).out;
    EXPECT_EQ(std::count(found.begin(), found.end(), '\n'), 2) << found;
}

TEST(ClientHelp, ListWithoutAMatchIsNotFound) {
    run_outcome outcome = run({"list", "xylophone"});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.out, "");
}

TEST(ClientHelp, HelpTellsWhatTheRowKnows) {
    run_outcome outcome = run({"help", "associate_vlan"});
    EXPECT_EQ(outcome.status, 0);
    for (const char *piece :
         {"associateVlan: bind the VAP with this BSSID to a VLAN",
          "vlk_rpc_wlan_config_client associateVlan <bssid> <vlan>\n",
          "  <bssid>       BSSID of a VAP\n                XX:XX:XX:XX:XX:XX as getBssid prints it; any other fails\n",
          "  <vlan>        VLAN\n                1 to 4094; any other is taken as it is\n", "success or failure",
          "wlan_associate_vlan, number 8\n", "wlan_associate_vlan_1_svc in handlers/regular.cpp",
          "wlan_associateVlan in params/vap.cpp"})
        EXPECT_NE(outcome.out.find(piece), std::string::npos) << piece << "\n" << outcome.out;
}

TEST(ClientHelp, HelpNamesHandMadeHandlersAndMissingBackEnds) {
    std::string text = run({"help", "getAdvairtimeWaitThreshold"}).out;
    EXPECT_NE(text.find("in handlers/by_hand.cpp"), std::string::npos) << text;
    EXPECT_NE(text.find("back end   none\n"), std::string::npos) << text;
    EXPECT_NE(text.find("number 0x1000033\n"), std::string::npos) << text;
}

TEST(ClientHelp, HelpOfTheProgramTellsTheExitStatuses) {
    for (const std::vector<std::string> &words : {std::vector<std::string>{"--help"}, {"help"}}) {
        run_outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0);
        for (size_t i = 0; i < exit_status_row_count; i++) {
            std::string line = "  " + std::to_string(exit_status_rows[i].status) + "  " + exit_status_rows[i].meaning;
            EXPECT_NE(outcome.out.find(line), std::string::npos) << line;
        }
    }
}

TEST(ClientReference, EveryNameDerivedFromARowIsSpelledOut) {
    std::string page = run({"reference"}).out;
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row *row = &procedure_rows[i];
        std::string name = row->name, record = row->record;
        std::vector<std::string> names = {"PROC_" + name, name, name_of(row), "_" + name + "_1", name + "_1_svc"};
        if (!record.empty())
            names.insert(names.end(), {record, "xdr_" + record});
        if (strcmp(row->back_end, "none") != 0)
            names.push_back(row->back_end);
        for (const std::string &word : names)
            EXPECT_NE(page.find("`" + word + "`"), std::string::npos) << word;
    }
}

// The page has two tables: the names of everything, and behind this heading what procedures touch.
constexpr const char TOUCHES_HEADING[] = "\n## What each procedure touches\n";

std::string names_of_reference() {
    std::string page = run({"reference"}).out;
    return page.substr(0, page.find(TOUCHES_HEADING));
}

TEST(ClientReference, NumbersAscendWithTheirHolesAndCoverEverything) {
    std::istringstream lines(names_of_reference());
    uint64_t next = 1;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| ") || !isdigit(line[2]))
            continue;
        uint64_t first = std::stoull(line.substr(2), nullptr, 0), last = first;
        size_t to = line.find(" to ");
        if (line.find("*unassigned*") != std::string::npos && to != std::string::npos)
            last = std::stoull(line.substr(to + 4), nullptr, 0);
        EXPECT_EQ(first, next) << line;
        next = last + 1;
    }
    EXPECT_EQ(next, uint64_t{1} << 32);
}

TEST(ClientReference, EveryRowHasTheColumnsOfTheHead) {
    std::istringstream lines(names_of_reference());
    int rows = 0;
    for (std::string line; std::getline(lines, line); rows += line.starts_with("| "))
        if (line.starts_with("|")) {
            EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 9) << line;
        }
    EXPECT_EQ(rows, 1 + 340 + static_cast<int>(unassigned_range_count));
}

// Bars inside a command are written so that they do not end its cell.
size_t columns_of(const std::string &line) {
    size_t bars = 0;
    for (size_t i = 0; i < line.size(); i++)
        bars += line[i] == '|' && (i == 0 || line[i - 1] != '\\');
    return bars - 1;
}

TEST(ClientReference, EveryProcedureHasARowOfWhatItTouches) {
    std::string page = run({"reference"}).out;
    std::istringstream lines(page.substr(page.find(TOUCHES_HEADING) + 1));
    std::vector<std::string> rows;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("|")) {
            EXPECT_EQ(columns_of(line), 8u) << line;
            rows.push_back(line);
        }
    ASSERT_EQ(rows.size(), 2 + procedure_row_count);
    for (size_t i = 0; i < procedure_row_count; i++)
        EXPECT_NE(rows[2 + i].find(" | `" + name_of(&procedure_rows[i])), std::string::npos) << rows[2 + i];
    for (const char *row : {"| 22 | `setSsid 1 word` |  | `AP_SSID` | `cfg -a AP_SSID=\"word\"` |  |  |  |",
                            "| 41 | `getPossibleChannels 1` |  |  | `iwlist ath0 freq \\| grep Channel` |  |  |  |",
                            "| 217 | `getApScanNumOfEntries 1` |  |  |  |  | `ath0 0x89fc.39` |  |",
                            "| 52 | `getTransmitPower 1` | `AP_RADIO_ID` `AP_TXPWR_2` |  |  |  |  |  |",
                            "| 0x1000065 | `getBsBss5gCapableTable 1` |  |  |  | `read /nvram/5gcapabletable` |  |  |",
                            "| 0x100004E | `setSoftblockEnable 1 1` |  | `SOFT_BLOCK_EN` | `cfg -a "
                            "SOFT_BLOCK_EN=\"1\"` |  |  | `softblock "
                            "setBSE:1` |"})
        EXPECT_NE(page.find(std::string("\n") + row + "\n"), std::string::npos) << row;
}

TEST(ClientReference, InterfaceDeclaresEveryProcedureWithItsNumber) {
    std::string text = run({"interface"}).out;
    for (const char *line :
         {"        wlan_config_return_code_e WLAN_LOAD(int /* radio */) = 1;\n",
          "        wlan_config_return_code_e WLAN_INIT(void) = 2;\n",
          "        wlan_config_result_data_t WLAN_GET_BSSID_PORT(string /* bssid */) = 7;\n",
          "WLAN_ASSOCIATE_VLAN(string /* bssid */, unsigned short /* vlan */) = 8;\n",
          "WLAN_SET_ENABLE(int /* index */, bool /* enabled */) = 10;\n",
          "WLAN_SET_BAND_STEER_COUNT(unsigned int /* count */) = 0x100002A;\n", "    } = 1;\n} = 0x20131337;\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
    for (size_t i = 0; i < procedure_row_count; i++)
        EXPECT_NE(text.find(" " + upper_case(procedure_rows[i].name) + "("), std::string::npos);
}

}  // namespace
