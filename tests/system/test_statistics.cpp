// Traffic counters and stations over the wire: what scenario and driver have to the byte, and tools and drivers that
// lie, refuse or say nothing.
#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <utility>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

constexpr size_t STATION_SIZE = 236;
constexpr size_t TABLE_STATIONS = 32;
const bytes NO_STATION(STATION_SIZE, '\0');
const bytes EMPTY_TABLE(7556, '\0');

// How long the VAPs have been up when nothing else is said, in seconds. A station's seconds are checked apart.
constexpr uint32_t SECONDS_UP = 100;

// --- stations, as the scenario has them and as they arrive ---

struct station {
    int vap;
    std::string mac;
    std::string ip;
    std::string capabilities;
    int rssi;
    uint32_t tx_rate, rx_rate, packets, tokens, act_tokens;
    uint16_t number;  // among those of the VAP
};
using stations = std::vector<station>;

std::string item_of(const station &one) {
    return "station " + std::to_string(one.vap) + " mac=" + one.mac + " ip=" + one.ip +
           " rssi=" + std::to_string(one.rssi) + " tx_rate=" + std::to_string(one.tx_rate) +
           " rx_rate=" + std::to_string(one.rx_rate) + " packets=" + std::to_string(one.packets) +
           " tokens=" + std::to_string(one.tokens) + " act_tokens=" + std::to_string(one.act_tokens) +
           (one.capabilities.empty() ? "" : " capabilities=" + one.capabilities);
}

std::string items_of(const stations &all) {
    std::string items;
    for (const station &one : all)
        items += item_of(one) + "\n";
    return items;
}

// The 236 bytes of a station, but for its seconds; the interface is the driver's 0xff or the table's number. The two
// words that a driver has the other way round may still be.
bytes record_of(const station &one, uint8_t interface, bool exchanged = true) {
    bool at_five = one.vap > 8;
    bytes record = NO_STATION;
    put(&record, 0, one.mac);
    put(&record, 18, one.ip);
    put(&record, 82, one.capabilities);
    put(&record, 127, at_five ? "11ACVHT80PLUSMIN" : "11NGHT20");
    put_number(&record, 148, 1);
    put_number(&record, 152, exchanged ? one.packets : one.tx_rate);
    put_number(&record, 156, exchanged ? one.tx_rate : one.packets);
    put_number(&record, 160, std::max(one.tx_rate, one.rx_rate));
    put_number(&record, 164, static_cast<uint32_t>(one.rssi));
    put_number(&record, 168, one.packets / 10);
    put_number(&record, 172, one.packets - one.packets / 10);
    put(&record, 176, bytes(1, static_cast<char>(one.number)));
    put_number(&record, 180, one.rx_rate);
    put_number(&record, 184, one.tokens);
    put_number(&record, 188, one.act_tokens);
    put(&record, 192, bytes(1, static_cast<char>(interface)));
    put_number(&record, 196, static_cast<uint32_t>(at_five ? -104 : -91));
    put(&record, 204, one.vap == 1 ? "Home" : one.vap == 16 ? "Last" : "0123456789abcdef0123456789abcde");
    return record;
}

constexpr uint8_t NOBODYS = 0xff;

const stations FAMILY = {
    {1, "28:6a:BA:4C:10:01", "192.168.0.20", "QoS/HT", 42, 130, 117, 2105, 4000000000, 640, 1},
    {1, "F0:D1:A9:27:33:02", "255.255.255.255", "", -128, 0, 10000, 4294967295, 0, 0, 2},
    {1, "D8:96:95:41:77:06", "1.2.3.4", "0123456789012345678901234567890", 127, 54, 36, 9, 1, 4294967295, 3},
};

const stations FAMILY_AT_FIVE = {
    {9, "3C:15:C2:E0:44:03", "192.168.0.22", "QoS/HT/VHT", -7, 780, 866, 7, 1000, 700, 1},
    {16, "98:01:A7:9B:55:04", "192.168.0.23", "", 1, 1, 2, 30, 4, 5, 1},
    {9, "B8:27:EB:12:66:05", "192.168.0.24", "QoS", 19, 130, 72, 6000, 10, 20, 2},
};

