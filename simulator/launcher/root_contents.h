// What the simulated gateway's root has of its own, whatever carries the run: which of the host's directories are
// covered, which entries show through, and the files and links that are the gateway's.
//
// Writes below the folder that it is told, and nowhere else. The process that builds the root, single-threaded.
#pragma once

// Where the host's root stands in the gateway; its /proc, /sys, /tmp, /run and /nvram are covered.
constexpr const char HOST_ROOT[] = "/.host";

// How many directories below a covered one can be kept visible: the build tree and the folders of launcher, server,
// client, portmapper and rpcinfo.
constexpr int KEPT_DIRECTORIES = 6;

struct kept_directories {
    char paths[KEPT_DIRECTORIES][4096];
    int count;
};

// Keeps a directory of the host visible although it lies below /tmp, /run, /nvram or /sys. Directories elsewhere are
// visible anyway and are not noted. The path must be absolute and without symbolic links.
void keep_visible(kept_directories *kept, const char *directory);

// The directories that the gateway has of its own, by number from 0, as /tmp; null behind the last one.
const char *own_directory(int number);

// Whether an entry at the top of the host's root shows through as it is.
bool is_adopted(const char *name);

// Where the portmapper stands in the gateway. The name under which a program is started is the name by which `pgrep`
// finds it, and the server looks for this one.
constexpr const char PORTMAPPER[] = "/usr/sbin/portmap";

// The programs that links in the gateway lead to, as absolute paths.
struct gateway_programs {
    const char *client;      // /usr/sbin/vlk_rpc_wlan_config_client
    const char *portmapper;  // PORTMAPPER; empty when there is none
    const char *rpcinfo;     // /usr/sbin/rpcinfo; empty when the host has its own, or none
    const char *tools;       // every tool of tools/list.def
};

// Where the gateway's / and the host's are, seen from the process that builds the root: folders, empty for / itself.
struct root_place {
    const char *root;
    const char *host;
};

// The directories of the host that the gateway adds to, by number from 0; null behind the last one. In the gateway each
// is one of its own with links to the host's entries in it.
const char *farm(const root_place *place, int number);

// Makes a directory and those above it, all of them where a path begins with the root. False after saying what was
// refused.
bool make_directories(const char *path);

// Copies a symbolic link. False with errno.
bool copy_link(const char *from, const char *to);

// The host's program that lists processes, if it is one that lists only those of the caller's terminal: the gateway's
// OWN_PROCESS_LIST has to stand in its place. `path` has PATH_MAX bytes. False when there is none.
bool process_list(char *path);
constexpr const char OWN_PROCESS_LIST[] = "/usr/sbin/ps";

// Fills the farms and the gateway's own directories, which must be there. False after saying what was refused.
bool fill_root(const root_place *place, const gateway_programs *programs);
