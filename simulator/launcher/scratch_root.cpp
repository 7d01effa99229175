#include "simulator/launcher/scratch_root.h"

#include <dirent.h>
#include <errno.h>
#include <ftw.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "simulator/launcher/messages.h"
#include "simulator/paths.h"

static const char NAME[] = "vlk_gateway.XXXXXX";
static const char PRELOADED[] = "/etc/vlk_gateway_carrier.so";

// The addresses of local sockets hold 107 characters; what stands in front of them inside must leave them room.
constexpr size_t LONGEST_PARENT = 40;

// Descriptors that nftw() may use.
constexpr int OPEN_FOLDERS = 16;

static bool is_usable(const char *parent) {
    struct statvfs status;
    return parent != nullptr && parent[0] == '/' && strlen(parent) <= LONGEST_PARENT &&
           strpbrk(parent, ": \n") == nullptr && access(parent, W_OK | X_OK) == 0 && statvfs(parent, &status) == 0 &&
           (status.f_flag & ST_NOEXEC) == 0;
}

bool scratch_root_make(scratch_root *scratch) {
    const char *const parents[] = {getenv("TMPDIR"), "/tmp", "/var/tmp"};
    *scratch = {};
    for (const char *parent : parents) {
        char real[PATH_MAX];
        if (!is_usable(parent) || realpath(parent, real) == nullptr || !is_usable(real))
            continue;
        snprintf(scratch->folder, sizeof scratch->folder, "%.64s/%s", real, NAME);
        // Who gives up root inside must still get through.
        if (mkdtemp(scratch->folder) == nullptr || chmod(scratch->folder, 0711) != 0)
            continue;
        snprintf(scratch->root, sizeof scratch->root, "%s/root", scratch->folder);
        return true;
    }
    return refused("a folder below /tmp or /var/tmp", "set TMPDIR to one where programs may be run");
}

// Puts one path behind another. A path that is too long becomes an empty one.
static void join(char *path, const char *folder, const char *below) {
    if (snprintf(path, PATH_MAX, "%s%s", folder, below) >= PATH_MAX)
        path[0] = '\0';
}

static bool make(const scratch_root *scratch, const char *path, mode_t mode) {
    char made[PATH_MAX];
    join(made, scratch->root, path);
    // The mode as it is, whatever the mask.
    return (make_directories(made) && chmod(made, mode) == 0) || complain(made, strerror(errno));
}

static bool bind(scratch_root *scratch, const char *from, const char *to) {
    if (scratch->count == BINDINGS || asprintf(&scratch->bindings[scratch->count], "%s:%s", from, to) < 0)
        return complain(to, "too many bindings");
    scratch->count++;
    return true;
}

// Binds a directory of the host; where it is bound there has to be one.
static bool bind_directory(scratch_root *scratch, const char *from, const char *to) {
    return make(scratch, to, 0755) && bind(scratch, from, to);
}

static bool bind_own(scratch_root *scratch, const char *path, const char *to) {
    char from[PATH_MAX];
    join(from, scratch->root, path);
    return bind(scratch, from, to);
}

static bool is_farm(const char *path) {
    static const root_place place = {"", ""};
    for (int i = 0; const char *directory = farm(&place, i); i++) {
        if (strcmp(directory, path) == 0)
            return true;
    }
    return false;
}

static bool adopt_entry(scratch_root *scratch, const char *name) {
    char from[PATH_MAX], to[PATH_MAX], target[PATH_MAX];
    struct stat status;
    snprintf(from, sizeof from, "/%s", name);
    snprintf(to, sizeof to, "%s/%s", scratch->root, name);
    snprintf(target, sizeof target, "%s/%s", HOST_ROOT, name);
    if (lstat(from, &status) != 0)
        return true;
    if (S_ISLNK(status.st_mode))
        return copy_link(from, to) || complain(to, strerror(errno));
    if (!S_ISDIR(status.st_mode))
        return symlink(target, to) == 0 || complain(to, strerror(errno));
    return is_farm(from) ? make(scratch, from, 0755) : bind_directory(scratch, from, from);
}

static bool adopt_host(scratch_root *scratch) {
    DIR *top = opendir("/");
    if (top == nullptr)
        return complain("/", strerror(errno));
    bool good = true;
    while (const dirent *entry = good ? readdir(top) : nullptr) {
        if (is_adopted(entry->d_name))
            good = adopt_entry(scratch, entry->d_name);
    }
    closedir(top);
    return good && bind_directory(scratch, "/dev", "/dev") && bind_directory(scratch, "/proc", "/proc");
}

// The host's root without what the gateway has of its own.
static bool show_host(scratch_root *scratch) {
    static const char *const covered[] = {"/proc", "/sys", "/tmp", "/run", "/nvram"};
    char empty[PATH_MAX];
    snprintf(empty, sizeof empty, "%s/empty", scratch->folder);
    if (mkdir(empty, 0555) != 0 || !bind_directory(scratch, "/", HOST_ROOT))
        return false;
    for (const char *path : covered) {
        char to[PATH_MAX];
        struct stat status;
        join(to, HOST_ROOT, path);
        if (lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && !bind(scratch, empty, to))
            return false;
    }
    return true;
}

static bool make_own_directories(scratch_root *scratch, const kept_directories *kept) {
    for (int i = 0; const char *path = own_directory(i); i++) {
        if (!make(scratch, path, strcmp(path, "/tmp") == 0 ? 01777 : 0755))
            return false;
    }
    for (int i = 0; i < kept->count; i++) {
        if (!bind_directory(scratch, kept->paths[i], kept->paths[i]))
            return false;
    }
    // Where /var/run is no link to /run it has to become the same directory.
    struct stat status;
    return lstat("/var/run", &status) != 0 || !S_ISDIR(status.st_mode) || bind_own(scratch, "/run", "/var/run");
}

