// Radio statistics over the wire: the numbers of a collector to the byte, what is told without one, and which commands
// start and stop collectors.
#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>

#include "server/wire.h"
#include "tests/support/daemon.h"
#include "tests/system/gateway.h"

namespace {

using words = std::vector<uint32_t>;

const char COLLECTOR_0[] = "/var/run/radstat/ath0";
const char COLLECTOR_8[] = "/var/run/radstat/ath8";

// The answer of a collector: forty-eight different words of both signs, low byte first.
uint32_t answer_word(size_t i, uint32_t salt) {
    return (i % 2 ? 0u - 5000u - static_cast<uint32_t>(i) : 100u + static_cast<uint32_t>(i)) + salt;
}

std::string collector_answer(uint32_t salt) {
    std::string answer;
    for (size_t i = 0; i < 48; i++)
        for (int shift = 0; shift < 32; shift += 8)
            answer += static_cast<char>(answer_word(i, salt) >> shift);
    return answer;
}

// A getter: the places of its words in an answer, whether they travel as 64 bits, and the word that stands for none.
struct getter_row {
    uint32_t procedure;
    std::vector<size_t> places;
    bool wide;
    uint32_t none;
};

std::vector<size_t> rssi_places() {
    std::vector<size_t> places;
    for (size_t place = 10; place < 47; place++)
        places.push_back(place);
    return places;
}

constexpr uint32_t MINUS_ONE = 0xffffffff;

const getter_row GETTERS[] = {
    {PROC_wlan_get_channel_statistics, {0, 1, 2}, false, MINUS_ONE},
    {PROC_wlan_get_channel_noise_floor, {4, 3, 5, 6}, false, MINUS_ONE},
    {PROC_wlan_get_radio_tx_packets, {8}, true, 0},
    {PROC_wlan_get_radio_rx_packets, {9}, true, 0},
    {PROC_wlan_get_retransmission_metric, {7}, false, MINUS_ONE},
    {PROC_wlan_get_rssi_table, rssi_places(), true, MINUS_ONE},
};

// The whole result: code 0, four times as many words as there are, the words, zeros, no data.
bytes result_bytes(const words &numbers, bool wide) {
    bytes values;
    for (uint32_t number : numbers) {
        values += xdr_word(number);
        if (wide)
            values += xdr_word(number >> 31 ? 0xffffffff : 0);
    }
    size_t length = values.size();
    return xdr_word(0) + xdr_word(static_cast<uint32_t>(length)) + values + bytes(3 * length, '\0') + xdr_word(0);
}

bytes expected_reply(const getter_row &row, uint32_t salt) {
    words numbers;
    for (size_t place : row.places)
        numbers.push_back(answer_word(place, salt));
    return result_bytes(numbers, row.wide);
}

bytes default_reply(const getter_row &row) {
    return result_bytes(words(row.places.size(), row.none), row.wide);
}

int set_rad_stat_enable(int index, int on, int rate, int interval) {
    return code_of(call(PROC_wlan_set_rad_stat_enable, vap(index) + xdr_word(static_cast<uint32_t>(on)) +
                                                           xdr_word(static_cast<uint32_t>(rate)) +
                                                           xdr_word(static_cast<uint32_t>(interval))));
}

class Collector : public WatchedGateway {
protected:
    void SetUp() override {
        // No collector runs, and the server remembers no answers.
        set_rad_stat_enable(1, 0, 0, 0);
        set_rad_stat_enable(9, 0, 0, 0);
        for (const char *path : {COLLECTOR_0, COLLECTOR_8})
            unlink(path);
        begin_with(TWO_RADIOS);
    }
    void TearDown() override {
        set_debug(false);
    }
};

TEST_F(Collector, NumbersOfBothRadiosTravelToTheByte) {
    fake_daemon first(COLLECTOR_0);
    fake_daemon second(COLLECTOR_8);
    first.answer(collector_answer(0));
    second.answer(collector_answer(77));
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(call(row.procedure, vap(1)).result, expected_reply(row, 0)) << row.procedure;
        EXPECT_EQ(call(row.procedure, vap(9)).result, expected_reply(row, 77)) << row.procedure;
    }
    EXPECT_EQ(first.requests(), strings(6, std::string("result\0", 7)));
    EXPECT_EQ(second.requests(), strings(6, std::string("result\0", 7)));
    EXPECT_EQ(commands(), strings{});
}

