// as_in_a_container COMMAND...: runs a command where namespaces are refused, as a container with default settings has
// it: the calls that make or enter namespaces fail, and so do mounts. The rights are the caller's (setpriv takes those
// away).
#include <errno.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr unsigned NAMESPACES =
    CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;

#define REFUSE(number, error) \
    BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_##number, 0, 1), BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | (error))

bool refuse_namespaces() {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        REFUSE(unshare, EPERM),
        REFUSE(setns, EPERM),
        REFUSE(mount, EPERM),
        REFUSE(umount2, EPERM),
        REFUSE(pivot_root, EPERM),
        // Its flags are in memory, where no filter sees them; libc then takes clone().
        REFUSE(clone3, ENOSYS),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[0])),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, NAMESPACES, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog program = {sizeof steps / sizeof steps[0], steps};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace

int main(int argument_count, char **arguments) {
    if (argument_count < 2 || !refuse_namespaces()) {
        perror("as_in_a_container");
        return 2;
    }
    execvp(arguments[1], arguments + 1);
    perror(arguments[1]);
    return 127;
}
