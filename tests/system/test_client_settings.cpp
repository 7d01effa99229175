// export, diff, apply and confirm with the real server: all settings of a gateway there and back.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "client/names.h"
#include "client/settings.h"
#include "config/store.h"
#include "server/wire.h"
#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

using json = nlohmann::json;

constexpr const char DOCUMENT[] = "/tmp/settings.json";
constexpr const char STATE_FILE[] = "/run/vlk_rpc_wlan_config_client.pending";
constexpr const char RESTORING_FILE[] = "/run/vlk_rpc_wlan_config_client.restoring";
constexpr const char LOST_FILE[] = "/run/vlk_rpc_wlan_config_client.lost";

// The VAPs whose settings the tests change: the one whose keys have no suffix, and one of the other radio.
constexpr int CHANGED_VAPS[] = {1, 12};

json parsed(const std::string &text) {
    json document = json::parse(text, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << text;
    return document;
}

json exported() {
    command_output output = client("export");
    EXPECT_EQ(output.status, 0) << output.errors;
    return parsed(output.text);
}

// A whole document with these sections.
std::string document_of(const std::string &sections) {
    return R"({"schema":1,)" + sections + "}";
}

void restore_factory_settings() {
    EXPECT_EQ(code_of(call(PROC_wlan_set_restore_defaults, xdr_word(2))), 0);
}

void bring_wifi_up() {
    command_output output = run_command("apup");
    EXPECT_EQ(output.status, 0) << output.errors;
}

// How many settings the server has written since a mark of the journal.
long written_since(size_t mark) {
    strings lines = lines_since(JOURNAL_FILE, mark);
    return std::count_if(lines.begin(), lines.end(),
                         [](const std::string &line) { return line.starts_with("run cfg -a"); });
}

// A minute: restoring asks for every setting, which takes long under a sanitizer on a busy machine.
bool wait_for(const std::function<bool()> &happened) {
    for (int i = 0; i < 6000; i++) {
        if (happened())
            return true;
        usleep(10000);
    }
    return false;
}

// --- examples: the table's second values ---

strings words_of(const std::string &text, char separator) {
    strings words;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, separator);)
        words.push_back(word);
    return words;
}

// The value that a setting's row has for this place, "" for none.
std::string example_of(const setting_row *setting, int place) {
    std::string example = setting->example;
    size_t bar = example.find('|');
    bool other_radio =
        setting->scope == setting_scope::RADIO || setting->scope == setting_scope::RADIO_KEYS ? place == 1 : place > 8;
    if (bar == std::string::npos)
        return example;
    return other_radio ? example.substr(bar + 1) : example.substr(0, bar);
}

json example_value(const setting_row *setting, const std::string &word) {
    switch (setting_kind(setting)) {
        case argument_kind::BOOL:
            return word == "true";
        case argument_kind::TEXT:
            return word;
        case argument_kind::INT:
        case argument_kind::UINT:
        case argument_kind::VAP:
        case argument_kind::IGNORED:
        case argument_kind::USHORT:
            break;
    }
    return std::stoll(word);
}

const procedure_row *row_of(uint32_t procedure) {
    return std::find_if(procedure_rows, procedure_rows + procedure_row_count,
                        [=](const procedure_row &row) { return row.number == procedure; });
}

// What the document has to say after the example was set.
json example_json(const setting_row *setting, int place) {
    std::string example = example_of(setting, place);
    if (strcmp(setting->name, "bs_inactivity_steer_time") == 0)
        return {{"normal", 21}, {"overload", 22}};
    json list = json::array();
    for (const std::string &word : words_of(example, ' ')) {
        strings parts = words_of(word, '=');
        if (strcmp(setting->name, "mac_address_control_list") == 0)
            list.push_back({{"mac", parts[0]}, {"list", parts[1]}});
        else if (strcmp(setting->name, "advairtime_sta_list") == 0)
            list.push_back({{"mac", parts[0]},
                            {"weight", std::stoi(parts[1])},
                            {"period", std::stoi(parts[1].substr(parts[1].find(',') + 1))}});
        else if (setting->list)
            list.push_back(word);
        else
            list.push_back(example_value(setting, word));
    }
    return setting->list || has_elements(setting) ? list : example_value(setting, example);
}

std::string escaped(const std::string &text) {
    std::string made;
    for (char c : text)
        made += strchr("\"`\\$", c) ? std::string("\\") + c : std::string(1, c);
    return made;
}

// Setters that hand their text to a shell as it comes.
bool is_verbatim(const setting_row *setting) {
    static const std::set<std::string> names = {
        "wep_key",         "radius_server_address", "radius_operator_name", "radius_location_data",
        "acct_server_key", "acct_server_address",   "wps_device_password"};
    return names.count(setting->name);
}

// Calls a setter with the numbers that stand first, and one more value.
void set_value(const setting_row *setting, int place, int element, const json &said) {
    const procedure_row *getter = row_of(setting->getter);
    bytes arguments;
    const int64_t leading[] = {call_index(setting, place), element + 1};
    for (size_t i = 0; i < getter->argument_count; i++)
        arguments += xdr_word(static_cast<uint32_t>(leading[i]));
    if (said.is_string())
        arguments += xdr_string_bytes(is_verbatim(setting) ? escaped(said) : said.get<std::string>());
    else if (said.is_object())
        arguments += xdr_word(said["normal"]) + xdr_word(said["overload"]);
    else
        arguments += xdr_word(static_cast<uint32_t>(said.is_boolean() ? said.get<bool>() : said.get<int64_t>()));
    EXPECT_EQ(code_of(call(setting->setter, arguments)), 0) << setting->name << " at " << place;
}

