// Site survey: what each operation asks of the driver, what becomes of its answers, whatever they are, and what is
// printed.
#include "survey/site_survey.h"

#include <ctype.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <string>
#include <vector>

#include "handlers/handlers.h"
#include "tests/support/driver.h"
#include "tests/support/low_memory.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"
#include "tests/support/store_lock.h"

namespace {

// --- the driver's side ---

// The layout as clients know it, in numbers of its own.
constexpr size_t ENTRY_SIZE = 128;
constexpr size_t TABLE_SIZE = 8196;
constexpr size_t ENTRIES_OFFSET = 4;
constexpr size_t SSID_OFFSET = 6;
constexpr size_t FLAG_OFFSET = 79;
constexpr size_t RSSI_OFFSET = 87;
constexpr size_t AUTH_MODE_OFFSET = 88;
constexpr size_t WIRELESS_MODE_OFFSET = 111;

constexpr unsigned long SCAN_TRIGGER = 0x8B18;
constexpr unsigned long DRIVER_REQUEST = 0x89FC;
constexpr uint32_t STATUS = 38;
constexpr uint32_t COUNT = 39;
constexpr uint32_t RESULTS = 40;

// Beyond this a count is not believed.
constexpr uint32_t BELIEVED_MAX = 4096;

// The bytes of one network.
std::string network(int rssi, const std::string &ssid = "") {
    std::string entry(ENTRY_SIZE, '\0');
    entry.replace(SSID_OFFSET, ssid.size(), ssid);
    entry[RSSI_OFFSET] = static_cast<char>(rssi);
    return entry;
}

// A driver with a survey. By default it tells the truth of the networks that it has.
struct surveying_driver {
    int status = 3;
    std::vector<std::string> networks;
    bool lies = false;          // then of the number: told instead
    uint32_t told = 0;          // the value word
    uint32_t refused = 0;       // refuses this command
    bool spoils_block = false;  // leaves other words behind in the block of the results
    uint32_t buffer = 0;        // where the list was asked for
    std::string found_there;    // what was in it before
};
surveying_driver survey;

uint32_t number_told() {
    return survey.lies ? survey.told : static_cast<uint32_t>(survey.networks.size());
}

// Fills a list as far as it has room.
void deliver(const driver_command &block) {
    survey.buffer = block.buffer;
    std::string bytes;
    for (size_t i = 0; i < survey.networks.size() && i < block.value; i++) {
        bytes += survey.networks[i];
    }
    auto *memory = static_cast<const char *>(low_memory_at(block.buffer));
    if (memory) {
        survey.found_there.assign(memory, block.value * ENTRY_SIZE);
    }
    write_buffer(block.buffer, bytes);
}

request_answer answer_survey(const seen_request &request) {
    if (request.request != DRIVER_REQUEST) {
        return ANSWERED();
    }
    driver_command block = block_of(request);
    if (block.command == RESULTS) {
        deliver(block);
    }
    if (block.command == survey.refused) {
        return REFUSED(EIO);
    }
    switch (block.command) {
        case STATUS:
            return {0, survey.status, "", NO_LENGTH};
        case COUNT:
            return ANSWERED(bytes_of({COUNT, number_told(), 0}));
        case RESULTS:
            return ANSWERED(survey.spoils_block ? bytes_of({0, UINT_MAX, 0}) : "");
    }
    ADD_FAILURE() << "command " << block.command;
    return REFUSED(EINVAL);
}

struct SiteSurvey : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_driver();
        survey = {};
        answer_request = answer_survey;
        wlan_ioctl_socket();
    }
};

// Equal networks, each with its place as its name.
std::vector<std::string> networks_of(const std::vector<int> &strengths) {
    std::vector<std::string> networks;
    for (int strength : strengths) {
        networks.push_back(network(strength, std::string(1, static_cast<char>('a' + networks.size()))));
    }
    return networks;
}

std::vector<std::string> many_networks(size_t count) {
    return std::vector<std::string>(count, network(-50, "net"));
}

void tell(uint32_t count) {
    survey.lies = true;
    survey.told = count;
}

// --- what is read ---

std::string image_of(const scan_table &table) {
    return {reinterpret_cast<const char *>(&table), sizeof(table)};
}

struct survey_reading {
    int result;
    std::string image;  // of the table

    size_t count() const {
        return static_cast<uint8_t>(image[0]);
    }
    std::string entry(size_t i) const {
        return image.substr(ENTRIES_OFFSET + i * ENTRY_SIZE, ENTRY_SIZE);
    }
    int rssi(size_t i) const {
        return static_cast<signed char>(entry(i)[RSSI_OFFSET]);
    }
    // First letters of the names.
    std::string order() const {
        std::string letters;
        for (size_t i = 0; i < count(); i++) {
            letters += entry(i)[SSID_OFFSET];
        }
        return letters;
    }
};

survey_reading read_table(int index = 1) {
    scan_table table = {};
    int result = wlan_getApScanResult_2(index, &table);
    return {result, image_of(table)};
}

const std::string EMPTY_TABLE(TABLE_SIZE, '\0');

// Whether there is memory at an address below 4 GiB.
bool is_mapped(uint32_t address) {
    constexpr uint32_t PAGE_MASK = 4095;
    return msync(low_memory_at(address & ~PAGE_MASK), 1, MS_ASYNC) == 0;
}

calls interfaces_asked() {
    calls names;
    for (const seen_request &request : requests) {
        names.push_back(request.interface);
    }
    return names;
}

std::vector<uint32_t> commands_asked() {
    std::vector<uint32_t> numbers;
    for (const seen_request &request : requests) {
        if (request.request == DRIVER_REQUEST) {
            numbers.push_back(block_of(request).command);
        }
    }
    return numbers;
}
using numbers = std::vector<uint32_t>;

// --- starting a survey ---

