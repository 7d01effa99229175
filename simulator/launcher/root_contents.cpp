#include "simulator/launcher/root_contents.h"

#include <dirent.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/launcher/messages.h"
#include "simulator/paths.h"

static const char REMEDY[] = "leave room there";

// Directories that the gateway has of its own; the host's never show through.
static const char *const own_directories[] = {"/tmp", "/run", "/nvram", "/sys"};

const char *own_directory(int number) {
    return number < (int)(sizeof own_directories / sizeof own_directories[0]) ? own_directories[number] : nullptr;
}

bool is_adopted(const char *name) {
    static const char *const others[] = {".", "..", "dev", "proc", HOST_ROOT + 1};
    for (const char *own : own_directories) {
        if (strcmp(own + 1, name) == 0)
            return false;
    }
    for (const char *other : others) {
        if (strcmp(other, name) == 0)
            return false;
    }
    return true;
}

// Whether `path` is `directory` or lies below it.
static bool is_below(const char *path, const char *directory) {
    size_t length = strlen(directory);
    return strncmp(path, directory, length) == 0 && (path[length] == '/' || path[length] == '\0');
}

void keep_visible(kept_directories *kept, const char *directory) {
    bool covered = false;
    for (const char *own : own_directories) {
        // Binding the whole of it back would undo the covering.
        covered = covered || (is_below(directory, own) && strcmp(directory, own) != 0);
    }
    for (int i = 0; i < kept->count; i++)
        covered = covered && !is_below(directory, kept->paths[i]);
    if (!covered || kept->count == KEPT_DIRECTORIES)
        return;
    snprintf(kept->paths[kept->count++], sizeof kept->paths[0], "%s", directory);
}

bool copy_link(const char *from, const char *to) {
    char target[PATH_MAX];
    ssize_t length = readlink(from, target, sizeof target - 1);
    if (length < 0)
        return false;
    target[length] = '\0';
    return symlink(target, to) == 0;
}

bool make_directories(const char *path) {
    char partial[PATH_MAX];
    for (const char *slash = strchr(path + 1, '/'); true; slash = strchr(slash + 1, '/')) {
        size_t length = slash != nullptr ? (size_t)(slash - path) : strlen(path);
        snprintf(partial, sizeof partial, "%.*s", (int)length, path);
        if (mkdir(partial, 0755) != 0 && errno != EEXIST)
            return refused(partial, REMEDY);
        if (slash == nullptr)
            return true;
    }
}

// Paths of the gateway, where they are while the root is being built.

static bool has_own_sbin(const root_place *place) {
    char path[PATH_MAX];
    struct stat status;
    snprintf(path, sizeof path, "%s/sbin", place->host);
    return lstat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// A host whose /sbin is a link to /usr/sbin may have an absolute one, which would lead out of a root that is a folder.
static void locate(const root_place *place, const char *path, char *located) {
    const char *merged = strncmp(path, "/sbin/", 6) == 0 && !has_own_sbin(place) ? "/usr" : "";
    snprintf(located, PATH_MAX, "%s%s%s", place->root, merged, path);
}

const char *farm(const root_place *place, int number) {
    static const char *const farms[] = {"/usr/sbin", "/etc", "/sbin"};
    int count = has_own_sbin(place) ? 3 : 2;
    return number < count ? farms[number] : nullptr;
}

// Puts a link where something of the host's may stand. A program that is installed under the very path is meant as the
// host has it: the path itself is going to be the link.
static bool place_link(const root_place *place, const char *target, const char *path) {
    char installed[PATH_MAX];
    char link[PATH_MAX];
    if (strcmp(target, path) == 0) {
        if (snprintf(installed, sizeof installed, "%s%s", HOST_ROOT, target) >= (int)sizeof installed)
            return false;
        target = installed;
    }
    locate(place, path, link);
    unlink(link);
    return symlink(target, link) == 0 || refused(path, REMEDY);
}

static FILE *open_own(const root_place *place, const char *path) {
    char located[PATH_MAX];
    locate(place, path, located);
    unlink(located);
    return fopen(located, "we");
}

static bool place_file(const root_place *place, const char *path, const char *text) {
    FILE *file = open_own(place, path);
    if (file == nullptr)
        return refused(path, REMEDY);
    fputs(text, file);
    return fclose(file) == 0 || refused(path, REMEDY);
}

static bool place_directory(const root_place *place, const char *path) {
    char located[PATH_MAX];
    locate(place, path, located);
    unlink(located);
    return make_directories(located);
}

// A link to each of the host's entries.
static bool fill_farm(const root_place *place, const char *directory) {
    char from[PATH_MAX];
    snprintf(from, sizeof from, "%s%s", place->host, directory);
    DIR *entries = opendir(from);
    if (entries == nullptr)
        return refused(from, REMEDY);
    bool good = true;
    while (const dirent *entry = good ? readdir(entries) : nullptr) {
        char target[PATH_MAX], path[PATH_MAX];
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)
            continue;
        snprintf(target, sizeof target, "%s%.64s/%s", HOST_ROOT, directory, entry->d_name);
        snprintf(path, sizeof path, "%.64s/%s", directory, entry->d_name);
        good = place_link(place, target, path);
    }
    closedir(entries);
    return good;
}

