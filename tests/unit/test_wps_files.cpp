// The WPS files: what is found in them, what a rewriting keeps and loses, and what it leaves behind when it fails.
#include "config/wps_files.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>

#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/wps_platform.h"

// What stood in the two files of interface ath0 when the last one was brought to the storage.
static struct {
    int calls;
    std::string file;
    std::string temporary;
} at_sync;

extern "C" int fsync(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return -1;
    }
    at_sync = {at_sync.calls + 1, read_file(wps_file(0)), read_file(wps_file(0) + ".tmp")};
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace {

struct WpsFiles : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_wps_files();
        at_sync = {};
    }

    // VAP 1's file.
    static void file(const std::string &content) {
        write_file(wps_file(0), content);
    }
    static std::string file() {
        return read_file(wps_file(0));
    }

    // Value of a setting of VAP 1 that must be found.
    static std::string value_of(const std::string &key) {
        return text_of(
            [&](int index, char *text, size_t size) { return athwps_getbyname(index, key.c_str(), text, size); }, 1);
    }

    static void expect_nothing(int index, const char *key) {
        text_buffer value;
        EXPECT_EQ(athwps_getbyname(index, key, value.text, sizeof(value.text)), -1);
        EXPECT_TRUE(value.is_untouched()) << value.text;
    }

    // VAP 1's file after a setting in it was changed.
    static std::string after_set(const std::string &content, const std::string &key, const std::string &value) {
        file(content);
        EXPECT_EQ(athwps_setbyname(1, key.c_str(), value.c_str()), 0);
        EXPECT_FALSE(std::filesystem::exists(wps_file(0) + ".tmp"));
        return file();
    }

    // A change of VAP 1's file that must fail and leave everything as it was.
    static void expect_refused(const std::string &value = "new") {
        std::string before = file();
        calls commands = commands_of([&] { EXPECT_EQ(athwps_setbyname(1, "uuid", value.c_str()), -1); });
        EXPECT_EQ(commands, (calls{"ls /nvram/etc/wpa2 | grep ath0"}));
        EXPECT_EQ(file(), before);
    }
};

// --- reading ---

TEST_F(WpsFiles, AValueIsWhatStandsBehindTheEqualsSign) {
    file("device_name=AP\nuuid=12-34\nap_pin=555\n");
    EXPECT_EQ(value_of("uuid"), "12-34");
}

TEST_F(WpsFiles, AValueMayContainEqualsSigns) {
    file("uuid=a=b=c\n");
    EXPECT_EQ(value_of("uuid"), "a=b=c");
}

TEST_F(WpsFiles, TheFileIsReadThroughTheShell) {
    file("uuid=1\n");
    EXPECT_EQ(commands_of([] { value_of("uuid"); }), (calls{"cat /nvram/etc/wpa2/WSC_ath0.conf | grep uuid"}));
}

TEST_F(WpsFiles, AVapReadsTheFileOfItsInterface) {
    const struct {
        int index;
        const char *interface;
    } rows[] = {{1, "ath0"},   {2, "ath1"},  {9, "ath8"},   {16, "ath15"},
                {17, "ath16"}, {0, "ath-1"}, {-1, "ath-2"}, {INT_MIN, "ath2147483647"}};
    for (const auto &row : rows) {
        std::string path = std::string("/nvram/etc/wpa2/WSC_") + row.interface + ".conf";
        write_file(path, std::string("uuid=of ") + row.interface + "\n");
        calls commands = commands_of([&] {
            text_buffer value;
            EXPECT_EQ(athwps_getbyname(row.index, "uuid", value.text, sizeof(value.text)), 0);
            EXPECT_EQ(value.text, std::string("of ") + row.interface);
        });
        EXPECT_EQ(commands, (calls{"cat " + path + " | grep uuid"}));
    }
}

// The search is unanchored on purpose, see the sources.
TEST_F(WpsFiles, AKeyIsFoundAsPartOfAnother) {
    file("wpa_ssid=x\n");
    EXPECT_EQ(value_of("ssid"), "x");
}

