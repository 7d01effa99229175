// WMM settings: the switches, and the lists with an element an access category.
#include "params/wmm.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <functional>
#include <string>
#include <vector>

#include "config/store.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

struct Wmm : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        write_store({});
    }
};

// The longest text that a line of the store has, and that a value can have.
constexpr size_t VALUE_LENGTH_MAX = 1727;

// --- switches ---

TEST_F(Wmm, TheWmmSwitchIsReadAsANumber) {
    write_store({"AP_WMMEN=1", "AP_WMMEN_2=0", "AP_WMMEN_16=7", "AP_WMMEN_17=8"});
    for (auto getter : {wlan_getWmmSupported, wlan_getWmmEnable}) {
        EXPECT_EQ(number_of(getter, 0), 1);
        EXPECT_EQ(number_of(getter, 1), 1);
        EXPECT_EQ(number_of(getter, 2), 0);
        EXPECT_EQ(number_of(getter, 16), 7);
        EXPECT_EQ(number_of(getter, 17), 8);
    }
}

TEST_F(Wmm, ThePowerSaveSwitchIsReadAsANumber) {
    write_store({"AP_WMMAPSD=1", "AP_WMMAPSD_2=0", "AP_WMMAPSD_16=7", "AP_WMMAPSD_17=8"});
    for (auto getter : {wlan_getWmmUaspdSupported, wlan_getWmmUaspdEnable, wlan_getWMMAPSD}) {
        EXPECT_EQ(number_of(getter, 0), 1);
        EXPECT_EQ(number_of(getter, 1), 1);
        EXPECT_EQ(number_of(getter, 2), 0);
        EXPECT_EQ(number_of(getter, 16), 7);
        EXPECT_EQ(number_of(getter, 17), 8);
    }
}

TEST_F(Wmm, AnAbsentSwitchReadsAsZero) {
    write_store({"AP_WMMEN=", "AP_WMMAPSD="});
    for (auto getter : {wlan_getWmmSupported, wlan_getWmmUaspdSupported, wlan_getWmmEnable, wlan_getWmmUaspdEnable}) {
        EXPECT_EQ(number_of(getter, 1), 0) << "empty";
        EXPECT_EQ(number_of(getter, 2), 0) << "absent";
    }
}

TEST_F(Wmm, AnAbsentSwitchLeavesTheOutputOfTheApsdOperationUntouched) {
    write_store({"AP_WMMAPSD="});
    EXPECT_EQ(number_of(wlan_getWMMAPSD, 1), UNTOUCHED) << "empty";
    EXPECT_EQ(number_of(wlan_getWMMAPSD, 2), UNTOUCHED) << "absent";
}

TEST_F(Wmm, ASwitchThatIsNoNumberReadsAsZero) {
    write_store({"AP_WMMEN=on", "AP_WMMAPSD=on"});
    for (auto getter : {wlan_getWmmSupported, wlan_getWmmUaspdSupported, wlan_getWmmEnable, wlan_getWmmUaspdEnable,
                        wlan_getWMMAPSD}) {
        EXPECT_EQ(number_of(getter, 1), 0);
    }
}

TEST_F(Wmm, ANegativeIndexHasNoSwitch) {
    write_store({"AP_WMMEN=1", "AP_WMMAPSD=1"});
    for (auto getter : {wlan_getWmmSupported, wlan_getWmmUaspdSupported, wlan_getWmmEnable, wlan_getWmmUaspdEnable,
                        wlan_getWMMAPSD}) {
        for (int index : {-1, INT_MIN}) {
            int value = UNTOUCHED;
            EXPECT_EQ(getter(index, &value), -1);
            EXPECT_EQ(value, UNTOUCHED);
        }
    }
}

TEST_F(Wmm, SwitchesAreWrittenAsNumbers) {
    EXPECT_EQ(wlan_setWmmEnable(0, 1), 0);
    EXPECT_EQ(wlan_setWmmEnable(2, -3), 0);
    EXPECT_EQ(wlan_setWmmUaspdEnable(1, 0), 0);
    EXPECT_EQ(wlan_setWmmUaspdEnable(16, INT_MIN), 0);
    EXPECT_EQ(wlan_setWMMAPSD(0, INT_MAX), 0);
    EXPECT_EQ(wlan_setWMMAPSD(17, INT_MIN), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_WMMEN=1", "cfg -a AP_WMMEN_2=-3", "cfg -a AP_WMMAPSD=0",
                                   "cfg -a AP_WMMAPSD_16=-2147483648", "cfg -a AP_WMMAPSD=2147483647",
                                   "cfg -a AP_WMMAPSD_17=-2147483648"}));
}

