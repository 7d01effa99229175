// Datagrams that end anywhere, and captures that keep only their beginnings: never an error of the script, and what is
// there is shown. Every dissection fails its test when it has a Lua error anywhere.
#include <gtest/gtest.h>

#include <random>

#include "client/operations.h"
#include "server/wire.h"
#include "tests/dissector/dissection.h"

namespace {

bytes call_of(uint32_t xid, uint32_t procedure) {
    return call_header(xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure);
}

bytes reply_header(uint32_t xid) {
    bytes reply;
    for (uint32_t word : {xid, 1u, 0u, 0u, 0u, 0u})
        reply += xdr_word(word);
    return reply;
}

// One result of each kind, with lists that have entries.
struct sample_result {
    uint32_t procedure;
    bytes result;
};

bytes list_of_two(size_t size) {
    bytes list(size, '\x41');
    list.replace(0, 4, bytes("\2\0\0\0", 4));
    return xdr_word(0) + xdr_word(0) + xdr_string_bytes(list);
}

bytes integers(uint32_t count) {
    return xdr_word(0) + xdr_word(count) + bytes(4 * count, '\1') + xdr_word(0);
}

std::vector<sample_result> sample_results() {
    return {{PROC_wlan_set_ssid, xdr_word(0)},
            {PROC_wlan_get_ssid, xdr_word(0) + xdr_word(0) + xdr_string_bytes(bytes("network\0", 8))},
            {PROC_wlan_get_channel, integers(4)},
            {PROC_wlan_get_radio_tx_packets, integers(8)},
            {PROC_wlan_get_basic_stats, integers(20)},
            {PROC_wlan_get_assoc_device, list_of_two(sizeof(wlan_device_t))},
            {PROC_wlan_get_ap_scan_result, list_of_two(sizeof(scan_table))},
            {PROC_wlan_get_softblock_black_list, list_of_two(sizeof(wlan_sb_station_list_t))},
            {PROC_wlan_get_bs_bss_2g_temp_blacklist_table,
             xdr_word(0) + xdr_word(4) + bytes(16, '\0') + list_of_two(2048).substr(8)}};
}

// Every length of what is short; of a large record every length of its beginning and its end, and some between.
std::vector<size_t> lengths_of(size_t size) {
    constexpr size_t edge = 120, stride = 211;
    std::vector<size_t> lengths;
    for (size_t length = 0; length < size; length += length < edge || length + 8 > size ? 1 : stride)
        lengths.push_back(length);
    return lengths;
}

// A reply that is known from here on: it has a message type.
constexpr size_t REPLY_KNOWN = 8;

// What was cut, and where: the frame, and the bytes that are left of the datagram.
struct cut {
    size_t frame;
    size_t length;
};

// All cuts are in one capture, which is dissected once.
struct cut_datagrams {
    capture frames;
    size_t whole_call;
    std::vector<cut> calls, replies, captures;
    std::vector<dissected_frame> dissected;
};

void add_cut_calls(cut_datagrams *all) {
    bytes arguments = xdr_word(1) + xdr_string_bytes("02:00:00:00:00:01") + xdr_string_bytes("list");
    bytes whole = call_of(1, PROC_wlan_set_mac_address_control_add) + arguments;
    for (size_t length = 0; length < whole.size(); length++)
        all->calls.push_back({add_call(&all->frames, whole.substr(0, length)), length});
    all->whole_call = add_call(&all->frames, whole);
}

// Of each reply one that ends early, and one of which the capture has the beginning only.
void add_cut_replies(cut_datagrams *all) {
    uint32_t xid = 100;
    for (const sample_result &sample : sample_results())
        for (size_t length : lengths_of(24 + sample.result.size())) {
            add_call(&all->frames, call_of(++xid, sample.procedure) + bytes(16, '\0'));
            bytes ending = (reply_header(xid) + sample.result).substr(0, length);
            all->replies.push_back({add_reply(&all->frames, ending), length});
            add_call(&all->frames, call_of(++xid, sample.procedure) + bytes(16, '\0'));
            bytes whole = reply_header(xid) + sample.result;
            all->captures.push_back({add_reply(&all->frames, whole), length});
            all->frames.back().missing = whole.size() - length;
        }
}

const cut_datagrams &datagrams() {
    static cut_datagrams all;
    if (all.frames.empty()) {
        add_cut_calls(&all);
        add_cut_replies(&all);
        all.dissected = dissect(all.frames);
    }
    return all;
}

TEST(CutDatagram, OfACallIsMalformedAtEveryLength) {
    constexpr size_t known = 16;  // with the program
    for (cut call : datagrams().calls) {
        const dissected_frame &frame = datagrams().dissected[call.frame - 1];
        EXPECT_EQ(!frame.title.empty(), call.length >= known) << call.length;
        EXPECT_EQ(frame.problems.contains("malformed"), call.length >= known) << call.length;
        EXPECT_EQ(frame.title.ends_with(" [malformed]"), call.length >= known) << call.length;
    }
    EXPECT_FALSE(datagrams().dissected[datagrams().whole_call - 1].problems.contains("malformed"));
}

TEST(CutDatagram, OfAReplyIsMalformedAtEveryLength) {
    for (cut reply : datagrams().replies) {
        const dissected_frame &frame = datagrams().dissected[reply.frame - 1];
        EXPECT_EQ(!frame.title.empty(), reply.length >= REPLY_KNOWN) << reply.length;
        EXPECT_EQ(frame.problems.contains("malformed"), reply.length >= REPLY_KNOWN) << frame.title << reply.length;
    }
}

TEST(CutDatagram, IsTheCapturesFaultWhenTheDatagramWasWhole) {
    for (cut reply : datagrams().captures) {
        const dissected_frame &frame = datagrams().dissected[reply.frame - 1];
        EXPECT_FALSE(frame.problems.contains("malformed")) << frame.title << reply.length;
        EXPECT_EQ(frame.problems.contains("cut"), reply.length >= REPLY_KNOWN) << frame.title << reply.length;
    }
}

TEST(CutDatagram, StillShowsTheEntriesThatItHas) {
    capture frames;
    add_call(&frames, call_of(1, PROC_wlan_get_ap_scan_result) + xdr_word(1));
    add_reply(&frames, reply_header(1) + list_of_two(sizeof(scan_table)));
    // Header, code, no integers, length; the table's count; the first entry and a part of the second.
    frames.back().missing = frames.back().content.size() - (24 + 12 + 4 + sizeof(scan_entry) + 40);
    dissected_frame reply = dissect(frames)[1];
    EXPECT_EQ(reply["wlan_config.scan_table.num_entries"], "2");
    EXPECT_EQ(reply["wlan_config.scan_entry.bssid"], "41:41:41:41:41:41");
    EXPECT_EQ(reply["wlan_config.scan_entry.scan_byte_4"], "65");
    size_t entries = 0;
    for (const dissected_field &field : reply.fields)
        entries += field.name == "wlan_config.scan_entry";
    EXPECT_EQ(entries, 1u) << "the second is not whole";
}

// Calls and replies with any content behind a header that is right.
TEST(CutDatagram, WithAnythingBehindItsHeaderIsDissectedWithoutAnError) {
    std::mt19937 random(20131337);
    capture frames;
    for (size_t i = 0; i < procedure_row_count; i++) {
        bytes call(random() % 40, '\0'), reply(random() % 120, '\0');
        for (bytes *content : {&call, &reply})
            for (char &byte : *content)
                byte = static_cast<char>(random() % 4 ? random() % 3 : random());
        uint32_t xid = procedure_rows[i].number;
        add_call(&frames, call_of(xid, xid) + call);
        add_reply(&frames, reply_header(xid) + reply);
        add_reply(&frames, reply_header(xid + 0x20000000) + reply);
        add_reply(&frames, reply_header(xid).substr(0, 8) + reply);
    }
    EXPECT_EQ(dissect(frames).size(), 4 * procedure_row_count);
}

}  // namespace
