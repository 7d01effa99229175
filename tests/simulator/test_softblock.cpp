// The soft-block daemon: what messages change, its black list, and the process that keeps both.
#include <string.h>
#include <sys/stat.h>

#include <string>

#include "simulator/daemons/soft_block.h"
#include "tests/simulator/daemons.h"

namespace {

std::string mac_of(int number) {
    char text[MAC_TEXT_SIZE];
    snprintf(text, sizeof text, "28:6A:BA:00:00:%02X", number);
    return text;
}

// A list's stations from the oldest on, as their numbers and time stamps.
std::string order_of(const black_list &list) {
    std::string text;
    for (int i = 0; i < list.total; i++) {
        const black_list_station &station = list.entries[(list.oldest + i) % list.total];
        text += std::to_string(station.mac[5]) + "@" + std::to_string(station.timestamp) + " ";
    }
    return text;
}

// A list of so many stations, numbered from 0, added at second 1000 and each one second later.
black_list list_of(int count) {
    black_list list = {};
    for (int i = 0; i < count; i++)
        EXPECT_TRUE(black_list_add(&list, mac_of(i).c_str(), 1000 + i));
    return list;
}

// The list

TEST(BlackList, KeepsStationsInTheOrderInWhichTheyCame) {
    black_list list = list_of(3);
    EXPECT_EQ(list.total, 3);
    EXPECT_EQ(list.oldest, 0);
    EXPECT_EQ(order_of(list), "0@1000 1@1001 2@1002 ");
    const uint8_t octets[] = {0x28, 0x6A, 0xBA, 0, 0, 1};
    EXPECT_EQ(memcmp(list.entries[1].mac, octets, sizeof octets), 0);
}

TEST(BlackList, A65thStationTakesThePlaceOfTheOldest) {
    black_list list = list_of(64);
    EXPECT_EQ(list.total, 64);
    EXPECT_EQ(list.oldest, 0);
    black_list_add(&list, mac_of(64).c_str(), 2000);
    EXPECT_EQ(list.total, 64);
    EXPECT_EQ(list.oldest, 1);
    EXPECT_EQ(list.entries[0].mac[5], 64);
    EXPECT_EQ(list.entries[0].timestamp, 2000);
    EXPECT_EQ(list.entries[1].mac[5], 1);
}

TEST(BlackList, GoesRoundAsOftenAsItMust) {
    black_list list = list_of(64 * 3 + 5);
    EXPECT_EQ(list.total, 64);
    EXPECT_EQ(list.oldest, 5);
    EXPECT_TRUE(order_of(list).starts_with("133@1133 134@1134 "));
    EXPECT_TRUE(order_of(list).ends_with("195@1195 196@1196 "));
}

TEST(BlackList, AStationThatIsOnItBecomesTheNewest) {
    black_list list = list_of(3);
    EXPECT_TRUE(black_list_add(&list, mac_of(0).c_str(), 2000));
    EXPECT_EQ(list.total, 3);
    EXPECT_EQ(order_of(list), "1@1001 2@1002 0@2000 ");
}

TEST(BlackList, AFullOneIsStillFullWhenAStationBecomesTheNewest) {
    black_list list = list_of(70);
    EXPECT_TRUE(black_list_add(&list, mac_of(6).c_str(), 2000));
    EXPECT_EQ(list.total, 64);
    EXPECT_TRUE(order_of(list).starts_with("7@1007 "));
    EXPECT_TRUE(order_of(list).ends_with("69@1069 6@2000 "));
}

TEST(BlackList, ARemovedStationLeavesNoGap) {
    black_list list = list_of(4);
    EXPECT_TRUE(black_list_remove(&list, mac_of(1).c_str()));
    EXPECT_EQ(list.total, 3);
    EXPECT_EQ(order_of(list), "0@1000 2@1002 3@1003 ");
    const black_list_station none = {};
    EXPECT_EQ(memcmp(&list.entries[3], &none, sizeof none), 0) << "nothing of it stays behind the last one";
    EXPECT_FALSE(black_list_remove(&list, mac_of(1).c_str()));
}

TEST(BlackList, ARemovalFromOneThatWentRoundKeepsTheOrderAndTheFirstEntriesUsed) {
    black_list list = list_of(70);
    EXPECT_TRUE(black_list_remove(&list, mac_of(64).c_str()));
    EXPECT_EQ(list.total, 63);
    EXPECT_EQ(list.oldest, 0);
    EXPECT_TRUE(order_of(list).starts_with("6@1006 7@1007 "));
    EXPECT_TRUE(order_of(list).ends_with("63@1063 65@1065 66@1066 67@1067 68@1068 69@1069 "));
    black_list_add(&list, mac_of(99).c_str(), 2000);
    EXPECT_EQ(list.oldest, 0);
    EXPECT_EQ(list.entries[63].mac[5], 99);
}

TEST(BlackList, AddressesAreTheSameInLargeAndSmallLetters) {
    black_list list = {};
    EXPECT_TRUE(black_list_add(&list, "28:6a:ba:4c:fe:01", 1));
    EXPECT_TRUE(black_list_add(&list, "28:6A:BA:4C:FE:01", 2));
    EXPECT_EQ(list.total, 1);
    EXPECT_TRUE(black_list_remove(&list, "28:6A:ba:4C:fe:01"));
}

TEST(BlackList, TextsThatAreNoAddressChangeNothing) {
    black_list list = list_of(2);
    const black_list before = list;
    for (const char *text : {"", "28:6A:BA:4C:10", "28:6A:BA:4C:10:0", "28:6A:BA:4C:10:01:02", "28-6A-BA-4C-10-01",
                             "286ABA4C1001", "28:6A:BA:4C:10:0G", " 28:6A:BA:4C:10:01", "28:6A:BA:4C:10:01 "}) {
        EXPECT_FALSE(black_list_add(&list, text, 5)) << text;
        EXPECT_FALSE(black_list_remove(&list, text)) << text;
    }
    EXPECT_EQ(memcmp(&list, &before, sizeof list), 0);
}

// Its file

const char FILE_PATH[] = "/tmp/list.dat";

black_list loaded() {
    black_list list = list_of(1);
    black_list_load(&list, FILE_PATH);
    return list;
}

TEST(BlackList, ComesBackFromItsFileAsItWas) {
    for (int count : {0, 1, 63, 64, 70}) {
        black_list list = list_of(count);
        ASSERT_EQ(black_list_save(&list, FILE_PATH), 0);
        black_list back = loaded();
        EXPECT_EQ(memcmp(&back, &list, sizeof list), 0) << count;
    }
    unlink(FILE_PATH);
}

TEST(BlackList, ItsFileIsText) {
    black_list list = list_of(2);
    ASSERT_EQ(black_list_save(&list, FILE_PATH), 0);
    EXPECT_EQ(read_file(FILE_PATH), "oldest 0\n28:6A:BA:00:00:00 1000\n28:6A:BA:00:00:01 1001\n");
    unlink(FILE_PATH);
}

TEST(BlackList, ItsFileIsReplacedInOneStep) {
    black_list list = list_of(1);
    ASSERT_EQ(black_list_save(&list, FILE_PATH), 0);
    ASSERT_EQ(link(FILE_PATH, "/tmp/list.old"), 0);
    list = list_of(2);
    ASSERT_EQ(black_list_save(&list, FILE_PATH), 0);
    EXPECT_EQ(read_file("/tmp/list.old"), "oldest 0\n28:6A:BA:00:00:00 1000\n") << "the old one is untouched";
    unlink("/tmp/list.old");
    unlink(FILE_PATH);
    EXPECT_FALSE(exists("/tmp/list.dat.new"));
    EXPECT_EQ(black_list_save(&list, "/nowhere/list.dat"), -1);
}

TEST(BlackList, AMissingOrDamagedFileIsAnEmptyList) {
    unlink(FILE_PATH);
    EXPECT_EQ(loaded().total, 0);
    std::string full = "oldest 0\n";
    for (int i = 0; i < 64; i++)
        full += mac_of(i) + " 1\n";
    for (const std::string &damaged :
         {std::string(), std::string("oldest"), std::string("oldest 0"), std::string("oldest 0 0\n"),
          std::string("oldest -1\n"), std::string("oldest 1\n28:6A:BA:4C:10:01 1\n"),
          std::string("28:6A:BA:4C:10:01 1\n"), std::string("oldest 0\n28:6A:BA:4C:10:01\n"),
          std::string("oldest 0\n28:6A:BA:4C:10:01 1"), std::string("oldest 0\n28:6A:BA:4C:10:01 1 1\n"),
          std::string("oldest 0\n28:6A:BA:4C:10 1\n"),
          std::string("oldest 0\n28:6A:BA:4C:10:01 1\n28:6A:BA:4C:10:01 2\n"),
          std::string("oldest 0\n28:6A:BA:4C:10:01 1\n\n"), std::string(4000, '\xff'), std::string(776, '\0'),
          "oldest 0\n" + std::string(200, 'x') + "\n", full + mac_of(64) + " 1\n", "oldest 64" + full.substr(8)}) {
        write_file(FILE_PATH, damaged);
        black_list list = loaded();
        const black_list empty = {};
        EXPECT_EQ(memcmp(&list, &empty, sizeof list), 0) << damaged.substr(0, 60);
    }
    write_file(FILE_PATH, "oldest 63" + full.substr(8));
    EXPECT_EQ(loaded().oldest, 63) << "the last that is right";
    unlink(FILE_PATH);
}

// Messages

std::string described(const soft_block &state) {
    EXPECT_EQ(soft_block_describe(&state, "/tmp/softblock.text"), 0);
    std::string text = read_file("/tmp/softblock.text");
    unlink("/tmp/softblock.text");
    return text;
}

bool says(const soft_block &state, const std::string &line) {
    return ("\n" + described(state)).find("\n" + line + "\n") != std::string::npos;
}

TEST(SoftBlock, EveryNumberHasItsMessage) {
    soft_block state = {};
    const struct {
        const char *message;
        const char *line;
    } rows[] = {
        {"setBSE:1", "SOFT_BLOCK_EN=1"},
        {"setBLM:2", "SOFT_BLOCK_BLACK_LIST_SELECTOR=2"},
        {"setSBM:-3", "SOFT_BLOCK_SELECTOR=-3"},
        {"setWTT:30", "SOFT_BLOCK_WAITING_TIME=30"},
        {"setATR:2147483647", "SOFT_BLOCK_ALLOW_TIMER=2147483647"},
        {"setAUT:17", "SOFT_BLOCK_AUTH_RESP_ST_C=17"},
        {"setRES:-2147483648", "SOFT_BLOCK_IGNORE_PR_T=-2147483648"},
        {"setRSSI:-70@2", "AP_BSS_STA_RSSI_THR_3=-70"},
        {"setRSSI:-71@0", "AP_BSS_STA_RSSI_THR=-71"},
        {"setRSSI:5@15", "AP_BSS_STA_RSSI_THR_16=5"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(soft_block_take(&state, row.message, 0), SOFT_BLOCK_TUNED) << row.message;
    for (const auto &row : rows)
        EXPECT_TRUE(says(state, row.line)) << row.line;
}

TEST(SoftBlock, OtherMessagesSayWhatTheyAskFor) {
    soft_block state = {};
    EXPECT_EQ(soft_block_take(&state, "addMac:28:6A:BA:4C:10:01", 7), SOFT_BLOCK_LIST_CHANGED);
    EXPECT_EQ(state.list.total, 1);
    EXPECT_EQ(state.list.entries[0].timestamp, 7);
    EXPECT_EQ(soft_block_take(&state, "delMac:28:6A:BA:4C:10:02", 8), SOFT_BLOCK_NOTHING);
    EXPECT_EQ(soft_block_take(&state, "delMac:28:6A:BA:4C:10:01", 8), SOFT_BLOCK_LIST_CHANGED);
    EXPECT_EQ(state.list.total, 0);
    EXPECT_EQ(soft_block_take(&state, "getList", 0), SOFT_BLOCK_ASKED);
    EXPECT_EQ(soft_block_take(&state, "restart", 0), SOFT_BLOCK_RESTART);
}

TEST(SoftBlock, ClearingTakesAnyNumber) {
    for (const char *message : {"clearL:1", "clearL:0", "clearL:-5"}) {
        soft_block state = {};
        state.list = list_of(70);
        EXPECT_EQ(soft_block_take(&state, message, 0), SOFT_BLOCK_LIST_CHANGED);
        const black_list empty = {};
        EXPECT_EQ(memcmp(&state.list, &empty, sizeof empty), 0) << message;
    }
}

TEST(SoftBlock, MessagesThatAreNoneChangeNothing) {
    soft_block state = {};
    state.tunables[0] = 5;
    state.list = list_of(2);
    const soft_block before = state;
    for (const std::string &message : {std::string(),
                                       std::string("setBSE"),
                                       std::string("setBSE:"),
                                       std::string("setBSE:x"),
                                       std::string("setBSE:1x"),
                                       std::string("setBSE: 1"),
                                       std::string("setBSE:+1"),
                                       std::string("setBSE:2147483648"),
                                       std::string("setBSE:99999999999999999999"),
                                       std::string("SETBSE:1"),
                                       std::string(" setBSE:1"),
                                       std::string("setXYZ:1"),
                                       std::string("setRSSI:1"),
                                       std::string("setRSSI:1@"),
                                       std::string("setRSSI:@1"),
                                       std::string("setRSSI:1@16"),
                                       std::string("setRSSI:1@-1"),
                                       std::string("setRSSI:1@1x"),
                                       std::string("setRSSI:1@2147483648"),
                                       std::string("clearL"),
                                       std::string("clearL:"),
                                       std::string("clearL:x"),
                                       std::string("clearL:1 "),
                                       std::string("addMac:"),
                                       std::string("addMac:28:6A:BA:4C:10"),
                                       std::string("addMac"),
                                       std::string("delMac:"),
                                       std::string("delMac:ZZ:6A:BA:4C:10:01"),
                                       std::string("getList "),
                                       std::string("getlist"),
                                       std::string("restarts"),
                                       std::string(900, 'x'),
                                       "setBSE:" + std::string(900, '1')})
        EXPECT_EQ(soft_block_take(&state, message.c_str(), 9), SOFT_BLOCK_NOTHING) << message.substr(0, 40);
    EXPECT_EQ(memcmp(&state, &before, sizeof state), 0);
}

TEST(SoftBlock, ANumberThatTheStoreDoesNotHaveIs0) {
    soft_block state = {};
    state.tunables[0] = state.tunables[3] = state.rssi_thresholds[2] = 5;
    state.list = list_of(1);
    write_file("/tmp/small.store", "CFG\nSOFT_BLOCK_EN=7\nAP_BSS_STA_RSSI_THR_4=-3\nX=1\n" + std::string(4, '\0'));
    soft_block_configure(&state, "/tmp/small.store");
    EXPECT_TRUE(says(state, "SOFT_BLOCK_EN=7"));
    EXPECT_TRUE(says(state, "SOFT_BLOCK_WAITING_TIME=0"));
    EXPECT_TRUE(says(state, "AP_BSS_STA_RSSI_THR_3=0"));
    EXPECT_TRUE(says(state, "AP_BSS_STA_RSSI_THR_4=-3"));
    EXPECT_EQ(state.list.total, 1) << "the list is not the store's";
    unlink("/tmp/small.store");
    soft_block_configure(&state, "/tmp/small.store");
    EXPECT_TRUE(says(state, "SOFT_BLOCK_EN=0"));
}

TEST(SoftBlock, ItsTextHasTheListToo) {
    soft_block state = {};
    state.list = list_of(65);
    EXPECT_TRUE(says(state, "total=64\noldest=1\nstation.0=28:6A:BA:00:00:40 1064\nstation.1=28:6A:BA:00:00:01 1001"));
    EXPECT_TRUE(described(state).ends_with("station.63=28:6A:BA:00:00:3F 1063\n"));
}

// The process

const std::string SOCKET = "/var/run/ssidsteering";
const std::string LIST_FILE = "/nvram/blackList.dat";
const std::string STATE = "/run/gateway/softblock";

class Softblock : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        unlink(LIST_FILE.c_str());
        mark = journal_mark();
    }

    void TearDown() override {
        end_all("softblock", SIGKILL);
        for (const std::string &path : {LIST_FILE, SOCKET, STATE})
            unlink(path.c_str());
        Platform::TearDown();
    }

    static void start() {
        start_in_background("softblock", SOCKET);
        EXPECT_TRUE(eventually([] { return exists(STATE); }));
    }

    // Messages are acted on in their order, so what stood before an answered one has been.
    static black_list list() {
        black_list record = {};
        std::string answer = ask(SOCKET, "getList");
        EXPECT_EQ(answer.size(), sizeof record);
        if (answer.size() == sizeof record)
            memcpy(&record, answer.data(), sizeof record);
        return record;
    }

    // The value of a number, once all messages so far have been acted on.
    static std::string value(const std::string &key) {
        list();
        return run_shell("sed -n 's/^" + key + "=//p' " + STATE).output;
    }
};

TEST_F(Softblock, TakesItsNumbersFromTheStoreWhenItStarts) {
    set_store("SOFT_BLOCK_EN=1");
    set_store("SOFT_BLOCK_WAITING_TIME=33");
    set_store("AP_BSS_STA_RSSI_THR_3=-70");
    start();
    EXPECT_EQ(value("SOFT_BLOCK_EN") + value("SOFT_BLOCK_WAITING_TIME") + value("SOFT_BLOCK_ALLOW_TIMER") +
                  value("AP_BSS_STA_RSSI_THR_3") + value("total"),
              "1\n33\n60\n-70\n0\n");
}

TEST_F(Softblock, KeepsWhatItIsToldAndDoesNotWriteTheStore) {
    start();
    tell(SOCKET, "setWTT:30");
    tell(SOCKET, "setRSSI:-70@2");
    EXPECT_EQ(value("SOFT_BLOCK_WAITING_TIME") + value("AP_BSS_STA_RSSI_THR_3"), "30\n-70\n");
    EXPECT_EQ(run({"cfg", "-v", "SOFT_BLOCK_WAITING_TIME"}).output, "60\n");
    EXPECT_EQ(journal()[1], "datagram softblock setWTT:30");
    EXPECT_EQ(journal()[2], "datagram softblock setRSSI:-70@2");
}

TEST_F(Softblock, AfterARestartOfTheDriverItReadsTheStoreAgainAndKeepsItsList) {
    start();
    tell(SOCKET, "setWTT:30");
    tell(SOCKET, "setATR:31");
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    set_store("SOFT_BLOCK_WAITING_TIME=99");
    EXPECT_EQ(value("SOFT_BLOCK_WAITING_TIME"), "30\n");
    tell(SOCKET, "restart");
    EXPECT_EQ(value("SOFT_BLOCK_WAITING_TIME") + value("SOFT_BLOCK_ALLOW_TIMER") + value("total"), "99\n60\n1\n");
}

TEST_F(Softblock, AnswersItsListAsARecord) {
    start();
    time_t before = time(nullptr);
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    tell(SOCKET, "addMac:80:fe:BA:4C:10:02");
    black_list record = list();
    EXPECT_EQ(record.total, 2);
    EXPECT_EQ(record.oldest, 0);
    const uint8_t octets[] = {0x80, 0xFE, 0xBA, 0x4C, 0x10, 0x02};
    EXPECT_EQ(memcmp(record.entries[1].mac, octets, sizeof octets), 0);
    EXPECT_GE(record.entries[1].timestamp, before);
    EXPECT_LE(record.entries[1].timestamp, time(nullptr));
}

TEST_F(Softblock, ItsStateFollowsItsListAndIsReplacedInOneStep) {
    start();
    ASSERT_EQ(link(STATE.c_str(), "/run/gateway/softblock.old"), 0);
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    EXPECT_TRUE(value("station.0").starts_with("28:6A:BA:4C:10:01 "));
    EXPECT_NE(read_file("/run/gateway/softblock.old").find("total=0\n"), std::string::npos);
    unlink("/run/gateway/softblock.old");
    tell(SOCKET, "delMac:28:6A:BA:4C:10:01");
    EXPECT_EQ(value("total"), "0\n");
}

TEST_F(Softblock, ItsListOutlivesIt) {
    start();
    for (int i = 0; i < 70; i++)
        tell(SOCKET, "addMac:" + mac_of(i));
    tell(SOCKET, "delMac:" + mac_of(50));
    black_list before = list();
    EXPECT_EQ(before.total, 63);
    for (int number : {SIGTERM, SIGKILL}) {
        end_all("softblock", number);
        EXPECT_TRUE(exists(LIST_FILE));
        start();
        black_list after = list();
        EXPECT_EQ(memcmp(&after, &before, sizeof after), 0);
    }
    EXPECT_EQ(value("total"), "63\n");
}

TEST_F(Softblock, AnEmptiedListIsEmptyAfterwardsToo) {
    start();
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    tell(SOCKET, "clearL:1");
    EXPECT_EQ(list().total, 0);
    EXPECT_EQ(read_file(LIST_FILE), "oldest 0\n") << "the file stays";
    end_all("softblock");
    start();
    EXPECT_EQ(list().total, 0);
}

TEST_F(Softblock, ADamagedListIsAnEmptyOneAndTheNextChangeWritesItAnew) {
    write_file(LIST_FILE, "nonsense\n");
    start();
    EXPECT_EQ(list().total, 0);
    EXPECT_EQ(read_file(LIST_FILE), "nonsense\n") << "left alone until then";
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    EXPECT_EQ(list().total, 1);
    EXPECT_TRUE(read_file(LIST_FILE).starts_with("oldest 0\n28:6A:BA:4C:10:01 "));
}

TEST_F(Softblock, AListFileThatSomebodyTookAwayIsMissedOnlyByTheNextOne) {
    start();
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    list();
    unlink(LIST_FILE.c_str());
    EXPECT_EQ(list().total, 1);
    end_all("softblock");
    start();
    EXPECT_EQ(list().total, 0);
}

TEST_F(Softblock, WhatItDoesNotUnderstandChangesNothing) {
    start();
    std::string before = read_file(STATE);
    daemon_client client = connect_to(SOCKET);
    for (const std::string &bytes : {std::string("setWTT:1"), std::string("setWTT:1\0\0", 10), std::string(),
                                     std::string(65536, 'x'), std::string("addMac:nobody\0", 14)})
        send_to(client, bytes);
    disconnect(client);
    list();
    EXPECT_EQ(read_file(STATE), before);
    EXPECT_FALSE(exists(LIST_FILE));
}

TEST_F(Softblock, ASilentOneDoesNotAct) {
    start();
    run({"fault", "softblock", "silent"});
    tell(SOCKET, "setWTT:1");
    EXPECT_TRUE(eventually([&] { return journal().back() == "datagram softblock setWTT:1"; }));
    run({"fault", "softblock", "off"});
    EXPECT_EQ(value("SOFT_BLOCK_WAITING_TIME"), "60\n");
}

TEST_F(Softblock, AStuckOneActsOnEverythingInItsOrderWhenItReadsOn) {
    start();
    run({"fault", "softblock", "stuck"});
    for (int i = 1; i <= 5; i++)
        tell(SOCKET, "setWTT:" + std::to_string(i));
    usleep(50'000);
    EXPECT_EQ(run_shell("sed -n 's/^SOFT_BLOCK_WAITING_TIME=//p' " + STATE).output, "60\n");
    run({"fault", "softblock", "off"});
    EXPECT_EQ(value("SOFT_BLOCK_WAITING_TIME"), "5\n");
}

TEST_F(Softblock, AShortAnswerIsTheBeginningOfTheWhole) {
    start();
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    std::string whole = ask(SOCKET, "getList");
    run({"fault", "softblock", "short 17"});
    EXPECT_EQ(ask(SOCKET, "getList"), whole.substr(0, 17));
}

TEST_F(Softblock, OneWhoseAnswersAreWrongActsAllTheSame) {
    start();
    int number = 100;
    for (const char *fault : {"zeros", "garbage", "short 5", "slow 0.01"}) {
        run_shell(std::string("fault softblock ") + fault);
        tell(SOCKET, "setWTT:" + std::to_string(++number));
        ask(SOCKET, "getList");
        EXPECT_EQ(run_shell("sed -n 's/^SOFT_BLOCK_WAITING_TIME=//p' " + STATE).output, std::to_string(number) + "\n")
            << fault;
    }
}

TEST_F(Softblock, LeavesNothingButItsListWhenItEnds) {
    start();
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    list();
    end_all("softblock");
    EXPECT_FALSE(exists(SOCKET));
    EXPECT_FALSE(exists(STATE));
    EXPECT_TRUE(exists(LIST_FILE));
}

TEST_F(Softblock, ASecondOneLeavesTheFirstOnesStateAlone) {
    start();
    tell(SOCKET, "setWTT:30");
    list();
    EXPECT_EQ(run({"timeout", "5", "softblock"}).status, 1);
    EXPECT_EQ(value("SOFT_BLOCK_WAITING_TIME"), "30\n");
}

TEST_F(Softblock, RefusesArguments) {
    outcome refused = run({"timeout", "5", "softblock", "-x"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "usage: softblock \n");
    EXPECT_FALSE(exists(SOCKET));
}

TEST_F(Softblock, SaysWhatItCannotWriteAndGoesOn) {
    ASSERT_EQ(mkdir((LIST_FILE + ".new").c_str(), 0755), 0);
    EXPECT_EQ(run_shell("softblock >/dev/null 2>/tmp/softblock.errors &").status, 0);
    ASSERT_TRUE(eventually([] { return is_served(SOCKET); }));
    tell(SOCKET, "addMac:28:6A:BA:4C:10:01");
    EXPECT_EQ(list().total, 1);
    EXPECT_EQ(read_file("/tmp/softblock.errors"), "softblock: /nvram/blackList.dat: Is a directory\n");
    rmdir((LIST_FILE + ".new").c_str());
}

}  // namespace
