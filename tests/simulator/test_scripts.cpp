// The driver's scripts over their time: what happens when, what a script that is killed leaves, and what becomes of the
// driver when several run at once.
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <string>

#include "simulator/driver/driver_state.h"
#include "simulator/store.h"
#include "tests/simulator/platform.h"

namespace {

// Gives a script its time; the scenario has an item for each, with no time in these tests.
void set_time(const std::string &script, const std::string &seconds) {
    std::string text = read_file(GATEWAY_SCENARIO);
    std::string item = "script " + script + " seconds=0\n";
    size_t place = text.find(item);
    ASSERT_NE(place, std::string::npos);
    write_file(GATEWAY_SCENARIO, text.replace(place, item.size(), "script " + script + " seconds=" + seconds + "\n"));
}

pid_t start(const std::string &command) {
    pid_t child = fork();
    if (child == 0) {
        // Whoever runs the tests may have handed them more than the three.
        close_range(3, ~0U, 0);
        execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
        _exit(127);
    }
    return child;
}

// The exit status, or 128 and the number of the signal.
int finish(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

bool is_loaded() {
    return read_file(GATEWAY_DRIVER_STATE).starts_with("loaded\n");
}

bool is_up(const std::string &interface) {
    return read_file(GATEWAY_DRIVER_STATE).find("up " + interface + " ") != std::string::npos;
}

bool insmod_runs() {
    return !run_shell("ps | grep insmod | grep -v grep").output.empty();
}

// Those that run, or wait; one that has ended and was not collected yet does not count.
size_t hostapd_count() {
    std::string pids = run({"pgrep", "-r", "R,S,D", "-x", "hostapd"}).output;
    return static_cast<size_t>(std::count(pids.begin(), pids.end(), '\n'));
}

class Scripts : public Platform {
protected:
    // The driver is not loaded, and four VAPs are wanted.
    void SetUp() override {
        Platform::SetUp();
        ASSERT_EQ(run({"fast_down.sh"}).status, 0);
        set_store("AP_ENABLE_2=1");
        set_store("AP_ENABLE_3=1");
        mark = journal_mark();
    }

    void TearDown() override {
        run_shell("killall -q apup apup_simple fast_down.sh insmod");
        // An insertion that goes on would load the driver in the middle of the next test.
        EXPECT_TRUE(eventually([] { return !insmod_runs(); }));
        Platform::TearDown();
    }

    bool journal_has(const std::string &line) {
        lines all = journal();
        return std::find(all.begin(), all.end(), line) != all.end();
    }
};

// Loading

TEST_F(Scripts, ApupSimpleLoadsTheDriverByAProcessCalledInsmodThatTakesItsTime) {
    set_time("apup_simple", "0.3");
    pid_t script = start("apup_simple");
    ASSERT_TRUE(eventually(insmod_runs));
    EXPECT_FALSE(is_loaded());
    EXPECT_EQ(finish(script), 0);
    EXPECT_FALSE(insmod_runs());
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "loaded\n");
    EXPECT_EQ(journal(), (lines{"run apup_simple", "run insmod wlan.ko seconds=0.3"}));
}

TEST_F(Scripts, ApupSimpleTakesItsTimeAlsoWhenTheDriverIsLoadedAndLeavesItAsItIs) {
    run({"apup"});
    std::string before = read_file(GATEWAY_DRIVER_STATE);
    set_time("apup_simple", "0.1");
    EXPECT_GE(duration_of([] { EXPECT_EQ(run({"apup_simple"}).status, 0); }), 0.1);
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), before);
}

TEST_F(Scripts, ApupLoadsADriverThatIsNotLoadedInTheFirstHalfOfItsTime) {
    set_time("apup", "0.4");
    pid_t script = start("apup");
    ASSERT_TRUE(eventually(is_loaded));
    EXPECT_EQ(finish(script), 0);
    lines all = journal();
    ASSERT_GE(all.size(), 2u);
    EXPECT_EQ(all[0], "run apup");
    EXPECT_EQ(all[1], "run insmod wlan.ko seconds=0.2");
    EXPECT_TRUE(is_up("ath0") && is_up("ath8"));
}

