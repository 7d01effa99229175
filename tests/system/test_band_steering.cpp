// Band steering over the wire: the replies, the store, the table file to the byte, and what reaches the driver.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>
#include <thread>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

const char TABLE_FILE[] = "/nvram/5gcapabletable";

void remove_table_file() {
    std::error_code error;
    std::filesystem::remove_all(TABLE_FILE, error);
    ASSERT_FALSE(error) << error.message();
}

class BandSteering : public WatchedGateway {
protected:
    void SetUp() override {
        remove_table_file();
        begin_with({});
    }

    void TearDown() override {
        set_debug(false);
        run_command("fault off");
        remove_table_file();
    }

    // The debug requests that reached the driver: interface and length, whatever it answered.
    strings debug_requests() const {
        strings requests;
        for (const std::string &line : lines_since(JOURNAL_FILE, journal_mark))
            if (line.starts_with("ioctl ") && line.find(" 0x8bf8 ") != std::string::npos)
                requests.push_back(line.substr(0, line.find(" =")));
        return requests;
    }
};

bytes word(int number) {
    return xdr_word(static_cast<uint32_t>(number));
}

// A setting of the whole device: with an index in front of it or not, and how a value stands in the store.
const struct {
    uint32_t set;
    uint32_t get;
    bool has_index;
    int value;
    const char *stored;
    int refused;  // 0: nothing is
} DEVICE_SETTINGS[] = {
    {PROC_wlan_set_bs_enable, PROC_wlan_get_bs_enable, false, 3, "BS_ENABLE=3", 4},
    {PROC_wlan_set_bs_2g_rssi_low_limit_threshold, PROC_wlan_get_bs_2g_rssi_low_limit_threshold, false, -70,
     "BS_IS_RSSI_STEERPOINT_DG=30", -256},
    {PROC_wlan_set_bs_5g_rssi_good_limit_threshold, PROC_wlan_get_bs_5g_rssi_good_limit_threshold, false, -255,
     "BS_IS_RSSI_STEERING_POINT_UG=-155", 1},
    {PROC_wlan_set_band_steer_util_sample_rate, PROC_wlan_get_band_steer_util_sample_rate, true, 8,
     "BS_BANDMON_MUCHECK_INTERVAL_W2=8", 0},
    {PROC_wlan_set_band_steer_util_avg_period, PROC_wlan_get_band_steer_util_avg_period, true, -1,
     "BS_OL_MU_AVG_PERIOD=-1", 0},
    {PROC_wlan_set_band_steer_defer_period, PROC_wlan_get_band_steer_defer_period, true, 300,
     "BS_SE_STEERINGPROHIBITTIME=300", 0},
    {PROC_wlan_set_band_steer_assoc_low_rssi_threshold, PROC_wlan_get_band_steer_assoc_low_rssi_threshold, true, -80,
     "BS_SE_TARGETLOWRSSITHRESHOLD_W2=20", -256},
    {PROC_wlan_set_band_steer_time, PROC_wlan_get_band_steer_time, false, 20, "BS_SE_TSTEERING=20", -1},
    {PROC_wlan_set_band_steer_count, PROC_wlan_get_band_steer_count, false, 3, "BS_SE_AUTHREJMAX=3", -1},
};

TEST_F(BandSteering, SettingsOfTheWholeDeviceAreStoredAndRead) {
    for (const auto &setting : DEVICE_SETTINGS) {
        SCOPED_TRACE(setting.stored);
        std::string stored = setting.stored;
        std::string key = stored.substr(0, stored.find('='));
        bytes index = setting.has_index ? vap(2) : "";
        EXPECT_EQ(number_of(call(setting.get, index)), (number_result{-1, 0}));
        EXPECT_EQ(code_of(call(setting.set, index + word(setting.value))), 0);
        EXPECT_EQ(key + "=" + store_value(key), stored);
        EXPECT_EQ(number_of(call(setting.get, index)), (number_result{0, setting.value}));
        if (setting.refused != 0) {
            EXPECT_EQ(code_of(call(setting.set, index + word(setting.refused))), -1);
            EXPECT_EQ(key + "=" + store_value(key), stored);
        }
    }
}

