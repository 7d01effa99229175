// The board: its input and output lines, and the bus that the driver finds its radios on.
#include <fcntl.h>
#include <sys/stat.h>

#include <string>

#include "tests/simulator/platform.h"

namespace {

class Board : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        unlink(GATEWAY_GPIO);
    }
};

std::string line(const std::string &number) {
    outcome shown = run({"wps_gpio", "read", number});
    EXPECT_EQ(shown.status, 0) << shown.errors;
    return shown.output;
}

void set_line(const std::string &number, const std::string &value) {
    outcome set = run({"wps_gpio", "write", number, value});
    EXPECT_EQ(set.status, 0) << set.errors;
    EXPECT_EQ(set.output, "");
}

// Sets a file's time to so many seconds before or after a moment that two files can share.
void set_written(const char *path, int seconds) {
    timespec times[2] = {{1'700'000'000 + seconds, 0}, {1'700'000'000 + seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path, times, 0), 0);
}

// As the shell commands of a hard reset write it, some seconds after another.
void power_off(const char *slot, int seconds) {
    write_file(slot, "0\n");
    set_written(slot, seconds);
}

void rescan(int seconds, const char *text = "1\n") {
    write_file(PCI_RESCAN, text);
    set_written(PCI_RESCAN, seconds);
}

bool is_there(const std::string &radio) {
    return run({"iwpriv", radio, "get_txchainmask"}).status == 0;
}

bool is_up(const std::string &interface) {
    return run({"iwconfig", interface}).status == 0;
}

// Lines

TEST_F(Board, ALineThatNobodyHasSetHasItsStartValue) {
    EXPECT_EQ(line("10"), "1\n");
    EXPECT_EQ(line("100"), "0\n");
    EXPECT_EQ(line("0"), "0\n");
    EXPECT_EQ(line("255"), "0\n");
}

TEST_F(Board, ALineKeepsWhatIsSet) {
    set_line("100", "1");
    set_line("10", "0");
    EXPECT_EQ(line("100"), "1\n");
    EXPECT_EQ(line("10"), "0\n");
    set_line("100", "0");
    EXPECT_EQ(read_file(GATEWAY_GPIO), "100=0\n10=0\n");
}

TEST_F(Board, LinesSetAtTheSameTimeAreAllKept) {
    run_shell("for i in 1 2 3 4 5 6 7 8 9; do wps_gpio write $i 1 & done; wait");
    for (int i = 1; i <= 9; i++)
        EXPECT_EQ(line(std::to_string(i)), "1\n") << i;
}

TEST_F(Board, AFileOfLinesThatSomebodyEditedIsReadAsWellAsItGoes) {
    write_file(GATEWAY_GPIO, "nonsense\n10=\n100=7");
    EXPECT_EQ(line("10"), "0\n");
    EXPECT_EQ(line("100"), "1\n");
}

TEST_F(Board, WpsGpioRefusesBadUsageWithStatus1AndChangesNothing) {
    set_line("100", "0");
    std::string before = read_file(GATEWAY_GPIO);
    for (const lines &words :
         {lines{}, lines{"read"}, lines{"read", "1", "2"}, lines{"read", "256"}, lines{"read", "-1"}, lines{"read", ""},
          lines{"read", "x"}, lines{"read", "1x"}, lines{"read", "4294967306"}, lines{"write", "10"},
          lines{"write", "10", "2"}, lines{"write", "10", ""}, lines{"write", "10", "on"}, lines{"write", "256", "1"},
          lines{"write", "10", "1", "1"}, lines{"toggle", "10"}, lines{"wifi_conf", "1"}}) {
        lines called = {"wps_gpio"};
        called.insert(called.end(), words.begin(), words.end());
        outcome refused = run(called);
        EXPECT_EQ(refused.status, 1) << called.back();
        EXPECT_EQ(refused.output, "") << called.back();
        EXPECT_NE(refused.errors, "") << called.back();
    }
    EXPECT_EQ(read_file(GATEWAY_GPIO), before);
}

TEST_F(Board, WpsGpioObeysFaults) {
    run({"fault", "wps_gpio", "silent"});
    EXPECT_EQ(run({"wps_gpio", "read", "10"}).output, "");
    run({"fault", "wps_gpio", "fail"});
    EXPECT_EQ(run({"wps_gpio", "write", "10", "0"}).status, 1);
    run({"fault", "wps_gpio", "off"});
    EXPECT_EQ(line("10"), "1\n");
}

// Radios on the bus

TEST_F(Board, ARadioWithoutPowerIsLeftOutAndItsVapsStayDown) {
    run({"fast_down.sh"});
    power_off(PCI_POWER_0, 0);
    outcome started = run({"apup"});
    EXPECT_EQ(started.status, 0);
    EXPECT_EQ(started.errors, "insmod: wifi0 is not on the bus\napup: wifi0 is not on the bus\n");
    EXPECT_FALSE(is_there("wifi0"));
    EXPECT_FALSE(is_up("ath0"));
    EXPECT_TRUE(is_there("wifi1"));
    EXPECT_TRUE(is_up("ath8"));
    EXPECT_EQ(read_file(PCI_POWER_0), "0\n");
}