TEST_F(Scripts, ApupOfALoadedDriverDoesNotLoadItAgain) {
    run({"apup_simple"});
    mark = journal_mark();
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(journal()[0], "run apup");
    EXPECT_FALSE(journal_has("run insmod wlan.ko seconds=0"));
    EXPECT_TRUE(is_up("ath0"));
}

TEST_F(Scripts, AScriptEndsWithStatus1WhenTheDriverCannotBeInserted) {
    run({"fault", "insmod", "missing"});
    for (const std::string script : {"apup", "apup_simple"}) {
        outcome failed = run({script});
        EXPECT_EQ(failed.status, 1);
        EXPECT_EQ(failed.errors, "insmod: not found\n" + script + ": /sbin/insmod ended with status 127\n");
    }
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
}

TEST_F(Scripts, ApupNoticesThatAnInsertionHasDoneNothing) {
    run({"fault", "insmod", "silent"});
    outcome failed = run({"apup"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors, "apup: wlan.ko: No such device\n");
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
}

TEST_F(Scripts, InsmodLoadsTheDriverByHand) {
    EXPECT_EQ(run({"insmod", "wlan.ko"}).status, 0);
    EXPECT_TRUE(is_loaded());
}

TEST_F(Scripts, InsmodRefusesWhatItDoesNotKnow) {
    for (const lines &words : {lines{"insmod"}, lines{"insmod", "other.ko"}, lines{"insmod", "wlan.ko", "seconds=soon"},
                               lines{"insmod", "wlan.ko", "seconds=86401"}, lines{"insmod", "wlan.ko", "colour=1"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_NE(refused.errors, "") << words.back();
    }
    EXPECT_FALSE(is_loaded());
}

TEST_F(Scripts, InsmodHoldsNoDescriptorButTheThreeThatEveryProgramHas) {
    set_time("apup", "1");
    pid_t script = start("apup </dev/null >/dev/null 2>&1");
    ASSERT_TRUE(eventually([this] { return journal_has("run insmod wlan.ko seconds=0.5"); }));
    EXPECT_EQ(run_shell("ls -l /proc/$(pgrep -x insmod)/fd | sed -n 's/.* -> //p' | sort | uniq -c").output,
              "      3 /dev/null\n");
    kill(script, SIGKILL);
    finish(script);
}

// Starting and taking down

TEST_F(Scripts, ApupBringsTheVapsUpOneAfterAnotherOverItsTime) {
    run({"apup_simple"});
    set_time("apup", "0.4");
    double began = driver_clock();
    EXPECT_EQ(run({"apup"}).status, 0);
    driver_state state;
    driver_state_read(&state);
    double due = began;
    for (int vap : {0, 1, 2, 8}) {
        due += 0.1;
        EXPECT_TRUE(state.vaps[vap].up) << vap;
        EXPECT_GE(state.vaps[vap].since, due) << vap;
    }
    // Not all of them at the end.
    EXPECT_LE(state.vaps[0].since, state.vaps[8].since - 0.3);
}

TEST_F(Scripts, ApupLeavesVapsUpThatAreUpAndWanted) {
    run({"apup"});
    driver_state before, after;
    driver_state_read(&before);
    set_store("AP_ENABLE_4=1");
    set_store("AP_ENABLE_9=0");
    EXPECT_EQ(run({"apup"}).status, 0);
    driver_state_read(&after);
    EXPECT_EQ(after.vaps[0].since, before.vaps[0].since);
    EXPECT_TRUE(after.vaps[3].up);
    EXPECT_FALSE(after.vaps[8].up);
}

TEST_F(Scripts, ApupTakesItsTimeAlsoWhenNoVapHasToComeUp) {
    run({"apup"});
    set_time("apup", "0.2");
    EXPECT_GE(duration_of([] { run({"apup"}); }), 0.2);
}

TEST_F(Scripts, TheAuthenticatorStartsAtTheEndOfApup) {
    set_time("apup", "0.4");
    pid_t script = start("apup");
    ASSERT_TRUE(eventually([] { return is_up("ath2"); }));
    EXPECT_EQ(hostapd_count(), 0u);
    EXPECT_EQ(finish(script), 0);
    EXPECT_EQ(hostapd_count(), 1u);
}

TEST_F(Scripts, FastDownTakesTheVapsDownOneAfterAnotherAndRemovesTheDriverAtTheEnd) {
    run({"apup"});
    set_time("fast_down.sh", "0.8");
    pid_t script = start("fast_down.sh");
    ASSERT_TRUE(eventually([] { return !is_up("ath0"); }));
    EXPECT_TRUE(is_up("ath1") && is_up("ath8") && is_loaded());
    ASSERT_TRUE(eventually([] { return !is_up("ath2"); }));
    EXPECT_TRUE(is_up("ath8") && is_loaded());
    ASSERT_TRUE(eventually([] { return !is_up("ath8"); }));
    EXPECT_TRUE(is_loaded());
    EXPECT_EQ(finish(script), 0);
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
    EXPECT_EQ(hostapd_count(), 0u);
}

TEST_F(Scripts, FastDownTakesItsTimeAlsoWithoutVaps) {
    set_time("fast_down.sh", "0.2");
    EXPECT_GE(duration_of([] { run({"fast_down.sh"}); }), 0.2);
}

// Killed scripts

TEST_F(Scripts, AKilledApupLeavesTheVapsThatHaveComeUpWithTheirValues) {
    run({"apup_simple"});
    set_store("AP_INACT=123");
    set_time("apup", "1.6");
    pid_t script = start("apup");
    ASSERT_TRUE(eventually([] { return is_up("ath0"); }));
    EXPECT_EQ(run_shell("killall apup").status, 0);
    EXPECT_EQ(finish(script), 128 + SIGTERM);
    EXPECT_TRUE(is_up("ath0") && is_loaded());
    EXPECT_FALSE(is_up("ath1"));
    EXPECT_EQ(run({"iwpriv", "ath0", "get_inact"}).output, "ath0      get_inact:123  \n");
    EXPECT_EQ(hostapd_count(), 0u);
}

TEST_F(Scripts, TheInsertionOfAKilledScriptGoesOnToItsOwnEnd) {
    set_time("apup", "1");
    pid_t script = start("apup");
    ASSERT_TRUE(eventually([this] { return journal_has("run insmod wlan.ko seconds=0.5"); }));
    EXPECT_EQ(run_shell("killall apup").status, 0);
    EXPECT_EQ(finish(script), 128 + SIGTERM);
    EXPECT_TRUE(insmod_runs());
    EXPECT_FALSE(is_loaded());
    ASSERT_TRUE(eventually([] { return !insmod_runs(); }));
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "loaded\n");
}

TEST_F(Scripts, AKilledFastDownLeavesTheOtherVapsUpAndTheDriverLoaded) {
    run({"apup"});
    set_time("fast_down.sh", "4");
    pid_t script = start("fast_down.sh");
    ASSERT_TRUE(eventually([] { return !is_up("ath0"); }));
    kill(script, SIGTERM);
    EXPECT_EQ(finish(script), 128 + SIGTERM);
    EXPECT_TRUE(is_up("ath1") && is_up("ath2") && is_up("ath8") && is_loaded());
    EXPECT_EQ(hostapd_count(), 1u);
}

TEST_F(Scripts, AnInsertionThatIsKilledHasNotLoadedTheDriver) {
    set_time("apup", "4");
    pid_t script = start("apup 2>/tmp/apup.errors");
    ASSERT_TRUE(eventually([this] { return journal_has("run insmod wlan.ko seconds=2"); }));
    EXPECT_EQ(run_shell("killall insmod").status, 0);
    EXPECT_EQ(finish(script), 1);
    EXPECT_EQ(read_file("/tmp/apup.errors"), "apup: /sbin/insmod ended with status 143\n");
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
}

TEST_F(Scripts, AScriptThatHangsHasDoneNothing) {
    run({"fault", "apup_simple", "hang"});
    mark = journal_mark();
    pid_t script = start("apup_simple");
    ASSERT_TRUE(eventually([this] { return journal_has("run apup_simple"); }));
    usleep(50000);
    EXPECT_EQ(waitpid(script, nullptr, WNOHANG), 0);
    EXPECT_EQ(run_shell("killall apup_simple").status, 0);
    EXPECT_EQ(finish(script), 128 + SIGTERM);
    EXPECT_FALSE(journal_has("run insmod wlan.ko seconds=0"));
    EXPECT_FALSE(is_loaded());
}

// Scripts at the same time

TEST_F(Scripts, ApupWhoseDriverIsRemovedMeanwhileSaysSoAndLeavesItRemoved) {
    run({"apup_simple"});
    set_time("apup", "1.2");
    pid_t script = start("apup 2>/tmp/apup.errors");
    ASSERT_TRUE(eventually([] { return is_up("ath0"); }));
    EXPECT_EQ(run({"fast_down.sh"}).status, 0);
    EXPECT_EQ(finish(script), 1);
    EXPECT_EQ(read_file("/tmp/apup.errors"), "apup: wlan.ko: No such device\n");
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
    EXPECT_EQ(hostapd_count(), 0u);
}

TEST_F(Scripts, FastDownTakesDownAVapThatComesUpMeanwhile) {
    run({"apup"});
    set_time("fast_down.sh", "0.8");
    pid_t script = start("fast_down.sh");
    ASSERT_TRUE(eventually([] { return !is_up("ath0"); }));
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_TRUE(is_up("ath0"));
    EXPECT_EQ(finish(script), 0);
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
    EXPECT_EQ(hostapd_count(), 0u);
}

TEST_F(Scripts, AtTheEndOfApupTheVapsAreUpThatTheStoreThenWants) {
    run({"apup"});
    set_time("apup", "0.3");
    pid_t script = start("apup");
    ASSERT_TRUE(eventually([this] { return journal_has("run apup"); }));
    usleep(50000);
    // Another script has removed and loaded the driver, and the store has changed.
    EXPECT_EQ(run({"fast_down.sh"}).status, 0);
    EXPECT_EQ(run({"apup_simple"}).status, 0);
    set_store("AP_ENABLE_9=0");
    set_store("AP_ENABLE_4=1");
    EXPECT_EQ(finish(script), 0);
    EXPECT_TRUE(is_up("ath0") && is_up("ath1") && is_up("ath3"));
    EXPECT_FALSE(is_up("ath8"));
    EXPECT_EQ(hostapd_count(), 1u);
}

TEST_F(Scripts, OneScriptAtATimeBeginsOrEndsWhatRunsBesideTheDriver) {
    int lock = store_lock(GATEWAY_SCRIPTS_LOCK);
    ASSERT_GE(lock, 0);
    pid_t script = start("apup");
    ASSERT_TRUE(eventually([] { return is_up("ath8"); }));
    usleep(50000);
    EXPECT_EQ(hostapd_count(), 0u);
    close(lock);
    EXPECT_EQ(finish(script), 0);
    EXPECT_EQ(hostapd_count(), 1u);
    lock = store_lock(GATEWAY_SCRIPTS_LOCK);
    script = start("fast_down.sh");
    ASSERT_TRUE(eventually([] { return !is_up("ath8"); }));
    usleep(50000);
    EXPECT_TRUE(is_loaded());
    EXPECT_EQ(hostapd_count(), 1u);
    close(lock);
    EXPECT_EQ(finish(script), 0);
    EXPECT_EQ(hostapd_count(), 0u);
}

TEST_F(Scripts, ManyScriptsAtTheSameTimeLeaveAStateThatMakesSense) {
    set_time("apup", "0.02");
    set_time("apup_simple", "0.01");
    set_time("fast_down.sh", "0.02");
    pid_t many = start(
        "sh -c 'for i in 1 2 3; do apup & apup_simple & fast_down.sh & apup & fast_down.sh & done; wait' 2>/dev/null");
    int looks = 0;
    for (; waitpid(many, nullptr, WNOHANG) == 0; looks++) {
        // A VAP is up in a loaded driver only.
        std::string state = read_file(GATEWAY_DRIVER_STATE);
        ASSERT_TRUE(state.empty() || state.starts_with("loaded\n")) << state;
    }
    EXPECT_GT(looks, 10);
    EXPECT_EQ(hostapd_count(), is_up("ath0") ? 1u : 0u);
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_TRUE(is_up("ath0") && is_up("ath8"));
    EXPECT_EQ(hostapd_count(), 1u);
    EXPECT_EQ(access("/run/gateway/driver.new", F_OK), -1);
}

}  // namespace