TEST_F(Wmm, ANegativeIndexIsRefusedBySwitchSetters) {
    for (int index : {-1, INT_MIN}) {
        EXPECT_EQ(wlan_setWmmEnable(index, 1), -1);
        EXPECT_EQ(wlan_setWmmUaspdEnable(index, 1), -1);
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Wmm, ANegativeIndexSucceedsInTheApsdSetterAndWritesNothing) {
    std::string printed = debug_lines([] {
        EXPECT_EQ(wlan_setWMMAPSD(-1, 1), 0);
        EXPECT_EQ(wlan_setWMMAPSD(INT_MIN, 1), 0);
    });
    EXPECT_EQ(tool_calls(), calls({}));
    EXPECT_EQ(printed, "");
}

TEST_F(Wmm, TheApsdGetterLogsTheStoredText) {
    write_store({"AP_WMMAPSD_3=1 apple"});
    EXPECT_EQ(debug_lines([] { number_of(wlan_getWMMAPSD, 3); }),
              "[VLK-API] athcfg_getbyname index 2, Param: AP_WMMAPSD_3= is 1 apple\n"
              "[VLK-API] wlan_getWMMAPSD wlan_getWMMAPSD: get  AP_WMMAPSD 1 apple\n");
}

TEST_F(Wmm, TheApsdGetterLogsNothingOfAnAbsentSwitch) {
    EXPECT_FALSE(contains(debug_lines([] { number_of(wlan_getWMMAPSD, 3); }), "wlan_getWMMAPSD"));
}

TEST_F(Wmm, TheApsdSetterLogsTheNumberBeforeItIsWritten) {
    EXPECT_EQ(debug_lines([] { wlan_setWMMAPSD(3, -7); }),
              "[VLK-API] wlan_setWMMAPSD wlan_setWMMAPSD: set  AP_WMMAPSD -7\n"
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index 2, execute cmd: cfg -a AP_WMMAPSD_3=\"-7\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_WMMAPSD_3=\"-7\"\n");
}

// --- elements of a list ---

// The element, or "(none)" when there is none and the output stayed untouched.
std::string item_of(const std::string &list, int category) {
    text_buffer item;
    if (list_get_item(list.c_str(), ';', category, item.text, sizeof(item.text)) == 0) {
        return item.text;
    }
    EXPECT_TRUE(item.is_untouched()) << list << " " << category;
    return "(none)";
}

// The list with the element changed to X, or "(none)" when that was refused.
std::string changed_list(const std::string &list, int category, const std::string &value = "X") {
    text_buffer changed;
    int status = list_set_item(list.c_str(), ';', category, value.c_str(), changed.text, sizeof(changed.text));
    EXPECT_TRUE(status == 0 || status == -1);
    return status == 0 ? changed.text : "(none)";
}

TEST_F(Wmm, ElementsAreCountedFromOne) {
    EXPECT_EQ(item_of("15;16;3;2", 1), "15");
    EXPECT_EQ(item_of("15;16;3;2", 2), "16");
    EXPECT_EQ(item_of("15;16;3;2", 4), "2");
}

TEST_F(Wmm, ElementsCanBeEmpty) {
    EXPECT_EQ(item_of("1;;3", 1), "1");
    EXPECT_EQ(item_of("1;;3", 2), "");
    EXPECT_EQ(item_of("1;;3", 3), "3");
    EXPECT_EQ(item_of("1;;3", 4), "(none)");
    EXPECT_EQ(item_of(";", 1), "");
    EXPECT_EQ(item_of(";;", 2), "");
}

TEST_F(Wmm, BehindALastSeparatorIsNoElement) {
    EXPECT_EQ(item_of("1;2;", 2), "2");
    EXPECT_EQ(item_of("1;2;", 3), "(none)");
    EXPECT_EQ(item_of(";", 2), "(none)");
}

TEST_F(Wmm, AnEmptyListHasNoElement) {
    EXPECT_EQ(item_of("", 1), "(none)");
    EXPECT_EQ(item_of("", 2), "(none)");
}

TEST_F(Wmm, ThereIsNoElementBeyondTheListOrBelowTheFirst) {
    for (int category : {5, 6, INT_MAX, 0, -1, INT_MIN}) {
        EXPECT_EQ(item_of("1;2;3;4", category), "(none)") << category;
    }
}

TEST_F(Wmm, AnElementIsCutToTheBuffer) {
    text_buffer item;
    EXPECT_EQ(list_get_item("1;23456;7", ';', 2, item.text, 4), 0);
    EXPECT_STREQ(item.text, "234");
    EXPECT_EQ(item.text[4], '?');
    EXPECT_EQ(list_get_item("1;23456;7", ';', 2, item.text, 1), 0);
    EXPECT_STREQ(item.text, "");
}

TEST_F(Wmm, OnlyTheGivenSeparatorSeparates) {
    text_buffer item;
    EXPECT_EQ(list_get_item("1;2,3;4", ',', 2, item.text, sizeof(item.text)), 0);
    EXPECT_STREQ(item.text, "3;4");
    text_buffer changed;
    EXPECT_EQ(list_set_item("1;2,3", ',', 3, "4", changed.text, sizeof(changed.text)), 0);
    EXPECT_STREQ(changed.text, "1;2,3,4");
    EXPECT_EQ(list_set_item("1,2", ',', 1, "4", changed.text, sizeof(changed.text)), 0);
    EXPECT_STREQ(changed.text, "4,2");
}

TEST_F(Wmm, AnElementIsReplacedInItsPlace) {
    EXPECT_EQ(changed_list("15;15;3;2", 3, "7"), "15;15;7;2");
    EXPECT_EQ(changed_list("15;15;3;2", 1, "7"), "7;15;3;2");
    EXPECT_EQ(changed_list("15;15;3;2", 4, "7"), "15;15;3;7");
}

TEST_F(Wmm, OneElementPastTheEndCanBeSet) {
    EXPECT_EQ(changed_list("1;2", 3, "9"), "1;2;9");
    EXPECT_EQ(changed_list("1;2;", 3, "9"), "1;2;9");
    EXPECT_EQ(changed_list("1;2;3", 4, "9"), "1;2;3;9");
    EXPECT_EQ(changed_list("", 1, "9"), "9");
    EXPECT_EQ(changed_list(";", 2, "9"), ";9");
}

TEST_F(Wmm, NothingBeyondThatCanBeSet) {
    EXPECT_EQ(changed_list("1", 3, "9"), "(none)");
    EXPECT_EQ(changed_list("1;2;3", 5, "9"), "(none)");
    EXPECT_EQ(changed_list("1;2;", 4, "9"), "(none)");
    EXPECT_EQ(changed_list("", 2, "9"), "(none)");
    EXPECT_EQ(changed_list("1;2;3;4", INT_MAX, "9"), "(none)");
}

TEST_F(Wmm, EverySetBelowTheFirstElementReplacesTheFirst) {
    for (int category : {1, 0, -1, INT_MIN}) {
        EXPECT_EQ(changed_list("1;2;3", category, "9"), "9;2;3") << category;
        EXPECT_EQ(changed_list("", category, "9"), "9") << category;
    }
}

TEST_F(Wmm, EmptyElementsAroundTheReplacedOneStay) {
    EXPECT_EQ(changed_list("1;;3", 2, "9"), "1;9;3");
    EXPECT_EQ(changed_list("1;;3", 1, "9"), "9;;3");
    EXPECT_EQ(changed_list("1;;3", 3, "9"), "1;;9");
    EXPECT_EQ(changed_list(";;", 1, "9"), "9;;");
}

TEST_F(Wmm, ASeparatorAtTheEndStaysUnlessItsElementIsReplaced) {
    EXPECT_EQ(changed_list("1;2;", 1, "9"), "9;2;");
    EXPECT_EQ(changed_list("1;2;", 2, "9"), "1;9");
    EXPECT_EQ(changed_list(";", 1, "9"), "9");
}

// The same said with a list of elements, for every text of up to seven characters.
struct split_list {
    std::vector<std::string> elements;
    bool ends_in_separator;
};

split_list split(const std::string &text) {
    split_list list = {{}, text.ends_with(';')};
    std::string element;
    for (char character : text) {
        if (character == ';') {
            list.elements.push_back(element);
            element.clear();
        } else {
            element += character;
        }
    }
    if (!element.empty()) {
        list.elements.push_back(element);
    }
    return list;
}

std::string expected_item(const split_list &list, int category) {
    bool exists = category >= 1 && category <= static_cast<int>(list.elements.size());
    return exists ? list.elements[static_cast<size_t>(category - 1)] : "(none)";
}

std::string expected_change(const split_list &list, int category) {
    size_t place = category < 1 ? 0 : static_cast<size_t>(category - 1);
    if (place > list.elements.size()) {
        return "(none)";
    }
    std::string text;
    for (size_t i = 0; i < place; i++) {
        text += list.elements[i] + ";";
    }
    text += "X";
    for (size_t i = place + 1; i < list.elements.size(); i++) {
        text += ";" + list.elements[i];
    }
    bool something_remains = place + 1 < list.elements.size();
    return text + (something_remains && list.ends_in_separator ? ";" : "");
}

TEST_F(Wmm, EveryShortListIsReadAndChangedElementByElement) {
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < 7; i++) {
        for (char character : {'1', '2', ';'}) {
            texts.push_back(texts[i] + character);
        }
    }
    ASSERT_EQ(texts.size(), 3280U);
    for (const std::string &text : texts) {
        split_list list = split(text);
        for (int category = -1; category <= 9; category++) {
            EXPECT_EQ(item_of(text, category), expected_item(list, category)) << text << " " << category;
            EXPECT_EQ(changed_list(text, category), expected_change(list, category)) << text << " " << category;
        }
    }
}