TEST_F(BandSteering, AssociationThresholdBelongsToTheRadioOfTheIndex) {
    EXPECT_EQ(set_number(PROC_wlan_set_band_steer_assoc_low_rssi_threshold, 9, static_cast<uint32_t>(-60)), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_band_steer_assoc_low_rssi_threshold, 20, static_cast<uint32_t>(-50)), 0);
    EXPECT_EQ(commands(), strings{"cfg -a BS_SE_TARGETLOWRSSITHRESHOLD_W5=\"40\""});
    EXPECT_EQ(get_number(PROC_wlan_get_band_steer_assoc_low_rssi_threshold, 16), (number_result{0, -60}));
    EXPECT_EQ(get_number(PROC_wlan_get_band_steer_assoc_low_rssi_threshold, 20), (number_result{-1, 0}));
}

// Both words of a result, each of which stands for four bytes of its length.
TEST_F(BandSteering, InactivityTimesTravelTogether) {
    decoded_result before = result_of(call(PROC_wlan_get_bs_inactivity_steer_time, vap(9)));
    EXPECT_EQ(before.code, -1);
    EXPECT_EQ(before.values, std::vector<uint32_t>(8, 0));
    EXPECT_EQ(code_of(call(PROC_wlan_set_bs_inactivity_steer_time, vap(9) + word(10) + word(20))), 0);
    EXPECT_EQ(code_of(call(PROC_wlan_set_bs_inactivity_steer_time, vap(17) + word(1) + word(2))), 0);
    EXPECT_EQ(commands(),
              (strings{"cfg -a BS_IS_NORM_INACT_TIMEOUT=\"10\"", "cfg -a BS_IS_OVERLOAD_INACT_TIMEOUT=\"20\""}));
    decoded_result after = result_of(call(PROC_wlan_get_bs_inactivity_steer_time, vap(17)));
    EXPECT_EQ(after.code, 0);
    EXPECT_EQ(after.values, (std::vector<uint32_t>{10, 20, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(after.data.empty());
}

const struct {
    uint32_t set;
    uint32_t get;
    const char *key;
    int value;
    int refused;
} PAIR_SETTINGS[] = {
    {PROC_wlan_set_bs_bss_5g_rssi_threshold, PROC_wlan_get_bs_bss_5g_rssi_threshold, "BS_BSS_RSSI_THRESHOLD5", -100, 0},
    {PROC_wlan_set_bs_bss_delta_5g_rssi_threshold, PROC_wlan_get_bs_bss_delta_5g_rssi_threshold,
     "BS_BSS_RSSI_DELTA_THRESHOLD", 100, 101},
    {PROC_wlan_set_bs_bss_2g_temp_timeout, PROC_wlan_get_bs_bss_2g_temp_timeout, "BS_BSS_TEMP_TIMEOUT2", 100000,
     100001},
};

TEST_F(BandSteering, SettingsOfABssAreStoredForBothVaps) {
    for (const auto &setting : PAIR_SETTINGS) {
        SCOPED_TRACE(setting.key);
        std::string key = setting.key;
        std::string value = std::to_string(setting.value);
        for (int index : {1, 2, 8}) {
            std::string suffix = index == 1 ? "" : "_" + std::to_string(index);
            EXPECT_EQ(get_number(setting.get, index), (number_result{-1, 0}));
            EXPECT_EQ(set_number(setting.set, index, static_cast<uint32_t>(setting.refused)), -1);
            EXPECT_EQ(store_value(key + suffix), "(absent)");
            EXPECT_EQ(set_number(setting.set, index, static_cast<uint32_t>(setting.value)), 0);
            EXPECT_EQ(store_value(key + suffix), value);
            EXPECT_EQ(store_value(key + "_" + std::to_string(index + 8)), value);
            EXPECT_EQ(get_number(setting.get, index), (number_result{0, setting.value}));
        }
        EXPECT_EQ(set_number(setting.set, 9, static_cast<uint32_t>(setting.value)), -1);
        EXPECT_EQ(get_number(setting.get, 9), (number_result{-1, 0}));
    }
}

TEST_F(BandSteering, SwitchOfABssIsStoredForBothVaps) {
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_enable, 1, 2), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_enable, 4, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_enable, 9, 1), -1);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_enable, 1, 3), -1);
    EXPECT_EQ(commands(), (strings{"cfg -a BS_BSS_ENABLE=\"2\"", "cfg -a BS_BSS_ENABLE_9=\"2\"",
                                   "cfg -a BS_BSS_ENABLE_4=\"1\"", "cfg -a BS_BSS_ENABLE_12=\"1\""}));
}

