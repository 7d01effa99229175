// What a caller's text can do to the shell that the server runs its commands with: which arguments reach it as they
// stand is told in docs/security.md, and found out here by trying.
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <string>

#include "client/names.h"
#include "client/operations.h"
#include "client/shell_texts.h"
#include "client/touches.h"
#include "config/store.h"
#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

constexpr const char REACHED_FILE[] = "/tmp/reached";

// Each runs a command where nobody keeps the shell from it: as a bare word, inside quotes or outside, between double
// quotes that it ends itself, and between single ones.
constexpr const char HOSTILE_BARE[] = ";>/tmp/reached;";
const char *const HOSTILE_QUOTED[] = {"$(>/tmp/reached)", "`>/tmp/reached`", "\";>/tmp/reached;\"",
                                      "';>/tmp/reached;'"};

// The texts beside the hostile one: any, and the list whose stations the driver is told of.
const char *const OTHER_TEXTS[] = {"word", "steerlist"};

bytes arguments_with(const procedure_row &row, size_t hostile, const char *text, const char *other = "word") {
    bytes arguments;
    for (size_t i = 0; i < row.argument_count; i++)
        if (row.arguments[i].kind == argument_kind::TEXT)
            arguments += xdr_string_bytes(i == hostile ? text : other);
        else
            arguments += xdr_word(1);
    return arguments;
}

size_t count_texts(const procedure_row &row) {
    size_t count = 0;
    for (size_t i = 0; i < row.argument_count; i++)
        count += row.arguments[i].kind == argument_kind::TEXT;
    return count;
}

bool has_reached() {
    bool reached = access(REACHED_FILE, F_OK) == 0;
    unlink(REACHED_FILE);
    return reached;
}

bool reaches_the_shell(const procedure_row &row, size_t argument, const char *text) {
    bool reached = false;
    for (const char *other : OTHER_TEXTS) {
        call(row.number, arguments_with(row, argument, text, other));
        reached = has_reached() || reached;
        if (count_texts(row) == 1)
            break;
    }
    return reached;
}

// Where an argument stands in a shell's command, "" for an argument that does not.
std::string place_of(const procedure_row &row, size_t argument) {
    if (reaches_the_shell(row, argument, HOSTILE_BARE))
        return "as a bare word";
    for (const char *text : HOSTILE_QUOTED)
        if (reaches_the_shell(row, argument, text))
            return "between double quotes";
    return "";
}

std::string argument_name(const procedure_row &row, const char *argument) {
    char name[OPERATION_NAME_SIZE];
    operation_name(&row, name);
    return std::string(name) + " <" + argument + ">";
}

// What the shell gets, as the document says it: "`setWepKey <key>` reaches the shell between double quotes".
std::string statement(const std::string &argument, const std::string &place) {
    return "`" + argument + "` reaches the shell " + place;
}

using statements = std::set<std::string>;

statements found_out() {
    statements found;
    for (size_t i = 0; i < procedure_row_count; i++)
        for (size_t j = 0; j < procedure_rows[i].argument_count; j++) {
            const argument_row &argument = procedure_rows[i].arguments[j];
            std::string place = argument.kind == argument_kind::TEXT ? place_of(procedure_rows[i], j) : "";
            if (!place.empty())
                found.insert(statement(argument_name(procedure_rows[i], argument.name), place));
        }
    return found;
}

statements of_the_table() {
    statements found;
    for (size_t i = 0; i < shell_row_count; i++)
        found.insert(statement(argument_name(*find_operation(shell_rows[i].procedure), shell_rows[i].argument),
                               shell_rows[i].place == shell_place::BARE ? "as a bare word" : "between double quotes"));
    return found;
}

statements of_the_document() {
    std::ifstream document(WLAN_SOURCE_DIR "/docs/security.md");
    statements found;
    for (std::string line; std::getline(document, line);)
        if (line.starts_with("- `") && line.find("` reaches the shell") != std::string::npos)
            found.insert(line.substr(2));
    return found;
}

TEST(ShellCharacters, ReachTheShellFromTheArgumentsThatTableAndDocumentNameAndFromNoOther) {
    kept_settings kept;
    restart_driver();
    statements found = found_out();
    EXPECT_EQ(found, of_the_table());
    EXPECT_EQ(found, of_the_document());
    kept.put_back();
}

// --- what is stored ---

// Those that would end what the test lives on.
bool keeps_driver_and_settings(const procedure_row &row) {
    return strcmp(row.room, "lifecycle/requests") != 0 && strcmp(row.room, "config/factory_defaults") != 0;
}