TEST_F(Wmm, AChangedListIsRefusedWhenItDoesNotFit) {
    struct {
        const char *list;
        int category;
        const char *changed;
    } rows[] = {{"12;34", 1, "56789;34"}, {"12;34", 2, "12;56789"}, {"12;34", 3, "12;34;56789"}, {"", 1, "56789"}};
    for (const auto &row : rows) {
        size_t length = strlen(row.changed);
        for (size_t size = 1; size <= length + 1; size++) {
            SCOPED_TRACE(testing::Message() << row.changed << " in " << size);
            text_buffer changed;
            int status = list_set_item(row.list, ';', row.category, "56789", changed.text, size);
            EXPECT_EQ(status, size <= length ? -1 : 0);
            EXPECT_EQ(changed.text[size], '?') << "written behind the buffer";
            if (status == 0) {
                EXPECT_STREQ(changed.text, row.changed);
            }
        }
    }
}

// --- the lists in the store ---

using list_getter = std::function<int(int index, int category, int *value)>;
using list_setter = std::function<int(int index, int category, int value)>;

template <typename Number>
list_getter getter_of(int (*operation)(int, int, Number *)) {
    return [operation](int index, int category, int *value) {
        return operation(index, category, reinterpret_cast<Number *>(value));
    };
}

template <typename Number>
list_setter setter_of(int (*operation)(int, int, Number)) {
    return [operation](int index, int category, int value) {
        return operation(index, category, static_cast<Number>(value));
    };
}