std::string hexadecimal(size_t octet) {
    const char digits[] = "0123456789ABCDEF";
    return {digits[octet >> 4 & 15], digits[octet & 15]};
}

// So many stations of VAP 1, each of which differs from the others in every field that can.
stations many_stations(int count) {
    stations all;
    for (int i = 0; i < count; i++) {
        auto n = static_cast<uint32_t>(i);
        all.push_back({1, "00:11:22:33:44:" + hexadecimal(n), "10.0.0." + std::to_string(i), "C" + std::to_string(i),
                       i - 60, 1000 + n, 1200 - n, 50000 + n, 60000 + n, 70000 + n, static_cast<uint16_t>(i + 1)});
    }
    return all;
}

// What a driver has that tells of more stations than there are.
stations repeated(const stations &all, size_t count) {
    stations list;
    for (size_t i = 0; i < count; i++) {
        list.push_back(all[i % all.size()]);
        if (i < all.size())
            continue;
        size_t first = std::stoul(list[i].mac.substr(0, 2), nullptr, 16);
        put(&list[i].mac, 0, hexadecimal(first | 2));
        put(&list[i].mac, 12, hexadecimal(i >> 8) + ":" + hexadecimal(i & 0xff));
    }
    return list;
}

// --- calls ---

bytes number_reply(int index) {
    return call(PROC_wlan_get_assoc_devices_num, vap(index)).result;
}

bytes entries_reply(int index) {
    return call(PROC_wlan_get_assoc_devices_table_num_of_entries, vap(index)).result;
}

bytes station_reply(int index, int place) {
    return call(PROC_wlan_get_assoc_device, vap(index) + vap(place)).result;
}

bytes table_reply(int index) {
    return call(PROC_wlan_get_assoc_devices_table, vap(index)).result;
}

// Takes the seconds of a station, which go on, out of its record in a reply: they are those since the VAP came up.
void take_seconds(bytes *reply, size_t record) {
    uint32_t seconds = number_in(*reply, record + 144);
    EXPECT_GE(seconds, SECONDS_UP);
    EXPECT_LT(seconds, SECONDS_UP + 60);
    if (reply->size() >= record + STATION_SIZE)
        put_number(reply, record + 144, 0);
}

// Where the record of a result begins: behind the code and two lengths.
constexpr size_t RECORD = 12;

void expect_station(int index, int place, const bytes &record) {
    bytes reply = station_reply(index, place);
    take_seconds(&reply, RECORD);
    EXPECT_TRUE(same_bytes(reply, image_reply(0, record)));
}

void expect_no_station(int index, int place) {
    EXPECT_TRUE(same_bytes(station_reply(index, place), image_reply(-1, NO_STATION)));
}

// The table with these records; those beyond its end are left out, and those that nobody filled are zero.
void expect_table(int index, const std::vector<bytes> &records) {
    size_t count = std::min(records.size(), TABLE_STATIONS);
    bytes reply = table_reply(index), table = EMPTY_TABLE;
    put_number(&table, 0, static_cast<uint32_t>(count));
    for (size_t i = 0; i < count; i++) {
        put(&table, 4 + i * STATION_SIZE, records[i]);
        if (number_in(records[i], 0) != 0)
            take_seconds(&reply, RECORD + 4 + i * STATION_SIZE);
    }
    EXPECT_TRUE(same_bytes(reply, image_reply(0, table)));
}

std::vector<bytes> records_of(const stations &all, uint8_t interface) {
    std::vector<bytes> records;
    for (const station &one : all)
        records.push_back(record_of(one, interface));
    return records;
}

// A result of words, with four times as many in its list: those behind the last are zero.
bytes words_reply(int code, const std::vector<uint32_t> &words) {
    bytes reply = vap(code) + xdr_word(static_cast<uint32_t>(4 * words.size()));
    for (uint32_t word : words)
        reply += xdr_word(word);
    return reply + bytes(12 * words.size(), '\0') + xdr_word(0);
}

bytes basic_reply(int index) {
    return call(PROC_wlan_get_basic_stats, vap(index)).result;
}

bytes detailed_reply(int index) {
    return call(PROC_wlan_get_stats, vap(index)).result;
}

class Statistics : public ScenarioGateway {
protected:
    void SetUp() override {
        ScenarioGateway::SetUp();
        set_driver(SECONDS_UP);
    }
};

