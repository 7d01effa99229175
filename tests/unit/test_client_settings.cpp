// The client's settings without a gateway: that the table misses nothing, documents with mistakes, the order of
// changes, the ways from one list to another.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "client/ask.h"
#include "client/changes.h"
#include "client/names.h"
#include "client/setting_conversions.h"
#include "client/setting_lists.h"
#include "client/settings_document.h"
#include "client/shell_texts.h"
#include "server/wire.h"
#include "tests/support/client_runs.h"

namespace {

// --- the table ---

// How often a procedure stands in the table of settings.
std::map<uint32_t, int> accounted() {
    std::map<uint32_t, int> counts;
    for (size_t i = 0; i < setting_row_count; i++) {
        counts[setting_rows[i].getter]++;
        if (!setting_rows[i].list)
            counts[setting_rows[i].setter]++;
    }
    for (size_t i = 0; i < setting_exception_count; i++)
        counts[setting_exceptions[i].procedure]++;
    return counts;
}

TEST(ClientSettings, AreOrAreExceptedForEveryGetterWithASetterAndForEverySetter) {
    std::map<uint32_t, int> counts = accounted();
    std::set<std::string> names;
    for (size_t i = 0; i < procedure_row_count; i++)
        names.insert(procedure_rows[i].name);
    ASSERT_EQ(names.size(), 340u);
    for (size_t i = 0; i < procedure_row_count; i++) {
        std::string name = procedure_rows[i].name;
        bool is_setter = name.starts_with("wlan_set_");
        bool has_setter = name.starts_with("wlan_get_") && names.count("wlan_set_" + name.substr(9));
        if (is_setter || has_setter) {
            EXPECT_EQ(counts[procedure_rows[i].number], 1) << name;
        }
    }
}

TEST(ClientSettings, ExceptionsHaveReasons) {
    for (size_t i = 0; i < setting_exception_count; i++)
        EXPECT_GT(strlen(setting_exceptions[i].reason), 5u);
}

TEST(ClientSettings, HaveSettersThatTakeWhatTheirGettersGive) {
    for (size_t i = 0; i < setting_row_count; i++) {
        const setting_row *setting = &setting_rows[i];
        if (setting->list)
            continue;
        const procedure_row *getter = row_of(setting->getter);
        const procedure_row *setter = row_of(setting->setter);
        bool text = getter->result.kind == result_kind::STRING;
        size_t outputs = text ? 1 : getter->result.output_count;
        EXPECT_TRUE(text || getter->result.kind == result_kind::INTEGERS) << setting->name;
        EXPECT_EQ(setter->argument_count, getter->argument_count + outputs) << setting->name;
        EXPECT_EQ(setting_kind(setting) == argument_kind::TEXT, text) << setting->name;
        EXPECT_EQ(has_elements(setting) && getter->argument_count != 2, false) << setting->name;
        EXPECT_EQ(std::string("wlan_get_") + setting->name, getter->name);
    }
}

TEST(ClientSettings, HaveDifferentNamesInEachSection) {
    std::set<std::string> names;
    for (size_t i = 0; i < setting_row_count; i++) {
        EXPECT_TRUE(names.insert(std::string(scope_section(setting_rows[i].scope)) + setting_rows[i].name).second)
            << setting_rows[i].name;
        EXPECT_EQ(find_setting(scope_section(setting_rows[i].scope), setting_rows[i].name), &setting_rows[i]);
    }
    EXPECT_EQ(find_setting("vaps", "channel"), nullptr);
}

TEST(ClientSettings, ThatAreSecretAreTheKeysAndPins) {
    std::set<std::string> secrets;
    for (size_t i = 0; i < setting_row_count; i++)
        if (setting_rows[i].keeping & SECRET)
            secrets.insert(setting_rows[i].name);
    EXPECT_EQ(secrets, (std::set<std::string>{"acct_server_key", "key_passphrase", "radius_server_key", "wep_key",
                                              "wps_device_password"}));
}

// --- documents ---

std::string problem_of_text(const std::string &text) {
    char problem[PROBLEM_SIZE] = "";
    value *document = parse_document(text.data(), text.size(), problem);
    EXPECT_EQ(document == nullptr, *problem != '\0');
    free_value(document);
    return problem;
}

// What is wrong with the settings of a document that is JSON; "" for nothing.
std::string problem_of(const std::string &text) {
    char problem[PROBLEM_SIZE] = "";
    value *document = parse_document(text.data(), text.size(), problem);
    EXPECT_NE(document, nullptr) << problem;
    value *settings = document ? checked_settings(document, problem) : nullptr;
    EXPECT_EQ(settings == nullptr, *problem != '\0');
    free_value(settings);
    free_value(document);
    return problem;
}

std::string problem_of_sections(const std::string &sections) {
    return problem_of(R"({"schema":1,)" + sections + "}");
}

enum class tree_source { DOCUMENT, GATEWAY };

// The settings of a checked document, or those that a gateway has, which nobody has checked. Freed at the end.
struct settings_tree {
    explicit settings_tree(const std::string &sections, tree_source source = tree_source::DOCUMENT) {
        std::string text = R"({"schema":1,)" + sections + "}";
        char problem[PROBLEM_SIZE] = "";
        value *document = parse_document(text.data(), text.size(), problem);
        root = document && source == tree_source::DOCUMENT ? checked_settings(document, problem) : document;
        if (root != document)
            free_value(document);
        EXPECT_NE(root, nullptr) << problem;
        if (!root)
            abort();
    }
    ~settings_tree() {
        free_value(root);
    }
    settings_tree(const settings_tree &) = delete;
    settings_tree &operator=(const settings_tree &) = delete;
    value *root;
};

TEST(ClientDocuments, ThatAreNoJsonAreRefusedWithTheirPlace) {
    EXPECT_EQ(problem_of_text("{\n  \"schema\": 1,\n  oops\n}"), "no JSON at line 3, column 3");
    EXPECT_EQ(problem_of_text(""), "no JSON at line 1, column 1");
    EXPECT_EQ(problem_of_text("{\"schema\":1} x"), "no JSON at line 1, column 14");
    EXPECT_EQ(problem_of_text("{\"a\":\"\xe9\"}"), "no JSON at line 1, column 8");
}

TEST(ClientDocuments, ThatAreCutShortAnywhereAreRefused) {
    const std::string whole = R"({"schema":1,"vaps":{"1":{"ssid":"a\u00e9","og_tx_op":[1,-2,null,true]}}})";
    EXPECT_EQ(problem_of_text(whole), "");
    for (size_t length = 0; length < whole.size(); length++)
        EXPECT_NE(problem_of_text(whole.substr(0, length)), "") << length;
}

TEST(ClientDocuments, ThatAreOddJsonAreRefused) {
    for (const char *text :
         {"5", "\"text\"", "null", "true", "{\"a\":1.5}", "{\"a\":1e3}", "{\"a\":1e999}",
          "{\"a\":18446744073709551615}", "{\"a\":99999999999999999999999}", "{\"a\":1,\"a\":2}", "{\"a\\u0000\":1}"})
        EXPECT_NE(problem_of_text(text), "") << text;
    EXPECT_EQ(problem_of_text("{\"a\":{\"b\":1,\"b\":1}}"), "\"b\" stands twice in one object");
}

TEST(ClientDocuments, AreNoDeeperThanTheyNeedToBe) {
    auto nested = [](size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_EQ(problem_of_text(nested(DOCUMENT_DEPTH_MAX)), "");
    EXPECT_NE(problem_of_text(nested(DOCUMENT_DEPTH_MAX + 1)), "");
    EXPECT_NE(problem_of_text(std::string(1000000, '[')), "");
}

TEST(ClientDocuments, HaveNoMoreMembersThanTheyNeed) {
    auto members = [](size_t count) {
        std::string text;
        for (size_t i = 0; i < count; i++)
            text += (i ? ",\"" : "\"") + std::to_string(i) + "\":0";
        return "{" + text + "}";
    };
    EXPECT_EQ(problem_of_text(members(DOCUMENT_MEMBERS_MAX)), "");
    EXPECT_NE(problem_of_text(members(DOCUMENT_MEMBERS_MAX + 1)), "");
    EXPECT_NE(problem_of_text(members(300000)), "");
}

TEST(ClientDocuments, OfAnotherSchemaAreRefused) {
    const std::string problem = "schema has to be 1: this is no document of settings that this client knows";
    EXPECT_EQ(problem_of("{}"), problem);
    EXPECT_EQ(problem_of(R"({"schema":2})"), problem);
    EXPECT_EQ(problem_of(R"({"schema":"1"})"), problem);
    EXPECT_EQ(problem_of(R"({"schema":1})"), "");
    EXPECT_EQ(problem_of("[]"), "the document is no object");
    EXPECT_EQ(problem_of(R"({"schema":1,"vap":{}})"), "vap is no member of a document of settings");
}

TEST(ClientDocuments, WithSettingsThatAreNotThereAreRefused) {
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"channel":6}})"), "vaps.1.channel is no setting there");
    EXPECT_EQ(problem_of_sections(R"("gateway":{"ssid":"x"})"), "gateway.ssid is no setting there");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"9":{"bs_bss_enable":1}})"), "vaps.9.bs_bss_enable is no setting there");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"8":{"bs_bss_enable":1}})"), "");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"dtim_period_hex":"00"}})"),
              "vaps.1.dtim_period_hex is no setting there");
    for (const char *number : {"0", "17", "01", "-1", "1 ", "one"})
        EXPECT_EQ(problem_of_sections("\"vaps\":{\"" + std::string(number) + "\":{}}"),
                  "vaps." + std::string(number) + " is not there: its members are 1 to 16")
            << number;
    EXPECT_EQ(problem_of_sections(R"("radios":{"2":{}})"), "radios.2 is not there: its members are 0 to 1");
}