static bool bind_farms(scratch_root *scratch, const root_place *place) {
    for (int i = 0; const char *directory = farm(place, i); i++) {
        // The others are not below a directory of the host.
        if (strrchr(directory, '/') == directory)
            continue;
        if (!make(scratch, directory, 0755) || !bind_own(scratch, directory, directory))
            return false;
    }
    return true;
}

static FILE *open_own(const scratch_root *scratch, const char *path) {
    char own[PATH_MAX];
    join(own, scratch->root, path);
    unlink(own);
    FILE *file = fopen(own, "we");
    if (file == nullptr)
        complain(own, strerror(errno));
    return file;
}

static bool place_text(const scratch_root *scratch, const char *path, const char *text, size_t length) {
    FILE *file = open_own(scratch, path);
    if (file == nullptr)
        return false;
    bool written = fwrite(text, 1, length, file) == length;
    return (fclose(file) == 0 && written) || complain(path, strerror(errno));
}

// There is no IPv6 in the gateway, and RPC programs read here which protocols there are.
static bool place_protocols(const scratch_root *scratch) {
    char line[1024];
    FILE *from = fopen("/etc/netconfig", "re");
    FILE *to = from != nullptr ? open_own(scratch, "/etc/netconfig") : nullptr;
    while (to != nullptr && fgets(line, sizeof line, from) != nullptr) {
        if (strstr(line, "inet6") == nullptr)
            fputs(line, to);
    }
    bool good = from == nullptr || (to != nullptr && fclose(to) == 0);
    if (from != nullptr)
        fclose(from);
    return good;
}

// What every program in the gateway has loaded, whatever becomes of its environment.
static bool place_library(const scratch_root *scratch, const char *library) {
    char link[PATH_MAX];
    char list[64];
    join(link, scratch->root, PRELOADED);
    int length = snprintf(list, sizeof list, "%s\n", PRELOADED);
    if (symlink(library, link) != 0)
        return complain(link, strerror(errno));
    return place_text(scratch, "/etc/ld.so.preload", list, (size_t)length);
}

// libc itself asks for names, past the library: nobody in the run's network answers.
static bool place_resolver(const scratch_root *scratch, const carrier *self) {
    constexpr unsigned nobody = 253;
    char line[64];
    int length = snprintf(line, sizeof line, "nameserver 127.%u.%u.%u\n", self->network >> 16 & 0xff,
                          self->network >> 8 & 0xff, nobody);
    return place_text(scratch, "/etc/resolv.conf", line, (size_t)length);
}

// ip, as far as there is something for it to show or change: the host's would tell of the host's network, which the
// gateway is kept from.
static const char IP[] =
    "#!/bin/sh\n"
    "gone=/run/gateway/address.gone\n"
    "case \"$*\" in\n"
    "a | addr | address | a\\ show* | addr\\ show* | address\\ show*)\n"
    "    echo '1: lo: <LOOPBACK,UP,LOWER_UP> mtu 65536'\n"
    "    echo '    inet 127.0.0.1/8 scope host lo'\n"
    "    [ -e $gone ] || echo '    inet 192.168.254.254/32 scope global lo:1' ;;\n"
    "a*\\ del*\\ 192.168.254.254*)\n"
    "    [ ! -e $gone ] || { echo 'RTNETLINK answers: Cannot assign requested address' >&2; exit 2; }\n"
    "    : >$gone ;;\n"
    "a*\\ add\\ 192.168.254.254*)\n"
    "    [ -e $gone ] || { echo 'RTNETLINK answers: File exists' >&2; exit 2; }\n"
    "    rm $gone ;;\n"
    "a*\\ replace\\ 192.168.254.254*) rm -f $gone ;;\n"
    "*)\n"
    "    echo 'ip: where namespaces are refused the gateway has two addresses and nothing else' >&2\n"
    "    exit 1 ;;\n"
    "esac\n";

static bool place_ip(const scratch_root *scratch) {
    char path[PATH_MAX];
    join(path, scratch->root, "/usr/sbin/ip");
    return place_text(scratch, "/usr/sbin/ip", IP, sizeof IP - 1) && chmod(path, 0755) == 0;
}

static bool cover_process_list(scratch_root *scratch) {
    char program[PATH_MAX];
    return !process_list(program) || bind_own(scratch, OWN_PROCESS_LIST, program);
}

bool scratch_root_fill(scratch_root *scratch, const options *given, const kept_directories *kept,
                       const gateway_programs *programs, const carrier *self, const char *text, size_t length) {
    root_place place = {scratch->root, ""};
    return make(scratch, "/", 0755) && adopt_host(scratch) && show_host(scratch) &&
           make_own_directories(scratch, kept) && bind_farms(scratch, &place) && fill_root(&place, programs) &&
           place_protocols(scratch) && place_resolver(scratch, self) && place_library(scratch, given->carrier) &&
           place_ip(scratch) && cover_process_list(scratch) && make(scratch, GATEWAY_DIRECTORY, 0755) &&
           place_text(scratch, GATEWAY_SCENARIO, text, length) && carrier_write(scratch->root, self) == 0;
}

static int remove_entry(const char *path, const struct stat *, int type, FTW *) {
    // A folder that was made unreadable inside: its owner may read it again.
    if (type == FTW_DNR && chmod(path, 0700) == 0)
        nftw(path, remove_entry, OPEN_FOLDERS, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
    remove(path);
    return 0;
}

void scratch_root_remove(const scratch_root *scratch) {
    nftw(scratch->folder, remove_entry, OPEN_FOLDERS, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
}