using SurveyTrigger = SiteSurvey;

TEST_F(SurveyTrigger, AsksTheDriverOfTheVapForAFullScanWithoutParameters) {
    EXPECT_EQ(wlan_ApSiteSurvey(9), 0);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].interface, "ath8");
    EXPECT_EQ(requests[0].request, SCAN_TRIGGER);
    EXPECT_EQ(requests[0].data, nullptr);
    EXPECT_EQ(requests[0].length, 0);
    EXPECT_EQ(requests[0].flags, 0);
}

TEST_F(SurveyTrigger, HasASocketOfItsOwnThatNobodyInherits) {
    wlan_ApSiteSurvey(1);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_NE(requests[0].descriptor, wlan_ioctl_socket());
    EXPECT_TRUE(requests[0].is_closed_on_exec);
}

TEST_F(SurveyTrigger, FailsWhenTheDriverRefuses) {
    answer_request = [](const seen_request &) { return REFUSED(EBUSY); };
    int status = 0;
    printed_text printed = capture([&] { status = wlan_ApSiteSurvey(1); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(SurveyTrigger, SucceedsWhateverElseTheDriverReturns) {
    answer_request = [](const seen_request &) { return request_answer{0, 7, "", NO_LENGTH}; };
    EXPECT_EQ(wlan_ApSiteSurvey(1), 0);
}

TEST_F(SurveyTrigger, FailsWithoutASocketAndReachesNobody) {
    begin_descriptor_shortage();
    int status = wlan_ApSiteSurvey(1);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_TRUE(requests.empty());
}

// --- each question ---

using SurveyQuestions = SiteSurvey;

TEST_F(SurveyQuestions, TheStatusIsWhatTheDriverReturns) {
    for (int told : {0, 1, 2, 3, 4, 255, INT_MAX}) {
        survey.status = told;
        int status = UNTOUCHED;
        EXPECT_EQ(wlan_ApSiteSurveyStatus(2, &status), 0);
        EXPECT_EQ(status, told);
    }
    EXPECT_EQ(requests[0].interface, "ath1");
    EXPECT_EQ(requests[0].request, DRIVER_REQUEST);
    EXPECT_EQ(requests[0].bytes, bytes_of({STATUS, 0, 0}));
    EXPECT_EQ(requests[0].descriptor, wlan_ioctl_socket());
}

TEST_F(SurveyQuestions, ARefusedStatusIsMinusOneWithoutAFailure) {
    survey.refused = STATUS;
    int status = UNTOUCHED;
    printed_text printed = capture([&] { EXPECT_EQ(wlan_ApSiteSurveyStatus(1, &status), 0); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(SurveyQuestions, TheNumberIsTheValueWordWhateverItIs) {
    struct {
        uint32_t told;
        int count;
    } rows[] = {{0, 0}, {1, 1}, {300, 300}, {0x7fffffff, INT_MAX}, {0x80000000, INT_MIN}, {0xffffffff, -1}};
    for (const auto &row : rows) {
        tell(row.told);
        EXPECT_EQ(number_of(wlan_getApScanNumOfEntries, 16), row.count);
    }
    EXPECT_EQ(requests[0].interface, "ath15");
    EXPECT_EQ(requests[0].request, DRIVER_REQUEST);
    EXPECT_EQ(requests[0].bytes, bytes_of({COUNT, 0, 0}));
}

TEST_F(SurveyQuestions, TheNumberIsThereWhateverTheDriverReturns) {
    answer_request = [](const seen_request &) { return request_answer{0, 5, bytes_of({COUNT, 12, 0}), NO_LENGTH}; };
    EXPECT_EQ(number_of(wlan_getApScanNumOfEntries, 1), 12);
}

TEST_F(SurveyQuestions, ADriverThatFillsInNothingHasFoundNothing) {
    answer_request = [](const seen_request &) { return ANSWERED(); };
    EXPECT_EQ(number_of(wlan_getApScanNumOfEntries, 1), 0);
}

TEST_F(SurveyQuestions, ARefusedNumberFailsAndLeavesTheOutput) {
    survey.refused = COUNT;
    int count = UNTOUCHED;
    EXPECT_EQ(wlan_getApScanNumOfEntries(1, &count), -1);
    EXPECT_EQ(count, UNTOUCHED);
}

TEST_F(SurveyQuestions, TheResultsAreAskedForWithTheCallersCountAndBuffer) {
    survey.networks = networks_of({-70, -60, -50});
    survey.networks[1][FLAG_OFFSET] = 9;
    void *buffer = low_memory_new(2 * ENTRY_SIZE);
    ASSERT_NE(buffer, nullptr);
    driver_command block = {4711, 2, low_memory_address(buffer)};
    EXPECT_EQ(wlan_getApScanResult(3, &block), 0);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].interface, "ath2");
    EXPECT_EQ(requests[0].bytes, bytes_of({RESULTS, 2, low_memory_address(buffer)}));
    // As the driver writes them.
    EXPECT_EQ(std::string(static_cast<char *>(buffer), 2 * ENTRY_SIZE), survey.networks[0] + survey.networks[1]);
    low_memory_free(buffer, 2 * ENTRY_SIZE);
}

TEST_F(SurveyQuestions, TheResultsAreRefusedOrNotWhateverElseTheDriverReturns) {
    driver_command block = {};
    answer_request = [](const seen_request &) { return request_answer{0, 5, "", NO_LENGTH}; };
    EXPECT_EQ(wlan_getApScanResult(1, &block), 0);
    answer_request = [](const seen_request &) { return REFUSED(EFAULT); };
    EXPECT_EQ(wlan_getApScanResult(1, &block), -1);
}

// --- any index ---

using SurveyIndices = SiteSurvey;

TEST_F(SurveyIndices, AnyIndexNamesAnInterface) {
    struct {
        int index;
        const char *interface;
    } rows[] = {{1, "ath0"},
                {16, "ath15"},
                {17, "ath16"},
                {0, "ath-1"},
                {-1, "ath-2"},
                {INT_MIN, "ath2147483647"},
                {INT_MAX, "ath2147483646"}};
    for (const auto &row : rows) {
        int ignored;
        driver_command block = {};
        requests.clear();
        wlan_ApSiteSurvey(row.index);
        wlan_ApSiteSurveyStatus(row.index, &ignored);
        wlan_getApScanNumOfEntries(row.index, &ignored);
        wlan_getApScanResult(row.index, &block);
        EXPECT_EQ(interfaces_asked(), calls(4, row.interface)) << row.index;
    }
}

// What a driver does for an interface that does not exist.
void have_no_interface() {
    answer_request = [](const seen_request &) { return REFUSED(ENODEV); };
}

TEST_F(SurveyIndices, OfAnInterfaceThatDoesNotExistEverythingButTheStatusFails) {
    have_no_interface();
    for (int index : {0, 17}) {
        int status = UNTOUCHED;
        int count = UNTOUCHED;
        survey_reading read = {};
        EXPECT_EQ(wlan_ApSiteSurvey(index), -1);
        EXPECT_EQ(wlan_ApSiteSurveyStatus(index, &status), 0);
        EXPECT_EQ(status, -1);
        EXPECT_EQ(wlan_getApScanNumOfEntries(index, &count), -1);
        EXPECT_EQ(count, UNTOUCHED);
        capture([&] { read = read_table(index); });
        EXPECT_EQ(read.result, -1);
        EXPECT_EQ(read.image, EMPTY_TABLE);
    }
}

TEST_F(SurveyIndices, OfANegativeIndexNoTableIsAskedFor) {
    survey.status = 0;
    survey.networks = many_networks(1);
    for (int index : {-1, INT_MIN}) {
        printed_text printed = capture([&] {
            set_debug(true);
            survey_reading read = read_table(index);
            EXPECT_EQ(read.result, -1);
            EXPECT_EQ(read.image, EMPTY_TABLE);
        });
        EXPECT_EQ(printed.out + printed.err, "") << index;
    }
    EXPECT_TRUE(requests.empty());
}

TEST_F(SurveyIndices, IndexZeroIsNotRefusedBeforeTheDriverIsAsked) {
    survey.networks = networks_of({-50});
    EXPECT_EQ(read_table(0).order(), "a");
    EXPECT_EQ(interfaces_asked(), (calls{"ath-1", "ath-1", "ath-1"}));
}

// --- the table ---

using SurveyTable = SiteSurvey;

TEST_F(SurveyTable, IsReadInThreeQuestions) {
    survey.networks = networks_of({-50, -60});
    EXPECT_EQ(read_table(2).result, 0);
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests[0].bytes, bytes_of({STATUS, 0, 0}));
    EXPECT_EQ(requests[1].bytes, bytes_of({COUNT, 0, 0}));
    EXPECT_EQ(requests[2].bytes, bytes_of({RESULTS, 2, survey.buffer}));
    EXPECT_EQ(interfaces_asked(), (calls{"ath1", "ath1", "ath1"}));
}

TEST_F(SurveyTable, HasEveryByteOfItsNetworksAtItsPlace) {
    for (int i = 0; i < 3; i++) {
        std::string entry;
        for (size_t byte = 0; byte < ENTRY_SIZE; byte++) {
            entry += static_cast<char>(byte + 100 + static_cast<size_t>(i) * 31);
        }
        entry[RSSI_OFFSET] = static_cast<char>(-40 - i);
        entry[FLAG_OFFSET] = 1;
        survey.networks.push_back(entry);
    }
    survey_reading read = read_table();
    EXPECT_EQ(read.result, 0);
    std::string expected = std::string("\3\0\0\0", 4) + survey.networks[0] + survey.networks[1] + survey.networks[2];
    ASSERT_EQ(read.image.size(), TABLE_SIZE);
    EXPECT_EQ(read.image, expected + std::string(TABLE_SIZE - expected.size(), '\0'));
}

TEST_F(SurveyTable, ShowsAFlagThatIsNotZeroAsOne) {
    const unsigned char flags[] = {0, 1, 2, 0x7f, 0x80, 0xff};
    for (size_t i = 0; i < sizeof(flags); i++) {
        survey.networks.push_back(network(-40 - static_cast<int>(i)));
        survey.networks.back()[FLAG_OFFSET] = static_cast<char>(flags[i]);
    }
    survey_reading read = read_table();
    std::string shown;
    for (size_t i = 0; i < sizeof(flags); i++) {
        shown += read.entry(i)[FLAG_OFFSET];
    }
    EXPECT_EQ(shown, std::string("\0\1\1\1\1\1", 6));
}

TEST_F(SurveyTable, IsSortedByTheSignedStrength) {
    survey.networks = networks_of({-1, 0, -128, 127, 1, -50});
    survey_reading read = read_table();
    EXPECT_EQ(read.order(), "debafc");
    EXPECT_EQ(read.rssi(0), 127);
    EXPECT_EQ(read.rssi(5), -128);
}

// Written down step by step as the exchanges go. Neither a stable sort nor one that picks the strongest and exchanges
// once leaves all of them so.
TEST_F(SurveyTable, HasEqualStrengthsInTheOrderThatTheExchangesLeave) {
    struct {
        std::vector<int> strengths;  // of a, b, c ...
        const char *order;
    } rows[] = {
        {{-50, -50}, "ab"},
        {{-60, -60, -50}, "cba"},
        {{-70, -60, -60}, "bca"},
        {{-60, -60, -60, -50}, "dbca"},
        {{-60, -50, -60, -50}, "bdca"},
        {{-60, -60, -50, -50}, "cdab"},
        {{-70, -60, -60, -50}, "dcba"},
        {{-60, -70, -60, -50, -70}, "dcabe"},
        {{-50, -60, -60, -60, -40}, "eacdb"},
        {{-60, -60, -60, -40, -50}, "decab"},
    };
    for (const auto &row : rows) {
        survey.networks = networks_of(row.strengths);
        EXPECT_EQ(read_table().order(), row.order);
    }
}

TEST_F(SurveyTable, MovesWholeNetworksWhenItSorts) {
    std::string weak(ENTRY_SIZE, 'w');
    std::string strong(ENTRY_SIZE, 's');
    weak[RSSI_OFFSET] = -90;
    strong[RSSI_OFFSET] = -30;
    weak[FLAG_OFFSET] = strong[FLAG_OFFSET] = 1;
    survey.networks = {weak, strong};
    survey_reading read = read_table();
    EXPECT_EQ(read.entry(0), strong);
    EXPECT_EQ(read.entry(1), weak);
}

TEST_F(SurveyTable, OfSixtyFiveNetworksLeavesOutTheWeakest) {
    for (int i = 0; i < 65; i++) {
        // The weakest comes in the middle.
        survey.networks.push_back(network(i == 30 ? -99 : -20 - i));
    }
    survey_reading read = read_table();
    ASSERT_EQ(read.count(), 64U);
    EXPECT_EQ(read.rssi(0), -20);
    EXPECT_EQ(read.rssi(63), -84);
}

// The number is cut to eight bits when all are sorted, not before.
TEST_F(SurveyTable, OfThreeHundredNetworksHasTheStrongestFortyFour) {
    survey.networks = many_networks(256);
    for (int i = 0; i < 44; i++) {
        survey.networks.push_back(network(-49 + i));
    }
    survey_reading read = read_table();
    ASSERT_EQ(read.count(), 44U);
    for (int i = 0; i < 44; i++) {
        EXPECT_EQ(read.rssi(static_cast<size_t>(i)), -6 - i);
    }
    EXPECT_EQ(block_of(requests[2]).value, 300U);
}

TEST_F(SurveyTable, CutsTheNumberToEightBitsBeforeItLimitsIt) {
    struct {
        uint32_t count;
        size_t reported;
    } rows[] = {{1, 1},    {2, 2},    {63, 63},  {64, 64},  {65, 64},  {100, 64}, {255, 64},  {256, 0},  {257, 1},
                {300, 44}, {319, 63}, {320, 64}, {321, 64}, {511, 64}, {512, 0},  {4095, 64}, {4096, 0}, {4097, 0}};
    for (const auto &row : rows) {
        survey.networks = many_networks(row.count);
        survey_reading read = read_table();
        EXPECT_EQ(read.result, 0) << row.count;
        EXPECT_EQ(read.count(), row.reported) << row.count;
        std::string expected = std::string(1, static_cast<char>(row.reported)) + std::string(3, '\0');
        for (size_t i = 0; i < row.reported; i++) {
            expected += survey.networks[i];
        }
        EXPECT_EQ(read.image, expected + std::string(TABLE_SIZE - expected.size(), '\0')) << row.count;
    }
}

TEST_F(SurveyTable, WithoutNetworksStaysAsItIsAndTheListIsNotAskedFor) {
    for (uint32_t told : {0U, 0xffffffffU, 0x80000000U}) {
        requests.clear();
        tell(told);
        survey_reading read = read_table();
        EXPECT_EQ(read.result, 0) << told;
        EXPECT_EQ(read.image, EMPTY_TABLE) << told;
        EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT})) << told;
    }
}