void set_list(const setting_row *setting, int place) {
    uint32_t number = 0;
    for (const json &entry : example_json(setting, place)) {
        number++;
        if (entry.is_string()) {
            EXPECT_EQ(set_text(PROC_wlan_set_softblock_black_list_add, 1, entry), 0);
        } else if (entry.contains("list")) {
            EXPECT_EQ(code_of(call(PROC_wlan_set_mac_address_control_add,
                                   vap(place) + xdr_string_bytes(entry["mac"]) + xdr_string_bytes(entry["list"]))),
                      0);
        } else {
            EXPECT_EQ(code_of(call(PROC_wlan_set_advairtime_sta_entry_add,
                                   vap(1) + xdr_string_bytes(entry["mac"]) + xdr_word(entry["weight"]))),
                      0);
            EXPECT_EQ(code_of(call(PROC_wlan_set_advairtime_sta_period,
                                   vap(1) + xdr_word(number) + xdr_word(entry["period"]))),
                      0);
        }
    }
}

void set_example(const setting_row *setting, int place) {
    if (example_of(setting, place).empty())
        return;
    json example = example_json(setting, place);
    if (setting->list)
        set_list(setting, place);
    else if (has_elements(setting))
        for (int element = 0; element < SETTING_ELEMENTS; element++)
            set_value(setting, place, element, example[static_cast<size_t>(element)]);
    else
        set_value(setting, place, 0, example);
}

bool is_changed_place(const setting_row *setting, int place) {
    return strcmp(scope_section(setting->scope), "vaps") != 0 ||
           std::find(std::begin(CHANGED_VAPS), std::end(CHANGED_VAPS), place) != std::end(CHANGED_VAPS);
}

using place_function = std::function<void(const setting_row *, int)>;

// Every place at which the test changes a setting, in the order in which settings are set.
void for_each_change(const place_function &visit) {
    for (int phase = 0; phase <= static_cast<int>(LAST_SETTING_PHASE); phase++)
        for (size_t i = 0; i < setting_row_count; i++) {
            const setting_row *setting = &setting_rows[i];
            place_range places = places_of(setting->scope);
            for (int place = places.first; place <= places.last; place++)
                if (static_cast<int>(setting->phase) == phase && is_changed_place(setting, place))
                    visit(setting, place);
        }
}

// What a document says of a setting; a text that is no UTF-8 as its bytes.
json value_in(const json &document, const setting_row *setting, int place) {
    std::string section = scope_section(setting->scope);
    json object = document.value(section, json::object());
    if (section != "gateway")
        object = object.value(std::to_string(place), json::object());
    std::string hex = object.value(std::string(setting->name) + "_hex", "");
    if (hex.empty())
        return object.value(setting->name, json());
    std::string text;
    for (size_t i = 0; i < hex.size(); i += 2)
        text += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return text;
}

std::string dumped(const json &shown) {
    return shown.dump(-1, ' ', false, json::error_handler_t::replace);
}

// With factory settings, which are put back afterwards. The PIN that is set is only read back when the WPS files are
// made anew.
class AllSettings : public WatchedGateway {
protected:
    void SetUp() override {
        unlink("/tmp/wifi_defaults.dat");
        restore_factory_settings();
        bring_wifi_up();
        begin_watching();
    }

    void TearDown() override {
        EXPECT_EQ(run_command("fault off").status, 0);
        unlink(DOCUMENT);
        kept.put_back();
    }

    static void TearDownTestSuite() {
        set_store({});
        run_command("apup");
        restart_driver();
    }

    static void change_every_setting() {
        for_each_change([](const setting_row *setting, int place) {
            if (strcmp(setting->name, "wps_device_password") == 0)
                set_example(setting, place);
        });
        run_command("rm -f /nvram/etc/wpa2/*");
        bring_wifi_up();
        for_each_change([](const setting_row *setting, int place) {
            if (strcmp(setting->name, "wps_device_password") != 0)
                set_example(setting, place);
        });
        bring_wifi_up();
    }

private:
    kept_settings kept;
};

TEST_F(AllSettings, ExportedFromAChangedGatewayAndAppliedToFactorySettingsAreTheSameAgain) {
    json factory = exported();
    change_every_setting();
    json changed = exported();
    std::set<std::string> differing;
    for_each_change([&](const setting_row *setting, int place) {
        json found = value_in(changed, setting, place);
        if (!example_of(setting, place).empty()) {
            EXPECT_EQ(dumped(found), dumped(example_json(setting, place))) << setting->name << " at " << place;
        }
        if (found != value_in(factory, setting, place))
            differing.insert(setting->name);
    });
    EXPECT_EQ(differing.size(), setting_row_count) << "each has another value than the factory's somewhere";

    write_file(DOCUMENT, dumped(changed));
    restore_factory_settings();
    // The WPS files are missing until Wi-Fi is brought up, and are then made with the PIN that is set by then.
    command_output first = client(std::string("apply --keep-going -o json ") + DOCUMENT);
    EXPECT_EQ(first.status, 1) << first.errors;
    json failures = parsed(first.text)["result"]["failed"];
    for (const json &failed : failures)
        EXPECT_TRUE(failed["setting"] == "wps_uuid" || failed["setting"] == "wps_model_name") << failed;
    bring_wifi_up();
    command_output second = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(second.status, 0) << second.text << second.errors;
    json again = exported();
    for (json *document : {&changed, &again})
        document->erase("exported");
    EXPECT_EQ(again, changed) << json::diff(changed, again).dump(2, ' ', false, json::error_handler_t::replace);
}

TEST_F(AllSettings, OfAnUnchangedGatewayDifferInNothingAndNothingIsSet) {
    ASSERT_EQ(client(std::string("export --file ") + DOCUMENT).status, 0);
    size_t mark = mark_of(JOURNAL_FILE);
    command_output diff = client(std::string("diff ") + DOCUMENT);
    EXPECT_EQ(diff.status, 0);
    EXPECT_EQ(diff.text, "no changes\n");
    command_output apply = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0);
    EXPECT_EQ(apply.text, "no changes\n");
    EXPECT_EQ(written_since(mark), 0);
}

