// Trees of values: what is added is found again, compared and freed.
#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "client/value.h"

namespace {

TEST(ClientValue, MembersAreFoundByTheirNamesOnly) {
    value *object = new_object();
    add_number(object, "channel", 6);
    add_string(object, "ssid", "home");
    EXPECT_EQ(find_member(object, "channel")->number, 6);
    EXPECT_STREQ(find_member(object, "ssid")->text, "home");
    EXPECT_EQ(find_member(object, "chan"), nullptr);
    EXPECT_EQ(find_member(object, "Channel"), nullptr);
    free_value(object);
}

TEST(ClientValue, OnlyObjectsHaveMembers) {
    value *list = new_list();
    add_number(list, nullptr, 1);
    EXPECT_EQ(find_member(list, "channel"), nullptr);
    EXPECT_EQ(find_member(list->first, "channel"), nullptr);
    free_value(list);
}

TEST(ClientValue, MembersStandInTheOrderInWhichTheyWereAdded) {
    value *object = new_object();
    for (const char *name : {"c", "a", "b"})
        add_nothing(object, name);
    std::string names;
    for (const value *member = object->first; member; member = member->next)
        names += member->name;
    EXPECT_EQ(names, "cab");
    EXPECT_EQ(count_values(object), 3u);
    EXPECT_STREQ(object->last->name, "b");
    free_value(object);
}

TEST(ClientValue, EmptyObjectsAndListsHaveNoValues) {
    value *object = new_object();
    EXPECT_EQ(count_values(object), 0u);
    EXPECT_EQ(object->first, nullptr);
    EXPECT_EQ(count_values(add_list(object, "list")), 0u);
    free_value(object);
}

TEST(ClientValue, EachKindKeepsWhatItWasGiven) {
    value *object = new_object();
    EXPECT_EQ(add_nothing(object, "a")->kind, value_kind::NOTHING);
    EXPECT_TRUE(add_boolean(object, "b", true)->truth);
    EXPECT_FALSE(add_boolean(object, "c", false)->truth);
    EXPECT_EQ(add_number(object, "d", INT64_MIN)->number, INT64_MIN);
    EXPECT_EQ(add_unsigned(object, "e", UINT64_MAX)->natural, UINT64_MAX);
    EXPECT_EQ(add_object(object, "f")->kind, value_kind::OBJECT);
    EXPECT_EQ(add_list(object, "g")->kind, value_kind::LIST);
    EXPECT_EQ(object->first->readers, audience::EVERYONE);
    EXPECT_EQ(object->first->shown, emphasis::NONE);
    free_value(object);
}

TEST(ClientValue, TextsAndNamesAreCopied) {
    char name[] = "name", text[] = "text";
    value *object = new_object();
    value *added = add_string(object, name, text);
    memset(name, 'x', 4);
    memset(text, 'x', 4);
    EXPECT_STREQ(added->name, "name");
    EXPECT_STREQ(added->text, "text");
    free_value(object);
}

TEST(ClientValue, TextHasItsLengthAndMayHaveZerosInIt) {
    value *object = new_object();
    const value *added = add_text(object, "text", "a\0b and more", 3);
    EXPECT_EQ(std::string(added->text, added->length), std::string("a\0b", 3));
    EXPECT_EQ(added->text[3], '\0');
    EXPECT_EQ(add_text(object, "empty", "x", 0)->length, 0u);
    free_value(object);
}

TEST(ClientValue, TextMayBePrinted) {
    value *object = new_object();
    printed_text printed;
    begin_text(&printed);
    fprintf(printed.out, "%d%c%s", 4711, '\0', "home");
    const value *added = add_printed(object, "text", &printed);
    EXPECT_STREQ(added->name, "text");
    EXPECT_EQ(std::string(added->text, added->length), std::string("4711\0home", 9));
    begin_text(&printed);
    EXPECT_EQ(add_printed(object, "empty", &printed)->length, 0u);
    EXPECT_STREQ(find_member(object, "empty")->text, "");
    free_value(object);
}

TEST(ClientValue, MacIsSixPairsInLowerCase) {
    value *object = new_object();
    const unsigned char octets[] = {0x00, 0x0f, 0xAB, 0xff, 0x80, 0x01};
    EXPECT_STREQ(add_mac(object, "mac", octets)->text, "00:0f:ab:ff:80:01");
    free_value(object);
}

TEST(ClientValue, TreeThatIsAddedTakesItsPlaceAndItsName) {
    value *object = new_object(), *list = new_list();
    add_number(list, nullptr, 5);
    add_value(object, "list", list);
    add_number(object, "behind", 1);
    EXPECT_EQ(find_member(object, "list"), list);
    EXPECT_EQ(list->next, object->last);
    free_value(object);
}

TEST(ClientValue, NothingCanBeFreed) {
    free_value(nullptr);
}

// A tree with one of everything, in which one thing can be changed.
value *sample(const char *change = "") {
    auto changed = [&](const char *what) { return strcmp(change, what) == 0; };
    value *object = new_object();
    add_nothing(object, changed("name") ? "other" : "nothing");
    add_boolean(object, "boolean", !changed("boolean"));
    add_number(object, "number", changed("number") ? 2 : 1);
    add_unsigned(object, "unsigned", changed("unsigned") ? 2 : 1);
    add_text(object, "text", changed("text") ? "a\0c" : "a\0b", changed("shorter") ? 2 : 3);
    value *list = add_list(object, "list");
    add_number(list, nullptr, changed("element") ? 2 : 1);
    if (changed("length"))
        add_number(list, nullptr, 1);
    if (changed("kind"))
        add_unsigned(object, "last", 1);
    else
        add_number(object, "last", 1);
    if (changed("more"))
        add_nothing(object, "more");
    return object;
}

TEST(ClientValue, TreesAreTheSameWithTheSameContent) {
    value *one = sample(), *other = sample();
    other->first->shown = emphasis::BAD;
    EXPECT_TRUE(same_value(one, other));
    free_value(one);
    free_value(other);
}

TEST(ClientValue, AnyDifferenceMakesThemDifferent) {
    value *one = sample();
    for (const char *change :
         {"name", "boolean", "number", "unsigned", "text", "shorter", "element", "length", "kind", "more"}) {
        value *other = sample(change);
        EXPECT_FALSE(same_value(one, other)) << change;
        EXPECT_FALSE(same_value(other, one)) << change;
        free_value(other);
    }
    free_value(one);
}

}  // namespace