TEST_F(SurveyTable, StaysAsItIsWhenTheNumberIsNotToBeBelieved) {
    for (uint32_t told : {4097U, 5000U, 0x01000000U, 0x02000001U, 0x7fffffffU}) {
        requests.clear();
        tell(told);
        survey_reading read = read_table();
        EXPECT_EQ(read.result, 0) << told;
        EXPECT_EQ(read.image, EMPTY_TABLE) << told;
        EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT})) << told;
    }
}

// Each of them with a driver that has none, just so many and twice as many networks, all as strong as can be or of
// bytes that make sense nowhere.
TEST_F(SurveyTable, SurvivesEveryCountThatIsALie) {
    struct {
        uint32_t told;
        size_t reported;
    } rows[] = {{0xffffffff, 0}, {0x80000000, 0}, {0, 0},    {1, 1},    {64, 64},  {65, 64},       {255, 64},
                {256, 0},        {300, 44},       {320, 64}, {4096, 0}, {4097, 0}, {0x7fffffff, 0}};
    for (const auto &row : rows) {
        size_t room = row.told <= BELIEVED_MAX ? row.told : BELIEVED_MAX;
        for (char byte : {'\xff', '\x7f'}) {
            for (size_t networks : {size_t{0}, room, 2 * room}) {
                tell(row.told);
                survey.networks.assign(networks, std::string(ENTRY_SIZE, byte));
                survey_reading read = read_table();
                EXPECT_EQ(read.result, 0) << row.told;
                EXPECT_EQ(read.count(), row.reported) << row.told;
                if (row.reported == 0) {
                    EXPECT_EQ(read.image, EMPTY_TABLE) << row.told;
                }
            }
        }
    }
}