TEST_F(AllSettings, OfWhichOneIsChangedAreSetWithOneCall) {
    json document = exported();
    document["vaps"]["3"]["og_tx_op"][1] = 77;
    document["vaps"] = {{"3", document["vaps"]["3"]}};
    write_file(DOCUMENT, document.dump());
    command_output diff = client(std::string("diff ") + DOCUMENT);
    EXPECT_EQ(diff.text,
              "WHERE             SETTING   NOW  THEN\n"
              "vap 3 category 2  og_tx_op    0    77\n");
    EXPECT_EQ(client(std::string("apply --dry-run ") + DOCUMENT).text, "vlk_rpc_wlan_config_client setOgTxOp 3 2 77\n");
    begin_watching();
    command_output apply = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0) << apply.errors;
    EXPECT_EQ(apply.text, diff.text);
    EXPECT_EQ(written_since(journal_mark), 1);
    EXPECT_EQ(store_value("AP_WMMTXOP_3"), "0;77;94;47");
}

TEST_F(AllSettings, AreExportedForTheirOwnerOnlyAndTheSameLineByLine) {
    write_file(DOCUMENT, "older");
    ASSERT_EQ(chmod(DOCUMENT, 0644), 0);
    EXPECT_EQ(client(std::string("export --file ") + DOCUMENT).status, 0);
    struct stat status = {};
    ASSERT_EQ(stat(DOCUMENT, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    std::string differences =
        run_command(std::string("/usr/sbin/vlk_rpc_wlan_config_client export 2>/dev/null | diff ") + DOCUMENT +
                    " - | grep -v exported | grep '^[<>]'")
            .text;
    EXPECT_EQ(differences, "");
}

TEST_F(AllSettings, AreExportedIntoTheFileBehindALink) {
    write_file(DOCUMENT, "older");
    ASSERT_EQ(symlink(DOCUMENT, "/tmp/link"), 0);
    EXPECT_EQ(client("export --file /tmp/link").status, 0);
    EXPECT_EQ(parsed(read_file(DOCUMENT))["schema"], 1);
    struct stat status = {};
    ASSERT_EQ(lstat("/tmp/link", &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    unlink("/tmp/link");
}

TEST_F(AllSettings, CannotBeExportedIntoAFolderThatIsNotThere) {
    command_output output = client("export --file /nowhere/settings.json");
    EXPECT_EQ(output.status, 7);
    EXPECT_EQ(output.errors, "export: cannot write /nowhere/settings.json: No such file or directory\n");
}

TEST_F(AllSettings, AreExportedWithoutSecretsWhichThenStayAsTheyAre) {
    EXPECT_EQ(set_text(PROC_wlan_set_acct_server_key, 2, "old"), 0);
    EXPECT_NE(exported().dump().find("\"old\""), std::string::npos);
    command_output output = client(std::string("export --without-secrets --file ") + DOCUMENT);
    EXPECT_EQ(output.status, 0);
    json document = parsed(read_file(DOCUMENT));
    for (const char *secret : {"key_passphrase", "radius_server_key", "acct_server_key", "wps_device_password"})
        EXPECT_FALSE(document["vaps"]["2"].contains(secret)) << secret;
    EXPECT_FALSE(document["radios"]["0"].contains("wep_key"));
    EXPECT_TRUE(document["vaps"]["2"].contains("ssid"));
    EXPECT_EQ(set_text(PROC_wlan_set_acct_server_key, 2, "new"), 0);
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).text, "no changes\n");
    EXPECT_EQ(store_value("AP_ACCT_SECRET_2"), "new");
}

TEST_F(AllSettings, NameWhatTheGatewayDoesNotTell) {
    command_output output = client(std::string("export --file ") + DOCUMENT);
    EXPECT_NE(output.errors.find("wps_model_name is left out: its getter fails for vap 2-8, 10-16\n"),
              std::string::npos)
        << output.errors;
    json answer = parsed(client("export -o json").text);
    EXPECT_EQ(answer["command"], "export");
    EXPECT_EQ(answer["result"]["vaps"]["1"]["ssid"], "Gateway");
    bool named = false;
    for (const json &entry : answer["left_out"])
        named = named || (entry["where"] == "vap 2" && entry["setting"] == "wps_model_name");
    EXPECT_TRUE(named);
}

TEST_F(AllSettings, AreTakenFromAnAnswerAsWell) {
    write_file(DOCUMENT, client("export -o json").text);
    EXPECT_EQ(client(std::string("diff ") + DOCUMENT).text, "no changes\n");
}

TEST_F(AllSettings, AreShownWithoutSecrets) {
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"key_passphrase":"well known"}})"));
    command_output diff = client(std::string("diff -o json ") + DOCUMENT);
    EXPECT_EQ(parsed(diff.text)["result"]["changes"],
              (json{{{"where", "vap 2"}, {"setting", "key_passphrase"}, {"now", "(secret)"}, {"then", "(secret)"}}}));
}

// What the radio is to be after every change of its mode.
struct radio_mode {
    int radio;
    const char *standard;
    int channel;
    int width;
    int side;
};

