// The root file system of the simulated gateway: the host's, read-only, with its own directories where a gateway
// keeps things.
//
// Touches the mount namespace of the calling process, which must be the gateway's own. The gateway's first process,
// before anything else runs in it.
#pragma once

// Where the host's root stands in the gateway, read-only; its /proc, /sys, /tmp, /run and /nvram are covered.
constexpr const char HOST_ROOT[] = "/.host";

// How many directories below a covered one can be kept visible: the build tree and the folders of launcher, server,
// client, portmapper and rpcinfo.
constexpr int KEPT_DIRECTORIES = 6;

struct kept_directories {
    char paths[KEPT_DIRECTORIES][4096];
    int count;
};

// Keeps a directory of the host visible, read-only, although it lies below /tmp, /run, /nvram or /sys. Directories
// elsewhere are visible anyway and are not noted. The path must be absolute and without symbolic links.
void keep_visible(kept_directories *kept, const char *directory);

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

// Builds the root and enters it. False after saying what was refused.
bool enter_private_root(const kept_directories *kept, const gateway_programs *programs);
