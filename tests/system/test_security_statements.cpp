// What docs/security.md says of who can reach the server, of secrets, and of what is kept between calls.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <rpc/rpc.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <system_error>

#include "client/names.h"
#include "client/operations.h"
#include "server/wire.h"
#include "tests/support/examples.h"
#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

std::string document() {
    return read_file(WLAN_SOURCE_DIR "/docs/security.md");
}

// --- who can reach the server ---

// One of the kernel's tables of sockets: where an address and the socket's number stand in a line.
struct socket_table {
    const char *protocol;
    size_t address;
    size_t number;
};

const socket_table SOCKET_TABLES[] = {{"udp", 1, 9},  {"udp6", 1, 9},   {"udplite", 1, 9}, {"udplite6", 1, 9},
                                      {"tcp", 1, 9},  {"tcp6", 1, 9},   {"raw", 1, 9},     {"raw6", 1, 9},
                                      {"unix", 7, 6}, {"packet", 3, 8}, {"netlink", 1, 9}};

// Each socket that somebody could send to, "udp FEFEA8C0:EA61", by its number. One without an address, as ioctls need
// it and the system log, stands in no table, or without a name.
std::map<std::string, std::string> sockets_of_gateway() {
    std::map<std::string, std::string> found;
    for (const socket_table &table : SOCKET_TABLES) {
        std::ifstream lines(std::string("/proc/net/") + table.protocol);
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            std::istringstream text(line);
            strings words;
            for (std::string word; text >> word;)
                words.push_back(word);
            if (words.size() > std::max(table.address, table.number))
                found[words[table.number]] = std::string(table.protocol) + " " + words[table.address];
        }
    }
    return found;
}

// Those that a process has open.
strings sockets_of(const std::string &pid) {
    std::map<std::string, std::string> all = sockets_of_gateway();
    strings found;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/" + pid + "/fd", error)) {
        std::string target = std::filesystem::read_symlink(entry.path(), error);
        std::string number = target.starts_with("socket:[") ? target.substr(8, target.size() - 9) : "";
        if (all.contains(number))
            found.push_back(all[number]);
    }
    EXPECT_FALSE(error) << error.message();
    return found;
}

// The supervisor of the child that serves.
std::string supervisor() {
    return run_command("sed -n 's/^PPid:\t//p' /proc/" + serving_child() + "/status | tr -d '\\n'").text;
}

TEST(SecurityStatements, ServerHasOneSocketAndThatIsBoundToTheInternalAddress) {
    in_addr address = {};
    inet_aton(SERVICE_ADDRESS, &address);
    char expected[32];
    snprintf(expected, sizeof expected, "udp %08X:%04X", address.s_addr, SERVICE_PORT);
    EXPECT_EQ(sockets_of(serving_child()), strings{expected});
    EXPECT_EQ(sockets_of(supervisor()), strings{});
    EXPECT_NE(document().find("bound to " + std::string(SERVICE_ADDRESS) + " port " + std::to_string(SERVICE_PORT)),
              std::string::npos);
}

// Whether somebody answers a null call there.
bool answers_at(const char *address) {
    int client = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in server = {};
    server.sin_family = AF_INET;
    server.sin_port = htons(SERVICE_PORT);
    inet_aton(address, &server.sin_addr);
    EXPECT_EQ(connect(client, reinterpret_cast<sockaddr *>(&server), sizeof server), 0) << address;
    bytes answer;
    bool answered = send_datagram(client, call_header(1, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, 0)) &&
                    receive_datagram(client, &answer, 2000);
    close(client);
    return answered;
}

TEST(SecurityStatements, NothingAnswersAtLoopbackOrAtAnAddressOfTheLan) {
    ASSERT_EQ(run_command("ip address add 192.168.1.1/32 dev lo").status, 0);
    EXPECT_TRUE(answers_at(SERVICE_ADDRESS));
    EXPECT_FALSE(answers_at("127.0.0.1"));
    EXPECT_FALSE(answers_at("192.168.1.1"));
    EXPECT_EQ(run_command("ip address del 192.168.1.1/32 dev lo").status, 0);
}

