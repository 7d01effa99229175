// limit_calls NUMBERS FAMILIES PROGRAM [ARGUMENT...]: runs a program with only the system calls that the service unit
// leaves it.
//
// NUMBERS is a file with the numbers of the calls that SystemCallFilter= permits, FAMILIES the words of
// RestrictAddressFamilies=. The rest is as MemoryDenyWriteExecute=, RestrictNamespaces=, RestrictRealtime=,
// RestrictSUIDSGID=, LockPersonality= and SystemCallArchitectures=native have it. Where the unit has a call refused,
// the caller is killed here instead: a refusal that nobody would notice fails the test. But for address families: to
// ask for one that is not there is nothing wrong; and for what is said to be harmless below.
#include <errno.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <bit>
#include <sstream>
#include <string>
#include <vector>

namespace {

#if defined(__x86_64__)
constexpr unsigned NATIVE = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned NATIVE = AUDIT_ARCH_AARCH64;
#elif defined(__i386__)
constexpr unsigned NATIVE = AUDIT_ARCH_I386;
#elif defined(__arm__)
constexpr unsigned NATIVE = AUDIT_ARCH_ARM;
#else
#error "the name of this machine's system calls is missing here"
#endif

constexpr unsigned NAMESPACES =
    CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;

using steps = std::vector<sock_filter>;

void load(steps *filter, size_t offset) {
    filter->push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset)));
}

void load_number(steps *filter) {
    load(filter, offsetof(seccomp_data, nr));
}

// The lower half of an argument, where everything that is asked for here has its bits.
void load_argument(steps *filter, unsigned index) {
    size_t half = std::endian::native == std::endian::big ? sizeof(uint32_t) : 0;
    load(filter, offsetof(seccomp_data, args) + index * sizeof(uint64_t) + half);
}

// Puts `inside` behind a test that lets only one call in, and gets the number back for the next test.
void for_call(steps *filter, long number, steps inside) {
    load_number(&inside);
    filter->push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0,
                               static_cast<unsigned char>(inside.size())));
    filter->insert(filter->end(), inside.begin(), inside.end());
}

// Kills a call whose argument has all, or any, of the bits.
void forbid_bits(steps *filter, long number, unsigned index, unsigned bits, bool all) {
    steps inside;
    load_argument(&inside, index);
    inside.push_back(BPF_STMT(BPF_ALU | BPF_AND | BPF_K, bits));
    if (all)
        inside.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, bits, 0, 1));
    else
        inside.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0));
    inside.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS));
    for_call(filter, number, inside);
}

void answer(steps *filter, long number, unsigned verdict) {
    for_call(filter, number, {BPF_STMT(BPF_RET | BPF_K, verdict)});
}

unsigned family_of(const std::string &name) {
    const struct {
        const char *name;
        unsigned family;
    } families[] = {{"AF_UNIX", AF_UNIX},
                    {"AF_INET", AF_INET},
                    {"AF_INET6", AF_INET6},
                    {"AF_NETLINK", AF_NETLINK},
                    {"AF_PACKET", AF_PACKET}};
    for (const auto &known : families) {
        if (name == known.name)
            return known.family;
    }
    fprintf(stderr, "limit_calls: no address family %s\n", name.c_str());
    exit(2);
}

void restrict_families(steps *filter, const char *names) {
    steps inside;
    std::istringstream words(names);
    std::string name;
    load_argument(&inside, 0);
    while (words >> name) {
        inside.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, family_of(name), 0, 1));
        inside.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    }
    inside.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EAFNOSUPPORT));
    for_call(filter, SYS_socket, inside);
}

void restrict_arguments(steps *filter) {
    forbid_bits(filter, SYS_mmap, 2, PROT_WRITE | PROT_EXEC, true);
    forbid_bits(filter, SYS_mprotect, 2, PROT_EXEC, true);
    forbid_bits(filter, SYS_clone, 0, NAMESPACES, false);
    forbid_bits(filter, SYS_unshare, 0, NAMESPACES, false);
    forbid_bits(filter, SYS_fchmodat, 2, S_ISUID | S_ISGID, false);
    forbid_bits(filter, SYS_fchmod, 1, S_ISUID | S_ISGID, false);
    for (long number : {SYS_setns, SYS_personality, SYS_sched_setscheduler})
        answer(filter, number, SECCOMP_RET_KILL_PROCESS);
    // Its flags are out of a filter's sight; the C library goes back to clone.
    answer(filter, SYS_clone3, SECCOMP_RET_ERRNO | ENOSYS);
}

void permit_numbers(steps *filter, const char *path) {
    FILE *file = fopen(path, "re");
    long number;
    while (file && fscanf(file, "%ld", &number) == 1)
        answer(filter, number, SECCOMP_RET_ALLOW);
    if (file)
        fclose(file);
    // pgrep and ps have a library that only tries whether it is there.
    answer(filter, SYS_set_mempolicy, SECCOMP_RET_ERRNO | EPERM);
    filter->push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS));
}

}  // namespace

int main(int argument_count, char **arguments) {
    if (argument_count < 4) {
        fprintf(stderr, "usage: limit_calls NUMBERS FAMILIES PROGRAM [ARGUMENT...]\n");
        return 2;
    }
    steps filter;
    load(&filter, offsetof(seccomp_data, arch));
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, NATIVE, 1, 0));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS));
    load_number(&filter);
    restrict_families(&filter, arguments[2]);
    restrict_arguments(&filter);
    permit_numbers(&filter, arguments[1]);
    sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
        perror("limit_calls: seccomp");
        return 2;
    }
    execvp(arguments[3], arguments + 3);
    perror(arguments[3]);
    return 127;
}