// The store's settings as they are, but for one.
strings settings_with(const std::string &key, const std::string &value) {
    strings settings;
    for (const std::string &line : lines_since(STORE_FILE, 0))
        if (line.find('=') != std::string::npos && !line.starts_with(key + "="))
            settings.push_back(line);
    settings.push_back(key + "=" + value);
    return settings;
}

// Whether the operation, called with harmless arguments, runs what a store with these settings has.
bool runs_stored(const procedure_row &row, const strings &settings) {
    set_store(settings);
    call(row.number, arguments_with(row, ARGUMENTS_MAX, ""));
    return has_reached();
}

std::set<std::string> operations_that_run(const strings &settings) {
    std::set<std::string> running;
    for (size_t i = 0; i < procedure_row_count; i++)
        if (keeps_driver_and_settings(procedure_rows[i]) && runs_stored(procedure_rows[i], settings))
            running.insert(procedure_rows[i].name);
    return running;
}

// Leaves the text wherever a setter stores it.
void store_everywhere(const char *text) {
    for (size_t i = 0; i < procedure_row_count; i++)
        for (size_t j = 0; j < procedure_rows[i].argument_count; j++)
            if (procedure_rows[i].arguments[j].kind == argument_kind::TEXT)
                call(procedure_rows[i].number, arguments_with(procedure_rows[i], j, text));
    unlink(REACHED_FILE);
}

// A text that came with its backslashes is stored without.
TEST(ShellCharacters, OfAStoredTextReachNoShellLaterButThroughTheMacList) {
    kept_settings kept;
    restart_driver();
    for (const char *text : {"$(>/tmp/reached)", "\\$(>/tmp/reached)"}) {
        store_everywhere(text);
        EXPECT_EQ(operations_that_run(settings_with("AP_MACLIST", "word,a;")), std::set<std::string>{}) << text;
    }
    kept.put_back();
}

const procedure_row *row_with(uint32_t number) {
    const procedure_row *row = procedure_rows;
    while (row->number != number)
        row++;
    return row;
}

// What each operation that runs commands looks up, with something hostile in it: within a word such as a mode,
// and in the rest of a list, whatever separates its elements.
std::set<std::string> operations_that_run_what_they_look_up() {
    std::set<std::string> running;
    const std::string store = read_file(STORE_FILE);
    for (size_t i = 0; i < touch_row_count; i++) {
        const procedure_row *row = row_with(touch_rows[i].number);
        if (!*touch_rows[i].commands || !keeps_driver_and_settings(*row))
            continue;
        for (const char *const *key = touch_rows[i].reads; *key; key++)
            for (const char *value : {"11NG$(>/tmp/reached)HT20", "1,word,a;other,$(>/tmp/reached);,1"}) {
                write_file(STORE_FILE, store);
                if (runs_stored(*row, settings_with(*key, value)))
                    running.insert(row->name);
            }
    }
    return running;
}

// The operations of the document's sentence about lists.
std::set<std::string> documented_as_writing_back() {
    std::string text = read_file(WLAN_SOURCE_DIR "/docs/security.md");
    size_t begin = text.find("Written back as it stands");
    EXPECT_NE(begin, std::string::npos);
    text = text.substr(begin, text.find("\n\n", begin) - begin);
    std::set<std::string> names;
    for (size_t at = 0, end; (at = text.find('`', at)) != std::string::npos; at = end + 1) {
        end = text.find('`', at + 1);
        const procedure_row *row = find_operation(text.substr(at + 1, end - at - 1).c_str());
        EXPECT_NE(row, nullptr);
        if (row)
            names.insert(row->name);
    }
    return names;
}

TEST(ShellCharacters, OfTheStoreReachAShellWhereTheDocumentSaysSo) {
    kept_settings kept;
    restart_driver();
    EXPECT_EQ(operations_that_run_what_they_look_up(), documented_as_writing_back());
    kept.put_back();
}

class MacListOfShellCharacters : public WatchedGateway {
protected:
    void SetUp() override {
        unlink(REACHED_FILE);
    }

    void TearDown() override {
        unlink(REACHED_FILE);
    }
};

// Do not mend the server: callers pass their names with backslashes, and the list is written back as it is read.
TEST_F(MacListOfShellCharacters, RunsWithTheNextChangeThoughItCameWithABackslash) {
    for (const char *next : {"setMacAddressControlDelete 1 a", "setMacAddressControlAdd 1 c x"}) {
        begin_with({"AP_MACLIST="});
        EXPECT_EQ(client("setMacAddressControlAdd 1 a x").status, 0);
        EXPECT_EQ(client("setMacAddressControlAdd 1 b '\\$(>/tmp/reached)' --shell-text").status, 0);
        EXPECT_EQ(store_value("AP_MACLIST"), "a,x;b,$(>/tmp/reached);");
        EXPECT_FALSE(has_reached());
        EXPECT_EQ(client(next).status, 0);
        EXPECT_TRUE(has_reached()) << next;
    }
}

