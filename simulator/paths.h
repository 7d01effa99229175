// Where the simulated gateway keeps what a real one keeps in the driver and the kernel.
//
// All of it lives in /run/gateway inside the gateway's own mount namespace: a tmpfs that vanishes with it.
#pragma once

constexpr const char GATEWAY_DIRECTORY[] = "/run/gateway";
constexpr const char GATEWAY_SCENARIO[] = "/run/gateway/scenario";
constexpr const char GATEWAY_JOURNAL[] = "/run/gateway/journal";
constexpr const char GATEWAY_DRIVER_STATE[] = "/run/gateway/driver";
constexpr const char GATEWAY_DRIVER_LOCK[] = "/run/gateway/driver.lock";
// One file a fault, named after it, holding its value.
constexpr const char GATEWAY_FAULTS[] = "/run/gateway/faults";
constexpr const char GATEWAY_SERVER_LOG[] = "/run/gateway/server.log";
constexpr const char GATEWAY_PORTMAPPER_LOG[] = "/run/gateway/portmap.log";

// The driver's store and the lock that everybody takes around it.
constexpr const char APCFG_STORE[] = "/tmp/.apcfg";
constexpr const char APCFG_LOCK[] = "/tmp/.apcfg_lock";

// The gateway's internal address, which the server binds.
constexpr const char GATEWAY_ADDRESS[] = "192.168.254.254";
