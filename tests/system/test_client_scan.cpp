// scan: a survey from its start to the table, lists that are there, and drivers and servers that do not do as wanted.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <thread>

#include "server/wire.h"
#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

using json = nlohmann::json;
using std::chrono::steady_clock;

double seconds_since(steady_clock::time_point begin) {
    return std::chrono::duration<double>(steady_clock::now() - begin).count();
}

constexpr const char STREET[] =
    "neighbour bssid=9C:3D:CF:01:02:03 ssid=\"Cafe am Eck\" channel=1 rssi=-71 auth=WPA2 mode=11ng\n"
    "neighbour bssid=9C:3D:CF:0A:0B:0C ssid=Upstairs channel=6 rssi=-55 auth=WPA mode=11ng\n"
    "neighbour bssid=64:70:02:AA:10:20 ssid=\"\" channel=6 rssi=-86 auth=OPEN mode=11g\n";

constexpr const char STREET_TABLE[] =
    "BSSID              SSID         RSSI  SIGNAL  AUTH_MODE  WIRELESS_MODE\n"
    "9c:3d:cf:0a:0b:0c  Upstairs      -55  ▂▄▆█    WPA        11ng\n"
    "9c:3d:cf:01:02:03  Cafe am Eck   -71  ▂▄__    WPA2       11ng\n"
    "64:70:02:aa:10:20                -86  ____    OPEN       11g\n"
    "\n";

class ClientScan : public ScenarioGateway {
protected:
    // The radio of VAP 1 has surveyed this.
    void survey(const std::string &items, const std::string &seconds = "0") {
        set_items(items, seconds);
        ASSERT_EQ(code_of_scan(), 0);
        begin_watching();
    }

    static int code_of_scan() {
        return static_cast<int>(word_at(call(PROC_wlan_ap_scan, vap(1)).result, 0));
    }

    long surveys_begun() const {
        strings lines = requests();
        return std::count_if(lines.begin(), lines.end(),
                             [](const std::string &line) { return line.starts_with("ioctl ath0 0x8b18"); });
    }
};

json answer_in(const std::string &text) {
    return json::parse(text, nullptr, false);
}

TEST_F(ClientScan, SurveysAndShowsTheTableByStrength) {
    set_items(STREET);
    command_output scan = client("scan 1");
    EXPECT_EQ(scan.status, 0);
    EXPECT_EQ(scan.text, std::string(STREET_TABLE) + "3 networks; survey completed 0 s ago\n");
    EXPECT_EQ(surveys_begun(), 1);
}

TEST_F(ClientScan, ProgressIsDotsWhereStandardErrorIsNoTerminalAndNothingForPrograms) {
    set_items("", "0.3");
    EXPECT_EQ(client("scan 1").errors, ".\n");
    EXPECT_EQ(client("-o json scan 1").errors, "");
}

TEST_F(ClientScan, CachedShowsTheListThatIsThereAndBeginsNothing) {
    survey(STREET);
    command_output scan = client("scan 1 --cached");
    EXPECT_EQ(scan.status, 0);
    EXPECT_EQ(scan.text, std::string(STREET_TABLE) + "3 networks; surveyed earlier; when, the gateway does not tell\n");
    EXPECT_EQ(scan.errors, "");
    EXPECT_EQ(surveys_begun(), 0);
}

TEST_F(ClientScan, ProgramsGetEveryFieldOfTheRecordUnderItsName) {
    survey(STREET);
    json result = answer_in(client("-o json scan 1 --cached").text)["result"];
    json networks = result["networks"];
    ASSERT_EQ(networks.size(), 3u);
    EXPECT_EQ(networks[0]["bssid"], "9c:3d:cf:0a:0b:0c");
    EXPECT_EQ(networks[0]["ssid"], "Upstairs");
    EXPECT_EQ(networks[0]["rssi"], -55);
    EXPECT_EQ(networks[0]["auth_mode"], "WPA");
    EXPECT_EQ(networks[0]["scan_value"], 6) << "whose meaning is the driver's";
    EXPECT_FALSE(networks[0].contains("signal"));
    result.erase("networks");
    EXPECT_EQ(result.dump(), R"({"age":null,"complete":true,"found":3,"not_shown":0,"survey_status":3,"vap":1})");
    EXPECT_EQ(client("scan 1 --cached -f ssid").text, "Upstairs\nCafe am Eck\n\n");
}