TEST_F(MacListOfShellCharacters, IsClearedByTheClearingSetterAlone) {
    begin_with({"AP_MACLIST=a,x;b,$(>/tmp/reached);"});
    EXPECT_EQ(client("setMacAddressControlClear 1").status, 0);
    EXPECT_EQ(client("setMacAddressControlAdd 1 c x").status, 0);
    EXPECT_FALSE(has_reached());
    EXPECT_EQ(store_value("AP_MACLIST"), "c,x;");
}

// --- the client ---

// The client's words for an operation with this text for one argument, in quotes of a shell, and harmless others.
std::string client_words(const shell_row &shell, const std::string &text) {
    const procedure_row &row = *find_operation(shell.procedure);
    std::string words = row.name;
    for (size_t i = 0; i < row.argument_count; i++) {
        bool is_it = strcmp(row.arguments[i].name, shell.argument) == 0;
        bool is_text = row.arguments[i].kind == argument_kind::TEXT;
        words += is_it ? " '" + text + "'" : (is_text ? " steerlist" : " 1");
    }
    return words;
}

class ClientOfShellCharacters : public MacListOfShellCharacters {
protected:
    void SetUp() override {
        MacListOfShellCharacters::SetUp();
        restart_driver();
        begin_watching();
    }
};

TEST_F(ClientOfShellCharacters, RefusesThemAndNothingReachesTheGateway) {
    for (size_t i = 0; i < shell_row_count; i++) {
        bool bare = shell_rows[i].place == shell_place::BARE;
        command_output refused = client(client_words(shell_rows[i], bare ? HOSTILE_BARE : HOSTILE_QUOTED[0]));
        EXPECT_EQ(refused.status, 2) << shell_rows[i].procedure;
        EXPECT_NE(refused.errors.find("which the server's shell would obey"), std::string::npos) << refused.errors;
    }
    EXPECT_EQ(lines_since(JOURNAL_FILE, journal_mark), strings{});
    EXPECT_FALSE(has_reached());
}

TEST_F(ClientOfShellCharacters, SendsThemWhenItIsToldTo) {
    for (size_t i = 0; i < shell_row_count; i++) {
        bool bare = shell_rows[i].place == shell_place::BARE;
        client("--shell-text " + client_words(shell_rows[i], bare ? HOSTILE_BARE : HOSTILE_QUOTED[0]));
        EXPECT_TRUE(has_reached()) << shell_rows[i].procedure;
    }
}

TEST_F(ClientOfShellCharacters, SendsThemBehindBackslashesWhichDoNoHarm) {
    for (size_t i = 0; i < shell_row_count; i++) {
        if (shell_rows[i].times == shell_times::AGAIN)
            continue;
        bool bare = shell_rows[i].place == shell_place::BARE;
        command_output sent =
            client(client_words(shell_rows[i], bare ? "\\;\\>/tmp/reached\\;" : "\\$(>/tmp/reached)\\`\\\"\\\\"));
        EXPECT_NE(sent.status, 2) << sent.errors;
        EXPECT_FALSE(has_reached()) << shell_rows[i].procedure;
    }
    EXPECT_EQ(store_value("AP_AUTH_SERVER"), "$(>/tmp/reached)`\"\\");
    EXPECT_EQ(client("getRadiusServerAddress 1").text, "$(>/tmp/reached)`\"\\\n");
}

// Nobody is asked: what a script does must not depend on where it runs.
TEST_F(ClientOfShellCharacters, RefusesThemOnATerminalAsElsewhere) {
    Terminal terminal({CLIENT_PROGRAM, "setAcctServerKey", "1", "$(>/tmp/reached)"});
    EXPECT_EQ(terminal.ends(), 2);
    EXPECT_NE(terminal.printed.find("setAcctServerKey: <key> has $ in it"), std::string::npos) << terminal.printed;
    EXPECT_EQ(lines_since(JOURNAL_FILE, journal_mark), strings{});
}

TEST_F(ClientOfShellCharacters, RefusesThemInItsShellToo) {
    command_output shell = run_command("printf '%s\\n' \"setAcctServerKey 1 '\\$(>/tmp/reached)'\" 'getSsid 1' | " +
                                       std::string(CLIENT_PROGRAM) + " shell");
    EXPECT_EQ(shell.status, 2);
    EXPECT_EQ(shell.text, "Home\n");
    EXPECT_NE(shell.errors.find("stdin:1: setAcctServerKey: <key> has $ in it"), std::string::npos) << shell.errors;
    EXPECT_FALSE(has_reached());
}

}  // namespace