// --- no authentication ---

struct credentials {
    uint32_t flavour;
    bytes body;
};

bytes system_credentials(uint32_t user) {
    return xdr_word(1) + xdr_string_bytes("page") + xdr_word(user) + xdr_word(user) + xdr_word(0);
}

call_reply call_as(const credentials &who, uint32_t procedure, const bytes &arguments) {
    bytes header = call_header(77, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure).substr(0, 24);
    bytes body = who.body + bytes((4 - who.body.size() % 4) % 4, '\0');
    bytes call = header + xdr_word(who.flavour) + xdr_word(static_cast<uint32_t>(who.body.size())) + body +
                 xdr_word(who.flavour) + xdr_word(0) + arguments;
    int client = open_client_socket();
    bytes datagram;
    call_reply reply = {call_outcome::NO_ANSWER, ""};
    if (send_datagram(client, call) && receive_datagram(client, &datagram, 2000))
        reply = parse_reply(datagram);
    close(client);
    return reply;
}

TEST(SecurityStatements, CallsAreAnsweredAlikeWhoeverTheyClaimToBe) {
    const credentials callers[] = {{AUTH_NONE, ""},
                                   {AUTH_NONE, "garbage"},
                                   {AUTH_SYS, system_credentials(0)},
                                   {AUTH_SYS, system_credentials(1000)},
                                   {AUTH_SYS, system_credentials(65534)}};
    int round = 0;
    for (const credentials &caller : callers) {
        set_store({"PSK_KEY=secret"});
        std::string ssid = "round " + std::to_string(++round);
        EXPECT_EQ(code_of(call_as(caller, PROC_wlan_set_ssid, vap(1) + xdr_string_bytes(ssid))), 0);
        EXPECT_EQ(store_value("AP_SSID"), ssid);
        EXPECT_EQ(text_of(call_as(caller, PROC_wlan_get_pre_shared_key, vap(1) + xdr_word(1))),
                  (text_result{0, "secret"}));
    }
}

TEST(SecurityStatements, OtherAndDamagedCredentialsAreRefusedAndTheCallIsNotCarriedOut) {
    set_store({"AP_SSID=home"});
    for (uint32_t flavour : {2u, 3u, 5u, 6u, 390003u, 0xffffffffu})
        EXPECT_EQ(call_as({flavour, system_credentials(0)}, PROC_wlan_set_ssid, vap(1) + xdr_string_bytes("x")).outcome,
                  call_outcome::OTHER)
            << flavour;
    for (const bytes &body : {bytes(), bytes("garbage"), bytes(400, 'x')})
        EXPECT_EQ(call_as({AUTH_SYS, body}, PROC_wlan_set_ssid, vap(1) + xdr_string_bytes("x")).outcome,
                  call_outcome::OTHER);
    EXPECT_EQ(store_value("AP_SSID"), "home");
}

TEST(SecurityStatements, ProcessOfAnyUserReadsSecretsAndSets) {
    set_store({"PSK_KEY=secret"});
    const std::string nobody = "setpriv --reuid=65534 --regid=65534 --clear-groups ";
    EXPECT_EQ(run_command(nobody + CLIENT_PROGRAM + " getPreSharedKey 1 1").text, "secret\n");
    EXPECT_EQ(run_command(nobody + CLIENT_PROGRAM + " setSsid 1 theirs").status, 0);
    EXPECT_EQ(store_value("AP_SSID"), "theirs");
}

// --- secrets ---