TEST_F(AllSettings, OfTheModeAreSetFromEachToEachOther) {
    const radio_mode modes[] = {{0, "n", 0, 1, 2},    {0, "bg", 6, 0, 2},  {0, "bgn", 7, 2, 1}, {0, "n", 11, 0, 2},
                                {0, "gn", 6, 1, 0},   {1, "a", 36, 0, 2},  {1, "n", 0, 2, 0},   {1, "anac", 0, 3, 2},
                                {1, "nac", 36, 1, 1}, {1, "n", 149, 0, 2}, {1, "ac", 149, 2, 1}};
    for (const radio_mode &mode : modes) {
        bool pure = strcmp(mode.standard, "n") == 0 || strcmp(mode.standard, "nac") == 0;
        json radio = {{"standard", mode.standard},
                      {"channel", mode.channel},
                      {"channel_bw", mode.width},
                      {"extension_channel", mode.side},
                      {"ht_mode", pure}};
        write_file(DOCUMENT, json{{"schema", 1}, {"radios", {{std::to_string(mode.radio), radio}}}}.dump());
        command_output apply = client(std::string("apply ") + DOCUMENT);
        EXPECT_EQ(apply.status, 0) << radio << "\n" << apply.text << apply.errors;
        EXPECT_EQ(client(std::string("diff ") + DOCUMENT).text, "no changes\n") << radio;
        std::string base = store_value(mode.radio == 0 ? "AP_CHMODE_2" : "AP_CHMODE");
        EXPECT_EQ(base.find(mode.radio == 0 ? "11NA" : "11NG"), std::string::npos) << base << " is of the other band";
    }
}

TEST_F(AllSettings, OfAPureStandardAloneAreSetWithItsSwitch) {
    write_file(DOCUMENT, document_of(R"("radios":{"0":{"standard":"n"}})"));
    EXPECT_EQ(client(std::string("apply --dry-run ") + DOCUMENT).text,
              "vlk_rpc_wlan_config_client setStandard 1 bgn\n"
              "vlk_rpc_wlan_config_client setHtMode 1 1\n");
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_CHMODE_2"), "11NGHT20");
    EXPECT_EQ(get_text(PROC_wlan_get_standard, 1), (text_result{0, "n"}));
}

TEST_F(AllSettings, OfAPureStandardFollowTheGatewaysOwnChannel) {
    EXPECT_EQ(set_number(PROC_wlan_set_channel, 1, 36), 0);
    write_file(DOCUMENT, document_of(R"("radios":{"0":{"standard":"n"}})"));
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_CHMODE_2"), "11NAHT20");
}

TEST_F(AllSettings, ThatWpsMethodsSwitchAreSetAgain) {
    EXPECT_EQ(set_number(PROC_wlan_set_wps_enable, 1, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_wps_enable, 9, 0), 0);
    write_file(DOCUMENT, document_of(R"("gateway":{"wps_config_methods_enabled":"Keypad"},
                                        "vaps":{"1":{"wps_enable":true},"9":{"wps_enable":false}})"));
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("WPS_ENABLE"), "2");
    EXPECT_EQ(store_value("WPS_ENABLE_9"), "0");
}

TEST_F(AllSettings, SetAnEmptySsidAlsoWhereEnablingGivesOne) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 3, ""), 0);
    write_file(DOCUMENT, document_of(R"("vaps":{"3":{"enable":true,"ssid":""}})"));
    command_output apply = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0) << apply.text << apply.errors;
    EXPECT_EQ(store_value("AP_ENABLE_3"), "1");
    EXPECT_EQ(store_value("AP_SSID_3"), "");
}

TEST_F(AllSettings, OfTheDryRunCanBePastedIntoAShell) {
    json document = {{"schema", 1}};
    document["vaps"]["2"]["ssid"] = "it's \"$HOME\" `ls` \\";
    document["vaps"]["5"]["ssid_hex"] = "1b5b6de927";
    document["vaps"]["2"]["acct_server_key"] = "$(reboot)";
    document["vaps"]["2"]["sta_assoc_rssi_thresh"] = -80;
    write_file(DOCUMENT, document.dump());
    begin_watching();
    command_output dry = client(std::string("apply --dry-run ") + DOCUMENT);
    EXPECT_EQ(dry.status, 0);
    EXPECT_EQ(written_since(journal_mark), 0);
    EXPECT_EQ(dry.text,
              "vlk_rpc_wlan_config_client setSsid 2 'it'\\''s \"$HOME\" `ls` \\'\n"
              "vlk_rpc_wlan_config_client setSsid 5 $'\\x1b[m\\xe9\\x27'\n"
              "vlk_rpc_wlan_config_client setAcctServerKey 2 '\\$(reboot)'\n"
              "vlk_rpc_wlan_config_client setStaAssocRssiThresh 2 -80\n");
    write_file("/tmp/settings.sh", dry.text);
    EXPECT_EQ(run_command("bash -e /tmp/settings.sh").status, 0);
    EXPECT_EQ(client(std::string("diff ") + DOCUMENT).text, "no changes\n");
    EXPECT_EQ(store_value("AP_ACCT_SECRET_2"), "$(reboot)");
    EXPECT_EQ(store_value("AP_SSID_5"), "\x1b[m\xe9'");
}

TEST_F(AllSettings, OfTheDryRunNameTheServerAndWhatMayNotBeNeeded) {
    EXPECT_EQ(set_number(PROC_wlan_set_channel, 1, 6), 0);
    write_file(DOCUMENT, document_of(R"("radios":{"0":{"standard":"bg","channel":6}})"));
    // The gateway's own address, written in another way.
    EXPECT_EQ(client(std::string("apply --dry-run --server 192.168.65278 ") + DOCUMENT).text,
              "vlk_rpc_wlan_config_client --server 192.168.65278 setStandard 1 bg\n"
              "vlk_rpc_wlan_config_client --server 192.168.65278 setChannel 1 6  # if a call above has changed it\n");
}