TEST(ClientDocuments, WithSectionsOfAnotherTypeAreRefused) {
    EXPECT_EQ(problem_of_sections(R"("vaps":[])"), "vaps has to be an object");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":5})"), "vaps.1 has to be an object");
    EXPECT_EQ(problem_of_sections(R"("gateway":null)"), "gateway has to be an object");
}

TEST(ClientDocuments, WithValuesOfAnotherTypeAreRefused) {
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"enable":1}})"), "vaps.1.enable has to be true or false");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"ssid":5}})"),
              "vaps.1.ssid has to be a text without line breaks and NULs");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"ssid":"a\nb"}})"),
              "vaps.1.ssid has to be a text without line breaks and NULs");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"ssid":"a\u0000b"}})"),
              "vaps.1.ssid has to be a text without line breaks and NULs");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"ssid_hex":"610a"}})"),
              "vaps.1.ssid has to be a text without line breaks and NULs");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"dtim_period":-1}})"),
              "vaps.1.dtim_period has to be a number from 0 to 4294967295");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"dtim_period":4294967296}})"),
              "vaps.1.dtim_period has to be a number from 0 to 4294967295");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"max_station_num":2147483648}})"),
              "vaps.1.max_station_num has to be a number from -2147483648 to 2147483647");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"max_station_num":"5"}})"),
              "vaps.1.max_station_num has to be a number from -2147483648 to 2147483647");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"og_aifsn":[1,2,3]}})"),
              "vaps.1.og_aifsn has to be a list of 4, one for each category");
    EXPECT_EQ(problem_of_sections(R"("radios":{"0":{"wep_key":"1"}})"),
              "radios.0.wep_key has to be a list of 4, one for each key");
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"og_aifsn":[1,2,3,"4"]}})"),
              "vaps.1.og_aifsn has to be a number from 0 to 4294967295");
    for (const char *said : {"5", "{\"normal\":1}", "{\"normal\":1,\"other\":2}", "{\"normal\":1,\"overload\":\"2\"}",
                             "{\"normal\":1,\"overload\":2,\"more\":3}"})
        EXPECT_EQ(problem_of_sections("\"gateway\":{\"bs_inactivity_steer_time\":" + std::string(said) + "}"),
                  "gateway.bs_inactivity_steer_time has to be an object with normal and overload")
            << said;
}