static bool fill_farms(const root_place *place) {
    for (int i = 0; const char *directory = farm(place, i); i++) {
        if (!fill_farm(place, directory))
            return false;
    }
    return true;
}

// The host's users, and the portmapper's user as root: in a user namespace there is nobody else it could become.
static bool place_users(const root_place *place) {
    char host[PATH_MAX];
    snprintf(host, sizeof host, "%s/etc/passwd", place->host);
    FILE *from = fopen(host, "re");
    FILE *to = open_own(place, "/etc/passwd");
    char line[1024];
    if (to == nullptr)
        return refused("/etc/passwd", REMEDY);
    while (from != nullptr && fgets(line, sizeof line, from) != nullptr) {
        if (strncmp(line, "_rpc:", 5) != 0 && strncmp(line, "rpc:", 4) != 0)
            fputs(line, to);
    }
    fputs("_rpc:x:0:0::/run/rpcbind:/usr/sbin/nologin\nrpc:x:0:0::/run/rpcbind:/usr/sbin/nologin\n", to);
    if (from != nullptr)
        fclose(from);
    return fclose(to) == 0 || refused("/etc/passwd", REMEDY);
}

// The portmapper looks its port up by name. The smallest systems have no list of names.
static bool place_services(const root_place *place) {
    char host[PATH_MAX];
    snprintf(host, sizeof host, "%s/etc/services", place->host);
    return access(host, F_OK) == 0 ||
           place_file(place, "/etc/services", "sunrpc 111/tcp portmapper\nsunrpc 111/udp portmapper\n");
}

static bool place_programs(const root_place *place, const gateway_programs *programs) {
    static const char *const paths[] = {
#define TOOL(name, function, path, usage) path,
#include "simulator/tools/list.def"
#undef TOOL
    };
    if (!place_directory(place, "/etc/ath") || !place_directory(place, "/etc/wpa2"))
        return false;
    for (const char *path : paths) {
        if (!place_link(place, programs->tools, path))
            return false;
    }
    if (programs->portmapper[0] != '\0' && !place_link(place, programs->portmapper, PORTMAPPER))
        return false;
    if (programs->rpcinfo[0] != '\0' && !place_link(place, programs->rpcinfo, "/usr/sbin/rpcinfo"))
        return false;
    return place_link(place, programs->client, "/usr/sbin/vlk_rpc_wlan_config_client");
}

bool process_list(char *path) {
    const char *name = realpath("/bin/ps", path) != nullptr ? strrchr(path, '/') : nullptr;
    // A host of one program for everything has the other kind of ps already.
    return name != nullptr && strcmp(name, "/ps") == 0;
}

// The gateway's ps lists every process, as that of a small system does; the host's, unless told otherwise, only those
// of the caller's terminal: daemons would not show in a shell, nor in whatever was started from one.
static bool place_process_list(const root_place *place) {
    char path[PATH_MAX];
    char own[PATH_MAX];
    char text[PATH_MAX + 128];
    if (!process_list(path))
        return true;
    snprintf(text, sizeof text, "#!/bin/sh\n[ $# -gt 0 ] || set -- -e\nexec %s%s \"$@\"\n", HOST_ROOT, path);
    locate(place, OWN_PROCESS_LIST, own);
    return place_file(place, OWN_PROCESS_LIST, text) && (chmod(own, 0755) == 0 || refused(own, REMEDY));
}

// What of the board's bus the server writes to: plain files that keep what was written last, until somebody looks for
// the radios (board).
static bool place_board(const root_place *place) {
    return place_directory(place, "/sys/bus/pci/slots/0000:02:00.0") &&
           place_directory(place, "/sys/bus/pci/slots/0000:03:00.0") && place_file(place, PCI_POWER_0, "1\n") &&
           place_file(place, PCI_POWER_1, "1\n") && place_file(place, PCI_RESCAN, "") &&
           place_directory(place, "/nvram/etc/wpa2");
}

bool fill_root(const root_place *place, const gateway_programs *programs) {
    return fill_farms(place) && place_users(place) && place_services(place) && place_programs(place, programs) &&
           place_process_list(place) && place_board(place);
}