TEST_F(Collector, RssiTableHasTwoHundredAndNinetySixWords) {
    fake_daemon daemon(COLLECTOR_0);
    daemon.answer(collector_answer(0));
    decoded_result result = result_of(call(PROC_wlan_get_rssi_table, vap(1)));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.values.size(), 4 * 74u);
}

TEST_F(Collector, WithoutACollectorTheDefaultsComeWithSuccess) {
    for (const getter_row &row : GETTERS)
        for (int index : {1, 9, 8, 16, 0, -1})
            EXPECT_EQ(call(row.procedure, vap(index)).result, default_reply(row)) << row.procedure << " " << index;
}

TEST_F(Collector, MissingCollectorIsReportedOnStandardError) {
    call(PROC_wlan_get_retransmission_metric, vap(1));
    EXPECT_EQ(lines_with({"[VLK-API] Error "}), strings{"[VLK-API] Error rad_ctrl_request_buffered Could not connect"});
}

TEST_F(Collector, SilentCollectorHoldsACallForTwoSecondsAndGivesTheDefaults) {
    fake_daemon daemon(COLLECTOR_8);
    daemon.stay_silent();
    for (const getter_row *row : {&GETTERS[2], &GETTERS[4]}) {
        time_t begin = time(nullptr);
        EXPECT_EQ(call(row->procedure, vap(9)).result, default_reply(*row)) << row->procedure;
        EXPECT_GE(time(nullptr) - begin, 1);
        EXPECT_LE(time(nullptr) - begin, 4);
    }
    EXPECT_EQ(daemon.requests().size(), 2u);
    EXPECT_EQ(lines_with({"[VLK-API] Error "}), strings{});
}

TEST_F(Collector, ZerosAreReplacedByTheLastNumbersOfTheRadio) {
    {
        fake_daemon daemon(COLLECTOR_0);
        daemon.answer(collector_answer(5));
        call(PROC_wlan_get_channel_statistics, vap(1));
    }
    fake_daemon first(COLLECTOR_0);
    fake_daemon second(COLLECTOR_8);
    first.answer(bytes(192, '\0'));
    second.answer(bytes(192, '\0'));
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(call(row.procedure, vap(1)).result, expected_reply(row, 5)) << row.procedure;
        EXPECT_EQ(call(row.procedure, vap(9)).result, result_bytes(words(row.places.size(), MINUS_ONE), row.wide))
            << row.procedure;
    }
}

TEST_F(Collector, StoppingForgetsTheNumbersOfTheRadio) {
    fake_daemon daemon(COLLECTOR_0);
    std::atomic<bool> zeros = false;
    daemon.serve([&zeros](const std::string &, std::string *answer) {
        *answer = zeros ? bytes(192, '\0') : collector_answer(5);
        return true;
    });
    call(PROC_wlan_get_channel_statistics, vap(1));
    zeros = true;
    EXPECT_EQ(call(PROC_wlan_get_channel_statistics, vap(1)).result, expected_reply(GETTERS[0], 5));
    EXPECT_EQ(set_rad_stat_enable(1, 0, 30, 1800), 0);
    EXPECT_EQ(call(PROC_wlan_get_channel_statistics, vap(1)).result, default_reply(GETTERS[0]));
}

TEST_F(Collector, ServerKeepsNoSocketFile) {
    fake_daemon daemon(COLLECTOR_0);
    daemon.answer(collector_answer(0));
    for (int index : {1, 9})
        call(PROC_wlan_get_channel_statistics, vap(index));
    for (const auto &entry : std::filesystem::directory_iterator("/tmp"))
        EXPECT_FALSE(entry.path().filename().string().starts_with("rad_ctrl_")) << entry.path();
}