// --- stations ---

TEST_F(Statistics, AStationTravelsToTheByte) {
    set_items(items_of(FAMILY));
    for (int place : {0, 1, 2})
        expect_station(1, place, record_of(FAMILY[static_cast<size_t>(place)], NOBODYS));
    for (int place : {3, 126, 127, 128, 256, -1, INT_MIN, INT_MAX})
        expect_no_station(1, place);
}

TEST_F(Statistics, StationsOfEachVapAreItsOwn) {
    set_items(items_of(FAMILY) + items_of(FAMILY_AT_FIVE));
    expect_table(1, records_of(FAMILY, 0));
    expect_table(9, records_of({FAMILY_AT_FIVE[0], FAMILY_AT_FIVE[2]}, 8));
    expect_table(16, records_of({FAMILY_AT_FIVE[1]}, 15));
    expect_station(9, 1, record_of(FAMILY_AT_FIVE[2], NOBODYS));
    expect_station(16, 0, record_of(FAMILY_AT_FIVE[1], NOBODYS));
    expect_no_station(16, 1);
}

TEST_F(Statistics, ATableHasTheFirstThirtyTwoStationsInTheDriversOrder) {
    for (int count : {0, 1, 3, 31, 32, 33, 40, 127}) {
        SCOPED_TRACE(count);
        stations all = many_stations(count);
        set_items(items_of(all));
        EXPECT_EQ(number_reply(1), integer_reply(0, static_cast<uint32_t>(count)));
        EXPECT_EQ(entries_reply(1), integer_reply(0, static_cast<uint32_t>(count)));
        expect_table(1, records_of(all, 0));
        expect_no_station(1, count);
        if (count > 0)
            expect_station(1, count - 1, record_of(all.back(), NOBODYS));
    }
}

TEST_F(Statistics, EachCallAsksTheDriverAsFarAsItNeeds) {
    set_items(items_of(FAMILY));
    number_reply(1);
    entries_reply(9);
    table_reply(9);
    table_reply(1);
    station_reply(1, 5);
    station_reply(1, 2);
    EXPECT_EQ(requests(),
              (strings{"ioctl ath0 0x89fc.41 12 = 0", "ioctl ath8 0x89fc.41 12 = 0", "ioctl ath8 0x89fc.41 12 = 0",
                       "ioctl ath0 0x89fc.41 12 = 0", "ioctl ath0 0x89fc.42 12 = 0", "ioctl ath0 0x89fc.41 12 = 0",
                       "ioctl ath0 0x89fc.41 12 = 0", "ioctl ath0 0x89fc.42 12 = 0"}));
    EXPECT_EQ(commands(), strings{});
}

// Waits for this number of stations, a second at most; the number that there was at the end.
bytes wait_for_number(uint32_t number) {
    bytes reply = number_reply(1);
    for (int i = 0; i < 200 && reply != integer_reply(0, number); i++, usleep(5000))
        reply = number_reply(1);
    return reply;
}

uint32_t words_of_table(int place, size_t offset) {
    return number_in(table_reply(1), RECORD + 4 + static_cast<size_t>(place) * STATION_SIZE + offset);
}

TEST_F(Statistics, StationsComeAndGo) {
    const station &guest = FAMILY[1];
    set_items(item_of(guest) + " from=0.3 until=0.8\n" + items_of({FAMILY[2]}));
    double begin = driver_seconds();
    set_driver(0);
    EXPECT_EQ(number_reply(1), integer_reply(0, 1));
    EXPECT_EQ(wait_for_number(2), integer_reply(0, 2));
    EXPECT_GE(driver_seconds() - begin, 0.3);
    EXPECT_EQ(wait_for_number(1), integer_reply(0, 1));
    EXPECT_GE(driver_seconds() - begin, 0.8);
    EXPECT_EQ(words_of_table(0, 156), FAMILY[2].tx_rate);
}

