// Messages of all kinds, made by hand: what people are told of each.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>

#include "client/operations.h"
#include "client/record_fields.h"
#include "server/wire.h"
#include "tests/dissector/dissection.h"
#include "tests/system/gateway.h"

namespace {

using problems = std::set<std::string>;

bytes call_of(uint32_t xid, uint32_t procedure, const bytes &arguments) {
    return call_header(xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure) + arguments;
}

// An accepted reply with this status and what follows it.
bytes reply_of(uint32_t xid, uint32_t status, const bytes &rest) {
    bytes reply;
    for (uint32_t word : {xid, 1u, 0u, 0u, 0u, status})
        reply += xdr_word(word);
    return reply + rest;
}

bytes denial_of(uint32_t xid, const std::vector<uint32_t> &words) {
    bytes reply = xdr_word(xid) + xdr_word(1) + xdr_word(1);
    for (uint32_t word : words)
        reply += xdr_word(word);
    return reply;
}

// A result record with these elements of return_values, and return_data.
bytes record_of(uint32_t code, const std::vector<uint32_t> &values, const bytes &data) {
    bytes result = xdr_word(code) + xdr_word(static_cast<uint32_t>(values.size()));
    for (uint32_t value : values)
        result += xdr_word(value);
    return result + xdr_string_bytes(data);
}

// All messages of these tests are in one capture, which is dissected once. Each test finds its frames by their names.
struct album {
    capture frames;
    std::map<std::string, size_t> places;
    uint32_t xid = 100;