// The operations that are named in the part of the document that begins so, up to the next empty line.
std::set<std::string> operations_named_behind(const std::string &beginning) {
    std::string text = document();
    size_t begin = text.find(beginning);
    EXPECT_NE(begin, std::string::npos) << beginning;
    text = text.substr(begin, text.find("\n\n", begin) - begin);
    std::set<std::string> names;
    for (size_t at = 0, end; (at = text.find('`', at)) != std::string::npos; at = end + 1) {
        end = text.find('`', at + 1);
        const procedure_row *row = find_operation(text.substr(at + 1, end - at - 1).c_str());
        if (row)
            names.insert(row->name);
    }
    return names;
}

// Without the file of the authenticator, where a PIN of its own would stand.
constexpr uint32_t VAP_OF_SECRETS = 12;
constexpr const char WPS_FILE[] = "/nvram/etc/wpa2/WSC_ath11.conf";

// A call's arguments with this for each text.
bytes arguments_with_text(const procedure_row &row, const std::string &text) {
    bytes arguments;
    for (size_t i = 0; i < row.argument_count; i++)
        if (row.arguments[i].kind == argument_kind::TEXT)
            arguments += xdr_string_bytes(text);
        else
            arguments += xdr_word(row.arguments[i].kind == argument_kind::VAP ? VAP_OF_SECRETS : 1);
    return arguments;
}

// Setters of what its name says is a secret.
bool takes_secret(const procedure_row &row) {
    std::string last = row.argument_count ? row.arguments[row.argument_count - 1].name : "";
    return std::string(row.name).starts_with("wlan_set_") && (last == "key" || last == "passphrase" || last == "pin");
}

// Each of these begins so.
constexpr const char SECRET[] = "53cret";

// Sets one after the other.
void for_each_secret(const std::function<void(const procedure_row &setter, const std::string &secret)> &look) {
    set_store({"AP_VAP_NUM=8", "AP_RADIO_ID_12=1", "AP_PRIMARY_KEY_1=1"});
    for (size_t i = 0; i < procedure_row_count; i++) {
        if (!takes_secret(procedure_rows[i]))
            continue;
        std::string secret = SECRET + std::to_string(procedure_rows[i].number);
        call(procedure_rows[i].number, arguments_with_text(procedure_rows[i], secret));
        look(procedure_rows[i], secret);
    }
}

TEST(SecurityStatements, SecretsAreGivenOutByTheGettersThatTheDocumentNamesAndByNoOther) {
    kept_settings kept;
    EXPECT_EQ(unlink(WPS_FILE), 0);
    for_each_secret([](const procedure_row &, const std::string &) {});
    std::set<std::string> giving;
    for (size_t i = 0; i < procedure_row_count; i++)
        if (is_getter(procedure_rows[i]) &&
            call(procedure_rows[i].number, arguments_with_text(procedure_rows[i], "")).result.find(SECRET) !=
                std::string::npos)
            giving.insert(procedure_rows[i].name);
    EXPECT_EQ(giving, operations_named_behind("Secrets travel"));
    kept.put_back();
}

TEST(SecurityStatements, SecretsAreInTheLogOnlyWhileDebugLinesAreSwitchedOn) {
    for (bool on : {false, true}) {
        set_debug(on);
        for_each_secret([&](const procedure_row &setter, const std::string &secret) {
            size_t mark = mark_of(SERVER_LOG_FILE);
            call(setter.number, arguments_with_text(setter, secret));
            for (const char *getter : {"wlan_get_pre_shared_key", "wlan_get_wep_key", "wlan_get_acct_server_key"})
                call(find_operation(getter)->number, arguments_with_text(*find_operation(getter), ""));
            bool is_there = read_file(SERVER_LOG_FILE).find(secret, mark) != std::string::npos;
            EXPECT_EQ(is_there, on) << setter.name;
        });
    }
    set_debug(false);
}

// --- texts that the server escapes ---