TEST(ClientDocuments, WithWordsThatNoSetterTakesAreRefused) {
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"beacon_type":"WPA3"}})"),
              "vaps.1.beacon_type has to be None, Basic, WPA, 11i or WPAand11i");
    EXPECT_EQ(problem_of_sections(R"("radios":{"0":{"standard":"ax"}})"),
              "radios.0.standard has to be a, b, bg, g, an, gn, bgn, n, ac, nac or anac");
    EXPECT_EQ(problem_of_sections(R"("radios":{"0":{"country_code":"DEU"}})"),
              "radios.0.country_code has to be a country's two letters");
    for (const char *none : {"None", "SharedAuthentication", ""})
        EXPECT_NE(
            problem_of_sections("\"vaps\":{\"1\":{\"basic_authentication_modes\":\"" + std::string(none) + "\"}}"), "")
            << none;
    for (const char *methods : {"", "Label,", ",Label", "Keypad,Label", "Label,Label", "Labels", "Label,Push", "label"})
        EXPECT_NE(problem_of_sections("\"gateway\":{\"wps_config_methods_enabled\":\"" + std::string(methods) + "\"}"),
                  "")
            << methods;
    for (const char *methods : {"Label", "Keypad", "Label,Keypad", "Label,Display,PushButton,Keypad"})
        EXPECT_EQ(problem_of_sections("\"gateway\":{\"wps_config_methods_enabled\":\"" + std::string(methods) + "\"}"),
                  "")
            << methods;
}

TEST(ClientDocuments, WithStationsThatAreNoneAreRefused) {
    auto list = [](const std::string &entries) {
        return problem_of_sections("\"vaps\":{\"1\":{\"mac_address_control_list\":" + entries + "}}");
    };
    EXPECT_EQ(list("[]"), "");
    EXPECT_EQ(list(R"([{"list":"","mac":"02:00:00:00:00:01"}])"), "");
    for (const char *entries :
         {"5", "{}", R"(["02:00:00:00:00:01"])", R"([{"mac":"02:00:00:00:00:01"}])",
          R"([{"mac":"02:00:00:00:00:01","list":5}])", R"([{"mac":"02:00:00:00:00:01","list":"a","more":1}])",
          R"([{"mac":"02:00:00:00:00:0a","list":"a"},{"mac":"02:00:00:00:00:0A","list":"b"}])"})
        EXPECT_NE(list(entries), "") << entries;
    for (const char *mac : {"", "020000000001", "02:00:00:00:00:0g", "02:00:00:00:00:01;", "$(ls);00:00:00:01"})
        EXPECT_NE(list("[{\"mac\":\"" + std::string(mac) + "\",\"list\":\"a\"}]"), "") << mac;
    for (const char *name : {"$x", "`x`", "a;b", "a,b", "a=b", "a\\nb", "a\\\\b", "a\\\"b", "a\\u0000b"})
        EXPECT_NE(list("[{\"mac\":\"02:00:00:00:00:01\",\"list\":\"" + std::string(name) + "\"}]"), "") << name;
}

