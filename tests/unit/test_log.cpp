// Log lines: when they are written, and where they go.
#include "config/log.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/platform.h"

namespace {

struct Log : testing::Test {
    void SetUp() override {
        reset_platform();
    }
};

// From here on this process is refused what the permissions of a file refuse, superuser or not.
bool give_up_file_privileges() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[2] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

TEST_F(Log, DebugIsOffWithoutTheSwitchFile) {
    EXPECT_FALSE(wlan_debug_enabled());
}

TEST_F(Log, DebugIsOnWhileTheSwitchFileExists) {
    set_debug(true);
    EXPECT_TRUE(wlan_debug_enabled());
}

TEST_F(Log, DebugIsOffWhileTheSwitchFileCannotBeRead) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            set_debug(true);
            bool prepared = chmod(DEBUG_SWITCH_FILE, 0) == 0 && give_up_file_privileges();
            _exit(prepared && !wlan_debug_enabled() ? 0 : 1);  // a leak check would need the privileges
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Log, TheSwitchIsLookedUpBeforeEachLine) {
    printed_text printed = capture([] {
        log_debug("first\n");
        set_debug(true);
        log_debug("second\n");
        set_debug(false);
        log_debug("third\n");
    });
    EXPECT_EQ(printed.out, "second\n");
}

TEST_F(Log, ADebugLineGoesToStandardOutputAsItStands) {
    set_debug(true);
    printed_text printed = capture([] { log_debug("[VLK-API] %s %s: index %d\n", "a", "b", 3); });
    EXPECT_EQ(printed.out, "[VLK-API] a b: index 3\n");
    EXPECT_EQ(printed.err, "");
}

TEST_F(Log, AnErrorLineGoesToStandardErrorWithoutTheSwitchFile) {
    printed_text printed = capture([] { log_error("[VLK-API] Error %s\n", "here"); });
    EXPECT_EQ(printed.err, "[VLK-API] Error here\n");
    EXPECT_EQ(printed.out, "");
}

TEST_F(Log, SomeLinesAreWrittenWhateverTheSwitch) {
    printed_text printed = capture([] {
        log_always("first %d\n", 1);
        set_debug(true);
        log_always("second\n");
    });
    EXPECT_EQ(printed.out, "first 1\nsecond\n");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