TEST_F(BandSteering, SwitchOfABssIsAskedOfTheDriverToo) {
    set_store({"BS_BSS_ENABLE_4=1"});
    EXPECT_EQ(result_of(call(PROC_wlan_get_bs_bss_enable, vap(4))).code, 0);
    EXPECT_EQ(commands(), strings{"wifitool ath3 bandsteering_status"});
}

TEST_F(BandSteering, SwitchOfABssIsWhatIsStoredWhenTheDriverCannotBeAsked) {
    set_store({"BS_BSS_ENABLE_4=1"});
    run_command("fault popen EMFILE");
    EXPECT_EQ(get_number(PROC_wlan_get_bs_bss_enable, 4), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_bs_bss_enable, 3), (number_result{0, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_bs_bss_enable, 9), (number_result{-1, 0}));
}

// --- the stations that can use 5 GHz ---

constexpr size_t SLOT_SIZE = 1536;

// Eight slots that do not look like each other.
bytes table_bytes() {
    bytes file;
    for (uint32_t slot = 1; slot <= 8; slot++) {
        uint32_t count = 10 * slot;
        file.append(reinterpret_cast<const char *>(&count), sizeof count);
        for (size_t i = sizeof count; i < SLOT_SIZE; i++)
            file += static_cast<char>(slot * 31 + i);
    }
    return file;
}

// A result with one value, which stands for four bytes of its length.
void expect_table(const decoded_result &result, int code, uint32_t count, const bytes &data) {
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.values, (std::vector<uint32_t>{count, 0, 0, 0}));
    EXPECT_TRUE(result.data == data);
}

TEST_F(BandSteering, CapableTableIsTheFilesSlotToTheByte) {
    write_file(TABLE_FILE, table_bytes());
    for (int index = 1; index <= 8; index++) {
        SCOPED_TRACE(index);
        expect_table(result_of(call(PROC_wlan_get_bs_bss_5g_capable_table, vap(index))), 0,
                     static_cast<uint32_t>(10 * index),
                     table_bytes().substr(static_cast<size_t>(index - 1) * SLOT_SIZE, SLOT_SIZE));
    }
}

TEST_F(BandSteering, CapableTableIsEmptyWithoutAFile) {
    expect_table(result_of(call(PROC_wlan_get_bs_bss_5g_capable_table, vap(3))), 0, 0, bytes(SLOT_SIZE, '\0'));
}

TEST_F(BandSteering, CapableTableOfAShortFileIsAFailure) {
    write_file(TABLE_FILE, table_bytes().substr(0, SLOT_SIZE + 4));
    expect_table(result_of(call(PROC_wlan_get_bs_bss_5g_capable_table, vap(2))), -1, 0,
                 table_bytes().substr(SLOT_SIZE, 4) + bytes(SLOT_SIZE - 4, '\0'));
}

TEST_F(BandSteering, CapableTableOfAnotherIndexIsAFailure) {
    write_file(TABLE_FILE, table_bytes());
    for (int index : {-1, 0, 9, 16})
        expect_table(result_of(call(PROC_wlan_get_bs_bss_5g_capable_table, vap(index))), -1, 0, bytes(SLOT_SIZE, '\0'));
}

