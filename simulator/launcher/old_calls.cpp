#include "simulator/launcher/old_calls.h"

#include <errno.h>
#include <stddef.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <linux/filter.h>
#include <linux/seccomp.h>

// Calls that came after a kernel that all of them are missing in (Linux 6.6): paths may be among their arguments.
constexpr unsigned FIRST_UNKNOWN = 452;

#define REFUSE(number, error) \
    BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_##number, 0, 1), BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | (error))

bool use_old_calls(void) {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        REFUSE(statx, ENOSYS),
        REFUSE(faccessat2, ENOSYS),
        REFUSE(openat2, ENOSYS),
        REFUSE(clone3, ENOSYS),
        REFUSE(execveat, ENOSYS),
        REFUSE(open_tree, ENOSYS),
        REFUSE(name_to_handle_at, ENOSYS),
        REFUSE(io_uring_setup, ENOSYS),
        BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, FIRST_UNKNOWN, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_kill, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        // The process that is to get the signal, as the kernel takes it: the lower half.
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[0])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0xffffffff, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog program = {sizeof steps / sizeof steps[0], steps};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}
