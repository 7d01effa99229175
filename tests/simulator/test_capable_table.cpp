// The file of 5 GHz capable stations that the driver shares with the server.
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/wait.h>

#include <string>

#include "simulator/driver/capable_table.h"
#include "tests/simulator/platform.h"

namespace {

constexpr size_t SLOT = 1536;
constexpr size_t WHOLE = 8 * SLOT;

class CapableTable : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        unlink(CAPABLE_TABLE);
    }

    void TearDown() override {
        run({"rm", "-rf", CAPABLE_TABLE});
        Platform::TearDown();
    }
};

std::string bytes(std::initializer_list<int> octets) {
    std::string text;
    for (int octet : octets)
        text += static_cast<char>(octet);
    return text;
}

const std::string FIRST = bytes({0x28, 0x6A, 0xBA, 0x4C, 0x10, 0x01, 0, 0});
const std::string SECOND = bytes({0x3C, 0x15, 0xC2, 0xE0, 0x44, 0x03, 0, 0});
const std::string THIRD = bytes({0x98, 0x01, 0xA7, 0x9B, 0x55, 0x04, 0, 0});
const std::string OTHER = bytes({2, 0, 0, 0, 0, 9, 7, 7});

// A slot with these entries: their number in the machine's order, and zeros behind them.
std::string slot_of(const std::string &entries) {
    uint32_t count = static_cast<uint32_t>(entries.size() / 8);
    std::string slot(reinterpret_cast<const char *>(&count), sizeof count);
    slot += entries;
    slot.resize(SLOT);
    return slot;
}

std::string table_of(const std::string &first, const std::string &third = slot_of("")) {
    std::string table = first + slot_of("") + third;
    table.resize(WHOLE);
    return table;
}

TEST_F(CapableTable, HoldsTheScenariosStationsOfTheVapsThatAreUp) {
    add_to_scenario("capable5g 3 mac=28:6A:BA:4C:10:01\ncapable5g 4 mac=28:6A:BA:4C:10:01\n");
    set_store("AP_ENABLE_3=1");
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), table_of(slot_of(FIRST + SECOND + THIRD), slot_of(FIRST)));
}

TEST_F(CapableTable, IsNotMadeWhenThereIsNothingToPutIn) {
    set_store("AP_ENABLE=0");
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(access(CAPABLE_TABLE, F_OK), -1);
}

TEST_F(CapableTable, IsNotTheBusinessOfLoading) {
    run({"fast_down.sh"});
    run({"apup_simple"});
    EXPECT_EQ(access(CAPABLE_TABLE, F_OK), -1);
}

TEST_F(CapableTable, KeepsWhatItHasAndGainsWhatIsMissing) {
    write_file(CAPABLE_TABLE, table_of(slot_of(OTHER + SECOND), slot_of(OTHER)) + "behind");
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), table_of(slot_of(OTHER + SECOND + FIRST + THIRD), slot_of(OTHER)) + "behind");
    std::string before = read_file(CAPABLE_TABLE);
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), before);
}

TEST_F(CapableTable, ThatIsTooShortGetsItsLength) {
    write_file(CAPABLE_TABLE, slot_of(OTHER).substr(0, 12));
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), table_of(slot_of(OTHER + FIRST + SECOND + THIRD)));
}

TEST_F(CapableTable, ASlotWhoseNumberMakesNoSenseStaysAsItIs) {
    std::string damaged = table_of(bytes({192, 0, 0, 0}) + std::string(SLOT - 4, 'x'));
    write_file(CAPABLE_TABLE, damaged);
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), damaged);
    damaged = table_of(std::string(SLOT, '\xff'));
    write_file(CAPABLE_TABLE, damaged);
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), damaged);
}

TEST_F(CapableTable, AFullSlotTakesNoMore) {
    std::string entries;
    for (int i = 0; i < 190; i++)
        entries += bytes({2, 0, 0, 0, 1, i, 0, 0});
    write_file(CAPABLE_TABLE, table_of(slot_of(entries)));
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), table_of(slot_of(entries + FIRST)));
}

TEST_F(CapableTable, IsWrittenUnderItsLockWhichApupWaitsFor) {
    write_file(CAPABLE_TABLE, table_of(slot_of("")));
    int file = open(CAPABLE_TABLE, O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    end_authenticators();
    pid_t child = fork();
    if (child == 0) {
        execlp("apup", "apup", nullptr);
        _exit(127);
    }
    // Everything else is done; only the table is not.
    ASSERT_TRUE(eventually([] { return run({"hostapd_cli", "-iath0", "ping"}).output == "PONG\n"; }));
    usleep(50000);
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), table_of(slot_of("")));
    close(file);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read_file(CAPABLE_TABLE), table_of(slot_of(FIRST + SECOND + THIRD)));
}

TEST_F(CapableTable, ThatCannotBeWrittenIsAMessageAndApupDoesTheRest) {
    ASSERT_EQ(run({"mkdir", CAPABLE_TABLE}).status, 0);
    outcome started = run({"apup"});
    EXPECT_EQ(started.status, 0);
    EXPECT_EQ(started.errors, "apup: /nvram/5gcapabletable: Is a directory\n");
    EXPECT_EQ(run({"hostapd_cli", "-iath0", "ping"}).output, "PONG\n");
}

}  // namespace
