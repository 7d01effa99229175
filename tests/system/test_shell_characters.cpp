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
#include "tests/system/gateway.h"

namespace {

constexpr const char REACHED_FILE[] = "/tmp/reached";

// Each runs a command where nobody keeps the shell from it: outside quotes or inside double ones, between double
// quotes that it ends itself, and between single ones.
const char *const HOSTILE_TEXTS[] = {"$(>/tmp/reached)", "`>/tmp/reached`", "\";>/tmp/reached;\"", "';>/tmp/reached;'",
                                     ";>/tmp/reached;"};

bytes arguments_with(const procedure_row &row, size_t hostile, const char *text) {
    bytes arguments;
    for (size_t i = 0; i < row.argument_count; i++)
        if (row.arguments[i].kind == argument_kind::TEXT)
            arguments += xdr_string_bytes(i == hostile ? text : "word");
        else
            arguments += xdr_word(1);
    return arguments;
}

bool reaches_the_shell(const procedure_row &row, size_t argument) {
    bool reached = false;
    for (const char *text : HOSTILE_TEXTS) {
        unlink(REACHED_FILE);
        call(row.number, arguments_with(row, argument, text));
        reached = reached || access(REACHED_FILE, F_OK) == 0;
    }
    unlink(REACHED_FILE);
    return reached;
}

std::string argument_name(const procedure_row &row, size_t argument) {
    char name[OPERATION_NAME_SIZE];
    operation_name(&row, name);
    return std::string(name) + " <" + row.arguments[argument].name + ">";
}

// The lines of the document's list: "- `setSsid <ssid>`".
std::set<std::string> documented_arguments() {
    std::ifstream document(WLAN_SOURCE_DIR "/docs/security.md");
    std::set<std::string> found;
    for (std::string line; std::getline(document, line);)
        if (line.starts_with("- `") && line.find("` reaches the shell") != std::string::npos)
            found.insert(line.substr(3, line.find('`', 3) - 3));
    return found;
}

TEST(ShellCharacters, ReachTheShellFromTheArgumentsThatTheDocumentNamesAndFromNoOther) {
    kept_settings kept;
    restart_driver();
    std::set<std::string> reaching;
    for (size_t i = 0; i < procedure_row_count; i++)
        for (size_t argument = 0; argument < procedure_rows[i].argument_count; argument++)
            if (procedure_rows[i].arguments[argument].kind == argument_kind::TEXT &&
                reaches_the_shell(procedure_rows[i], argument))
                reaching.insert(argument_name(procedure_rows[i], argument));
    EXPECT_EQ(reaching, documented_arguments());
    kept.put_back();
}

bool takes_text(const procedure_row &row) {
    for (size_t i = 0; i < row.argument_count; i++)
        if (row.arguments[i].kind == argument_kind::TEXT)
            return true;
    return false;
}

// Leaves the hostile text wherever a setter stores it, then calls every operation that takes none of its own.
std::set<std::string> operations_that_run_stored(const char *text) {
    std::set<std::string> running;
    for (size_t i = 0; i < procedure_row_count; i++)
        for (size_t argument = 0; argument < procedure_rows[i].argument_count; argument++)
            if (procedure_rows[i].arguments[argument].kind == argument_kind::TEXT)
                call(procedure_rows[i].number, arguments_with(procedure_rows[i], argument, text));
    for (size_t i = 0; i < procedure_row_count; i++) {
        unlink(REACHED_FILE);
        bool keeps_driver_and_settings = strcmp(procedure_rows[i].room, "lifecycle/requests") != 0 &&
                                         strcmp(procedure_rows[i].room, "config/factory_defaults") != 0;
        if (!takes_text(procedure_rows[i]) && keeps_driver_and_settings)
            call(procedure_rows[i].number, arguments_with(procedure_rows[i], 0, ""));
        if (access(REACHED_FILE, F_OK) == 0)
            running.insert(procedure_rows[i].name);
    }
    unlink(REACHED_FILE);
    return running;
}

TEST(ShellCharacters, OfAStoredTextReachNoShellLater) {
    kept_settings kept;
    for (const char *text : {"$(>/tmp/reached)", "\";>/tmp/reached;\""})
        EXPECT_EQ(operations_that_run_stored(text), std::set<std::string>{}) << text;
    kept.put_back();
}

}  // namespace