TEST_F(AllSettings, StopAtTheFirstThatFailsUnlessToldToGoOn) {
    const std::string document = document_of(R"("radios":{"0":{"country_code":"XX"}},"vaps":{"2":{"dtim_period":9}})");
    write_file(DOCUMENT, document);
    command_output stopped = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(stopped.status, 1);
    EXPECT_EQ(stopped.errors, "apply: radio 0 country_code: setCountryCode: the server answered failure (-1)\n");
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
    command_output went_on = client(std::string("apply --keep-going -o json ") + DOCUMENT);
    EXPECT_EQ(went_on.status, 1);
    EXPECT_EQ(store_value("AP_DTIM_2"), "9");
    json answer = parsed(went_on.text);
    EXPECT_EQ(answer["error"]["status"], 1);
    EXPECT_EQ(answer["result"]["failed"][0]["setting"], "country_code");
    EXPECT_EQ(answer["result"]["changes"][0]["setting"], "dtim_period");
    EXPECT_EQ(answer["result"]["changes"].size(), 1u);
}

TEST_F(AllSettings, ThatDoNotTakeAreNamed) {
    // Cut to 32 bytes by the server.
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"ssid":"a name of more than thirty-two bytes"}})"));
    command_output apply = client(std::string("apply -o json ") + DOCUMENT);
    EXPECT_EQ(apply.status, 1);
    json not_taken = parsed(apply.text)["result"]["not_taken"];
    ASSERT_EQ(not_taken.size(), 1u);
    EXPECT_EQ(not_taken[0]["setting"], "ssid");
    EXPECT_EQ(not_taken[0]["now"], "a name of more than thirty-two b");
}

TEST_F(AllSettings, ThatTakeEffectLaterAreNoFailure) {
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"bs_bss_enable":1}})"));
    command_output apply = client(std::string("apply -o json ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0) << apply.text << apply.errors;
    json result = parsed(apply.text)["result"];
    EXPECT_EQ(result["later"][0]["setting"], "bs_bss_enable");
    EXPECT_EQ(result["changes"].size(), 1u);
    EXPECT_EQ(written_since(journal_mark), 2) << "it is set once, which are two lines of the store";
    bring_wifi_up();
    EXPECT_EQ(client(std::string("diff ") + DOCUMENT).text, "no changes\n");
}

TEST_F(AllSettings, OfAMissingFileAreStatusSevenAndOfABadOneTwo) {
    command_output missing = client("diff /nowhere.json");
    EXPECT_EQ(missing.status, 7);
    EXPECT_EQ(missing.errors, "diff: cannot read /nowhere.json: No such file or directory\n");
    begin_watching();
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"ssid":"new"},"3":{"sid":"x"}})"));
    command_output unknown = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.errors, "apply: /tmp/settings.json: vaps.3.sid is no setting there\n");
    EXPECT_EQ(written_since(journal_mark), 0);
}

TEST_F(AllSettings, ThatNoCallHasRoomForAreRefusedBeforeAnyIsSet) {
    write_file(DOCUMENT,
               document_of(R"("vaps":{"1":{"dtim_period":7},"2":{"ssid":")" + std::string(9000, 'a') + "\"}}"));
    for (const char *command : {"diff ", "apply ", "apply --dry-run ", "apply --keep-going "}) {
        command_output output = client(command + std::string(DOCUMENT));
        EXPECT_EQ(output.status, 2) << command;
        EXPECT_NE(output.errors.find(": vap 2 ssid is longer than a call can be (8800 bytes in all)\n"),
                  std::string::npos)
            << output.errors;
    }
    EXPECT_EQ(written_since(journal_mark), 0);
}

TEST_F(AllSettings, ThatCannotBeShownBareAreNotSet) {
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":7}})"));
    command_output bare = client(std::string("apply -o value ") + DOCUMENT);
    EXPECT_EQ(bare.status, 2);
    EXPECT_EQ(bare.errors, "apply: the result has several values: choose one by its name with --field\n");
    EXPECT_EQ(written_since(journal_mark), 0);
    command_output named = client(std::string("apply --field setting ") + DOCUMENT);
    EXPECT_EQ(named.status, 0) << named.errors;
    EXPECT_EQ(named.text, "dtim_period\n");
}

TEST_F(AllSettings, AreReadFromStandardInput) {
    EXPECT_EQ(client("diff - < /dev/null").errors, "diff: standard input: no JSON at line 1, column 1\n");
    EXPECT_EQ(client("diff - < /").errors, "diff: cannot read standard input: Is a directory\n");

    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":1}})"));
    EXPECT_EQ(client(std::string("diff - < ") + DOCUMENT).text, "no changes\n");
}

TEST_F(AllSettings, OfABusyServerEndTheCommandWithItsStatus) {
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":8,"rts_threshold":7}})"));
    fault("cfg slow 1.3");
    EXPECT_EQ(client(std::string("apply --keep-going --timeout 1 ") + DOCUMENT).status, 4);
    fault("cfg off");
    EXPECT_EQ(get_number(PROC_wlan_get_rts_threshold, 2), (number_result{0, 2346})) << "it did not go on";
}

// Lists of stations.

TEST_F(AllSettings, ThatAreListsChangeByTheFewestCalls) {
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"mac_address_control_list":[
        {"mac":"02:00:00:00:00:01","list":"a"},{"mac":"02:00:00:00:00:02","list":"steerlist"},
        {"mac":"02:00:00:00:00:03","list":""}]}})"));
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_MACLIST_2"), "02:00:00:00:00:01,a;02:00:00:00:00:02,steerlist;02:00:00:00:00:03,;");
    EXPECT_EQ(client(std::string("diff ") + DOCUMENT).text, "no changes\n");
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"mac_address_control_list":[
        {"mac":"02:00:00:00:00:02","list":"steerlist"},{"mac":"02:00:00:00:00:04","list":"a"}]}})"));
    EXPECT_EQ(client(std::string("apply --dry-run ") + DOCUMENT).text,
              "vlk_rpc_wlan_config_client setMacAddressControlDelete 2 02:00:00:00:00:01\n"
              "vlk_rpc_wlan_config_client setMacAddressControlDelete 2 02:00:00:00:00:03\n"
              "vlk_rpc_wlan_config_client setMacAddressControlAdd 2 02:00:00:00:00:04 a\n");
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_MACLIST_2"), "02:00:00:00:00:02,steerlist;02:00:00:00:00:04,a;");
}

