// The driver's airtime table, the counters of stations and `wlanconfig`, as the tests of the rooms that read them need
// them. The bytes are laid out here by their offsets, without the records of the code under test.
//
// Touches what the fake driver and the fake tools touch: see tests/support/driver.h and tests/support/platform.h.
#pragma once

#include <errno.h>
#include <gtest/gtest.h>
#include <linux/wireless.h>
#include <string.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/driver.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"

constexpr size_t TABLE_SIZE = 5824;
constexpr size_t INFO_SIZE = 88;
constexpr size_t COUNTERS_SIZE = 36;

template <typename Number>
std::string host_bytes(Number number) {
    return {reinterpret_cast<const char *>(&number), sizeof(number)};
}

inline void put_bytes(std::string *record, size_t offset, const std::string &bytes) {
    ASSERT_LE(offset + bytes.size(), record->size());
    record->replace(offset, bytes.size(), bytes);
}

template <typename Number>
Number number_at(const void *record, size_t offset) {
    Number number;
    memcpy(&number, static_cast<const char *>(record) + offset, sizeof(number));
    return number;
}

inline std::string bytes_at(const void *record, size_t offset, size_t size) {
    return {static_cast<const char *>(record) + offset, size};
}

// A row of the driver's table. Names may be as long as their fields; a station's MAC is 02:00:00:00:00 and its number.
struct table_row {
    bool is_station;
    std::string ssid;
    std::string group;
    uint8_t station;
    uint8_t active;
    uint32_t value;
    uint32_t cfg_value;
};

inline table_row ssid_row(const std::string &ssid, uint32_t cfg_value = 0, const std::string &group = "") {
    return {false, ssid, group, 0, 0, 0, cfg_value};
}

inline table_row station_row(uint8_t station, uint32_t value = 0, const std::string &ssid = "net") {
    return {true, ssid, "", station, 1, value, 0};
}

inline table_row idle_row(uint8_t station, uint32_t value = 0, const std::string &ssid = "net") {
    return {true, ssid, "", station, 0, value, 0};
}

inline std::string mac_text(uint8_t station) {
    char text[18];
    snprintf(text, sizeof(text), "02:00:00:00:00:%02x", station);
    return text;
}

inline std::string bare_mac_text(uint8_t station) {
    std::string text = mac_text(station);
    std::erase(text, ':');
    return text;
}

inline std::string info_bytes(const table_row &row) {
    std::string info(INFO_SIZE, '\0');
    put_bytes(&info, 0, row.ssid.substr(0, 33));
    put_bytes(&info, 33, std::string("\x02\0\0\0\0", 5) + static_cast<char>(row.station));
    put_bytes(&info, 40, host_bytes(row.value));
    put_bytes(&info, 44, std::string(1, row.is_station ? '\1' : '\0'));
    put_bytes(&info, 45, std::string(1, static_cast<char>(row.active)));
    put_bytes(&info, 48, host_bytes(row.cfg_value));
    put_bytes(&info, 52, row.group.substr(0, 36));
    return info;
}

// A table, by default of as many rows as there are, at work, named by SSID.
struct table_head {
    int count = -1;  // what the driver says, -1: as many as there are
    uint8_t status = 1;
    uint32_t show_group = 0;
};

inline std::string table_bytes(const std::vector<table_row> &rows, const table_head &head = {}) {
    std::string table(TABLE_SIZE, '\0');
    size_t offset = 4;
    for (const table_row &row : rows) {
        put_bytes(&table, offset, info_bytes(row));
        offset += INFO_SIZE;
    }
    int count = head.count < 0 ? static_cast<int>(rows.size()) : head.count;
    put_bytes(&table, 5812, host_bytes(static_cast<uint16_t>(count)));
    put_bytes(&table, 5814, std::string(1, static_cast<char>(head.status)));
    put_bytes(&table, 5820, host_bytes(head.show_group));
    return table;
}

struct counters {
    uint32_t short_average;
    uint64_t airtime;
    uint32_t total;
    uint32_t act_tokens;
    uint32_t unused;
};