TEST(ClientDocuments, WithOtherStationsThatAreNoneAreRefused) {
    for (const char *entries : {R"([{"mac":"02:00:00:00:00:01","weight":1}])", R"([{"mac":"x","weight":1,"period":1}])",
                                R"([{"mac":"02:00:00:00:00:01","weight":"1","period":1}])",
                                R"([{"mac":"02:00:00:00:00:01","weight":1,"period":2147483648}])"})
        EXPECT_NE(problem_of_sections("\"gateway\":{\"advairtime_sta_list\":" + std::string(entries) + "}"), "")
            << entries;
    for (const char *entries : {R"(["02:00:00:00:00"])", "[5]", R"(["02:00:00:00:00:01","02:00:00:00:00:01"])"})
        EXPECT_NE(problem_of_sections("\"gateway\":{\"softblock_black_list\":" + std::string(entries) + "}"), "")
            << entries;
}

TEST(ClientDocuments, WithMoreStationsThanThereIsRoomForAreRefused) {
    for (size_t count : {64, 65}) {
        std::string macs;
        for (size_t i = 0; i < count; i++) {
            char mac[64];
            snprintf(mac, sizeof mac, "%s\"02:00:00:00:00:%02zx\"", i ? "," : "", i);
            macs += mac;
        }
        EXPECT_EQ(problem_of_sections("\"gateway\":{\"softblock_black_list\":[" + macs + "]}").empty(), count == 64);
    }
    for (size_t count : {168, 169}) {
        std::string entries;
        for (size_t i = 0; i < count; i++) {
            char entry[96];
            snprintf(entry, sizeof entry, R"(%s{"mac":"02:00:00:00:00:%02zx","list":""})", i ? "," : "", i);
            entries += entry;
        }
        EXPECT_EQ(problem_of_sections("\"vaps\":{\"1\":{\"mac_address_control_list\":[" + entries + "]}}").empty(),
                  count == 168);
    }
}

TEST(ClientDocuments, MayLeaveEverythingOut) {
    EXPECT_EQ(problem_of_sections(R"("vaps":{"1":{"ssid":null,"og_aifsn":[null,1,null,2]}},"radios":{},"gateway":{})"),
              "");
    EXPECT_EQ(problem_of(R"({"command":"export","result":{"schema":1,"vaps":{"1":{"ssid":"a"}}},"left_out":[]})"), "");
}

TEST(ClientDocuments, HaveTextsThatAreNoUtf8InHexadecimal) {
    const setting_row *ssid = find_setting("vaps", "ssid");
    for (const char *said : {R"("ssid":"caf\ufffd","ssid_hex":"636166E9")", R"("ssid_hex":"636166e9","ssid":"x")",
                             R"("ssid_hex":"636166e9")"}) {
        settings_tree settings("\"vaps\":{\"1\":{" + std::string(said) + "}}");
        const value *text = find_setting_value(settings.root, ssid, 1);
        ASSERT_NE(text, nullptr) << said;
        EXPECT_EQ(std::string(text->text, text->length), "caf\xe9") << said;
        EXPECT_EQ(count_values(find_place(settings.root, ssid->scope, 1)), 1u);
    }
    for (const char *hex : {"5", "\"6\"", "\"6g\"", "\"+6\"", "[]"})
        EXPECT_EQ(problem_of_sections("\"vaps\":{\"1\":{\"ssid_hex\":" + std::string(hex) + "}}"),
                  "vaps.1.ssid_hex has to be the bytes of a text in hexadecimal")
            << hex;
}

// --- changes ---

// "setSsid 1 x" for each call that leads from one document to the other; those that only may be needed in parentheses.
std::vector<std::string> calls_between(const std::string &now, const std::string &then,
                                       tree_source source = tree_source::DOCUMENT) {
    settings_tree before(now, source), after(then);
    change_list changes = find_changes(before.root, after.root);
    call_plan plan = {};
    for (size_t i = 0; i < changes.count; i++)
        plan_change(&plan, &changes.changes[i]);
    std::vector<std::string> calls;
    for (size_t i = 0; i < plan.count; i++) {
        char name[OPERATION_NAME_SIZE];
        operation_name(plan.calls[i].procedure, name);
        std::string words = name;
        for (size_t j = 0; j < plan.calls[i].arguments.count; j++) {
            const argument_value &argument = plan.calls[i].arguments.values[j];
            words += " " + (argument.kind == argument_kind::TEXT ? argument.text : std::to_string(argument.number));
        }
        calls.push_back(plan.calls[i].change.expected ? words : "(" + words + ")");
    }
    free_plan(&plan);
    free_changes(&changes);
    return calls;
}

