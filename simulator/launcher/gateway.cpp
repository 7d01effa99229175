// vlk_simulated_gateway: a whole gateway on any Linux machine, in namespaces of its own.
//
// Two processes. The outer one reads options and scenario, enters the namespaces and waits. The inner one is the first
// process of the gateway: it builds the root, starts the daemons, runs the command, and takes the gateway with it when
// it ends. Nothing of the host is written, signalled or reached from inside. See docs/simulated-gateway.md.
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/authenticator/restart.h"
#include "simulator/board.h"
#include "simulator/driver/capable_table.h"
#include "simulator/driver/driver_life.h"
#include "simulator/factory_defaults.h"
#include "simulator/initial_store.h"
#include "simulator/internal_address.h"
#include "simulator/launcher/namespaces.h"
#include "simulator/launcher/private_root.h"
#include "simulator/launcher/services.h"
#include "simulator/paths.h"
#include "simulator/scenario.h"
#include "simulator/wps_files.h"

constexpr const char TOOLS_NAME[] = "vlk_gateway_tools";

struct options {
    char home[PATH_MAX];   // the launcher's own folder
    char parts[PATH_MAX];  // that of its tools, driver library, scenarios and tour
    char scenario[PATH_MAX];
    char server[PATH_MAX];
    char client[PATH_MAX];
    char rpcbind[PATH_MAX];
    char rpcinfo[PATH_MAX];  // empty unless it comes with a portmapper that is not installed
    char driver[PATH_MAX];
    char tools[PATH_MAX];
    char work[PATH_MAX];  // the caller's working directory
    bool bare;
    char **command;  // mode first: tour, shell or run
};

static bool complain(const char *what, const char *why) {
    fprintf(stderr, "vlk_simulated_gateway: %s: %s\n", what, why);
    return false;
}

static bool usage(void) {
    fputs(
        "usage: vlk_simulated_gateway [--scenario FILE] [--server PROGRAM] [--client PROGRAM] [--rpcbind PROGRAM]\n"
        "                             [--bare] tour | shell | run COMMAND [ARG...]\n",
        stderr);
    return false;
}

// Options.

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

static void set_beside(char *path, const char *home, const char *name) {
    if (snprintf(path, PATH_MAX, "%s/%s", home, name) >= PATH_MAX)
        path[0] = '\0';
    resolve(path);
}

// Finds a program as a shell would, in root's folders too, which an ordinary user's PATH leaves out.
static void find_program(const char *name, char *path) {
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
    // Where the library is installed it need not be executable.
    if (!check_program(given->tools, "tools program", "build the target vlk_gateway_tools") ||
        !check_file(given->driver, R_OK, "driver library", "build the target vlk_gateway_driver"))
        return false;
    return given->bare ||
           (check_program(given->server, "server", "build it, or name one with --server") &&
            check_program(given->client, "client", "build it, or name one with --client") &&
            check_program(given->rpcbind, "rpcbind", "install the package rpcbind, or name one with --rpcbind"));
}

// The inner process.

static bool write_file(const char *path, const char *text, size_t length) {
    FILE *file = fopen(path, "we");
    if (file == nullptr)
        return complain(path, strerror(errno));
    size_t written = fwrite(text, 1, length, file);
    return (fclose(file) == 0 && written == length) || complain(path, strerror(errno));
}

static bool copy_scenario(const char *text, size_t length) {
    return (mkdir(GATEWAY_DIRECTORY, 0755) == 0 || complain(GATEWAY_DIRECTORY, strerror(errno))) &&
           (mkdir(GATEWAY_FAULTS, 0755) == 0 || complain(GATEWAY_FAULTS, strerror(errno))) &&
           write_file(GATEWAY_JOURNAL, "", 0) && write_file(GATEWAY_SCENARIO, text, length);
}

// What the driver's scripts would have done, at once.
static bool start_driver(const scenario *scene, driver_state *state) {
    int coming[SCENARIO_VAPS];
    int count = 0;
    bool up = scene->driver == DRIVER_UP;
    int failed = board_start() | driver_remove();
    if (scene->driver != DRIVER_UNLOADED)
        failed |= driver_insert();
    if (up)
        failed |= driver_start_begin(scene, APCFG_STORE, coming, &count);
    for (int i = 0; i < count; i++)
        failed |= driver_start_vap(scene, APCFG_STORE, coming[i]);
    if (up)
        failed |= driver_start_end(scene, APCFG_STORE);
    driver_state_read(state);
    if (failed != 0)
        return complain(GATEWAY_DIRECTORY, strerror(errno));
    return capable_table_complete(state, scene) == 0 || complain(CAPABLE_TABLE, strerror(errno));
}

