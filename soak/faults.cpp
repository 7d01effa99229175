#include "soak/faults.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "simulator/paths.h"
#include "soak/report.h"
#include "soak/server.h"
#include "soak/store_lock.h"

const fault_row fault_rows[] = {
#define FAULT(...) {__VA_ARGS__},
#include "soak/faults.def"
};
const size_t fault_row_count = sizeof fault_rows / sizeof fault_rows[0];

// Where the store is while something else is in its place: on the same file system, so that it can be moved.
constexpr const char KEPT_STORE[] = "/tmp/.soak_store";

static void run(const std::string &commands) {
    pid_t supervisor = find_supervisor();
    pid_t child = find_child(supervisor);
    std::string text = "SUPERVISOR=" + std::to_string(supervisor) + " CHILD=" + std::to_string(child) + "; " + commands;
    if (system(text.c_str()) == -1)
        say("cannot run %s", commands.c_str());
}

// Several texts that will do stand with a | between them, which would end a column.
static std::string as_column(const char *says) {
    std::string text = std::string("`") + says + "`";
    for (size_t place = text.find('|'); place != std::string::npos; place = text.find('|', place))
        text.replace(place, 1, "` or `");
    return text;
}

static const char *remark_of(unsigned traits) {
    if (traits & PLAIN_ONLY)
        return "the child may end; not under sanitizers";
    if (traits & EXCUSES)
        return "calls may be lost";
    return traits & HOLDS ? "the server waits as long" : "";
}

void print_faults() {
    puts("| fault | what the log has then | |\n|---|---|---|");
    for (const fault_row &row : fault_rows) {
        std::string says = row.says[0] != '\0' ? as_column(row.says) : std::string("nothing: ") + row.why;
        printf("| %s | %s | %s |\n", row.name, says.c_str(), remark_of(row.traits));
    }
}

// The store changes in one step for everybody who takes its lock.
void begin_fault(const fault_row &row) {
    if (!(row.traits & STORE))
        return run(row.begin);
    store_lock_holder lock;
    if (access(KEPT_STORE, F_OK) != 0)
        run(std::string("cp ") + APCFG_STORE + " " + KEPT_STORE);
    run(row.begin);
}

void end_fault(const fault_row &row) {
    if (!(row.traits & STORE))
        return run(row.end);
    store_lock_holder lock;
    run(std::string("rm -rf ") + APCFG_STORE + "; mv " + KEPT_STORE + " " + APCFG_STORE);
}

void mend_everything() {
    run("fault off; fault address off; killall -q -9 apup apup_simple fast_down.sh insmod cfg iwconfig;"
        " pgrep -x softblock > /dev/null || { softblock > /dev/null 2>&1 & }");
}