    void call(const std::string &name, uint32_t procedure, const bytes &arguments) {
        places[name] = add_call(&frames, call_of(++xid, procedure, arguments));
    }
    void reply(const std::string &name, uint32_t status, const bytes &rest) {
        places[name] = add_reply(&frames, reply_of(xid, status, rest));
    }
    // A call of wlan_get_ssid with a reply of any kind.
    void reply_to_get_ssid(const std::string &name, uint32_t status, const bytes &rest) {
        call(name + " call", PROC_wlan_get_ssid, xdr_word(1));
        reply(name, status, rest);
    }
    void result(const std::string &name, uint32_t procedure, const bytes &result) {
        call(name + " call", procedure, xdr_word(1) + xdr_word(2) + xdr_word(3));
        reply(name, 0, result);
    }
};

void take_calls(album *all) {
    all->call("set", PROC_wlan_set_ssid, xdr_word(3) + xdr_string_bytes("Guest network"));
    all->reply("set reply", 0, xdr_word(0));
    all->call("odd text", PROC_wlan_set_ssid, xdr_word(3) + xdr_string_bytes("a\n\"\xc3\xa9\xff"));
    all->call("long text", PROC_wlan_set_ssid, xdr_word(3) + xdr_string_bytes(std::string(59, 'x') + "\xc3\xa9yz"));
    all->call("empty text", PROC_wlan_set_ssid, xdr_word(3) + xdr_word(0));
    all->call("text with a NUL", PROC_wlan_set_ssid, xdr_word(3) + xdr_string_bytes(bytes("ab\0cd", 5)));
    all->call("text of 4 GiB", PROC_wlan_set_ssid, xdr_word(3) + xdr_word(0xffffffff) + "abcd");
    all->call("text name", PROC_wlan_set_max_bitrate, xdr_word(1) + xdr_string_bytes("54"));
    all->call("number name", PROC_wlan_set_rad_stat_enable, xdr_word(1) + xdr_word(1) + xdr_word(30) + xdr_word(60));
    all->call("negative", PROC_wlan_set_sta_assoc_rssi_thresh, xdr_word(0x80000000) + xdr_word(0xffffffff));
    all->call("large", PROC_wlan_set_transmit_power, xdr_word(17) + xdr_word(0xffffffff));
    all->call("boolean", PROC_wlan_set_enable, xdr_word(16) + xdr_word(1));
    all->call("ignored", PROC_wlan_load, xdr_word(1));
    all->call("surplus", PROC_wlan_get_ssid, xdr_word(1) + "more");
    all->call("null", 0, "");
    all->reply("null reply", 0, "");
    all->call("hole", 20, xdr_word(1));
    all->call("hole in the second block", 0x1000003, "");
    all->places["other version"] =
        add_call(&all->frames, call_header(++all->xid, WLAN_CONFIG_RPC_PROG, 2, 21) + "args");
    all->reply("version mismatch", 2, xdr_word(1) + xdr_word(1));
    all->places["other program"] = add_call(&all->frames, call_header(++all->xid, 100003, 3, 1));
    all->reply("program unavailable", 1, "");
    add_call(&all->frames, call_header(++all->xid, WLAN_CONFIG_RPC_PROG, 2, PROC_wlan_get_ssid) + xdr_word(1));
    all->reply("result of another version", 0, record_of(0, {}, bytes("Home\0", 5)));
    bytes other_rpc = call_of(++all->xid, PROC_wlan_get_ssid, xdr_word(1));
    other_rpc[11] = 3;
    all->places["another RPC"] = add_call(&all->frames, other_rpc);
}

void take_errors(album *all) {
    all->reply_to_get_ssid("procedure unavailable", 3, "");
    all->reply_to_get_ssid("garbage", 4, "");
    all->reply_to_get_ssid("system error", 5, "");
    all->reply_to_get_ssid("status 9", 9, "");
    all->reply_to_get_ssid("failure", 0, record_of(0xffffffff, {}, ""));
    all->reply_to_get_ssid("surplus behind a result", 0, record_of(0, {}, bytes("Home\0", 5)) + "more");
    all->places["orphan code"] = add_reply(&all->frames, reply_of(1, 0, xdr_word(0)));
    all->places["orphan result"] = add_reply(&all->frames, reply_of(2, 0, record_of(0, {7, 0, 0, 0}, "data")));
    all->places["orphan nothing"] = add_reply(&all->frames, reply_of(3, 0, ""));
    all->places["orphan error"] = add_reply(&all->frames, reply_of(4, 3, ""));
    const std::pair<const char *, std::vector<uint32_t>> denials[] = {
        {"RPC mismatch", {0, 2, 2}}, {"too weak", {1, 5}}, {"unknown denial", {7}}};
    for (const auto &[name, words] : denials) {
        all->call(std::string(name) + " call", PROC_wlan_get_ssid, xdr_word(1));
        all->places[name] = add_reply(&all->frames, denial_of(all->xid, words));
    }
    all->call("neither call", PROC_wlan_get_ssid, xdr_word(1));
    all->places["neither"] = add_reply(&all->frames, xdr_word(all->xid) + xdr_word(1) + xdr_word(3));
    bytes header = call_of(++all->xid, PROC_wlan_get_ssid, "").substr(0, 24);
    bytes body = xdr_word(1) + xdr_string_bytes("page") + xdr_word(0) + xdr_word(0) + xdr_word(0);
    all->places["credentials"] =
        add_call(&all->frames, header + xdr_word(1) + xdr_string_bytes(body) + xdr_word(0) + xdr_word(0) + xdr_word(5));
    all->places["too long credentials"] =
        add_call(&all->frames, header + xdr_word(1) + xdr_word(404) + bytes(420, '\0'));
    all->places["no message"] = add_call(&all->frames, bytes(64, '\x55'));
}

void take_results(album *all) {
    all->result("text without an end", PROC_wlan_get_ssid, record_of(0, {}, "Home"));
    all->result("no text", PROC_wlan_get_ssid, record_of(0, {}, ""));
    all->result("no integer", PROC_wlan_get_channel, record_of(0, {}, ""));
    all->result("one of two integers", PROC_wlan_get_bssid_port, record_of(0, {7}, ""));
    all->result("integers behind", PROC_wlan_get_channel, record_of(0, {6, 0, 9, 0}, ""));
    all->result("failure with values", PROC_wlan_get_channel, record_of(0xffffffff, {0, 0, 0, 0}, ""));
    all->result("claims integers", PROC_wlan_get_channel, xdr_word(0) + xdr_word(0x40000000) + xdr_word(1));
    all->result("claims data", PROC_wlan_get_ssid, xdr_word(0) + xdr_word(0) + xdr_word(0xfffffff0) + "Home");
    all->result("counters", PROC_wlan_get_stats, record_of(0, std::vector<uint32_t>(44, 5), ""));
    bytes table(sizeof(wlan_atf_station_table_t), '\0');
    table.replace(0, 8, bytes("\1\0\0\0\1\0\0\0", 8));
    table.replace(8, 18, bytes("02:00:00:00:00:01\0", 18));
    table[58] = 30;
    all->result("airtime", PROC_wlan_get_advairtime_statscl_atftable, record_of(0, {}, table));
    all->result("short record", PROC_wlan_get_assoc_device, record_of(0, {}, bytes(232, '\0')));
    bytes list(sizeof(wlan_sb_station_list_t), '\0');
    list[0] = 65;
    all->result("65 stations of 64", PROC_wlan_get_softblock_black_list, record_of(0, {}, list));
    all->result("-1 stations", PROC_wlan_get_softblock_black_list, record_of(0, {}, bytes(4, '\xff') + list.substr(4)));
    list[0] = 0;
    all->result("no station", PROC_wlan_get_softblock_black_list, record_of(0, {}, list));
}

void take_relations(album *all) {
    bytes call = call_of(++all->xid, PROC_wlan_set_ssid, xdr_word(1) + xdr_string_bytes("twice"));
    all->places["first"] = add_call(&all->frames, call);
    all->places["second"] = add_call(&all->frames, call);
    all->reply("first reply", 0, xdr_word(0));
    all->reply("second reply", 0, xdr_word(0));
    all->reply("third reply", 0, xdr_word(0));
    all->call("same number", PROC_wlan_get_ssid, xdr_word(1));
    endpoint other = {CLIENT_END.address, 40001};
    all->places["same number of another"] =
        add_frame(&all->frames, other, SERVER_END, call_of(all->xid, PROC_wlan_get_name, xdr_word(2)));
    all->places["reply to the other"] =
        add_frame(&all->frames, SERVER_END, other, reply_of(all->xid, 0, record_of(0, {}, bytes("ath1\0", 5))));
    all->reply("reply to the one", 0, record_of(0, {}, bytes("Home\0", 5)));
    all->call("reused number", PROC_wlan_get_name, xdr_word(1));
    all->xid--;
    all->call("reuses it", PROC_wlan_get_ssid, xdr_word(1));
    endpoint elsewhere = {SERVER_END.address, 1234};
    all->places["elsewhere"] =
        add_frame(&all->frames, CLIENT_END, elsewhere, call_of(++all->xid, PROC_wlan_get_name, xdr_word(1)));
    all->places["reply from elsewhere"] =
        add_frame(&all->frames, elsewhere, CLIENT_END, reply_of(all->xid, 0, record_of(0, {}, bytes("ath0\0", 5))));
    all->places["another program elsewhere"] =
        add_frame(&all->frames, CLIENT_END, {SERVER_END.address, 1235}, call_header(1, 100003, 3, 1));
    all->call("before the error", PROC_wlan_get_ssid, xdr_word(1));
    all->places["error"] = add_call(&all->frames, call_of(all->xid, PROC_wlan_get_ssid, xdr_word(1)));
    all->frames.back().inside_error = true;
    all->places["reply in an error"] = add_reply(&all->frames, reply_of(all->xid, 0, record_of(0, {}, "")));
    all->frames.back().inside_error = true;
    all->reply("behind the error", 0, record_of(0, {}, bytes("Home\0", 5)));
    all->reply("again behind the error", 0, record_of(0, {}, bytes("Home\0", 5)));
    all->call("cut call", PROC_wlan_set_ssid, xdr_word(1) + xdr_string_bytes("network"));
    all->frames.back().missing = 4;
}

struct dissected_album : album {
    std::vector<dissected_frame> dissected;
    const dissected_frame &operator[](const std::string &name) const {
        auto place = places.find(name);
        EXPECT_NE(place, places.end()) << name;
        return dissected[place == places.end() ? 0 : place->second - 1];
    }
    std::string frame_of(const std::string &name) const {
        return std::to_string(places.at(name));
    }
};

const dissected_album &messages() {
    static dissected_album all;
    if (all.frames.empty()) {
        take_calls(&all);
        take_errors(&all);
        take_results(&all);
        take_relations(&all);
        all.dissected = dissect(all.frames);
    }
    return all;
}

std::string title_of(const std::string &name) {
    std::string title = messages()[name].title, beginning = "Wi-Fi configuration, ";
    return title.starts_with(beginning) ? title.substr(beginning.size()) : title;
}

bool has_label(const std::string &name, const std::string &label) {
    const std::vector<std::string> &labels = messages()[name].labels;
    return std::find(labels.begin(), labels.end(), label) != labels.end();
}

TEST(DissectedMessage, OfACallSaysOperationAndArguments) {
    EXPECT_EQ(title_of("set"), "Call setSsid index=3 ssid=\"Guest network\"");
    EXPECT_EQ(messages()["set"]["wlan_config.xid"], "0x00000065");
    EXPECT_EQ(messages()["set"]["wlan_config.type"], "0");
    EXPECT_EQ(messages()["set"]["wlan_config.program"], "0x20131337");
    EXPECT_EQ(messages()["set"]["wlan_config.version"], "1");
    EXPECT_EQ(messages()["set"]["wlan_config.procedure"], "22");
    EXPECT_TRUE(has_label("set", "Procedure: wlan_set_ssid (22)"));
    EXPECT_TRUE(has_label("set", "Operation: setSsid (set the SSID of the VAP)"));
}

TEST(DissectedMessage, OfAReplySaysWhatBecameOfTheCall) {
    EXPECT_EQ(title_of("set reply"), "Reply setSsid success");
    EXPECT_EQ(title_of("behind the error"), "Reply getSsid ssid=\"Home\"");
    EXPECT_EQ(title_of("failure"), "Reply getSsid failure (-1)");
    EXPECT_EQ(title_of("no station"), "Reply getSoftblockBlackList entries=0");
}

TEST(DissectedMessage, ShowsOddTextsWithoutTheirControlCharacters) {
    EXPECT_EQ(title_of("odd text"), "Call setSsid index=3 ssid=\"a\\x0a\"\xc3\xa9\xef\xbf\xbd\"");
    EXPECT_EQ(title_of("empty text"), "Call setSsid index=3 ssid=\"\"");
    EXPECT_EQ(messages()["empty text"].problems, problems{});
}

TEST(DissectedMessage, ShortensLongTextsBetweenCharacters) {
    EXPECT_EQ(title_of("long text"), "Call setSsid index=3 ssid=\"" + std::string(59, 'x') + "...\"");
    EXPECT_EQ(messages()["long text"]["wlan_config.arg.ssid"], std::string(59, 'x') + "\xc3\xa9yz");
}

TEST(DissectedMessage, WarnsOfATextThatTheServerCutsAtItsNul) {
    EXPECT_EQ(messages()["text with a NUL"].problems, problems{"nul"});
    EXPECT_EQ(messages()["text with a NUL"]["wlan_config.arg.ssid"], "ab");
}

TEST(DissectedMessage, DoesNotBelieveATextOfFourGigabytes) {
    EXPECT_EQ(messages()["text of 4 GiB"].problems, problems{"malformed"});
    EXPECT_EQ(messages()["text of 4 GiB"]["wlan_config.text_length"], "4294967295");
    EXPECT_EQ(title_of("text of 4 GiB"), "Call setSsid index=3 [malformed]");
}

TEST(DissectedMessage, HasAFieldForTextsThatShareTheirNameWithNumbers) {
    EXPECT_EQ(messages()["text name"]["wlan_config.arg.rate_text"], "54");
    EXPECT_EQ(messages()["text name"]["wlan_config.arg.rate"], "(absent)");
    EXPECT_EQ(messages()["number name"]["wlan_config.arg.rate"], "30");
}

TEST(DissectedMessage, KnowsSignedAndUnsignedArguments) {
    EXPECT_EQ(messages()["negative"]["wlan_config.arg.index"], "-2147483648");
    EXPECT_EQ(messages()["negative"]["wlan_config.arg.rssi"], "-1");
    EXPECT_EQ(messages()["large"]["wlan_config.arg.power"], "4294967295");
}

TEST(DissectedMessage, SaysWhatArgumentsMean) {
    EXPECT_TRUE(has_label("boolean", "index: 16 (ath15)"));
    EXPECT_TRUE(has_label("boolean", "enabled: 1 (true)"));
    EXPECT_TRUE(has_label("large", "index: 17"));
    EXPECT_TRUE(has_label("ignored", "radio: 1 (not used by the server)"));
}

TEST(DissectedMessage, ShowsSurplusBytes) {
    EXPECT_EQ(messages()["surplus"].problems, problems{"surplus"});
    EXPECT_EQ(messages()["surplus"]["wlan_config.undecoded"], "6d:6f:72:65");
    EXPECT_EQ(messages()["surplus behind a result"].problems, problems{"surplus"});
    EXPECT_EQ(messages()["surplus behind a result"]["wlan_config.result.ssid"], "Home");
}

TEST(DissectedMessage, OfTheNullProcedureIsComplete) {
    EXPECT_EQ(title_of("null"), "Call NULL");
    EXPECT_EQ(title_of("null reply"), "Reply NULL success");
    EXPECT_EQ(messages()["null"].problems, problems{});
    EXPECT_EQ(messages()["null reply"].problems, problems{});
}

TEST(DissectedMessage, WarnsOfNumbersThatTheServerDoesNotOffer) {
    EXPECT_EQ(title_of("hole"), "Call procedure 20");
    EXPECT_EQ(title_of("hole in the second block"), "Call procedure 0x1000003");
    EXPECT_EQ(title_of("other version"), "Call version 2 procedure 21");
    EXPECT_EQ(title_of("other program"), "Call program 0x186a3 procedure 1");
    for (const char *name : {"hole", "hole in the second block", "other version", "other program"}) {
        EXPECT_EQ(messages()[name].problems, problems{"unassigned"}) << name;
        EXPECT_EQ(messages()[name]["wlan_config.operation"], "(absent)") << name;
    }
    EXPECT_EQ(messages()["other version"]["wlan_config.undecoded"], "61:72:67:73");
    for (auto [name, text] : std::initializer_list<std::pair<const char *, const char *>>{
             {"hole", "There is no procedure 20"},
             {"other version", "The server has version 1 only"},
             {"other program", "Program 0x186a3 is not the Wi-Fi configuration server"}})
        EXPECT_TRUE(has_label(name, std::string("Expert Info (Warning/Request): ") + text)) << name;
}

TEST(DissectedMessage, DoesNotTakeAResultOfAnotherVersionForOneOfOurs) {
    EXPECT_EQ(title_of("result of another version"), "Reply version 2 procedure 21 success");
    EXPECT_EQ(messages()["result of another version"]["wlan_config.return_code"], "(absent)");
}

TEST(DissectedMessage, NamesEachRefusalOfRpc) {
    EXPECT_EQ(title_of("program unavailable"), "Reply program 0x186a3 procedure 1 PROG_UNAVAIL");
    EXPECT_EQ(title_of("version mismatch"), "Reply version 2 procedure 21 PROG_MISMATCH");
    EXPECT_EQ(title_of("procedure unavailable"), "Reply getSsid PROC_UNAVAIL");
    EXPECT_EQ(title_of("garbage"), "Reply getSsid GARBAGE_ARGS");
    EXPECT_EQ(title_of("system error"), "Reply getSsid SYSTEM_ERR");
    EXPECT_EQ(title_of("status 9"), "Reply getSsid accept status 9");
    EXPECT_EQ(title_of("RPC mismatch"), "Reply getSsid RPC_MISMATCH");
    EXPECT_EQ(title_of("too weak"), "Reply getSsid AUTH_ERROR");
    EXPECT_EQ(title_of("unknown denial"), "Reply getSsid denied");
    for (const char *name : {"program unavailable", "version mismatch", "procedure unavailable", "garbage",
                             "system error", "status 9", "RPC mismatch", "too weak", "unknown denial"})
        EXPECT_EQ(messages()[name].problems, problems{"rpc_error"}) << name;
    EXPECT_EQ(messages()["version mismatch"]["wlan_config.version_low"], "1");
    EXPECT_EQ(messages()["RPC mismatch"]["wlan_config.version_high"], "2");
    EXPECT_EQ(messages()["garbage"]["wlan_config.accept_status"], "4");
    EXPECT_TRUE(has_label("too weak",
                          "Expert Info (Warning/Response): AUTH_ERROR: the server refuses the credentials, "
                          "AUTH_TOOWEAK"));
}

TEST(DissectedMessage, NeitherAcceptedNorDeniedIsMalformed) {
    EXPECT_EQ(messages()["neither"].problems, problems{"malformed"});
    EXPECT_TRUE(has_label("neither", "Expert Info (Error/Malformed): The reply is neither accepted nor denied: 3"));
}

TEST(DissectedMessage, SaysThatTheCallOfAReplyIsMissing) {
    for (const char *name : {"orphan code", "orphan result", "orphan nothing"})
        EXPECT_EQ(messages()[name].problems, problems{"no_call"}) << name;
    EXPECT_EQ(messages()["orphan error"].problems, (problems{"no_call", "rpc_error"}));
    EXPECT_EQ(title_of("orphan code"), "Reply to a call that is not in the capture success");
    EXPECT_EQ(messages()["orphan result"]["wlan_config.return_values.value"], "7");
    EXPECT_EQ(messages()["orphan result"]["wlan_config.return_data.bytes"], "64:61:74:61");
    EXPECT_EQ(messages()["orphan nothing"]["wlan_config.return_code"], "(absent)");
}

TEST(DissectedMessage, HasItsArgumentsBehindCredentials) {
    EXPECT_EQ(messages()["credentials"]["wlan_config.auth.flavor"], "1");
    EXPECT_EQ(messages()["credentials"]["wlan_config.auth.length"], "24");
    EXPECT_EQ(messages()["credentials"]["wlan_config.arg.index"], "5");
    EXPECT_EQ(messages()["credentials"].problems, problems{});
}

TEST(DissectedMessage, WithMoreCredentialsThanRpcAllowsIsMalformed) {
    EXPECT_EQ(messages()["too long credentials"].problems, problems{"malformed"});
    EXPECT_EQ(messages()["too long credentials"]["wlan_config.arg.index"], "(absent)");
}

TEST(DissectedMessage, IsLeftToOthersWhenItIsNone) {
    EXPECT_EQ(messages()["no message"].title, "");
    EXPECT_EQ(messages()["another RPC"].title, "");
    EXPECT_EQ(messages()["another program elsewhere"].title, "");
}

TEST(DissectedResult, IsDamagedWhenItHasLessThanItsProcedureAnswers) {
    for (const char *name :
         {"text without an end", "no text", "no integer", "one of two integers", "short record", "65 stations of 64"})
        EXPECT_EQ(messages()[name].problems, problems{"damaged"}) << name;
    EXPECT_EQ(messages()["one of two integers"]["wlan_config.result.port"], "7");
}

TEST(DissectedResult, OfAFailureMayBeEmptyOrNot) {
    EXPECT_EQ(messages()["failure"].problems, problems{"failure"});
    EXPECT_EQ(messages()["failure"]["wlan_config.result.ssid"], "(absent)");
    EXPECT_EQ(messages()["failure with values"].problems, problems{"failure"});
    EXPECT_EQ(messages()["failure with values"]["wlan_config.result.channel"], "0");
}

TEST(DissectedResult, SaysWhenElementsBehindTheIntegersAreNotZero) {
    EXPECT_TRUE(has_label("integers behind", "Elements without a meaning: 3, not all 0"));
    EXPECT_TRUE(has_label("failure with values", "Elements without a meaning: 3"));
}

TEST(DissectedResult, DoesNotBelieveClaimsBeyondItsDatagram) {
    EXPECT_EQ(messages()["claims integers"].problems, problems{"malformed"});
    EXPECT_EQ(messages()["claims integers"]["wlan_config.result.channel"], "1");
    EXPECT_EQ(messages()["claims data"].problems, problems{"malformed"});
}

TEST(DissectedResult, HasUnitsAndNamesOfEntries) {
    EXPECT_TRUE(has_label("counters", "rx_errors: 5 packets"));
    EXPECT_TRUE(has_label("counters", "[2] words_3_to_5: 5"));
    EXPECT_TRUE(has_label("airtime", "share: 30 %"));
    EXPECT_TRUE(has_label("airtime", "stations[0] (wlan_atf_station_t): \"02:00:00:00:00:01\""));
    EXPECT_TRUE(has_label("airtime", "stations: 1 of 64 entries"));
    EXPECT_EQ(title_of("airtime"), "Reply getAdvairtimeStatsclAtftable stations=1");
}

TEST(DissectedResult, HasNoEntriesOfAListThatCountsLessThanNone) {
    EXPECT_EQ(messages()["-1 stations"]["wlan_config.wlan_sb_station_list_t.total"], "-1");
    EXPECT_EQ(messages()["-1 stations"]["wlan_config.wlan_sb_station_t"], "(absent)");
    EXPECT_TRUE(has_label("no station", "entries: 0 of 64 entries"));
}

TEST(DissectedConversation, SaysWhichCallIsARepetition) {
    const dissected_album &all = messages();
    EXPECT_EQ(all["first"].problems, problems{});
    EXPECT_EQ(all["second"].problems, problems{"repeated"});
    EXPECT_EQ(all["first reply"]["wlan_config.call_in"], all.frame_of("first"));
    EXPECT_EQ(all["second reply"]["wlan_config.call_in"], all.frame_of("second"));
    EXPECT_EQ(all["second reply"].problems, problems{});
    EXPECT_EQ(all["third reply"]["wlan_config.call_in"], all.frame_of("second"));
    EXPECT_EQ(all["third reply"].problems, problems{"answered_again"});
}

TEST(DissectedConversation, TakesAnotherCallUnderTheSameNumberForNoRepetition) {
    EXPECT_EQ(messages()["reuses it"].problems, problems{});
}

TEST(DissectedConversation, TellsClientsWithTheSameNumberApart) {
    const dissected_album &all = messages();
    EXPECT_EQ(all["reply to the other"]["wlan_config.call_in"], all.frame_of("same number of another"));
    EXPECT_EQ(all["reply to the other"]["wlan_config.result.name"], "ath1");
    EXPECT_EQ(all["reply to the one"]["wlan_config.call_in"], all.frame_of("same number"));
    EXPECT_EQ(all["reply to the one"]["wlan_config.result.ssid"], "Home");
}

TEST(DissectedConversation, IsFoundAtAnyPort) {
    EXPECT_EQ(title_of("elsewhere"), "Call getName index=1");
    EXPECT_EQ(title_of("reply from elsewhere"), "Reply getName name=\"ath0\"");
}

TEST(DissectedConversation, IsNotDisturbedByAnErrorThatQuotesIt) {
    const dissected_album &all = messages();
    EXPECT_EQ(all["error"].problems, problems{"unreachable"});
    EXPECT_EQ(all["reply in an error"].problems, problems{"unreachable"});
    EXPECT_EQ(all["behind the error"]["wlan_config.call_in"], all.frame_of("before the error"));
    EXPECT_EQ(all["behind the error"].problems, problems{});
    EXPECT_EQ(all["again behind the error"]["wlan_config.call_in"], all.frame_of("before the error"));
}

TEST(DissectedMessage, SaysWhenTheCaptureHasOnlyItsBeginning) {
    EXPECT_EQ(messages()["cut call"].problems, problems{"cut"});
    EXPECT_EQ(title_of("cut call"), "Call setSsid index=1 [cut by the capture]");
}

// Bytes of all values, the same in every run. Lists have two entries, or all that there is room for.
bytes patterned_image(const record_row &record, bool full, std::mt19937 *random) {
    bytes image;
    while (image.size() < record.size)
        image += static_cast<char>((*random)());
    for (size_t i = 0; i < record.field_count; i++)
        if (record.fields[i].kind == field_kind::LIST) {
            const record_field *count = find_field(&record, record.fields[i].count);
            image.replace(count->offset, count->size, bytes(count->size, '\0'));
            image[count->offset] = static_cast<char>(full ? record.fields[i].elements : 2);
        }
    return image;
}

// A result of a row with every bit of its integers in use, and the elements behind them as the server sends them.
bytes patterned_result(const procedure_row &row, bool full, std::mt19937 *random) {
    std::vector<uint32_t> values;
    auto integers = [&](size_t count) {
        for (size_t i = 0; i < count; i++)
            values.push_back(static_cast<uint32_t>((*random)()));
        values.resize(4 * count);
    };
    switch (row.result.kind) {
        case result_kind::CODE:
            return xdr_word(static_cast<uint32_t>((*random)()));
        case result_kind::ACTION:
            return record_of(0, {}, "");
        case result_kind::INTEGERS:
            integers(row.result.output_count);
            return record_of(0, values, "");
        case result_kind::INTEGERS64:
            integers(2 * row.result.size);
            return record_of(0, values, "");
        case result_kind::WORDS:
            integers(row.result.size / 4);
            return record_of(0, values, "");
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return record_of(0, {}, std::string(full ? 3000 : 5, 'x') + '\0');
        case result_kind::COUNTED_IMAGE:
            integers(1);
            [[fallthrough]];
        case result_kind::IMAGE:
            return record_of(0, values, patterned_image(*find_record(row.result.type), full, random));
    }
    return "";
}

struct patterned_reply {
    const procedure_row *row;
    bytes result;
    size_t frame;
};

// A call of each procedure, and a reply with any numbers.
std::vector<patterned_reply> add_patterned_replies(capture *frames, bool full, std::mt19937 *random) {
    std::vector<patterned_reply> replies;
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row &row = procedure_rows[i];
        uint32_t xid = static_cast<uint32_t>(frames->size());
        bytes result = patterned_result(row, full, random);
        add_call(frames, call_of(xid, row.number, bytes(40, '\0')));
        replies.push_back({&row, result, add_reply(frames, reply_of(xid, 0, result))});
    }
    return replies;
}