TEST_F(AllSettings, ThatAreListsOfStationsWithAWeightKeepTheirOrder) {
    const std::string before = R"("gateway":{"advairtime_sta_list":[
        {"mac":"02:00:00:00:00:01","weight":10,"period":1},{"mac":"02:00:00:00:00:02","weight":20,"period":0},
        {"mac":"02:00:00:00:00:03","weight":30,"period":3}]})";
    write_file(DOCUMENT, document_of(before));
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    write_file(DOCUMENT, document_of(R"("gateway":{"advairtime_sta_list":[
        {"mac":"02:00:00:00:00:02","weight":25,"period":5},{"mac":"02:00:00:00:00:03","weight":30,"period":3},
        {"mac":"02:00:00:00:00:0A","weight":1,"period":0}]})"));
    EXPECT_EQ(client(std::string("apply --dry-run ") + DOCUMENT).text,
              "vlk_rpc_wlan_config_client setAdvairtimeStaEntryDel 1 02:00:00:00:00:01\n"
              "vlk_rpc_wlan_config_client setAdvairtimeStaEntryAdd 1 02:00:00:00:00:02 25\n"
              "vlk_rpc_wlan_config_client setAdvairtimeStaPeriod 1 1 5\n"
              "vlk_rpc_wlan_config_client setAdvairtimeStaEntryAdd 1 02:00:00:00:00:0a 1\n");
    command_output apply = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0) << apply.text << apply.errors;
    EXPECT_EQ(client(std::string("diff ") + DOCUMENT).text, "no changes\n");
}

TEST_F(AllSettings, NeverHandAnOddMacOfTheStoreToAShell) {
    set_store({"AP_RADIO_ID=0", "AP_MACLIST=02:00:00:00:00:01,a;x$(touch /tmp/owned),b;"});
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"mac_address_control_list":[
        {"mac":"02:00:00:00:00:01","list":"a"}]}})"));
    EXPECT_EQ(client(std::string("apply --dry-run ") + DOCUMENT).text,
              "vlk_rpc_wlan_config_client setMacAddressControlClear 1\n"
              "vlk_rpc_wlan_config_client setMacAddressControlAdd 1 02:00:00:00:00:01 a\n");
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "02:00:00:00:00:01,a;");
    EXPECT_NE(access("/tmp/owned", F_OK), 0);
}

// Each deletion would have the server's shell see the name again.
TEST_F(AllSettings, NeverHaveANameOfTheStoreGoThroughAShellAgain) {
    set_store(
        {"AP_RADIO_ID=0", "AP_MACLIST=02:00:00:00:00:01,a;02:00:00:00:00:02,b;02:00:00:00:00:03,$(>/tmp/owned);"});
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"mac_address_control_list":[
        {"mac":"02:00:00:00:00:01","list":"a"}]}})"));
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "02:00:00:00:00:01,a;");
    EXPECT_NE(access("/tmp/owned", F_OK), 0);
}

TEST_F(AllSettings, ThatCouldNotBePutBackWithoutAShellObeyingAreNotChangedToBeConfirmed) {
    const std::string list = "02:00:00:00:00:01,a;02:00:00:00:00:03,$(>/tmp/owned);";
    set_store({"AP_RADIO_ID=0", "AP_DTIM=1", "AP_MACLIST=" + list});
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"dtim_period":5,"mac_address_control_list":[]}})"));
    for (const char *how : {"apply --confirm-within 5 ", "apply --dry-run --confirm-within 5 "}) {
        command_output refused = client(how + std::string(DOCUMENT));
        EXPECT_EQ(refused.status, 2);
        EXPECT_EQ(refused.text, "");
        EXPECT_EQ(refused.errors,
                  "apply: vap 1 mac_address_control_list could not be put back: <list_name> has $ in it, which the "
                  "server's shell would obey, now or with the next change of the list; --shell-text sends it all the "
                  "same\n");
    }
    EXPECT_EQ(store_value("AP_MACLIST"), list);
    EXPECT_EQ(store_value("AP_DTIM"), "1");
    EXPECT_NE(access(STATE_FILE, F_OK), 0);
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_MACLIST"), "");
    EXPECT_NE(access("/tmp/owned", F_OK), 0);
}

// Changes that are taken back.

class UnconfirmedSettings : public AllSettings {
protected:
    void SetUp() override {
        AllSettings::SetUp();
        write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":5,"ssid":"new"}})"));
    }

    void TearDown() override {
        // Whatever failed, nobody waits any more.
        client("confirm");
        EXPECT_TRUE(wait_for([] { return run_command("pgrep -f '[a]pply --confirm'").text.empty(); }));
        AllSettings::TearDown();
    }
};