struct list_row {
    const char *parameter;
    list_getter get;
    list_setter set;
    std::string key;
};

const list_row LISTS[] = {
    {"own AIFSN", getter_of(wlan_getWmmOgAifsn), setter_of(wlan_setWmmOgAifsn), "AP_WMMAIFS"},
    {"BSS AIFSN", getter_of(wlan_getWmmIcAifsn), setter_of(wlan_setWmmIcAifsn), "AP_WMMBSSAIFS"},
    {"own ECWmin", getter_of(wlan_getWmmOgEcwMin), setter_of(wlan_setWmmOgEcwMin), "AP_WMMCWMIN"},
    {"BSS ECWmin", getter_of(wlan_getWmmIcEcwMin), setter_of(wlan_setWmmIcEcwMin), "AP_WMMBSSCWMIN"},
    {"own ECWmax", getter_of(wlan_getWmmOgEcwMax), setter_of(wlan_setWmmOgEcwMax), "AP_WMMCWMAX"},
    {"BSS ECWmax", getter_of(wlan_getWmmIcEcwMax), setter_of(wlan_setWmmIcEcwMax), "AP_WMMBSSCWMAX"},
    {"own TXOP limit", getter_of(wlan_getWmmOgTxOp), setter_of(wlan_setWmmOgTxOp), "AP_WMMTXOP"},
    {"BSS TXOP limit", getter_of(wlan_getWmmIcTxOp), setter_of(wlan_setWmmIcTxOp), "AP_WMMBSSTXOP"},
    {"own ACK policy", getter_of(wlan_getWmmOgAckPolicy), setter_of(wlan_setWmmOgAckPolicy), "AP_WMMACKPOLICY"},
    {"BSS ACK policy", getter_of(wlan_getWmmIcAckPolicy), setter_of(wlan_setWmmIcAckPolicy), "AP_WMMBSSACKPOLICY"},
};

