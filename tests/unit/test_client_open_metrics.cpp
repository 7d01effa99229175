// Facts as OpenMetrics text: names, types and units, labels, numbers in base units, and what has no line.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

#include "client/open_metrics.h"

namespace {

std::string text_of(const value *facts) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    print_open_metrics(stream, facts);
    fclose(stream);
    std::string copy(text, size);
    free(text);
    return copy;
}

class OpenMetrics : public testing::Test {
protected:
    void SetUp() override {
        facts = new_object();
        add_boolean(facts, "up", true);
        radio = add_object(add_list(facts, "radios"), nullptr);
        add_number(radio, "radio", 1);
        vap = add_object(add_list(facts, "vaps"), nullptr);
        add_number(vap, "vap", 9);
    }
    void TearDown() override {
        free_value(facts);
    }

    // The lines of the text that begin with a word, without their heads.
    std::string samples(const std::string &beginning) const {
        std::istringstream lines(text_of(facts));
        std::string found;
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with(beginning))
                found += line + "\n";
        return found;
    }

    value *facts;
    value *radio;
    value *vap;
};

TEST_F(OpenMetrics, ServerThatDoesNotAnswerIsAllThereIsToSay) {
    value *down = new_object();
    add_boolean(down, "up", false);
    EXPECT_EQ(text_of(down),
              "# HELP wlan_config_up Whether the Wi-Fi configuration server answered.\n"
              "# TYPE wlan_config_up gauge\n"
              "wlan_config_up 0\n"
              "# EOF\n");
    free_value(down);
}

TEST_F(OpenMetrics, SubjectOfWhichNothingIsKnownHasItsInfoOnly) {
    EXPECT_EQ(text_of(facts),
              "# HELP wlan_config_up Whether the Wi-Fi configuration server answered.\n"
              "# TYPE wlan_config_up gauge\n"
              "wlan_config_up 1\n"
              "# HELP wlan_radio_info What a radio is.\n"
              "# TYPE wlan_radio_info gauge\n"
              "wlan_radio_info{radio=\"1\"} 1\n"
              "# HELP wlan_vap_info What a VAP is.\n"
              "# TYPE wlan_vap_info gauge\n"
              "wlan_vap_info{vap=\"9\"} 1\n"
              "# EOF\n");
}

TEST_F(OpenMetrics, CounterHasItsSuffixOnItsLineAndItsUnitInItsHead) {
    add_number(vap, "tx_bytes", 4294967295);
    std::string text = text_of(facts);
    EXPECT_NE(text.find("# HELP wlan_vap_transmitted_bytes Bytes that a VAP has sent.\n"
                        "# TYPE wlan_vap_transmitted_bytes counter\n"
                        "# UNIT wlan_vap_transmitted_bytes bytes\n"
                        "wlan_vap_transmitted_bytes_total{vap=\"9\"} 4294967295\n"),
              std::string::npos)
        << text;
}

TEST_F(OpenMetrics, ZeroHasALine) {
    add_number(vap, "stations", 0);
    add_number(vap, "rx_errors", 0);
    add_boolean(vap, "enabled", false);
    EXPECT_EQ(samples("wlan_vap_stations"), "wlan_vap_stations{vap=\"9\"} 0\n");
    EXPECT_EQ(samples("wlan_vap_receive_errors"), "wlan_vap_receive_errors_total{vap=\"9\"} 0\n");
    EXPECT_EQ(samples("wlan_vap_enabled"), "wlan_vap_enabled{vap=\"9\"} 0\n");
}

TEST_F(OpenMetrics, WhatIsNotKnownHasNeitherLineNorHead) {
    std::string before = text_of(facts);
    add_nothing(vap, "stations");
    add_nothing(vap, "tx_bytes");
    add_nothing(radio, "utilisation");
    add_nothing(radio, "noise_floor");
    add_nothing(radio, "rssi_histogram");
    EXPECT_EQ(text_of(facts), before);
}

TEST_F(OpenMetrics, PercentagesAreRatios) {
    add_number(radio, "utilisation", 35);
    add_number(radio, "activity", 5);
    add_number(radio, "busy", 100);
    add_number(radio, "retransmission", 0);
    EXPECT_EQ(samples("wlan_radio_utilisation"), "wlan_radio_utilisation_ratio{radio=\"1\"} 0.35\n");
    EXPECT_EQ(samples("wlan_radio_activity"), "wlan_radio_activity_ratio{radio=\"1\"} 0.05\n");
    EXPECT_EQ(samples("wlan_radio_busy"), "wlan_radio_busy_ratio{radio=\"1\"} 1.00\n");
    EXPECT_EQ(samples("wlan_radio_retransmission"), "wlan_radio_retransmission_ratio{radio=\"1\"} 0.00\n");
}