TEST_F(SurveyTable, HasRoomForJustAsManyNetworksAsTheDriverTold) {
    for (uint32_t told : {1U, 32U, 33U, 4096U}) {
        tell(told);
        read_table();
        driver_command block = block_of(requests.back());
        EXPECT_EQ(block.value, told);
        EXPECT_EQ(survey.found_there, std::string(told * ENTRY_SIZE, '\0')) << "not zeroed, or too small";
    }
}

// What the driver did not fill is zero and therefore stronger than any real network.
TEST_F(SurveyTable, ShowsAsZerosWhatTheDriverDidNotFill) {
    survey.networks = networks_of({-40, -50});
    tell(4);
    survey_reading read = read_table();
    EXPECT_EQ(read.result, 0);
    ASSERT_EQ(read.count(), 4U);
    EXPECT_EQ(read.entry(0), std::string(ENTRY_SIZE, '\0'));
    EXPECT_EQ(read.entry(1), std::string(ENTRY_SIZE, '\0'));
    EXPECT_EQ(read.entry(2), survey.networks[0]);
    EXPECT_EQ(read.entry(3), survey.networks[1]);
}

TEST_F(SurveyTable, DoesNotLookAtWhatTheDriverLeavesInTheBlock) {
    survey.networks = networks_of({-60, -50, -40});
    survey.spoils_block = true;
    survey_reading read = read_table();
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.order(), "cba");
    EXPECT_TRUE(is_given_back(survey.buffer));
}

