#include "server/wire.h"
#include "tests/clients/layout_table.h"

std::vector<record_layout> server_layouts() {
    return record_layouts();
}

std::vector<named_number> server_numbers() {
    std::vector<named_number> numbers = procedure_numbers();
    numbers.insert(numbers.end(), {{"program", WLAN_CONFIG_RPC_PROG},
                                   {"version", WLAN_CONFIG_API_VERSION},
                                   {"port", SERVICE_PORT},
                                   {"data", RESULT_DATA_SIZE},
                                   {"stations", ASSOC_DEVICES_MAX},
                                   {"networks", SCAN_ENTRIES_MAX},
                                   {"soft-blocked stations", SB_STATIONS_MAX},
                                   {"weighted stations", AIRTIME_STAS_MAX},
                                   {"stations with airtime", ATF_STATIONS_MAX},
                                   {"success", static_cast<uint32_t>(WLAN_CONFIG_SUCCESS)},
                                   {"failure", static_cast<uint32_t>(WLAN_CONFIG_FAILURE)}});
    return numbers;
}

std::string server_address() {
    return SERVICE_ADDRESS;
}
