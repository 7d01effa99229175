// The processes of a gateway without a process namespace: what lists /proc finds the gateway's own processes only, and
// a signal reaches no other.
//
// Own is what the same proot traces. Interposes opendir(), fdopendir(), readdir(), closedir(), kill() and killpg();
// programs that are statically linked, or read /proc/1 without looking for it, are not kept from the host's.
#include <ctype.h>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <linux/magic.h>

#include "simulator/carried/run.h"

using opendir_function = DIR *(*)(const char *);
using fdopendir_function = DIR *(*)(int);
using readdir_function = dirent *(*)(DIR *);
using closedir_function = int (*)(DIR *);
using kill_function = int (*)(pid_t, int);

// How many lists of processes one process may have open; a further one shows the host's, and signals still fail.
constexpr int LISTS = 8;
static DIR *lists[LISTS];

// What the kernel says of a process, the number behind each name; 0 where there is none.
struct standing {
    long tracer;
    long parent;
};

static long number_behind(const char *text, const char *name) {
    const char *line = strstr(text, name);
    return line != nullptr ? strtol(line + strlen(name), nullptr, 10) : 0;
}

// The process is a folder of /proc.
static standing standing_of(const char *process) {
    char path[64];
    // The lines are among the first ten.
    char text[1024];
    snprintf(path, sizeof path, "/proc/%.20s/status", process);
    int file = open(path, O_RDONLY | O_CLOEXEC);
    ssize_t length = file >= 0 ? read(file, text, sizeof text - 1) : -1;
    if (file >= 0)
        close(file);
    text[length > 0 ? length : 0] = '\0';
    return {number_behind(text, "\nTracerPid:"), number_behind(text, "\nPPid:")};
}

// Whose a process is.
enum ownership {
    FOREIGN,
    OWN,
    // The gateway's first process, whose parent is proot: like the first one of a namespace it gets no signals.
    FIRST,
};

static ownership ownership_of(const char *process) {
    long tracer = standing_of("self").tracer;
    standing its = standing_of(process);
    if (tracer <= 0 || its.tracer != tracer)
        return FOREIGN;
    return its.parent == tracer ? FIRST : OWN;
}

static ownership ownership_of_number(pid_t process) {
    char name[24];
    snprintf(name, sizeof name, "%d", process);
    return ownership_of(name);
}

static bool is_list(const DIR *directory) {
    for (DIR *&list : lists) {
        if (__atomic_load_n(&list, __ATOMIC_ACQUIRE) == directory)
            return true;
    }
    return false;
}

static void exchange(DIR *before, DIR *after) {
    for (DIR *&list : lists) {
        DIR *expected = before;
        if (__atomic_compare_exchange_n(&list, &expected, after, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
            return;
    }
}

// Whether it is the list of processes, by whatever name it was opened.
static bool is_process_list(DIR *directory) {
    constexpr ino_t root_of_proc = 1;
    struct statfs system;
    struct stat status;
    return fstatfs(dirfd(directory), &system) == 0 && system.f_type == PROC_SUPER_MAGIC &&
           fstat(dirfd(directory), &status) == 0 && status.st_ino == root_of_proc;
}

static DIR *note_list(DIR *directory) {
    int before = errno;
    if (directory != nullptr && is_process_list(directory) && own_run() != nullptr)
        exchange(nullptr, directory);
    errno = before;
    return directory;
}

EXPORTED DIR *opendir(const char *path) {
    return note_list(((opendir_function)next_of("opendir"))(path));
}

EXPORTED DIR *fdopendir(int file) {
    return note_list(((fdopendir_function)next_of("fdopendir"))(file));
}

EXPORTED int closedir(DIR *directory) {
    exchange(directory, nullptr);
    return ((closedir_function)next_of("closedir"))(directory);
}

EXPORTED dirent *readdir(DIR *directory) {
    auto next = (readdir_function)next_of("readdir");
    bool list = is_list(directory);
    int before = errno;
    while (true) {
        dirent *entry = next(directory);
        if (entry == nullptr || !list || isdigit((unsigned char)entry->d_name[0]) == 0 ||
            ownership_of(entry->d_name) != FOREIGN)
            return entry;
        errno = before;
    }
}

// Programs with 64-bit file offsets call it by this name.
EXPORTED dirent64 *readdir64(DIR *directory) {
    static_assert(sizeof(dirent) == sizeof(dirent64) || sizeof(long) == 4, "the two are the same here");
    using readdir64_function = dirent64 *(*)(DIR *);
    auto next = (readdir64_function)next_of("readdir64");
    bool list = is_list(directory);
    int before = errno;
    while (true) {
        dirent64 *entry = next(directory);
        if (entry == nullptr || !list || isdigit((unsigned char)entry->d_name[0]) == 0 ||
            ownership_of(entry->d_name) != FOREIGN)
            return entry;
        errno = before;
    }
}

// Signals those of a group (0: all), but the first process, and this one when all are meant. The errors are those of
// the kernel.
static int signal_own(pid_t group, int number) {
    auto next = (kill_function)next_of("kill");
    DIR *processes = opendir("/proc");
    bool found = false;
    while (const dirent *entry = processes != nullptr ? readdir(processes) : nullptr) {
        auto process = (pid_t)strtol(entry->d_name, nullptr, 10);
        bool meant = process > 0 && (group == 0 ? process != getpid() : getpgid(process) == group);
        if (meant && ownership_of(entry->d_name) == OWN && next(process, number) == 0)
            found = true;
    }
    if (processes != nullptr)
        closedir(processes);
    if (!found)
        errno = ESRCH;
    return found ? 0 : -1;
}

static int signal_group(pid_t group, int number) {
    // A group that a process of the gateway's leads has nobody else in it, unless it is the launcher's.
    if (ownership_of_number(group) == OWN)
        return ((kill_function)next_of("kill"))(-group, number);
    return signal_own(group, number);
}

static int signal_process(pid_t process, int number) {
    switch (ownership_of_number(process)) {
        case OWN:
            return ((kill_function)next_of("kill"))(process, number);
        case FIRST:
            return 0;
        case FOREIGN:
            break;
    }
    // A child that has ended and was not collected is traced by nobody any more.
    siginfo_t ended = {};
    if (waitid(P_PID, (id_t)process, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid == process)
        return 0;
    errno = ESRCH;
    return -1;
}

EXPORTED int kill(pid_t process, int number) noexcept {
    if (own_run() == nullptr || process == getpid())
        return ((kill_function)next_of("kill"))(process, number);
    if (process > 0)
        return signal_process(process, number);
    if (process == -1)
        return signal_own(0, number);
    return signal_group(process == 0 ? getpgrp() : -process, number);
}

EXPORTED int killpg(pid_t group, int number) noexcept {
    return kill(group == 0 ? 0 : -group, number);
}