using strings = std::vector<std::string>;

TEST(ClientChanges, AreNoneBetweenTheSame) {
    const std::string settings = R"("gateway":{"bs_enable":1,"bs_inactivity_steer_time":{"normal":1,"overload":2}},
        "radios":{"0":{"channel":6,"standard":"n"}},"vaps":{"1":{"ssid":"a","og_aifsn":[1,2,null,4]}})";
    EXPECT_EQ(calls_between(settings, settings), strings{});
}

TEST(ClientChanges, AreMadeWhereTheGatewayDoesNotTell) {
    EXPECT_EQ(calls_between(R"("vaps":{"1":{"og_aifsn":[1,2,null,4]}})",
                            R"("vaps":{"1":{"og_aifsn":[1,2,3,null],"dtim_period":2}})"),
              (strings{"setDtimPeriod 1 2", "setOgAifsn 1 3 3"}));
}

TEST(ClientChanges, AreMadeThroughTheIndexOfTheirPlace) {
    EXPECT_EQ(
        calls_between(R"("gateway":{})",
                      R"("gateway":{"bs_inactivity_steer_time":{"overload":2,"normal":1},
                                "implicit_beamforming_enable":true,"bs_enable":3,"wps_config_timeout":7},
                               "radios":{"0":{"wep_key":[null,"b","",null]},"1":{"transmit_power":5}},
                               "vaps":{"16":{"og_tx_op":[null,null,null,9]}})"),
        (strings{"setWepKey 1 2 b", "setWepKey 1 3 ", "setImplicitBeamformingEnable 0 1", "setWpsConfigTimeout 1 7",
                 "setTransmitPower 9 5", "setOgTxOp 16 4 9", "setBsEnable 3", "setBsInactivitySteerTime 1 1 2"}));
}

TEST(ClientChanges, ComeInAnOrderThatWorks) {
    const strings calls = calls_between(R"("gateway":{})",
                                        R"("gateway":{"wps_config_methods_enabled":"Keypad","bs_enable":1},
           "radios":{"0":{"radio_enabled":true,"ht_mcs":5,"auto_rate_fallback_enable":false,"ht_mode":true,
               "extension_channel":1,"channel_bw":2,"channel":11,"standard":"gn","country_code":"DE",
               "wep_key":["a",null,null,null]}},
           "vaps":{"1":{"wps_enable":true,"wps_model_name":"m","enable":true,"mac_address_control_enabled":1,
               "mac_address_control_list":[{"mac":"02:00:00:00:00:01","list":"a"}],"key_passphrase":"p",
               "wpa_encryption_modes":"AESEncryption","wpa_authentication_modes":"WPA2PSK","beacon_type":"11i",
               "ssid":"s","dtim_period":2}})");
    EXPECT_EQ(calls, (strings{"setCountryCode 1 DE",
                              "setStandard 1 gn",
                              "setChannel 1 11",
                              "setChannelBw 1 2",
                              "setExtensionChannel 1 1 1",
                              "setHtMode 1 1",
                              "setAutoRateFallbackEnable 1 0",
                              "setHtMcs 1 5",
                              "setSsid 1 s",
                              "setBeaconType 1 11i",
                              "setWpaAuthenticationModes 1 WPA2PSK",
                              "setWpaEncryptionModes 1 AESEncryption",
                              "setWepKey 1 1 a",
                              "setKeyPassphrase 1 1 p",
                              "setDtimPeriod 1 2",
                              "setMacAddressControlAdd 1 02:00:00:00:00:01 a",
                              "setBsEnable 1",
                              "setEnable 1 1",
                              "setWpsConfigMethodsEnabled 1 Keypad",
                              "setWpsModelName 1 m",
                              "setWpsEnable 1 1",
                              "setRadioEnabled 1 1",
                              "setMacAddressControlEnabled 1 1"}));
}

