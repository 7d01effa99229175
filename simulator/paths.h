// Where the simulated gateway keeps what a real one keeps in the driver and the kernel.
//
// All of it lives in /run/gateway inside the gateway's own mount namespace: a tmpfs that vanishes with it.
#pragma once

constexpr const char GATEWAY_DIRECTORY[] = "/run/gateway";
constexpr const char GATEWAY_SCENARIO[] = "/run/gateway/scenario";
constexpr const char GATEWAY_JOURNAL[] = "/run/gateway/journal";
constexpr const char GATEWAY_DRIVER_STATE[] = "/run/gateway/driver";
// What the driver's private commands have set, lines KEY=VALUE.
constexpr const char GATEWAY_PARAMETERS[] = "/run/gateway/parameters";
constexpr const char GATEWAY_DRIVER_LOCK[] = "/run/gateway/driver.lock";
// One file a fault, named after it, holding its value.
constexpr const char GATEWAY_FAULTS[] = "/run/gateway/faults";
constexpr const char GATEWAY_SERVER_LOG[] = "/run/gateway/server.log";
constexpr const char GATEWAY_PORTMAPPER_LOG[] = "/run/gateway/portmap.log";
constexpr const char GATEWAY_HOSTAPD_LOG[] = "/run/gateway/hostapd.log";

// The driver's store and the lock that everybody takes around it.
constexpr const char APCFG_STORE[] = "/tmp/.apcfg";
constexpr const char APCFG_LOCK[] = "/tmp/.apcfg_lock";

// The WPS files, one a VAP, which the authenticator reads.
constexpr const char WPS_DIRECTORY[] = "/nvram/etc/wpa2";

// The authenticator: the program, its pid, its sockets (one an interface), and the list of its files that the driver's
// scripts leave behind for whoever wants to start it again.
constexpr const char HOSTAPD_PROGRAM[] = "/sbin/hostapd";
constexpr const char HOSTAPD_PID_FILE[] = "/var/run/hostapd.pid";
constexpr const char HOSTAPD_SOCKETS[] = "/var/run/hostapd";
constexpr const char HOSTAPD_FILE_LIST[] = "/tmp/conf_filename";
constexpr const char HOSTAPD_ENTROPY_FILE[] = "/etc/wpa2/entropy";

// The gateway's internal address, which the server binds.
constexpr const char GATEWAY_ADDRESS[] = "192.168.254.254";
