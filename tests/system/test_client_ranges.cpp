// What server/meanings.def says of values outside the ranges, at the real server: which it refuses, and which have no
// effect or are cut.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "tests/support/examples.h"
#include "tests/system/gateway.h"

namespace {

constexpr const char STORE[] = "/tmp/.apcfg";

// An argument whose range is proved, in a call whose other arguments are examples.
struct probe {
    const procedure_row *row;
    size_t place;
    const value_range *range;
};

std::vector<probe> probes(range_kind kind, outside_kind outside) {
    std::vector<probe> found;
    for (const procedure_row *row : rows_in_working_order())
        for (size_t i = 0; i < row->argument_count; i++) {
            const meaning_row *meaning = meaning_of(row, row->arguments[i].name);
            if (meaning && meaning->range.kind == kind && meaning->range.outside == outside)
                found.push_back({row, i, &meaning->range});
        }
    return found;
}

std::vector<probe> number_probes(outside_kind outside) {
    std::vector<probe> found = probes(range_kind::NUMBERS, outside);
    std::vector<probe> either = probes(range_kind::EITHER, outside);
    found.insert(found.end(), either.begin(), either.end());
    return found;
}

int code_with(const probe &one, const std::string &word) {
    std::vector<std::string> words = example_words(*one.row);
    words[one.place] = word;
    call_reply reply = call(one.row->number, encoded_arguments(*one.row, words));
    EXPECT_EQ(reply.outcome, call_outcome::SUCCESS) << one.row->name;
    return one.row->result.kind == result_kind::CODE ? code_of(reply) : result_of(reply).code;
}

std::string told(const probe &one, const std::string &word) {
    return std::string(one.row->name) + " with " + one.row->arguments[one.place].name + " " + word;
}

// Whether a number can be sent as an argument of this kind.
bool travels(argument_kind kind, int64_t number) {
    bool natural = kind == argument_kind::UINT || kind == argument_kind::USHORT || kind == argument_kind::BOOL;
    return natural ? number >= 0 : number >= INT32_MIN && number <= INT32_MAX;
}

std::vector<std::string> just_outside(const probe &one) {
    std::vector<std::string> words;
    for (int64_t number : {one.range->lowest - 1, one.range->highest + 1})
        if (travels(one.row->arguments[one.place].kind, number))
            words.push_back(std::to_string(number));
    if (one.range->kind == range_kind::EITHER)
        words.push_back(std::to_string(one.range->least + 1));
    return words;
}

// The numbers within a range that are next to its ends. Not of VAPs and stations, which have to be there as well: that
// those of the examples are taken is proved by the examples.
std::vector<std::string> just_inside(const probe &one) {
    const argument_row &argument = one.row->arguments[one.place];
    bool is_place = argument.kind == argument_kind::VAP || strcmp(argument.name, "device") == 0 ||
                    strcmp(argument.name, "station") == 0;
    if (is_place && one.range->kind == range_kind::NUMBERS)
        return {};
    return {std::to_string(one.range->least), std::to_string(one.range->most)};
}

class ClientRanges : public testing::Test {
protected:
    void SetUp() override {
        kept.emplace();
        restart_driver();
        for (const procedure_row *row : rows_in_working_order())
            if (!is_getter(*row) && !takes_away(*row))
                call(row->number, encoded_arguments(*row, example_words(*row)));
    }

    void TearDown() override {
        run_command("killall -q radstat0");
        kept->put_back();
        restart_driver();
    }