TEST(ClientChanges, OfAFamilyMayNeedOthersBehindThemAtTheSamePlaceOnly) {
    const std::string rest = R"("extension_channel":2,"ht_mode":false,"ht_mcs":0)";
    EXPECT_EQ(calls_between(R"("radios":{"0":{"channel":6,)" + rest + R"(},"1":{"channel":36,)" + rest + "}}",
                            R"("radios":{"0":{"channel":11,)" + rest + R"(},"1":{"channel":36,)" + rest + "}}"),
              (strings{"setChannel 1 11", "(setExtensionChannel 1 1 2)", "(setHtMode 1 0)", "(setHtMcs 1 0)"}));
    EXPECT_EQ(calls_between(R"("gateway":{"wps_config_methods_enabled":"Label"},
                               "vaps":{"1":{"wps_enable":true},"2":{"wps_enable":true},"9":{"wps_enable":false}})",
                            R"("gateway":{"wps_config_methods_enabled":"Keypad"},
                               "vaps":{"1":{"wps_enable":true},"2":{"wps_enable":true},"9":{"wps_enable":false}})"),
              (strings{"setWpsConfigMethodsEnabled 1 Keypad", "(setWpsEnable 1 1)", "(setWpsEnable 9 0)"}));
    EXPECT_EQ(calls_between(R"("vaps":{"1":{"wps_enable":true},"9":{"wps_enable":true}})",
                            R"("vaps":{"1":{"wps_enable":false},"9":{"wps_enable":true}})"),
              strings{"setWpsEnable 1 0"});
}

TEST(ClientChanges, OfAPureStandardStayInTheBandOfTheChannel) {
    auto standard = [](const char *radio, const char *now, const char *then) {
        std::string place = "\"radios\":{\"" + std::string(radio) + "\":{";
        return calls_between(place + now + "}}", place + then + "}}")[0];
    };
    EXPECT_EQ(standard("0", "", R"("standard":"n")"), "setStandard 1 bgn");
    EXPECT_EQ(standard("1", "", R"("standard":"n")"), "setStandard 9 an");
    EXPECT_EQ(standard("0", R"("channel":0)", R"("standard":"n")"), "setStandard 1 bgn");
    EXPECT_EQ(standard("0", R"("channel":36)", R"("standard":"n")"), "setStandard 1 an");
    EXPECT_EQ(standard("0", R"("channel":36)", R"("standard":"n","channel":14)"), "setStandard 1 bgn");
    EXPECT_EQ(standard("0", R"("channel":6)", R"("standard":"n","channel":15)"), "setStandard 1 an");
}

TEST(ClientChanges, OfTextsThatAShellSeesAreEscaped) {
    EXPECT_EQ(calls_between(R"("vaps":{})", R"("vaps":{"1":{"acct_server_key":"a\"b`c\\d$e'f","key_passphrase":"$"}})"),
              (strings{"setKeyPassphrase 1 1 $", "setAcctServerKey 1 a\\\"b\\`c\\\\d\\$e'f"}));
}

// For each setting that is a text of the shell's: the arguments of its setter.
struct shell_setting {
    const setting_row *setting;
    const shell_row *shell;
};

std::vector<shell_setting> shell_settings() {
    std::vector<shell_setting> found;
    for (size_t i = 0; i < setting_row_count; i++) {
        const procedure_row *setter = setting_rows[i].list ? nullptr : row_of(setting_rows[i].setter);
        const shell_row *shell =
            setter ? find_shell_row(setter, setter->arguments[setter->argument_count - 1].name) : nullptr;
        if (shell)
            found.push_back({&setting_rows[i], shell});
    }
    return found;
}

TEST(ClientChanges, OfAnyTextAreOneTextToAShell) {
    ASSERT_EQ(shell_settings().size(), 7u);
    const std::string hostile = R"("$(reboot)\"`reboot`\\';reboot;\\")";
    for (const shell_setting &one : shell_settings()) {
        std::string said = has_elements(one.setting) ? "[" + hostile + ",null,null,null]" : hostile;
        std::string section = scope_section(one.setting->scope);
        std::string place = std::to_string(places_of(one.setting->scope).first);
        settings_tree before(R"("vaps":{})"),
            after("\"" + section + "\":{\"" + place + "\":{\"" + one.setting->name + "\":" + said + "}}");
        change_list changes = find_changes(before.root, after.root);
        call_plan plan = {};
        for (size_t i = 0; i < changes.count; i++)
            plan_change(&plan, &changes.changes[i]);
        ASSERT_EQ(plan.count, 1u) << one.setting->name;
        const call_arguments &arguments = plan.calls[0].arguments;
        EXPECT_EQ(find_shell_character(one.shell, arguments.values[arguments.count - 1].text), nullptr)
            << one.setting->name;
        EXPECT_STREQ(arguments.values[arguments.count - 1].text, R"(\$(reboot)\"\`reboot\`\\';reboot;\\)");
        free_plan(&plan);
        free_changes(&changes);
    }
}

// What is said about taking back the changes from what a gateway has to a document, "" for nothing.
std::string no_way_back(const std::string &now, const std::string &then, bool shell_text = false) {
    TestSession test;
    test.session.settings.shell_text = shell_text;
    settings_tree before(now, tree_source::GATEWAY), after(then);
    change_list changes = find_changes(before.root, after.root);
    bool possible = check_way_back(&test.session, &changes);
    free_changes(&changes);
    EXPECT_EQ(possible, *test.session.problem == '\0');
    return test.session.problem;
}

