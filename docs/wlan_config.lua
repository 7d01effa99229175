-- Wireshark dissector for the Wi-Fi configuration server: ONC RPC over UDP.
--
-- Printed by `vlk_rpc_wlan_config_client dissector`. Do not edit it: change server/procedures.def,
-- server/record_fields.def or client/dissector_body.lua and print it again.
--
-- Put it into the folder for personal Lua plugins (Help, About Wireshark, Folders), or run
-- tshark -X lua_script:wlan_config.lua. Everything is found under wlan_config, for example
-- wlan_config.operation == "setSsid", wlan_config.arg.index == 3, wlan_config.return_code != 0,
-- wlan_config.time > 1 or wlan_config.expert.repeated.

local PROGRAM, VERSION, PORT, VAPS = 0x20131337, 1, 60001, 16

local PROCEDURES = {
    [1] = { procedure = "wlan_load", operation = "load", summary = "load the Wi-Fi driver",
        arguments = { { "IGNORED", "radio" } }, result = { kind = "CODE" } },
    [2] = { procedure = "wlan_init", operation = "init", summary = "bring the Wi-Fi interfaces up",
        arguments = {}, result = { kind = "CODE" } },
    [3] = { procedure = "wlan_reset", operation = "reset", summary = "take the Wi-Fi interfaces down and unload the driver",
        arguments = {}, result = { kind = "CODE" } },
    [4] = { procedure = "wlan_get_number_of_entries", operation = "getNumberOfEntries", summary = "number of VAPs",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "INT", "count" } } } },
    [5] = { procedure = "wlan_add_entry", operation = "addEntry", summary = "accepted without effect",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "INT", "entry" } } } },
    [6] = { procedure = "wlan_del_entry", operation = "delEntry", summary = "accepted without effect",
        arguments = { { "INT", "entry" } }, result = { kind = "INTEGERS", outputs = { { "INT", "entry" } } } },
    [7] = { procedure = "wlan_get_bssid_port", operation = "getBssidPort", summary = "switch port and VAP index of a BSSID",
        arguments = { { "TEXT", "bssid" } }, result = { kind = "INTEGERS", outputs = { { "INT", "port" }, { "INT", "index" } } } },
    [8] = { procedure = "wlan_associate_vlan", operation = "associateVlan", summary = "bind the VAP with this BSSID to a VLAN",
        arguments = { { "TEXT", "bssid" }, { "USHORT", "vlan" } }, result = { kind = "CODE" } },
    [9] = { procedure = "wlan_get_enable", operation = "getEnable", summary = "whether the VAP is switched on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [10] = { procedure = "wlan_set_enable", operation = "setEnable", summary = "switch the VAP on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [11] = { procedure = "wlan_get_status", operation = "getStatus", summary = "Up, Disable or Error",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "status" } },
    [12] = { procedure = "wlan_get_name", operation = "getName", summary = "interface name of the VAP",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "name" } },
    [13] = { procedure = "wlan_get_bssid", operation = "getBssid", summary = "BSSID of the VAP",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "bssid" } },
    [14] = { procedure = "wlan_get_max_bitrate", operation = "getMaxBitrate", summary = "current bit rate in Mbit/s",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "rate" } },
    [15] = { procedure = "wlan_set_max_bitrate", operation = "setMaxBitrate", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "TEXT", "rate" } }, result = { kind = "CODE" } },
    [16] = { procedure = "wlan_get_channel", operation = "getChannel", summary = "configured channel, 0 for automatic",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "channel" } } } },
    [17] = { procedure = "wlan_set_channel", operation = "setChannel", summary = "set the channel of the VAP's radio",
        arguments = { { "VAP", "index" }, { "UINT", "channel" } }, result = { kind = "CODE" } },
    [18] = { procedure = "wlan_get_auto_channel_enable", operation = "getAutoChannelEnable", summary = "whether the radio chooses its channel itself",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [19] = { procedure = "wlan_set_auto_channel_enable", operation = "setAutoChannelEnable", summary = "let the radio choose its channel, or go back to a fixed one",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [21] = { procedure = "wlan_get_ssid", operation = "getSsid", summary = "SSID of the VAP",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "ssid" } },
    [22] = { procedure = "wlan_set_ssid", operation = "setSsid", summary = "set the SSID of the VAP",
        arguments = { { "VAP", "index" }, { "TEXT", "ssid" } }, result = { kind = "CODE" } },
    [23] = { procedure = "wlan_get_beacon_type", operation = "getBeaconType", summary = "security family: None, Basic, WPA, 11i or WPAand11i",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "type" } },
    [24] = { procedure = "wlan_set_beacon_type", operation = "setBeaconType", summary = "set the security family",
        arguments = { { "VAP", "index" }, { "TEXT", "type" } }, result = { kind = "CODE" } },
    [25] = { procedure = "wlan_get_mac_address_control_enabled", operation = "getMacAddressControlEnabled", summary = "whether the MAC list is enforced",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [26] = { procedure = "wlan_set_mac_address_control_enabled", operation = "setMacAddressControlEnabled", summary = "enforce the MAC list or not",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [27] = { procedure = "wlan_get_standard", operation = "getStandard", summary = "letters of the 802.11 standard of the VAP's radio",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "standard" } },
    [28] = { procedure = "wlan_get_wep_key_index", operation = "getWepKeyIndex", summary = "default WEP key",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "key_index" } } } },
    [29] = { procedure = "wlan_set_wep_key_index", operation = "setWepKeyIndex", summary = "choose the default WEP key",
        arguments = { { "VAP", "index" }, { "UINT", "key_index" } }, result = { kind = "CODE" } },
    [30] = { procedure = "wlan_get_wep_key_passphrase", operation = "getWepKeyPassphrase", summary = "WEP key at the default key index",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "passphrase" } },
    [31] = { procedure = "wlan_set_wep_key_passphrase", operation = "setWepKeyPassphrase", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "TEXT", "passphrase" } }, result = { kind = "CODE" } },
    [32] = { procedure = "wlan_get_encryption_level", operation = "getEncryptionLevel", summary = "WEP strength: 40-bit or 104-bit",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "level" } },
    [33] = { procedure = "wlan_get_basic_encryption_modes", operation = "getBasicEncryptionModes", summary = "None, WEPEncryption or NOTWEP",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "modes" } },
    [34] = { procedure = "wlan_set_basic_encryption_modes", operation = "setBasicEncryptionModes", summary = "switch between WEP and no encryption",
        arguments = { { "VAP", "index" }, { "TEXT", "modes" } }, result = { kind = "CODE" } },
    [35] = { procedure = "wlan_get_basic_authentication_modes", operation = "getBasicAuthenticationModes", summary = "authentication of an open or WEP network",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "modes" } },
    [36] = { procedure = "wlan_set_basic_authentication_modes", operation = "setBasicAuthenticationModes", summary = "set the authentication of an open or WEP network",
        arguments = { { "VAP", "index" }, { "TEXT", "modes" } }, result = { kind = "CODE" } },
    [37] = { procedure = "wlan_get_wpa_encryption_modes", operation = "getWpaEncryptionModes", summary = "WPA cipher: TKIPEncryption, AESEncryption or both",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "modes" } },
    [38] = { procedure = "wlan_set_wpa_encryption_modes", operation = "setWpaEncryptionModes", summary = "set the WPA cipher",
        arguments = { { "VAP", "index" }, { "TEXT", "modes" } }, result = { kind = "CODE" } },
    [39] = { procedure = "wlan_get_wpa_authentication_modes", operation = "getWpaAuthenticationModes", summary = "WPA generation and key management",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "modes" } },
    [40] = { procedure = "wlan_set_wpa_authentication_modes", operation = "setWpaAuthenticationModes", summary = "set WPA generation and key management",
        arguments = { { "VAP", "index" }, { "TEXT", "modes" } }, result = { kind = "CODE" } },
    [41] = { procedure = "wlan_get_possible_channels", operation = "getPossibleChannels", summary = "channels the radio can use",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "channels" } },
    [42] = { procedure = "wlan_get_basic_data_transmit_rates", operation = "getBasicDataTransmitRates", summary = "basic rate set in Mbit/s",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "rates" } },
    [43] = { procedure = "wlan_set_basic_data_transmit_rates", operation = "setBasicDataTransmitRates", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "TEXT", "rates" } }, result = { kind = "CODE" } },
    [44] = { procedure = "wlan_get_operational_data_transmit_rates", operation = "getOperationalDataTransmitRates", summary = "operational rate set in Mbit/s",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "rates" } },
    [45] = { procedure = "wlan_set_operational_data_transmit_rates", operation = "setOperationalDataTransmitRates", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "TEXT", "rates" } }, result = { kind = "CODE" } },
    [46] = { procedure = "wlan_get_possible_data_transmit_rates", operation = "getPossibleDataTransmitRates", summary = "rates the radio can send with",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "rates" } },
    [47] = { procedure = "wlan_get_ssid_advertisement_enabled", operation = "getSsidAdvertisementEnabled", summary = "whether beacons carry the SSID",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [48] = { procedure = "wlan_set_ssid_advertisement_enabled", operation = "setSsidAdvertisementEnabled", summary = "advertise or hide the SSID",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [49] = { procedure = "wlan_get_radio_enabled", operation = "getRadioEnabled", summary = "whether the VAP's radio is switched on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [50] = { procedure = "wlan_set_radio_enabled", operation = "setRadioEnabled", summary = "switch the VAP's radio on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [51] = { procedure = "wlan_get_transmit_power_supported", operation = "getTransmitPowerSupported", summary = "power levels in percent",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "levels" } },
    [52] = { procedure = "wlan_get_transmit_power", operation = "getTransmitPower", summary = "transmit power",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "power" } } } },
    [53] = { procedure = "wlan_set_transmit_power", operation = "setTransmitPower", summary = "set the transmit power",
        arguments = { { "VAP", "index" }, { "UINT", "power" } }, result = { kind = "CODE" } },
    [54] = { procedure = "wlan_get_auto_rate_fallback_enable", operation = "getAutoRateFallbackEnable", summary = "whether the rate is chosen automatically",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [55] = { procedure = "wlan_set_auto_rate_fallback_enable", operation = "setAutoRateFallbackEnable", summary = "automatic or fixed rate",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [56] = { procedure = "wlan_get_basic_stats", operation = "getBasicStats", summary = "bytes, packets and station count of the VAP",
        arguments = { { "VAP", "index" } }, result = { kind = "WORDS", name = "stats", record = "wlan_basicStats_t" } },
    [57] = { procedure = "wlan_get_stats", operation = "getStats", summary = "error, unicast and multicast counters of the VAP",
        arguments = { { "VAP", "index" } }, result = { kind = "WORDS", name = "stats", record = "wlan_stats_t" } },
    [58] = { procedure = "wlan_get_assoc_devices_num", operation = "getAssocDevicesNum", summary = "number of associated stations",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "count" } } } },
    [59] = { procedure = "wlan_get_assoc_device", operation = "getAssocDevice", summary = "one associated station by position",
        arguments = { { "VAP", "index" }, { "INT", "device" } }, result = { kind = "IMAGE", name = "device_record", record = "wlan_device_t" } },
    [60] = { procedure = "wlan_get_wep_key", operation = "getWepKey", summary = "one WEP key",
        arguments = { { "VAP", "index" }, { "INT", "key_index" } }, result = { kind = "TEXT", name = "key" } },
    [61] = { procedure = "wlan_set_wep_key", operation = "setWepKey", summary = "set one WEP key, in hexadecimal",
        arguments = { { "VAP", "index" }, { "INT", "key_index" }, { "TEXT", "key" } }, result = { kind = "CODE" } },
    [62] = { procedure = "wlan_get_pre_shared_key", operation = "getPreSharedKey", summary = "WPA pre-shared key",
        arguments = { { "VAP", "index" }, { "INT", "key_index" } }, result = { kind = "TEXT", name = "key" } },
    [63] = { procedure = "wlan_set_pre_shared_key", operation = "setPreSharedKey", summary = "set the WPA pre-shared key as it stands",
        arguments = { { "VAP", "index" }, { "INT", "key_index" }, { "TEXT", "key" } }, result = { kind = "CODE" } },
    [64] = { procedure = "wlan_get_key_passphrase", operation = "getKeyPassphrase", summary = "WPA passphrase",
        arguments = { { "VAP", "index" }, { "INT", "key_index" } }, result = { kind = "TEXT", name = "passphrase" } },
    [65] = { procedure = "wlan_set_key_passphrase", operation = "setKeyPassphrase", summary = "set the WPA passphrase",
        arguments = { { "VAP", "index" }, { "INT", "key_index" }, { "TEXT", "passphrase" } }, result = { kind = "CODE" } },
    [66] = { procedure = "wlan_get_wmm_supported", operation = "getWmmSupported", summary = "whether WMM is supported",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "supported" } } } },
    [67] = { procedure = "wlan_get_wmm_uaspd_supported", operation = "getWmmUaspdSupported", summary = "whether U-APSD is supported",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "supported" } } } },
    [68] = { procedure = "wlan_get_wmm_enable", operation = "getWmmEnable", summary = "whether WMM is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [69] = { procedure = "wlan_set_wmm_enable", operation = "setWmmEnable", summary = "switch WMM on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [70] = { procedure = "wlan_get_wmm_uaspd_enable", operation = "getWmmUaspdEnable", summary = "whether U-APSD is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [71] = { procedure = "wlan_set_wmm_uaspd_enable", operation = "setWmmUaspdEnable", summary = "switch U-APSD on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [72] = { procedure = "wlan_get_og_aifsn", operation = "getOgAifsn", summary = "AIFSN of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "aifsn" } } } },
    [73] = { procedure = "wlan_set_og_aifsn", operation = "setOgAifsn", summary = "set the AIFSN of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "aifsn" } }, result = { kind = "CODE" } },
    [74] = { procedure = "wlan_get_og_ecw_min", operation = "getOgEcwMin", summary = "ECWmin of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "ecw_min" } } } },
    [75] = { procedure = "wlan_set_og_ecw_min", operation = "setOgEcwMin", summary = "set the ECWmin of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "ecw_min" } }, result = { kind = "CODE" } },
    [76] = { procedure = "wlan_get_og_ecw_max", operation = "getOgEcwMax", summary = "ECWmax of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "ecw_max" } } } },
    [77] = { procedure = "wlan_set_og_ecw_max", operation = "setOgEcwMax", summary = "set the ECWmax of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "ecw_max" } }, result = { kind = "CODE" } },
    [78] = { procedure = "wlan_get_og_tx_op", operation = "getOgTxOp", summary = "TXOP limit of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "txop" } } } },
    [79] = { procedure = "wlan_set_og_tx_op", operation = "setOgTxOp", summary = "set the TXOP limit of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "txop" } }, result = { kind = "CODE" } },
    [80] = { procedure = "wlan_get_og_ack_policy", operation = "getOgAckPolicy", summary = "ACK policy of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "ack_policy" } } } },
    [81] = { procedure = "wlan_set_og_ack_policy", operation = "setOgAckPolicy", summary = "set the ACK policy of an access category of the AP",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "BOOL", "ack_policy" } }, result = { kind = "CODE" } },
    [82] = { procedure = "wlan_get_ic_aifsn", operation = "getIcAifsn", summary = "AIFSN of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "aifsn" } } } },
    [83] = { procedure = "wlan_set_ic_aifsn", operation = "setIcAifsn", summary = "set the AIFSN of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "aifsn" } }, result = { kind = "CODE" } },
    [84] = { procedure = "wlan_get_ic_ecw_min", operation = "getIcEcwMin", summary = "ECWmin of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "ecw_min" } } } },
    [85] = { procedure = "wlan_set_ic_ecw_min", operation = "setIcEcwMin", summary = "set the ECWmin of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "ecw_min" } }, result = { kind = "CODE" } },
    [86] = { procedure = "wlan_get_ic_ecw_max", operation = "getIcEcwMax", summary = "ECWmax of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "ecw_max" } } } },
    [87] = { procedure = "wlan_set_ic_ecw_max", operation = "setIcEcwMax", summary = "set the ECWmax of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "ecw_max" } }, result = { kind = "CODE" } },
    [88] = { procedure = "wlan_get_wps_enable", operation = "getWpsEnable", summary = "whether WPS is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [89] = { procedure = "wlan_set_wps_enable", operation = "setWpsEnable", summary = "switch WPS on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [90] = { procedure = "wlan_get_wps_device_name", operation = "getWpsDeviceName", summary = "WPS friendly name",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "name" } },
    [91] = { procedure = "wlan_get_wps_device_password", operation = "getWpsDevicePassword", summary = "AP PIN",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "pin" } },
    [92] = { procedure = "wlan_set_wps_device_password", operation = "setWpsDevicePassword", summary = "set the AP PIN",
        arguments = { { "VAP", "index" }, { "TEXT", "pin" } }, result = { kind = "CODE" } },
    [93] = { procedure = "wlan_get_wps_uuid", operation = "getWpsUuid", summary = "WPS UUID",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "uuid" } },
    [94] = { procedure = "wlan_get_wps_version", operation = "getWpsVersion", summary = "WPS version",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "version" } } } },
    [95] = { procedure = "wlan_get_wps_config_methods_supported", operation = "getWpsConfigMethodsSupported", summary = "WPS configuration methods supported",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "methods" } },
    [96] = { procedure = "wlan_get_wps_config_methods_enabled", operation = "getWpsConfigMethodsEnabled", summary = "WPS configuration methods enabled",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "methods" } },
    [97] = { procedure = "wlan_set_wps_config_methods_enabled", operation = "setWpsConfigMethodsEnabled", summary = "enable WPS configuration methods",
        arguments = { { "VAP", "index" }, { "TEXT", "methods" } }, result = { kind = "CODE" } },
    [98] = { procedure = "wlan_get_wps_setup_locked_state", operation = "getWpsSetupLockedState", summary = "whether the AP setup is locked, as text",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "state" } },
    [99] = { procedure = "wlan_get_wps_setup_lock", operation = "getWpsSetupLock", summary = "whether the AP setup is locked",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "locked" } } } },
    [100] = { procedure = "wlan_set_wps_setup_lock", operation = "setWpsSetupLock", summary = "lock or unlock the AP setup",
        arguments = { { "VAP", "index" }, { "BOOL", "locked" } }, result = { kind = "CODE" } },
    [101] = { procedure = "wlan_get_wps_configuration_state", operation = "getWpsConfigurationState", summary = "Configured or Not configured",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "state" } },
    [102] = { procedure = "wlan_get_wps_last_configuration_error", operation = "getWpsLastConfigurationError", summary = "last WPS configuration error",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "error" } },
    [103] = { procedure = "wlan_get_wps_registrar_entries_num", operation = "getWpsRegistrarEntriesNum", summary = "number of WPS registrars",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "count" } } } },
    [104] = { procedure = "wlan_get_wps_registrar_established", operation = "getWpsRegistrarEstablished", summary = "whether a WPS registrar is established",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "established" } } } },
    [105] = { procedure = "wlan_get_wps_registrar_enabled", operation = "getWpsRegistrarEnabled", summary = "whether a WPS registrar is enabled",
        arguments = { { "VAP", "index" }, { "INT", "registrar" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [106] = { procedure = "wlan_set_wps_registrar_enabled", operation = "setWpsRegistrarEnabled", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "INT", "registrar" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [107] = { procedure = "wlan_get_wps_registrar_uuid", operation = "getWpsRegistrarUuid", summary = "UUID of a WPS registrar",
        arguments = { { "VAP", "index" }, { "INT", "registrar" } }, result = { kind = "TEXT", name = "uuid" } },
    [108] = { procedure = "wlan_get_wps_registrar_device_name", operation = "getWpsRegistrarDeviceName", summary = "device name of a WPS registrar",
        arguments = { { "VAP", "index" }, { "INT", "registrar" } }, result = { kind = "TEXT", name = "name" } },
    [109] = { procedure = "wlan_set_mac_address_control_clear", operation = "setMacAddressControlClear", summary = "empty the MAC list",
        arguments = { { "VAP", "index" } }, result = { kind = "CODE" } },
    [110] = { procedure = "wlan_set_mac_address_control_add", operation = "setMacAddressControlAdd", summary = "add a station to the MAC list",
        arguments = { { "VAP", "index" }, { "TEXT", "mac" }, { "TEXT", "list_name" } }, result = { kind = "CODE" } },
    [111] = { procedure = "wlan_set_mac_address_control_delete", operation = "setMacAddressControlDelete", summary = "remove a station from the MAC list",
        arguments = { { "VAP", "index" }, { "TEXT", "mac" } }, result = { kind = "CODE" } },
    [112] = { procedure = "wlan_get_mac_address_control_list", operation = "getMacAddressControlList", summary = "the MAC list, MAC=NAME; by entry",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "list" } },
    [113] = { procedure = "wlan_get_mac_address_control_count", operation = "getMacAddressControlCount", summary = "number of entries in the MAC list",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "count" } } } },
    [114] = { procedure = "wlan_set_standard", operation = "setStandard", summary = "set the 802.11 standard of the VAP's radio",
        arguments = { { "VAP", "index" }, { "TEXT", "standard" } }, result = { kind = "CODE" } },
    [115] = { procedure = "wlan_set_wep_encryption_level", operation = "setWepEncryptionLevel", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "TEXT", "level" } }, result = { kind = "CODE" } },
    [116] = { procedure = "wlan_get_wmm_ic_tx_op", operation = "getWmmIcTxOp", summary = "TXOP limit of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "txop" } } } },
    [117] = { procedure = "wlan_set_wmm_ic_tx_op", operation = "setWmmIcTxOp", summary = "set the TXOP limit of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "UINT", "txop" } }, result = { kind = "CODE" } },
    [118] = { procedure = "wlan_get_wmm_ic_ack_policy", operation = "getWmmIcAckPolicy", summary = "ACK policy of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "ack_policy" } } } },
    [119] = { procedure = "wlan_set_wmm_ic_ack_policy", operation = "setWmmIcAckPolicy", summary = "set the ACK policy of an access category of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "category" }, { "BOOL", "ack_policy" } }, result = { kind = "CODE" } },
    [120] = { procedure = "wlan_set_wps_cancel", operation = "setWpsCancel", summary = "cancel a WPS exchange",
        arguments = { { "VAP", "index" } }, result = { kind = "CODE" } },
    [121] = { procedure = "wlan_set_wps_uuid", operation = "setWpsUuid", summary = "set the WPS UUID",
        arguments = { { "VAP", "index" }, { "TEXT", "uuid" } }, result = { kind = "CODE" } },
    [122] = { procedure = "wlan_get_country_code", operation = "getCountryCode", summary = "regulatory country",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "country" } },
    [123] = { procedure = "wlan_set_country_code", operation = "setCountryCode", summary = "set the regulatory country",
        arguments = { { "VAP", "index" }, { "TEXT", "country" } }, result = { kind = "CODE" } },
    [124] = { procedure = "wlan_get_bg_protection", operation = "getBgProtection", summary = "whether 802.11b/g protection is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [125] = { procedure = "wlan_set_bg_protection", operation = "setBgProtection", summary = "switch 802.11b/g protection for the radio's VAPs",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [126] = { procedure = "wlan_get_beacon_interval", operation = "getBeaconInterval", summary = "beacon interval in TU",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "interval" } } } },
    [127] = { procedure = "wlan_set_beacon_interval", operation = "setBeaconInterval", summary = "set the beacon interval in TU",
        arguments = { { "VAP", "index" }, { "UINT", "interval" } }, result = { kind = "CODE" } },
    [128] = { procedure = "wlan_get_dtim_period", operation = "getDtimPeriod", summary = "DTIM period in beacons",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "period" } } } },
    [129] = { procedure = "wlan_set_dtim_period", operation = "setDtimPeriod", summary = "set the DTIM period in beacons",
        arguments = { { "VAP", "index" }, { "UINT", "period" } }, result = { kind = "CODE" } },
    [130] = { procedure = "wlan_get_tx_preamble", operation = "getTxPreamble", summary = "preamble setting",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "preamble" } } } },
    [131] = { procedure = "wlan_set_tx_preamble", operation = "setTxPreamble", summary = "set the preamble for the radio's VAPs",
        arguments = { { "VAP", "index" }, { "BOOL", "preamble" } }, result = { kind = "CODE" } },
    [132] = { procedure = "wlan_get_rts_threshold", operation = "getRtsThreshold", summary = "RTS threshold in bytes",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "threshold" } } } },
    [133] = { procedure = "wlan_set_rts_threshold", operation = "setRtsThreshold", summary = "set the RTS threshold in bytes",
        arguments = { { "VAP", "index" }, { "UINT", "threshold" } }, result = { kind = "CODE" } },
    [134] = { procedure = "wlan_get_frag_threshold", operation = "getFragThreshold", summary = "fragmentation threshold in bytes",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "threshold" } } } },
    [135] = { procedure = "wlan_set_frag_threshold", operation = "setFragThreshold", summary = "set the fragmentation threshold in bytes",
        arguments = { { "VAP", "index" }, { "UINT", "threshold" } }, result = { kind = "CODE" } },
    [136] = { procedure = "wlan_get_short_slot", operation = "getShortSlot", summary = "short slot setting",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [137] = { procedure = "wlan_set_short_slot", operation = "setShortSlot", summary = "remember the short slot setting",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [138] = { procedure = "wlan_get_tx_burst", operation = "getTxBurst", summary = "whether transmit bursts are on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [139] = { procedure = "wlan_set_tx_burst", operation = "setTxBurst", summary = "switch transmit bursts on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [140] = { procedure = "wlan_get_short_retry_limit", operation = "getShortRetryLimit", summary = "short retry limit",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "limit" } } } },
    [141] = { procedure = "wlan_set_short_retry_limit", operation = "setShortRetryLimit", summary = "remember the short retry limit",
        arguments = { { "VAP", "index" }, { "UINT", "limit" } }, result = { kind = "CODE" } },
    [142] = { procedure = "wlan_get_long_retry_limit", operation = "getLongRetryLimit", summary = "long retry limit",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "limit" } } } },
    [143] = { procedure = "wlan_set_long_retry_limit", operation = "setLongRetryLimit", summary = "remember the long retry limit",
        arguments = { { "VAP", "index" }, { "UINT", "limit" } }, result = { kind = "CODE" } },
    [144] = { procedure = "wlan_get_ht_mcs", operation = "getHtMcs", summary = "fixed MCS plus 2, 0 for automatic",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "mcs" } } } },
    [145] = { procedure = "wlan_set_ht_mcs", operation = "setHtMcs", summary = "fix the MCS (value minus 2), 0 or 1 for automatic",
        arguments = { { "VAP", "index" }, { "UINT", "mcs" } }, result = { kind = "CODE" } },
    [146] = { procedure = "wlan_get_channel_bw", operation = "getChannelBw", summary = "channel width, 0 for 20 MHz to 3 for 80 MHz",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "width" } } } },
    [147] = { procedure = "wlan_set_channel_bw", operation = "setChannelBw", summary = "set the channel width, 0 for 20 MHz to 3 for 80 MHz",
        arguments = { { "VAP", "index" }, { "INT", "width" } }, result = { kind = "CODE" } },
    [148] = { procedure = "wlan_get_ht_mode", operation = "getHtMode", summary = "whether only 802.11n stations are admitted",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [149] = { procedure = "wlan_set_ht_mode", operation = "setHtMode", summary = "admit only 802.11n stations or all",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [150] = { procedure = "wlan_get_guard_interval", operation = "getGuardInterval", summary = "guard interval, 0 for short and 1 for long",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "guard_interval" } } } },
    [151] = { procedure = "wlan_set_guard_interval", operation = "setGuardInterval", summary = "set the guard interval, 0 for short and 1 for long",
        arguments = { { "VAP", "index" }, { "INT", "guard_interval" } }, result = { kind = "CODE" } },
    [152] = { procedure = "wlan_get_ams_du", operation = "getAmsDu", summary = "whether A-MSDU aggregation is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [153] = { procedure = "wlan_set_ams_du", operation = "setAmsDu", summary = "switch A-MSDU aggregation",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [154] = { procedure = "wlan_get_ba_decline", operation = "getBaDecline", summary = "whether block ACK requests are declined",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [155] = { procedure = "wlan_set_ba_decline", operation = "setBaDecline", summary = "decline block ACK requests or not",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [156] = { procedure = "wlan_get_block_ack", operation = "getBlockAck", summary = "whether block ACK aggregation is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [157] = { procedure = "wlan_set_block_ack", operation = "setBlockAck", summary = "switch block ACK aggregation",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [158] = { procedure = "wlan_get_n_protection", operation = "getNProtection", summary = "802.11n protection setting",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [159] = { procedure = "wlan_set_n_protection", operation = "setNProtection", summary = "remember the 802.11n protection setting",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [160] = { procedure = "wlan_get_wpa_group_reauth_interval", operation = "getWpaGroupReauthInterval", summary = "WPA group rekey interval in seconds",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "interval" } } } },
    [161] = { procedure = "wlan_set_wpa_group_reauth_interval", operation = "setWpaGroupReauthInterval", summary = "set the WPA group rekey interval in seconds",
        arguments = { { "VAP", "index" }, { "UINT", "interval" } }, result = { kind = "CODE" } },
    [162] = { procedure = "wlan_get_wpa_reauth_interval", operation = "getWpaReauthInterval", summary = "WPA rekey interval in seconds",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "interval" } } } },
    [163] = { procedure = "wlan_set_wpa_reauth_interval", operation = "setWpaReauthInterval", summary = "set the WPA rekey interval in seconds",
        arguments = { { "VAP", "index" }, { "UINT", "interval" } }, result = { kind = "CODE" } },
    [164] = { procedure = "wlan_get_wpa_preauth", operation = "getWpaPreauth", summary = "whether WPA2 pre-authentication is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [165] = { procedure = "wlan_set_wpa_preauth", operation = "setWpaPreauth", summary = "switch WPA2 pre-authentication",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [166] = { procedure = "wlan_get_wmm_apsd", operation = "getWmmApsd", summary = "whether WMM power save is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [167] = { procedure = "wlan_set_wmm_apsd", operation = "setWmmApsd", summary = "switch WMM power save",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [168] = { procedure = "wlan_get_wps_mode", operation = "getWpsMode", summary = "stored WPS mode, 0 off and 2 on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "mode" } } } },
    [169] = { procedure = "wlan_set_wps_mode", operation = "setWpsMode", summary = "switch WPS on or off",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [170] = { procedure = "wlan_get_wps_model_name", operation = "getWpsModelName", summary = "WPS model name",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "name" } },
    [171] = { procedure = "wlan_set_wps_model_name", operation = "setWpsModelName", summary = "set the WPS model name",
        arguments = { { "VAP", "index" }, { "TEXT", "name" } }, result = { kind = "CODE" } },
    [172] = { procedure = "wlan_get_wps_result_status", operation = "getWpsResultStatus", summary = "what the authenticator says of the last WPS exchange",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "status" } },
    [173] = { procedure = "wlan_get_wps_status", operation = "getWpsStatus", summary = "what the authenticator says of WPS",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "status" } },
    [174] = { procedure = "wlan_get_wps_config_timeout", operation = "getWpsConfigTimeout", summary = "WPS configuration timeout",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "timeout" } } } },
    [175] = { procedure = "wlan_set_wps_config_timeout", operation = "setWpsConfigTimeout", summary = "set the WPS configuration timeout",
        arguments = { { "VAP", "index" }, { "UINT", "timeout" } }, result = { kind = "CODE" } },
    [176] = { procedure = "wlan_set_wps_pushbutton", operation = "setWpsPushbutton", summary = "start a WPS push-button exchange",
        arguments = { { "VAP", "index" } }, result = { kind = "CODE" } },
    [177] = { procedure = "wlan_set_wps_pinstart", operation = "setWpsPinstart", summary = "start a WPS exchange with a station's PIN",
        arguments = { { "VAP", "index" }, { "TEXT", "pin" } }, result = { kind = "CODE" } },
    [178] = { procedure = "wlan_set_restore_defaults", operation = "setRestoreDefaults", summary = "factory settings: 0 for 5 GHz, 1 for 2.4 GHz, 2 for all",
        arguments = { { "INT", "scope" } }, result = { kind = "CODE" } },
    [179] = { procedure = "wlan_get_custom_ssid_str", operation = "getCustomSsidStr", summary = "SSID of the VAP",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "ssid" } },
    [180] = { procedure = "wlan_set_custom_ssid_str", operation = "setCustomSsidStr", summary = "set the SSID of the VAP",
        arguments = { { "VAP", "index" }, { "TEXT", "ssid" } }, result = { kind = "CODE" } },
    [181] = { procedure = "wlan_set_wps_oob", operation = "setWpsOob", summary = "mark the AP as not configured by WPS",
        arguments = { { "VAP", "index" } }, result = { kind = "CODE" } },
    [182] = { procedure = "wlan_set_bss_isolate", operation = "setBssIsolate", summary = "isolate BSSs from each other or not",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [183] = { procedure = "wlan_get_bss_isolate", operation = "getBssIsolate", summary = "whether BSSs are isolated from each other",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [184] = { procedure = "wlan_set_station_isolate", operation = "setStationIsolate", summary = "isolate the VAP's stations from each other or not",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [185] = { procedure = "wlan_get_station_isolate", operation = "getStationIsolate", summary = "whether the VAP's stations are isolated from each other",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [186] = { procedure = "wlan_get_side_band", operation = "getSideBand", summary = "side band setting",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "side_band" } } } },
    [187] = { procedure = "wlan_set_side_band", operation = "setSideBand", summary = "remember the side band setting",
        arguments = { { "VAP", "index" }, { "BOOL", "side_band" } }, result = { kind = "CODE" } },
    [188] = { procedure = "wlan_get_radius_server_address", operation = "getRadiusServerAddress", summary = "RADIUS server address",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "address" } },
    [189] = { procedure = "wlan_set_radius_server_address", operation = "setRadiusServerAddress", summary = "set the RADIUS server address",
        arguments = { { "VAP", "index" }, { "TEXT", "address" } }, result = { kind = "CODE" } },
    [190] = { procedure = "wlan_get_radius_server_port", operation = "getRadiusServerPort", summary = "RADIUS server port",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "port" } } } },
    [191] = { procedure = "wlan_set_radius_server_port", operation = "setRadiusServerPort", summary = "set the RADIUS server port",
        arguments = { { "VAP", "index" }, { "INT", "port" } }, result = { kind = "CODE" } },
    [192] = { procedure = "wlan_get_radius_server_key", operation = "getRadiusServerKey", summary = "RADIUS shared secret",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "key" } },
    [193] = { procedure = "wlan_set_radius_server_key", operation = "setRadiusServerKey", summary = "set the RADIUS shared secret",
        arguments = { { "VAP", "index" }, { "TEXT", "key" } }, result = { kind = "CODE" } },
    [194] = { procedure = "wlan_get_radius_reauth_interval", operation = "getRadiusReauthInterval", summary = "RADIUS re-authentication period in seconds",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "interval" } } } },
    [195] = { procedure = "wlan_set_radius_reauth_interval", operation = "setRadiusReauthInterval", summary = "set the RADIUS re-authentication period in seconds",
        arguments = { { "VAP", "index" }, { "INT", "interval" } }, result = { kind = "CODE" } },
    [196] = { procedure = "wlan_get_ht_tx_stream", operation = "getHtTxStream", summary = "transmit streams",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "streams" } } } },
    [197] = { procedure = "wlan_set_ht_tx_stream", operation = "setHtTxStream", summary = "set the transmit streams, 1 to 3",
        arguments = { { "VAP", "index" }, { "INT", "streams" } }, result = { kind = "CODE" } },
    [198] = { procedure = "wlan_get_ht_rx_stream", operation = "getHtRxStream", summary = "receive streams",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "streams" } } } },
    [199] = { procedure = "wlan_set_ht_rx_stream", operation = "setHtRxStream", summary = "set the receive streams, 1 to 3",
        arguments = { { "VAP", "index" }, { "INT", "streams" } }, result = { kind = "CODE" } },
    [200] = { procedure = "wlan_get_ht_stbc", operation = "getHtStbc", summary = "whether STBC is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [201] = { procedure = "wlan_set_ht_stbc", operation = "setHtStbc", summary = "switch STBC",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [202] = { procedure = "wlan_get_ht_rdg", operation = "getHtRdg", summary = "reverse direction grant setting",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [203] = { procedure = "wlan_set_ht_rdg", operation = "setHtRdg", summary = "remember the reverse direction grant setting",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [204] = { procedure = "wlan_get_extension_channel", operation = "getExtensionChannel", summary = "extension channel: 0 below, 1 above, 2 none stated",
        arguments = { { "VAP", "index" }, { "INT", "unused" } }, result = { kind = "INTEGERS", outputs = { { "INT", "side" } } } },
    [205] = { procedure = "wlan_set_extension_channel", operation = "setExtensionChannel", summary = "set the extension channel: 0 below, 1 above, 2 none stated",
        arguments = { { "VAP", "index" }, { "INT", "unused" }, { "INT", "side" } }, result = { kind = "CODE" } },
    [206] = { procedure = "wlan_restart_all", operation = "restartAll", summary = "bring the Wi-Fi interfaces up again",
        arguments = {}, result = { kind = "CODE" } },
    [207] = { procedure = "wlan_restart", operation = "restart", summary = "bring the Wi-Fi interfaces up again",
        arguments = { { "IGNORED", "index" } }, result = { kind = "CODE" } },
    [208] = { procedure = "wlan_get_ieee80211h_enable", operation = "getIeee80211hEnable", summary = "whether 802.11h is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [209] = { procedure = "wlan_set_ieee80211h_enable", operation = "setIeee80211hEnable", summary = "switch 802.11h",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [210] = { procedure = "wlan_get_igmp_snooping", operation = "getIgmpSnooping", summary = "whether IGMP snooping is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [211] = { procedure = "wlan_set_igmp_snooping", operation = "setIgmpSnooping", summary = "switch IGMP snooping",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [212] = { procedure = "wlan_get_max_station_num", operation = "getMaxStationNum", summary = "most stations the VAP admits",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "stations" } } } },
    [213] = { procedure = "wlan_set_max_station_num", operation = "setMaxStationNum", summary = "set the most stations the VAP admits",
        arguments = { { "VAP", "index" }, { "INT", "stations" } }, result = { kind = "CODE" } },
    [214] = { procedure = "wlan_get_implicit_beamforming_enable", operation = "getImplicitBeamformingEnable", summary = "whether implicit beamforming is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [215] = { procedure = "wlan_set_implicit_beamforming_enable", operation = "setImplicitBeamformingEnable", summary = "switch implicit beamforming (index 0 only)",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [216] = { procedure = "wlan_get_current_channel", operation = "getCurrentChannel", summary = "channel the radio is on now",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "channel" } } } },
    [217] = { procedure = "wlan_get_ap_scan_num_of_entries", operation = "getApScanNumOfEntries", summary = "number of networks found",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "count" } } } },
    [218] = { procedure = "wlan_get_ap_scan_result", operation = "getApScanResult", summary = "the networks found, strongest first",
        arguments = { { "VAP", "index" } }, result = { kind = "IMAGE", name = "table", record = "scan_table" } },
    [219] = { procedure = "wlan_ap_scan", operation = "apScan", summary = "start a site survey",
        arguments = { { "VAP", "index" } }, result = { kind = "ACTION" } },
    [220] = { procedure = "wlan_ap_auto_channel_select", operation = "apAutoChannelSelect", summary = "choose the channel automatically now",
        arguments = { { "VAP", "index" } }, result = { kind = "ACTION" } },
    [221] = { procedure = "wlan_get_assoc_devices_table", operation = "getAssocDevicesTable", summary = "the associated stations",
        arguments = { { "VAP", "index" } }, result = { kind = "IMAGE", name = "table", record = "wlan_assoc_devices_table" } },
    [222] = { procedure = "wlan_get_assoc_devices_table_num_of_entries", operation = "getAssocDevicesTableNumOfEntries", summary = "number of associated stations",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "count" } } } },
    [223] = { procedure = "wlan_get_ap_scan_status", operation = "getApScanStatus", summary = "state of the site survey, 3 when complete",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "status" } } } },
    [227] = { procedure = "wlan_set_bss_weight", operation = "setBssWeight", summary = "set the airtime weight of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "weight" } }, result = { kind = "CODE" } },
    [228] = { procedure = "wlan_get_bss_weight", operation = "getBssWeight", summary = "airtime weight of the BSS",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "weight" } } } },
    [238] = { procedure = "wlan_get_channel_statistics", operation = "getChannelStatistics", summary = "channel utilisation, own activity and busy time in percent",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "utilisation" }, { "INT", "activity" }, { "INT", "busy" } } } },
    [239] = { procedure = "wlan_get_channel_noise_floor", operation = "getChannelNoiseFloor", summary = "noise floor in dBm",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "minimum" }, { "INT", "maximum" }, { "INT", "median" }, { "INT", "average" } } } },
    [240] = { procedure = "wlan_get_radio_tx_packets", operation = "getRadioTxPackets", summary = "packets the radio has sent",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS64", name = "packets", count = 1 } },
    [241] = { procedure = "wlan_get_radio_rx_packets", operation = "getRadioRxPackets", summary = "packets the radio has received",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS64", name = "packets", count = 1 } },
    [242] = { procedure = "wlan_get_retransmission_metric", operation = "getRetransmissionMetric", summary = "retry rate in percent",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "percent" } } } },
    [243] = { procedure = "wlan_set_rad_stat_enable", operation = "setRadStatEnable", summary = "start or stop the radio statistics collector",
        arguments = { { "VAP", "index" }, { "INT", "enabled" }, { "INT", "rate" }, { "INT", "interval" } }, result = { kind = "CODE" } },
    [244] = { procedure = "wlan_get_rssi_table", operation = "getRssiTable", summary = "RSSI histogram of the radio",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS64", name = "entries", count = 37 } },
    [246] = { procedure = "wlan_get_acct_server_address", operation = "getAcctServerAddress", summary = "accounting server address",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "address" } },
    [247] = { procedure = "wlan_set_acct_server_address", operation = "setAcctServerAddress", summary = "set the accounting server address",
        arguments = { { "VAP", "index" }, { "TEXT", "address" } }, result = { kind = "CODE" } },
    [248] = { procedure = "wlan_get_acct_server_port", operation = "getAcctServerPort", summary = "accounting server port",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "port" } } } },
    [249] = { procedure = "wlan_set_acct_server_port", operation = "setAcctServerPort", summary = "set the accounting server port",
        arguments = { { "VAP", "index" }, { "INT", "port" } }, result = { kind = "CODE" } },
    [250] = { procedure = "wlan_get_acct_server_key", operation = "getAcctServerKey", summary = "accounting server secret",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "key" } },
    [251] = { procedure = "wlan_set_acct_server_key", operation = "setAcctServerKey", summary = "set the accounting server secret as it stands",
        arguments = { { "VAP", "index" }, { "TEXT", "key" } }, result = { kind = "CODE" } },
    [0x1000001] = { procedure = "wlan_get_max_bandwidth", operation = "getMaxBandwidth", summary = "widest width on a channel: 1 for 20 MHz, 2 for 40, 4 for 80",
        arguments = { { "VAP", "index" }, { "INT", "channel" } }, result = { kind = "INTEGERS", outputs = { { "INT", "width" } } } },
    [0x1000002] = { procedure = "wlan_check_thread_queue", operation = "checkThreadQueue", summary = "start the parked lifecycle request",
        arguments = {}, result = { kind = "CODE" } },
    [0x100000D] = { procedure = "wlan_get_sta_assoc_rssi_thresh", operation = "getStaAssocRssiThresh", summary = "weakest RSSI at which stations may associate",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "rssi" } } } },
    [0x100000E] = { procedure = "wlan_set_sta_assoc_rssi_thresh", operation = "setStaAssocRssiThresh", summary = "set the weakest RSSI at which stations may associate",
        arguments = { { "VAP", "index" }, { "INT", "rssi" } }, result = { kind = "CODE" } },
    [0x100000F] = { procedure = "wlan_pci_reconnect", operation = "pciReconnect", summary = "reset the Wi-Fi chips through the PCI bus",
        arguments = {}, result = { kind = "CODE" } },
    [0x1000010] = { procedure = "wlan_get_dot11u_enable", operation = "getDot11uEnable", summary = "has not been implemented",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [0x1000011] = { procedure = "wlan_set_dot11u_enable", operation = "setDot11uEnable", summary = "has not been implemented",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [0x1000012] = { procedure = "wlan_get_dot11u_attribute", operation = "getDot11uAttribute", summary = "has not been implemented",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "network_type" }, { "INT", "internet" }, { "INT", "asra" }, { "INT", "esr" }, { "INT", "uesa" } } } },
    [0x1000013] = { procedure = "wlan_set_dot11u_attribute", operation = "setDot11uAttribute", summary = "has not been implemented",
        arguments = { { "VAP", "index" }, { "INT", "network_type" }, { "BOOL", "internet" }, { "BOOL", "asra" }, { "BOOL", "esr" }, { "BOOL", "uesa" } }, result = { kind = "CODE" } },
    [0x1000014] = { procedure = "wlan_set_airtime_enable", operation = "setAirtimeEnable", summary = "switch airtime fairness of a radio (VAP 1 or 9)",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [0x1000015] = { procedure = "wlan_get_airtime_enable", operation = "getAirtimeEnable", summary = "whether airtime fairness is on (VAP 1 or 9)",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [0x1000018] = { procedure = "wlan_set_bs_enable", operation = "setBsEnable", summary = "choose the band steering method, 0 to 3",
        arguments = { { "INT", "method" } }, result = { kind = "CODE" } },
    [0x1000019] = { procedure = "wlan_get_bs_enable", operation = "getBsEnable", summary = "band steering method",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "INT", "method" } } } },
    [0x100001A] = { procedure = "wlan_set_bs_2g_rssi_low_limit_threshold", operation = "setBs2gRssiLowLimitThreshold", summary = "set the RSSI below which 5 GHz stations go to 2.4 GHz, in dBm",
        arguments = { { "INT", "dbm" } }, result = { kind = "CODE" } },
    [0x100001B] = { procedure = "wlan_get_bs_2g_rssi_low_limit_threshold", operation = "getBs2gRssiLowLimitThreshold", summary = "RSSI below which 5 GHz stations go to 2.4 GHz, in dBm",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "INT", "dbm" } } } },
    [0x100001C] = { procedure = "wlan_set_bs_5g_rssi_good_limit_threshold", operation = "setBs5gRssiGoodLimitThreshold", summary = "set the RSSI above which 2.4 GHz stations go to 5 GHz, in dBm",
        arguments = { { "INT", "dbm" } }, result = { kind = "CODE" } },
    [0x100001D] = { procedure = "wlan_get_bs_5g_rssi_good_limit_threshold", operation = "getBs5gRssiGoodLimitThreshold", summary = "RSSI above which 2.4 GHz stations go to 5 GHz, in dBm",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "INT", "dbm" } } } },
    [0x100001E] = { procedure = "wlan_set_bs_inactivity_steer_time", operation = "setBsInactivitySteerTime", summary = "set the inactivity times before steering, in seconds",
        arguments = { { "VAP", "index" }, { "UINT", "normal" }, { "UINT", "overload" } }, result = { kind = "CODE" } },
    [0x100001F] = { procedure = "wlan_get_bs_inactivity_steer_time", operation = "getBsInactivitySteerTime", summary = "inactivity times before steering, in seconds",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "normal" }, { "UINT", "overload" } } } },
    [0x1000020] = { procedure = "wlan_set_band_steer_util_sample_rate", operation = "setBandSteerUtilSampleRate", summary = "set the sampling interval of the medium utilisation",
        arguments = { { "VAP", "index" }, { "UINT", "seconds" } }, result = { kind = "CODE" } },
    [0x1000021] = { procedure = "wlan_get_band_steer_util_sample_rate", operation = "getBandSteerUtilSampleRate", summary = "sampling interval of the medium utilisation",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "seconds" } } } },
    [0x1000022] = { procedure = "wlan_set_band_steer_util_avg_period", operation = "setBandSteerUtilAvgPeriod", summary = "set the averaging period of the medium utilisation",
        arguments = { { "VAP", "index" }, { "UINT", "seconds" } }, result = { kind = "CODE" } },
    [0x1000023] = { procedure = "wlan_get_band_steer_util_avg_period", operation = "getBandSteerUtilAvgPeriod", summary = "averaging period of the medium utilisation",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "seconds" } } } },
    [0x1000024] = { procedure = "wlan_set_band_steer_defer_period", operation = "setBandSteerDeferPeriod", summary = "set the time a station is left alone after steering",
        arguments = { { "VAP", "index" }, { "UINT", "seconds" } }, result = { kind = "CODE" } },
    [0x1000025] = { procedure = "wlan_get_band_steer_defer_period", operation = "getBandSteerDeferPeriod", summary = "time a station is left alone after steering",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "seconds" } } } },
    [0x1000026] = { procedure = "wlan_set_band_steer_assoc_low_rssi_threshold", operation = "setBandSteerAssocLowRssiThreshold", summary = "set the weakest RSSI of a steering target, in dBm",
        arguments = { { "VAP", "index" }, { "INT", "dbm" } }, result = { kind = "CODE" } },
    [0x1000027] = { procedure = "wlan_get_band_steer_assoc_low_rssi_threshold", operation = "getBandSteerAssocLowRssiThreshold", summary = "weakest RSSI of a steering target, in dBm",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "dbm" } } } },
    [0x1000028] = { procedure = "wlan_set_band_steer_time", operation = "setBandSteerTime", summary = "set the time allowed for one steering, 0 to 20 seconds",
        arguments = { { "UINT", "seconds" } }, result = { kind = "CODE" } },
    [0x1000029] = { procedure = "wlan_get_band_steer_time", operation = "getBandSteerTime", summary = "time allowed for one steering, in seconds",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "UINT", "seconds" } } } },
    [0x100002A] = { procedure = "wlan_set_band_steer_count", operation = "setBandSteerCount", summary = "set how often authentication is refused, 0 to 3",
        arguments = { { "UINT", "count" } }, result = { kind = "CODE" } },
    [0x100002B] = { procedure = "wlan_get_band_steer_count", operation = "getBandSteerCount", summary = "how often authentication is refused",
        arguments = {}, result = { kind = "INTEGERS", outputs = { { "UINT", "count" } } } },
    [0x100002C] = { procedure = "wlan_set_advairtime_bssweight_enable", operation = "setAdvairtimeBssweightEnable", summary = "switch airtime weights of BSSs",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [0x100002D] = { procedure = "wlan_get_advairtime_bssweight_enable", operation = "getAdvairtimeBssweightEnable", summary = "whether BSSs have airtime weights",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [0x100002E] = { procedure = "wlan_set_advairtime_algorithm_type", operation = "setAdvairtimeAlgorithmType", summary = "choose the airtime algorithm",
        arguments = { { "VAP", "index" }, { "INT", "algorithm" } }, result = { kind = "CODE" } },
    [0x100002F] = { procedure = "wlan_get_advairtime_algorithm_type", operation = "getAdvairtimeAlgorithmType", summary = "airtime algorithm",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "algorithm" } } } },
    [0x1000030] = { procedure = "wlan_set_advairtime_staweight_enable", operation = "setAdvairtimeStaweightEnable", summary = "switch airtime weights of stations",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [0x1000031] = { procedure = "wlan_get_advairtime_staweight_enable", operation = "getAdvairtimeStaweightEnable", summary = "whether stations have airtime weights",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [0x1000032] = { procedure = "wlan_set_advairtime_wait_threshold", operation = "setAdvairtimeWaitThreshold", summary = "accepted without effect",
        arguments = { { "VAP", "index" }, { "INT", "threshold" } }, result = { kind = "CODE" } },
    [0x1000033] = { procedure = "wlan_get_advairtime_wait_threshold", operation = "getAdvairtimeWaitThreshold", summary = "answered without a value",
        arguments = { { "VAP", "index" } }, result = { kind = "ACTION" } },
    [0x1000034] = { procedure = "wlan_set_advairtime_traffic_direction", operation = "setAdvairtimeTrafficDirection", summary = "choose the traffic direction that airtime counts",
        arguments = { { "VAP", "index" }, { "INT", "direction" } }, result = { kind = "CODE" } },
    [0x1000035] = { procedure = "wlan_get_advairtime_traffic_direction", operation = "getAdvairtimeTrafficDirection", summary = "traffic direction that airtime counts",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "direction" } } } },
    [0x1000036] = { procedure = "wlan_set_advairtime_application_atm_enable", operation = "setAdvairtimeApplicationAtmEnable", summary = "switch airtime management by application",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [0x1000037] = { procedure = "wlan_get_advairtime_application_atm_enable", operation = "getAdvairtimeApplicationAtmEnable", summary = "whether airtime is managed by application",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "BOOL", "enabled" } } } },
    [0x1000038] = { procedure = "wlan_set_advairtime_distribution_type", operation = "setAdvairtimeDistributionType", summary = "choose how spare airtime is distributed",
        arguments = { { "VAP", "index" }, { "INT", "distribution" } }, result = { kind = "CODE" } },
    [0x1000039] = { procedure = "wlan_get_advairtime_distribution_type", operation = "getAdvairtimeDistributionType", summary = "how spare airtime is distributed",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "distribution" } } } },
    [0x100003A] = { procedure = "wlan_set_advairtime_sta_weight_destroy_all", operation = "setAdvairtimeStaWeightDestroyAll", summary = "remove all airtime weights of stations",
        arguments = { { "IGNORED", "index" } }, result = { kind = "CODE" } },
    [0x100003B] = { procedure = "wlan_get_advairtime_sta_entry_count", operation = "getAdvairtimeStaEntryCount", summary = "number of stations with an airtime weight",
        arguments = { { "IGNORED", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "count" } } } },
    [0x100003C] = { procedure = "wlan_set_advairtime_sta_entry_add", operation = "setAdvairtimeStaEntryAdd", summary = "give a station an airtime weight",
        arguments = { { "IGNORED", "index" }, { "TEXT", "mac" }, { "INT", "weight" } }, result = { kind = "CODE" } },
    [0x100003D] = { procedure = "wlan_get_radius_server_pmkcaching", operation = "getRadiusServerPmkcaching", summary = "whether PMKs are cached",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [0x100003E] = { procedure = "wlan_set_radius_server_pmkcaching", operation = "setRadiusServerPmkcaching", summary = "switch PMK caching",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [0x100003F] = { procedure = "wlan_get_radius_server_pmklifetime", operation = "getRadiusServerPmklifetime", summary = "PMK lifetime in seconds",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "lifetime" } } } },
    [0x1000040] = { procedure = "wlan_set_radius_server_pmklifetime", operation = "setRadiusServerPmklifetime", summary = "set the PMK lifetime in seconds",
        arguments = { { "VAP", "index" }, { "INT", "lifetime" } }, result = { kind = "CODE" } },
    [0x1000041] = { procedure = "wlan_set_advairtime_sta_entry_del", operation = "setAdvairtimeStaEntryDel", summary = "take the airtime weight from a station",
        arguments = { { "IGNORED", "index" }, { "TEXT", "mac" } }, result = { kind = "CODE" } },
    [0x1000042] = { procedure = "wlan_get_advairtime_sta_mac", operation = "getAdvairtimeStaMac", summary = "MAC of the station with this number",
        arguments = { { "IGNORED", "index" }, { "INT", "station" } }, result = { kind = "TEXT", name = "mac" } },
    [0x1000043] = { procedure = "wlan_get_advairtime_sta_weight", operation = "getAdvairtimeStaWeight", summary = "airtime weight of the station with this number",
        arguments = { { "IGNORED", "index" }, { "INT", "station" } }, result = { kind = "INTEGERS", outputs = { { "INT", "weight" } } } },
    [0x1000044] = { procedure = "wlan_set_advairtime_sta_period", operation = "setAdvairtimeStaPeriod", summary = "set the airtime period of the station with this number",
        arguments = { { "IGNORED", "index" }, { "INT", "station" }, { "INT", "period" } }, result = { kind = "CODE" } },
    [0x1000045] = { procedure = "wlan_get_advairtime_sta_period", operation = "getAdvairtimeStaPeriod", summary = "airtime period of the station with this number",
        arguments = { { "IGNORED", "index" }, { "INT", "station" } }, result = { kind = "INTEGERS", outputs = { { "INT", "period" } } } },
    [0x1000046] = { procedure = "wlan_get_advairtime_sta_list", operation = "getAdvairtimeStaList", summary = "stations with an airtime weight",
        arguments = { { "INT", "count" } }, result = { kind = "IMAGE", name = "list", record = "wlan_airtime_sta_list_t" } },
    [0x1000049] = { procedure = "wlan_query_wlan_info", operation = "queryWlanInfo", summary = "send the airtime of every station to the system log",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "done" } } } },
    [0x100004A] = { procedure = "wlan_get_advairtime_statscl_atftable", operation = "getAdvairtimeStatsclAtftable", summary = "configured and used airtime of the connected stations",
        arguments = { { "VAP", "index" } }, result = { kind = "IMAGE", name = "table", record = "wlan_atf_station_table_t" } },
    [0x100004B] = { procedure = "wlan_set_idle_timeout", operation = "setIdleTimeout", summary = "set the time after which an idle station is dropped",
        arguments = { { "VAP", "index" }, { "INT", "seconds" } }, result = { kind = "CODE" } },
    [0x100004C] = { procedure = "wlan_get_idle_timeout", operation = "getIdleTimeout", summary = "time after which an idle station is dropped",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "seconds" } } } },
    [0x100004D] = { procedure = "wlan_get_softblock_enable", operation = "getSoftblockEnable", summary = "whether soft blocking is on",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "enabled" } } } },
    [0x100004E] = { procedure = "wlan_set_softblock_enable", operation = "setSoftblockEnable", summary = "switch soft blocking",
        arguments = { { "VAP", "index" }, { "BOOL", "enabled" } }, result = { kind = "CODE" } },
    [0x100004F] = { procedure = "wlan_get_softblock_black_list_selector_mask", operation = "getSoftblockBlackListSelectorMask", summary = "black-list selector mask",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "mask" } } } },
    [0x1000050] = { procedure = "wlan_set_softblock_black_list_selector_mask", operation = "setSoftblockBlackListSelectorMask", summary = "set the black-list selector mask",
        arguments = { { "VAP", "index" }, { "UINT", "mask" } }, result = { kind = "CODE" } },
    [0x1000051] = { procedure = "wlan_get_softblock_selector_mask", operation = "getSoftblockSelectorMask", summary = "soft-block selector mask",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "mask" } } } },
    [0x1000052] = { procedure = "wlan_set_softblock_selector_mask", operation = "setSoftblockSelectorMask", summary = "set the soft-block selector mask",
        arguments = { { "VAP", "index" }, { "UINT", "mask" } }, result = { kind = "CODE" } },
    [0x1000053] = { procedure = "wlan_get_softblock_waiting_time", operation = "getSoftblockWaitingTime", summary = "soft-block waiting time",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "time" } } } },
    [0x1000054] = { procedure = "wlan_set_softblock_waiting_time", operation = "setSoftblockWaitingTime", summary = "set the soft-block waiting time",
        arguments = { { "VAP", "index" }, { "INT", "time" } }, result = { kind = "CODE" } },
    [0x1000055] = { procedure = "wlan_get_softblock_allow_timer", operation = "getSoftblockAllowTimer", summary = "soft-block allow timer",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "time" } } } },
    [0x1000056] = { procedure = "wlan_set_softblock_allow_timer", operation = "setSoftblockAllowTimer", summary = "set the soft-block allow timer",
        arguments = { { "VAP", "index" }, { "INT", "time" } }, result = { kind = "CODE" } },
    [0x1000057] = { procedure = "wlan_get_softblock_black_list", operation = "getSoftblockBlackList", summary = "stations on the soft-block list",
        arguments = { { "VAP", "index" } }, result = { kind = "IMAGE", name = "list", record = "wlan_sb_station_list_t" } },
    [0x1000058] = { procedure = "wlan_set_softblock_black_list_add", operation = "setSoftblockBlackListAdd", summary = "put a station on the soft-block list",
        arguments = { { "VAP", "index" }, { "TEXT", "mac" } }, result = { kind = "CODE" } },
    [0x1000059] = { procedure = "wlan_set_softblock_black_list_del", operation = "setSoftblockBlackListDel", summary = "take a station off the soft-block list",
        arguments = { { "VAP", "index" }, { "TEXT", "mac" } }, result = { kind = "CODE" } },
    [0x100005A] = { procedure = "wlan_set_softblock_black_list_clear", operation = "setSoftblockBlackListClear", summary = "clear the soft-block list",
        arguments = { { "VAP", "index" }, { "INT", "which" } }, result = { kind = "CODE" } },
    [0x100005B] = { procedure = "wlan_set_bs_bss_enable", operation = "setBsBssEnable", summary = "set band steering of a BSS pair, 0 to 2",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [0x100005C] = { procedure = "wlan_get_bs_bss_enable", operation = "getBsBssEnable", summary = "band steering of a BSS pair",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [0x100005D] = { procedure = "wlan_set_bs_bss_5g_rssi_threshold", operation = "setBsBss5gRssiThreshold", summary = "set the 5 GHz RSSI for steering a BSS, -100 to -1 dBm",
        arguments = { { "VAP", "index" }, { "INT", "dbm" } }, result = { kind = "CODE" } },
    [0x100005E] = { procedure = "wlan_get_bs_bss_5g_rssi_threshold", operation = "getBsBss5gRssiThreshold", summary = "5 GHz RSSI for steering a BSS, in dBm",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "dbm" } } } },
    [0x100005F] = { procedure = "wlan_set_bs_bss_delta_5g_rssi_threshold", operation = "setBsBssDelta5gRssiThreshold", summary = "set the 5 GHz RSSI margin for steering a BSS, 0 to 100",
        arguments = { { "VAP", "index" }, { "INT", "delta" } }, result = { kind = "CODE" } },
    [0x1000060] = { procedure = "wlan_get_bs_bss_delta_5g_rssi_threshold", operation = "getBsBssDelta5gRssiThreshold", summary = "5 GHz RSSI margin for steering a BSS",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "delta" } } } },
    [0x1000061] = { procedure = "wlan_set_bs_bss_2g_temp_timeout", operation = "setBsBss2gTempTimeout", summary = "set how long a station stays on the 2.4 GHz temporary black list",
        arguments = { { "VAP", "index" }, { "INT", "milliseconds" } }, result = { kind = "CODE" } },
    [0x1000062] = { procedure = "wlan_get_bs_bss_2g_temp_timeout", operation = "getBsBss2gTempTimeout", summary = "how long a station stays on the 2.4 GHz temporary black list",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "milliseconds" } } } },
    [0x1000063] = { procedure = "wlan_set_bs_bss_5g_capable_clear", operation = "setBsBss5gCapableClear", summary = "forget which stations of a BSS can use 5 GHz",
        arguments = { { "VAP", "index" }, { "INT", "method" } }, result = { kind = "CODE" } },
    [0x1000064] = { procedure = "wlan_set_bs_bss_2g_temp_blacklist_clear", operation = "setBsBss2gTempBlacklistClear", summary = "clear the 2.4 GHz temporary black list of a BSS",
        arguments = { { "VAP", "index" }, { "INT", "method" } }, result = { kind = "CODE" } },
    [0x1000065] = { procedure = "wlan_get_bs_bss_5g_capable_table", operation = "getBsBss5gCapableTable", summary = "stations of a BSS that can use 5 GHz",
        arguments = { { "VAP", "index" } }, result = { kind = "IMAGE", name = "table", record = "wlan_5g_capable_table_t", outputs = { { "INT", "count" } } } },
    [0x1000066] = { procedure = "wlan_get_bs_bss_2g_temp_blacklist_table", operation = "getBsBss2gTempBlacklistTable", summary = "2.4 GHz temporary black list of a BSS",
        arguments = { { "VAP", "index" } }, result = { kind = "IMAGE", name = "table", record = "wlan_2g_temp_blacklist_table_t", outputs = { { "INT", "count" } } } },
    [0x1000067] = { procedure = "wlan_set_radius_server_ipv6enable", operation = "setRadiusServerIpv6enable", summary = "whether the RADIUS server is reached over IPv6",
        arguments = { { "VAP", "index" }, { "INT", "enabled" } }, result = { kind = "CODE" } },
    [0x1000068] = { procedure = "wlan_get_radius_server_ipv6enable", operation = "getRadiusServerIpv6enable", summary = "whether the RADIUS server is reached over IPv6",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "enabled" } } } },
    [0x1000069] = { procedure = "wlan_get_softblock_auth_response_st_code", operation = "getSoftblockAuthResponseStCode", summary = "status code in refused authentication responses",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "status" } } } },
    [0x100006A] = { procedure = "wlan_set_softblock_auth_response_st_code", operation = "setSoftblockAuthResponseStCode", summary = "set the status code in refused authentication responses",
        arguments = { { "VAP", "index" }, { "INT", "status" } }, result = { kind = "CODE" } },
    [0x100006B] = { procedure = "wlan_get_softblock_ignore_probereq_type", operation = "getSoftblockIgnoreProbereqType", summary = "probe requests that are ignored",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "UINT", "type" } } } },
    [0x100006C] = { procedure = "wlan_set_softblock_ignore_probereq_type", operation = "setSoftblockIgnoreProbereqType", summary = "choose the probe requests that are ignored",
        arguments = { { "VAP", "index" }, { "INT", "type" } }, result = { kind = "CODE" } },
    [0x100006D] = { procedure = "wlan_get_bss_client_rssi_threshold", operation = "getBssClientRssiThreshold", summary = "RSSI floor for stations of the BSS",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "rssi" } } } },
    [0x100006E] = { procedure = "wlan_set_bss_client_rssi_threshold", operation = "setBssClientRssiThreshold", summary = "set the RSSI floor for stations of the BSS",
        arguments = { { "VAP", "index" }, { "INT", "rssi" } }, result = { kind = "CODE" } },
    [0x100006F] = { procedure = "wlan_get_bss_client_rssi_threshold_delta", operation = "getBssClientRssiThresholdDelta", summary = "margin of the RSSI floor",
        arguments = { { "VAP", "index" } }, result = { kind = "INTEGERS", outputs = { { "INT", "delta" } } } },
    [0x1000070] = { procedure = "wlan_set_bss_client_rssi_threshold_delta", operation = "setBssClientRssiThresholdDelta", summary = "set the margin of the RSSI floor",
        arguments = { { "VAP", "index" }, { "INT", "delta" } }, result = { kind = "CODE" } },
    [0x1000071] = { procedure = "wlan_get_radius_operator_name", operation = "getRadiusOperatorName", summary = "RADIUS operator name",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "name" } },
    [0x1000072] = { procedure = "wlan_set_radius_operator_name", operation = "setRadiusOperatorName", summary = "set the RADIUS operator name",
        arguments = { { "VAP", "index" }, { "TEXT", "name" } }, result = { kind = "CODE" } },
    [0x1000073] = { procedure = "wlan_get_radius_location_data", operation = "getRadiusLocationData", summary = "RADIUS location data",
        arguments = { { "VAP", "index" } }, result = { kind = "TEXT", name = "location" } },
    [0x1000074] = { procedure = "wlan_set_radius_location_data", operation = "setRadiusLocationData", summary = "set the RADIUS location data",
        arguments = { { "VAP", "index" }, { "TEXT", "location" } }, result = { kind = "CODE" } },
    [0x1000075] = { procedure = "wlan_set_channel_switch", operation = "setChannelSwitch", summary = "announce a channel switch to the stations, then make it",
        arguments = { { "VAP", "index" }, { "UINT", "type" }, { "UINT", "reserved_2" }, { "UINT", "channel" }, { "UINT", "reserved_4" }, { "UINT", "count" }, { "UINT", "reserved_6" }, { "UINT", "width" }, { "UINT", "reserved_8" }, { "UINT", "reserved_9" } }, result = { kind = "CODE" } },
}