TEST_F(SurveyTable, IsReadWhenTheStatusIsRefused) {
    survey.networks = networks_of({-60, -50});
    survey.refused = STATUS;
    survey_reading read = {};
    printed_text printed = capture([&] { read = read_table(); });
    EXPECT_EQ(printed.err, "wlan_getApScanResult_2: Site Survey not complete : -1\n");
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.order(), "ba");
}

TEST_F(SurveyTable, FailsWhenTheNumberIsRefused) {
    survey.networks = many_networks(2);
    survey.refused = COUNT;
    survey_reading read = read_table();
    EXPECT_EQ(read.result, -1);
    EXPECT_EQ(read.image, EMPTY_TABLE);
    EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT}));
}

// The driver may have written some of it.
TEST_F(SurveyTable, FailsAndStaysAsItIsWhenTheResultsAreRefused) {
    survey.networks = many_networks(2);
    survey.refused = RESULTS;
    survey_reading read = read_table();
    EXPECT_EQ(read.result, -1);
    EXPECT_EQ(read.image, EMPTY_TABLE);
}

TEST_F(SurveyTable, IsThereWhateverElseTheDriverReturnsForTheResults) {
    answer_request = [](const seen_request &request) {
        request_answer answer = answer_survey(request);
        if (block_of(request).command == RESULTS) {
            answer.result = 5;
        }
        return answer;
    };
    survey.networks = networks_of({-60, -50});
    survey_reading read = read_table();
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.order(), "ba");
}

TEST_F(SurveyTable, GivesTheDriversMemoryBackOnEveryRoad) {
    constexpr uint32_t LAST_BYTE = 300 * ENTRY_SIZE - 1;
    for (uint32_t refused : {0U, RESULTS}) {
        bool was_mapped = false;
        answer_request = [&](const seen_request &request) {
            request_answer answer = answer_survey(request);
            was_mapped = survey.buffer != 0 && is_mapped(survey.buffer + LAST_BYTE);
            return answer;
        };
        survey.refused = refused;
        survey.networks = many_networks(300);
        survey.buffer = 0;
        read_table();
        EXPECT_TRUE(was_mapped);
        EXPECT_FALSE(is_mapped(survey.buffer));
        EXPECT_FALSE(is_mapped(survey.buffer + LAST_BYTE));
    }
}

// From the moment in which the driver tells the number there is no memory.
struct memory_shortage {
    held_low_memory held;
    rlimit whole = {};

    memory_shortage() {
        EXPECT_EQ(getrlimit(RLIMIT_AS, &whole), 0);
        answer_request = [this](const seen_request &request) {
            request_answer answer = answer_survey(request);
            if (request.request == DRIVER_REQUEST && block_of(request).command == COUNT) {
                rlimit none = whole;
                none.rlim_cur = 1;
                setrlimit(RLIMIT_AS, &none);
            }
            return answer;
        };
    }
    void end() const {
        setrlimit(RLIMIT_AS, &whole);
    }
};

TEST_F(SurveyTable, StaysEmptyWithoutMemoryAndThatIsNoFailure) {
    survey.networks = many_networks(2);
    scan_table table = {};
    int status = -2;
    memory_shortage shortage;
    std::string lines = debug_lines([&] {
        status = wlan_getApScanResult_2(1, &table);
        shortage.end();
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(image_of(table), EMPTY_TABLE);
    EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT}));
    EXPECT_EQ(lines,
              "[VLK-API] wlan_getApScanResult_2 wlan_getApScanResult_2:10832 entry_num 2 \n"
              "[VLK-API] wlan_getApScanResult_2 scan buffer is at 0x00000000\n");
}

// --- what reading the table prints ---

using SurveyTableLines = SiteSurvey;