TEST(ClientChanges, ThatCannotBeTakenBackWithoutAShellObeyingAreKnown) {
    auto list = [](const char *name) {
        return R"("vaps":{"3":{"mac_address_control_list":[{"mac":"02:00:00:00:00:01","list":")" + std::string(name) +
               R"("}]}})";
    };
    const std::string other = R"("vaps":{"3":{"mac_address_control_list":[{"mac":"02:00:00:00:00:02","list":"b"}]}})";
    EXPECT_EQ(no_way_back(list("$(reboot)"), other),
              "vap 3 mac_address_control_list could not be put back: <list_name> has $ in it, which the server's shell "
              "would obey, now or with the next change of the list; --shell-text sends it all the same");
    EXPECT_EQ(no_way_back(list("$(reboot)"), other, true), "");
    EXPECT_EQ(no_way_back(list("a"), other), "");
    EXPECT_EQ(no_way_back(list("$(reboot)"), R"("vaps":{"3":{"dtim_period":2}})"), "") << "the list stays";
    EXPECT_EQ(no_way_back(R"("gateway":{"advairtime_sta_list":[{"mac":"x;reboot","weight":1,"period":0}]})",
                          R"("gateway":{"advairtime_sta_list":[]})"),
              "gateway advairtime_sta_list could not be put back: <mac> has ; in it, which the server's shell would "
              "obey; put a backslash in front of it, or send it as it stands with --shell-text");
    EXPECT_EQ(
        no_way_back(R"-("vaps":{"1":{"acct_server_key":"$(reboot)"}})-", R"("vaps":{"1":{"acct_server_key":""}})"), "")
        << "it gets its backslashes";
}

// What is said about calls from nothing to this document that are too long, "" for nothing.
std::string too_long(const std::string &then) {
    TestSession test;
    settings_tree before(R"("vaps":{})"), after(then);
    change_list changes = find_changes(before.root, after.root);
    bool fits = check_sizes(&test.session, &changes);
    free_changes(&changes);
    EXPECT_EQ(fits, *test.session.problem == '\0');
    return test.session.problem;
}

TEST(ClientChanges, ThatNoCallHasRoomForAreKnownBeforeTheFirstIsMade) {
    // 8800 bytes with the call's 40, the index and the length of the text.
    constexpr size_t most = 8800 - 40 - 4 - 4;
    auto ssid = [](size_t length) { return R"("vaps":{"1":{"ssid":")" + std::string(length, 'a') + "\"}}"; };
    auto key = [](size_t length) { return R"("vaps":{"3":{"acct_server_key":")" + std::string(length, '$') + "\"}}"; };
    EXPECT_EQ(too_long(ssid(most)), "");
    EXPECT_EQ(too_long(ssid(most + 1)), "vap 1 ssid is longer than a call can be (8800 bytes in all)");
    EXPECT_EQ(too_long(key(most / 2)), "");
    EXPECT_EQ(too_long(key(most / 2 + 1)), "vap 3 acct_server_key is longer than a call can be (8800 bytes in all)");
}

TEST(ClientChanges, TakeAnMcsOfOneForAutomatic) {
    EXPECT_EQ(calls_between(R"("radios":{"0":{"ht_mcs":0}})", R"("radios":{"0":{"ht_mcs":1}})"), strings{});
}

TEST(ClientChanges, TakeAKeyThatIsNotStoredForAnEmptyOne) {
    value *list = new_list();
    value *key = add_string(list, nullptr, "null_key");
    EXPECT_TRUE(PASSPHRASE.read(key));
    EXPECT_STREQ(key->text, "");
    EXPECT_EQ(key->length, 0u);
    value *real = add_string(list, nullptr, "null_key2");
    EXPECT_TRUE(WEP_KEY.read(real));
    EXPECT_STREQ(real->text, "null_key2");
    free_value(list);
}

// --- lists ---

struct station {
    std::string mac;
    std::string list;
    int64_t weight;
    int64_t period;
    bool operator==(const station &) const = default;
};
using stations = std::vector<station>;

std::string mac_text(uint32_t number) {
    char text[32];
    snprintf(text, sizeof text, "02:00:00:00:00:%02x", number);
    return text;
}

// Some of ten stations in any order.
stations random_stations(std::mt19937 *random) {
    stations made;
    for (uint32_t i = 0; i < 10; i++)
        if ((*random)() % 2)
            made.push_back({mac_text(i), std::string(1, static_cast<char>('a' + (*random)() % 2)),
                            std::uniform_int_distribution<int64_t>(0, 2)(*random),
                            std::uniform_int_distribution<int64_t>(0, 2)(*random)});
    std::shuffle(made.begin(), made.end(), *random);
    return made;
}

