// Trees of values as JSON, as lines for people and as bare values.
#include "client/render.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client/table.h"
#include "tests/support/client_runs.h"

namespace {

using nlohmann::json;

std::string as_json(const value *tree) {
    return written([&](FILE *out) { render_json(out, tree); });
}

std::string as_text(const value *tree, bool terminal = false, bool colour = false) {
    const text_options options = {terminal, colour};
    return written([&](FILE *out) { render_text(out, tree, &options); });
}

struct bare_values {
    size_t count;
    std::string text;
};

bare_values as_values(const value *tree, const char *field) {
    bare_values values = {};
    values.text = written([&](FILE *out) { values.count = render_values(out, tree, field); });
    return values;
}

// An object with one text under the name "text".
std::string text_as_json(const std::string &text) {
    value *object = new_object();
    add_text(object, "text", text.data(), text.size());
    std::string rendered = as_json(object);
    free_value(object);
    return rendered;
}

std::string text_as_text(const std::string &text, bool terminal) {
    value *object = new_object();
    add_text(object, "text", text.data(), text.size());
    std::string rendered = as_text(object, terminal);
    free_value(object);
    return rendered;
}

TEST(ClientJson, HasEveryKindOfValue) {
    value *object = new_object();
    add_nothing(object, "nothing");
    add_boolean(object, "yes", true);
    add_boolean(object, "no", false);
    add_number(object, "number", -7);
    add_unsigned(object, "unsigned", 7);
    add_string(object, "text", "home");
    add_list(object, "list");
    add_object(object, "object");
    EXPECT_EQ(as_json(object),
              "{\"nothing\":null,\"yes\":true,\"no\":false,\"number\":-7,\"unsigned\":7,\"text\":\"home\",\"list\":[],"
              "\"object\":{}}\n");
    free_value(object);
}

TEST(ClientJson, NumbersOf64BitsKeepAllTheirDigits) {
    value *object = new_object();
    add_number(object, "least", INT64_MIN);
    add_number(object, "most", INT64_MAX);
    add_unsigned(object, "all", UINT64_MAX);
    json parsed = json::parse(as_json(object), nullptr, false);
    EXPECT_EQ(parsed["least"].get<int64_t>(), INT64_MIN);
    EXPECT_EQ(parsed["most"].get<int64_t>(), INT64_MAX);
    EXPECT_EQ(parsed["all"].get<uint64_t>(), UINT64_MAX);
    free_value(object);
}

TEST(ClientJson, EveryCharacterComesBackFromAParser) {
    for (int c = 0; c < 0x80; c++) {
        std::string text = std::string("a") + static_cast<char>(c) + "b";
        json parsed = json::parse(text_as_json(text), nullptr, false);
        ASSERT_TRUE(parsed.is_object()) << c;
        EXPECT_EQ(parsed["text"].get<std::string>(), text) << c;
        EXPECT_FALSE(parsed.contains("text_hex")) << c;
    }
}

TEST(ClientJson, ControlsDelQuotesAndBackslashesAreEscaped) {
    EXPECT_EQ(text_as_json(std::string("\0\x01\t\n\r\x1b\x1f\x7f\"\\/", 11)),
              "{\"text\":\"\\u0000\\u0001\\t\\n\\u000d\\u001b\\u001f\\u007f\\\"\\\\/\"}\n");
}

TEST(ClientJson, Utf8StaysAsItIs) {
    for (std::string text : {"\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xef\xbf\xbf", "\xf0\x90\x80\x80",
                             "\xf4\x8f\xbf\xbf", "Caf\xc3\xa9 \xe2\x98\x95"})
        EXPECT_EQ(text_as_json(text), "{\"text\":\"" + text + "\"}\n");
}

TEST(ClientJson, EachByteThatIsNoUtf8IsReplacedAndAllBytesStandBesideInHexadecimal) {
    EXPECT_EQ(text_as_json("a\xff\xfe"
                           "b"),
              "{\"text\":\"a\\ufffd\\ufffdb\",\"text_hex\":\"61fffe62\"}\n");
    EXPECT_EQ(text_as_json("\xe2\x82"), "{\"text\":\"\\ufffd\\ufffd\",\"text_hex\":\"e282\"}\n");
    EXPECT_EQ(text_as_json("\xc0\x80"), "{\"text\":\"\\ufffd\\ufffd\",\"text_hex\":\"c080\"}\n");
    EXPECT_EQ(text_as_json(std::string("\0\x80", 2)), "{\"text\":\"\\u0000\\ufffd\",\"text_hex\":\"0080\"}\n");
}

TEST(ClientJson, ElementOfAListHasNoHexadecimalTwin) {
    value *object = new_object();
    add_string(add_list(object, "list"), nullptr, "\xff");
    EXPECT_EQ(as_json(object), "{\"list\":[\"\\ufffd\"]}\n");
    free_value(object);
}

TEST(ClientJson, WhatIsForPeopleOnlyIsLeftOut) {
    value *object = new_object();
    add_string(object, "bars", "||||")->readers = audience::PEOPLE;
    add_number(object, "detail", 1)->readers = audience::PROGRAMS;
    add_number(object, "channel", 6);
    add_string(object, "drawing", "....")->readers = audience::PEOPLE;
    EXPECT_EQ(as_json(object), "{\"detail\":1,\"channel\":6}\n");
    free_value(object);
}

TEST(ClientJson, NestsAsDeepAsTheTree) {
    value *root = new_list(), *level = root;
    for (int i = 0; i < 200; i++)
        level = i % 2 ? add_list(level, "list") : add_object(level, nullptr);
    json parsed = json::parse(as_json(root), nullptr, false);
    int depth = 1;
    for (json *at = &parsed; !at->empty(); at = &(at->is_array() ? (*at)[0] : (*at)["list"]))
        depth++;
    EXPECT_EQ(depth, 201);
    free_value(root);
}

TEST(ClientJson, DocumentSaysTheSameOverSeveralLines) {
    value *object = new_object();
    add_string(object, "text", "a\xff");
    value *list = add_list(object, "list");
    add_number(list, nullptr, 1);
    add_number(add_object(list, nullptr), "x", 2);
    add_list(object, "empty");
    std::string document = written([&](FILE *out) { render_json_document(out, object); });
    EXPECT_EQ(document,
              "{\n"
              "  \"text\": \"a\\ufffd\",\n"
              "  \"text_hex\": \"61ff\",\n"
              "  \"list\": [\n"
              "    1,\n"
              "    {\n"
              "      \"x\": 2\n"
              "    }\n"
              "  ],\n"
              "  \"empty\": []\n"
              "}\n");
    EXPECT_EQ(json::parse(document, nullptr, false), json::parse(as_json(object), nullptr, false));
    free_value(object);
}

// Text.

TEST(ClientText, OneValueStandsAlone) {
    value *object = new_object();
    add_number(object, "channel", 6);
    add_number(object, "detail", 1)->readers = audience::PROGRAMS;
    EXPECT_EQ(as_text(object), "6\n");
    free_value(object);
}

TEST(ClientText, SeveralValuesStandInOneColumnBehindTheirNames) {
    value *object = new_object();
    add_number(object, "a", -1);
    add_boolean(object, "enabled", true);
    add_boolean(object, "up", false);
    add_nothing(object, "unknown");
    add_unsigned(object, "packets", UINT64_MAX);
    EXPECT_EQ(as_text(object),
              "a        -1\n"
              "enabled  yes\n"
              "up       no\n"
              "unknown  -\n"
              "packets  18446744073709551615\n");
    free_value(object);
}

TEST(ClientText, LongNameDoesNotMoveTheColumn) {
    value *object = new_object();
    add_number(object, "a_name_of_more_than_twenty_four", 1);
    add_number(object, "short", 2);
    EXPECT_EQ(as_text(object), "a_name_of_more_than_twenty_four  1\nshort  2\n");
    free_value(object);
}

TEST(ClientText, ListOfPlainValuesIsOneLine) {
    value *object = new_object();
    value *list = add_list(object, "entries");
    add_number(list, nullptr, 1);
    add_number(list, nullptr, -2);
    EXPECT_EQ(as_text(object), "entries  1 -2\n");
    add_list(object, "others");
    EXPECT_EQ(as_text(object), "entries  1 -2\nothers   none\n");
    free_value(object);
}

TEST(ClientText, EmptyListAloneIsNoneOfThem) {
    value *object = new_object();
    add_list(object, "stations");
    EXPECT_EQ(as_text(object), "no stations\n");
    free_value(object);
}

value *two_stations() {
    value *object = new_object();
    value *list = add_list(object, "stations");
    value *first = add_object(list, nullptr);
    add_string(first, "mac", "28:6a:ba:4c:10:01");
    add_number(first, "rssi", 42);
    add_number(first, "detail", 1)->readers = audience::PROGRAMS;
    value *second = add_object(list, nullptr);
    add_string(second, "mac", "short");
    add_number(second, "rssi", -100)->shown = emphasis::BAD;
    add_number(second, "detail", 2)->readers = audience::PROGRAMS;
    return object;
}

TEST(ClientText, ListOfObjectsIsATableWithNumbersOnTheRight) {
    value *object = two_stations();
    EXPECT_EQ(as_text(object),
              "MAC                RSSI\n"
              "28:6a:ba:4c:10:01    42\n"
              "short              -100\n");
    free_value(object);
}

TEST(ClientText, ColoursAreInTablesOnlyWhenTheyAreWanted) {
    value *object = two_stations();
    std::string coloured = as_text(object, true, true);
    EXPECT_NE(coloured.find("\033[31m"), std::string::npos) << coloured;
    EXPECT_NE(coloured.find("\033[1m"), std::string::npos) << coloured;
    EXPECT_EQ(as_text(object, true, false).find('\033'), std::string::npos);
    free_value(object);
}

TEST(ClientText, LineHasTheColourOfItsEmphasis) {
    value *object = new_object();
    add_number(object, "a", 1)->shown = emphasis::GOOD;
    add_number(object, "b", 2)->shown = emphasis::WARNING;
    add_number(object, "c", 3)->shown = emphasis::BAD;
    add_number(object, "d", 4)->shown = emphasis::FAINT;
    add_number(object, "e", 5);
    EXPECT_EQ(as_text(object, true, true),
              "a  \033[32m1\033[0m\nb  \033[33m2\033[0m\nc  \033[31m3\033[0m\nd  \033[2m4\033[0m\ne  5\n");
    EXPECT_EQ(as_text(object), "a  1\nb  2\nc  3\nd  4\ne  5\n");
    free_value(object);
}

TEST(ClientText, ObjectsAndTablesAreSectionsUnderTheirNames) {
    value *object = two_stations();
    add_number(object, "count", 2);
    value *radio = add_object(object, "radio");
    add_number(radio, "channel", 6);
    add_string(radio, "mode", "11ng");
    EXPECT_EQ(as_text(object),
              "stations\n"
              "MAC                RSSI\n"
              "28:6a:ba:4c:10:01    42\n"
              "short              -100\n"
              "count  2\n"
              "\n"
              "radio\n"
              "channel  6\n"
              "mode     11ng\n");
    EXPECT_NE(as_text(object, true, true).find("\033[1mradio\033[0m\n"), std::string::npos);
    free_value(object);
}

TEST(ClientText, RowWithFewerMembersLeavesItsLastCellsEmpty) {
    value *object = two_stations();
    add_string(add_object(object->first, nullptr), "mac", "alone");
    EXPECT_EQ(as_text(object),
              "MAC                RSSI\n"
              "28:6a:ba:4c:10:01    42\n"
              "short              -100\n"
              "alone              \n");
    free_value(object);
}

TEST(ClientText, RowWithoutAMemberInTheMiddleLeavesThatCellEmpty) {
    value *object = two_stations();
    value *third = add_object(object->first, nullptr);
    add_number(third, "detail", 3)->readers = audience::PROGRAMS;
    add_number(third, "other", 5);
    add_number(third, "rssi", 7);
    EXPECT_EQ(as_text(object),
              "MAC                RSSI\n"
              "28:6a:ba:4c:10:01    42\n"
              "short              -100\n"
              "                      7\n");
    free_value(object);
}

TEST(ClientText, CellIsTheMemberForPeopleOfTwoWithOneName) {
    value *object = new_object();
    value *list = add_list(object, "radios");
    for (const char *shown : {"20 MHz", "80 MHz"}) {
        value *row = add_object(list, nullptr);
        add_number(row, "width", 4711)->readers = audience::PROGRAMS;
        add_string(row, "width", shown)->readers = audience::PEOPLE;
    }
    EXPECT_EQ(as_text(object), "WIDTH\n20 MHz\n80 MHz\n");
    free_value(object);
}

TEST(ClientText, RowWithMoreMembersFillsNoFurtherColumns) {
    value *object = two_stations();
    add_number(object->first->last, "more", 7);
    EXPECT_EQ(as_text(object).find('7'), std::string::npos);
    free_value(object);
}

TEST(ClientText, OnlyObjectIsShownAsIfItWereAlone) {
    value *object = new_object();
    add_number(add_object(object, "stats"), "rx_errors", 3);
    EXPECT_EQ(as_text(object), "3\n");
    free_value(object);
}

TEST(ClientText, EmptyObjectIsNothing) {
    value *object = new_object();
    EXPECT_EQ(as_text(object), "");
    free_value(object);
}

TEST(ClientText, TerminalGetsNoControlsAndNoBytesThatAreNoCharacters) {
    EXPECT_EQ(text_as_text("a\033[31m\x7f\xc2\x9b\xff\xe2\x82z", true), "a\\x1b[31m\\x7f\\xc2\\x9b\\xff\\xe2\\x82z\n");
    EXPECT_EQ(text_as_text(std::string("a\0b\rc", 5), true), "a\\x00b\\x0dc\n");
    EXPECT_EQ(text_as_text("Caf\xc3\xa9", true), "Caf\xc3\xa9\n");
}

TEST(ClientText, FileGetsEveryByte) {
    std::string evil("a\033[31m\x7f\xff\0\r", 11);
    EXPECT_EQ(text_as_text(evil, false), evil + "\n");
}

TEST(ClientText, TextOfItsOwnKeepsItsLinesAndACellDoesNot) {
    EXPECT_EQ(text_as_text("a\nb\tc", true), "a\nb\tc\n");
    value *object = new_object();
    add_string(object, "text", "a\nb\tc\rd");
    add_number(object, "other", 1);
    for (bool terminal : {false, true})
        EXPECT_EQ(as_text(object, terminal), "text   a\\x0ab\\x09c\\x0dd\nother  1\n");
    free_value(object);
}

TEST(ClientText, TableOfEvilNamesKeepsItsLines) {
    value *object = new_object();
    value *list = add_list(object, "networks");
    for (const char *ssid : {"a\nb", "\033[2J", "\xff"})
        add_string(add_object(list, nullptr), "ssid", ssid);
    EXPECT_EQ(as_text(object, true), "SSID\na\\x0ab\n\\x1b[2J\n\\xff\n");
    free_value(object);
}

// The character set of the process for one test.
class character_set {
public:
    explicit character_set(const char *name) : before(setlocale(LC_CTYPE, nullptr)) {
        EXPECT_NE(setlocale(LC_CTYPE, name), nullptr) << name;
    }
    ~character_set() {
        setlocale(LC_CTYPE, before.c_str());
    }

private:
    std::string before;
};

// Drawing a byte that is no character in the character set used to go on for ever.
TEST(ClientText, TableForAPipeEndsWhateverBytesANameHas) {
    value *object = new_object();
    value *list = add_list(object, "networks");
    for (const char *ssid : {"a\xff z", "ab\xc3", "Caf\xc3\xa9"})
        add_string(add_object(list, nullptr), "ssid", ssid);
    for (bool terminal : {false, true}) {
        character_set utf8("C.UTF-8");
        EXPECT_EQ(as_text(object, terminal), "SSID\na\\xff z\nab\\xc3\nCaf\xc3\xa9\n");
    }
    character_set none("C");
    EXPECT_EQ(as_text(object), "SSID\na\\xff z\nab\\xc3\nCaf\\xc3\\xa9\n");
    free_value(object);
}

TEST(ClientText, ColumnsAreAlignedByCharactersAndNotByBytes) {
    character_set utf8("C.UTF-8");
    value *object = new_object();
    value *list = add_list(object, "networks");
    for (const char *ssid : {"Caf\xc3\xa9", "abcdef", "\\x41"}) {
        value *row = add_object(list, nullptr);
        add_string(row, "ssid", ssid);
        add_number(row, "channel", 1);
    }
    EXPECT_EQ(as_text(object),
              "SSID    CHANNEL\n"
              "Caf\xc3\xa9          1\n"
              "abcdef        1\n"
              "\\x41          1\n");
    free_value(object);
}

// Bare values.

TEST(ClientValues, OnlyValueIsPrintedBare) {
    value *object = new_object();
    add_string(add_object(object, "inner"), "ssid", "a b");
    add_string(object, "bars", "||")->readers = audience::PEOPLE;
    bare_values values = as_values(object, nullptr);
    EXPECT_EQ(values.count, 1u);
    EXPECT_EQ(values.text, "a b\n");
    free_value(object);
}

TEST(ClientValues, SeveralAreCountedAndNotPrinted) {
    value *object = two_stations();
    bare_values values = as_values(object, nullptr);
    EXPECT_EQ(values.count, 6u);
    EXPECT_EQ(values.text, "");
    free_value(object);
}

TEST(ClientValues, FieldIsFoundAnywhereInAnyCapitalisation) {
    value *object = two_stations();
    EXPECT_EQ(as_values(object, "rssi").text, "42\n-100\n");
    EXPECT_EQ(as_values(object, "RSSI").count, 2u);
    EXPECT_EQ(as_values(object, "detail").text, "1\n2\n");
    free_value(object);
}

TEST(ClientValues, FieldThatIsAListGivesItsElementsOneByOne) {
    value *object = new_object();
    value *list = add_list(object, "entries");
    for (int i = 0; i < 3; i++)
        add_number(list, nullptr, i);
    bare_values values = as_values(object, "entries");
    EXPECT_EQ(values.count, 3u);
    EXPECT_EQ(values.text, "0\n1\n2\n");
    free_value(object);
}

TEST(ClientValues, NameBehindADotIsFoundBelowTheOneBefore) {
    value *object = two_stations();
    add_number(object, "rssi", 1);
    add_number(add_object(add_object(object, "radio"), "mean"), "rssi", 2);
    EXPECT_EQ(as_values(object, "rssi").text, "42\n-100\n1\n2\n");
    EXPECT_EQ(as_values(object, "stations.rssi").text, "42\n-100\n");
    EXPECT_EQ(as_values(object, "Radio.RSSI").text, "2\n");
    EXPECT_EQ(as_values(object, "radio.mean.rssi").text, "2\n");
    EXPECT_EQ(as_values(object, "radio.mean").text, "2\n");
    for (const char *field :
         {"rssi.radio", "mean.radio.rssi", "radio.mac", "stat.rssi", "stationsrssi", "rssis", "rssi.rssi", ".rssi"})
        EXPECT_EQ(as_values(object, field).count, 0u) << field;
    free_value(object);
}

TEST(ClientValues, FieldThatIsNotThereGivesNothing) {
    value *object = two_stations();
    bare_values values = as_values(object, "ssid");
    EXPECT_EQ(values.count, 0u);
    EXPECT_EQ(values.text, "");
    free_value(object);
}

TEST(ClientValues, KindsAreBareWords) {
    value *object = new_object();
    value *list = add_list(object, "all");
    add_nothing(list, nullptr);
    add_boolean(list, nullptr, true);
    add_boolean(list, nullptr, false);
    add_number(list, nullptr, INT64_MIN);
    add_unsigned(list, nullptr, UINT64_MAX);
    add_text(list, nullptr, "\033\0\xff", 3);
    EXPECT_EQ(as_values(object, "all").text,
              std::string("\ntrue\nfalse\n-9223372036854775808\n18446744073709551615\n\033\0\xff\n", 58));
    free_value(object);
}

TEST(ClientValues, ValuesForPeopleAreNotFound) {
    value *object = new_object();
    add_string(object, "bars", "||")->readers = audience::PEOPLE;
    EXPECT_EQ(as_values(object, "bars").count, 0u);
    free_value(object);
}

}  // namespace