// One that comes stands where the scenario has it, not where the list was at its end.
TEST_F(Statistics, AStationThatComesTakesItsPlaceAndItsTime) {
    set_items(item_of(FAMILY[0]) + " from=1000 until=3000\n" + items_of({FAMILY[1]}));
    EXPECT_EQ(number_reply(1), integer_reply(0, 1));
    set_driver(1000 + SECONDS_UP);
    EXPECT_EQ(number_reply(1), integer_reply(0, 2));
    expect_station(1, 0, record_of(FAMILY[0], NOBODYS));
    set_driver(3000);
    EXPECT_EQ(number_reply(1), integer_reply(0, 1));
    EXPECT_EQ(words_of_table(0, 156), FAMILY[1].tx_rate);
}

TEST_F(Statistics, PacketsOfAStationGrowWithItsTime) {
    set_items("station 1 mac=00:00:00:00:00:01 ip=1.1.1.1 rssi=1 tx_rate=1 rx_rate=1 packets=1000+10\n");
    bytes reply = station_reply(1, 0);
    uint32_t seconds = number_in(reply, RECORD + 144), packets = number_in(reply, RECORD + 152);
    EXPECT_GE(seconds, SECONDS_UP);
    EXPECT_GE(packets, 1000 + 10 * seconds);
    EXPECT_LE(packets, 1000 + 10 * (seconds + 1));
    EXPECT_EQ(number_in(reply, RECORD + 168) + number_in(reply, RECORD + 172), packets);
}

