// The store as its tool sees it: the file's shape, and what setting, removing and settling do to the lines.
#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "simulator/store.h"
#include "tests/simulator/support.h"

namespace {

constexpr const char FILE_NAME[] = "/tmp/store_file_test";
const std::string END(4, '\0');

class StoreFile : public testing::Test {
protected:
    void TearDown() override {
        store_free(&store);
        unlink(FILE_NAME);
    }

    // Loads a store of these lines.
    void load(const std::string &lines) {
        load_bytes("CFG\n" + lines + END);
    }

    void load_bytes(const std::string &content) {
        write_file(FILE_NAME, content);
        ASSERT_EQ(store_load(FILE_NAME, &store), 0);
    }

    std::string lines() {
        return std::string(store.text != nullptr ? store.text : "", store.length);
    }

    store_text store = {};
};

TEST_F(StoreFile, IsSavedAsHeaderLinesAndFourZeroBytes) {
    ASSERT_EQ(store_set(&store, "AP_SSID", "Home"), 0);
    ASSERT_EQ(store_save(FILE_NAME, &store), 0);
    EXPECT_EQ(read_file(FILE_NAME), "CFG\nAP_SSID=Home\n" + END);
}

TEST_F(StoreFile, IsReplacedByARenameSoThatAnOpenReaderKeepsTheOldOne) {
    load("A=1\n");
    struct stat before = {}, after = {};
    ASSERT_EQ(stat(FILE_NAME, &before), 0);
    ASSERT_EQ(store_save(FILE_NAME, &store), 0);
    ASSERT_EQ(stat(FILE_NAME, &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino);
}

TEST_F(StoreFile, ThatIsMissingIsEmpty) {
    EXPECT_EQ(store_load("/tmp/no_such_store", &store), 0);
    EXPECT_EQ(lines(), "");
}

TEST_F(StoreFile, ShorterThanItsHeaderIsEmpty) {
    load_bytes("CF");
    EXPECT_EQ(lines(), "");
}

TEST_F(StoreFile, ThatIsADirectoryCannotBeLoaded) {
    EXPECT_EQ(store_load("/tmp", &store), -1);
}

TEST_F(StoreFile, EndsAtTheFirstZeroByteWhateverFollows) {
    load_bytes("CFG\nA=1\n" + END + "B=2\n" + END);
    EXPECT_EQ(lines(), "A=1\n");
}

TEST_F(StoreFile, GivesALastLineWithoutLineEndItsLineEnd) {
    load_bytes("CFG\nA=1\nB=2");
    EXPECT_EQ(lines(), "A=1\nB=2\n");
}

TEST_F(StoreFile, AnyFourBytesAreItsHeader) {
    load_bytes(std::string("\0\x01\x02\x03", 4) + "A=1\n" + END);
    EXPECT_EQ(lines(), "A=1\n");
}

TEST_F(StoreFile, SettingAnExistingKeyReplacesItsLineInPlace) {
    load("A=1\nB=2\nC=3\n");
    ASSERT_EQ(store_set(&store, "B", "a longer value"), 0);
    EXPECT_EQ(lines(), "A=1\nB=a longer value\nC=3\n");
    ASSERT_EQ(store_set(&store, "A", ""), 0);
    EXPECT_EQ(lines(), "A=\nB=a longer value\nC=3\n");
}

TEST_F(StoreFile, SettingANewKeyAppendsALine) {
    load("A=1\n");
    ASSERT_EQ(store_set(&store, "B", "2"), 0);
    EXPECT_EQ(lines(), "A=1\nB=2\n");
}

TEST_F(StoreFile, SettingAKeyThatStandsSeveralTimesLeavesOneLine) {
    load("A=1\nB=2\nA=3\nC=4\nA=5\n");
    ASSERT_EQ(store_set(&store, "A", "new"), 0);
    EXPECT_EQ(lines(), "A=new\nB=2\nC=4\n");
}

TEST_F(StoreFile, AKeyDoesNotMatchALongerOneNorAValue) {
    load("AP_SSID_2=b\nX=AP_SSID=no\nAP_SSID=a\n");
    size_t length = 0;
    const char *value = store_find(&store, "AP_SSID", &length);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(std::string(value, length), "a");
    EXPECT_EQ(store_find(&store, "SSID", &length), nullptr);
}

TEST_F(StoreFile, OfSeveralLinesTheFirstIsFoundAndItsValueMayHoldEqualsSigns) {
    load("K=a=b\nK=c\n");
    size_t length = 0;
    const char *value = store_find(&store, "K", &length);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(std::string(value, length), "a=b");
}

TEST_F(StoreFile, RemovingAKeyTakesAllItsLinesAndSaysWhetherThereWereAny) {
    load("A=1\nB=2\nA=3\n");
    EXPECT_TRUE(store_remove(&store, "A"));
    EXPECT_EQ(lines(), "B=2\n");
    EXPECT_FALSE(store_remove(&store, "A"));
}

TEST_F(StoreFile, SettlingLetsTheLastValueWinAtThePlaceOfTheFirst) {
    load("A=1\nB=2\nA=33\nC=4\nB=5\nA=a much longer value\n");
    store_settle(&store);
    EXPECT_EQ(lines(), "A=a much longer value\nB=5\nC=4\n");
}

TEST_F(StoreFile, SettlingDropsLinesThatAreNoSetting) {
    load("\nnonsense\nA=1\n=2\nB=3\n");
    store_settle(&store);
    EXPECT_EQ(lines(), "A=1\nB=3\n");
}

TEST_F(StoreFile, SettlingASettledStoreChangesNothing) {
    load("A=1\nB=2\n");
    store_settle(&store);
    EXPECT_EQ(lines(), "A=1\nB=2\n");
}

TEST_F(StoreFile, AValueIsCutToTheCallersBuffer) {
    load("A=12345\n");
    char value[4] = "x";
    EXPECT_TRUE(store_value(FILE_NAME, "A", value, sizeof value));
    EXPECT_STREQ(value, "123");
    EXPECT_FALSE(store_value(FILE_NAME, "B", value, sizeof value));
    EXPECT_STREQ(value, "");
}

TEST_F(StoreFile, OfPlainLinesHasNeitherHeaderNorEnd) {
    write_file(FILE_NAME, "A=1\nB=2");
    ASSERT_EQ(lines_load(FILE_NAME, &store), 0);
    EXPECT_EQ(lines(), "A=1\nB=2\n");
    ASSERT_EQ(store_set(&store, "C", "3"), 0);
    ASSERT_EQ(lines_save(FILE_NAME, &store), 0);
    EXPECT_EQ(read_file(FILE_NAME), "A=1\nB=2\nC=3\n");
}

TEST_F(StoreFile, OfPlainLinesThatIsMissingOrADirectoryCannotBeLoaded) {
    EXPECT_EQ(lines_load("/tmp/no_such_lines", &store), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(lines_load("/tmp", &store), -1);
    EXPECT_EQ(lines(), "");
}

TEST(StoreKey, IsBareForIndex1AndBelowAndCarriesTheIndexFrom2On) {
    char key[16];
    for (int index : {-3, 0, 1}) {
        store_key("AP_SSID", index, key, sizeof key);
        EXPECT_STREQ(key, "AP_SSID") << index;
    }
    store_key("AP_SSID", 2, key, sizeof key);
    EXPECT_STREQ(key, "AP_SSID_2");
    store_key("AP_SSID", 16, key, sizeof key);
    EXPECT_STREQ(key, "AP_SSID_16");
}

}  // namespace