TEST_F(ClientScan, AgeIsKnownToWhoeverSurveyed) {
    set_items(STREET);
    json answer = answer_in(client("-o json scan 1").text);
    EXPECT_EQ(answer["command"], "scan");
    EXPECT_EQ(answer["result"]["age"], 0);
    EXPECT_EQ(answer["result"]["complete"], true);
}

TEST_F(ClientScan, NoNetworkIsASuccessWithAnEmptyList) {
    survey("");
    command_output scan = client("scan 1 --cached");
    EXPECT_EQ(scan.status, 0);
    EXPECT_EQ(scan.text, "no networks; surveyed earlier; when, the gateway does not tell\n");
    json result = answer_in(client("-o json scan 1 --cached").text)["result"];
    EXPECT_EQ(result["networks"], json::array());
    EXPECT_EQ(result["found"], 0);
}

TEST_F(ClientScan, NetworksThatAnAnswerHasNoRoomForAreCounted) {
    survey(STREET);
    for (auto [told, shown, hidden] :
         {std::tuple{"64", 64, 0}, {"65", 64, 1}, {"300", 44, 256}, {"256", 0, 256}, {"-1", 0, 0}}) {
        fault(std::string("scan_count ") + told);
        json result = answer_in(client("-o json scan 1 --cached").text)["result"];
        EXPECT_EQ(result["found"], std::stoi(told));
        EXPECT_EQ(result["networks"].size(), static_cast<size_t>(shown)) << told;
        EXPECT_EQ(result["not_shown"], hidden) << told;
    }
    fault("scan_count 300");
    std::string text = client("scan 1 --cached").text;
    EXPECT_TRUE(
        text.ends_with("\n\n44 networks of 300: an answer has no room for the others; "
                       "surveyed earlier; when, the gateway does not tell\n"))
        << text;
    fault("scan_count 1");
    text = client("scan 1 --cached").text;
    EXPECT_TRUE(text.ends_with("\n\n1 network; surveyed earlier; when, the gateway does not tell\n")) << text;
}

TEST_F(ClientScan, NumberThatTheDriverRefusesIsLeftOutUnlessTheListIsRefusedToo) {
    survey(STREET);
    fault("ioctl:0x89fc.39 EPERM");
    command_output scan = client("scan 1 --cached");
    EXPECT_EQ(scan.status, 1);
    EXPECT_EQ(scan.text, "");
    EXPECT_EQ(scan.errors, "scan: the driver refuses the list of VAP 1: is it up?\n");
}

TEST_F(ClientScan, ListOfASurveyThatRunsIsNotCalledComplete) {
    survey(STREET);
    fault("scan_status 1");
    std::string text = client("scan 1 --cached").text;
    EXPECT_TRUE(text.ends_with("\n3 networks; survey not complete, or none made (state 1)\n")) << text;
    EXPECT_EQ(answer_in(client("-o json scan 1 --cached").text)["result"]["complete"], false);
}

TEST_F(ClientScan, SurveyThatRunsAlreadyIsWaitedFor) {
    survey(STREET, "2");
    command_output scan = client("scan 1");
    EXPECT_EQ(scan.status, 0);
    EXPECT_EQ(scan.text, std::string(STREET_TABLE) + "3 networks; survey completed 0 s ago\n");
    EXPECT_TRUE(scan.errors.starts_with("A survey is running already; waiting for that one.\n.")) << scan.errors;
    EXPECT_EQ(surveys_begun(), 1) << "and was refused";
}

TEST_F(ClientScan, SurveyThatIsNotCompleteInTimeIsStatusFour) {
    set_items(STREET, "60");
    auto begun = steady_clock::now();
    command_output scan = client("-o json scan 1 --wait 1");
    EXPECT_LT(seconds_since(begun), 4.0);
    EXPECT_GE(seconds_since(begun), 1.0);
    EXPECT_EQ(scan.status, 4);
    json error = answer_in(scan.text)["error"];
    EXPECT_EQ(error["kind"], "timed-out");
    EXPECT_EQ(error["message"], "the survey is not complete after 1 s; what has been found by now: scan 1 --cached");
}

TEST_F(ClientScan, VapThatIsNotUpCannotSurvey) {
    command_output scan = client("scan 2");
    EXPECT_EQ(scan.status, 1);
    EXPECT_EQ(scan.text, "");
    EXPECT_EQ(scan.errors, "scan: the driver refuses a survey on VAP 2: is it up?\n");
    EXPECT_EQ(client("scan 2 --cached").errors, "scan: the driver refuses the list of VAP 2: is it up?\n");
}