TEST(DissectedResult, OfEachProcedureShowsEveryBit) {
    capture frames;
    std::mt19937 random(60001);
    std::vector<patterned_reply> replies = add_patterned_replies(&frames, false, &random);
    for (const patterned_reply &reply : add_patterned_replies(&frames, true, &random))
        replies.push_back(reply);
    std::vector<dissected_frame> dissected = dissect(frames);
    for (const patterned_reply &reply : replies)
        EXPECT_TRUE(same_fields(payload_of(dissected[reply.frame - 1]), expected_result(*reply.row, reply.result)))
            << reply.row->name;
}

TEST(DissectedResult, IsInTheOtherByteOrderWhenThePreferenceSaysSo) {
    wlan_airtime_sta_list_t list = {};
    list.count = 0x01000000;
    list.stations[0].weight = 0x32000000;
    capture frames;
    add_call(&frames, call_of(1, PROC_wlan_get_advairtime_sta_list, xdr_word(1)));
    add_reply(&frames, reply_of(1, 0, record_of(0, {}, bytes(reinterpret_cast<char *>(&list), sizeof list))));
    dissected_frame frame = dissect(frames, "-o wlan_config.byte_order:big")[1];
    EXPECT_EQ(frame["wlan_config.wlan_airtime_sta_list_t.count"], "1");
    EXPECT_EQ(frame["wlan_config.wlan_airtime_sta_t.weight"], "50");
    EXPECT_EQ(frame.problems, problems{});
}