TEST_F(Statistics, AnInterfaceThatIsNotThereHasNoStationsAndOneOfTheCountsSaysSo) {
    set_items(items_of(FAMILY));
    for (int index : {0, -1, 2, 8, 17, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(number_reply(index), integer_reply(-1, 0));
        EXPECT_EQ(entries_reply(index), integer_reply(0, 0));
        expect_no_station(index, 0);
        EXPECT_TRUE(same_bytes(table_reply(index), image_reply(-1, EMPTY_TABLE)));
    }
}

TEST_F(Statistics, EachRequestThatTheDriverRefusesFailsAlone) {
    const struct {
        const char *fault;
        bool number, table;  // these are as ever
    } rows[] = {
        {"ioctl:0x89fc.41", false, false}, {"ioctl:0x89fc.42", true, false}, {"ioctl:0x89fc", false, false},
        {"ioctl:0x89fc.39", true, true},   {"ioctl:0x8b18", true, true},
    };
    set_items(items_of(FAMILY));
    for (const auto &row : rows) {
        SCOPED_TRACE(row.fault);
        fault(std::string(row.fault) + " EPERM");
        EXPECT_EQ(number_reply(1), row.number ? integer_reply(0, 3) : integer_reply(-1, 0));
        EXPECT_EQ(entries_reply(1), integer_reply(0, row.number ? 3 : 0));
        if (row.table) {
            expect_station(1, 2, record_of(FAMILY[2], NOBODYS));
            expect_table(1, records_of(FAMILY, 0));
        } else {
            expect_no_station(1, 2);
            EXPECT_TRUE(same_bytes(table_reply(1), image_reply(-1, EMPTY_TABLE)));
        }
        fault(std::string(row.fault) + " off");
        expect_table(1, records_of(FAMILY, 0));
    }
}

// What a driver tells of three stations, and the number that this is: its lowest seven bits. A driver that repeats its
// stations fills as many; to one below zero it has no more than it has.
const struct {
    const char *told;
    uint32_t number;
    size_t filled;
} COUNTS[] = {
    {"0", 0, 0},
    {"1", 1, 1},
    {"31", 31, 31},
    {"32", 32, 32},
    {"33", 33, 33},
    {"64", 64, 64},
    {"65", 65, 65},
    {"127", 127, 127},
    {"128", 0, 0},
    {"129", 1, 1},
    {"255", 127, 127},
    {"256", 0, 0},
    {"300", 44, 44},
    {"4096", 0, 0},
    {"4097", 1, 1},
    {"-1", 127, 3},
    {"-2147483648", 0, 0},
    {"2147483647", 127, 127},
    {"4294967295", 127, 127},
};

TEST_F(Statistics, WhateverNumberTheDriverTellsItsLowestSevenBitsCount) {
    set_items(items_of(FAMILY));
    for (const auto &row : COUNTS) {
        SCOPED_TRACE(row.told);
        fault(std::string("station_count ") + row.told);
        EXPECT_EQ(number_reply(1), integer_reply(0, row.number));
        EXPECT_EQ(entries_reply(1), integer_reply(0, row.number));
        stations listed = repeated(FAMILY, row.filled);
        std::vector<bytes> records = records_of(listed, 0);
        while (records.size() < row.number)
            records.push_back(NO_STATION);
        expect_table(1, records);
        if (row.filled > 0)
            expect_station(1, static_cast<int>(row.filled) - 1, record_of(listed.back(), NOBODYS));
        for (int beyond : {static_cast<int>(row.number), 200, -1})
            expect_no_station(1, beyond);
    }
}

TEST_F(Statistics, StationsThatTheDriverTellsOfAndDoesNotHaveAreZeros) {
    fault("station_count 127");
    bytes table = EMPTY_TABLE;
    put_number(&table, 0, TABLE_STATIONS);
    EXPECT_TRUE(same_bytes(station_reply(9, 126), image_reply(0, NO_STATION)));
    // The table's entries have their interface all the same.
    for (size_t i = 0; i < TABLE_STATIONS; i++)
        put(&table, 4 + i * STATION_SIZE + 192, bytes(1, 8));
    EXPECT_TRUE(same_bytes(table_reply(9), image_reply(0, table)));
}

// What a driver says of the table's number, and how many of forty stations have the two words exchanged for it: as many
// as its lowest byte.
const struct {
    const char *told;
    size_t exchanged;
} TABLE_COUNTS[] = {
    {"0", 0},    {"1", 1},    {"31", 31},  {"32", 32},  {"33", 33},         {"39", 39},         {"40", 40},
    {"64", 40},  {"65", 40},  {"127", 40}, {"128", 40}, {"255", 40},        {"256", 0},         {"257", 1},
    {"300", 40}, {"4096", 0}, {"4097", 1}, {"-1", 40},  {"-2147483648", 0}, {"2147483647", 40}, {"4294967295", 40},
};

TEST_F(Statistics, WhateverTheDriverSaysOfItsTableNoMoreThanItIsExchanged) {
    stations all = many_stations(40);
    set_items(items_of(all));
    for (const auto &row : TABLE_COUNTS) {
        SCOPED_TRACE(row.told);
        fault(std::string("table_count ") + row.told);
        std::vector<bytes> records;
        for (size_t i = 0; i < all.size(); i++)
            records.push_back(record_of(all[i], 0, i < row.exchanged));
        expect_table(1, records);
        for (size_t i : {size_t{0}, size_t{32}, size_t{39}})
            expect_station(1, static_cast<int>(i), record_of(all[i], NOBODYS, i < row.exchanged));
        EXPECT_EQ(number_reply(1), integer_reply(0, 40));
    }
}

TEST_F(Statistics, ALieAboutBothNumbersIsSurvivedToo) {
    set_items(items_of(FAMILY));
    fault("station_count -1");
    fault("table_count -1");
    std::vector<bytes> records = records_of(FAMILY, 0);
    bytes nobody = NO_STATION;
    records.resize(127, nobody);
    expect_table(1, records);
    fault("station_count 33");
    fault("table_count 2147483647");
    expect_table(1, records_of(repeated(FAMILY, 33), 0));
}

// --- texts without an end, and lines ---

std::string filled(const std::string &text, size_t size) {
    return text + std::string(size - text.size(), 'x');
}

TEST_F(Statistics, TextsWithoutAnEndTravelAsTheyAre) {
    set_items(items_of(FAMILY));
    fault("texts unterminated");
    set_debug(true);
    bytes record = record_of(FAMILY[0], NOBODYS);
    put(&record, 0, filled(FAMILY[0].mac, 18));
    put(&record, 18, filled("192.168.0.20", 64));
    put(&record, 82, filled("QoS/HT", 45));
    put(&record, 127, filled("11NGHT20", 17));
    put(&record, 204, filled("Home", 32));
    expect_station(1, 0, record);
    EXPECT_EQ(lines_with({"[VLK-API] wlan_get_assoc_device_1_svc  WLAN RPC server : device MAC="}),
              strings{"[VLK-API] wlan_get_assoc_device_1_svc  WLAN RPC server : device MAC=28:6a:BA:4C:10:01x IP=" +
                      filled("192.168.0.20", 64) + " "});
    put(&record, 192, bytes(1, 0));
    bytes reply = table_reply(1);
    put_number(&reply, RECORD + 4 + 144, 0);
    EXPECT_TRUE(same_bytes(reply.substr(RECORD + 4, STATION_SIZE), record));
}

TEST_F(Statistics, ADebuggerIsToldWhoTheStationIs) {
    set_items(items_of(FAMILY));
    set_debug(true);
    station_reply(1, 1);
    station_reply(1, 3);
    const std::string handler = "[VLK-API] wlan_get_assoc_device_1_svc  WLAN RPC server : ";
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log_mark),
              (strings{handler + "[index 1][device 1]", handler + "device MAC=F0:D1:A9:27:33:02 IP=255.255.255.255 ",
                       handler + "result->return_data.return_data_len = 236", handler + "[index 1][device 3]",
                       handler + "device MAC= IP= ", handler + "result->return_data.return_data_len = 236"}));
}

