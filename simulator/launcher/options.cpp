#include "simulator/launcher/options.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/launcher/messages.h"

constexpr const char TOOLS_NAME[] = "vlk_gateway_tools";

static bool usage(void) {
    fputs(
        "usage: vlk_simulated_gateway [--scenario FILE] [--server PROGRAM] [--client PROGRAM] [--rpcbind PROGRAM]\n"
        "                             [--bare] tour | shell | run COMMAND [ARG...]\n",
        stderr);
    return false;
}

// An absolute path without links, or the path as given when nothing is there.
static void resolve(char *path) {
    char real[PATH_MAX];
    if (realpath(path, real) != nullptr)
        snprintf(path, PATH_MAX, "%s", real);
}

static void set_path(char *path, const char *value) {
    snprintf(path, PATH_MAX, "%s", value);
    resolve(path);
}

void set_beside(char *path, const char *home, const char *name) {
    if (snprintf(path, PATH_MAX, "%s/%s", home, name) >= PATH_MAX)
        path[0] = '\0';
    resolve(path);
}

void find_program(const char *name, char *path) {
    char folders[8192];
    const char *own = getenv("PATH");
    snprintf(folders, sizeof folders, "%s:/sbin:/usr/sbin", own != nullptr ? own : "");
    char *rest = nullptr;
    for (char *folder = strtok_r(folders, ":", &rest); folder != nullptr; folder = strtok_r(nullptr, ":", &rest)) {
        snprintf(path, PATH_MAX, "%s/%s", folder, name);
        if (access(path, X_OK) == 0) {
            resolve(path);
            return;
        }
    }
    path[0] = '\0';
}

// Where the rest is, from the launcher's own folder.
struct layout {
    const char *parts;
    const char *server;
    const char *client;
};

static const layout BUILD_TREE = {".", "../server/vlk_rpc_wlan_config_server", "../client/vlk_rpc_wlan_config_client"};
static const layout INSTALLED = {INSTALLED_PARTS, INSTALLED_SBIN "/vlk_rpc_wlan_config_server",
                                 INSTALLED_SBIN "/vlk_rpc_wlan_config_client"};

// In a build tree the tools are beside the launcher; where it is installed they are out of everybody's PATH.
static const layout *find_layout(const char *home) {
    char tools[PATH_MAX];
    set_beside(tools, home, TOOLS_NAME);
    return access(tools, F_OK) == 0 ? &BUILD_TREE : &INSTALLED;
}

static bool set_defaults(options *given) {
    ssize_t length = readlink("/proc/self/exe", given->home, sizeof given->home - 1);
    if (length < 0)
        return complain("/proc/self/exe", strerror(errno));
    given->home[length] = '\0';
    *strrchr(given->home, '/') = '\0';
    const layout *places = find_layout(given->home);
    set_beside(given->parts, given->home, places->parts);
    set_beside(given->scenario, given->parts, "scenarios/home.scn");
    set_beside(given->server, given->home, places->server);
    set_beside(given->client, given->home, places->client);
    set_beside(given->driver, given->parts, "libvlk_gateway_driver.so");
    set_beside(given->carrier, given->parts, "libvlk_gateway_carrier.so");
    set_beside(given->tools, given->parts, TOOLS_NAME);
    find_program("rpcbind", given->rpcbind);
    if (getcwd(given->work, sizeof given->work) == nullptr)
        snprintf(given->work, sizeof given->work, "/");
    return true;
}

// The place for the value of an option, null when it is none.
static char *option_value(options *given, const char *name) {
    if (strcmp(name, "--scenario") == 0)
        return given->scenario;
    if (strcmp(name, "--server") == 0)
        return given->server;
    if (strcmp(name, "--client") == 0)
        return given->client;
    if (strcmp(name, "--rpcbind") == 0)
        return given->rpcbind;
    return nullptr;
}

static bool read_options(options *given, int argument_count, char **arguments) {
    int i = 1;
    for (; i < argument_count && strncmp(arguments[i], "--", 2) == 0; i++) {
        char *value = option_value(given, arguments[i]);
        if (strcmp(arguments[i], "--bare") == 0)
            given->bare = true;
        else if (value != nullptr && i + 1 < argument_count)
            set_path(value, arguments[++i]);
        else
            return usage();
    }
    given->command = arguments + i;
    int words = argument_count - i;
    bool known = (words == 1 && (strcmp(arguments[i], "tour") == 0 || strcmp(arguments[i], "shell") == 0)) ||
                 (words > 1 && strcmp(arguments[i], "run") == 0);
    return known || usage();
}

// A portmapper that was unpacked rather than installed has its rpcinfo beside it, where nobody would find it.
static void find_rpcinfo(options *given) {
    static const char *const places[] = {"rpcinfo", "../usr/sbin/rpcinfo", "../usr/bin/rpcinfo"};
    char folder[PATH_MAX];
    find_program("rpcinfo", given->rpcinfo);
    bool installed = given->rpcinfo[0] != '\0';
    given->rpcinfo[0] = '\0';
    snprintf(folder, sizeof folder, "%s", given->rpcbind);
    char *slash = strrchr(folder, '/');
    if (installed || slash == nullptr)
        return;
    *slash = '\0';
    for (const char *place : places) {
        set_beside(given->rpcinfo, folder, place);
        if (access(given->rpcinfo, X_OK) == 0)
            return;
    }
    given->rpcinfo[0] = '\0';
}

// Whether there is a file that may be run, or that may be read (mode as for access).
static bool check_file(const char *path, int mode, const char *what, const char *remedy) {
    struct stat status;
    if (stat(path, &status) == 0 && S_ISREG(status.st_mode) && access(path, mode) == 0)
        return true;
    fprintf(stderr, "vlk_simulated_gateway: there is no %s%s%s; %s\n", what, path[0] != '\0' ? " at " : "", path,
            remedy);
    return false;
}

static bool check_program(const char *path, const char *what, const char *remedy) {
    return check_file(path, X_OK, what, remedy);
}

static bool check_programs(const options *given) {
    // Where the libraries are installed they need not be executable.
    if (!check_program(given->tools, "tools program", "build the target vlk_gateway_tools") ||
        !check_file(given->driver, R_OK, "driver library", "build the target vlk_gateway_driver") ||
        !check_file(given->carrier, R_OK, "library for where namespaces are refused",
                    "build the target vlk_gateway_carrier"))
        return false;
    return given->bare ||
           (check_program(given->server, "server", "build it, or name one with --server") &&
            check_program(given->client, "client", "build it, or name one with --client") &&
            check_program(given->rpcbind, "rpcbind", "install the package rpcbind, or name one with --rpcbind"));
}

bool options_read(options *given, int argument_count, char **arguments) {
    if (!set_defaults(given) || !read_options(given, argument_count, arguments) || !check_programs(given))
        return false;
    find_rpcinfo(given);
    return true;
}