TEST(DissectedConversation, KnowsTheReplyOfACallInASecondPass) {
    capture frames;
    add_call(&frames, call_of(1, PROC_wlan_get_ssid, xdr_word(1)));
    add_call(&frames, call_of(2, PROC_wlan_get_name, xdr_word(1)));
    add_reply(&frames, reply_of(1, 0, record_of(0, {}, bytes("Home\0", 5))));
    std::vector<dissected_frame> dissected = dissect(frames, "-2");
    EXPECT_EQ(dissected[0]["wlan_config.reply_in"], "3");
    EXPECT_EQ(dissected[0].problems, problems{});
    EXPECT_EQ(dissected[1].problems, problems{"no_reply"});
    EXPECT_EQ(dissected[2]["wlan_config.call_in"], "1");
    EXPECT_EQ(dissected[2]["wlan_config.time"], "0.002000000");
}

// The filters in the table of docs/wire.md, as one.
std::string filters_of_the_document() {
    std::istringstream document(read_file(WLAN_SOURCE_DIR "/docs/wire.md"));
    std::string filters;
    for (std::string line; std::getline(document, line);)
        for (size_t begin = 0;
             line.starts_with("| `wlan_config.") && (begin = line.find('`', begin)) != std::string::npos;) {
            size_t end = line.find('`', begin + 1);
            filters += (filters.empty() ? "(" : " || (") + line.substr(begin + 1, end - begin - 1) + ")";
            begin = end + 1;
        }
    return filters;
}