TEST_F(WpsFiles, AKeyIsFoundInAValueToo) {
    file("device_name=my uuid\n");
    EXPECT_EQ(value_of("uuid"), "my uuid");
}

TEST_F(WpsFiles, AKeyIsAPatternOfTheSearch) {
    file("ap_pin=1\n");
    EXPECT_EQ(value_of("ap.pin"), "1");
}

TEST_F(WpsFiles, FurtherLinesWithTheKeyFollowWhole) {
    file("uuid=1\nother=2\nmy_uuid=3\nuuid=4\n");
    EXPECT_EQ(value_of("uuid"), "1\nmy_uuid=3\nuuid=4");
}

TEST_F(WpsFiles, TheFirstEqualsSignMayStandInALaterLine) {
    file("# the uuid:\nuuid=5\n");
    EXPECT_EQ(value_of("uuid"), "5");
}

TEST_F(WpsFiles, AnEmptyValueIsFound) {
    file("ap_pin=\n");
    EXPECT_EQ(value_of("ap_pin"), "");
}

TEST_F(WpsFiles, OnlyTheLineBreakIsTakenFromTheEnd) {
    file("uuid= 1 \r\n");
    EXPECT_EQ(value_of("uuid"), " 1 \r");
}

TEST_F(WpsFiles, AnUnterminatedLastLineIsRead) {
    file("uuid=1");
    EXPECT_EQ(value_of("uuid"), "1");
}

TEST_F(WpsFiles, AValueIsCutToTheBuffer) {
    file("uuid=123456\n");
    text_buffer value;
    EXPECT_EQ(athwps_getbyname(1, "uuid", value.text, 4), 0);
    EXPECT_STREQ(value.text, "123");
    EXPECT_EQ(value.text[4], '?');
}

TEST_F(WpsFiles, AValueFitsTheSmallestBuffer) {
    file("uuid=123456\n");
    text_buffer value;
    EXPECT_EQ(athwps_getbyname(1, "uuid", value.text, 1), 0);
    EXPECT_TRUE(value.begins_with_zeros_only(1));
}

TEST_F(WpsFiles, AVeryLongValueIsCutToTheBuffer) {
    file("uuid=" + std::string(100000, 'x') + "\n");
    EXPECT_EQ(value_of("uuid"), std::string(TEXT_SIZE - 1, 'x'));
}

TEST_F(WpsFiles, NothingIsFoundInAFileThatIsNotThere) {
    expect_nothing(1, "uuid");
    expect_nothing(INT_MIN, "uuid");
}

TEST_F(WpsFiles, NothingIsFoundWithoutALineOfTheKey) {
    file("device_name=AP\n");
    expect_nothing(1, "uuid");
}

TEST_F(WpsFiles, NothingIsFoundInALineWithoutEqualsSign) {
    file("uuid 1\n");
    expect_nothing(1, "uuid");
}

TEST_F(WpsFiles, NothingIsFoundWhenTheShellCannotBeStarted) {
    file("uuid=1\n");
    begin_descriptor_shortage();
    expect_nothing(1, "uuid");
    end_descriptor_shortage();
}

// --- rewriting ---

TEST_F(WpsFiles, ALineOfTheKeyIsReplacedInItsPlace) {
    EXPECT_EQ(after_set("a=1\nuuid=2\nb=3\n", "uuid", "new"), "a=1\nuuid=new\nb=3\n");
}

TEST_F(WpsFiles, EveryLineOfTheKeyIsReplaced) {
    EXPECT_EQ(after_set("uuid=1\na=2\nuuid=3\n", "uuid", "new"), "uuid=new\na=2\nuuid=new\n");
}

TEST_F(WpsFiles, AnAbsentKeyIsAppended) {
    EXPECT_EQ(after_set("a=1\n", "uuid", "new"), "a=1\nuuid=new\n");
    EXPECT_EQ(after_set("", "uuid", "new"), "uuid=new\n");
}