TEST_F(Board, TheOtherSlotIsTheOtherRadios) {
    power_off(PCI_POWER_1, 0);
    EXPECT_EQ(run({"apup"}).errors, "apup: wifi1 is not on the bus\n");
    EXPECT_TRUE(is_up("ath0"));
    EXPECT_FALSE(is_up("ath8"));
}

TEST_F(Board, LoadingAloneLeavesARadioWithoutPowerOutToo) {
    run({"fast_down.sh"});
    power_off(PCI_POWER_1, 0);
    outcome loaded = run({"apup_simple"});
    EXPECT_EQ(loaded.status, 0);
    EXPECT_EQ(loaded.errors, "insmod: wifi1 is not on the bus\n");
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "loaded\nabsent wifi1\n");
    EXPECT_TRUE(is_there("wifi0"));
    EXPECT_FALSE(is_there("wifi1"));
    EXPECT_EQ(probe("channels wifi1 5104").output, "-1 ENODEV\n");
}

TEST_F(Board, ADriverThatIsLoadedNoticesAtTheNextApup) {
    power_off(PCI_POWER_0, 0);
    EXPECT_TRUE(is_up("ath0"));
    EXPECT_EQ(run({"apup_simple"}).status, 0);
    EXPECT_TRUE(is_up("ath0") && is_there("wifi0"));
    run({"apup"});
    EXPECT_FALSE(is_up("ath0"));
}

TEST_F(Board, ARadioThatTheScenarioDoesNotHaveIsNotMissed) {
    write_file(GATEWAY_SCENARIO, SMALL_SCENARIO);
    power_off(PCI_POWER_1, 0);
    EXPECT_EQ(run({"apup"}).errors, "");
}

TEST_F(Board, ARescanBringsARadioBackAndItsSlotSaysSo) {
    power_off(PCI_POWER_0, 0);
    run({"apup"});
    rescan(1);
    EXPECT_EQ(run({"apup"}).errors, "");
    EXPECT_TRUE(is_up("ath0"));
    EXPECT_TRUE(is_there("wifi0"));
    EXPECT_EQ(read_file(PCI_POWER_0), "1\n");
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE).find("absent"), std::string::npos);
}

TEST_F(Board, ARescanOfTheSameMomentCounts) {
    power_off(PCI_POWER_0, 0);
    rescan(0);
    EXPECT_EQ(run({"apup"}).errors, "");
    EXPECT_TRUE(is_up("ath0"));
}

TEST_F(Board, ARescanBeforeThePowerWentOffDoesNotHelp) {
    rescan(0);
    power_off(PCI_POWER_0, 1);
    EXPECT_EQ(run({"apup"}).errors, "apup: wifi0 is not on the bus\n");
    EXPECT_EQ(read_file(PCI_POWER_0), "0\n");
}

TEST_F(Board, ARescanFileThatDoesNotSay1IsNoRescan) {
    power_off(PCI_POWER_0, 0);
    for (const char *text : {"", "0\n", "2\n", "yes\n"}) {
        rescan(1, text);
        EXPECT_EQ(run({"apup"}).errors, "apup: wifi0 is not on the bus\n") << text;
    }
}

TEST_F(Board, OnlyZeroMeansThatThereIsNoPower) {
    for (const char *text : {"1\n", "", "on\n", "2"}) {
        write_file(PCI_POWER_0, text);
        EXPECT_EQ(run({"apup"}).errors, "") << text;
        EXPECT_EQ(read_file(PCI_POWER_0), text);
    }
    write_file(PCI_POWER_0, "0");
    EXPECT_EQ(run({"apup"}).errors, "apup: wifi0 is not on the bus\n");
    unlink(PCI_POWER_0);
    EXPECT_EQ(run({"apup"}).errors, "");
}

TEST_F(Board, Line10AtZeroHoldsBothRadiosInReset) {
    set_line("10", "0");
    EXPECT_EQ(run({"apup"}).errors, "apup: wifi0 is not on the bus\napup: wifi1 is not on the bus\n");
    EXPECT_FALSE(is_up("ath0") || is_up("ath8"));
    set_line("10", "1");
    EXPECT_EQ(run({"apup"}).errors, "");
    EXPECT_TRUE(is_up("ath0") && is_up("ath8"));
}

TEST_F(Board, AHardResetEndsInTwoHealthyRadios) {
    run({"fast_down.sh"});
    mark = journal_mark();
    outcome reset = run_shell(
        "/usr/sbin/wps_gpio read 100; /usr/sbin/wps_gpio read 10; /usr/sbin/wps_gpio write 100 1; "
        "/usr/sbin/wps_gpio write 10 0; /usr/sbin/wps_gpio write 10 1; /usr/sbin/wps_gpio write 100 0; "
        "echo 0 > /sys/bus/pci/slots/0000\\:02\\:00.0/power; echo 0 > /sys/bus/pci/slots/0000\\:03\\:00.0/power; "
        "echo 1 > /sys/bus/pci/rescan");
    EXPECT_EQ(reset.status, 0);
    EXPECT_EQ(reset.output, "0\n1\n");
    EXPECT_EQ(journal().size(), 6u);
    EXPECT_EQ(run({"apup"}).errors, "");
    EXPECT_TRUE(is_up("ath0") && is_up("ath8"));
    EXPECT_EQ(read_file(PCI_POWER_0) + read_file(PCI_POWER_1), "1\n1\n");
}

}  // namespace