int category_of(const list_row &row, int index, int category) {
    int value = UNTOUCHED;
    EXPECT_EQ(row.get(index, category, &value), 0);
    return value;
}

// A store in which every list of VAPs 1 and 3 has other numbers.
std::vector<std::string> all_lists() {
    std::vector<std::string> lines;
    for (size_t i = 0; i < std::size(LISTS); i++) {
        std::string number = std::to_string(i);
        lines.push_back(LISTS[i].key + "=1" + number + ";2" + number + ";3" + number);
        lines.push_back(LISTS[i].key + "_3=4" + number + ";5" + number + ";6" + number);
    }
    return lines;
}

TEST_F(Wmm, EveryParameterHasAListOfItsOwn) {
    write_store(all_lists());
    for (size_t i = 0; i < std::size(LISTS); i++) {
        SCOPED_TRACE(LISTS[i].parameter);
        int number = static_cast<int>(i);
        EXPECT_EQ(category_of(LISTS[i], 1, 1), 10 + number);
        EXPECT_EQ(category_of(LISTS[i], 1, 3), 30 + number);
        EXPECT_EQ(category_of(LISTS[i], 0, 2), 20 + number);
        EXPECT_EQ(category_of(LISTS[i], 3, 2), 50 + number);
    }
}

TEST_F(Wmm, EveryParameterIsWrittenToItsOwnList) {
    write_store(all_lists());
    for (size_t i = 0; i < std::size(LISTS); i++) {
        SCOPED_TRACE(LISTS[i].parameter);
        std::string number = std::to_string(i);
        size_t before = tool_calls().size();
        EXPECT_EQ(LISTS[i].set(3, 2, 7), 0);
        EXPECT_EQ(LISTS[i].set(0, 4, -8), 0);
        calls written = tool_calls();
        written.erase(written.begin(), written.begin() + static_cast<long>(before));
        EXPECT_EQ(written, calls({"cfg -a " + LISTS[i].key + "_3=4" + number + ";7;6" + number,
                                  "cfg -a " + LISTS[i].key + "=1" + number + ";2" + number + ";3" + number + ";-8"}));
    }
}

TEST_F(Wmm, ANegativeIndexHasNoLists) {
    write_store(all_lists());
    for (const list_row &row : LISTS) {
        for (int index : {-1, INT_MIN}) {
            SCOPED_TRACE(testing::Message() << row.parameter << " " << index);
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(index, 1, &value), -1);
            EXPECT_EQ(value, UNTOUCHED);
            EXPECT_EQ(row.set(index, 1, 7), -1);
        }
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Wmm, ReadingACategoryThatTheListDoesNotHaveLeavesTheOutputUntouched) {
    write_store(all_lists());
    for (const list_row &row : LISTS) {
        for (int category : {4, INT_MAX, 0, -1, INT_MIN}) {
            EXPECT_EQ(category_of(row, 1, category), UNTOUCHED) << row.parameter << " " << category;
        }
        EXPECT_EQ(category_of(row, 2, 1), UNTOUCHED) << row.parameter << " of a VAP without lists";
    }
}