TEST_F(SurveyTableLines, OfACompleteSurveyAreNone) {
    survey.networks = many_networks(2);
    printed_text printed = capture([] { read_table(); });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(SurveyTableLines, SayThatASurveyIsNotCompleteAndItIsReadAllTheSame) {
    survey.networks = networks_of({-60, -50});
    for (int status : {0, 1, 2, 4, 255}) {
        survey.status = status;
        survey_reading read = {};
        printed_text printed = capture([&] { read = read_table(); });
        EXPECT_EQ(printed.out, "");
        EXPECT_EQ(printed.err, "wlan_getApScanResult_2: Site Survey not complete : " + std::to_string(status) + "\n");
        EXPECT_EQ(read.order(), "ba");
    }
}

TEST_F(SurveyTableLines, TellADebuggerTheNumberAndTheBuffersAddress) {
    survey.networks = many_networks(300);
    std::string lines = debug_lines([] { read_table(); });
    char address[16];
    snprintf(address, sizeof(address), "0x%08x", survey.buffer);
    EXPECT_EQ(lines,
              "[VLK-API] wlan_getApScanResult_2 wlan_getApScanResult_2:10832 entry_num 300 \n"
              "[VLK-API] wlan_getApScanResult_2 scan buffer is at " +
                  std::string(address) + "\n");
}

TEST_F(SurveyTableLines, TellADebuggerANumberThatIsNone) {
    struct {
        uint32_t told;
        const char *shown;
    } rows[] = {{0, "0"}, {0xffffffff, "-1"}, {0x80000000, "-2147483648"}};
    for (const auto &row : rows) {
        tell(row.told);
        EXPECT_EQ(debug_lines([] { read_table(); }),
                  std::string("[VLK-API] wlan_getApScanResult_2 wlan_getApScanResult_2:10832 entry_num ") + row.shown +
                      " \n");
    }
}

TEST_F(SurveyTableLines, ShowADebuggerThatANumberWasNotBelieved) {
    tell(4097);
    EXPECT_EQ(debug_lines([] { read_table(); }),
              "[VLK-API] wlan_getApScanResult_2 wlan_getApScanResult_2:10832 entry_num 4097 \n"
              "[VLK-API] wlan_getApScanResult_2 scan buffer is at 0x00000000\n");
}

TEST_F(SurveyTableLines, TellADebuggerNothingWhenTheNumberIsRefused) {
    survey.refused = COUNT;
    EXPECT_EQ(debug_lines([] { read_table(); }), "");
}

// --- ten thousand calls ---

using SurveyManyCalls = SiteSurvey;

template <typename Block>
void expect_no_descriptor_left_by(Block block) {
    constexpr int ROUNDS = 10000;
    int before = lowest_free_descriptor();
    for (int i = 0; i < ROUNDS; i++) {
        block();
        requests.clear();
    }
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(SurveyManyCalls, OfTheTriggerLeaveNoDescriptorOpen) {
    expect_no_descriptor_left_by([] { wlan_ApSiteSurvey(1); });
}

TEST_F(SurveyManyCalls, OfARefusedTriggerLeaveNoDescriptorOpen) {
    have_no_interface();
    expect_no_descriptor_left_by([] { wlan_ApSiteSurvey(1); });
}

TEST_F(SurveyManyCalls, OfTheQuestionsLeaveNoDescriptorOpen) {
    expect_no_descriptor_left_by([] {
        int ignored;
        wlan_ApSiteSurveyStatus(1, &ignored);
        wlan_getApScanNumOfEntries(1, &ignored);
    });
}

TEST_F(SurveyManyCalls, OfTheTableLeaveNoDescriptorOpen) {
    survey.networks = many_networks(3);
    expect_no_descriptor_left_by([] { read_table(); });
}

// --- the diagnostic ---

using SurveyDiagnostic = SiteSurvey;

struct diagnosed {
    int result;
    std::string printed;  // to standard error
    step_list steps;
};

// Line numbers of the source become "N".
std::string without_line_numbers(const std::string &text) {
    const std::string mark = "wlan_getScanResult:";
    std::string result;
    for (size_t at = 0; at < text.size();) {
        if (text.compare(at, mark.size(), mark) != 0) {
            result += text[at++];
            continue;
        }
        result += mark + "N";
        at += mark.size();
        EXPECT_TRUE(at < text.size() && isdigit(static_cast<unsigned char>(text[at])));
        while (at < text.size() && isdigit(static_cast<unsigned char>(text[at]))) {
            at++;
        }
    }
    return result;
}

diagnosed diagnose(int index, const step_rules &rules = {}) {
    diagnosed outcome = {};
    begin_steps(rules);
    printed_text printed = capture([&] { outcome.result = wlan_getScanResult(index); });
    outcome.steps = recorded_steps();
    end_steps();
    EXPECT_EQ(printed.out, "");
    outcome.printed = without_line_numbers(printed.err);
    return outcome;
}

std::string text_of_network(int number, const std::string &ssid, const std::string &mode, const std::string &auth,
                            int rssi) {
    std::string begin = "AP[" + std::to_string(number) + "] --> ";
    return begin + "ssid " + ssid + "\n" + begin + "WirelessMode " + mode + "\n" + begin + "AuthMode " + auth + "\n" +
           begin + "Rssi " + std::to_string(rssi) + "\n";
}

std::string described_network(int rssi, const std::string &ssid, const std::string &mode, const std::string &auth) {
    std::string entry = network(rssi, ssid);
    entry.replace(WIRELESS_MODE_OFFSET, mode.size(), mode);
    entry.replace(AUTH_MODE_OFFSET, auth.size(), auth);
    return entry;
}

std::string buffer_line() {
    char line[64];
    snprintf(line, sizeof(line), "scan buffer is at 0x%08x\n", survey.buffer);
    return line;
}

TEST_F(SurveyDiagnostic, ScansWaitsAndPrintsWhatTheDriverFoundInItsOrder) {
    survey.networks = {described_network(-70, "Cafe", "11ac", "WPA2"), described_network(-40, "Home", "11n", "OPEN")};
    diagnosed outcome = diagnose(2);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.steps, step_list{"pause 1"});
    EXPECT_EQ(outcome.printed, "wlan_getScanResult:N i=0 status=3\nwlan_getScanResult:N entry_num 2 \n" +
                                   buffer_line() + text_of_network(0, "Cafe", "11ac", "WPA2", -70) +
                                   text_of_network(1, "Home", "11n", "OPEN", -40));
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_EQ(requests[0].request, SCAN_TRIGGER);
    EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT, RESULTS}));
    EXPECT_EQ(interfaces_asked(), (calls{"ath1", "ath1", "ath1", "ath1"}));
}