// The key may be the end of another, on purpose; see the sources.
TEST_F(WpsFiles, ALineWhoseKeyEndsInTheKeyBecomesOneOfTheKey) {
    EXPECT_EQ(after_set("wpa_ssid=x\n", "ssid", "new"), "ssid=new\n");
}

TEST_F(WpsFiles, AKeyInAValueCountsAsOneToo) {
    EXPECT_EQ(after_set("extra=ssid=x\n", "ssid", "new"), "ssid=new\n");
}

TEST_F(WpsFiles, OnlyTheFirstPlaceOfTheKeyInALineCounts) {
    EXPECT_EQ(after_set("ssid_ssid=x\n", "ssid", "new"), "ssid_ssid=x\nssid=new\n");
}

TEST_F(WpsFiles, TheEqualsSignMustStandRightBehindTheKey) {
    EXPECT_EQ(after_set("ssid2=x\nssid =y\nssid\n", "ssid", "new"), "ssid2=x\nssid =y\nssid\nssid=new\n");
}

TEST_F(WpsFiles, OtherLinesStayAsTheyAre) {
    std::string others = "\n# 100% \"quoted\" %s %n\r\n=\n \t \n";
    EXPECT_EQ(after_set(others + "uuid=1\n", "uuid", "new"), others + "uuid=new\n");
}

TEST_F(WpsFiles, AnUnterminatedLastLineIsLost) {
    EXPECT_EQ(after_set("uuid=1\na=2", "uuid", "new"), "uuid=new\n");
    EXPECT_EQ(after_set("a=2\nuuid=1", "uuid", "new"), "a=2\nuuid=new\n") << "lost, and then appended";
}

TEST_F(WpsFiles, ALineOfTwoHundredAndFiftyFourCharactersIsKept) {
    std::string line(254, 'x');
    EXPECT_EQ(after_set(line + "\nuuid=1\n", "uuid", "new"), line + "\nuuid=new\n");
}

TEST_F(WpsFiles, ALineOfTwoHundredAndFiftyFiveCharactersIsLostWithAllThatFollows) {
    for (size_t length : {255, 256, 510, 5000}) {
        EXPECT_EQ(after_set("a=1\n" + std::string(length, 'x') + "\nb=2\nuuid=1\n", "uuid", "new"), "a=1\nuuid=new\n")
            << length;
    }
}

TEST_F(WpsFiles, ALineWithANulIsLostWithAllThatFollows) {
    EXPECT_EQ(after_set(std::string("a=1\nb\0c\nd=2\n", 12), "uuid", "new"), "a=1\nuuid=new\n");
    EXPECT_EQ(after_set(std::string("a=1\n\0\nd=2\n", 10), "uuid", "new"), "a=1\nuuid=new\n");
}

TEST_F(WpsFiles, AnyValueIsWrittenAsItStands) {
    for (const std::string &value : {std::string(), std::string("\"'`$(id)\\ ;&|"), std::string("%s%n%d"),
                                     std::string("two\nlines=1"), std::string(100000, 'x')}) {
        EXPECT_EQ(after_set("uuid=1\nb=2\n", "uuid", value), "uuid=" + value + "\nb=2\n");
    }
}

TEST_F(WpsFiles, AnyKeyIsTaken) {
    for (const std::string &key :
         {std::string("\"quoted\""), std::string("%s%n"), std::string("two\nlines"), std::string(100000, 'k')}) {
        EXPECT_EQ(after_set("a=1\n", key, "new"), "a=1\n" + key + "=new\n");
    }
}

TEST_F(WpsFiles, TheFileIsLookedForAndReplacedThroughTheShell) {
    file("uuid=1\n");
    EXPECT_EQ(commands_of([] { athwps_setbyname(1, "uuid", "2"); }),
              (calls{"ls /nvram/etc/wpa2 | grep ath0",
                     "rm /nvram/etc/wpa2/WSC_ath0.conf;mv /nvram/etc/wpa2/WSC_ath0.conf.tmp "
                     "/nvram/etc/wpa2/WSC_ath0.conf"}));
}