    std::optional<kept_settings> kept;
};

TEST_F(ClientRanges, NumberJustOutsideARefusingRangeFailsAndChangesNothing) {
    ASSERT_GT(number_probes(outside_kind::REFUSED).size(), 100u);
    for (const probe &one : number_probes(outside_kind::REFUSED))
        for (const std::string &word : just_outside(one)) {
            std::string before = read_file(STORE);
            EXPECT_NE(code_with(one, word), 0) << told(one, word);
            EXPECT_EQ(read_file(STORE), before) << told(one, word);
        }
}

TEST_F(ClientRanges, NumberJustInsideARefusingRangeSucceeds) {
    for (const probe &one : number_probes(outside_kind::REFUSED))
        for (const std::string &word : just_inside(one))
            if (!why_example_fails(one.row)) {
                EXPECT_EQ(code_with(one, word), 0) << told(one, word);
            }
}

TEST_F(ClientRanges, LowestIndexThatDoesNotFailSucceeds) {
    for (const probe &one : number_probes(outside_kind::REFUSED)) {
        bool is_loose = one.range->lowest < one.range->least || one.range->highest > one.range->most;
        if (is_loose && one.row->arguments[one.place].kind == argument_kind::VAP) {
            std::string word = std::to_string(one.range->lowest);
            EXPECT_EQ(code_with(one, word), 0) << told(one, word);
        }
    }
}

TEST_F(ClientRanges, ValueThatIsTakenAsItIsSucceeds) {
    for (const probe &one : number_probes(outside_kind::TAKEN))
        for (const std::string &word : just_outside(one))
            EXPECT_EQ(code_with(one, word), 0) << told(one, word);
    for (const probe &one : probes(range_kind::FORM, outside_kind::TAKEN))
        EXPECT_EQ(code_with(one, "xylophone"), 0) << one.row->name;
}

TEST_F(ClientRanges, NumberWithoutEffectSucceedsAndChangesNothing) {
    ASSERT_FALSE(number_probes(outside_kind::WITHOUT_EFFECT).empty());
    for (const probe &one : number_probes(outside_kind::WITHOUT_EFFECT))
        for (const std::string &word : just_outside(one)) {
            std::string before = read_file(STORE);
            EXPECT_EQ(code_with(one, word), 0) << told(one, word);
            EXPECT_EQ(read_file(STORE), before) << told(one, word);
        }
}

TEST_F(ClientRanges, WordsAreTakenAndAnyOtherIsRefusedOrHasNoEffect) {
    for (outside_kind outside : {outside_kind::REFUSED, outside_kind::WITHOUT_EFFECT}) {
        ASSERT_FALSE(probes(range_kind::WORDS, outside).empty());
        for (const probe &one : probes(range_kind::WORDS, outside)) {
            std::string words = one.range->accepted;
            for (size_t at = 0, end; at < words.size(); at = end + 2) {
                end = std::min(words.find(", ", at), words.size());
                std::string word = words.substr(at, end - at);
                set_store({"AP_VAP_NUM=8"});
                std::string before = read_file(STORE);
                EXPECT_EQ(code_with(one, word), 0) << told(one, word);
                EXPECT_NE(read_file(STORE), before) << told(one, word);
            }
            std::string before = read_file(STORE);
            EXPECT_EQ(code_with(one, "xylophone") == 0, outside == outside_kind::WITHOUT_EFFECT)
                << told(one, "xylophone");
            EXPECT_EQ(read_file(STORE), before) << told(one, "xylophone");
        }
    }
}

TEST_F(ClientRanges, TextOfAnotherFormIsRefusedWhereTheFormIsLookedAt) {
    ASSERT_FALSE(probes(range_kind::FORM, outside_kind::REFUSED).empty());
    for (const probe &one : probes(range_kind::FORM, outside_kind::REFUSED)) {
        std::string before = read_file(STORE);
        EXPECT_NE(code_with(one, "xylophone"), 0) << one.row->name;
        EXPECT_EQ(read_file(STORE), before) << one.row->name;
    }
}

TEST_F(ClientRanges, TextIsCutToTheLengthThatIsKept) {
    ASSERT_FALSE(probes(range_kind::LENGTH, outside_kind::COUNTS_AS).empty());
    for (const probe &one : probes(range_kind::LENGTH, outside_kind::COUNTS_AS)) {
        set_store({"AP_VAP_NUM=8"});
        std::string all(one.range->length, 'x');
        EXPECT_EQ(code_with(one, all + "y"), 0) << one.row->name;
        std::string store = read_file(STORE);
        EXPECT_NE(store.find("=" + all + "\n"), std::string::npos) << one.row->name;
    }
}

}  // namespace