TEST_F(Statistics, ADebuggerIsToldOfTheTableItsNumberAndItsBuffer) {
    set_items(items_of(FAMILY));
    set_debug(true);
    table_reply(1);
    strings lines = lines_with({"[VLK-API] wlan_getAssocDevicesTable_2 "});
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "[VLK-API] wlan_getAssocDevicesTable_2 wlan_getAssocDevicesTable_2:4881 entry_num 3 ");
    unsigned address = 0;
    char end = 0;
    EXPECT_EQ(
        sscanf(lines[1].c_str(), "[VLK-API] wlan_getAssocDevicesTable_2 scan buffer is at 0x%8x%c", &address, &end), 1);
    EXPECT_GT(address, 0u);
}

TEST_F(Statistics, WithoutADebuggerNothingIsSaid) {
    set_items(items_of(FAMILY));
    for (int index : {1, 9}) {
        number_reply(index);
        entries_reply(index);
        station_reply(index, 0);
        table_reply(index);
        basic_reply(index);
        detailed_reply(index);
    }
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log_mark), strings{});
}

// --- counters ---

// Some of them with more than 32 bits, of which clients get the lower ones.
const char COUNTERS[] =
    "counters 1 rx_packets=123457+0 tx_packets=8000001+0 rx_bytes=4294967296+0 tx_bytes=12345678901\n"
    "counters 9 rx_packets=4294967295+0 tx_packets=17+0 rx_bytes=5+0 tx_bytes=6+0\n";

constexpr uint32_t RX_PACKETS = 123457, TX_PACKETS = 8000001, RX_BYTES = 0, TX_BYTES = 3755744309;

TEST_F(Statistics, BasicCountersAreThoseOfTheScenario) {
    set_items(COUNTERS + items_of(FAMILY) + items_of(FAMILY_AT_FIVE));
    EXPECT_EQ(basic_reply(1), words_reply(0, {TX_BYTES, RX_BYTES, TX_PACKETS, RX_PACKETS, 3}));
    EXPECT_EQ(basic_reply(9), words_reply(0, {6, 5, 17, 4294967295, 2}));
    EXPECT_EQ(basic_reply(16), words_reply(0, {0, 0, 0, 0, 1}));
    EXPECT_EQ(commands(), (strings{"ifconfig ath0", "wlanconfig ath0 list sta", "ifconfig ath8",
                                   "wlanconfig ath8 list sta", "ifconfig ath15", "wlanconfig ath15 list sta"}));
}

TEST_F(Statistics, BasicCountersMove) {
    set_items("counters 1 rx_packets=1000+10 tx_packets=2000+20 rx_bytes=3000+30 tx_bytes=4000+40\n");
    bytes reply = basic_reply(1);
    const uint32_t per_second[] = {40, 30, 20, 10};
    for (size_t i = 0; i < 4; i++) {
        uint32_t word = word_at(reply, 8 + 4 * i), least = per_second[i] * (100 + SECONDS_UP);
        EXPECT_GE(word, least) << i;
        EXPECT_LT(word, least + per_second[i] * 60) << i;
    }
    EXPECT_EQ(word_at(reply, 24), 0u);
}

TEST_F(Statistics, BasicStatisticsCountAsManyStationsAsThereAre) {
    for (int count : {0, 1, 33, 127}) {
        set_items(items_of(many_stations(count)));
        EXPECT_EQ(word_at(basic_reply(1), 24), static_cast<uint32_t>(count));
    }
}