TEST_F(WpsFiles, AVapChangesTheFileOfItsInterface) {
    const struct {
        int index;
        const char *interface;
    } rows[] = {{1, "ath0"},   {2, "ath1"},  {9, "ath8"},   {16, "ath15"},
                {17, "ath16"}, {0, "ath-1"}, {-1, "ath-2"}, {INT_MIN, "ath2147483647"}};
    for (const auto &row : rows) {
        std::string path = std::string("/nvram/etc/wpa2/WSC_") + row.interface + ".conf";
        write_file(path, "uuid=1\n");
        EXPECT_EQ(athwps_setbyname(row.index, "uuid", row.interface), 0);
        EXPECT_EQ(read_file(path), std::string("uuid=") + row.interface + "\n");
    }
}

TEST_F(WpsFiles, TheNewContentIsInTheStorageBeforeItReplacesTheOld) {
    after_set("uuid=1\nb=2\n", "uuid", "new");
    EXPECT_EQ(at_sync.calls, 1);
    EXPECT_EQ(at_sync.temporary, "uuid=new\nb=2\n");
    EXPECT_EQ(at_sync.file, "uuid=1\nb=2\n");
}

TEST_F(WpsFiles, ATemporaryFileThatWasLeftBehindIsWrittenOver) {
    write_file(wps_file(0) + ".tmp", std::string(1000, 'x') + "\n");
    EXPECT_EQ(after_set("uuid=1\n", "uuid", "new"), "uuid=new\n");
}

TEST_F(WpsFiles, WhatBecomesOfTheRenamingIsNotExamined) {
    install_tool("mv", "", 1);
    file("uuid=1\n");
    EXPECT_EQ(athwps_setbyname(1, "uuid", "new"), 0);
    EXPECT_EQ(read_file(wps_file(0) + ".tmp"), "uuid=new\n");
}

TEST_F(WpsFiles, AFileIsNeverCreated) {
    EXPECT_EQ(athwps_setbyname(1, "uuid", "new"), -1);
    EXPECT_TRUE(std::filesystem::is_empty(WPS_DIRECTORY));
}

TEST_F(WpsFiles, ADirectoryIsNeverCreated) {
    std::filesystem::remove(WPS_DIRECTORY);
    EXPECT_EQ(athwps_setbyname(1, "uuid", "new"), -1);
    EXPECT_FALSE(std::filesystem::exists(WPS_DIRECTORY));
}

// The first look takes the file of ath10 for one of ath1; the second one, at opening, does not.
TEST_F(WpsFiles, TheFileOfAthTenIsNotTakenForThatOfAthOne) {
    write_file(wps_file(10), "uuid=1\n");
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(athwps_setbyname(2, "uuid", "new"), -1); }),
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:ls /nvram/etc/wpa2 | grep ath1\n"
              "[VLK-API] athwps_setbyname athwps_setbyname: open /nvram/etc/wpa2/WSC_ath1.conf failed\n");
    EXPECT_EQ(read_file(wps_file(10)), "uuid=1\n");
    EXPECT_FALSE(std::filesystem::exists(wps_file(1)));
    EXPECT_FALSE(std::filesystem::exists(wps_file(1) + ".tmp"));
}

TEST_F(WpsFiles, WithoutATemporaryFileNothingIsChanged) {
    file("uuid=1\n");
    std::filesystem::create_directory(wps_file(0) + ".tmp");
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(athwps_setbyname(1, "uuid", "new"), -1); }),
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:ls /nvram/etc/wpa2 | grep ath0\n"
              "[VLK-API] athwps_setbyname athwps_setbyname: open /nvram/etc/wpa2/WSC_ath0.conf.tmp failed\n");
    EXPECT_EQ(file(), "uuid=1\n");
}