TEST_F(SurveyDiagnostic, StopsWaitingWhenTheSurveyIsComplete) {
    survey.networks = {network(-50, "net")};
    survey.status = 1;
    answer_request = [](const seen_request &request) {
        if (commands_asked() == numbers{STATUS, STATUS, STATUS}) {
            survey.status = 3;
        }
        return answer_survey(request);
    };
    diagnosed outcome = diagnose(1);
    EXPECT_EQ(outcome.steps, (step_list{"pause 1", "pause 1", "pause 1"}));
    EXPECT_TRUE(
        outcome.printed.starts_with("wlan_getScanResult:N i=0 status=1\nwlan_getScanResult:N i=1 status=1\n"
                                    "wlan_getScanResult:N i=2 status=3\nwlan_getScanResult:N entry_num 1 \n"))
        << outcome.printed;
}

TEST_F(SurveyDiagnostic, WaitsTwentySecondsAtMostAndReadsWhatThereIs) {
    survey.networks = {network(-50, "net")};
    survey.status = 1;
    diagnosed outcome = diagnose(1);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.steps, step_list(20, "pause 1"));
    std::string polls;
    for (int i = 0; i < 20; i++) {
        polls += "wlan_getScanResult:N i=" + std::to_string(i) + " status=1\n";
    }
    EXPECT_EQ(outcome.printed,
              polls + "wlan_getScanResult:N entry_num 1 \n" + buffer_line() + text_of_network(0, "net", "", "", -50));
}

TEST_F(SurveyDiagnostic, WaitsOnAfterASignal) {
    survey.networks = {network(-50, "net")};
    step_rules rules;
    rules.refused = "pause 1";
    diagnosed outcome = diagnose(1, rules);
    EXPECT_EQ(outcome.steps, (step_list{"pause 1", "pause 0.5"}));
}

TEST_F(SurveyDiagnostic, WaitsOnWhenTheStatusIsRefused) {
    survey.refused = STATUS;
    survey.networks = {network(-50, "net")};
    diagnosed outcome = diagnose(1);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.steps.size(), 20U);
    EXPECT_TRUE(outcome.printed.starts_with("wlan_getScanResult:N i=0 status=-1\n")) << outcome.printed;
}

TEST_F(SurveyDiagnostic, RefusesANegativeIndexBeforeTheDriverIsAsked) {
    for (int index : {-1, INT_MIN}) {
        diagnosed outcome = diagnose(index);
        EXPECT_EQ(outcome.result, -1);
        EXPECT_EQ(outcome.printed, "");
        EXPECT_EQ(outcome.steps, step_list{});
    }
    EXPECT_TRUE(requests.empty());
}

TEST_F(SurveyDiagnostic, PutsTheToolsOnTheSearchPathFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has not done so yet
    EXPECT_EXIT(
        {
            setenv("PATH", "/bin", 1);
            wlan_getScanResult(-1);
            fprintf(stderr, "path is <%s>", getenv("PATH"));
            exit(0);
        },
        testing::ExitedWithCode(0), "^path is </bin:/etc/ath>$");
}

TEST_F(SurveyDiagnostic, FailsWithoutWaitingWhenNoScanCanBeStarted) {
    answer_request = [](const seen_request &) { return REFUSED(EBUSY); };
    diagnosed outcome = diagnose(1);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.printed, "");
    EXPECT_EQ(outcome.steps, step_list{});
    EXPECT_EQ(requests.size(), 1U);
}

TEST_F(SurveyDiagnostic, FailsWhenTheNumberIsRefused) {
    survey.refused = COUNT;
    diagnosed outcome = diagnose(1);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.printed, "wlan_getScanResult:N i=0 status=3\n");
}

TEST_F(SurveyDiagnostic, FailsWhenNothingWasFound) {
    for (uint32_t told : {0U, 0x80000000U, 0xffffffffU}) {
        tell(told);
        requests.clear();
        diagnosed outcome = diagnose(1);
        EXPECT_EQ(outcome.result, -1) << told;
        EXPECT_EQ(outcome.printed, "wlan_getScanResult:N i=0 status=3\n") << told;
        EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT})) << told;
    }
}

TEST_F(SurveyDiagnostic, FailsWhenTheNumberIsNotToBeBelieved) {
    for (uint32_t told : {4097U, 0x02000001U, 0x7fffffffU}) {
        tell(told);
        requests.clear();
        diagnosed outcome = diagnose(1);
        EXPECT_EQ(outcome.result, -1) << told;
        EXPECT_EQ(outcome.printed, "wlan_getScanResult:N i=0 status=3\nwlan_getScanResult:N entry_num " +
                                       std::to_string(told) + " \nscan buffer is at 0x00000000\n");
        EXPECT_EQ(commands_asked(), (numbers{STATUS, COUNT})) << told;
    }
}

TEST_F(SurveyDiagnostic, FailsWithoutMemory) {
    survey.networks = many_networks(1);
    int result = 0;
    begin_steps();
    memory_shortage shortage;
    printed_text printed = capture([&] {
        result = wlan_getScanResult(1);
        shortage.end();
    });
    end_steps();
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(printed.err.ends_with("entry_num 1 \nscan buffer is at 0x00000000\n")) << printed.err;
}

TEST_F(SurveyDiagnostic, FailsAndPrintsNoNetworkWhenTheResultsAreRefused) {
    survey.networks = many_networks(2);
    survey.refused = RESULTS;
    diagnosed outcome = diagnose(1);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_FALSE(contains(outcome.printed, "AP["));
    EXPECT_TRUE(is_given_back(survey.buffer));
}

TEST_F(SurveyDiagnostic, PrintsAllNetworksNotOnlyThoseOfATable) {
    survey.networks = many_networks(300);
    diagnosed outcome = diagnose(1);
    EXPECT_TRUE(outcome.printed.ends_with(text_of_network(299, "net", "", "", -50)));
    EXPECT_FALSE(is_mapped(survey.buffer));
    EXPECT_FALSE(is_mapped(survey.buffer + 300 * ENTRY_SIZE - 1));
}