TEST_F(Statistics, BasicStatisticsOfAnInterfaceThatIsNotThereFail) {
    set_items(COUNTERS);
    for (int index : {0, 2, 8, 17, INT_MAX, -1, INT_MIN})
        EXPECT_EQ(basic_reply(index), words_reply(-1, {0, 0, 0, 0, 0})) << index;
    EXPECT_EQ(commands(), (strings{"ifconfig ath-1", "ifconfig ath1", "ifconfig ath7", "ifconfig ath16",
                                   "ifconfig ath2147483646"}));
}

struct tool_row {
    const char *fault;
    int code;
    std::vector<uint32_t> words;
    const char *logged;  // what is missing
};

class StatisticsTools : public Statistics {
protected:
    void expect_rows(const std::vector<tool_row> &rows, uint32_t procedure, const std::string &back_end) {
        set_items(COUNTERS + items_of(FAMILY));
        bytes usual = call(procedure, vap(1)).result;
        set_debug(true);
        std::string line = "[VLK-API] ";
        line.append(back_end).append(" ").append(back_end).append(": ");
        for (const tool_row &row : rows) {
            SCOPED_TRACE(row.fault);
            fault(row.fault);
            log_mark = mark_of(SERVER_LOG_FILE);
            EXPECT_EQ(call(procedure, vap(1)).result, words_reply(row.code, row.words));
            EXPECT_EQ(lines_with({line}), *row.logged ? strings{line + row.logged} : strings{});
            fault("off");
            EXPECT_EQ(call(procedure, vap(1)).result, usual);
        }
    }
};

TEST_F(StatisticsTools, BasicStatisticsAreReadAsFarAsTheToolsTell) {
    const std::vector<uint32_t> none(5, 0), all = {TX_BYTES, RX_BYTES, TX_PACKETS, RX_PACKETS, 0};
    expect_rows(
        {{"ifconfig silent", -1, none, "get rx packets statistics failed"},
         {"ifconfig fail", -1, none, "get rx packets statistics failed"},
         {"ifconfig missing", -1, none, "get rx packets statistics failed"},
         {"ifconfig garbage", -1, none, "get rx packets statistics failed"},
         {"ifconfig nomarkers", -1, none, "get rx packets statistics failed"},
         {"ifconfig nomarkers 1", -1, none, "get rx packets statistics failed"},
         {"ifconfig nomarkers 2", -1, {0, 0, 0, RX_PACKETS, 0}, "get tx packets statistics failed"},
         {"ifconfig nomarkers 3", -1, {0, 0, TX_PACKETS, RX_PACKETS, 0}, "get rx bytes statistics failed"},
         {"ifconfig nomarkers 4", -1, {0, RX_BYTES, TX_PACKETS, RX_PACKETS, 0}, "get tx bytes statistics failed"},
         {"wlanconfig silent", 0, all, ""},
         {"wlanconfig fail", 0, all, ""},
         {"wlanconfig missing", 0, all, ""},
         {"wlanconfig garbage", 0, all, ""},
         {"wlanconfig nomarkers", 0, all, ""},
         {"wlanconfig nomarkers 1", 0, all, ""},
         {"popen ENOMEM", -1, none, ""}},
        PROC_wlan_get_basic_stats, "wlan_getBasicStats");
}

// Of 123457 packets received a thousandth is broken, of 8000001 sent an eighth goes to many.
constexpr uint32_t RX_ERRORS = 123, TX_UNICAST = 7000001, TX_MULTICAST = 1000000;

std::vector<uint32_t> detailed(uint32_t errors, uint32_t unicast, uint32_t multicast) {
    return {0, errors, unicast, 0, 0, 0, multicast, 0, 0, 0, 0};
}

