#include "simulator/launcher/without_namespaces.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "simulator/carrier.h"
#include "simulator/launcher/command.h"
#include "simulator/launcher/messages.h"
#include "simulator/launcher/old_calls.h"
#include "simulator/launcher/scratch_root.h"
#include "simulator/paths.h"

// In the environment of the launcher inside: the descriptor on which it says how the command ended, a blank, and the
// caller's working directory.
static const char INSIDE[] = "VLK_GATEWAY_INSIDE";

// The networks to choose from, 127.64.0.0 to 127.127.255.0: far from those that anybody uses.
constexpr uint32_t FIRST_NETWORK = 127U << 24 | 64U << 16;
constexpr uint32_t NETWORKS = 64 * 256;

// What is added to ports below 1024 for a caller who may not bind these: they end up above those that the kernel gives
// out.
constexpr uint16_t PORT_SHIFT = 64000;

// How long proot may take to end once everything inside has, and the pause between two looks.
constexpr int END_LOOKS = 1000;
constexpr long LOOK_NANOSECONDS = 5'000'000;

// How long it may take to notice that somebody killed the launcher inside, which nobody has a reason to.
constexpr int INNER_LOOK_MILLISECONDS = 1000;

bool find_proot(char *path) {
    find_program("proot", path);
    return path[0] != '\0';
}

// The run's network. Its name on an abstract socket is taken as long as the keeper lives.
static bool reserve_network(uint32_t *network) {
    int file = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    for (uint32_t i = 0; file >= 0 && i < NETWORKS; i++) {
        *network = FIRST_NETWORK + ((uint32_t)getpid() * 7 + i) % NETWORKS * 256;
        sockaddr_un name = {};
        name.sun_family = AF_UNIX;
        int length = snprintf(name.sun_path + 1, sizeof name.sun_path - 1, "vlk_simulated_gateway %08x", *network);
        if (bind(file, (const sockaddr *)&name, (socklen_t)(offsetof(sockaddr_un, sun_path) + 1) + (socklen_t)length) ==
            0)
            return true;
    }
    return complain("a loopback network", strerror(errno));
}

static bool may_bind_low_ports(uint32_t network) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(111);
    address.sin_addr.s_addr = htonl(network + 1);
    int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool bound = file >= 0 && bind(file, (const sockaddr *)&address, sizeof address) == 0;
    if (file >= 0)
        close(file);
    return bound;
}

// The words of a command, of which there is room for so many as they need.
struct words {
    const char **list;
    int count;
};

static void add(words *line, const char *word) {
    line->list[line->count++] = word;
}

static void add_option(words *line, const char *name, const char *value) {
    add(line, name);
    add(line, value);
}

// Beside the command: two for a binding, and fewer than thirty others.
constexpr size_t OTHER_WORDS = 2 * BINDINGS + 30;

// proot, and the launcher once more with all that it found.
static void put_words(words *line, const char *proot, const options *given, const scratch_root *scratch,
                      const char *launcher) {
    add_option(line, proot, "-v");
    add_option(line, "-1", "-r");
    add_option(line, scratch->root, "-w");
    add(line, "/");
    if (geteuid() != 0)
        add(line, "-0");
    for (int i = 0; i < scratch->count; i++)
        add_option(line, "-b", scratch->bindings[i]);
    add_option(line, launcher, "--scenario");
    add_option(line, GATEWAY_SCENARIO, "--server");
    add_option(line, given->server, "--client");
    add_option(line, given->client, "--rpcbind");
    add(line, given->rpcbind);
    if (given->bare)
        add(line, "--bare");
    for (char **word = given->command; *word != nullptr; word++)
        add(line, *word);
    add(line, nullptr);
}

// Appends an option to a sanitizer's option list, keeping what the caller set.
static void add_sanitizer_option(const char *variable, const char *option) {
    char value[1024];
    const char *old = getenv(variable);
    snprintf(value, sizeof value, "%s%s%s", old != nullptr ? old : "", old != nullptr ? ":" : "", option);
    setenv(variable, value, 1);
}

static void set_proot_environment(const options *given, const scratch_root *scratch, int ended) {
    char inside[PATH_MAX + 16];
    snprintf(inside, sizeof inside, "%d %s", ended, given->work);
    // Its accelerator takes the calls in an order that kernels since 4.8 do not have.
    setenv("PROOT_NO_SECCOMP", "1", 1);
    setenv("PROOT_TMP_DIR", scratch->folder, 1);
    setenv(INSIDE, inside, 1);
    // Everything has a library loaded in front; and a process that is traced cannot be searched for leaks.
    add_sanitizer_option("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0");
}