// The lock is given back when somebody waits for it, and not before another table is in the file.
TEST_F(BandSteering, CapableTableWaitsForTheDriversLock) {
    write_file(TABLE_FILE, bytes(SLOT_SIZE, 'x'));
    int file = open(TABLE_FILE, O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    bool waited = false;
    bytes table = table_bytes().substr(0, SLOT_SIZE);
    std::thread driver([&] {
        for (int i = 0; i < 400 && !waited; i++) {
            usleep(10'000);
            waited = read_file("/proc/locks").find("-> FLOCK") != std::string::npos;
        }
        EXPECT_EQ(pwrite(file, table.data(), table.size(), 0), static_cast<ssize_t>(table.size()));
        close(file);
    });
    call_reply reply = call(PROC_wlan_get_bs_bss_5g_capable_table, vap(1));
    driver.join();
    EXPECT_TRUE(waited);
    expect_table(result_of(reply), 0, 10, table);
}

TEST_F(BandSteering, CapableTableIsClearedInTheFileAndTheDriverIsTold) {
    write_file(TABLE_FILE, table_bytes());
    set_debug(true);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_5g_capable_clear, 3, 0), 0);
    bytes expected = table_bytes();
    expected.replace(2 * SLOT_SIZE, SLOT_SIZE, SLOT_SIZE, '\0');
    EXPECT_TRUE(read_file(TABLE_FILE) == expected);
    EXPECT_EQ(debug_requests(), strings{"ioctl ath2 0x8bf8 211"});
}

TEST_F(BandSteering, CapableTableIsClearedWithoutAFileAndTheDriverIsTold) {
    set_debug(true);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_5g_capable_clear, 1, 7), 0);
    EXPECT_NE(access(TABLE_FILE, F_OK), 0);
    EXPECT_EQ(debug_requests(), strings{"ioctl ath0 0x8bf8 211"});
}

// What the driver answers has no line break behind it: the next line follows it.
TEST_F(BandSteering, CapableTableIsClearedWhenTheDriverRefuses) {
    run_command("fault ioctl:0x8bf8 EPERM");
    set_debug(true);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_5g_capable_clear, 1, 0), 0);
    EXPECT_EQ(lines_with({"error in ioctl "}),
              strings{"error in ioctl [VLK-API] wlan_set_bs_bss_5g_capable_clear_1_svc  WLAN RPC server : return code "
                      ":0"});
}

TEST_F(BandSteering, CapableTableThatCannotBeClearedIsNotMentionedToTheDriver) {
    ASSERT_TRUE(std::filesystem::create_directory(TABLE_FILE));
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_5g_capable_clear, 1, 0), -1);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_5g_capable_clear, 9, 0), -1);
    EXPECT_TRUE(debug_requests().empty());
}

// --- the 2.4 GHz temporary black list ---

constexpr size_t BLACKLIST_SIZE = 2048;

TEST_F(BandSteering, BlacklistThatTheDriverRefusesIsAFailureAndEmpty) {
    run_command("fault ioctl:0x8bf8 EPERM");
    expect_table(result_of(call(PROC_wlan_get_bs_bss_2g_temp_blacklist_table, vap(1))), -1, 0,
                 bytes(BLACKLIST_SIZE, '\0'));
    EXPECT_EQ(debug_requests(), strings{"ioctl ath0 0x8bf8 211"});
}

TEST_F(BandSteering, BlacklistThatTheDriverRefusesIsLogged) {
    run_command("fault ioctl:0x8bf8 EPERM");
    set_debug(true);
    call(PROC_wlan_get_bs_bss_2g_temp_blacklist_table, vap(1));
    strings lines = lines_with({"[VLK-API]"});
    EXPECT_EQ(lines, (strings{"[VLK-API] wlan_get_bs_bss_2g_temp_blacklist_table_1_svc  WLAN RPC server : [index 1]",
                              "[VLK-API] wlan_getBssBandSteer2gTempBlacklistTable error in ioctl ",
                              "[VLK-API] wlan_get_bs_bss_2g_temp_blacklist_table_1_svc  WLAN RPC server : [len 4]",
                              "[VLK-API] wlan_get_bs_bss_2g_temp_blacklist_table_1_svc  WLAN RPC server : "
                              "[return_data_len 2048]",
                              "[VLK-API] wlan_get_bs_bss_2g_temp_blacklist_table_1_svc  WLAN RPC server : "
                              "[total index 0]"}));
}