TEST_F(Wmm, WritingACategoryTwoPastTheEndWritesNothing) {
    write_store(all_lists());
    for (const list_row &row : LISTS) {
        EXPECT_EQ(row.set(1, 5, 7), 0) << row.parameter;
        EXPECT_EQ(row.set(1, INT_MAX, 7), 0) << row.parameter;
        EXPECT_EQ(row.set(2, 2, 7), 0) << row.parameter << " of a VAP without lists";
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Wmm, TheFirstWriteMakesAListOfOneElement) {
    for (const list_row &row : LISTS) {
        SCOPED_TRACE(row.parameter);
        SetUp();
        EXPECT_EQ(row.set(16, 1, 7), 0);
        EXPECT_EQ(tool_calls(), calls({"cfg -a " + row.key + "_16=7"}));
    }
}

TEST_F(Wmm, AWriteBelowTheFirstCategoryReplacesTheFirstElement) {
    for (const list_row &row : LISTS) {
        SCOPED_TRACE(row.parameter);
        SetUp();
        write_store({row.key + "_2=1;2"});
        for (int category : {0, -1, INT_MIN}) {
            EXPECT_EQ(row.set(2, category, 7), 0);
        }
        std::string written = "cfg -a " + row.key + "_2=7;2";
        EXPECT_EQ(tool_calls(), calls({written, written, written}));
    }
}

TEST_F(Wmm, NumbersOfAListAreSigned) {
    write_store({"AP_WMMTXOP=1;2147483647;-2147483648"});
    EXPECT_EQ(category_of(LISTS[6], 1, 2), INT_MAX);
    EXPECT_EQ(category_of(LISTS[6], 1, 3), INT_MIN);
    EXPECT_EQ(wlan_setWmmOgTxOp(1, 1, 0xffffffff), 0);
    EXPECT_EQ(wlan_setWmmOgTxOp(1, 1, 0x80000000), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_WMMTXOP=-1;2147483647;-2147483648",
                                   "cfg -a AP_WMMTXOP=-2147483648;2147483647;-2147483648"}));
}

TEST_F(Wmm, AnElementThatIsEmptyOrNoNumberReadsAsZero) {
    write_store({"AP_WMMAIFS=;low; 5;6x"});
    EXPECT_EQ(category_of(LISTS[0], 1, 1), 0);
    EXPECT_EQ(category_of(LISTS[0], 1, 2), 0);
    EXPECT_EQ(category_of(LISTS[0], 1, 3), 5);
    EXPECT_EQ(category_of(LISTS[0], 1, 4), 6);
}

TEST_F(Wmm, TheTextAroundAWrittenElementStaysAsItIs) {
    write_store({"AP_WMMAIFS= 1 ;x;; y;"});
    wlan_setWmmOgAifsn(1, 2, 7);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_WMMAIFS= 1 ;7;; y;"}));
}

TEST_F(Wmm, AListCommandIsQuoted) {
    write_store({"AP_WMMAIFS_2=1;2"});
    EXPECT_EQ(debug_lines([] { wlan_setWmmOgAifsn(2, 2, 7); }),
              "[VLK-API] athcfg_getbyname index 1, Param: AP_WMMAIFS_2= is 1;2\n"
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index 1, execute cmd: cfg -a AP_WMMAIFS_2=\"1;7\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_WMMAIFS_2=\"1;7\"\n");
}

// Elements "1;" as often as they fit, and what is needed of the last one: a list of exactly this length.
std::string long_list(size_t length) {
    std::string list;
    while (list.size() + 2 <= length) {
        list += "1;";
    }
    return list.size() < length ? list + "1" : list;
}

TEST_F(Wmm, TheLastElementOfTheLongestListIsRead) {
    std::string list = long_list(VALUE_LENGTH_MAX - 2) + ";5";
    ASSERT_EQ(list.size(), VALUE_LENGTH_MAX);
    write_store({"AP_WMMAIFS=" + list});
    EXPECT_EQ(category_of(LISTS[0], 1, 864), 5);
    EXPECT_EQ(category_of(LISTS[0], 1, 865), UNTOUCHED);
}

TEST_F(Wmm, AnElementAsLongAsAValueIsRead) {
    write_store({"AP_WMMAIFS=" + std::string(VALUE_LENGTH_MAX - 1, '0') + "7"});
    EXPECT_EQ(category_of(LISTS[0], 1, 1), 7);
}