// The store, the WPS files, the factory defaults and the state of the driver that the scenario begins with.
static bool lay_down_state(const scenario *scene, driver_state *state) {
    store_text store;
    bool laid = initial_store(scene, &store) == 0 && store_save(APCFG_STORE, &store) == 0;
    store_free(&store);
    if (!laid)
        return complain(APCFG_STORE, strerror(errno));
    if (wps_files_prepare(scene, APCFG_STORE) != 0)
        return complain(WPS_DIRECTORY, strerror(errno));
    if (factory_defaults_lay_down(scene) != 0)
        return complain(GATEWAY_DEFAULTS, strerror(errno));
    return start_driver(scene, state);
}

// What runs beside the driver when nobody has called a script yet. An authenticator that does not start is a gateway
// without one, as on a real one: its log says why.
static bool start_services(const options *given, const driver_state *state, scenario_driver driver) {
    if (driver == DRIVER_UP && authenticator_start(state, APCFG_STORE) != 0)
        fprintf(stderr, "vlk_simulated_gateway: %s does not run; %s says why\n", HOSTAPD_PROGRAM, GATEWAY_HOSTAPD_LOG);
    // As after a load.
    if (driver != DRIVER_UNLOADED)
        start_soft_block();
    return start_portmapper() && start_server(given->server, given->driver);
}

static bool set_up_network(void) {
    if (loopback_up() != 0 || internal_address_add() != 0)
        return complain(GATEWAY_ADDRESS, strerror(errno));
    return true;
}

static void set_environment(const options *given) {
    const char *path = getenv("PATH");
    char search[8192];
    // The gateway's own tools come first, wherever the host keeps some of the same name.
    snprintf(search, sizeof search, "/usr/sbin:/etc/ath:%s:/usr/bin:/bin:/sbin", path != nullptr ? path : "");
    setenv("PATH", search, 1);
    setenv("VLK_PRIVATE_NAMESPACE", "1", 1);
    setenv("VLK_GATEWAY_DRIVER", given->driver, 1);
    setenv("VLK_PORTMAP_PROGRAM", PORTMAPPER, 1);
}

static bool build_gateway(const options *given, const scenario *scene, const char *text, size_t length) {
    kept_directories kept = {};
    // The build tree, or the prefix, which has the server's libraries too.
    char tree[PATH_MAX];
    set_beside(tree, given->home, "..");
    keep_visible(&kept, tree);
    const char *const programs[] = {given->server, given->client, given->rpcbind, given->rpcinfo, given->tools};
    for (const char *program : programs) {
        char folder[PATH_MAX];
        snprintf(folder, sizeof folder, "%s", program);
        char *slash = strrchr(folder, '/');
        if (slash != nullptr && slash != folder) {
            *slash = '\0';
            keep_visible(&kept, folder);
        }
    }
    umask(022);
    allow_giving_up_groups();
    gateway_programs links = {given->client, given->rpcbind, given->rpcinfo, given->tools};
    driver_state state = {};
    return enter_private_root(&kept, &links) && set_up_network() && copy_scenario(text, length) &&
           lay_down_state(scene, &state) && (given->bare || start_services(given, &state, scene->driver));
}

static const char GREETING[] =
    "A simulated gateway: its own processes, network and /tmp; your files are here, read-only.\n"
    "  vlk_rpc_wlan_config_client getSsid 1      ask the server        (list, help OPERATION)\n"
    "  tail -f /run/gateway/journal              watch what it does    (server.log beside it)\n"
    "  fault iwconfig slow 2                     make the platform fail (fault: list, fault off)\n"
    "  exit                                      end it all\n";

static const char SHELL_START[] = "PS1='gateway:\\w\\$ '\n";
static const char PLAIN_SHELL_START[] = "PS1='gateway$ '\n";

// Puts a process group in the foreground of the terminal, if there is one, from a process that may be in the
// background.
static void take_terminal(pid_t group) {
    signal(SIGTTOU, SIG_IGN);
    tcsetpgrp(STDIN_FILENO, group);
    signal(SIGTTOU, SIG_DFL);
}

