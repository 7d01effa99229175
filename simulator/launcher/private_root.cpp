#include "simulator/launcher/private_root.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "simulator/launcher/namespaces.h"
#include "simulator/paths.h"

// Directories that the gateway has of its own; the host's never show through.
static const char *const own_directories[] = {"tmp", "run", "nvram", "sys"};

static const char CONTAINER_REMEDY[] = "in a container grant CAP_SYS_ADMIN and leave /proc unmasked";

static bool is_own_directory(const char *name) {
    for (const char *own : own_directories) {
        if (strcmp(own, name) == 0)
            return true;
    }
    return false;
}

// Whether `path` is `directory` or lies below it.
static bool is_below(const char *path, const char *directory) {
    size_t length = strlen(directory);
    return strncmp(path, directory, length) == 0 && (path[length] == '/' || path[length] == '\0');
}

void keep_visible(kept_directories *kept, const char *directory) {
    bool covered = false;
    for (const char *own : own_directories) {
        char top[16];
        snprintf(top, sizeof top, "/%s", own);
        // Binding the whole of it back would undo the covering.
        covered = covered || (is_below(directory, top) && strcmp(directory, top) != 0);
    }
    for (int i = 0; i < kept->count; i++)
        covered = covered && !is_below(directory, kept->paths[i]);
    if (!covered || kept->count == KEPT_DIRECTORIES)
        return;
    snprintf(kept->paths[kept->count++], sizeof kept->paths[0], "%s", directory);
}

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

static bool copy_link(const char *from, const char *to) {
    char target[PATH_MAX];
    ssize_t length = readlink(from, target, sizeof target - 1);
    if (length < 0)
        return false;
    target[length] = '\0';
    return symlink(target, to) == 0;
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
        const char *name = entry->d_name;
        bool skipped = strcmp(name, ".") == 0 || strcmp(name, "..") == 0 || strcmp(name, "dev") == 0 ||
                       strcmp(name, "proc") == 0 || strcmp(name, HOST_ROOT + 1) == 0 || is_own_directory(name);
        if (!skipped)
            good = adopt_entry(name);
    }
    closedir(top);
    return good;
}

static bool make_directories(const char *path) {
    char partial[PATH_MAX];
    for (const char *slash = strchr(path + 1, '/'); true; slash = strchr(slash + 1, '/')) {
        size_t length = slash != nullptr ? (size_t)(slash - path) : strlen(path);
        snprintf(partial, sizeof partial, "%.*s", (int)length, path);
        if (mkdir(partial, 0755) != 0 && errno != EEXIST)
            return refused(partial, CONTAINER_REMEDY);
        if (slash == nullptr)
            return true;
    }
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

// Puts a link where something of the host's may stand. A program that is installed under the very path is meant as the
// host has it: the path itself is going to be the link.
static bool place_link(const char *target, const char *path) {
    char installed[PATH_MAX];
    if (strcmp(target, path) == 0) {
        if (snprintf(installed, sizeof installed, "%s%s", HOST_ROOT, target) >= (int)sizeof installed)
            return false;
        target = installed;
    }
    unlink(path);
    return symlink(target, path) == 0 || refused(path, CONTAINER_REMEDY);
}

static bool place_file(const char *path, const char *text) {
    unlink(path);
    FILE *file = fopen(path, "we");
    if (file == nullptr)
        return refused(path, CONTAINER_REMEDY);
    fputs(text, file);
    return fclose(file) == 0 || refused(path, CONTAINER_REMEDY);
}

// Makes a directory of the host's one that can be added to: a tmpfs with a link to each of the host's entries.
static bool make_farm(const char *directory) {
    char from[PATH_MAX];
    snprintf(from, sizeof from, "%s%s", HOST_ROOT, directory);
    DIR *entries = opendir(from);
    if (entries == nullptr)
        return refused(from, CONTAINER_REMEDY);
    bool good = mount_tmpfs(directory, "mode=755");
    while (const dirent *entry = good ? readdir(entries) : nullptr) {
        char target[PATH_MAX], path[PATH_MAX];
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)
            continue;
        if (snprintf(target, sizeof target, "%s/%s", from, entry->d_name) >= (int)sizeof target)
            continue;
        snprintf(path, sizeof path, "%s/%s", directory, entry->d_name);
        good = place_link(target, path);
    }
    closedir(entries);
    return good;
}

