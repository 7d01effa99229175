// The wire contract: every record against its committed bytes, in both directions, and bytes that must be refused.
#include "server/wire.h"

#include <gtest/gtest.h>
#include <string.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "handlers/families.h"

namespace {

using bytes = std::string;

// One argument record as the table has it: its routine, and where each field lies and what it is.
struct record_field {
    const char *type;
    size_t offset;
};

struct record_row {
    size_t size;
    xdrproc_t routine;
    std::vector<record_field> fields;
};

const std::map<std::string, record_row> &records() {
#define TYPE_VAP(name) "int"
#define TYPE_INT(name) "int"
#define TYPE_IGNORED(name) "int"
#define TYPE_UINT(name) "u_int"
#define TYPE_BOOL(name) "bool"
#define TYPE_USHORT(name) "u_short"
#define TYPE_TEXT(name) "string"
#define FIELD(n, element) {TYPE_##element, offsetof(row_type, arg##n)},
#define RECORD_ROW_NONE(procedure)
#define RECORD_ROW_BARE(procedure, element)
#define RECORD_ROW_RECORD_OF(procedure, record, ...)
#define RECORD_ROW_RECORD_NAMED RECORD_ROW_RECORD
#define RECORD_ROW_RECORD(procedure, record, ...)                                              \
    {                                                                                          \
        using row_type = record;                                                               \
        rows[#record] = {sizeof(record), as_xdrproc(xdr_##record), {MAP(FIELD, __VA_ARGS__)}}; \
    }
    static const std::map<std::string, record_row> table = [] {
        std::map<std::string, record_row> rows;
#define PROCEDURE(number, procedure, arguments, ...) FOR_SHAPE(RECORD_ROW, procedure, arguments)
#include "server/procedures.def"
        return rows;
    }();
    return table;
}

struct golden_line {
    std::string name;
    std::vector<std::pair<std::string, std::string>> values;  // type and value
    bytes wire;
};

bytes from_hex(const std::string &hex) {
    bytes result;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        result += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return result;
}

bytes from_hex_word(const std::string &word) {
    size_t star = word.find('*');
    if (star == std::string::npos)
        return from_hex(word);
    return bytes(std::stoul(word.substr(star + 1)), from_hex(word.substr(0, star))[0]);
}

// The lines of one kind of tests/golden/wire.txt.
std::vector<golden_line> golden(const std::string &kind) {
    std::ifstream file(WLAN_SOURCE_DIR "/tests/golden/wire.txt");
    EXPECT_TRUE(file.is_open());
    std::vector<golden_line> lines;
    for (std::string text; std::getline(file, text);) {
        std::istringstream words(text);
        std::string word;
        if (!(words >> word) || word != kind)
            continue;
        golden_line line;
        words >> line.name;
        while (words >> word && word != "=") {
            size_t equals = word.find('=');
            line.values.emplace_back(word.substr(0, equals), word.substr(equals + 1));
        }
        while (words >> word)
            line.wire += from_hex_word(word);
        lines.push_back(line);
    }
    return lines;
}

bytes golden_bytes(const std::string &kind, const std::string &name) {
    for (const golden_line &line : golden(kind))
        if (line.name == name)
            return line.wire;
    ADD_FAILURE() << "no golden bytes for " << kind << " " << name;
    return "";
}

template <typename T>
void put(void *record, size_t offset, T value) {
    memcpy(static_cast<char *>(record) + offset, &value, sizeof value);
}

void put_value(void *record, size_t offset, const std::string &type, const std::string &value, std::string *text) {
    if (type == "int" || type == "bool")
        put(record, offset, static_cast<int>(std::stoll(value)));
    else if (type == "u_int")
        put(record, offset, static_cast<u_int>(std::stoul(value)));
    else if (type == "u_short")
        put(record, offset, static_cast<u_short>(std::stoul(value)));
    else {
        *text = value == "-" ? "" : from_hex(value);
        put(record, offset, text->data());
    }
}

// What the routine makes of a record. Empty when it refuses.
bytes encode(xdrproc_t routine, void *record) {
    std::vector<char> buffer(1 << 16);
    XDR xdrs;
    xdrmem_create(&xdrs, buffer.data(), buffer.size(), XDR_ENCODE);
    if (!routine(&xdrs, record))
        return "";
    return bytes(buffer.data(), XDR_GETPOS(&xdrs));
}

bool decode(xdrproc_t routine, void *record, const bytes &wire) {
    // A heap copy of exactly this length, so that a sanitizer sees a read past the end.
    std::vector<char> copy(wire.begin(), wire.end());
    XDR xdrs;
    xdrmem_create(&xdrs, copy.data(), copy.size(), XDR_DECODE);
    return routine(&xdrs, record);
}

class WireRecords : public testing::TestWithParam<golden_line> {};

TEST_P(WireRecords, EncodesToItsGoldenBytesDecodesAndEncodesAgain) {
    const golden_line &line = GetParam();
    ASSERT_TRUE(records().contains(line.name));
    const record_row &row = records().at(line.name);
    ASSERT_EQ(row.fields.size(), line.values.size());
    std::vector<char> record(row.size);
    std::vector<std::string> texts(line.values.size());
    for (size_t i = 0; i < line.values.size(); i++) {
        ASSERT_EQ(row.fields[i].type, line.values[i].first) << "field " << i + 1;
        put_value(record.data(), row.fields[i].offset, line.values[i].first, line.values[i].second, &texts[i]);
    }
    EXPECT_EQ(encode(row.routine, record.data()), line.wire);

    std::vector<char> decoded(row.size);
    ASSERT_TRUE(decode(row.routine, decoded.data(), line.wire));
    EXPECT_EQ(encode(row.routine, decoded.data()), line.wire);
    xdr_free(row.routine, decoded.data());
}

TEST_P(WireRecords, RefusesEveryTruncation) {
    const golden_line &line = GetParam();
    const record_row &row = records().at(line.name);
    for (size_t length = 0; length < line.wire.size(); length++) {
        std::vector<char> record(row.size);
        EXPECT_FALSE(decode(row.routine, record.data(), line.wire.substr(0, length))) << length << " bytes";
        xdr_free(row.routine, record.data());
    }
}

std::string record_name(const testing::TestParamInfo<golden_line> &info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Arguments, WireRecords, testing::ValuesIn(golden("record")), record_name);

TEST(Wire, EveryRecordOfTheTableHasGoldenBytes) {
    std::vector<golden_line> lines = golden("record");
    EXPECT_EQ(lines.size(), 164u);
    EXPECT_EQ(records().size(), lines.size());
}

TEST(Wire, BareArgumentsEncodeToTheirGoldenBytes) {
    int number = -3;
    EXPECT_EQ(encode(as_xdrproc(xdr_int), &number), golden_bytes("bare", "int"));
    char bssid[] = "00:03:7f:10:00:01";
    char *text = bssid;
    EXPECT_EQ(encode(as_xdrproc(xdr_text), &text), golden_bytes("bare", "string"));
}

TEST(Wire, TextThatClaimsMoreThanThePacketIsRefusedWithoutAllocation) {
    for (u_int claimed : {6u, 4096u, 0x7fffffffu, 0xfffffffcu, 0xffffffffu}) {
        char *text = nullptr;
        bytes wire = {static_cast<char>(claimed >> 24), static_cast<char>(claimed >> 16),
                      static_cast<char>(claimed >> 8), static_cast<char>(claimed)};
        EXPECT_FALSE(decode(as_xdrproc(xdr_text), &text, wire + "home")) << claimed;
        EXPECT_EQ(text, nullptr);
    }
}

TEST(Wire, TextOfAnyLengthThatThePacketHoldsIsDecoded) {
    std::string longest(60000, 'x');
    char *text = longest.data();
    bytes wire = encode(as_xdrproc(xdr_text), &text);
    char *decoded = nullptr;
    ASSERT_TRUE(decode(as_xdrproc(xdr_text), &decoded, wire));
    EXPECT_EQ(longest, decoded);
    xdr_free(as_xdrproc(xdr_text), reinterpret_cast<char *>(&decoded));
}

TEST(Wire, SurplusBytesBehindARecordAreIgnored) {
    wlan_set_enable_1_argument record = {};
    EXPECT_TRUE(decode(as_xdrproc(xdr_wlan_set_enable_1_argument), &record, from_hex("0000000300000001") + "more"));
    EXPECT_EQ(record.arg1, 3);
    EXPECT_EQ(record.arg2, TRUE);
}

TEST(Wire, ReturnCodesEncodeToTheirGoldenBytes) {
    auto success = WLAN_CONFIG_SUCCESS;
    auto failure = WLAN_CONFIG_FAILURE;
    EXPECT_EQ(encode(as_xdrproc(xdr_wlan_config_return_code_e), &success), golden_bytes("result", "code_success"));
    EXPECT_EQ(encode(as_xdrproc(xdr_wlan_config_return_code_e), &failure), golden_bytes("result", "code_failure"));
}

// Encodes a packed result, decodes that and encodes it again; frees both.
void expect_result(const char *name, wlan_config_result_data_t result) {
    xdrproc_t routine = as_xdrproc(xdr_wlan_config_result_data_t);
    bytes wire = golden_bytes("result", name);
    EXPECT_EQ(encode(routine, &result), wire) << name;
    wlan_config_result_data_t decoded = {};
    ASSERT_TRUE(decode(routine, &decoded, wire)) << name;
    EXPECT_EQ(encode(routine, &decoded), wire) << name;
    for (size_t length = 0; length < wire.size(); length += 4) {
        wlan_config_result_data_t cut = {};
        EXPECT_FALSE(decode(routine, &cut, wire.substr(0, length))) << name << " " << length << " bytes";
        xdr_free(routine, &cut);
    }
    xdr_free(routine, &decoded);
    xdr_free(routine, &result);
}

wlan_config_result_data_t with_code(wlan_config_return_code_e code) {
    wlan_config_result_data_t result;
    memset(&result, 0xA5, sizeof result);  // handlers pack into a record that nobody cleared
    result.return_code = code;
    return result;
}

TEST(Wire, ActionResultHasTwoEmptyMembers) {
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_nothing(&result);
    expect_result("action", result);
}

TEST(Wire, IntegersTravelAsFourTimesAsManyElementsWithZerosBehindThem) {
    const u_int value = 37, zero = 0, pair[] = {5, static_cast<u_int>(-1)};
    const int noise[] = {-95, -80, -85, -84};
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers(&result, &value, 1);
    expect_result("integer", result);
    result = with_code(WLAN_CONFIG_FAILURE);
    pack_integers(&result, &zero, 1);
    expect_result("integer_failed", result);
    result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers(&result, pair, 2);
    expect_result("integers_2", result);
    result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers(&result, noise, 4);
    expect_result("integers_4", result);
}

TEST(Wire, WideIntegersTravelLowWordFirst) {
    const int64_t packets = 0x1234567890abcdef;
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers64(&result, &packets, 1);
    expect_result("integers64_1", result);
    int64_t rssi[37];
    for (int i = 0; i < 37; i++)
        rssi[i] = i - 5;
    result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers64(&result, rssi, 37);
    expect_result("integers64_37", result);
}

const wlan_basicStats_t BASIC_STATS = {1, 2, 3, 4, 5};
const wlan_stats_t STATS = {0, 7, 8, {}, 9, {}};

TEST(Wire, StatisticsTravelAsIntegers) {
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers(&result, &BASIC_STATS, sizeof BASIC_STATS / 4);
    expect_result("basic_stats", result);
    result = with_code(WLAN_CONFIG_SUCCESS);
    pack_integers(&result, &STATS, sizeof STATS / 4);
    expect_result("stats", result);
}

TEST(Wire, StringTravelsWithItsNul) {
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_string(&result, "Up");
    expect_result("string", result);
    result = with_code(WLAN_CONFIG_FAILURE);
    pack_string(&result, "");
    expect_result("string_empty", result);
}

wlan_device_t sample_device() {
    wlan_device_t device = {};
    strcpy(device.mac, "00:03:7f:aa:bb:cc");
    strcpy(device.ip, "192.168.1.20");
    strcpy(device.capabilities, "laptop");
    strcpy(device.field_4, "11NG");
    device.connected_time = 5;
    device.state = 6;
    device.tx_packets = 7;
    device.tx_rate = 8;
    device.max_rate = 9;
    device.field_10 = -10;
    device.mc_tx_packets = 11;
    device.uc_tx_packets = 12;
    device.field_13 = 13;
    device.field_14 = 14;
    device.field_15 = 15;
    device.field_16 = 16;
    device.interface = 3;
    device.field_18 = -18;
    strcpy(device.ssid, "home");
    return device;
}

TEST(Wire, RecordTravelsAsItsMemoryImage) {
    const wlan_device_t device = sample_device();
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_image(&result, &device, sizeof device);
    expect_result("image_device", result);
}

TEST(Wire, CountedRecordTravelsWithItsCount) {
    const wlan_5g_capable_table_t table = {2, {0xaa, 0xbb, 0xcc, 0xdd}};
    wlan_config_result_data_t result = with_code(WLAN_CONFIG_SUCCESS);
    pack_counted_image(&result, 2, &table, sizeof table);
    expect_result("counted_image", result);
}

TEST(Wire, ResultDataAtItsLimitIsEncodedAndOneByteMoreIsRefused) {
    std::string data(RESULT_DATA_SIZE, 'x');
    wlan_config_result_data_t result = {};
    result.return_data = {RESULT_DATA_SIZE, data.data()};
    EXPECT_EQ(encode(as_xdrproc(xdr_wlan_config_result_data_t), &result).size(), 12u + RESULT_DATA_SIZE);
    data += 'x';
    result.return_data = {RESULT_DATA_SIZE + 1, data.data()};
    EXPECT_EQ(encode(as_xdrproc(xdr_wlan_config_result_data_t), &result), "");
}

TEST(Wire, ResultThatClaimsMoreIntegersThanThePacketHoldsIsRefused) {
    wlan_config_result_data_t result = {};
    EXPECT_FALSE(decode(as_xdrproc(xdr_wlan_config_result_data_t), &result, from_hex("0000000040000000") + "1234"));
    EXPECT_EQ(result.return_values.return_values_val, nullptr);
}

template <typename T>
void expect_struct(const char *name, bool_t (*routine)(XDR *, T *), T record) {
    bytes wire = golden_bytes("struct", name);
    EXPECT_EQ(encode(as_xdrproc(routine), &record), wire) << name;
    T decoded = {};
    ASSERT_TRUE(decode(as_xdrproc(routine), &decoded, wire)) << name;
    EXPECT_EQ(memcmp(&decoded, &record, sizeof record), 0) << name;
    T cut = {};
    EXPECT_FALSE(decode(as_xdrproc(routine), &cut, wire.substr(0, wire.size() - 4))) << name;
}

scan_entry sample_neighbour() {
    scan_entry entry = {};
    memcpy(entry.bssid, "\x00\x03\x7f\xaa\xbb\xcc", 6);
    strcpy(entry.ssid, "cafe");
    for (uint8_t i = 0; i < 12; i++) {
        entry.scan_octets_1[i] = static_cast<uint8_t>(i + 1);
        entry.scan_octets_2[i] = static_cast<uint8_t>(0xf0 + i);
    }
    entry.scan_byte_1 = 0x21;
    entry.scan_byte_2 = 0x22;
    for (uint8_t i = 0; i < 15; i++)
        entry.scan_octets_3[i] = i;
    entry.scan_flag = 1;
    entry.scan_byte_3 = 0x23;
    strcpy(entry.scan_text_1, "text1");
    entry.rssi = -56;
    strcpy(entry.auth_mode, "WPA2-PSK");
    strcpy(entry.scan_text_2, "text2");
    strcpy(entry.wireless_mode, "11NG");
    entry.scan_value = -77;
    entry.scan_byte_4 = 0xff;
    return entry;
}

TEST(Wire, StructuredRecordsTravelFieldByField) {
    expect_struct("wlan_basicStats_t", xdr_wlan_basicStats_t, BASIC_STATS);
    expect_struct("wlan_stats_t", xdr_wlan_stats_t, STATS);
    expect_struct("wlan_device_t", xdr_wlan_device_t, sample_device());
    expect_struct("scan_entry", xdr_scan_entry, sample_neighbour());
    wlan_assoc_devices_table devices = {};
    devices.NumOfEntries = 1;
    devices.Devices[0] = sample_device();
    expect_struct("wlan_assoc_devices_table", xdr_wlan_assoc_devices_table, devices);
    scan_table scan = {};
    scan.num_entries = 1;
    scan.entries[0] = sample_neighbour();
    expect_struct("scan_table", xdr_scan_table, scan);
}

TEST(Wire, DeviceListCarriesItsStations) {
    bytes wire = golden_bytes("struct", "wlan_device_result_data_t");
    wlan_device_t device = sample_device();
    wlan_device_result_data_t list = {WLAN_CONFIG_SUCCESS, {1, &device}};
    xdrproc_t routine = as_xdrproc(xdr_wlan_device_result_data_t);
    EXPECT_EQ(encode(routine, &list), wire);
    wlan_device_result_data_t decoded = {};
    ASSERT_TRUE(decode(routine, &decoded, wire));
    ASSERT_EQ(decoded.devices.devices_len, 1u);
    EXPECT_EQ(memcmp(decoded.devices.devices_val, &device, sizeof device), 0);
    xdr_free(routine, &decoded);
}

}  // namespace
