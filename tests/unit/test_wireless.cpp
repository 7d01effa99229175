// The wireless ioctls: what reaches the driver, what comes back, and the channel arithmetic.
#include "config/wireless.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <linux/wireless.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <bit>
#include <string>

#include "tests/support/driver.h"
#include "tests/support/platform.h"

namespace {

struct Wireless : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_driver();
    }
};

// --- the socket ---

TEST_F(Wireless, TheSocketIsOpenedOnceAndKept) {
    int socket = wlan_ioctl_socket();
    EXPECT_GE(socket, 0);
    EXPECT_EQ(wlan_ioctl_socket(), socket);
}

TEST_F(Wireless, TheSocketIsAnInternetDatagramSocket) {
    int domain = 0;
    int type = 0;
    socklen_t size = sizeof(int);
    getsockopt(wlan_ioctl_socket(), SOL_SOCKET, SO_DOMAIN, &domain, &size);
    getsockopt(wlan_ioctl_socket(), SOL_SOCKET, SO_TYPE, &type, &size);
    EXPECT_EQ(domain, AF_INET);
    EXPECT_EQ(type, SOCK_DGRAM);
}

TEST_F(Wireless, TheSocketIsClosedOnExec) {
    EXPECT_EQ(fcntl(wlan_ioctl_socket(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(Wireless, TheProcessEndsWhenTheSocketCannotBeOpened) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has no socket yet
    EXPECT_EXIT(
        {
            begin_descriptor_shortage();
            wlan_ioctl_socket();
        },
        testing::ExitedWithCode(1), "^socket\\(SOCK_DRAGM\\): Too many open files\n");
}

// --- the request ---

TEST_F(Wireless, ARequestGoesOutOnTheSharedSocket) {
    char data[4] = {};
    wlan_ioctl("ath0", 0x8B1B, data, sizeof(data));
    EXPECT_EQ(driver.calls, 1);
    EXPECT_EQ(driver.descriptor, wlan_ioctl_socket());
    EXPECT_EQ(driver.request, 0x8B1BUL);
}

TEST_F(Wireless, TheInterfaceNameIsFilledUpWithZeros) {
    char data[4] = {};
    wlan_ioctl("ath15", 1, data, sizeof(data));
    EXPECT_EQ(std::string(driver.record.ifr_name, 16), std::string("ath15") + std::string(11, '\0'));
}

TEST_F(Wireless, AnInterfaceNameIsCutToSixteenCharacters) {
    char data[4] = {};
    wlan_ioctl("0123456789abcdefghi", 1, data, sizeof(data));
    EXPECT_EQ(std::string(driver.record.ifr_name, 16), "0123456789abcdef");
    EXPECT_EQ(std::string(driver.record.u.name, 16), std::string(16, '\0'));
}

TEST_F(Wireless, DataOfSixteenBytesGoesByReference) {
    char data[16] = "fifteen letters";
    wlan_ioctl("ath0", 1, data, sizeof(data));
    EXPECT_EQ(driver.record.u.data.pointer, data);
    EXPECT_EQ(driver.record.u.data.length, 16);
    EXPECT_EQ(driver.record.u.data.flags, 0);
}

TEST_F(Wireless, DataOfFifteenBytesGoesInsideTheRequest) {
    char data[] = {'f', 'i', 'f', 't', 'e', 'e', 'n', ' ', 'l', 'e', 't', 't', 'e', 'r', 's'};
    static_assert(sizeof(data) == 15);
    wlan_ioctl("ath0", 1, data, sizeof(data));
    EXPECT_EQ(std::string(driver.record.u.name, 16), std::string("fifteen letters") + '\0');
}

TEST_F(Wireless, ASuccessfulRequestReturnsZeroAndPrintsNothing) {
    char data[4] = {};
    int status = -2;
    printed_text printed = capture([&] { status = wlan_ioctl("ath0", 1, data, sizeof(data)); });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Wireless, AFailedRequestIsReportedWithTheSystemsText) {
    driver.error = ENODEV;
    char data[4] = {};
    int status = 0;
    printed_text printed = capture([&] { status = wlan_ioctl("ath0", 1, data, sizeof(data)); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(printed.err, "ioctl: No such device\n");
}

// --- private requests ---

TEST_F(Wireless, APrivateRequestReturnsTheDriversLengthWord) {
    driver.length_answer = 321;
    char data[400] = {};
    EXPECT_EQ(wlan_get80211priv("ath0", 1, data, sizeof(data)), 321);
}

TEST_F(Wireless, APrivateRequestWithLongDataPassesItByReference) {
    char data[400] = {};
    EXPECT_EQ(wlan_get80211priv("ath0", 1, data, sizeof(data)), 400);
    EXPECT_EQ(driver.record.u.data.pointer, data);
}

TEST_F(Wireless, TheShortAnswerOfAPrivateRequestIsCopiedBack) {
    driver.inline_answer = "an answer of 16.";
    char data[10] = "question";
    wlan_get80211priv("ath0", 1, data, 9);
    EXPECT_EQ(std::string(driver.record.u.name), "question");
    EXPECT_EQ(std::string(data, 9), "an answer");
    EXPECT_EQ(data[9], '\0');
}

TEST_F(Wireless, AFailedPrivateRequestReturnsMinusOneAndPrintsNothing) {
    driver.error = EINVAL;
    char data[4] = {'k', 'e', 'p', 't'};
    int status = 0;
    printed_text printed = capture([&] { status = wlan_get80211priv("ath0", 1, data, sizeof(data)); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(std::string(data, 4), "kept");
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- private requests on a socket of their own ---

// The number of a request that the driver's side looks into: see tests/support/driver.h.
constexpr unsigned long DEBUG_REQUEST = 0x8BF8;

// The descriptor that is given out next.
int lowest_free_descriptor() {
    int descriptor = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    close(descriptor);
    return descriptor;
}

TEST_F(Wireless, AnOwnRequestPassesDataOfAnyLengthByReference) {
    char data[211] = {};
    for (uint16_t length : {1, 15, 16, 211}) {
        EXPECT_EQ(wlan_private_request("ath7", 0x8BE1, data, length), 0);
        EXPECT_EQ(driver.request, 0x8BE1UL);
        EXPECT_EQ(driver.record.u.data.pointer, data);
        EXPECT_EQ(driver.record.u.data.length, length);
        EXPECT_EQ(driver.record.u.data.flags, 0);
    }
    EXPECT_EQ(driver.calls, 4);
}

TEST_F(Wireless, AnOwnRequestNamesItsInterfaceFilledUpWithZeros) {
    char data[16] = {};
    wlan_private_request("ath15", 0x8BE1, data, sizeof(data));
    EXPECT_EQ(std::string(driver.record.ifr_name, 16), std::string("ath15") + std::string(11, '\0'));
}

TEST_F(Wireless, AnOwnRequestCutsTheInterfaceNameToSixteenCharacters) {
    char data[16] = {};
    wlan_private_request("0123456789abcdefghi", 0x8BE1, data, sizeof(data));
    EXPECT_EQ(std::string(driver.record.ifr_name, 16), "0123456789abcdef");
    EXPECT_EQ(driver.record.u.data.pointer, data);
}

TEST_F(Wireless, AnOwnRequestGoesOutOnAnInternetDatagramSocketThatIsClosedOnExec) {
    char data[16] = {};
    wlan_private_request("ath0", DEBUG_REQUEST, data, sizeof(data));
    ASSERT_EQ(debug_requests.size(), 1U);
    EXPECT_TRUE(debug_requests[0].is_internet_datagram_socket);
    EXPECT_TRUE(debug_requests[0].is_closed_on_exec);
}

TEST_F(Wireless, AnOwnRequestDoesNotUseTheSharedSocket) {
    char data[16] = {};
    int shared = wlan_ioctl_socket();
    wlan_private_request("ath0", 0x8BE1, data, sizeof(data));
    EXPECT_NE(driver.descriptor, shared);
    EXPECT_EQ(wlan_ioctl_socket(), shared);
    EXPECT_GE(fcntl(shared, F_GETFD), 0);
}

TEST_F(Wireless, AnOwnRequestReturnsWhatTheDriverReturns) {
    debug_answers = {{0, "", 17}, {0, "", 0}};
    char data[16] = {};
    EXPECT_EQ(wlan_private_request("ath0", DEBUG_REQUEST, data, sizeof(data)), 17);
    EXPECT_EQ(wlan_private_request("ath0", DEBUG_REQUEST, data, sizeof(data)), 0);
}

TEST_F(Wireless, AnOwnRequestThatTheDriverRefusesIsNotReportedButSaysWhy) {
    driver.error = EPERM;
    char data[16] = {};
    int status = 0;
    int reason = 0;
    printed_text printed = capture([&] {
        status = wlan_private_request("ath0", 0x8BE1, data, sizeof(data));
        reason = errno;
    });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(reason, EPERM);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Wireless, AnOwnRequestWithoutASocketFailsAndReachesNobody) {
    char data[16] = {};
    begin_descriptor_shortage();
    int status = wlan_private_request("ath0", 0x8BE1, data, sizeof(data));
    int reason = errno;
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(reason, EMFILE);
    EXPECT_EQ(driver.calls, 0);
}

TEST_F(Wireless, AnOwnRequestLeavesNoDescriptorOpen) {
    char data[16] = {};
    int before = lowest_free_descriptor();
    wlan_private_request("ath0", 0x8BE1, data, sizeof(data));
    EXPECT_EQ(lowest_free_descriptor(), before);
    driver.error = EPERM;
    wlan_private_request("ath0", 0x8BE1, data, sizeof(data));
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(Wireless, ASharedRequestPassesShortDataByReferenceTooOnTheSharedSocket) {
    char data[12] = {};
    EXPECT_EQ(wlan_shared_request("ath3", 0x8BE1, data, sizeof(data)), 0);
    EXPECT_EQ(driver.request, 0x8BE1UL);
    EXPECT_EQ(driver.record.u.data.pointer, data);
    EXPECT_EQ(driver.record.u.data.length, 12);
    EXPECT_EQ(driver.record.u.data.flags, 0);
    EXPECT_EQ(driver.descriptor, wlan_ioctl_socket());
    EXPECT_EQ(std::string(driver.record.ifr_name, 16), std::string("ath3") + std::string(12, '\0'));
}

TEST_F(Wireless, ASharedRequestThatTheDriverRefusesIsNotReportedButSaysWhy) {
    driver.error = EPERM;
    char data[12] = {};
    int status = 0;
    int reason = 0;
    printed_text printed = capture([&] {
        status = wlan_shared_request("ath0", 0x8BE1, data, sizeof(data));
        reason = errno;
    });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(reason, EPERM);
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- the driver's commands ---

TEST_F(Wireless, ACommandGoesOutAsABlockOfTwelveBytesOnTheSharedSocket) {
    driver_command block = {41, 7, 0x1234'5678};
    answer_request = [](const seen_request &) { return request_answer{0, 3, "", NO_LENGTH}; };
    EXPECT_EQ(wlan_driver_command(9, &block), 3);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].interface, "ath8");
    EXPECT_EQ(requests[0].request, 0x89FCUL);
    EXPECT_EQ(requests[0].data, &block);
    EXPECT_EQ(requests[0].bytes, std::string("\x29\0\0\0\7\0\0\0\x78\x56\x34\x12", 12));
    EXPECT_EQ(requests[0].descriptor, wlan_ioctl_socket());
}

TEST_F(Wireless, TheAnswerToACommandStandsInItsBlock) {
    driver_command block = {39, 0, 0};
    answer_request = [](const seen_request &) { return ANSWERED(bytes_of({39, 300, 0})); };
    EXPECT_EQ(wlan_driver_command(1, &block), 0);
    EXPECT_EQ(block.value, 300U);
}

TEST_F(Wireless, ARefusedCommandFailsAndIsNotReported) {
    driver_command block = {};
    answer_request = [](const seen_request &) { return REFUSED(EIO); };
    int status = 0;
    printed_text printed = capture([&] { status = wlan_driver_command(1, &block); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Wireless, AnyIndexNamesAnInterface) {
    driver_command block = {};
    for (int index : {0, -1, INT_MIN, INT_MAX}) {
        wlan_driver_command(index, &block);
    }
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_EQ(requests[0].interface, "ath-1");
    EXPECT_EQ(requests[1].interface, "ath-2");
    EXPECT_EQ(requests[2].interface, "ath2147483647");
    EXPECT_EQ(requests[3].interface, "ath2147483646");
}

// --- the SSID ---

TEST_F(Wireless, TheSsidIsAskedForWithRoomForThirtyTwoCharactersOnASocketOfItsOwn) {
    answer_request = [](const seen_request &) { return request_answer{0, 0, "Home", 4}; };
    int shared = wlan_ioctl_socket();
    int before = lowest_free_descriptor();
    char essid[ESSID_SIZE] = "";
    EXPECT_EQ(wlan_get_essid("ath5", essid), 4);
    EXPECT_STREQ(essid, "Home");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].interface, "ath5");
    EXPECT_EQ(requests[0].request, 0x8B1BUL);
    EXPECT_EQ(requests[0].data, essid);
    EXPECT_EQ(requests[0].length, 32);
    EXPECT_EQ(requests[0].flags, 0);
    EXPECT_NE(requests[0].descriptor, shared);
    EXPECT_TRUE(requests[0].is_closed_on_exec);
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(Wireless, ALengthOfAnSsidThatCannotBeIsHandedOnAsItIs) {
    answer_request = [](const seen_request &) { return request_answer{0, 0, "", 65535}; };
    char essid[ESSID_SIZE] = "";
    EXPECT_EQ(wlan_get_essid("ath0", essid), 65535);
}

TEST_F(Wireless, AnSsidThatTheDriverRefusesFailsAndLeavesNoDescriptorOpen) {
    answer_request = [](const seen_request &) { return REFUSED(ENODEV); };
    char essid[ESSID_SIZE] = "";
    int before = lowest_free_descriptor();
    EXPECT_EQ(wlan_get_essid("ath0", essid), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(Wireless, WithoutASocketThereIsNoSsid) {
    char essid[ESSID_SIZE] = "";
    begin_descriptor_shortage();
    int status = wlan_get_essid("ath0", essid);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_TRUE(requests.empty());
}

// --- memory for the driver ---

constexpr uintptr_t FOUR_GIBIBYTES = uintptr_t{0xffff'ffff};

// Whether a page is mapped at this address.
bool is_mapped(void *address) {
    return msync(address, 1, MS_ASYNC) == 0;
}

TEST_F(Wireless, MemoryForTheDriverLiesBelowFourGibibytesToItsLastByte) {
    for (size_t size : {1UL, 2048UL, 4096UL, 5UL << 20}) {
        char *memory = static_cast<char *>(low_memory_new(size));
        ASSERT_NE(memory, nullptr) << size;
        EXPECT_LE(reinterpret_cast<uintptr_t>(memory) + size - 1, FOUR_GIBIBYTES) << size;
        low_memory_free(memory, size);
    }
}

TEST_F(Wireless, MemoryForTheDriverIsZeroedAndWritableToItsLastByte) {
    constexpr size_t SIZE = 2048;
    // What the first one leaves behind must not be in the second.
    for (int round = 0; round < 2; round++) {
        char *memory = static_cast<char *>(low_memory_new(SIZE));
        ASSERT_NE(memory, nullptr);
        EXPECT_EQ(std::string(memory, SIZE), std::string(SIZE, '\0'));
        memset(memory, 'x', SIZE);
        low_memory_free(memory, SIZE);
    }
}

// The second one is larger than the distance between two places that are tried.
TEST_F(Wireless, SeveralPiecesOfMemoryForTheDriverDoNotOverlap) {
    struct {
        size_t size;
        char *memory;
    } pieces[] = {{2048, nullptr}, {3 << 20, nullptr}, {1, nullptr}, {2048, nullptr}};
    for (auto &piece : pieces) {
        piece.memory = static_cast<char *>(low_memory_new(piece.size));
        ASSERT_NE(piece.memory, nullptr);
        memset(piece.memory, static_cast<int>('a' + (&piece - pieces)), piece.size);
    }
    for (auto &piece : pieces) {
        char letter = static_cast<char>('a' + (&piece - pieces));
        EXPECT_EQ(std::string(piece.memory, piece.size), std::string(piece.size, letter));
        low_memory_free(piece.memory, piece.size);
    }
}

TEST_F(Wireless, LargeMemoryForTheDriverIsGivenBackWhole) {
    constexpr size_t SIZE = 9 * 4096;
    char *memory = static_cast<char *>(low_memory_new(SIZE));
    ASSERT_NE(memory, nullptr);
    EXPECT_TRUE(is_mapped(memory));
    EXPECT_TRUE(is_mapped(memory + 8 * 4096));
    low_memory_free(memory, SIZE);
    EXPECT_FALSE(is_mapped(memory));
    EXPECT_FALSE(is_mapped(memory + 8 * 4096));
}

// Of all that is in use at once, one piece stays mapped afterwards.
TEST_F(Wireless, OneSmallPieceOfMemoryForTheDriverIsKeptForTheNextCaller) {
    char *pieces[3];
    for (char *&piece : pieces)
        piece = static_cast<char *>(low_memory_new(2048));
    for (char *piece : pieces)
        low_memory_free(piece, 2048);
    EXPECT_EQ(is_mapped(pieces[0]) + is_mapped(pieces[1]) + is_mapped(pieces[2]), 1);
    void *next = low_memory_new(32768);
    EXPECT_TRUE(next == pieces[0] || next == pieces[1] || next == pieces[2]);
    low_memory_free(next, 32768);
}

TEST_F(Wireless, NoMemoryForTheDriverIsNull) {
    rlimit whole = {};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &whole), 0);
    rlimit none = whole;
    none.rlim_cur = 1;
    setrlimit(RLIMIT_AS, &none);
    void *memory = low_memory_new(1 << 20);
    setrlimit(RLIMIT_AS, &whole);
    EXPECT_EQ(memory, nullptr);
}

TEST_F(Wireless, MemoryForTheDriverThatWouldReachTooHighIsNull) {
    EXPECT_EQ(low_memory_new(size_t{0xf800'0000}), nullptr);
    EXPECT_EQ(low_memory_new(SIZE_MAX), nullptr);
}

TEST_F(Wireless, TheAddressOfMemoryForTheDriverFitsAWordAndLeadsBack) {
    void *memory = low_memory_new(16);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(std::bit_cast<uintptr_t>(memory), low_memory_address(memory));
    EXPECT_EQ(low_memory_at(low_memory_address(memory)), memory);
    EXPECT_EQ(low_memory_address(nullptr), 0U);
    low_memory_free(memory, 16);
}

// --- the channel table ---

TEST_F(Wireless, TheChannelTableIsAskedForWithItsWholeRoom) {
    get_channels("wifi0", 1);
    EXPECT_EQ(std::string(driver.record.ifr_name), "wifi0");
    EXPECT_EQ(driver.request, 0x8BE7UL);
    EXPECT_EQ(driver.record.u.data.length, 5104);
}

TEST_F(Wireless, TheFlagsOfAListedChannelAreReturned) {
    list_channel(2412, 0x480);
    list_channel(5180, 0x140);
    EXPECT_EQ(get_channels("wifi0", 36), 0x140);
    EXPECT_EQ(get_channels("wifi0", 1), 0x480);
}

TEST_F(Wireless, TheFirstEntryOfAChannelWins) {
    list_channel(2412, 0x1);
    list_channel(2412, 0x2);
    EXPECT_EQ(get_channels("wifi0", 1), 0x1);
}

TEST_F(Wireless, AnUnlistedChannelHasNoFlags) {
    list_channel(2412, 0x480);
    EXPECT_EQ(get_channels("wifi0", 2), 0);
}

TEST_F(Wireless, EntriesBehindTheCountAreNotLookedAt) {
    list_channel(2412, 0x1);
    list_channel(2417, 0x2);
    driver.table.count = 1;
    EXPECT_EQ(get_channels("wifi0", 2), 0);
}

TEST_F(Wireless, TheLastEntryOfAFullTableIsLookedAt) {
    driver.table.count = CHANNEL_TABLE_ENTRIES - 1;
    list_channel(2412, 0x77);
    EXPECT_EQ(get_channels("wifi0", 1), 0x77);
}

TEST_F(Wireless, ACountBeyondTheTableIsNotFollowed) {
    list_channel(2412, 0x1);
    driver.table.count = 0xffffffff;
    EXPECT_EQ(get_channels("wifi0", 2), 0);
}

TEST_F(Wireless, AnUnreadableChannelTableIsReported) {
    driver.error = EOPNOTSUPP;
    int flags = 0;
    printed_text printed = capture([&] { flags = get_channels("wifi0", 1); });
    EXPECT_EQ(flags, -1);
    EXPECT_EQ(printed.err, "unable to get channel information: Operation not supported\n");
}

TEST_F(Wireless, TheFlagsAreLoggedWhileDebuggingIsOn) {
    list_channel(2412, 0x4a0);
    set_debug(true);
    printed_text printed = capture([] { get_channels("wifi0", 1); });
    EXPECT_EQ(printed.out, "[VLK-API] get_channels ic_flags:0x4a0\n");
}

TEST_F(Wireless, NothingIsPrintedWhileDebuggingIsOff) {
    list_channel(2412, 0x4a0);
    printed_text printed = capture([] { get_channels("wifi0", 1); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- channel numbers ---

struct frequency_case {
    unsigned frequency;
    unsigned channel;
};

void expect_channels(std::initializer_list<frequency_case> cases) {
    for (const frequency_case &row : cases) {
        EXPECT_EQ(freq_to_channel(row.frequency), row.channel) << row.frequency << " MHz";
    }
}

TEST_F(Wireless, ChannelsBelow2484MegahertzLieFiveApart) {
    expect_channels({{2407, 0}, {2412, 1}, {2417, 2}, {2437, 6}, {2472, 13}, {2483, 15}});
}

TEST_F(Wireless, ChannelFourteenLiesAt2484Megahertz) {
    expect_channels({{2484, 14}});
}

TEST_F(Wireless, ChannelsBetweenTheBandsLieTwentyApart) {
    expect_channels({{2512, 15}, {2531, 15}, {2532, 16}, {2732, 26}, {4900, 134}});
}

TEST_F(Wireless, ThePublicSafetyBandHasARuleOfItsOwn) {
    expect_channels({{4941, 2}, {4942, 5}, {4945, 10}, {4947, 15}, {4957, 35}, {4987, 95}, {4989, 98}});
}

TEST_F(Wireless, BesideThePublicSafetyBandChannelsCountFrom4000Megahertz) {
    expect_channels({{4901, 180}, {4920, 184}, {4940, 188}, {4990, 198}, {4999, 199}});
}

TEST_F(Wireless, ChannelsFrom5000MegahertzOnLieFiveApart) {
    expect_channels({{5000, 0}, {5180, 36}, {5200, 40}, {5745, 149}, {5825, 165}});
}

TEST_F(Wireless, WhatLiesBelowABandWrapsAround) {
    expect_channels({{0, 858992977}, {2406, 858993459}, {2485, 214748378}, {2511, 214748379}});
}

}  // namespace
