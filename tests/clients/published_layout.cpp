#include "docs/wlan_config_records.h"
#include "tests/clients/layout_table.h"

std::vector<record_layout> published_layouts() {
    return record_layouts();
}

std::vector<named_number> published_numbers() {
    std::vector<named_number> numbers = procedure_numbers();
    numbers.insert(numbers.end(), {{"program", WLAN_CONFIG_PROGRAM},
                                   {"version", WLAN_CONFIG_VERSION},
                                   {"port", WLAN_CONFIG_PORT},
                                   {"data", WLAN_CONFIG_DATA_MAX},
                                   {"stations", WLAN_ASSOC_DEVICES_MAX},
                                   {"networks", WLAN_SCAN_ENTRIES_MAX},
                                   {"soft-blocked stations", WLAN_SB_STATIONS_MAX},
                                   {"weighted stations", WLAN_AIRTIME_STAS_MAX},
                                   {"stations with airtime", WLAN_ATF_STATIONS_MAX},
                                   {"success", static_cast<uint32_t>(WLAN_RETURN_SUCCESS)},
                                   {"failure", static_cast<uint32_t>(WLAN_RETURN_FAILURE)}});
    return numbers;
}

std::string published_address() {
    return WLAN_CONFIG_ADDRESS;
}
