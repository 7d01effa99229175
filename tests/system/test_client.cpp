// The real client against the real server: spellings, what it prints, its exit statuses.
#include <gtest/gtest.h>
#include <algorithm>

#include "tests/system/gateway.h"

namespace {

class Client : public testing::Test {
protected:
    void SetUp() override {
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID_9=1", "AP_SSID=home"});
    }
};

TEST_F(Client, SetsAndReadsAnSsid) {
    command_output set = client("setSsid 3 'Guest \"network\"'");
    EXPECT_EQ(set.status, 0) << set.errors;
    EXPECT_EQ(set.text, "ok\n");
    command_output get = client("getSsid 3");
    EXPECT_EQ(get.status, 0) << get.errors;
    EXPECT_EQ(get.text, "Guest \"network\"\n");
}

TEST_F(Client, TakesEverySpellingOfAnOperation) {
    for (const char *word : {"getSsid", "getssid", "GETSSID", "get_ssid", "wlan_get_ssid", "Wlan_Get_Ssid"})
        EXPECT_EQ(client(std::string(word) + " 1").text, "home\n") << word;
}

TEST_F(Client, FailureOfTheServerIsStatusOneAndNamed) {
    command_output refused = client("setChannel 9 6");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.text, "");
    EXPECT_EQ(refused.errors, "setChannel: the server answered failure (-1)\n");
}

TEST_F(Client, NegativeIndexIsAValueAndNoOption) {
    EXPECT_EQ(client("setSsid -3 bare").status, 0);
    EXPECT_EQ(store_value("AP_SSID"), "bare");
}

TEST_F(Client, BadUsageIsStatusTwoAndSendsNothing) {
    size_t mark = mark_of(JOURNAL_FILE);
    EXPECT_EQ(client("setSsid 3").status, 2);
    EXPECT_EQ(client("setSsid three home").status, 2);
    EXPECT_EQ(client("setSid 3 home").status, 2);
    EXPECT_EQ(client("").status, 2);
    EXPECT_TRUE(lines_since(JOURNAL_FILE, mark).empty());
}

// The socket would have the number of the stream, and the answer would go to the server.
TEST_F(Client, StandardOutputThatIsClosedIsStatusSevenAndNoSocketTakesItsPlace) {
    for (const char *words : {"getSsid 1", "-o json getSsid 1", "setSsid 1 home", "list"}) {
        command_output closed = client(std::string(words) + " >&-");
        EXPECT_EQ(closed.status, 7) << words;
        EXPECT_EQ(closed.errors, "vlk_rpc_wlan_config_client: cannot write the output: Bad file descriptor\n");
    }
    EXPECT_EQ(client("getSsid 1 <&- 2>&-").text, "home\n");
}

TEST_F(Client, OutputThatCannotBeWrittenIsStatusSeven) {
    for (const char *words :
         {"getSsid 1", "-o json getSsid 1", "setSsid 1 home", "status", "help", "reference -o json"}) {
        command_output full = client(std::string(words) + " >/dev/full");
        EXPECT_EQ(full.status, 7) << words;
        EXPECT_EQ(full.errors, "vlk_rpc_wlan_config_client: cannot write the output: No space left on device\n");
    }
    EXPECT_EQ(client("setChannel 9 6 -o json >/dev/full").status, 1) << "what the server says counts more";
}

// As any tool: the signal ends it where it is not ignored, and is an error that is said where it is.
TEST_F(Client, ReaderThatGoesAwayEndsItByTheSignalOrWithStatusSeven) {
    std::string reference = std::string("(") + CLIENT_PROGRAM + " reference; echo $? >&2) | true";
    EXPECT_EQ(run_command(reference).errors, "141\n");
    EXPECT_EQ(run_command("trap '' PIPE; " + reference).errors,
              "vlk_rpc_wlan_config_client: cannot write the output: Broken pipe\n7\n");
}

TEST_F(Client, ServerThatIsBusyLongerThanTheTimeoutIsStatusFour) {
    size_t mark = mark_of(JOURNAL_FILE);
    run_command("fault cfg slow 2");
    command_output late = client("--timeout 1 setSsid 1 late");
    EXPECT_EQ(late.status, 4);
    EXPECT_NE(late.errors.find("no answer"), std::string::npos) << late.errors;
    run_command("fault cfg off");
    // The setter was sent once, and carried out all the same.
    EXPECT_EQ(client("getSsid 1").text, "late\n");
    std::vector<std::string> lines = lines_since(JOURNAL_FILE, mark);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "run cfg -a AP_SSID=late"), 1);
}

}  // namespace