[[noreturn]] static void become_proot(const char *proot, const options *given, const scratch_root *scratch, int ended) {
    char launcher[PATH_MAX] = "";
    size_t count = 0;
    while (given->command[count] != nullptr)
        count++;
    words line = {(const char **)calloc(count + OTHER_WORDS, sizeof(char *)), 0};
    if (line.list == nullptr || readlink("/proc/self/exe", launcher, sizeof launcher - 1) < 0)
        _exit(STATUS_NO_GATEWAY);
    put_words(&line, proot, given, scratch, launcher);
    set_proot_environment(given, scratch, ended);
    // proot ends what it carries when it gets this one.
    prctl(PR_SET_PDEATHSIG, SIGQUIT);
    if (use_old_calls())
        execv(proot, (char *const *)line.list);
    complain(proot, strerror(errno));
    _exit(STATUS_NO_GATEWAY);
}

// The number behind a name in a process's status file, -1 when there is none.
static long status_number(const char *pid, const char *name) {
    char path[64];
    char line[256];
    long number = -1;
    snprintf(path, sizeof path, "/proc/%.20s/status", pid);
    FILE *file = fopen(path, "re");
    while (file != nullptr && number < 0 && fgets(line, sizeof line, file) != nullptr) {
        if (strncmp(line, name, strlen(name)) == 0)
            number = strtol(line + strlen(name), nullptr, 10);
    }
    if (file != nullptr)
        fclose(file);
    return number;
}

// Kills every process in whose status file `name` has the number `owner`.
static void kill_those(const char *name, pid_t owner) {
    DIR *processes = opendir("/proc");
    while (const dirent *entry = processes != nullptr ? readdir(processes) : nullptr) {
        long pid = strtol(entry->d_name, nullptr, 10);
        if (pid > 1 && pid != getpid() && status_number(entry->d_name, name) == owner)
            kill((pid_t)pid, SIGKILL);
    }
    if (processes != nullptr)
        closedir(processes);
}

// Whether the process has a child.
static bool has_child(pid_t process) {
    DIR *processes = opendir("/proc");
    bool found = false;
    while (const dirent *entry = processes != nullptr && !found ? readdir(processes) : nullptr)
        found = strtol(entry->d_name, nullptr, 10) > 0 && status_number(entry->d_name, "PPid:") == process;
    if (processes != nullptr)
        closedir(processes);
    return found;
}

static void look_again(void) {
    timespec pause = {0, LOOK_NANOSECONDS};
    nanosleep(&pause, nullptr);
}

// proot keeps its loader in a file of its own, /tmp/prooted-PID-XXXXXX, and leaves it there when it is killed. The
// number may be that of another proot too, in a container with which this one shares the folder: so it is for proot to
// remove where it can.
static void remove_loader(pid_t proot) {
    char beginning[32];
    char path[PATH_MAX];
    int length = snprintf(beginning, sizeof beginning, "prooted-%d-", proot);
    DIR *files = opendir("/tmp");
    while (const dirent *entry = files != nullptr ? readdir(files) : nullptr) {
        if (strncmp(entry->d_name, beginning, (size_t)length) != 0)
            continue;
        snprintf(path, sizeof path, "/tmp/%s", entry->d_name);
        unlink(path);
    }
    if (files != nullptr)
        closedir(files);
}

enum proot_state { RUNNING, ENDED, KILLED };

// Collects what ended, and notes it when proot is among it. Returns false when there are no children any more.
static bool collect(pid_t proot, proot_state *state) {
    int status;
    pid_t ended;
    while ((ended = waitpid(-1, &status, WNOHANG)) > 0) {
        if (ended == proot)
            *state = WIFSIGNALED(status) ? KILLED : ENDED;
    }
    return ended == 0 || errno != ECHILD;
}

// First what proot carries: left alone, it would go on among the host's files. Then proot ends by itself. What escaped
// from it became a child of the keeper's.
static void end_everything(pid_t proot, proot_state *state) {
    for (int i = 0; *state == RUNNING && i < END_LOOKS; i++) {
        kill_those("TracerPid:", proot);
        collect(proot, state);
        if (*state == RUNNING)
            look_again();
    }
    while (true) {
        kill_those("PPid:", getpid());
        if (!collect(proot, state))
            return;
        look_again();
    }
}