TEST_F(UnconfirmedSettings, ArePutBackWhenTheirTimeIsOver) {
    command_output apply = client(std::string("apply --confirm-within 1 ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0) << apply.errors;
    EXPECT_EQ(apply.errors, "The old settings come back in 1 s unless: vlk_rpc_wlan_config_client confirm\n");
    EXPECT_EQ(store_value("AP_DTIM_2"), "5");
    struct stat status = {};
    ASSERT_EQ(stat(STATE_FILE, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(parsed(read_file(STATE_FILE))["vaps"]["2"]["dtim_period"], 1);
    EXPECT_EQ(parsed(read_file(STATE_FILE))["vaps"].size(), 16u) << "all settings, whatever the document has";
    EXPECT_TRUE(wait_for([] { return store_value("AP_DTIM_2") == "1" && store_value("AP_SSID_2").empty(); }));
    EXPECT_TRUE(wait_for([] { return access(RESTORING_FILE, F_OK) != 0; }));
    EXPECT_NE(access(STATE_FILE, F_OK), 0);
    command_output late = client("confirm");
    EXPECT_EQ(late.status, 6);
    EXPECT_EQ(late.errors, "confirm: nothing waits to be confirmed\n");
}

TEST_F(UnconfirmedSettings, StayWhenTheyAreConfirmed) {
    EXPECT_EQ(client(std::string("apply --confirm-within 1 ") + DOCUMENT).status, 0);
    command_output confirm = client("confirm -o json");
    EXPECT_EQ(confirm.status, 0) << confirm.errors;
    EXPECT_EQ(parsed(confirm.text)["result"]["confirmed"], true);
    EXPECT_NE(access(STATE_FILE, F_OK), 0);
    // The process that waited has ended, so nothing more can happen.
    EXPECT_TRUE(wait_for([] { return run_command("pgrep -f '[a]pply --confirm'").text.empty(); }));
    EXPECT_EQ(store_value("AP_DTIM_2"), "5");
    EXPECT_EQ(client("confirm").status, 6);
}

TEST_F(UnconfirmedSettings, LetNoOthersBeApplied) {
    EXPECT_EQ(client(std::string("apply --confirm-within 30 ") + DOCUMENT).status, 0);
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":6}})"));
    command_output second = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(second.status, 7);
    EXPECT_EQ(second.errors,
              "apply: changes made before wait to be confirmed: confirm them, or wait until the old settings are "
              "back\n");
    EXPECT_EQ(store_value("AP_DTIM_2"), "5");
    EXPECT_EQ(client("confirm").text, "confirmed: the settings stay as they are\n");
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 0);
    EXPECT_EQ(store_value("AP_DTIM_2"), "6");
}

TEST_F(UnconfirmedSettings, ArePutBackAtOnceWhenTheClientIsKilledMeanwhile) {
    fault("cfg slow 0.3");
    run_command(std::string("setsid /usr/sbin/vlk_rpc_wlan_config_client apply --confirm-within 3000 ") + DOCUMENT +
                " >/dev/null 2>&1 </dev/null & echo $! >/tmp/settings.pid");
    EXPECT_TRUE(wait_for([] { return store_value("AP_SSID_2") == "new"; }));
    // The client and the process that waits for it have the same words; the parent is the elder.
    EXPECT_EQ(run_command("kill -KILL $(cat /tmp/settings.pid)").status, 0);
    fault("cfg off");
    EXPECT_TRUE(wait_for([] { return access(RESTORING_FILE, F_OK) != 0 && access(STATE_FILE, F_OK) != 0; }));
    EXPECT_EQ(store_value("AP_SSID_2"), "");
    EXPECT_TRUE(wait_for([] { return store_value("AP_DTIM_2") == "1"; }));
}

TEST_F(UnconfirmedSettings, ArePutBackAtOnceWhenTheClientIsInterruptedMeanwhile) {
    fault("cfg slow 0.2");
    Terminal apply({"/usr/sbin/vlk_rpc_wlan_config_client", "apply", "--confirm-within", "3000", DOCUMENT});
    EXPECT_TRUE(wait_for([] { return store_value("AP_SSID_2") == "new"; }));
    EXPECT_TRUE(apply.interrupt());
    EXPECT_EQ(apply.status, 128 + SIGINT);
    fault("cfg off");
    EXPECT_TRUE(wait_for([] { return access(RESTORING_FILE, F_OK) != 0 && access(STATE_FILE, F_OK) != 0; }));
    EXPECT_EQ(store_value("AP_SSID_2"), "");
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
}

TEST_F(UnconfirmedSettings, ArePutBackWhenTheServerIsThereAgain) {
    EXPECT_EQ(client(std::string("apply --confirm-within 1 ") + DOCUMENT).status, 0);
    fault("address missing");
    EXPECT_TRUE(wait_for([] { return access(RESTORING_FILE, F_OK) == 0; }));
    command_output late = client("confirm");
    EXPECT_EQ(late.status, 6);
    EXPECT_EQ(late.errors, "confirm: too late: the old settings are being put back\n");
    EXPECT_EQ(client(std::string("apply ") + DOCUMENT).status, 7);
    usleep(300000);  // longer than an attempt without a server takes
    EXPECT_EQ(access(RESTORING_FILE, F_OK), 0);
    fault("address off");
    EXPECT_TRUE(wait_for([] { return access(RESTORING_FILE, F_OK) != 0; }));
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
    EXPECT_EQ(store_value("AP_SSID_2"), "");
}

// Somebody else has taken it off meanwhile, so that nobody could know before.
TEST_F(UnconfirmedSettings, ThatAShellWouldObeyAreKeptInAFileAndNotPutBack) {
    set_store({"AP_RADIO_ID=0", "AP_DTIM_2=1", "AP_MACLIST=02:00:00:00:00:03,$(>/tmp/owned);"});
    EXPECT_EQ(client(std::string("apply --confirm-within 1 ") + DOCUMENT).status, 0);
    EXPECT_EQ(code_of(call(PROC_wlan_set_mac_address_control_clear, vap(1))), 0);
    EXPECT_TRUE(wait_for([] { return access(LOST_FILE, F_OK) == 0; }));
    EXPECT_NE(access("/tmp/owned", F_OK), 0);
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
    EXPECT_NE(read_file(LOST_FILE).find("$(>/tmp/owned)"), std::string::npos);
    unlink(LOST_FILE);
}

// A channel of the other band, which only the store can give the radio.
TEST_F(UnconfirmedSettings, OfWhichOneCannotBePutBackAreKeptInAFile) {
    EXPECT_EQ(run_command("cfg -a AP_PRIMARY_CH=6 && cfg -c").status, 0);
    write_file(DOCUMENT, document_of(R"("radios":{"1":{"channel":40}},"vaps":{"2":{"dtim_period":5}})"));
    EXPECT_EQ(client(std::string("apply --confirm-within 1 ") + DOCUMENT).status, 0);
    ASSERT_TRUE(wait_for([] { return access(LOST_FILE, F_OK) == 0; }));
    EXPECT_EQ(store_value("AP_DTIM_2"), "1") << "the others are back";
    EXPECT_EQ(store_value("AP_PRIMARY_CH"), "40");
    EXPECT_EQ(parsed(read_file(LOST_FILE))["radios"]["1"]["channel"], 6);
    unlink(LOST_FILE);
}

TEST_F(UnconfirmedSettings, ThatTakeEffectLaterArePutBackBeforeTheyDo) {
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"bs_bss_enable":1}})"));
    EXPECT_EQ(client(std::string("apply --confirm-within 1 ") + DOCUMENT).status, 0);
    EXPECT_TRUE(wait_for([] { return access(STATE_FILE, F_OK) != 0 && access(RESTORING_FILE, F_OK) != 0; }));
    bring_wifi_up();
    EXPECT_EQ(client(std::string("diff --field then ") + DOCUMENT).text, "1\n") << "it is not set";
}