TEST_F(StatisticsTools, DetailedStatisticsAreReadAsFarAsTheToolTells) {
    expect_rows(
        {{"apstats silent", -1, detailed(0, 0, 0), "get Wlan_ErrorsReceived failed"},
         {"apstats fail", -1, detailed(0, 0, 0), "get Wlan_ErrorsReceived failed"},
         {"apstats missing", -1, detailed(0, 0, 0), "get Wlan_ErrorsReceived failed"},
         {"apstats garbage", -1, detailed(0, 0, 0), "get Wlan_ErrorsReceived failed"},
         {"apstats nomarkers", -1, detailed(0, 0, 0), "get Wlan_ErrorsReceived failed"},
         {"apstats nomarkers 1", -1, detailed(0, 0, 0), "get Wlan_ErrorsReceived failed"},
         {"apstats nomarkers 2", -1, detailed(RX_ERRORS, 0, 0), "get wlan_UnicastPacketsSent failed"},
         {"apstats nomarkers 3", -1, detailed(RX_ERRORS, TX_UNICAST, 0), "get Wlan_MulticastPacketsSent failed"},
         {"popen ENOMEM", -1, detailed(0, 0, 0), ""}},
        PROC_wlan_get_stats, "wlan_getStats");
}

TEST_F(Statistics, DetailedCountersAreThoseOfTheTool) {
    set_items(COUNTERS + items_of(FAMILY));
    EXPECT_EQ(detailed_reply(1), words_reply(0, detailed(RX_ERRORS, TX_UNICAST, TX_MULTICAST)));
    EXPECT_EQ(detailed_reply(9), words_reply(0, detailed(4294967, 15, 2)));
    EXPECT_EQ(commands(), (strings{"apstats -v -i ath0", "apstats -v -i ath8"}));
}

TEST_F(Statistics, DetailedStatisticsOfAVapOrARadioThatIsDisabledAreZerosAndNoToolIsRun) {
    set_items(COUNTERS);
    const bytes none = words_reply(-1, detailed(0, 0, 0));
    const strings radios = {"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1"};
    const strings switches[] = {
        {"AP_RADIO_ENABLED_2=0", "AP_ENABLE=1", "AP_RADIO_ENABLED=0", "AP_ENABLE_9=1"},
        {"AP_RADIO_ENABLED_2=1", "AP_ENABLE=0", "AP_RADIO_ENABLED=1", "AP_ENABLE_9=0"},
        {"AP_RADIO_ENABLED_2=1", "AP_RADIO_ENABLED=1"},
        {},
    };
    for (const strings &lines : switches) {
        strings store = radios;
        store.insert(store.end(), lines.begin(), lines.end());
        set_store(store);
        EXPECT_EQ(detailed_reply(1), none);
        EXPECT_EQ(detailed_reply(9), none);
    }
    EXPECT_EQ(commands(), strings{});
}

TEST_F(Statistics, DetailedStatisticsOfANegativeIndexAreZerosAndNoToolIsRun) {
    for (int index : {-1, INT_MIN})
        EXPECT_EQ(detailed_reply(index), words_reply(-1, detailed(0, 0, 0))) << index;
    EXPECT_EQ(commands(), strings{});
}

TEST_F(Statistics, DetailedStatisticsOfAnInterfaceThatIsNotThereFail) {
    set_items(COUNTERS);
    // Enabled in the store, but down.
    set_store({"AP_VAP_NUM=8", "AP_RADIO_ENABLED_2=1", "AP_ENABLE_2=1"});
    EXPECT_EQ(detailed_reply(2), words_reply(-1, detailed(0, 0, 0)));
    EXPECT_EQ(commands(), strings{"apstats -v -i ath1"});
    for (int index : {0, 17, INT_MAX})
        EXPECT_EQ(detailed_reply(index), words_reply(-1, detailed(0, 0, 0))) << index;
}

// --- a long life ---

TEST_F(Statistics, HundredsOfCallsLeaveNothingOpen) {
    set_items(COUNTERS + items_of(FAMILY));
    const struct {
        uint32_t procedure;
        int count;
    } rows[] = {{PROC_wlan_get_assoc_devices_num, 200},   {PROC_wlan_get_assoc_devices_table_num_of_entries, 200},
                {PROC_wlan_get_assoc_devices_table, 200}, {PROC_wlan_get_assoc_device, 200},
                {PROC_wlan_get_basic_stats, 30},          {PROC_wlan_get_stats, 30}};
    number_reply(1);
    size_t before = open_files_of_child();
    for (const auto &row : rows) {
        ASSERT_TRUE(call_often(row.procedure, vap(1) + vap(0), row.count));
        EXPECT_EQ(open_files_of_child(), before) << row.procedure;
    }
}

}  // namespace
