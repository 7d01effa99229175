// Every argument and every output has a meaning, every meaning is used, and the examples are values that are taken.
#include "client/meanings.h"

#include <gtest/gtest.h>
#include <string.h>

#include <functional>
#include <set>
#include <string>

#include "client/arguments.h"
#include "tests/support/client_runs.h"

namespace {

// Names of a row's outputs.
std::set<std::string> outputs_of(const procedure_row &row) {
    std::set<std::string> names;
    for (size_t i = 0; i < row.result.output_count; i++)
        names.insert(row.result.outputs[i].name);
    if (*row.result.name)
        names.insert(row.result.name);
    if (row.result.kind == result_kind::COUNTED_IMAGE)
        names.insert("count");
    return names;
}

std::set<std::string> names_of(const procedure_row &row) {
    std::set<std::string> names = outputs_of(row);
    for (size_t i = 0; i < row.argument_count; i++)
        names.insert(row.arguments[i].name);
    return names;
}

void for_each_name(const std::function<void(const procedure_row &, const std::string &)> &look) {
    for (size_t i = 0; i < procedure_row_count; i++)
        for (const std::string &name : names_of(procedure_rows[i]))
            look(procedure_rows[i], name);
}

void for_each_argument(
    const std::function<void(const procedure_row &, const argument_row &, const meaning_row &)> &look) {
    for (size_t i = 0; i < procedure_row_count; i++)
        for (size_t j = 0; j < procedure_rows[i].argument_count; j++) {
            const argument_row &argument = procedure_rows[i].arguments[j];
            look(procedure_rows[i], argument, *meaning_of(&procedure_rows[i], argument.name));
        }
}

TEST(ClientMeanings, EveryArgumentAndEveryOutputHasOne) {
    for_each_name([](const procedure_row &row, const std::string &name) {
        const meaning_row *meaning = meaning_of(&row, name.c_str());
        ASSERT_NE(meaning, nullptr) << row.name << " " << name;
        EXPECT_STRNE(meaning->meaning, "") << row.name << " " << name;
    });
}

TEST(ClientMeanings, EveryMeaningIsUsed) {
    std::set<const meaning_row *> used;
    for_each_name(
        [&](const procedure_row &row, const std::string &name) { used.insert(meaning_of(&row, name.c_str())); });
    for (size_t i = 0; i < meaning_row_count; i++)
        EXPECT_TRUE(used.contains(&meaning_rows[i])) << meaning_rows[i].label;
}

TEST(ClientMeanings, NoLabelStandsTwice) {
    std::set<std::string> labels;
    for (size_t i = 0; i < meaning_row_count; i++)
        EXPECT_TRUE(labels.insert(meaning_rows[i].label).second) << meaning_rows[i].label;
}

TEST(ClientMeanings, EveryExceptionOfAProcedureIsOneOfItsNamesAndSaysSomethingElse) {
    std::set<std::string> seen;
    for (size_t i = 0; i < procedure_meaning_count; i++) {
        const meaning_exception &exception = procedure_meanings[i];
        std::string key = std::string(exception.where) + " " + exception.name;
        EXPECT_TRUE(seen.insert(key).second) << key << " twice";
        EXPECT_TRUE(names_of(*row_named(exception.where)).contains(exception.name)) << key;
        EXPECT_STREQ(meaning_of(row_named(exception.where), exception.name)->label, exception.label) << key;
        // Without the exception the procedure would have another meaning.
        std::string general = exception.name;
        for (size_t j = 0; j < room_meaning_count; j++)
            if (strcmp(room_meanings[j].where, row_named(exception.where)->room) == 0 &&
                strcmp(room_meanings[j].name, exception.name) == 0)
                general = room_meanings[j].label;
        EXPECT_NE(general, exception.label) << key;
    }
}

TEST(ClientMeanings, EveryExceptionOfARoomIsUsed) {
    for (size_t i = 0; i < room_meaning_count; i++) {
        bool used = false;
        for_each_name([&](const procedure_row &row, const std::string &name) {
            used = used || (strcmp(row.room, room_meanings[i].where) == 0 && name == room_meanings[i].name &&
                            strcmp(meaning_of(&row, name.c_str())->label, room_meanings[i].label) == 0);
        });
        EXPECT_TRUE(used) << room_meanings[i].where << " " << room_meanings[i].name;
    }
}

TEST(ClientMeanings, NameThatNoTableHasMeansNothing) {
    EXPECT_EQ(meaning_of(row_named("wlan_get_ssid"), "xylophone"), nullptr);
}

TEST(ClientMeanings, ExampleOfAnArgumentIsOneOfItsKind) {
    for_each_argument([](const procedure_row &row, const argument_row &argument, const meaning_row &meaning) {
        std::string example = meaning.example;
        argument_value value;
        EXPECT_FALSE(example.empty()) << row.name << " " << argument.name;
        EXPECT_TRUE(parse_argument(argument.kind, example.data(), &value)) << row.name << " " << argument.name;
    });
}

TEST(ClientMeanings, ExampleOfANumberLiesInItsRange) {
    for_each_argument([](const procedure_row &row, const argument_row &argument, const meaning_row &meaning) {
        if (meaning.range.kind != range_kind::NUMBERS && meaning.range.kind != range_kind::EITHER)
            return;
        int64_t example = atoll(meaning.example);
        EXPECT_GE(example, meaning.range.least) << row.name << " " << argument.name;
        EXPECT_LE(example, meaning.range.most) << row.name << " " << argument.name;
    });
}

TEST(ClientMeanings, RangesAreInOrder) {
    for (size_t i = 0; i < meaning_row_count; i++) {
        const value_range &range = meaning_rows[i].range;
        EXPECT_LE(range.lowest, range.least) << meaning_rows[i].label;
        EXPECT_LE(range.least, range.most) << meaning_rows[i].label;
        EXPECT_LE(range.most, range.highest) << meaning_rows[i].label;
    }
}

TEST(ClientMeanings, NumbersAndTextsHaveRangesOfTheirOwn) {
    for_each_argument([](const procedure_row &row, const argument_row &argument, const meaning_row &meaning) {
        bool of_text = meaning.range.kind == range_kind::WORDS || meaning.range.kind == range_kind::FORM ||
                       meaning.range.kind == range_kind::LENGTH;
        bool of_number = meaning.range.kind == range_kind::NUMBERS || meaning.range.kind == range_kind::EITHER;
        EXPECT_FALSE(of_text && argument.kind != argument_kind::TEXT) << row.name << " " << argument.name;
        EXPECT_FALSE(of_number && argument.kind == argument_kind::TEXT) << row.name << " " << argument.name;
    });
}

TEST(ClientMeanings, IgnoredArgumentsAreUnused) {
    for_each_argument([](const procedure_row &row, const argument_row &argument, const meaning_row &meaning) {
        if (argument.kind == argument_kind::IGNORED) {
            EXPECT_EQ(meaning.range.kind, range_kind::UNUSED) << row.name << " " << argument.name;
        }
    });
}

TEST(ClientMeanings, SummaryThatNamesAUnitAgreesWithIt) {
    const std::pair<const char *, const char *> units[] = {{" in seconds", "s"},   {" in dBm", "dBm"},
                                                           {" in TU", "TU"},       {" in percent", "%"},
                                                           {" in bytes", "bytes"}, {" in Mbit/s", "Mbit/s"}};
    for_each_name([&](const procedure_row &row, const std::string &name) {
        for (auto [words, unit] : units)
            if (strstr(row.summary, words) && meaning_of(&row, name.c_str())->range.kind != range_kind::UNUSED &&
                !name.starts_with("index")) {
                EXPECT_STREQ(meaning_of(&row, name.c_str())->unit, unit) << row.name << " " << name;
            }
    });
}

TEST(ClientMeanings, FailingExamplesAreProcedures) {
    for (size_t i = 0; i < failing_example_count; i++)
        EXPECT_STREQ(why_example_fails(row_named(failing_examples[i].procedure)), failing_examples[i].why);
    EXPECT_EQ(why_example_fails(row_named("wlan_get_ssid")), nullptr);
}

std::string accepted_by(const char *procedure, size_t place) {
    const procedure_row *row = row_named(procedure);
    const argument_row *argument = &row->arguments[place];
    return written([&](FILE *out) { print_accepted(out, argument, &meaning_of(row, argument->name)->range); });
}

TEST(ClientMeanings, RangeIsToldWithWhatBecomesOfOthers) {
    EXPECT_EQ(accepted_by("wlan_get_channel", 0), "1 to 16; below 0 fails");
    EXPECT_EQ(accepted_by("wlan_get_name", 0), "1 to 16; below 1 fails");
    EXPECT_EQ(accepted_by("wlan_get_enable", 0), "1 to 16; any other is taken as it is");
    EXPECT_EQ(accepted_by("wlan_set_transmit_power", 0), "1 to 16; below 0 has no effect");
    EXPECT_EQ(accepted_by("wlan_get_bs_inactivity_steer_time", 0), "1 to 16; below 1 or above 17 fails");
    EXPECT_EQ(accepted_by("wlan_set_airtime_enable", 0), "1 or 9; any other fails");
    EXPECT_EQ(accepted_by("wlan_set_implicit_beamforming_enable", 0), "0; any other fails");
    EXPECT_EQ(accepted_by("wlan_set_channel_bw", 1), "0 to 3; any other counts as 3");
    EXPECT_EQ(accepted_by("wlan_set_guard_interval", 1), "0 or 1; any other is taken as it is");
    EXPECT_EQ(accepted_by("wlan_set_radius_reauth_interval", 1), "0 or more; any other is taken as it is");
    EXPECT_EQ(accepted_by("wlan_set_bs_2g_rssi_low_limit_threshold", 0), "-255 to 0; any other fails");
    EXPECT_EQ(accepted_by("wlan_set_beacon_type", 1), "None, Basic, WPA, 11i, WPAand11i; any other has no effect");
    EXPECT_EQ(accepted_by("wlan_set_ssid", 1), "1 to 32 bytes; what is beyond 32 is cut off");
    EXPECT_EQ(accepted_by("wlan_set_max_bitrate", 1), "any text, which is passed over");
    EXPECT_EQ(accepted_by("wlan_load", 0), "any number, which is passed over");
    EXPECT_EQ(accepted_by("wlan_set_enable", 1), "1, true, on or yes, or 0, false, off or no");
    EXPECT_EQ(accepted_by("wlan_set_softblock_selector_mask", 1), "a number from 0 to 4294967295");
}

TEST(ClientMeanings, ExampleQuotesWhatAShellWouldTakeApart) {
    auto example = [](const char *procedure) {
        return written([&](FILE *out) { print_example(out, row_named(procedure)); });
    };
    EXPECT_EQ(example("wlan_set_ssid"), "vlk_rpc_wlan_config_client setSsid 1 \"Guest network\"");
    EXPECT_EQ(example("wlan_set_wps_config_methods_enabled"),
              "vlk_rpc_wlan_config_client setWpsConfigMethodsEnabled 1 \"Label,PushButton\"");
    EXPECT_EQ(example("wlan_get_bs_enable"), "vlk_rpc_wlan_config_client getBsEnable");
}

TEST(ClientMeanings, NoExampleHasACharacterThatQuotesDoNotProtect) {
    for (size_t i = 0; i < meaning_row_count; i++)
        EXPECT_EQ(strpbrk(meaning_rows[i].example, "\"\\$`\n!"), nullptr) << meaning_rows[i].label;
}

}  // namespace