TEST_F(BandSteering, BlacklistOfAnotherIndexIsAFailureAndTheDriverIsNotAsked) {
    for (int index : {-1, 0, 9, 16})
        expect_table(result_of(call(PROC_wlan_get_bs_bss_2g_temp_blacklist_table, vap(index))), -1, 0,
                     bytes(BLACKLIST_SIZE, '\0'));
    EXPECT_TRUE(debug_requests().empty());
}

TEST_F(BandSteering, BlacklistIsClearedByTheDriversTool) {
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_2g_temp_blacklist_clear, 8, 0), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_2g_temp_blacklist_clear, 9, 0), -1);
    EXPECT_EQ(commands_since(journal_mark, "system "), strings{"wifitool ath7 clr_tmpblacklist2g"});
    EXPECT_EQ(lines_with({"wlan_setBssBandSteer2gTempBlacklistClear cmd: "}),
              strings{"wlan_setBssBandSteer2gTempBlacklistClear cmd: wifitool ath7 clr_tmpblacklist2g"});
}

// The stations of the scenario, whose time has been running for a moment: MAC, reason, RSSI, seconds left.
bytes station(const char *mac, char reason, char rssi) {
    return bytes(mac, 6) + reason + rssi;
}

TEST_F(BandSteering, BlacklistIsTheDriversToTheByte) {
    restart_driver();
    journal_mark = mark_of(JOURNAL_FILE);
    decoded_result result = result_of(call(PROC_wlan_get_bs_bss_2g_temp_blacklist_table, vap(1)));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.values, (std::vector<uint32_t>{2, 0, 0, 0}));
    ASSERT_EQ(result.data.size(), BLACKLIST_SIZE);
    EXPECT_EQ(result.data.substr(0, 8), station("\x3C\x15\xC2\xE0\x44\x03", 1, 38));
    EXPECT_EQ(result.data.substr(32, 8), station("\x98\x01\xA7\x9B\x55\x04", 2, 31));
    EXPECT_EQ(result.data.substr(64), bytes(BLACKLIST_SIZE - 64, '\0'));
    EXPECT_EQ(debug_requests(), (strings{"ioctl ath0 0x8bf8 211", "ioctl ath0 0x8bf8 211"}));
}

TEST_F(BandSteering, BlacklistWithoutStationsIsASuccess) {
    restart_driver();
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_2g_temp_blacklist_clear, 1, 0), 0);
    // What the driver was asked with stays in the reply: no station, and 1.
    bytes asked(BLACKLIST_SIZE, '\0');
    asked[4] = 1;
    expect_table(result_of(call(PROC_wlan_get_bs_bss_2g_temp_blacklist_table, vap(1))), 0, 0, asked);
}

TEST_F(BandSteering, BlacklistOfMoreStationsThanTheReplyHasRoomForIsCut) {
    restart_driver();
    for (const char *lie : {"65", "100", "2147483648", "4294967295"}) {
        run_command(std::string("fault blacklist2g ") + lie);
        decoded_result result = result_of(call(PROC_wlan_get_bs_bss_2g_temp_blacklist_table, vap(1)));
        EXPECT_EQ(result.code, 0) << lie;
        EXPECT_EQ(result.values, (std::vector<uint32_t>{64, 0, 0, 0})) << lie;
        EXPECT_EQ(result.data.size(), BLACKLIST_SIZE) << lie;
    }
}

TEST_F(BandSteering, SteeringThatTheDriverStillHasToTakeUpReadsAsOff) {
    set_store({"BS_BSS_ENABLE=0"});
    restart_driver();
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_enable, 1, 2), 0);
    EXPECT_EQ(get_number(PROC_wlan_get_bs_bss_enable, 1), (number_result{0, 0}));
    EXPECT_EQ(run_command("apup").status, 0);
    EXPECT_EQ(get_number(PROC_wlan_get_bs_bss_enable, 1), (number_result{0, 2}));
}

TEST_F(BandSteering, BlacklistIsClearedWhateverBecomesOfTheTool) {
    run_command("fault system ENOMEM");
    EXPECT_EQ(set_number(PROC_wlan_set_bs_bss_2g_temp_blacklist_clear, 1, 0), 0);
}

}  // namespace