TEST(DissectedConversation, IsFoundByTheFiltersOfTheDocument) {
    std::string filters = filters_of_the_document();
    EXPECT_EQ(std::count(filters.begin(), filters.end(), '('), 12) << filters;
    capture frames;
    add_call(&frames, call_of(1, PROC_wlan_set_ssid, xdr_word(3) + xdr_string_bytes("Home")));
    add_reply(&frames, reply_of(1, 0, xdr_word(0)));
    EXPECT_EQ(tshark_lines(frames, "-Y '" + filters + "'").size(), 2u);
}

TEST(DissectedConversation, IsTheSameInASecondPass) {
    capture frames;
    for (int i = 0; i < 2; i++)
        add_call(&frames, call_of(1, PROC_wlan_get_ssid, xdr_word(1)));
    for (int i = 0; i < 2; i++)
        add_reply(&frames, reply_of(1, 0, record_of(0, {}, bytes("Home\0", 5))));
    std::vector<dissected_frame> dissected = dissect(frames, "-2");
    EXPECT_EQ(dissected[0].problems, problems{});
    EXPECT_EQ(dissected[1].problems, problems{"repeated"});
    EXPECT_EQ(dissected[2]["wlan_config.call_in"], "1");
    EXPECT_EQ(dissected[3]["wlan_config.call_in"], "2");
}

TEST(DissectedConversation, IsFilteredAndHasItsColumns) {
    capture frames;
    for (uint32_t index : {1, 3}) {
        add_call(&frames, call_of(index, PROC_wlan_set_ssid, xdr_word(index) + xdr_string_bytes("Home")));
        add_reply(&frames, reply_of(index, 0, xdr_word(0)));
    }
    std::vector<std::string> lines = tshark_lines(
        frames,
        "-Y 'wlan_config.operation == \"setSsid\" && (wlan_config.arg.index == 3 || wlan_config.return_code == 0)' "
        "-T fields -e frame.number -e _ws.col.Protocol -e _ws.col.Info");
    EXPECT_EQ(lines, (std::vector<std::string>{"2\tWLAN_CONFIG\tReply setSsid success",
                                               "3\tWLAN_CONFIG\tCall setSsid index=3 ssid=\"Home\"",
                                               "4\tWLAN_CONFIG\tReply setSsid success"}));
}

}  // namespace