TEST_F(UnconfirmedSettings, ThatHaveTakenEffectMeanwhileAreNotTakenForLost) {
    write_file(DOCUMENT, document_of(R"("vaps":{"1":{"bs_bss_enable":1}})"));
    EXPECT_EQ(client(std::string("apply --confirm-within 1 ") + DOCUMENT).status, 0);
    bring_wifi_up();
    EXPECT_TRUE(wait_for([] { return access(STATE_FILE, F_OK) != 0 && access(RESTORING_FILE, F_OK) != 0; }));
    EXPECT_NE(access(LOST_FILE, F_OK), 0);
    bring_wifi_up();
    EXPECT_EQ(client(std::string("diff --field then ") + DOCUMENT).text, "1\n") << "it is not set";
}

TEST_F(UnconfirmedSettings, ThatAreLostTakeTheNameOfNoOthers) {
    write_file(LOST_FILE, "older");
    write_file((std::string(LOST_FILE) + ".2").c_str(), "old");
    write_file(STATE_FILE, "{}");  // and nobody has it locked
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":1}})"));
    command_output apply = client(std::string("apply -o json ") + DOCUMENT);
    EXPECT_EQ(apply.status, 0) << apply.text;
    EXPECT_EQ(parsed(apply.text)["result"]["lost"], std::string(LOST_FILE) + ".3");
    EXPECT_EQ(read_file(LOST_FILE), "older");
    EXPECT_EQ(read_file((std::string(LOST_FILE) + ".2").c_str()), "old");
    EXPECT_EQ(read_file((std::string(LOST_FILE) + ".3").c_str()), "{}");
    EXPECT_NE(access(STATE_FILE, F_OK), 0);
    run_command(std::string("rm ") + LOST_FILE + "*");
}

TEST_F(UnconfirmedSettings, OfTwoWhoApplyAtOnceAreThoseOfTheFirst) {
    run_command(std::string("/usr/sbin/vlk_rpc_wlan_config_client apply --confirm-within 30 ") + DOCUMENT +
                " >/tmp/second.out 2>&1 & echo $! >/tmp/settings.pid");
    // It reads the settings, and has seen before that nobody waits.
    EXPECT_TRUE(wait_for([this] { return !lines_since(JOURNAL_FILE, journal_mark).empty(); }));
    write_file(STATE_FILE, "{}");
    EXPECT_TRUE(wait_for([] { return !read_file("/tmp/second.out").empty(); }));
    EXPECT_EQ(read_file("/tmp/second.out"),
              "apply: changes made before wait to be confirmed: confirm them, or wait until the old settings are "
              "back\n");
    EXPECT_EQ(read_file(STATE_FILE), "{}");
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
    unlink(STATE_FILE);
}

TEST_F(UnconfirmedSettings, ThatChangeNothingNeedNoConfirmation) {
    write_file(DOCUMENT, document_of(R"("vaps":{"2":{"dtim_period":1}})"));
    EXPECT_EQ(client(std::string("apply --confirm-within 30 ") + DOCUMENT).text, "no changes\n");
    EXPECT_NE(access(STATE_FILE, F_OK), 0);
}

TEST_F(UnconfirmedSettings, WhoseProcessWasKilledAreKeptInAFile) {
    EXPECT_EQ(client(std::string("apply --confirm-within 30 ") + DOCUMENT).status, 0);
    EXPECT_EQ(run_command("kill -KILL $(pgrep -f '[a]pply --confirm')").status, 0);
    // A process that ends has no command line any more before its lock is free.
    EXPECT_TRUE(
        wait_for([] { return run_command(std::string("flock --nonblock ") + STATE_FILE + " true").status == 0; }));
    EXPECT_EQ(client("confirm").status, 6);
    command_output next = client(std::string("apply ") + DOCUMENT);
    EXPECT_EQ(next.status, 0) << next.errors;
    EXPECT_NE(next.errors.find("are in /run/vlk_rpc_wlan_config_client.lost\n"), std::string::npos) << next.errors;
    EXPECT_EQ(client(std::string("apply ") + LOST_FILE).status, 0);
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
    unlink(LOST_FILE);
}

TEST_F(UnconfirmedSettings, TakeOneSecondToAnHour) {
    for (const char *seconds : {"0", "3601", "-1", "soon"})
        EXPECT_EQ(client(std::string("apply --confirm-within ") + seconds + " " + DOCUMENT).status, 2) << seconds;
    EXPECT_EQ(store_value("AP_DTIM_2"), "1");
}

}  // namespace