// Waits until the launcher inside says how the command ended, or proot, the launcher inside or the one outside ends.
// Returns the status that was said, STATUS_NO_GATEWAY without one.
static int wait_for_end(pid_t proot, int children, int alive, int said, proot_state *state) {
    pollfd events[] = {{children, POLLIN, 0}, {alive, POLLIN, 0}, {said, POLLIN, 0}};
    int status;
    while (true) {
        signalfd_siginfo ignored;
        poll(events, 3, INNER_LOOK_MILLISECONDS);
        // What was said counts, whatever happened since.
        if (read(said, &status, sizeof status) == (ssize_t)sizeof status)
            return status;
        if (read(children, &ignored, sizeof ignored) > 0)
            collect(proot, state);
        if (*state != RUNNING || events[1].revents != 0 || !has_child(proot))
            return STATUS_NO_GATEWAY;
    }
}

// Whether the launcher inside came so far that it says itself what goes wrong.
static bool has_begun(const scratch_root *scratch) {
    char path[PATH_MAX];
    snprintf(path, sizeof path, "%s%s", scratch->root, GATEWAY_JOURNAL);
    return access(path, F_OK) == 0;
}

// Signals are for the launcher and the command; the keeper has its work to do at the end.
static void ignore_signals(void) {
    static const int ignored[] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE};
    for (int number : ignored)
        signal(number, SIG_IGN);
    setpgid(0, 0);
}

static int keep_proot(const char *proot, const options *given, const scratch_root *scratch, int alive) {
    sigset_t ends, before;
    int said[2];
    sigemptyset(&ends);
    sigaddset(&ends, SIGCHLD);
    sigprocmask(SIG_BLOCK, &ends, &before);
    int children = signalfd(-1, &ends, SFD_CLOEXEC | SFD_NONBLOCK);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    if (pipe2(said, O_NONBLOCK) != 0)
        return STATUS_NO_GATEWAY;
    pid_t carried = fork();
    if (carried == 0) {
        close(said[0]);
        sigprocmask(SIG_SETMASK, &before, nullptr);
        become_proot(proot, given, scratch, said[1]);
    }
    close(said[1]);
    ignore_signals();
    proot_state state = carried < 0 ? ENDED : RUNNING;
    int status = state == ENDED ? STATUS_NO_GATEWAY : wait_for_end(carried, children, alive, said[0], &state);
    if (state != RUNNING && !has_begun(scratch))
        complain(proot, "ended before there was a gateway");
    end_everything(carried, &state);
    if (state == KILLED)
        remove_loader(carried);
    return status;
}

static int keep(const char *proot, const options *given, const kept_directories *kept, const gateway_programs *programs,
                const char *text, size_t length, int alive) {
    scratch_root scratch;
    static carrier self;
    int status = STATUS_NO_GATEWAY;
    umask(022);
    if (!reserve_network(&self.network) || !scratch_root_make(&scratch))
        return STATUS_NO_GATEWAY;
    self.port_shift = may_bind_low_ports(self.network) ? 0 : PORT_SHIFT;
    snprintf(self.root, sizeof self.root, "%s", scratch.root);
    if (scratch_root_fill(&scratch, given, kept, programs, &self, text, length))
        status = keep_proot(proot, given, &scratch, alive);
    scratch_root_remove(&scratch);
    return status;
}

pid_t start_without_namespaces(const char *proot, const options *given, const kept_directories *kept,
                               const gateway_programs *programs, const char *text, size_t length, int alive[2]) {
    pid_t keeper = fork();
    if (keeper == 0) {
        close(alive[1]);
        _exit(keep(proot, given, kept, programs, text, length, alive[0]));
    }
    return keeper;
}

// The descriptor on which the launcher inside says how the command ended.
static int saying = -1;

bool is_inside_without_namespaces(void) {
    static carrier self;
    static const char *const names[] = {INSIDE, "PROOT_NO_SECCOMP", "PROOT_TMP_DIR"};
    const char *inside = getenv(INSIDE);
    // Said by somebody outside it would have the host's files taken for the gateway's.
    if (inside == nullptr || !carrier_read(&self))
        return false;
    char *work;
    saying = (int)strtol(inside, &work, 10);
    fcntl(saying, F_SETFD, FD_CLOEXEC);
    if (chdir(work + strspn(work, " ")) != 0 && chdir("/") != 0)
        complain("/", strerror(errno));
    for (const char *name : names)
        unsetenv(name);
    return true;
}

void say_status(int status) {
    [[maybe_unused]] ssize_t said = write(saying, &status, sizeof status);
}