-- Records as they lie in return_data, in the gateway's byte order.
local RECORDS = {
    wlan_basicStats_t = { name = "wlan_basicStats_t", size = 20, fields = {
        { name = "tx_bytes", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "bytes" },
        { name = "rx_bytes", kind = "NUMBER", offset = 4, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "bytes" },
        { name = "tx_packets", kind = "NUMBER", offset = 8, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "rx_packets", kind = "NUMBER", offset = 12, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "assoc_count", kind = "NUMBER", offset = 16, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "stations" },
    } },
    wlan_stats_t = { name = "wlan_stats_t", size = 44, fields = {
        { name = "word_0", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "rx_errors", kind = "NUMBER", offset = 4, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "tx_unicast", kind = "NUMBER", offset = 8, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "words_3_to_5", kind = "NUMBER", offset = 12, size = 12, elements = 3, element_size = 4,
            signed = false, unit = "" },
        { name = "tx_multicast", kind = "NUMBER", offset = 24, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "words_7_to_10", kind = "NUMBER", offset = 28, size = 16, elements = 4, element_size = 4,
            signed = false, unit = "" },
    } },
    wlan_device_t = { name = "wlan_device_t", size = 236, fields = {
        { name = "mac", kind = "TEXT", offset = 0, size = 18, elements = 1, element_size = 18,
            signed = false, unit = "" },
        { name = "ip", kind = "TEXT", offset = 18, size = 64, elements = 1, element_size = 64,
            signed = false, unit = "" },
        { name = "capabilities", kind = "TEXT", offset = 82, size = 45, elements = 1, element_size = 45,
            signed = false, unit = "" },
        { name = "field_4", kind = "TEXT", offset = 127, size = 17, elements = 1, element_size = 17,
            signed = false, unit = "" },
        { name = "connected_time", kind = "NUMBER", offset = 144, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "s" },
        { name = "state", kind = "NUMBER", offset = 148, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "tx_packets", kind = "NUMBER", offset = 152, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "tx_rate", kind = "NUMBER", offset = 156, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "max_rate", kind = "NUMBER", offset = 160, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "field_10", kind = "NUMBER", offset = 164, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "" },
        { name = "mc_tx_packets", kind = "NUMBER", offset = 168, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "uc_tx_packets", kind = "NUMBER", offset = 172, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "packets" },
        { name = "field_13", kind = "NUMBER", offset = 176, size = 2, elements = 1, element_size = 2,
            signed = false, unit = "" },
        { name = "padding_13", kind = "PADDING", offset = 178, size = 2, elements = 1, element_size = 2,
            signed = false, unit = "" },
        { name = "field_14", kind = "NUMBER", offset = 180, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "field_15", kind = "NUMBER", offset = 184, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "field_16", kind = "NUMBER", offset = 188, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "interface", kind = "NUMBER", offset = 192, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "padding_17", kind = "PADDING", offset = 193, size = 3, elements = 1, element_size = 3,
            signed = false, unit = "" },
        { name = "field_18", kind = "NUMBER", offset = 196, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "" },
        { name = "reserved", kind = "NUMBER", offset = 200, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "ssid", kind = "TEXT", offset = 204, size = 32, elements = 1, element_size = 32,
            signed = false, unit = "" },
    } },
    wlan_assoc_devices_table = { name = "wlan_assoc_devices_table", size = 7556, fields = {
        { name = "NumOfEntries", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "stations" },
        { name = "Devices", kind = "LIST", offset = 4, size = 7552, elements = 32, element_size = 236,
            signed = false, unit = "", record = "wlan_device_t", count = "NumOfEntries" },
    } },
    scan_entry = { name = "scan_entry", size = 128, fields = {
        { name = "bssid", kind = "MAC", offset = 0, size = 6, elements = 1, element_size = 6,
            signed = false, unit = "" },
        { name = "ssid", kind = "TEXT", offset = 6, size = 32, elements = 1, element_size = 32,
            signed = false, unit = "" },
        { name = "scan_octets_1", kind = "OCTETS", offset = 38, size = 12, elements = 1, element_size = 12,
            signed = false, unit = "" },
        { name = "scan_byte_1", kind = "NUMBER", offset = 50, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "scan_octets_2", kind = "OCTETS", offset = 51, size = 12, elements = 1, element_size = 12,
            signed = false, unit = "" },
        { name = "scan_byte_2", kind = "NUMBER", offset = 63, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "scan_octets_3", kind = "OCTETS", offset = 64, size = 15, elements = 1, element_size = 15,
            signed = false, unit = "" },
        { name = "scan_flag", kind = "NUMBER", offset = 79, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "scan_byte_3", kind = "NUMBER", offset = 80, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "scan_text_1", kind = "TEXT", offset = 81, size = 6, elements = 1, element_size = 6,
            signed = false, unit = "" },
        { name = "rssi", kind = "NUMBER", offset = 87, size = 1, elements = 1, element_size = 1,
            signed = true, unit = "dBm" },
        { name = "auth_mode", kind = "TEXT", offset = 88, size = 15, elements = 1, element_size = 15,
            signed = false, unit = "" },
        { name = "scan_text_2", kind = "TEXT", offset = 103, size = 8, elements = 1, element_size = 8,
            signed = false, unit = "" },
        { name = "wireless_mode", kind = "TEXT", offset = 111, size = 8, elements = 1, element_size = 8,
            signed = false, unit = "" },
        { name = "padding_1", kind = "PADDING", offset = 119, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "scan_value", kind = "NUMBER", offset = 120, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "" },
        { name = "scan_byte_4", kind = "NUMBER", offset = 124, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "" },
        { name = "padding_2", kind = "PADDING", offset = 125, size = 3, elements = 1, element_size = 3,
            signed = false, unit = "" },
    } },
    scan_table = { name = "scan_table", size = 8196, fields = {
        { name = "num_entries", kind = "NUMBER", offset = 0, size = 1, elements = 1, element_size = 1,
            signed = false, unit = "networks" },
        { name = "padding", kind = "PADDING", offset = 1, size = 3, elements = 1, element_size = 3,
            signed = false, unit = "" },
        { name = "entries", kind = "LIST", offset = 4, size = 8192, elements = 64, element_size = 128,
            signed = false, unit = "", record = "scan_entry", count = "num_entries" },
    } },
    wlan_sb_station_t = { name = "wlan_sb_station_t", size = 12, fields = {
        { name = "mac", kind = "MAC", offset = 0, size = 6, elements = 1, element_size = 6,
            signed = false, unit = "" },
        { name = "padding", kind = "PADDING", offset = 6, size = 2, elements = 1, element_size = 2,
            signed = false, unit = "" },
        { name = "timestamp", kind = "NUMBER", offset = 8, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "s" },
    } },
    wlan_sb_station_list_t = { name = "wlan_sb_station_list_t", size = 776, fields = {
        { name = "total", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "stations" },
        { name = "oldest", kind = "NUMBER", offset = 4, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "" },
        { name = "entries", kind = "LIST", offset = 8, size = 768, elements = 64, element_size = 12,
            signed = false, unit = "", record = "wlan_sb_station_t", count = "total" },
    } },
    wlan_5g_capable_table_t = { name = "wlan_5g_capable_table_t", size = 1536, fields = {
        { name = "count", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "stations" },
        { name = "entries", kind = "OCTETS", offset = 4, size = 1532, elements = 1, element_size = 1532,
            signed = false, unit = "" },
    } },
    wlan_2g_temp_blacklist_table_t = { name = "wlan_2g_temp_blacklist_table_t", size = 2048, fields = {
        { name = "entries", kind = "OCTETS", offset = 0, size = 2048, elements = 64, element_size = 32,
            signed = false, unit = "" },
    } },
    wlan_airtime_sta_t = { name = "wlan_airtime_sta_t", size = 32, fields = {
        { name = "index", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "mac", kind = "TEXT", offset = 4, size = 18, elements = 1, element_size = 18,
            signed = false, unit = "" },
        { name = "padding", kind = "PADDING", offset = 22, size = 2, elements = 1, element_size = 2,
            signed = false, unit = "" },
        { name = "weight", kind = "NUMBER", offset = 24, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "period", kind = "NUMBER", offset = 28, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
    } },
    wlan_airtime_sta_list_t = { name = "wlan_airtime_sta_list_t", size = 2052, fields = {
        { name = "count", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = true, unit = "stations" },
        { name = "stations", kind = "LIST", offset = 4, size = 2048, elements = 64, element_size = 32,
            signed = false, unit = "", record = "wlan_airtime_sta_t", count = "count" },
    } },
    wlan_atf_station_t = { name = "wlan_atf_station_t", size = 74, fields = {
        { name = "index", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "mac", kind = "TEXT", offset = 4, size = 18, elements = 1, element_size = 18,
            signed = false, unit = "" },
        { name = "name", kind = "TEXT", offset = 22, size = 32, elements = 1, element_size = 32,
            signed = false, unit = "" },
        { name = "share", kind = "NUMBER", offset = 54, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "%" },
        { name = "configured", kind = "NUMBER", offset = 58, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "%" },
        { name = "short_average", kind = "NUMBER", offset = 62, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "" },
        { name = "total", kind = "NUMBER", offset = 66, size = 8, elements = 1, element_size = 8,
            signed = false, unit = "" },
    } },
    wlan_atf_station_table_t = { name = "wlan_atf_station_table_t", size = 4740, fields = {
        { name = "count", kind = "NUMBER", offset = 0, size = 4, elements = 1, element_size = 4,
            signed = false, unit = "stations" },
        { name = "stations", kind = "LIST", offset = 4, size = 4736, elements = 64, element_size = 74,
            signed = false, unit = "", record = "wlan_atf_station_t", count = "count" },
    } },
}

-- Fields: what can be filtered, shown as a column and exported.

local proto = Proto("wlan_config", "Wi-Fi configuration")
proto.prefs.byte_order = Pref.enum("Byte order of records", 1,
    "The byte order of the gateway, in which it sends records (numbers outside records are always big endian)",
    { { 1, "little", 1 }, { 2, "big", 2 } }, true)

local SUCCESS = 0
local CALL, REPLY = 0, 1
local ACCEPTED, DENIED = 0, 1
local RPC_VERSION = 2
local SECOND_BLOCK = 0x1000000 -- where the second block of procedure numbers begins
local OPAQUE_AUTH_MAX = 400 -- bytes of credentials, and of a verifier, that RPC allows

local MESSAGE_TYPES = { [CALL] = "Call", [REPLY] = "Reply" }
local REPLY_STATES = { [ACCEPTED] = "accepted", [DENIED] = "denied" }
local ACCEPT_STATES = {
    [0] = "SUCCESS", [1] = "PROG_UNAVAIL", [2] = "PROG_MISMATCH", [3] = "PROC_UNAVAIL", [4] = "GARBAGE_ARGS",
    [5] = "SYSTEM_ERR"
}
local ACCEPT_TEXTS = {
    [1] = "the server does not have this program", [2] = "the server has other versions of this program",
    [3] = "the server does not have this procedure", [4] = "the server cannot decode the arguments",
    [5] = "the server met a system error"
}
local REJECT_STATES = { [0] = "RPC_MISMATCH", [1] = "AUTH_ERROR" }
local AUTH_STATES = {
    [1] = "AUTH_BADCRED", [2] = "AUTH_REJECTEDCRED", [3] = "AUTH_BADVERF", [4] = "AUTH_REJECTEDVERF",
    [5] = "AUTH_TOOWEAK"
}
local FLAVOURS = { [0] = "AUTH_NONE", [1] = "AUTH_SYS", [2] = "AUTH_SHORT", [3] = "AUTH_DH", [6] = "RPCSEC_GSS" }

local procedure_names = { [0] = "NULL" }
for number, row in pairs(PROCEDURES) do
    procedure_names[number] = row.procedure
end

local fields = {
    xid = ProtoField.uint32("wlan_config.xid", "XID", base.HEX),
    message_type = ProtoField.uint32("wlan_config.type", "Message type", base.DEC, MESSAGE_TYPES),
    rpc_version = ProtoField.uint32("wlan_config.rpc_version", "RPC version"),
    program = ProtoField.uint32("wlan_config.program", "Program", base.HEX),
    version = ProtoField.uint32("wlan_config.version", "Program version"),
    procedure = ProtoField.uint32("wlan_config.procedure", "Procedure", base.DEC, procedure_names),
    procedure_name = ProtoField.string("wlan_config.procedure_name", "Procedure name"),
    operation = ProtoField.string("wlan_config.operation", "Operation"),
    flavour = ProtoField.uint32("wlan_config.auth.flavor", "Flavor", base.DEC, FLAVOURS),
    auth_length = ProtoField.uint32("wlan_config.auth.length", "Length"),
    auth_body = ProtoField.bytes("wlan_config.auth.body", "Body"),
    reply_state = ProtoField.uint32("wlan_config.reply_status", "Reply status", base.DEC, REPLY_STATES),
    accept_state = ProtoField.uint32("wlan_config.accept_status", "Accept status", base.DEC, ACCEPT_STATES),
    reject_state = ProtoField.uint32("wlan_config.reject_status", "Reject status", base.DEC, REJECT_STATES),
    auth_state = ProtoField.uint32("wlan_config.auth_status", "Authentication status", base.DEC, AUTH_STATES),
    low = ProtoField.uint32("wlan_config.version_low", "Lowest version"),
    high = ProtoField.uint32("wlan_config.version_high", "Highest version"),
    return_code = ProtoField.int32("wlan_config.return_code", "Return code"),
    values_count = ProtoField.uint32("wlan_config.return_values.count", "Elements of return_values"),
    values_rest = ProtoField.bytes("wlan_config.return_values.rest", "Elements without a meaning"),
    value = ProtoField.uint32("wlan_config.return_values.value", "Element"),
    data_length = ProtoField.uint32("wlan_config.return_data.length", "Bytes of return_data"),
    data = ProtoField.bytes("wlan_config.return_data.bytes", "return_data"),
    length = ProtoField.uint32("wlan_config.text_length", "Length"),
    undecoded = ProtoField.bytes("wlan_config.undecoded", "Not decoded"),
    call_in = ProtoField.framenum("wlan_config.call_in", "Call in", base.NONE, frametype.REQUEST),
    reply_in = ProtoField.framenum("wlan_config.reply_in", "Reply in", base.NONE, frametype.RESPONSE),
    time = ProtoField.relative_time("wlan_config.time", "Time since the call")
}

local function problem(name, text, group, severity)
    return ProtoExpert.new("wlan_config.expert." .. name, text, group, severity)
end
local experts = {
    failure = problem("failure", "The server answered failure", expert.group.RESPONSE_CODE, expert.severity.NOTE),
    rpc_error = problem("rpc_error", "The call was refused", expert.group.RESPONSE_CODE, expert.severity.WARN),
    no_call = problem("no_call", "The call of this reply is not in the capture", expert.group.SEQUENCE,
        expert.severity.NOTE),
    no_reply = problem("no_reply", "The capture has no reply to this call", expert.group.SEQUENCE,
        expert.severity.WARN),
    repeated = problem("repeated", "Repeated call", expert.group.SEQUENCE, expert.severity.WARN),
    answered_again = problem("answered_again", "Another reply to one call", expert.group.SEQUENCE,
        expert.severity.NOTE),
    unreachable = problem("unreachable", "The datagram did not reach its receiver", expert.group.SEQUENCE,
        expert.severity.WARN),
    unassigned = problem("unassigned", "The server offers nothing under this number", expert.group.REQUEST_CODE,
        expert.severity.WARN),
    surplus = problem("surplus", "Bytes behind the end of the message", expert.group.PROTOCOL, expert.severity.NOTE),
    nul = problem("nul", "A NUL inside a text", expert.group.PROTOCOL, expert.severity.WARN),
    cut = problem("cut", "The capture has only the beginning of this datagram", expert.group.UNDECODED,
        expert.severity.NOTE),
    malformed = problem("malformed", "The datagram ends before its content does", expert.group.MALFORMED,
        expert.severity.ERROR),
    damaged = problem("damaged", "The result is none of this procedure", expert.group.MALFORMED, expert.severity.ERROR)
}

-- One field a name: wlan_config.arg.index serves every procedure that has an argument index. Numbers are 64 bits wide
-- there, so that signed and unsigned ones share a field. Where one procedure's text is called as another's number, the
-- text's field ends in _text.
local function is_text(kind)
    return kind == "TEXT"
end
local value_fields = {}
local function declare(prefix, used)
    for name, kinds in pairs(used) do
        local abbreviation = "wlan_config." .. prefix .. "." .. name
        if kinds.number then
            value_fields[prefix .. "." .. name .. ".number"] = ProtoField.int64(abbreviation, name)
        end
        if kinds.text then
            local text = kinds.number and abbreviation .. "_text" or abbreviation
            value_fields[prefix .. "." .. name .. ".text"] = ProtoField.string(text, name)
        end
    end
end
local function field_of(prefix, name, kind)
    return value_fields[prefix .. "." .. name .. (is_text(kind) and ".text" or ".number")]
end

local used_arguments, used_outputs = {}, {}
local function use(used, kind, name)
    used[name] = used[name] or {}
    used[name][is_text(kind) and "text" or "number"] = true
end
for _, row in pairs(PROCEDURES) do
    for _, argument in ipairs(row.arguments) do
        use(used_arguments, argument[1], argument[2])
    end
    for _, output in ipairs(row.result.outputs or {}) do
        use(used_outputs, output[1], output[2])
    end
    if row.result.kind == "TEXT" or row.result.kind == "INTEGERS64" then
        use(used_outputs, row.result.kind, row.result.name)
    end
end
declare("arg", used_arguments)
declare("result", used_outputs)

local NUMBER_FIELDS = {
    [1] = { [true] = ProtoField.int8, [false] = ProtoField.uint8 },
    [2] = { [true] = ProtoField.int16, [false] = ProtoField.uint16 },
    [4] = { [true] = ProtoField.int32, [false] = ProtoField.uint32 },
    [8] = { [true] = ProtoField.int64, [false] = ProtoField.uint64 }
}
local function record_field(abbreviation, field)
    if field.kind == "NUMBER" then
        return NUMBER_FIELDS[field.element_size][field.signed](abbreviation, field.name)
    elseif field.kind == "TEXT" then
        return ProtoField.string(abbreviation, field.name)
    elseif field.kind == "MAC" then
        return ProtoField.ether(abbreviation, field.name)
    end
    return ProtoField.bytes(abbreviation, field.name)
end
for name, record in pairs(RECORDS) do
    record.proto_field = ProtoField.none("wlan_config." .. name, name)
    value_fields[name] = record.proto_field
    for _, field in ipairs(record.fields) do
        if field.kind ~= "PADDING" and field.kind ~= "LIST" then
            field.proto_field = record_field("wlan_config." .. name .. "." .. field.name, field)
            value_fields[name .. "." .. field.name] = field.proto_field
        end
    end
end

local all_fields = {}
for _, group in ipairs({ fields, value_fields }) do
    for _, field in pairs(group) do
        all_fields[#all_fields + 1] = field
    end
end
proto.fields = all_fields
local all_experts = {}
for _, entry in pairs(experts) do
    all_experts[#all_experts + 1] = entry
end
proto.experts = all_experts

local icmp_type = Field.new("icmp.type")

-- Reading: a reader never goes beyond what was captured. Once something is missing it delivers nothing any more.

local function new_reader(tvb)
    return { tvb = tvb, at = 0, stop = tvb:len(), cut = tvb:len() < tvb:reported_len() }
end

local function left(reader)
    return reader.stop - reader.at
end

-- The next `count` bytes, at least one; nil when they are not there.
local function take(reader, count)
    if reader.failed or count > left(reader) then
        reader.failed = true
        return nil
    end
    local range = reader.tvb(reader.at, count)
    reader.at = reader.at + count
    return range
end

local function take_padding(reader, length)
    local padding = -length % 4
    return padding == 0 or take(reader, padding) ~= nil
end

-- The next number as a field of the tree: value and item, or nil.
local function take_number(reader, tree, field)
    local range = take(reader, 4)
    if not range then
        return nil
    end
    return range:uint(), tree:add(field, range)
end

local function say_what_is_missing(reader, tree)
    if reader.why then
        tree:add_proto_expert_info(experts.malformed, reader.why)
    elseif reader.failed then
        tree:add_proto_expert_info(reader.cut and experts.cut or experts.malformed)
    end
end

-- Ends the reading for another reason than the end of the bytes.
local function give_up(reader, why)
    reader.failed, reader.why = true, reader.why or why
end

-- Whatever is left, as bytes.
local function add_rest(reader, tree)
    if left(reader) == 0 then
        return nil
    end
    return tree:add(fields.undecoded, take(reader, left(reader)))
end

local function say_surplus(reader, tree, what)
    if reader.failed then
        return
    end
    local item = add_rest(reader, tree)
    if item then
        item:add_proto_expert_info(experts.surplus, "Bytes behind the end of the " .. what)
    end
end

-- What a character of UTF-8 looks like, by its first byte.
local CHARACTERS = {
    "^[\1-\127]+", "^[\194-\223][\128-\191]", "^\224[\160-\191][\128-\191]",
    "^[\225-\236\238\239][\128-\191][\128-\191]", "^\237[\128-\159][\128-\191]",
    "^\240[\144-\191][\128-\191][\128-\191]", "^[\241-\243][\128-\191][\128-\191][\128-\191]",
    "^\244[\128-\143][\128-\191][\128-\191]"
}
local REPLACEMENT = "\239\191\189"

local function character_at(text, at)
    for _, pattern in ipairs(CHARACTERS) do
        local character = text:match(pattern, at)
        if character then
            return character
        end
    end
end

-- A text up to its first NUL, with a replacement for each byte that is no UTF-8. (TvbRange:string does that as well,
-- but cuts what it returns to the number of bytes that were there before.)
local function text_of(range)
    local text = range:raw():match("^[^%z]*")
    local parts, at = {}, 1
    while at <= #text do
        local character = character_at(text, at)
        parts[#parts + 1] = character or REPLACEMENT
        at = at + (character and #character or 1)
    end
    return table.concat(parts)
end

local SUMMARY_TEXT_MAX = 60 -- bytes of a text in the info column

local function quoted(text)
    if #text > SUMMARY_TEXT_MAX then
        text = text:sub(1, SUMMARY_TEXT_MAX):gsub("[\192-\255][\128-\191]*$", "") .. "..."
    end
    return '"' .. text:gsub("%c", function(c) return ("\\x%02x"):format(c:byte()) end) .. '"'
end

-- A 32-bit number as a value of one of the shared fields.
local function add_value(tree, field, range, signed)
    local value = signed and range:int() or range:uint()
    return value, tree:add(field, range, Int64(value))
end

local UNSIGNED = { UINT = true, USHORT = true }

local function say_more(item, kind, value)
    if kind == "BOOL" then
        item:append_text(value == 0 and " (false)" or " (true)")
    elseif kind == "VAP" and value >= 1 and value <= VAPS then
        item:append_text(" (ath" .. value - 1 .. ")")
    elseif kind == "IGNORED" then
        item:append_text(" (not used by the server)")
    end
end

-- Calls.

local function add_text_argument(reader, tree, name, words)
    local before = reader.at
    local length_range = take(reader, 4)
    local length = length_range and length_range:uint()
    if not length then
        return
    end
    if length > left(reader) then -- before anything is made of it: it may claim 4 GiB
        tree:add(fields.length, length_range):prepend_text(name .. ": ")
        reader.failed = true
        return
    end
    local text, range = "", length_range
    if length > 0 then
        range = take(reader, length)
        text = text_of(range)
    end
    local complete = take_padding(reader, length)
    local item = tree:add(field_of("arg", name, "TEXT"), reader.tvb(before, reader.at - before), text)
    if range:raw():find("\0", 1, true) and length > 0 then
        item:add_proto_expert_info(experts.nul, "A NUL inside a text: the server takes what stands before it")
    end
    if complete then
        words[#words + 1] = name .. "=" .. quoted(text)
    end
end

local function add_argument(reader, tree, argument, words)
    local kind, name = argument[1], argument[2]
    if is_text(kind) then
        add_text_argument(reader, tree, name, words)
        return
    end
    local range = take(reader, 4)
    if range then
        local value, item = add_value(tree, field_of("arg", name, kind), range, not UNSIGNED[kind])
        say_more(item, kind, value)
        words[#words + 1] = name .. "=" .. value
    end
end

local function add_auth(reader, tree, title)
    local subtree = tree:add(title)
    take_number(reader, subtree, fields.flavour)
    local length = take_number(reader, subtree, fields.auth_length)
    if not length or length == 0 then
        return
    end
    if length > OPAQUE_AUTH_MAX then
        give_up(reader, ("%s of %u bytes: RPC allows %u"):format(title, length, OPAQUE_AUTH_MAX))
        return
    end
    local body = take(reader, length)
    if body then
        subtree:add(fields.auth_body, body)
        take_padding(reader, length)
    end
end

-- Numbers of the second block are written in hexadecimal, as everywhere.
local function number_text(number)
    return (number < SECOND_BLOCK and "%u" or "0x%X"):format(number)
end

-- What a call is, as far as its header goes: program, version, number and their row, if there is one.
local function name_call(tree, call)
    if call.program ~= PROGRAM then
        return ("program 0x%x procedure %s"):format(call.program, number_text(call.number))
    elseif call.version ~= VERSION then
        return ("version %u procedure %s"):format(call.version, number_text(call.number))
    elseif call.row then
        tree:add(fields.procedure_name, call.row.procedure):set_generated()
        local item = tree:add(fields.operation, call.row.operation):set_generated()
        item:append_text(" (" .. call.row.summary .. ")")
        return call.row.operation
    elseif call.number == 0 then
        tree:add(fields.procedure_name, "NULL"):set_generated()
        return "NULL"
    end
    return "procedure " .. number_text(call.number)
end

local function say_unassigned(tree, call)
    local text
    if call.program ~= PROGRAM then
        text = ("Program 0x%x is not the Wi-Fi configuration server"):format(call.program)
    elseif call.version ~= VERSION then
        text = ("The server has version %u only"):format(VERSION)
    elseif not call.row and call.number ~= 0 then
        text = "There is no procedure " .. number_text(call.number)
    end
    if text then
        tree:add_proto_expert_info(experts.unassigned, text)
    end
    return text ~= nil
end

-- The header up to the number, which is what makes a call ours.
local function read_call_header(reader, tree)
    local call = {}
    take_number(reader, tree, fields.rpc_version)
    call.program = take_number(reader, tree, fields.program)
    call.version = take_number(reader, tree, fields.version)
    call.number = take_number(reader, tree, fields.procedure)
    if call.number and call.program == PROGRAM and call.version == VERSION then
        call.row = PROCEDURES[call.number]
    end
    return call
end

local function dissect_call(reader, tree, call)
    local words = { "Call" }
    if not call.number then
        return words
    end
    words[2] = name_call(tree, call)
    add_auth(reader, tree, "Credentials")
    add_auth(reader, tree, "Verifier")
    if say_unassigned(tree, call) then
        add_rest(reader, tree)
        return words
    end
    if call.row then
        local subtree = #call.row.arguments > 0 and tree:add("Arguments")
        for _, argument in ipairs(call.row.arguments) do
            add_argument(reader, subtree, argument, words)
        end
    end
    say_surplus(reader, tree, "arguments")
    return words
end

-- Results.

local function little_endian()
    return proto.prefs.byte_order == 1
end

local function number_in(range)
    if range:len() == 1 then
        return range:uint()
    end
    return little_endian() and range:le_int() or range:int()
end

local function all_zero(range)
    return not range:raw():find("[^%z]")
end

local function with_unit(item, unit)
    if unit ~= "" then
        item:append_text(" " .. unit)
    end
end

-- One element of a field; a label replaces the name in front of the value of an element of an array.
local function add_element(tree, field, range, index)
    local item
    if field.kind == "TEXT" then
        item = tree:add(field.proto_field, range, text_of(range))
    elseif field.kind == "NUMBER" then
        item = tree:add_packet_field(field.proto_field, range, little_endian() and ENC_LITTLE_ENDIAN or ENC_BIG_ENDIAN)
    else
        item = tree:add(field.proto_field, range)
    end
    if field.elements > 1 then
        item:prepend_text("[" .. index .. "] ")
    end
    with_unit(item, field.unit)
end

local add_record

local function add_list(tree, field, range, count)
    if count > field.elements then
        tree:add_proto_expert_info(experts.damaged,
            ("%s has room for %u entries, not %d"):format(field.name, field.elements, count))
    end
    for index = 0, count - 1 do
        local at = index * field.element_size
        if at + field.element_size > range:len() then -- where the room ends, or what was captured of it
            return
        end
        add_record(tree, RECORDS[field.record], range(at, field.element_size),
            ("%s[%u]"):format(field.name, index))
    end
    if count < field.elements then
        tree:add(("%s: %u of %u entries"):format(field.name, math.max(count, 0), field.elements)):set_generated()
    end
end

-- Rows of octets are shown as long as they are not empty; of one row there is always one.
local function add_elements(tree, field, range)
    local empty = 0
    for index = 0, field.elements - 1 do
        local at = index * field.element_size
        if at + field.element_size > range:len() then
            return
        end
        local element = range(at, field.element_size)
        if field.kind == "OCTETS" and field.elements > 1 and all_zero(element) then
            empty = empty + 1
        else
            add_element(tree, field, element, index)
        end
    end
    if empty > 0 then
        tree:add(("%s: %u of %u entries"):format(field.name, field.elements - empty, field.elements)):set_generated()
    end
end

-- What of a field lies inside a range that may have been cut short; nil when nothing does.
local function part_of(range, offset, size)
    local length = math.min(size, range:len() - offset)
    return length > 0 and range(offset, length) or nil
end

-- How many entries of a list mean something: what the record says itself; nil when that was not captured.
local function count_of(record, list, range)
    for _, field in ipairs(record.fields) do
        if field.name == list.count then
            local part = part_of(range, field.offset, field.size)
            return part and part:len() == field.size and number_in(part) or nil
        end
    end
end

-- A record's memory image, or as much of it as the capture has. `label` stands before what names the record.
add_record = function(tree, record, range, label)
    local subtree = tree:add(record.proto_field, range)
    subtree:set_text(label .. " (" .. record.name .. ")")
    local named = false
    for _, field in ipairs(record.fields) do
        local part = part_of(range, field.offset, field.size)
        if not part then
            return
        end
        if field.kind == "LIST" then
            add_list(subtree, field, part, count_of(record, field, range) or 0)
        elseif field.kind ~= "PADDING" then
            add_elements(subtree, field, part)
            if not named and part:len() == field.size and (field.kind == "TEXT" or field.kind == "MAC") then
                named = true
                subtree:append_text(": " .. (field.kind == "MAC" and tostring(part:ether()) or quoted(text_of(part))))
            end
        end
    end
end

local function add_integers(tree, row, values, words)
    for i, output in ipairs(row.result.outputs) do
        if values[i] then
            local kind, name = output[1], output[2]
            local value, item = add_value(tree, field_of("result", name, kind), values[i], not UNSIGNED[kind])
            say_more(item, kind, value)
            words[#words + 1] = name .. "=" .. value
        end
    end
    return #row.result.outputs
end

local function add_integers64(tree, row, values, words)
    local field = field_of("result", row.result.name, "INTEGERS64")
    for i = 1, row.result.count do
        local low, high = values[2 * i - 1], values[2 * i]
        if low and high then
            local value = Int64(low:uint(), high:uint())
            local item = tree:add(field, low, value)
            item:set_len(8)
            if row.result.count > 1 then
                item:prepend_text("[" .. i - 1 .. "] ")
            else
                words[#words + 1] = row.result.name .. "=" .. tostring(value)
            end
        end
    end
    return 2 * row.result.count
end

-- The words of a record of numbers, each of which travels as an ordinary integer.
local function add_words(tree, row, values)
    local record, used = RECORDS[row.result.record], 0
    local subtree = tree:add(row.result.name .. " (" .. record.name .. ")")
    for _, field in ipairs(record.fields) do
        for index = 0, field.elements - 1 do
            used = used + 1
            if values[used] then
                local item = subtree:add(field.proto_field, values[used])
                if field.elements > 1 then
                    item:prepend_text("[" .. index .. "] ")
                end
                with_unit(item, field.unit)
            end
        end
    end
    return used
end

local function add_values_rest(tree, values, used, whole)
    if #values <= used then
        return
    end
    local first, last = values[used + 1], values[#values]
    local range = whole(first:offset(), last:offset() + 4 - first:offset())
    local item = tree:add(fields.values_rest, range)
    item:set_text(("Elements without a meaning: %u"):format(#values - used))
    if not all_zero(range) then
        item:append_text(", not all 0")
    end
end

-- The integers as ranges, as many as there are. The server sends four elements an integer: the integers in front and
-- nothing behind them.
local function read_values(reader, tree)
    local values = {}
    local count = take_number(reader, tree, fields.values_count)
    while count and #values < count do
        local range = take(reader, 4)
        if not range then
            break
        end
        values[#values + 1] = range
    end
    return values
end

local function add_values(tree, row, values, words, whole)
    local used = 0
    if row and row.result.kind == "INTEGERS64" then
        used = add_integers64(tree, row, values, words)
    elseif row and row.result.kind == "WORDS" then
        used = #values > 0 and add_words(tree, row, values) or 0
    elseif row and row.result.outputs then
        used = add_integers(tree, row, values, words)
    elseif not row then
        for _, value in ipairs(values) do
            tree:add(fields.value, value)
        end
        return
    end
    add_values_rest(tree, values, used, whole)
end

local function add_text(tree, name, range, whole, words)
    local text = range and text_of(range) or ""
    local item = tree:add(field_of("result", name, "TEXT"), range or whole, text)
    if range and not range:raw():find("\0", 1, true) then
        item:add_proto_expert_info(experts.damaged, "A text without an end")
    end
    words[#words + 1] = name .. "=" .. quoted(text)
end

local function add_image(tree, row, range, length, words)
    local record = RECORDS[row.result.record]
    if length ~= record.size then
        local item = tree:add(fields.data, range)
        item:add_proto_expert_info(experts.damaged,
            ("%u bytes of %s instead of %u"):format(length, record.name, record.size))
        return
    end
    add_record(tree, record, range, row.result.name)
    for _, field in ipairs(record.fields) do
        if field.kind == "LIST" then
            local count = count_of(record, field, range)
            words[#words + 1] = field.name .. "=" .. (count or "?")
        end
    end
end

-- return_data, or as much of it as there is.
local function add_data(reader, tree, row, words)
    local length, item = take_number(reader, tree, fields.data_length)
    if not length or length == 0 then
        return length
    end
    local available = math.min(length, left(reader))
    local range = available > 0 and take(reader, available) or nil
    if available < length then
        reader.failed = true
    else
        take_padding(reader, length)
    end
    if not range then
        return length
    end
    if row and row.result.kind == "TEXT" and available == length then
        add_text(tree, row.result.name, range, item, words)
    elseif row and row.result.kind == "IMAGE" then
        add_image(tree, row, range, length, words)
    else
        tree:add(fields.data, range)
    end
    return length
end

-- How many integers, and whether data, a result of this row has.
local function promised(row)
    local result = row.result
    if result.kind == "INTEGERS64" then
        return 2 * result.count, false
    elseif result.kind == "WORDS" then
        return RECORDS[result.record].size / 4, false
    end
    return #(result.outputs or {}), result.kind == "TEXT" or result.kind == "IMAGE"
end

local function check_payload(tree, row, code, values, length)
    local integers, data = promised(row)
    if code ~= SUCCESS and #values == 0 and length == 0 then
        return
    end
    if #values < integers or (data and length == 0) then
        tree:add_proto_expert_info(experts.damaged, "The result has less than this procedure answers")
    end
end

local function add_return_code(reader, tree, words)
    local range = take(reader, 4)
    if not range then
        return nil
    end
    local code = range:int()
    local item = tree:add(fields.return_code, range)
    if code == SUCCESS then
        item:append_text(" (success)")
    else
        item:append_text(" (failure)")
        item:add_proto_expert_info(experts.failure, ("The server answered failure (%d)"):format(code))
        words[#words + 1] = ("failure (%d)"):format(code)
    end
    return code
end

-- A result whose row is known, or, when the call is missing, as much as its shape tells.
local function dissect_result(reader, tree, row, words)
    if left(reader) == 0 and not row then
        return
    end
    local subtree = tree:add("Result")
    local code = add_return_code(reader, subtree, words)
    local bare
    if row then
        bare = row.result.kind == "CODE"
    else
        bare = left(reader) == 0
    end
    if bare or not code then
        if code == SUCCESS then
            words[#words + 1] = "success"
        end
        return
    end
    local whole = reader.tvb
    local values = read_values(reader, subtree)
    add_values(subtree, row, values, words, whole)
    local length = add_data(reader, subtree, row, words)
    if row and length and not reader.failed then
        check_payload(subtree, row, code, values, length)
    end
    if row and row.result.kind == "ACTION" and code == SUCCESS then
        words[#words + 1] = "success"
    end
end

-- Replies.

local function say_rpc_error(tree, words, name, text)
    words[#words + 1] = name
    tree:add_proto_expert_info(experts.rpc_error, name .. ": " .. text)
end

local function dissect_denied(reader, tree, words)
    local state = take_number(reader, tree, fields.reject_state)
    if state == 0 then
        take_number(reader, tree, fields.low)
        take_number(reader, tree, fields.high)
        say_rpc_error(tree, words, "RPC_MISMATCH", "the server speaks another version of RPC")
    elseif state == 1 then
        local why = take_number(reader, tree, fields.auth_state)
        say_rpc_error(tree, words, "AUTH_ERROR", "the server refuses the credentials"
            .. (AUTH_STATES[why] and ", " .. AUTH_STATES[why] or ""))
    elseif state then
        say_rpc_error(tree, words, "denied", ("for a reason that RPC does not know, %u"):format(state))
    end
end

local function dissect_accepted(reader, tree, call, words)
    add_auth(reader, tree, "Verifier")
    local state = take_number(reader, tree, fields.accept_state)
    if not state then
        return
    end
    if state ~= 0 then
        if state == 2 then
            take_number(reader, tree, fields.low)
            take_number(reader, tree, fields.high)
        end
        say_rpc_error(tree, words, ACCEPT_STATES[state] or ("accept status %u"):format(state),
            ACCEPT_TEXTS[state] or "a status that RPC does not know")
    elseif not call or call.row then
        dissect_result(reader, tree, call and call.row, words)
    else -- the null procedure, or something that another program answered
        words[#words + 1] = "success"
    end
end

local function dissect_reply(reader, tree, call)
    local words = { "Reply", call and name_call(tree, call) or "to a call that is not in the capture" }
    local state = take_number(reader, tree, fields.reply_state)
    if state == ACCEPTED then
        dissect_accepted(reader, tree, call, words)
    elseif state == DENIED then
        dissect_denied(reader, tree, words)
    elseif state then
        give_up(reader, ("The reply is neither accepted nor denied: %u"):format(state))
    end
    if state == ACCEPTED or state == DENIED then
        say_surplus(reader, tree, "reply")
    end
    return words
end

-- Calls and their replies belong together by their addresses, ports and XID. Frames are looked at in their order once;
-- what was found then serves whenever one is looked at again.

local waiting = {} -- calls by addresses, ports and XID, each a list in the order of the frames
local calls = {} -- by frame: the call in it
local answered = {} -- by frame: the call that the reply in it answers

function proto.init()
    waiting, calls, answered = {}, {}, {}
end

local function key_of(from, from_port, to, to_port, xid)
    return ("%s %u %s %u %u"):format(tostring(from), from_port, tostring(to), to_port, xid)
end

local function call_key(pinfo, xid)
    return key_of(pinfo.src, pinfo.src_port, pinfo.dst, pinfo.dst_port, xid)
end

local function reply_key(pinfo, xid)
    return key_of(pinfo.dst, pinfo.dst_port, pinfo.src, pinfo.src_port, xid)
end

local function remember_call(pinfo, xid, call, bytes)
    local key = call_key(pinfo, xid)
    local list = waiting[key] or {}
    local before = list[#list]
    call.frame, call.seconds, call.bytes = pinfo.number, pinfo.rel_ts, bytes
    if before and before.bytes == bytes then
        call.repeats = before.frame
    end
    list[#list + 1] = call
    waiting[key] = list
    calls[pinfo.number] = call
end

-- The first of these calls that has no reply yet; when all have one, the last.
local function find_call(pinfo, xid)
    local list = waiting[reply_key(pinfo, xid)] or {}
    for _, call in ipairs(list) do
        if not call.reply then
            return call
        end
    end
    return list[#list]
end

local function remember_reply(pinfo, xid)
    local call = find_call(pinfo, xid)
    if call then
        call.reply = call.reply or pinfo.number
        answered[pinfo.number] = call
    end
end

local function say_call_relations(tree, pinfo, call)
    if call.repeats then
        tree:add_proto_expert_info(experts.repeated,
            ("The call of frame %u again: repeated, and then carried out twice, or captured twice"):format(call.repeats))
    end
    if call.reply then
        tree:add(fields.reply_in, call.reply):set_generated()
    elseif pinfo.visited then
        tree:add_proto_expert_info(experts.no_reply)
    end
end

local function say_reply_relations(tree, pinfo, call)
    if not call then
        tree:add_proto_expert_info(experts.no_call)
        return
    end
    tree:add(fields.call_in, call.frame):set_generated()
    local passed = pinfo.rel_ts - call.seconds
    local seconds = math.floor(passed)
    tree:add(fields.time, NSTime(seconds, math.floor((passed - seconds) * 1e9 + 0.5))):set_generated()
    if call.reply ~= pinfo.number then
        tree:add_proto_expert_info(experts.answered_again,
            ("The call of frame %u was answered in frame %u already"):format(call.frame, call.reply))
    end
end

-- An ICMP error carries the beginning of the datagram that it is about: no call or reply that travels.
local function is_inside_icmp()
    return icmp_type() ~= nil
end

local function dissect_message(reader, pinfo, tree)
    local xid = take_number(reader, tree, fields.xid)
    local message_type = take_number(reader, tree, fields.message_type)
    local inside_icmp = is_inside_icmp()
    if message_type == CALL then
        local call = read_call_header(reader, tree)
        if inside_icmp then
            tree:add_proto_expert_info(experts.unreachable)
        elseif not calls[pinfo.number] then
            remember_call(pinfo, xid, call, reader.tvb():raw())
        end
        local words = dissect_call(reader, tree, call)
        if not inside_icmp then
            say_call_relations(tree, pinfo, calls[pinfo.number])
        end
        return words
    end
    if inside_icmp then
        tree:add_proto_expert_info(experts.unreachable)
    elseif not answered[pinfo.number] and not pinfo.visited then
        remember_reply(pinfo, xid)
    end
    local words = dissect_reply(reader, tree, answered[pinfo.number])
    if not inside_icmp then
        say_reply_relations(tree, pinfo, answered[pinfo.number])
    end
    return words
end

-- The first words of a call: XID, 0, the RPC version and our program.
local function is_call(tvb)
    return tvb:len() >= 16 and tvb(4, 4):uint() == CALL and tvb(8, 4):uint() == RPC_VERSION
end

local function is_call_of_ours(tvb)
    return is_call(tvb) and tvb(12, 4):uint() == PROGRAM
end

-- XID, 1 and a reply status.
local function is_reply(tvb)
    return tvb:len() >= 8 and tvb(4, 4):uint() == REPLY
end

function proto.dissector(tvb, pinfo, tree)
    if not is_call(tvb) and not is_reply(tvb) then
        return 0
    end
    local reader = new_reader(tvb)
    local subtree = tree:add(proto, tvb())
    local words = dissect_message(reader, pinfo, subtree)
    say_what_is_missing(reader, subtree)
    local text = table.concat(words, " ")
    if reader.failed then
        text = text .. (reader.cut and not reader.why and " [cut by the capture]" or " [malformed]")
    end
    pinfo.cols.protocol:set("WLAN_CONFIG")
    pinfo.cols.info:set(text)
    subtree:append_text(", " .. text)
    return tvb:len()
end

DissectorTable.get("udp.port"):add(PORT, proto)

-- The server's port is fixed, but a call is known by its program at any other, and its reply by the call's addresses.
local function dissect_elsewhere(tvb, pinfo, tree)
    if is_call_of_ours(tvb) then
        pinfo.conversation = proto
        proto.dissector(tvb, pinfo, tree)
        return true
    end
    return false
end
proto:register_heuristic("udp", dissect_elsewhere)