static bool make_farms(void) {
    struct stat status;
    bool own_sbin = lstat("/sbin", &status) == 0 && S_ISDIR(status.st_mode);
    return make_farm("/usr/sbin") && (!own_sbin || make_farm("/sbin")) && make_farm("/etc");
}

// The host's users, and the portmapper's user as root: in a user namespace there is nobody else it could become.
static bool place_users(void) {
    FILE *from = fopen("/.host/etc/passwd", "re");
    unlink("/etc/passwd");
    FILE *to = fopen("/etc/passwd", "we");
    char line[1024];
    if (to == nullptr)
        return refused("/etc/passwd", CONTAINER_REMEDY);
    while (from != nullptr && fgets(line, sizeof line, from) != nullptr) {
        if (strncmp(line, "_rpc:", 5) != 0 && strncmp(line, "rpc:", 4) != 0)
            fputs(line, to);
    }
    fputs("_rpc:x:0:0::/run/rpcbind:/usr/sbin/nologin\nrpc:x:0:0::/run/rpcbind:/usr/sbin/nologin\n", to);
    if (from != nullptr)
        fclose(from);
    return fclose(to) == 0 || refused("/etc/passwd", CONTAINER_REMEDY);
}

// The portmapper looks its port up by name. The smallest systems have no list of names.
static bool place_services(void) {
    return access("/etc/services", F_OK) == 0 ||
           place_file("/etc/services", "sunrpc 111/tcp portmapper\nsunrpc 111/udp portmapper\n");
}

static bool place_programs(const gateway_programs *programs) {
    static const char *const paths[] = {
#define TOOL(name, function, path, usage) path,
#include "simulator/tools/list.def"
#undef TOOL
    };
    unlink("/etc/ath");
    unlink("/etc/wpa2");
    if (!make_directories("/etc/ath") || !make_directories("/etc/wpa2"))
        return false;
    for (const char *path : paths) {
        if (!place_link(programs->tools, path))
            return false;
    }
    if (programs->portmapper[0] != '\0' && !place_link(programs->portmapper, PORTMAPPER))
        return false;
    if (programs->rpcinfo[0] != '\0' && !place_link(programs->rpcinfo, "/usr/sbin/rpcinfo"))
        return false;
    return place_link(programs->client, "/usr/sbin/vlk_rpc_wlan_config_client");
}

// The gateway's ps lists every process, as that of a small system does; the host's, unless told otherwise, only those
// of the caller's terminal: daemons would not show in a shell, nor in whatever was started from one.
static bool place_process_list(void) {
    static const char own[] = "/usr/sbin/ps";
    char path[PATH_MAX];
    char text[PATH_MAX + 128];
    const char *name = realpath("/bin/ps", path) != nullptr ? strrchr(path, '/') : nullptr;
    // A host of one program for everything has the other kind of ps already.
    if (name == nullptr || strcmp(name, "/ps") != 0)
        return true;
    snprintf(text, sizeof text, "#!/bin/sh\n[ $# -gt 0 ] || set -- -e\nexec %s%s \"$@\"\n", HOST_ROOT, path);
    if (!place_file(own, text))
        return false;
    if (chmod(own, 0755) != 0 || mount(own, path, nullptr, MS_BIND, nullptr) != 0)
        return refused("a bind mount", CONTAINER_REMEDY);
    return true;
}

// What of the board's bus the server writes to: plain files that keep what was written last, until somebody looks for
// the radios (board).
static bool place_board(void) {
    return make_directories("/sys/bus/pci/slots/0000:02:00.0") && make_directories("/sys/bus/pci/slots/0000:03:00.0") &&
           place_file(PCI_POWER_0, "1\n") && place_file(PCI_POWER_1, "1\n") && place_file(PCI_RESCAN, "") &&
           make_directories("/nvram/etc/wpa2");
}

bool enter_private_root(const kept_directories *kept, const gateway_programs *programs) {
    if (!switch_roots() || !mount_live_trees())
        return false;
    make_host_read_only();
    return adopt_host() && make_own_directories(kept) && cover_host_directories() && make_farms() && place_users() &&
           place_services() && place_programs(programs) && place_process_list() && place_board();
}