TEST_F(SurveyDiagnostic, DoesNotLookAtWhatTheDriverLeavesInTheBlock) {
    survey.networks = many_networks(2);
    survey.spoils_block = true;
    diagnosed outcome = diagnose(1);
    EXPECT_TRUE(outcome.printed.ends_with(text_of_network(1, "net", "", "", -50)));
    EXPECT_FALSE(contains(outcome.printed, "AP[2]"));
    EXPECT_TRUE(is_given_back(survey.buffer));
}

TEST_F(SurveyDiagnostic, EndsTextsThatHaveNoEnd) {
    std::string entry(ENTRY_SIZE, 'x');
    entry.replace(SSID_OFFSET, 32, std::string(32, 's'));
    entry.replace(AUTH_MODE_OFFSET, 15, std::string(15, 'a'));
    entry.replace(WIRELESS_MODE_OFFSET, 8, std::string(8, 'm'));
    entry[RSSI_OFFSET] = -128;
    scan_entry table;
    memcpy(&table, entry.data(), sizeof(table));
    printed_text printed = capture([&] { wlan_printScanInfo(&table, 1); });
    EXPECT_EQ(printed.err, text_of_network(0, std::string(32, 's'), std::string(8, 'm'), std::string(15, 'a'), -128));
}

TEST_F(SurveyDiagnostic, PrintsNothingOfNoNetwork) {
    printed_text printed = capture([] { wlan_printScanInfo(nullptr, 0); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- the handlers that are not like the others ---

using SurveyHandlers = SiteSurvey;

struct handled {
    wlan_config_result_data_t result;
    std::string printed;  // to standard output
};

handled handle(bool_t (*handler)(int, wlan_config_result_data_t *, svc_req *), int index, bool debug) {
    handled outcome = {};
    set_debug(debug);
    outcome.printed = capture([&] { EXPECT_EQ(handler(index, &outcome.result, nullptr), TRUE); }).out;
    return outcome;
}

TEST_F(SurveyHandlers, TheTriggerSaysWhenItHasEndedWhetherAnybodyDebugsOrNot) {
    EXPECT_EQ(handle(wlan_ap_scan_1_svc, 3, false).printed, "end wlan_ap_scan_1_svc\n");
    EXPECT_EQ(handle(wlan_ap_scan_1_svc, 3, true).printed,
              "[VLK-API] wlan_ap_scan_1_svc  WLAN RPC server : [index 3]\n"
              "[VLK-API] wlan_ap_scan_1_svc  WLAN RPC server : return code :0\n"
              "end wlan_ap_scan_1_svc\n");
    EXPECT_EQ(interfaces_asked(), (calls{"ath2", "ath2"}));
}

TEST_F(SurveyHandlers, TheTriggersAnswerIsItsCodeAlone) {
    handled outcome = handle(wlan_ap_scan_1_svc, 1, false);
    EXPECT_EQ(outcome.result.return_code, 0);
    EXPECT_EQ(outcome.result.return_values.return_values_len, 0U);
    EXPECT_EQ(outcome.result.return_data.return_data_len, 0U);
    have_no_interface();
    outcome = handle(wlan_ap_scan_1_svc, 0, true);
    EXPECT_EQ(outcome.result.return_code, -1);
    EXPECT_TRUE(outcome.printed.ends_with(" return code :-1\nend wlan_ap_scan_1_svc\n")) << outcome.printed;
}

// Four elements, of which the first counts.
std::vector<u_int> values_of(const wlan_config_result_data_t &result) {
    u_int *values = result.return_values.return_values_val;
    std::vector<u_int> list(values, values + result.return_values.return_values_len);
    free(values);
    EXPECT_EQ(result.return_data.return_data_len, 0U);
    return list;
}

TEST_F(SurveyHandlers, TheStatusSaysWhenItHasEndedWhetherAnybodyDebugsOrNot) {
    survey.status = 2;
    handled outcome = handle(wlan_get_ap_scan_status_1_svc, 9, false);
    EXPECT_EQ(outcome.printed, "end wlan_get_ap_scan_status_1_svc\n");
    EXPECT_EQ(outcome.result.return_code, 0);
    EXPECT_EQ(values_of(outcome.result), (std::vector<u_int>{2, 0, 0, 0}));
    outcome = handle(wlan_get_ap_scan_status_1_svc, 9, true);
    EXPECT_EQ(outcome.printed,
              "[VLK-API] wlan_get_ap_scan_status_1_svc  WLAN RPC server : [index 9]\n"
              "[VLK-API] wlan_get_ap_scan_status_1_svc  WLAN RPC server : [status 2]\n"
              "end wlan_get_ap_scan_status_1_svc\n");
    EXPECT_EQ(values_of(outcome.result), (std::vector<u_int>{2, 0, 0, 0}));
    EXPECT_EQ(interfaces_asked(), (calls{"ath8", "ath8"}));
}

TEST_F(SurveyHandlers, AStatusThatIsRefusedIsMinusOneWithCodeZero) {
    have_no_interface();
    handled outcome = handle(wlan_get_ap_scan_status_1_svc, 0, true);
    EXPECT_EQ(outcome.result.return_code, 0);
    EXPECT_EQ(values_of(outcome.result), (std::vector<u_int>{0xffffffff, 0, 0, 0}));
    EXPECT_TRUE(contains(outcome.printed, " [status -1]\n")) << outcome.printed;
}

TEST_F(SurveyHandlers, ATableTravelsWholeWhenItCouldNotBeRead) {
    survey.refused = COUNT;
    wlan_config_result_data_t result = {};
    EXPECT_EQ(wlan_get_ap_scan_result_1_svc(1, &result, nullptr), TRUE);
    EXPECT_EQ(result.return_code, -1);
    ASSERT_EQ(result.return_data.return_data_len, TABLE_SIZE);
    EXPECT_EQ(std::string(result.return_data.return_data_val, TABLE_SIZE), EMPTY_TABLE);
    free(result.return_data.return_data_val);
}

}  // namespace