std::string json_of(const stations &all, const std::string &name) {
    std::string text;
    for (const station &one : all) {
        text += text.empty() ? "" : ",";
        if (name == "softblock_black_list")
            text += "\"" + one.mac + "\"";
        else if (name == "mac_address_control_list")
            text += "{\"mac\":\"" + one.mac + "\",\"list\":\"" + one.list + "\"}";
        else
            text += "{\"mac\":\"" + one.mac + "\",\"weight\":" + std::to_string(one.weight) +
                    ",\"period\":" + std::to_string(one.period) + "}";
    }
    bool of_vap = name == "mac_address_control_list";
    return std::string(of_vap ? "\"vaps\":{\"1\":{\"" : "\"gateway\":{\"") + name + "\":[" + text + "]}" +
           (of_vap ? "}" : "");
}

// What the server's tools make of a call.
void carry_out(stations *all, const std::string &call) {
    std::vector<std::string> words;
    for (size_t begin = 0, end; begin <= call.size(); begin = end + 1) {
        end = std::min(call.find(' ', begin), call.size());
        words.push_back(call.substr(begin, end - begin));
    }
    auto known = [&] {
        return std::find_if(all->begin(), all->end(), [&](const station &one) { return one.mac == words[2]; });
    };
    if (words[0] == "setMacAddressControlClear" || words[0] == "setAdvairtimeStaWeightDestroyAll") {
        all->clear();
    } else if (words[0] == "setAdvairtimeStaPeriod") {
        all->at(std::stoul(words[2]) - 1).period = std::stol(words[3]);
    } else if (words[0] == "setAdvairtimeStaEntryAdd" && known() != all->end()) {
        known()->weight = std::stol(words[3]);
    } else if (words[0].ends_with("Del") || words[0].ends_with("Delete")) {
        ASSERT_NE(known(), all->end()) << call;
        all->erase(known());
    } else {
        ASSERT_EQ(known(), all->end()) << call;
        bool named = words[0] == "setMacAddressControlAdd";
        bool weighted = words[0] == "setAdvairtimeStaEntryAdd";
        all->push_back({words[2], named ? words[3] : "", weighted ? std::stol(words[3]) : 0, 0});
    }
}

TEST(ClientLists, LeadFromAnyListToAnyOther) {
    std::mt19937 random(1);
    for (const char *name : {"mac_address_control_list", "advairtime_sta_list", "softblock_black_list"})
        for (int i = 0; i < 300; i++) {
            stations now = random_stations(&random), then = random_stations(&random);
            stations made = now;
            for (const std::string &call : calls_between(json_of(now, name), json_of(then, name)))
                carry_out(&made, call);
            EXPECT_EQ(json_of(made, name), json_of(then, name)) << "from " << json_of(now, name);
            EXPECT_EQ(calls_between(json_of(then, name), json_of(then, name)), strings{});
        }
}

TEST(ClientLists, LoseOneStationByTakingItOff) {
    EXPECT_EQ(calls_between(json_of({{mac_text(1), "a", 1, 0}}, "mac_address_control_list"),
                            json_of({}, "mac_address_control_list")),
              strings{"setMacAddressControlDelete 1 02:00:00:00:00:01"});
}

// Taking one off has the server's shell see the others again.
TEST(ClientLists, WithANameThatAShellObeysAreEmptiedAndMadeAnew) {
    const std::string then = json_of({{mac_text(1), "a", 0, 0}, {mac_text(3), "c", 0, 0}}, "mac_address_control_list");
    auto now = [](const std::string &name) {
        return json_of({{mac_text(1), "a", 0, 0}, {mac_text(2), name, 0, 0}, {mac_text(3), "c", 0, 0}},
                       "mac_address_control_list");
    };
    for (const char *name : {"$x", "`x`", "\\\"", "\\\\"})
        EXPECT_EQ(calls_between(now(name), then, tree_source::GATEWAY),
                  (strings{"setMacAddressControlClear 1", "setMacAddressControlAdd 1 02:00:00:00:00:01 a",
                           "setMacAddressControlAdd 1 02:00:00:00:00:03 c"}))
            << name;
    EXPECT_EQ(calls_between(now("x;y=z"), then, tree_source::GATEWAY),
              strings{"setMacAddressControlDelete 1 02:00:00:00:00:02"});
}

TEST(ClientLists, AreEmptiedAtOnceWhereThatIsPossible) {
    stations two = {{mac_text(1), "a", 1, 0}, {mac_text(2), "a", 1, 0}};
    EXPECT_EQ(calls_between(json_of(two, "mac_address_control_list"), json_of({}, "mac_address_control_list")),
              strings{"setMacAddressControlClear 1"});
    EXPECT_EQ(calls_between(json_of(two, "advairtime_sta_list"), json_of({}, "advairtime_sta_list")),
              strings{"setAdvairtimeStaWeightDestroyAll 1"});
    EXPECT_EQ(
        calls_between(json_of(two, "softblock_black_list"), json_of({}, "softblock_black_list")),
        (strings{"setSoftblockBlackListDel 1 02:00:00:00:00:01", "setSoftblockBlackListDel 1 02:00:00:00:00:02"}));
}

}  // namespace
