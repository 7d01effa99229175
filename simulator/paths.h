// Where the simulated gateway keeps what a real one keeps in the driver and the kernel.
//
// All of it lives in /run/gateway inside the gateway's own mount namespace: a tmpfs that vanishes with it.
#pragma once

constexpr const char GATEWAY_DIRECTORY[] = "/run/gateway";
// What carries the run (carrier.h), and, where that is proot, the file that is there while the internal address is not.
constexpr const char GATEWAY_CARRIER[] = "/run/gateway/carrier";
constexpr const char GATEWAY_ADDRESS_GONE[] = "/run/gateway/address.gone";
constexpr const char GATEWAY_SCENARIO[] = "/run/gateway/scenario";
constexpr const char GATEWAY_JOURNAL[] = "/run/gateway/journal";
constexpr const char GATEWAY_DRIVER_STATE[] = "/run/gateway/driver";
// What the driver's private commands have set, lines KEY=VALUE.
constexpr const char GATEWAY_PARAMETERS[] = "/run/gateway/parameters";
// What the radios' scans have found, in front of the radio's number.
constexpr const char GATEWAY_SCANS[] = "/run/gateway/scan.wifi";
constexpr const char GATEWAY_DRIVER_LOCK[] = "/run/gateway/driver.lock";
// One file a fault, named after it, holding its value.
constexpr const char GATEWAY_FAULTS[] = "/run/gateway/faults";
constexpr const char GATEWAY_SERVER_LOG[] = "/run/gateway/server.log";
constexpr const char GATEWAY_PORTMAPPER_LOG[] = "/run/gateway/portmap.log";
constexpr const char GATEWAY_HOSTAPD_LOG[] = "/run/gateway/hostapd.log";

// The lines of the board's general-purpose inputs and outputs, and its copy of the factory defaults, which it hands out
// under another name.
constexpr const char GATEWAY_GPIO[] = "/run/gateway/gpio";
constexpr const char GATEWAY_DEFAULTS[] = "/run/gateway/defaults";
constexpr const char FACTORY_DEFAULTS[] = "/tmp/wifi_defaults.dat";
// What the driver's scripts hold while they begin or end what runs beside the driver.
constexpr const char GATEWAY_SCRIPTS_LOCK[] = "/run/gateway/scripts.lock";

// The board's bus: the power of the slots of wifi0 and wifi1, and the file that makes it look for cards again.
constexpr const char PCI_POWER_0[] = "/sys/bus/pci/slots/0000:02:00.0/power";
constexpr const char PCI_POWER_1[] = "/sys/bus/pci/slots/0000:03:00.0/power";
constexpr const char PCI_RESCAN[] = "/sys/bus/pci/rescan";

// The program that inserts the driver into the kernel, and the name of the driver's module.
constexpr const char INSMOD_PROGRAM[] = "/sbin/insmod";
constexpr const char DRIVER_MODULE[] = "wlan.ko";

// The stations known to be able to use the 5 GHz band, which the driver shares with the server.
constexpr const char CAPABLE_TABLE[] = "/nvram/5gcapabletable";

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

// The statistics collectors' sockets, one an interface.
constexpr const char RADSTAT_SOCKETS[] = "/var/run/radstat";

// The soft-block daemon: the program, its socket, its black list, and what can be read of it.
constexpr const char SOFTBLOCK_PROGRAM[] = "/usr/sbin/softblock";
constexpr const char SOFTBLOCK_SOCKET[] = "/var/run/ssidsteering";
constexpr const char SOFTBLOCK_BLACK_LIST[] = "/nvram/blackList.dat";
constexpr const char GATEWAY_SOFTBLOCK[] = "/run/gateway/softblock";
constexpr const char GATEWAY_SOFTBLOCK_LOG[] = "/run/gateway/softblock.log";

// The gateway's internal address, which the server binds.
constexpr const char GATEWAY_ADDRESS[] = "192.168.254.254";