TEST_F(ClientScan, WordsThatMakeNoSenseAreUsageAndNothingIsAsked) {
    begin_watching();
    for (const char *index : {"0", "-1", "17", "-2147483648", "2147483648", "x", "''"}) {
        command_output scan = client("scan " + std::string(index));
        EXPECT_EQ(scan.status, 2) << index;
        EXPECT_EQ(scan.errors, "scan: VAP is \"" + std::string(*index == '\'' ? "" : index) +
                                   "\", but has to be a number from 1 to 16\n");
    }
    EXPECT_EQ(client("scan 1 -o value").status, 2);
    EXPECT_EQ(client("scan 1 --cached --wait 2").status, 2);
    EXPECT_EQ(requests(), strings{});
}

TEST_F(ClientScan, RefusalWithoutASurveyThatRunsIsTriedOnceMore) {
    survey(STREET);
    fault("ioctl:0x8b18 EBUSY");
    command_output scan = client("scan 1");
    EXPECT_EQ(scan.status, 1);
    EXPECT_EQ(surveys_begun(), 2);
}

TEST_F(ClientScan, VapThatIsTakenDownMeanwhileEndsTheWaiting) {
    set_items(STREET, "60");
    std::thread soon([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
        EXPECT_EQ(system("fault ioctl:0x89fc.38 ENODEV"), 0);
    });
    auto begun = steady_clock::now();
    command_output scan = client("scan 1");
    soon.join();
    EXPECT_LT(seconds_since(begun), 10.0);
    EXPECT_EQ(scan.status, 1);
    EXPECT_TRUE(scan.errors.ends_with("\nscan: the driver no longer tells of its survey: has VAP 1 been taken down?\n"))
        << scan.errors;
}

TEST_F(ClientScan, ServerThatIsBusyMeanwhileIsWaitedFor) {
    set_items(STREET, "1.5");
    int server = std::stoi(serving_child());
    std::thread busy([server] {
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        kill(server, SIGSTOP);
        std::this_thread::sleep_for(std::chrono::milliseconds(1600));
        kill(server, SIGCONT);
    });
    command_output scan = client("--timeout 1 scan 1");
    busy.join();
    EXPECT_EQ(scan.status, 0) << scan.errors;
    EXPECT_EQ(scan.text, std::string(STREET_TABLE) + "3 networks; survey completed 0 s ago\n");
}

TEST_F(ClientScan, ServerThatIsBusyForTooLongIsNotWaitedForBeyondTheLimit) {
    set_items(STREET, "60");
    int server = std::stoi(serving_child());
    std::thread busy([server] {
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        kill(server, SIGSTOP);
    });
    auto begun = steady_clock::now();
    EXPECT_EQ(client("scan 1 --wait 1").status, 4);
    EXPECT_LT(seconds_since(begun), 4.0);
    busy.join();
    kill(server, SIGCONT);
}

// --- at a terminal ---

TEST_F(ClientScan, ProgressAtATerminalIsOneLineThatIsWipedAway) {
    set_items("", "0");
    Terminal scan({CLIENT_PROGRAM, "scan", "1"});
    ASSERT_EQ(scan.ends(), 0);
    const std::string begin = "\rsurveying all channels of VAP 1: 0 s ";
    EXPECT_TRUE(scan.printed.starts_with(begin)) << scan.printed;
    EXPECT_TRUE(scan.printed.ends_with(" \rno networks; survey completed 0 s ago\r\n")) << scan.printed;
    EXPECT_EQ(std::count(scan.printed.begin(), scan.printed.end(), '\n'), 1);
}

TEST_F(ClientScan, InterruptEndsItAtOnceAndLeavesTheTerminalAsItWas) {
    set_items(STREET, "60");
    Terminal scan({CLIENT_PROGRAM, "scan", "1"});
    ASSERT_TRUE(scan.await([](const std::string &printed) { return printed.find(": 1 s") != std::string::npos; }));
    EXPECT_TRUE(scan.interrupt());
    EXPECT_EQ(scan.status, 128 + SIGINT);
    EXPECT_EQ(scan.printed.find('\033'), std::string::npos) << scan.printed;
    EXPECT_TRUE(scan.same_modes);
}

}  // namespace
