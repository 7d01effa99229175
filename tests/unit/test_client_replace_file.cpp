// Files that are replaced in one step: what a reader finds before, in between and afterwards.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "client/replace_file.h"

namespace {

class ReplacedFile : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(mkdtemp(folder), nullptr);
        path = std::string(folder) + "/wlan.prom";
    }
    void TearDown() override {
        std::filesystem::remove_all(folder);
    }

    void write(const std::string &text) const {
        std::ofstream(path) << text;
    }

    std::string content() const {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            found.insert(entry.path().filename());
        return found;
    }

    char folder[32] = "/tmp/replaced.XXXXXX";
    std::string path;
};

TEST_F(ReplacedFile, ReaderFindsTheOldOneUntilTheNewOneIsComplete) {
    write("old");
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    fputs("new", file.stream);
    fflush(file.stream);
    EXPECT_EQ(content(), "old");
    ASSERT_TRUE(end_replacing(&file));
    EXPECT_EQ(content(), "new");
    EXPECT_EQ(names(), std::set<std::string>{"wlan.prom"});
}

TEST_F(ReplacedFile, UnfinishedOneIsHiddenAndHasNoEndingThatCollectorsTake) {
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    ASSERT_EQ(names().size(), 1u);
    std::string name = *names().begin();
    EXPECT_TRUE(name.starts_with(".wlan.prom.")) << name;
    EXPECT_FALSE(name.ends_with(".prom")) << name;
    EXPECT_TRUE(end_replacing(&file));
}

TEST_F(ReplacedFile, EverybodyMayReadIt) {
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    ASSERT_TRUE(end_replacing(&file));
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST_F(ReplacedFile, PrivateOneIsForItsOwnerAloneWhateverItWasBefore) {
    write("old");
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), PRIVATE));
    ASSERT_TRUE(end_replacing(&file));
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(ReplacedFile, BehindALinkIsReplacedAndTheLinkStays) {
    write("old");
    std::string link = std::string(folder) + "/link";
    ASSERT_EQ(symlink("wlan.prom", link.c_str()), 0);
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, link.c_str(), READABLE_FOR_ALL));
    fputs("new", file.stream);
    ASSERT_TRUE(end_replacing(&file));
    EXPECT_EQ(content(), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(names(), (std::set<std::string>{"link", "wlan.prom"}));
}

TEST_F(ReplacedFile, LinkThatLeadsNowhereIsAnErrorAndStays) {
    ASSERT_EQ(symlink("gone", path.c_str()), 0);
    replaced_file file;
    EXPECT_FALSE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(ReplacedFile, PipeIsWrittenToAndStaysOne) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string link = std::string(folder) + "/link";
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, link.c_str(), READABLE_FOR_ALL));
    fputs("new", file.stream);
    EXPECT_EQ(names(), (std::set<std::string>{"link", "wlan.prom"})) << "nothing is made beside it";
    ASSERT_TRUE(end_replacing(&file));
    char text[8] = "";
    EXPECT_EQ(read(reader, text, sizeof text), 3);
    EXPECT_STREQ(text, "new");
    close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(path));
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
}

TEST_F(ReplacedFile, OpenFileWithoutANameIsWrittenTo) {
    write("");
    int file_descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(unlink(path.c_str()), 0);
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, ("/proc/self/fd/" + std::to_string(file_descriptor)).c_str(), PRIVATE));
    fputs("new", file.stream);
    ASSERT_TRUE(end_replacing(&file));
    char text[8] = "";
    EXPECT_EQ(pread(file_descriptor, text, sizeof text, 0), 3);
    EXPECT_STREQ(text, "new");
    close(file_descriptor);
}

TEST_F(ReplacedFile, ChildrenDoNotInheritIt) {
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    EXPECT_TRUE(fcntl(fileno(file.stream), F_GETFD) & FD_CLOEXEC);
    EXPECT_TRUE(end_replacing(&file));
}

TEST_F(ReplacedFile, FolderThatIsNotThereIsAnError) {
    replaced_file file;
    std::string nowhere = std::string(folder) + "/none/wlan.prom";
    EXPECT_FALSE(begin_replacing(&file, nowhere.c_str(), READABLE_FOR_ALL));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplacedFile, FolderIsAnErrorAndStaysAsItIs) {
    replaced_file file;
    EXPECT_FALSE(begin_replacing(&file, folder, READABLE_FOR_ALL));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_TRUE(names().empty());
}

TEST_F(ReplacedFile, PathThatIsTooLongIsAnError) {
    replaced_file file;
    std::string longest = std::string(folder) + "/" + std::string(PATH_MAX, 'x');
    EXPECT_FALSE(begin_replacing(&file, longest.c_str(), READABLE_FOR_ALL));
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST_F(ReplacedFile, PlaceThatCannotBeTakenLeavesNothingBehind) {
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    ASSERT_EQ(mkdir(path.c_str(), 0755), 0);
    fputs("new", file.stream);
    EXPECT_FALSE(end_replacing(&file));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(names(), std::set<std::string>{"wlan.prom"});
}

TEST_F(ReplacedFile, TextThatCannotBeWrittenLeavesTheOldOne) {
    write("old");
    replaced_file file;
    ASSERT_TRUE(begin_replacing(&file, path.c_str(), READABLE_FOR_ALL));
    FILE *full = fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    fclose(file.stream);
    file.stream = full;
    fputs("new", file.stream);
    EXPECT_FALSE(end_replacing(&file));
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(content(), "old");
    EXPECT_EQ(names(), std::set<std::string>{"wlan.prom"});
}

TEST_F(ReplacedFile, NameWithoutAFolderIsTakenInTheWorkingDirectory) {
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    replaced_file file;
    bool replaced =
        begin_replacing(&file, "wlan.prom", READABLE_FOR_ALL) && fputs("new", file.stream) >= 0 && end_replacing(&file);
    std::filesystem::current_path(before);
    EXPECT_TRUE(replaced);
    EXPECT_EQ(content(), "new");
}

}  // namespace