TEST_F(WpsFiles, NothingIsChangedWhenTheShellCannotBeStarted) {
    file("uuid=1\n");
    begin_descriptor_shortage();
    int status = athwps_setbyname(1, "uuid", "new");
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(file(), "uuid=1\n");
}

TEST_F(WpsFiles, NothingIsChangedWhenTheListingIsEmpty) {
    file("uuid=1\n");
    install_tool("ls");
    expect_refused();
}

TEST_F(WpsFiles, OnFullStorageTheOldFileStays) {
    ASSERT_EQ(mount("small", WPS_DIRECTORY, "tmpfs", 0, "size=8k"), 0);
    file("uuid=1\n");
    expect_refused(std::string(20000, 'x'));
    EXPECT_FALSE(std::filesystem::exists(wps_file(0) + ".tmp"));
    EXPECT_EQ(after_set("uuid=1\n", "uuid", "new"), "uuid=new\n") << "there is room for a short one";
    umount2(WPS_DIRECTORY, MNT_DETACH);
}

TEST_F(WpsFiles, AFileThatCannotBeReadToItsEndStays) {
    std::filesystem::create_directory(wps_file(0));
    expect_refused();
    EXPECT_TRUE(std::filesystem::is_directory(wps_file(0)));
    EXPECT_FALSE(std::filesystem::exists(wps_file(0) + ".tmp"));
}

int lowest_free_descriptor() {
    int free_descriptor = dup(STDIN_FILENO);
    close(free_descriptor);
    return free_descriptor;
}

TEST_F(WpsFiles, NoDescriptorIsLeftOpen) {
    int before = lowest_free_descriptor();
    athwps_setbyname(1, "uuid", "no file");
    write_file(wps_file(10), "");
    athwps_setbyname(2, "uuid", "another file");
    after_set("uuid=1\n", "uuid", "new");
    std::filesystem::create_directory(wps_file(0) + ".tmp");
    athwps_setbyname(1, "uuid", "no temporary file");
    EXPECT_EQ(lowest_free_descriptor(), before);
}

// --- what children inherit ---

bool is_close_on_exec(const std::string &descriptor) {
    std::string info = read_file("/proc/self/fdinfo/" + descriptor);
    size_t at = info.find("flags:");
    return at != std::string::npos && (strtoul(info.c_str() + at + sizeof("flags:"), nullptr, 8) & O_CLOEXEC);
}

// How many descriptors of this process lead to the path, and how many of them no child inherits.
void count_descriptors(const std::string &path, int *open, int *kept) {
    *open = *kept = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry.path(), error) == path) {
            ++*open;
            *kept += is_close_on_exec(entry.path().filename()) ? 1 : 0;
        }
    }
}

// The temporary file is a pipe here, on which the writing waits: time to look at the descriptors.
TEST_F(WpsFiles, NoChildInheritsTheFiles) {
    file("uuid=1\n");
    std::string temporary = wps_file(0) + ".tmp";
    ASSERT_EQ(mkfifo(temporary.c_str(), 0600), 0);
    int reader = open(temporary.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    std::string value(1 << 20, 'x');
    std::thread writer([&] { athwps_setbyname(1, "uuid", value.c_str()); });
    int open_temporary = 0, kept_temporary = 0, open_file = 0, kept_file = 0;
    for (int i = 0; i < 5000 && open_temporary < 2; i++) {
        usleep(1000);
        count_descriptors(temporary, &open_temporary, &kept_temporary);
        count_descriptors(wps_file(0), &open_file, &kept_file);
    }
    fcntl(reader, F_SETFL, 0);
    char block[4096];
    while (read(reader, block, sizeof(block)) > 0) {
    }
    close(reader);
    writer.join();
    EXPECT_EQ(open_temporary, 2) << "ours and the one under test";
    EXPECT_EQ(kept_temporary, 2);
    EXPECT_EQ(open_file, 1);
    EXPECT_EQ(kept_file, 1);
}

}  // namespace
