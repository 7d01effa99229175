#include "simulator/launcher/private_root.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "simulator/launcher/messages.h"
#include "simulator/launcher/root_contents.h"

static const char CONTAINER_REMEDY[] = "in a container grant CAP_SYS_ADMIN and leave /proc unmasked";

// Where the gateway's files are put and where the host's are, once the roots are switched.
static const root_place HERE = {"", HOST_ROOT};

// Mounts, each with the sentence for the case that the kernel refuses.

static bool mount_tmpfs(const char *path, const char *options) {
    if (mkdir(path, 0755) != 0 && errno != EEXIST)
        return refused(path, CONTAINER_REMEDY);
    if (mount("gateway", path, "tmpfs", MS_NOSUID | MS_NODEV, options) != 0)
        return refused("a tmpfs", CONTAINER_REMEDY);
    return true;
}

static bool bind(const char *from, const char *to) {
    if (mkdir(to, 0755) != 0 && errno != EEXIST)
        return refused(to, CONTAINER_REMEDY);
    if (mount(from, to, nullptr, MS_BIND | MS_REC, nullptr) != 0)
        return refused("a bind mount", CONTAINER_REMEDY);
    return true;
}

// The new root becomes /, the host's one stands below it.
static bool switch_roots(void) {
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return refused("private mounts", CONTAINER_REMEDY);
    // Any directory will do: pivot_root takes the mount away from it again.
    if (mount("gateway", "/tmp", "tmpfs", MS_NOSUID, "mode=755") != 0)
        return refused("a tmpfs", CONTAINER_REMEDY);
    char old_root[32];
    snprintf(old_root, sizeof old_root, "/tmp%s", HOST_ROOT);
    if (mkdir(old_root, 0755) != 0 || syscall(SYS_pivot_root, "/tmp", old_root) != 0 || chdir("/") != 0)
        return refused("pivot_root", "start from a root that is a mount of its own, not from an initramfs");
    return true;
}

// Devices stay writable and the processes are the gateway's own; both before the host's tree turns read-only.
static bool mount_live_trees(void) {
    if (!bind("/.host/dev", "/dev"))
        return false;
    if (mkdir("/proc", 0755) != 0 || mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) != 0)
        return refused("/proc", CONTAINER_REMEDY);
    return true;
}

// A kernel without the call leaves the host's files as writable as their permissions say.
static void make_host_read_only(void) {
    struct mount_attr attributes = {};
    attributes.attr_set = MOUNT_ATTR_RDONLY;
    syscall(SYS_mount_setattr, AT_FDCWD, HOST_ROOT, AT_RECURSIVE, &attributes, sizeof attributes);
}

static bool adopt_entry(const char *name) {
    char from[PATH_MAX], to[PATH_MAX];
    struct stat status;
    snprintf(from, sizeof from, "%s/%s", HOST_ROOT, name);
    snprintf(to, sizeof to, "/%s", name);
    if (lstat(from, &status) != 0)
        return true;
    if (S_ISLNK(status.st_mode))
        return copy_link(from, to) || refused(to, CONTAINER_REMEDY);
    if (S_ISDIR(status.st_mode))
        return bind(from, to);
    return symlink(from, to) == 0 || refused(to, CONTAINER_REMEDY);
}

// Everything at the top of the host's root that the gateway does not have of its own.
static bool adopt_host(void) {
    DIR *top = opendir(HOST_ROOT);
    if (top == nullptr)
        return refused(HOST_ROOT, CONTAINER_REMEDY);
    bool good = true;
    while (const dirent *entry = good ? readdir(top) : nullptr) {
        if (is_adopted(entry->d_name))
            good = adopt_entry(entry->d_name);
    }
    closedir(top);
    return good;
}

static bool make_own_directories(const kept_directories *kept) {
    if (!mount_tmpfs("/tmp", "mode=1777") || !mount_tmpfs("/run", "mode=755") || !mount_tmpfs("/nvram", "mode=755") ||
        !mount_tmpfs("/sys", "mode=755"))
        return false;
    for (int i = 0; i < kept->count; i++) {
        char from[PATH_MAX];
        if (snprintf(from, sizeof from, "%s%s", HOST_ROOT, kept->paths[i]) >= (int)sizeof from)
            continue;
        if (!make_directories(kept->paths[i]) || !bind(from, kept->paths[i]))
            return false;
    }
    // Where /var/run is no link to /run it has to become the same directory.
    struct stat status;
    if (lstat("/var/run", &status) == 0 && S_ISDIR(status.st_mode))
        return bind("/run", "/var/run");
    return true;
}

// Nobody in the gateway finds the host's processes, sockets or temporary files by the back door.
static bool cover_host_directories(void) {
    static const char *const covered[] = {"/.host/proc", "/.host/sys", "/.host/tmp", "/.host/run", "/.host/nvram"};
    for (const char *path : covered) {
        struct stat status;
        if (lstat(path, &status) != 0 || !S_ISDIR(status.st_mode))
            continue;
        if (mount("gateway", path, "tmpfs", MS_RDONLY | MS_NOSUID | MS_NODEV, "size=4k") != 0)
            return refused("a tmpfs", CONTAINER_REMEDY);
    }
    return true;
}

// Makes directories of the host's ones that can be added to.
static bool cover_farms(void) {
    for (int i = 0; const char *directory = farm(&HERE, i); i++) {
        if (!mount_tmpfs(directory, "mode=755"))
            return false;
    }
    return true;
}

static bool cover_process_list(void) {
    char program[PATH_MAX];
    if (!process_list(program) || mount(OWN_PROCESS_LIST, program, nullptr, MS_BIND, nullptr) == 0)
        return true;
    return refused("a bind mount", CONTAINER_REMEDY);
}

bool enter_private_root(const kept_directories *kept, const gateway_programs *programs) {
    if (!switch_roots() || !mount_live_trees())
        return false;
    make_host_read_only();
    return adopt_host() && make_own_directories(kept) && cover_host_directories() && cover_farms() &&
           fill_root(&HERE, programs) && cover_process_list();
}