TEST_F(OpenMetrics, WidthIsInHertz) {
    add_number(radio, "width", 80);
    EXPECT_EQ(samples("wlan_radio_channel_width"), "wlan_radio_channel_width_hertz{radio=\"1\"} 80000000\n");
}

TEST_F(OpenMetrics, NoiseFloorHasAFamilyAStatistic) {
    value *floor = add_object(radio, "noise_floor");
    add_number(floor, "minimum", -98);
    add_number(floor, "maximum", -90);
    add_nothing(floor, "median");
    add_number(floor, "average", -94);
    EXPECT_EQ(samples("wlan_radio_noise_floor"),
              "wlan_radio_noise_floor_minimum_dbm{radio=\"1\"} -98\n"
              "wlan_radio_noise_floor_maximum_dbm{radio=\"1\"} -90\n"
              "wlan_radio_noise_floor_average_dbm{radio=\"1\"} -94\n");
}

TEST_F(OpenMetrics, HistogramHasALineAnEntryThatIsKnown) {
    value *histogram = add_list(radio, "rssi_histogram");
    for (int i = 0; i < 3; i++) {
        value *entry = add_object(histogram, nullptr);
        add_number(entry, "rssi", int64_t{2} * i);
        if (i == 1)
            add_nothing(entry, "stations");
        else
            add_number(entry, "stations", i);
    }
    EXPECT_EQ(samples("wlan_radio_rssi"),
              "wlan_radio_rssi_stations{radio=\"1\",rssi=\"0\"} 0\n"
              "wlan_radio_rssi_stations{radio=\"1\",rssi=\"4\"} 2\n");
}

TEST_F(OpenMetrics, InfoHasWhatIsKnownAsLabels) {
    add_string(radio, "standard", "anac");
    add_string(vap, "interface", "ath8");
    add_string(vap, "ssid", "");
    add_nothing(vap, "bssid");
    add_string(vap, "security", "WPA/WPA2-PSK");
    add_number(vap, "radio", 1);
    EXPECT_EQ(samples("wlan_radio_info"), "wlan_radio_info{radio=\"1\",standard=\"anac\"} 1\n");
    EXPECT_EQ(samples("wlan_vap_info"),
              "wlan_vap_info{vap=\"9\",radio=\"1\",interface=\"ath8\",ssid=\"\",security=\"WPA/WPA2-PSK\"} 1\n");
}

TEST_F(OpenMetrics, LabelsAreEscaped) {
    add_string(vap, "ssid", "a\"b\\c\nd{e},f=g");
    EXPECT_EQ(samples("wlan_vap_info"), "wlan_vap_info{vap=\"9\",ssid=\"a\\\"b\\\\c\\nd{e},f=g\"} 1\n");
}

TEST_F(OpenMetrics, EachByteOfALabelThatIsNoUtf8IsReplaced) {
    add_string(vap, "ssid", "K\xc3\xbc\xff\xc3");
    EXPECT_EQ(samples("wlan_vap_info"), "wlan_vap_info{vap=\"9\",ssid=\"K\xc3\xbc\xef\xbf\xbd\xef\xbf\xbd\"} 1\n");
}

TEST_F(OpenMetrics, LinesOfAFamilyStandTogether) {
    value *other = add_object(const_cast<value *>(find_member(facts, "vaps")), nullptr);
    add_number(other, "vap", 10);
    for (value *one : {vap, other}) {
        add_number(one, "tx_packets", 1);
        add_number(one, "rx_packets", 2);
    }
    EXPECT_EQ(samples("wlan_vap_transmitted_packets") + samples("wlan_vap_received_packets"),
              "wlan_vap_transmitted_packets_total{vap=\"9\"} 1\n"
              "wlan_vap_transmitted_packets_total{vap=\"10\"} 1\n"
              "wlan_vap_received_packets_total{vap=\"9\"} 2\n"
              "wlan_vap_received_packets_total{vap=\"10\"} 2\n");
    std::istringstream lines(text_of(facts));
    std::set<std::string> heads;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("# ")) {
            EXPECT_TRUE(heads.insert(line).second) << line << " twice";
        }
}

}  // namespace