TEST_F(Wmm, TheLongestListIsWrittenWholeWhenItDoesNotGrow) {
    std::string list = long_list(VALUE_LENGTH_MAX);
    write_store({"AP_WMMAIFS=" + list});
    EXPECT_EQ(wlan_setWmmOgAifsn(1, 864, 7), 0);
    list.back() = '7';
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_WMMAIFS=" + list}));
}

TEST_F(Wmm, AListGrowsToTheLengthOfAValue) {
    write_store({"AP_WMMAIFS=" + long_list(VALUE_LENGTH_MAX - 10)});
    EXPECT_EQ(wlan_setWmmOgAifsn(1, 1, 0x80000000), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_WMMAIFS=-2147483648" + long_list(VALUE_LENGTH_MAX - 10).substr(1)}));
    EXPECT_EQ(tool_calls()[0].size(), strlen("cfg -a AP_WMMAIFS=") + VALUE_LENGTH_MAX);
}

TEST_F(Wmm, AListThatWouldOutgrowAValueStaysAsItWas) {
    for (size_t length = VALUE_LENGTH_MAX - 9; length <= VALUE_LENGTH_MAX; length++) {
        write_store({"AP_WMMAIFS=" + long_list(length)});
        EXPECT_EQ(wlan_setWmmOgAifsn(1, 1, 0x80000000), 0) << length;
        EXPECT_EQ(tool_calls(), calls({})) << length;
    }
}

TEST_F(Wmm, AnElementAddedToTheLongestListIsRefused) {
    write_store({"AP_WMMAIFS=" + long_list(VALUE_LENGTH_MAX)});
    EXPECT_EQ(wlan_setWmmOgAifsn(1, 865, 7), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

// Its end does not fit the buffer, so writing it back would lose that.
TEST_F(Wmm, AListLongerThanAValueIsNeverWrittenBack) {
    for (size_t length : {VALUE_LENGTH_MAX + 1, VALUE_LENGTH_MAX + 2, size_t{5000}}) {
        write_store({"AP_WMMAIFS=22222222;" + long_list(length - 9)});
        EXPECT_EQ(wlan_setWmmOgAifsn(1, 1, 7), 0) << length;
        EXPECT_EQ(category_of(LISTS[0], 1, 1), 22222222) << length;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- all of them ---

TEST_F(Wmm, SettersSucceedWhateverTheToolSays) {
    install_tool("cfg", "no room", 1);
    EXPECT_EQ(wlan_setWmmEnable(1, 1), 0);
    EXPECT_EQ(wlan_setWmmUaspdEnable(1, 1), 0);
    EXPECT_EQ(wlan_setWMMAPSD(1, 1), 0);
    for (const list_row &row : LISTS) {
        EXPECT_EQ(row.set(1, 1, 7), 0) << row.parameter;
    }
    EXPECT_EQ(tool_calls().size(), 3 + std::size(LISTS));
}

TEST_F(Wmm, EverythingSucceedsWithoutStoreAndTool) {
    int statuses = 0;
    begin_descriptor_shortage();
    statuses |= wlan_setWmmEnable(1, 1) | wlan_setWmmUaspdEnable(1, 1) | wlan_setWMMAPSD(1, 1);
    int power_save = UNTOUCHED;
    statuses |= wlan_getWMMAPSD(1, &power_save);
    int category = UNTOUCHED;
    for (const list_row &row : LISTS) {
        statuses |= row.set(1, 1, 7) | row.get(1, 1, &category);
    }
    end_descriptor_shortage();
    EXPECT_EQ(statuses, 0);
    EXPECT_EQ(power_save, UNTOUCHED);
    EXPECT_EQ(category, UNTOUCHED);
}

TEST_F(Wmm, NothingIsPrintedWhileDebuggingIsOff) {
    write_store({"AP_WMMEN=1", "AP_WMMAPSD=1"});
    printed_text printed = capture([] {
        int value;
        wlan_getWmmSupported(1, &value);
        wlan_getWmmUaspdSupported(1, &value);
        wlan_getWmmEnable(1, &value);
        wlan_setWmmEnable(1, 1);
        wlan_getWmmUaspdEnable(1, &value);
        wlan_setWmmUaspdEnable(1, 1);
        wlan_getWMMAPSD(1, &value);
        wlan_setWMMAPSD(1, 1);
        for (const list_row &row : LISTS) {
            row.get(1, 1, &value);
            row.set(1, 1, 7);
        }
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