[[noreturn]] static void become_shell(void) {
    static const char start[] = "/run/gateway/shellrc";
    const char *shell = getenv("SHELL");
    if (shell == nullptr || access(shell, X_OK) != 0)
        shell = "/bin/sh";
    const char *slash = strrchr(shell, '/');
    bool bash = strcmp(slash != nullptr ? slash + 1 : shell, "bash") == 0;
    const char *text = bash ? SHELL_START : PLAIN_SHELL_START;
    write_file(start, text, strlen(text));
    // A shell hands the terminal back to the group it started in, which must be one that it can see in its namespace.
    setpgid(0, 0);
    take_terminal(getpid());
    fputs(GREETING, stdout);
    fflush(stdout);
    if (bash)
        execl(shell, "bash", "--rcfile", start, "-i", (char *)nullptr);
    setenv("ENV", start, 1);
    execl(shell, shell, "-i", (char *)nullptr);
    complain(shell, strerror(errno));
    _exit(127);
}

[[noreturn]] static void become_command(const options *given) {
    if (chdir(given->work) != 0 && chdir("/") != 0)
        complain("/", strerror(errno));
    if (strcmp(given->command[0], "shell") == 0)
        become_shell();
    if (strcmp(given->command[0], "tour") == 0) {
        char script[PATH_MAX];
        set_beside(script, given->parts, "tour.sh");
        execl("/bin/sh", "sh", script, (char *)nullptr);
        complain(script, strerror(errno));
    } else {
        execvp(given->command[1], given->command + 1);
        complain(given->command[1], strerror(errno));
    }
    _exit(127);
}

static int exit_status(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// Runs the command and collects it, and on the way everything that lost its parent.
static int run_command(const options *given) {
    pid_t command = fork();
    if (command == 0)
        become_command(given);
    int status = 0;
    while (command > 0) {
        pid_t ended = wait(&status);
        if (ended == command)
            return exit_status(status);
        if (ended < 0 && errno != EINTR)
            break;
    }
    complain("fork", strerror(errno));
    return STATUS_NO_GATEWAY;
}

// The gateway must not outlive the launcher. `alive` reads as hung up once the launcher is gone, for the moment between
// the fork and the arming of the signal.
static void tie_to_launcher(int alive) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    pollfd launcher = {alive, POLLIN, 0};
    if (poll(&launcher, 1, 0) != 0)
        _exit(STATUS_NO_GATEWAY);
}

// The outer process.

static volatile pid_t inner_process;

static void end_inner(int number) {
    kill(inner_process, SIGKILL);
    _exit(128 + number);
}

// Ctrl-C and Ctrl-\ are for the command, which has the terminal; an end of the launcher is the end of the gateway.
static void watch_signals(void) {
    struct sigaction action = {};
    action.sa_handler = SIG_IGN;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGQUIT, &action, nullptr);
    action.sa_handler = end_inner;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
}

static int wait_for_inner(void) {
    int status;
    while (waitpid(inner_process, &status, 0) < 0) {
        if (errno != EINTR)
            return STATUS_NO_GATEWAY;
    }
    return exit_status(status);
}

static char *read_scenario_text(const char *path, size_t *length) {
    FILE *file = fopen(path, "re");
    char *text = nullptr;
    if (file == nullptr) {
        complain(path, strerror(errno));
        return nullptr;
    }
    FILE *memory = open_memstream(&text, length);
    for (int byte = getc(file); memory != nullptr && byte != EOF; byte = getc(file))
        putc(byte, memory);
    fclose(file);
    if (memory != nullptr)
        fclose(memory);
    return text;
}

static int run_gateway(const options *given, const scenario *scene, const char *text, size_t length) {
    int alive[2];
    if (!enter_namespaces() || pipe2(alive, O_CLOEXEC) != 0)
        return STATUS_NO_GATEWAY;
    inner_process = fork();
    if (inner_process < 0) {
        refused("the first process of a pid namespace", "raise user.max_pid_namespaces with sysctl");
        return STATUS_NO_GATEWAY;
    }
    if (inner_process == 0) {
        close(alive[1]);
        tie_to_launcher(alive[0]);
        set_environment(given);
        exit(build_gateway(given, scene, text, length) ? run_command(given) : STATUS_NO_GATEWAY);
    }
    close(alive[0]);
    watch_signals();
    int status = wait_for_inner();
    if (strcmp(given->command[0], "shell") == 0)
        take_terminal(getpgrp());
    return status;
}

int main(int argument_count, char **arguments) {
    static options given;
    if (!set_defaults(&given) || !read_options(&given, argument_count, arguments) || !check_programs(&given))
        return STATUS_NO_GATEWAY;
    find_rpcinfo(&given);
    size_t length = 0;
    char *text = read_scenario_text(given.scenario, &length);
    if (text == nullptr)
        return STATUS_NO_GATEWAY;
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_parse(given.scenario, text, length, error, sizeof error);
    if (scene == nullptr) {
        fprintf(stderr, "%s\n", error);
        return STATUS_NO_GATEWAY;
    }
    return run_gateway(&given, scene, text, length);
}