TEST(SecurityStatements, TextsThatTheServerEscapesComeBackWhole) {
    const std::string text = "a\"$(>/tmp/reached)`b`\\";
    const std::pair<const char *, const char *> escaped[] = {
        {"wlan_set_ssid", "wlan_get_ssid"},
        {"wlan_set_key_passphrase", "wlan_get_key_passphrase"},
        {"wlan_set_radius_server_key", "wlan_get_radius_server_key"}};
    set_store({"AP_VAP_NUM=8"});
    std::set<std::string> names;
    for (auto [setter, getter] : escaped) {
        EXPECT_EQ(code_of(call(find_operation(setter)->number, arguments_with_text(*find_operation(setter), text))), 0);
        EXPECT_EQ(text_of(call(find_operation(getter)->number, arguments_with_text(*find_operation(getter), ""))),
                  (text_result{0, text}))
            << getter;
        names.insert(setter);
    }
    EXPECT_NE(access("/tmp/reached", F_OK), 0);
    EXPECT_EQ(operations_named_behind("`setSsid`, "), names);
}

// --- what the unit takes away ---

// Lines of a file of the sources that stand between two others.
std::set<std::string> lines_between(const char *path, const std::string &first, const std::string &last) {
    std::set<std::string> found;
    bool inside = false;
    for (const std::string &line : lines_since(path, 0)) {
        inside = (inside || line.starts_with(first)) && !line.starts_with(last);
        if (inside)
            found.insert(line);
    }
    return found;
}

TEST(SecurityStatements, UnitTakesAwayWhatTheDocumentSaysAndNothingElse) {
    std::set<std::string> said, set;
    for (const std::string &line : lines_between(WLAN_SOURCE_DIR "/docs/security.md", "| directive |", "## Foreign"))
        if (line.starts_with("| `"))
            said.insert(line.substr(3, line.find('`', 3) - 3));
    for (const std::string &line :
         lines_between(WLAN_SOURCE_DIR "/packaging/vlk-wlan-config.service", "# --- Rights", "[Install]"))
        if (isupper(static_cast<unsigned char>(line[0])) && line != "SystemCallErrorNumber=EPERM")
            set.insert(line);
    EXPECT_EQ(said, set);
    EXPECT_GT(said.size(), 10u);
}

// --- foreign data ---

bool is_left_alone(const procedure_row &row) {
    return strcmp(row.room, "lifecycle/requests") == 0 || strcmp(row.room, "config/factory_defaults") == 0;
}

// The store and the files are put back in between, so that only what the server itself remembers could come back.
TEST(SecurityStatements, NothingOfACallComesBackInTheAnswerToAnother) {
    const std::string foreign = "f0re1gn";
    kept_settings kept;
    restart_driver();
    const std::string store = read_file("/tmp/.apcfg");
    for (size_t i = 0; i < procedure_row_count; i++)
        if (!is_left_alone(procedure_rows[i]))
            call(procedure_rows[i].number, arguments_with_text(procedure_rows[i], foreign + foreign + foreign));
    kept.put_back();
    for (size_t i = 0; i < procedure_row_count; i++) {
        if (!is_getter(procedure_rows[i]))
            continue;  // a setter answers with nothing but a code
        write_file("/tmp/.apcfg", store);
        EXPECT_EQ(call(procedure_rows[i].number, arguments_with_text(procedure_rows[i], "")).result.find(foreign),
                  std::string::npos)
            << procedure_rows[i].name;
    }
    kept.put_back();
}

TEST(SecurityStatements, ControlCharactersOfANameAreEscapedOnATerminalAndHexadecimalInJson) {
    set_store({"AP_SSID=a\x1b]0;b\x07\xe9"});
    Terminal terminal({CLIENT_PROGRAM, "getSsid", "1"});
    EXPECT_EQ(terminal.ends(), 0);
    EXPECT_EQ(terminal.printed, "a\\x1b]0;b\\x07\\xe9\r\n");
    EXPECT_EQ(client("getSsid 1 -o json").text,
              "{\"operation\":\"getSsid\",\"code\":0,\"result\":{\"ssid\":\"a\\u001b]0;b\\u0007\\ufffd\",\"ssid_hex\":"
              "\"611b5d303b6207e9\"}}\n");
}

}  // namespace
