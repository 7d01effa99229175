#include "simulator/launcher/namespaces.h"

#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <stdio.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/launcher/messages.h"

constexpr int GATEWAY_NAMESPACES = CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWPID;

static bool write_map(const char *path, const char *text) {
    int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    bool written = write(file, text, strlen(text)) == (ssize_t)strlen(text);
    int reason = errno;
    close(file);
    errno = reason;
    return written;
}

// Makes the caller root of a user namespace of its own.
static bool enter_user_namespace(void) {
    char users[32], groups[32];
    snprintf(users, sizeof users, "0 %u 1\n", geteuid());
    snprintf(groups, sizeof groups, "0 %u 1\n", getegid());
    if (unshare(CLONE_NEWUSER) != 0) {
        if (errno == ENOSPC || errno == EUSERS)
            return refused("a user namespace", "raise user.max_user_namespaces with sysctl");
        return refused(
            "a user namespace",
            "set kernel.unprivileged_userns_clone=1 (or kernel.apparmor_restrict_unprivileged_userns=0) with "
            "sysctl, or run as root; in a container grant CAP_SYS_ADMIN, or install proot");
    }
    // Without "deny" an ordinary user may not map groups.
    if (!write_map("/proc/self/setgroups", "deny") || !write_map("/proc/self/uid_map", users) ||
        !write_map("/proc/self/gid_map", groups))
        return refused("the mapping of a user namespace", "run as root");
    return true;
}

bool enter_namespaces(void) {
    if (geteuid() == 0 && unshare(GATEWAY_NAMESPACES) == 0)
        return true;
    // A root without CAP_SYS_ADMIN, as in a container, is no better off than an ordinary user.
    if (geteuid() == 0 && errno != EPERM)
        return refused("a mount, network or pid namespace", "raise the user.max_*_namespaces limits with sysctl");
    if (!enter_user_namespace())
        return false;
    if (unshare(GATEWAY_NAMESPACES) != 0)
        return refused("a mount, network or pid namespace",
                       "raise the user.max_*_namespaces limits with sysctl; in a container grant CAP_SYS_ADMIN");
    return true;
}

// The first process of the namespaces tries the mounts that a root is made of.
static bool may_mount(void) {
    pid_t first = fork();
    if (first == 0) {
        bool good = mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    mount("gateway", "/tmp", "tmpfs", MS_NOSUID, "mode=755") == 0 &&
                    mount("proc", "/tmp", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0;
        _exit(good ? 0 : 1);
    }
    int status = 1;
    return first > 0 && waitpid(first, &status, 0) == first && status == 0;
}

bool namespaces_are_refused(void) {
    pid_t child = fork();
    if (child == 0) {
        // What is refused need not be told: there is another way.
        int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO);
        _exit(enter_namespaces() && may_mount() ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status != 0;
}