TEST_F(Collector, ReadingIsLoggedByHandlerAndBackEnd) {
    fake_daemon daemon(COLLECTOR_0);
    daemon.answer(collector_answer(0));
    set_debug(true);
    call(PROC_wlan_get_radio_tx_packets, vap(1));
    EXPECT_EQ(lines_with({"[VLK-API] wlan_"}),
              (strings{"[VLK-API] wlan_get_radio_tx_packets_1_svc  WLAN RPC server : [index 1]",
                       "[VLK-API] wlan_getRadioTxPackets TxCount : 108",
                       "[VLK-API] wlan_get_radio_tx_packets_1_svc  WLAN RPC server : [packets 108]"}));
}

TEST_F(Collector, ChannelIsLeftToTheDriverAndReportedInWordsOfItsOwn) {
    set_debug(true);
    EXPECT_EQ(call(PROC_wlan_ap_auto_channel_select, vap(3)).result, bytes(12, '\0'));
    EXPECT_EQ(commands(), strings{"iwconfig ath2 channel auto"});
    EXPECT_EQ(lines_with({"[VLK-API] wlan_"}),
              (strings{"[VLK-API] wlan_ap_auto_channel_select_1_svc  WLAN RPC server : [index 3]",
                       "[VLK-API] wlan_ap_auto_channel_select_1_svc  WLAN RPC server return code :0"}));
}

// Starting and stopping. Each test ends with what it started stopped.
class CollectorSwitch : public WatchedGateway {
protected:
    void SetUp() override {
        unlink("/var/run/radstat2");
        unlink("/var/run/radstat8");
        begin_with(TWO_RADIOS);
    }
    void TearDown() override {
        for (int index : {3, 9})
            set_rad_stat_enable(index, 0, 0, 0);
    }
    strings shell_commands() const {
        return commands_since(journal_mark, "system ");
    }
};

TEST_F(CollectorSwitch, CollectorIsLinkedEndedAndStarted) {
    EXPECT_EQ(set_rad_stat_enable(3, 1, 30, 1800), 0);
    EXPECT_EQ(shell_commands(), (strings{"ln -s -T /usr/sbin/radstat /var/run/radstat2", "killall radstat2",
                                         "/var/run/radstat2 -i ath2 -r 30 -m 1800 -R 0&"}));
    EXPECT_EQ(commands(), strings{});
    EXPECT_EQ(std::filesystem::read_symlink("/var/run/radstat2"), "/usr/sbin/radstat");
}

TEST_F(CollectorSwitch, LinkThatIsThereIsNotMadeAgain) {
    ASSERT_EQ(symlink("/bin/true", "/var/run/radstat2"), 0);
    EXPECT_EQ(set_rad_stat_enable(3, -1, -7, 0), 0);
    EXPECT_EQ(shell_commands(), (strings{"killall radstat2", "/var/run/radstat2 -i ath2 -r -7 -m 0 -R 0&"}));
}

TEST_F(CollectorSwitch, DriverIsToldOfTheSecondRadio) {
    ASSERT_EQ(symlink("/bin/true", "/var/run/radstat8"), 0);
    EXPECT_EQ(set_rad_stat_enable(9, 1, 30, 1800), 0);
    EXPECT_EQ(set_rad_stat_enable(9, 0, 30, 1800), 0);
    EXPECT_EQ(shell_commands(),
              (strings{"killall radstat8", "/var/run/radstat8 -i ath8 -r 30 -m 1800 -R 0&",
                       "iwpriv wifi1 enable_ol_stats 1", "killall radstat8", "iwpriv wifi1 enable_ol_stats 0"}));
}

TEST_F(CollectorSwitch, IndexBelowOneIsRefused) {
    for (int index : {0, -1, INT32_MIN})
        EXPECT_EQ(set_rad_stat_enable(index, 1, 30, 1800), -1) << index;
    EXPECT_EQ(shell_commands(), strings{});
}

}  // namespace
