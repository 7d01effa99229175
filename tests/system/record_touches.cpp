// What one procedure touches, as a row of client/touches.def: records the journal of the running gateway while the
// smoke call of that procedure is carried out. tests/checks/touches.sh gives each procedure a gateway of its own, so
// that a row depends on nothing but what a gateway begins with.
//
//   record_touches              the names of all procedures, those that take longest first
//   record_touches PROCEDURE    inside the gateway: its row
//
// Only what the server itself does is in a row (its look-ups, its shell commands, its files, its ioctls, its messages),
// and all of that is in the journal when it has answered or its worker has ended. What its commands start may still be
// at work then, so lines of tools are passed over.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "client/operation_text.h"
#include "client/operations.h"
#include "tests/system/gateway.h"
#include "tests/system/lifecycle.h"
#include "tests/system/smoke.h"

// Rows of tests/system/smoke.h are not run here.
void prepare_for_row() {}
void settle_after_row() {}

namespace {

constexpr const char SOFT_BLOCK_SOCKET[] = "/var/run/ssidsteering";
constexpr const char COLLECTOR_SOCKET[] = "/var/run/radstat/ath0";

// The last thing that a lifecycle worker does.
constexpr const char END_OF_WORKER[] = "popen /usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue";

// What the service thread says before it answers, when it has started a worker.
constexpr const char START_OF_WORKER[] = " - thread started. ";

// A text that the soft-block daemon does not understand: it passes it over, but first it stands in the journal.
constexpr const char BARRIER[] = "end of the row";
constexpr const char BARRIER_LINE[] = "datagram softblock \"end of the row\"";

struct touches {
    strings reads, writes, commands, files, requests, datagrams, messages;
};

void add_once(strings *list, const std::string &item) {
    if (std::find(list->begin(), list->end(), item) == list->end())
        list->push_back(item);
}

bool is_number(const std::string &text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// KEY, KEY_2, KEY_10: by name, then by index.
std::tuple<std::string, int> order_of(const std::string &key) {
    size_t bar = key.rfind('_');
    if (bar == std::string::npos || !is_number(key.substr(bar + 1)) || key.size() - bar > 4)
        return {key, 1};
    return {key.substr(0, bar), atoi(key.c_str() + bar + 1)};
}

void sort_keys(strings *keys) {
    std::sort(keys->begin(), keys->end(),
              [](const std::string &one, const std::string &other) { return order_of(one) < order_of(other); });
}

// A process id is another one each time.
std::string without_process_id(const std::string &command) {
    constexpr const char kill_command[] = "kill ";
    size_t length = strlen(kill_command);
    return command.starts_with(kill_command) && is_number(command.substr(length)) ? "kill PID" : command;
}

void add_command(touches *found, const std::string &command) {
    constexpr const char write_command[] = "cfg -a ";
    if (command.starts_with(write_command)) {
        size_t begin = strlen(write_command);
        add_once(&found->writes, command.substr(begin, command.find('=') - begin));
    }
    add_once(&found->commands, without_process_id(command));
}

// "ath0 0x89fc.41 12 = 0" is the interface and the request, then what differs from call to call.
std::string request_of(const std::string &line) {
    return line.substr(0, line.find(' ', line.find(' ') + 1));
}

// The journal's doubled backslashes become single ones again, and a line break at the end goes; it knows no others.
std::string plain(std::string text) {
    if (text.ends_with("\\n"))
        text.erase(text.size() - 2);
    for (size_t at = 0; (at = text.find("\\\\", at)) != std::string::npos; at++)
        text.erase(at, 1);
    return text;
}

void add_line(touches *found, const std::string &line) {
    size_t blank = line.find(' ');
    std::string kind = line.substr(0, blank);
    std::string rest = blank == std::string::npos ? "" : plain(line.substr(blank + 1));
    if (kind == "read")
        add_once(&found->reads, rest);
    else if (kind == "popen" || kind == "system")
        add_command(found, rest);
    else if (kind == "file")
        add_once(&found->files, rest);
    else if (kind == "ioctl")
        add_once(&found->requests, request_of(rest));
    else if (kind == "datagram")
        add_once(&found->datagrams, rest);
    else if (kind == "syslog")
        add_once(&found->messages, rest);
}

// False when there is no such daemon.
bool send_to_daemon(const char *path, const char *text) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "%s", path);
    int file = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool sent = connect(file, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0 &&
                send(file, text, strlen(text) + 1, 0) > 0;
    close(file);
    return sent;
}

bool has_line(const strings &lines, const char *line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// The soft-block daemon takes its datagrams one after another and at its leisure: when it has taken one that is sent
// now, or has ended, there is nothing left that the server has sent. The collector is always waited for by the server.
void await_soft_block(size_t mark) {
    EXPECT_TRUE(eventually([&] {
        return has_line(lines_since(JOURNAL_FILE, mark), BARRIER_LINE) || !send_to_daemon(SOFT_BLOCK_SOCKET, BARRIER);
    })) << "the soft-block daemon does not read";
}

// A gateway in use: the statistics collector of VAP 1 runs, as the store says it should.
void start_collector() {
    run_command("cfg -a RSG_Enable=1");
    run_command("ln -s -T /usr/sbin/radstat /var/run/radstat0");
    run_command("/var/run/radstat0 -i ath0 -r 30 -m 1800 -R 0 > /dev/null 2>&1 &");
    EXPECT_TRUE(eventually([] { return send_to_daemon(COLLECTOR_SOCKET, BARRIER); })) << "no collector";
    EXPECT_TRUE(eventually([] { return read_file(JOURNAL_FILE).find("\ndatagram radstat0 ") != std::string::npos; }));
}

bool has_started_worker(const strings &lines) {
    return std::any_of(lines.begin(), lines.end(), [](const std::string &line) {
        return line.starts_with("syslog ") && line.find(START_OF_WORKER) != std::string::npos;
    });
}

// Behind the end of a worker.
bool belongs_to_the_queue(const std::string &line) {
    return line != END_OF_WORKER && !line.starts_with("datagram ") && !line.starts_with("run ");
}

// What a worker does belongs to the procedure that has started it. Its datagrams may be taken when it has ended. What
// else the server does then is the queue's business, and another procedure's: it begins three seconds later. The first
// `answered` lines were there when the service thread had answered.
strings lines_of_worker(size_t mark, size_t answered) {
    EXPECT_TRUE(eventually([&] { return has_line(lines_since(JOURNAL_FILE, mark), END_OF_WORKER); }));
    await_soft_block(mark);
    strings lines = lines_since(JOURNAL_FILE, mark);
    auto end = std::find(lines.begin(), lines.end(), END_OF_WORKER);
    auto both_ended = std::max(end, lines.begin() + static_cast<long>(answered));
    lines.erase(std::find_if(both_ended, lines.end(), belongs_to_the_queue), lines.end());
    return lines;
}

// Carries the call out, and returns what the journal gained.
strings lines_of_call(const procedure_row &row, call_reply *reply) {
    size_t mark = mark_of(JOURNAL_FILE);
    *reply = call_patiently(row.number, sample_arguments(row));
    EXPECT_EQ(reply->outcome, call_outcome::SUCCESS);
    strings lines = lines_since(JOURNAL_FILE, mark);
    if (has_started_worker(lines))
        return lines_of_worker(mark, lines.size());
    await_soft_block(mark);
    return lines_since(JOURNAL_FILE, mark);
}

void print_text(const std::string &text) {
    putchar('"');
    for (char byte : text) {
        if (byte == '"' || byte == '\\')
            putchar('\\');
        putchar(byte);
    }
    putchar('"');
}

void print_list(const char *name, const strings &items) {
    printf(", %s(", name);
    for (size_t i = 0; i < items.size(); i++) {
        fputs(i ? ", " : "", stdout);
        print_text(items[i]);
    }
    putchar(')');
}

// In front of the row stands what it is sorted by.
void print_row(const procedure_row &row, const touches &found) {
    printf("%010u\tTOUCHES(", row.number);
    print_procedure_number(stdout, row.number);
    printf(", %s", row.name);
    print_list("SAMPLE", sample_words(row));
    print_list("READS", found.reads);
    print_list("WRITES", found.writes);
    print_list("COMMANDS", found.commands);
    print_list("FILES", found.files);
    print_list("REQUESTS", found.requests);
    print_list("DATAGRAMS", found.datagrams);
    print_list("MESSAGES", found.messages);
    puts(")");
}

void record(const procedure_row &row) {
    start_collector();
    call_reply reply;
    touches found;
    for (const std::string &line : lines_of_call(row, &reply))
        if (line != BARRIER_LINE)
            add_line(&found, line);
    sort_keys(&found.reads);
    sort_keys(&found.writes);
    print_row(row, found);
    if (getenv("DUMP"))
        fprintf(stderr, "%u %s %d\n", row.number, row.name, int(word_at(reply.result, 0)));
}

// A worker may take some ten seconds, so whoever runs these in their order begins with those.
void print_names() {
    for (bool lifecycle : {true, false}) {
        std::vector<procedure_row> rows = rows_of_lifecycle(lifecycle);
        for (auto row = rows.rbegin(); row != rows.rend(); row++)
            puts(row->name);
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        print_names();
        return 0;
    }
    if (!getenv("VLK_PRIVATE_NAMESPACE")) {
        fputs("rows are recorded inside the simulated gateway only: vlk_simulated_gateway run ...\n", stderr);
        return 2;
    }
    testing::InitGoogleTest(&argc, argv);
    for (size_t i = 0; i < procedure_row_count; i++)
        if (strcmp(procedure_rows[i].name, argv[1]) == 0)
            record(procedure_rows[i]);
    return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