// The counters as the driver's answer to a request.
inline std::string counters_bytes(const counters &numbers, std::string request) {
    put_bytes(&request, 12, host_bytes(numbers.short_average));
    put_bytes(&request, 16, host_bytes(numbers.airtime));
    put_bytes(&request, 24, host_bytes(numbers.total));
    put_bytes(&request, 28, host_bytes(numbers.act_tokens));
    put_bytes(&request, 32, host_bytes(numbers.unused));
    return request;
}

// What the driver knows, by interface. Interfaces that are not named have no rows and no SSID.
struct airtime_driver {
    std::map<std::string, std::string> tables;
    std::map<std::string, std::string> ssids;
    std::map<std::string, int> ssid_lengths;  // where the driver does not tell the SSID's own
    std::map<std::string, counters> stations;
    std::set<std::string> refused;  // questions that fail: "ssid ath0", "table ath0", "counters ath0"

    // From now on the driver answers so; each question is a step too (tests/support/steps.h).
    void answer() {
        answer_request = [this](const seen_request &request) { return answer_one(request); };
    }

private:
    request_answer answer_one(const seen_request &request) {
        const char *subject = request.request == SIOCGIWESSID ? "ssid"
                              : request.length == TABLE_SIZE  ? "table"
                                                              : "counters";
        std::string question = std::string(subject) + " " + request.interface;
        record_step(question);
        if (refused.contains(question)) {
            return REFUSED(EOPNOTSUPP);
        }
        if (request.request == SIOCGIWESSID) {
            const std::string &ssid = ssids[request.interface];
            auto length = ssid_lengths.find(request.interface);
            return {0, 0, ssid, length == ssid_lengths.end() ? static_cast<int>(ssid.size()) : length->second};
        }
        if (request.length == TABLE_SIZE) {
            return ANSWERED(tables[request.interface]);
        }
        EXPECT_EQ(request.length, COUNTERS_SIZE);
        return ANSWERED(counters_bytes(stations[request.interface], request.bytes));
    }
};

// --- wlanconfig ---

constexpr const char WLANCONFIG_ANSWERS[] = "/tmp/fake_tools/wlanconfig_answers";

// A `wlanconfig` that prints what it is told for an interface and a subject, "list" or "atfstat", and nothing else.
inline void install_wlanconfig() {
    std::string path = std::string(FAKE_TOOLS) + "/wlanconfig";
    std::error_code error;
    std::filesystem::create_directory(WLANCONFIG_ANSWERS, error);
    write_file(path, std::string("#!/bin/sh\n"
                                 "answer=") +
                         WLANCONFIG_ANSWERS +
                         "/$1.$2\n"
                         "if [ -f \"$answer\" ]; then cat \"$answer\"; fi\n");
    ASSERT_EQ(chmod(path.c_str(), 0755), 0) << strerror(errno);
}

inline void wlanconfig_prints(const std::string &interface, const std::string &subject, const std::string &text) {
    write_file(std::string(WLANCONFIG_ANSWERS) + "/" + interface + "." + subject, text);
}

// The list of an interface with these stations, as the tool prints it.
inline void connect_stations(const std::string &interface, const std::vector<uint8_t> &stations) {
    std::string list = "ADDR               AID CHAN TXRATE RXRATE RSSI\n";
    for (uint8_t station : stations) {
        list += mac_text(station) + "    1    6    65M     54M   40\n";
    }
    wlanconfig_prints(interface, "list", list);
}

inline void print_airtime(const std::string &interface, const std::string &short_average, const std::string &total) {
    wlanconfig_prints(interface, "atfstat", "shortavg " + short_average + ", total " + total + "\n");
}

// Every step that a block takes: what it asks of the driver, what it runs.
template <typename Block>
step_list steps_of(Block block) {
    begin_steps();
    block();
    end_steps();
    return recorded_steps();
}

// Steps that contain this fail.
inline step_rules refusing(const std::string &part) {
    step_rules rules;
    rules.refused = part;
    return rules;
}
