/*
 * The records of the Wi-Fi configuration server's results, for programs in C (C99 or later) and C++.
 *
 * Printed by `vlk_rpc_wlan_config_client records`. Do not edit it: change server/record_fields.def and print it
 * again.
 *
 * A record is the content of return_data: the server's memory image of it, in the byte order of the gateway. On a
 * machine of the same byte order (most gateways are little endian) it can be copied out with memcpy; on another
 * every member of more than one byte has to be turned round. Sizes and offsets are the same for 32 and for 64
 * bits. Check return_data_len against the record's size before you copy.
 *
 * Texts end with a NUL unless they fill their member. What is behind the entries that a list's count counts is 0,
 * and so is padding.
 */
#ifndef WLAN_CONFIG_RECORDS_H
#define WLAN_CONFIG_RECORDS_H

#include <stddef.h>
#include <stdint.h>

#define WLAN_CONFIG_PROGRAM 0x20131337
#define WLAN_CONFIG_VERSION 1
#define WLAN_CONFIG_ADDRESS "192.168.254.254"
#define WLAN_CONFIG_PORT 60001 /* UDP */

/* The most that return_data carries, in bytes. */
#define WLAN_CONFIG_DATA_MAX 8256

/* As many entries as a record has room for. */
#define WLAN_ASSOC_DEVICES_MAX 32
#define WLAN_SCAN_ENTRIES_MAX 64
#define WLAN_SB_STATIONS_MAX 64
#define WLAN_AIRTIME_STAS_MAX 64
#define WLAN_ATF_STATIONS_MAX 64

/* What every result begins with: 0, or a failure. Treat every other value as a failure too. */
enum wlan_return_code {
    WLAN_RETURN_SUCCESS = 0,
    WLAN_RETURN_FAILURE = -1
};

/* The numbers of the procedures. */
enum wlan_config_procedure {
    PROC_wlan_load = 1, /* load the Wi-Fi driver */
    PROC_wlan_init = 2, /* bring the Wi-Fi interfaces up */
    PROC_wlan_reset = 3, /* take the Wi-Fi interfaces down and unload the driver */
    PROC_wlan_get_number_of_entries = 4, /* number of VAPs */
    PROC_wlan_add_entry = 5, /* accepted without effect */
    PROC_wlan_del_entry = 6, /* accepted without effect */
    PROC_wlan_get_bssid_port = 7, /* switch port and VAP index of a BSSID */
    PROC_wlan_associate_vlan = 8, /* bind the VAP with this BSSID to a VLAN */
    PROC_wlan_get_enable = 9, /* whether the VAP is switched on */
    PROC_wlan_set_enable = 10, /* switch the VAP on or off */
    PROC_wlan_get_status = 11, /* Up, Disable or Error */
    PROC_wlan_get_name = 12, /* interface name of the VAP */
    PROC_wlan_get_bssid = 13, /* BSSID of the VAP */
    PROC_wlan_get_max_bitrate = 14, /* current bit rate in Mbit/s */
    PROC_wlan_set_max_bitrate = 15, /* accepted without effect */
    PROC_wlan_get_channel = 16, /* configured channel, 0 for automatic */
    PROC_wlan_set_channel = 17, /* set the channel of the VAP's radio */
    PROC_wlan_get_auto_channel_enable = 18, /* whether the radio chooses its channel itself */
    PROC_wlan_set_auto_channel_enable = 19, /* let the radio choose its channel, or go back to a fixed one */
    PROC_wlan_get_ssid = 21, /* SSID of the VAP */
    PROC_wlan_set_ssid = 22, /* set the SSID of the VAP */
    PROC_wlan_get_beacon_type = 23, /* security family: None, Basic, WPA, 11i or WPAand11i */
    PROC_wlan_set_beacon_type = 24, /* set the security family */
    PROC_wlan_get_mac_address_control_enabled = 25, /* whether the MAC list is enforced */
    PROC_wlan_set_mac_address_control_enabled = 26, /* enforce the MAC list or not */
    PROC_wlan_get_standard = 27, /* letters of the 802.11 standard of the VAP's radio */
    PROC_wlan_get_wep_key_index = 28, /* default WEP key */
    PROC_wlan_set_wep_key_index = 29, /* choose the default WEP key */
    PROC_wlan_get_wep_key_passphrase = 30, /* WEP key at the default key index */
    PROC_wlan_set_wep_key_passphrase = 31, /* accepted without effect */
    PROC_wlan_get_encryption_level = 32, /* WEP strength: 40-bit or 104-bit */
    PROC_wlan_get_basic_encryption_modes = 33, /* None, WEPEncryption or NOTWEP */
    PROC_wlan_set_basic_encryption_modes = 34, /* switch between WEP and no encryption */
    PROC_wlan_get_basic_authentication_modes = 35, /* authentication of an open or WEP network */
    PROC_wlan_set_basic_authentication_modes = 36, /* set the authentication of an open or WEP network */
    PROC_wlan_get_wpa_encryption_modes = 37, /* WPA cipher: TKIPEncryption, AESEncryption or both */
    PROC_wlan_set_wpa_encryption_modes = 38, /* set the WPA cipher */
    PROC_wlan_get_wpa_authentication_modes = 39, /* WPA generation and key management */
    PROC_wlan_set_wpa_authentication_modes = 40, /* set WPA generation and key management */
    PROC_wlan_get_possible_channels = 41, /* channels the radio can use */
    PROC_wlan_get_basic_data_transmit_rates = 42, /* basic rate set in Mbit/s */
    PROC_wlan_set_basic_data_transmit_rates = 43, /* accepted without effect */
    PROC_wlan_get_operational_data_transmit_rates = 44, /* operational rate set in Mbit/s */
    PROC_wlan_set_operational_data_transmit_rates = 45, /* accepted without effect */
    PROC_wlan_get_possible_data_transmit_rates = 46, /* rates the radio can send with */
    PROC_wlan_get_ssid_advertisement_enabled = 47, /* whether beacons carry the SSID */
    PROC_wlan_set_ssid_advertisement_enabled = 48, /* advertise or hide the SSID */
    PROC_wlan_get_radio_enabled = 49, /* whether the VAP's radio is switched on */
    PROC_wlan_set_radio_enabled = 50, /* switch the VAP's radio on or off */
    PROC_wlan_get_transmit_power_supported = 51, /* power levels in percent */
    PROC_wlan_get_transmit_power = 52, /* transmit power */
    PROC_wlan_set_transmit_power = 53, /* set the transmit power */
    PROC_wlan_get_auto_rate_fallback_enable = 54, /* whether the rate is chosen automatically */
    PROC_wlan_set_auto_rate_fallback_enable = 55, /* automatic or fixed rate */
    PROC_wlan_get_basic_stats = 56, /* bytes, packets and station count of the VAP */
    PROC_wlan_get_stats = 57, /* error, unicast and multicast counters of the VAP */
    PROC_wlan_get_assoc_devices_num = 58, /* number of associated stations */
    PROC_wlan_get_assoc_device = 59, /* one associated station by position */
    PROC_wlan_get_wep_key = 60, /* one WEP key */
    PROC_wlan_set_wep_key = 61, /* set one WEP key, in hexadecimal */
    PROC_wlan_get_pre_shared_key = 62, /* WPA pre-shared key */
    PROC_wlan_set_pre_shared_key = 63, /* set the WPA pre-shared key as it stands */
    PROC_wlan_get_key_passphrase = 64, /* WPA passphrase */
    PROC_wlan_set_key_passphrase = 65, /* set the WPA passphrase */
    PROC_wlan_get_wmm_supported = 66, /* whether WMM is supported */
    PROC_wlan_get_wmm_uaspd_supported = 67, /* whether U-APSD is supported */
    PROC_wlan_get_wmm_enable = 68, /* whether WMM is on */
    PROC_wlan_set_wmm_enable = 69, /* switch WMM on or off */
    PROC_wlan_get_wmm_uaspd_enable = 70, /* whether U-APSD is on */
    PROC_wlan_set_wmm_uaspd_enable = 71, /* switch U-APSD on or off */
    PROC_wlan_get_og_aifsn = 72, /* AIFSN of an access category of the AP */
    PROC_wlan_set_og_aifsn = 73, /* set the AIFSN of an access category of the AP */
    PROC_wlan_get_og_ecw_min = 74, /* ECWmin of an access category of the AP */
    PROC_wlan_set_og_ecw_min = 75, /* set the ECWmin of an access category of the AP */
    PROC_wlan_get_og_ecw_max = 76, /* ECWmax of an access category of the AP */
    PROC_wlan_set_og_ecw_max = 77, /* set the ECWmax of an access category of the AP */
    PROC_wlan_get_og_tx_op = 78, /* TXOP limit of an access category of the AP */
    PROC_wlan_set_og_tx_op = 79, /* set the TXOP limit of an access category of the AP */
    PROC_wlan_get_og_ack_policy = 80, /* ACK policy of an access category of the AP */
    PROC_wlan_set_og_ack_policy = 81, /* set the ACK policy of an access category of the AP */
    PROC_wlan_get_ic_aifsn = 82, /* AIFSN of an access category of the BSS */
    PROC_wlan_set_ic_aifsn = 83, /* set the AIFSN of an access category of the BSS */
    PROC_wlan_get_ic_ecw_min = 84, /* ECWmin of an access category of the BSS */
    PROC_wlan_set_ic_ecw_min = 85, /* set the ECWmin of an access category of the BSS */
    PROC_wlan_get_ic_ecw_max = 86, /* ECWmax of an access category of the BSS */
    PROC_wlan_set_ic_ecw_max = 87, /* set the ECWmax of an access category of the BSS */
    PROC_wlan_get_wps_enable = 88, /* whether WPS is on */
    PROC_wlan_set_wps_enable = 89, /* switch WPS on or off */
    PROC_wlan_get_wps_device_name = 90, /* WPS friendly name */
    PROC_wlan_get_wps_device_password = 91, /* AP PIN */
    PROC_wlan_set_wps_device_password = 92, /* set the AP PIN */
    PROC_wlan_get_wps_uuid = 93, /* WPS UUID */
    PROC_wlan_get_wps_version = 94, /* WPS version */
    PROC_wlan_get_wps_config_methods_supported = 95, /* WPS configuration methods supported */
    PROC_wlan_get_wps_config_methods_enabled = 96, /* WPS configuration methods enabled */
    PROC_wlan_set_wps_config_methods_enabled = 97, /* enable WPS configuration methods */
    PROC_wlan_get_wps_setup_locked_state = 98, /* whether the AP setup is locked, as text */
    PROC_wlan_get_wps_setup_lock = 99, /* whether the AP setup is locked */
    PROC_wlan_set_wps_setup_lock = 100, /* lock or unlock the AP setup */
    PROC_wlan_get_wps_configuration_state = 101, /* Configured or Not configured */
    PROC_wlan_get_wps_last_configuration_error = 102, /* last WPS configuration error */
    PROC_wlan_get_wps_registrar_entries_num = 103, /* number of WPS registrars */
    PROC_wlan_get_wps_registrar_established = 104, /* whether a WPS registrar is established */
    PROC_wlan_get_wps_registrar_enabled = 105, /* whether a WPS registrar is enabled */
    PROC_wlan_set_wps_registrar_enabled = 106, /* accepted without effect */
    PROC_wlan_get_wps_registrar_uuid = 107, /* UUID of a WPS registrar */
    PROC_wlan_get_wps_registrar_device_name = 108, /* device name of a WPS registrar */
    PROC_wlan_set_mac_address_control_clear = 109, /* empty the MAC list */
    PROC_wlan_set_mac_address_control_add = 110, /* add a station to the MAC list */
    PROC_wlan_set_mac_address_control_delete = 111, /* remove a station from the MAC list */
    PROC_wlan_get_mac_address_control_list = 112, /* the MAC list, MAC=NAME; by entry */
    PROC_wlan_get_mac_address_control_count = 113, /* number of entries in the MAC list */
    PROC_wlan_set_standard = 114, /* set the 802.11 standard of the VAP's radio */
    PROC_wlan_set_wep_encryption_level = 115, /* accepted without effect */
    PROC_wlan_get_wmm_ic_tx_op = 116, /* TXOP limit of an access category of the BSS */
    PROC_wlan_set_wmm_ic_tx_op = 117, /* set the TXOP limit of an access category of the BSS */
    PROC_wlan_get_wmm_ic_ack_policy = 118, /* ACK policy of an access category of the BSS */
    PROC_wlan_set_wmm_ic_ack_policy = 119, /* set the ACK policy of an access category of the BSS */
    PROC_wlan_set_wps_cancel = 120, /* cancel a WPS exchange */
    PROC_wlan_set_wps_uuid = 121, /* set the WPS UUID */
    PROC_wlan_get_country_code = 122, /* regulatory country */
    PROC_wlan_set_country_code = 123, /* set the regulatory country */
    PROC_wlan_get_bg_protection = 124, /* whether 802.11b/g protection is on */
    PROC_wlan_set_bg_protection = 125, /* switch 802.11b/g protection for the radio's VAPs */
    PROC_wlan_get_beacon_interval = 126, /* beacon interval in TU */
    PROC_wlan_set_beacon_interval = 127, /* set the beacon interval in TU */
    PROC_wlan_get_dtim_period = 128, /* DTIM period in beacons */
    PROC_wlan_set_dtim_period = 129, /* set the DTIM period in beacons */
    PROC_wlan_get_tx_preamble = 130, /* preamble setting */
    PROC_wlan_set_tx_preamble = 131, /* set the preamble for the radio's VAPs */
    PROC_wlan_get_rts_threshold = 132, /* RTS threshold in bytes */
    PROC_wlan_set_rts_threshold = 133, /* set the RTS threshold in bytes */
    PROC_wlan_get_frag_threshold = 134, /* fragmentation threshold in bytes */
    PROC_wlan_set_frag_threshold = 135, /* set the fragmentation threshold in bytes */
    PROC_wlan_get_short_slot = 136, /* short slot setting */
    PROC_wlan_set_short_slot = 137, /* remember the short slot setting */
    PROC_wlan_get_tx_burst = 138, /* whether transmit bursts are on */
    PROC_wlan_set_tx_burst = 139, /* switch transmit bursts on or off */
    PROC_wlan_get_short_retry_limit = 140, /* short retry limit */
    PROC_wlan_set_short_retry_limit = 141, /* remember the short retry limit */
    PROC_wlan_get_long_retry_limit = 142, /* long retry limit */
    PROC_wlan_set_long_retry_limit = 143, /* remember the long retry limit */
    PROC_wlan_get_ht_mcs = 144, /* fixed MCS plus 2, 0 for automatic */
    PROC_wlan_set_ht_mcs = 145, /* fix the MCS (value minus 2), 0 or 1 for automatic */
    PROC_wlan_get_channel_bw = 146, /* channel width, 0 for 20 MHz to 3 for 80 MHz */
    PROC_wlan_set_channel_bw = 147, /* set the channel width, 0 for 20 MHz to 3 for 80 MHz */
    PROC_wlan_get_ht_mode = 148, /* whether only 802.11n stations are admitted */
    PROC_wlan_set_ht_mode = 149, /* admit only 802.11n stations or all */
    PROC_wlan_get_guard_interval = 150, /* guard interval, 0 for short and 1 for long */
    PROC_wlan_set_guard_interval = 151, /* set the guard interval, 0 for short and 1 for long */
    PROC_wlan_get_ams_du = 152, /* whether A-MSDU aggregation is on */
    PROC_wlan_set_ams_du = 153, /* switch A-MSDU aggregation */
    PROC_wlan_get_ba_decline = 154, /* whether block ACK requests are declined */
    PROC_wlan_set_ba_decline = 155, /* decline block ACK requests or not */
    PROC_wlan_get_block_ack = 156, /* whether block ACK aggregation is on */
    PROC_wlan_set_block_ack = 157, /* switch block ACK aggregation */
    PROC_wlan_get_n_protection = 158, /* 802.11n protection setting */
    PROC_wlan_set_n_protection = 159, /* remember the 802.11n protection setting */
    PROC_wlan_get_wpa_group_reauth_interval = 160, /* WPA group rekey interval in seconds */
    PROC_wlan_set_wpa_group_reauth_interval = 161, /* set the WPA group rekey interval in seconds */
    PROC_wlan_get_wpa_reauth_interval = 162, /* WPA rekey interval in seconds */
    PROC_wlan_set_wpa_reauth_interval = 163, /* set the WPA rekey interval in seconds */
    PROC_wlan_get_wpa_preauth = 164, /* whether WPA2 pre-authentication is on */
    PROC_wlan_set_wpa_preauth = 165, /* switch WPA2 pre-authentication */
    PROC_wlan_get_wmm_apsd = 166, /* whether WMM power save is on */
    PROC_wlan_set_wmm_apsd = 167, /* switch WMM power save */
    PROC_wlan_get_wps_mode = 168, /* stored WPS mode, 0 off and 2 on */
    PROC_wlan_set_wps_mode = 169, /* switch WPS on or off */
    PROC_wlan_get_wps_model_name = 170, /* WPS model name */
    PROC_wlan_set_wps_model_name = 171, /* set the WPS model name */
    PROC_wlan_get_wps_result_status = 172, /* what the authenticator says of the last WPS exchange */
    PROC_wlan_get_wps_status = 173, /* what the authenticator says of WPS */
    PROC_wlan_get_wps_config_timeout = 174, /* WPS configuration timeout */
    PROC_wlan_set_wps_config_timeout = 175, /* set the WPS configuration timeout */
    PROC_wlan_set_wps_pushbutton = 176, /* start a WPS push-button exchange */
    PROC_wlan_set_wps_pinstart = 177, /* start a WPS exchange with a station's PIN */
    PROC_wlan_set_restore_defaults = 178, /* factory settings: 0 for 5 GHz, 1 for 2.4 GHz, 2 for all */
    PROC_wlan_get_custom_ssid_str = 179, /* SSID of the VAP */
    PROC_wlan_set_custom_ssid_str = 180, /* set the SSID of the VAP */
    PROC_wlan_set_wps_oob = 181, /* mark the AP as not configured by WPS */
    PROC_wlan_set_bss_isolate = 182, /* isolate BSSs from each other or not */
    PROC_wlan_get_bss_isolate = 183, /* whether BSSs are isolated from each other */
    PROC_wlan_set_station_isolate = 184, /* isolate the VAP's stations from each other or not */
    PROC_wlan_get_station_isolate = 185, /* whether the VAP's stations are isolated from each other */
    PROC_wlan_get_side_band = 186, /* side band setting */
    PROC_wlan_set_side_band = 187, /* remember the side band setting */
    PROC_wlan_get_radius_server_address = 188, /* RADIUS server address */
    PROC_wlan_set_radius_server_address = 189, /* set the RADIUS server address */
    PROC_wlan_get_radius_server_port = 190, /* RADIUS server port */
    PROC_wlan_set_radius_server_port = 191, /* set the RADIUS server port */
    PROC_wlan_get_radius_server_key = 192, /* RADIUS shared secret */
    PROC_wlan_set_radius_server_key = 193, /* set the RADIUS shared secret */
    PROC_wlan_get_radius_reauth_interval = 194, /* RADIUS re-authentication period in seconds */
    PROC_wlan_set_radius_reauth_interval = 195, /* set the RADIUS re-authentication period in seconds */
    PROC_wlan_get_ht_tx_stream = 196, /* transmit streams */
    PROC_wlan_set_ht_tx_stream = 197, /* set the transmit streams, 1 to 3 */
    PROC_wlan_get_ht_rx_stream = 198, /* receive streams */
    PROC_wlan_set_ht_rx_stream = 199, /* set the receive streams, 1 to 3 */
    PROC_wlan_get_ht_stbc = 200, /* whether STBC is on */
    PROC_wlan_set_ht_stbc = 201, /* switch STBC */
    PROC_wlan_get_ht_rdg = 202, /* reverse direction grant setting */
    PROC_wlan_set_ht_rdg = 203, /* remember the reverse direction grant setting */
    PROC_wlan_get_extension_channel = 204, /* extension channel: 0 below, 1 above, 2 none stated */
    PROC_wlan_set_extension_channel = 205, /* set the extension channel: 0 below, 1 above, 2 none stated */
    PROC_wlan_restart_all = 206, /* bring the Wi-Fi interfaces up again */
    PROC_wlan_restart = 207, /* bring the Wi-Fi interfaces up again */
    PROC_wlan_get_ieee80211h_enable = 208, /* whether 802.11h is on */
    PROC_wlan_set_ieee80211h_enable = 209, /* switch 802.11h */
    PROC_wlan_get_igmp_snooping = 210, /* whether IGMP snooping is on */
    PROC_wlan_set_igmp_snooping = 211, /* switch IGMP snooping */
    PROC_wlan_get_max_station_num = 212, /* most stations the VAP admits */
    PROC_wlan_set_max_station_num = 213, /* set the most stations the VAP admits */
    PROC_wlan_get_implicit_beamforming_enable = 214, /* whether implicit beamforming is on */
    PROC_wlan_set_implicit_beamforming_enable = 215, /* switch implicit beamforming (index 0 only) */
    PROC_wlan_get_current_channel = 216, /* channel the radio is on now */
    PROC_wlan_get_ap_scan_num_of_entries = 217, /* number of networks found */
    PROC_wlan_get_ap_scan_result = 218, /* the networks found, strongest first */
    PROC_wlan_ap_scan = 219, /* start a site survey */
    PROC_wlan_ap_auto_channel_select = 220, /* choose the channel automatically now */
    PROC_wlan_get_assoc_devices_table = 221, /* the associated stations */
    PROC_wlan_get_assoc_devices_table_num_of_entries = 222, /* number of associated stations */
    PROC_wlan_get_ap_scan_status = 223, /* state of the site survey, 3 when complete */
    PROC_wlan_set_bss_weight = 227, /* set the airtime weight of the BSS */
    PROC_wlan_get_bss_weight = 228, /* airtime weight of the BSS */
    PROC_wlan_get_channel_statistics = 238, /* channel utilisation, own activity and busy time in percent */
    PROC_wlan_get_channel_noise_floor = 239, /* noise floor in dBm */
    PROC_wlan_get_radio_tx_packets = 240, /* packets the radio has sent */
    PROC_wlan_get_radio_rx_packets = 241, /* packets the radio has received */
    PROC_wlan_get_retransmission_metric = 242, /* retry rate in percent */
    PROC_wlan_set_rad_stat_enable = 243, /* start or stop the radio statistics collector */
    PROC_wlan_get_rssi_table = 244, /* RSSI histogram of the radio */
    PROC_wlan_get_acct_server_address = 246, /* accounting server address */
    PROC_wlan_set_acct_server_address = 247, /* set the accounting server address */
    PROC_wlan_get_acct_server_port = 248, /* accounting server port */
    PROC_wlan_set_acct_server_port = 249, /* set the accounting server port */
    PROC_wlan_get_acct_server_key = 250, /* accounting server secret */
    PROC_wlan_set_acct_server_key = 251, /* set the accounting server secret as it stands */
    PROC_wlan_get_max_bandwidth = 0x1000001, /* widest width on a channel: 1 for 20 MHz, 2 for 40, 4 for 80 */
    PROC_wlan_check_thread_queue = 0x1000002, /* start the parked lifecycle request */
    PROC_wlan_get_sta_assoc_rssi_thresh = 0x100000D, /* weakest RSSI at which stations may associate */
    PROC_wlan_set_sta_assoc_rssi_thresh = 0x100000E, /* set the weakest RSSI at which stations may associate */
    PROC_wlan_pci_reconnect = 0x100000F, /* reset the Wi-Fi chips through the PCI bus */
    PROC_wlan_get_dot11u_enable = 0x1000010, /* has not been implemented */
    PROC_wlan_set_dot11u_enable = 0x1000011, /* has not been implemented */
    PROC_wlan_get_dot11u_attribute = 0x1000012, /* has not been implemented */
    PROC_wlan_set_dot11u_attribute = 0x1000013, /* has not been implemented */
    PROC_wlan_set_airtime_enable = 0x1000014, /* switch airtime fairness of a radio (VAP 1 or 9) */
    PROC_wlan_get_airtime_enable = 0x1000015, /* whether airtime fairness is on (VAP 1 or 9) */
    PROC_wlan_set_bs_enable = 0x1000018, /* choose the band steering method, 0 to 3 */
    PROC_wlan_get_bs_enable = 0x1000019, /* band steering method */
    PROC_wlan_set_bs_2g_rssi_low_limit_threshold = 0x100001A, /* set the RSSI below which 5 GHz stations go to 2.4 GHz, in dBm */
    PROC_wlan_get_bs_2g_rssi_low_limit_threshold = 0x100001B, /* RSSI below which 5 GHz stations go to 2.4 GHz, in dBm */
    PROC_wlan_set_bs_5g_rssi_good_limit_threshold = 0x100001C, /* set the RSSI above which 2.4 GHz stations go to 5 GHz, in dBm */
    PROC_wlan_get_bs_5g_rssi_good_limit_threshold = 0x100001D, /* RSSI above which 2.4 GHz stations go to 5 GHz, in dBm */
    PROC_wlan_set_bs_inactivity_steer_time = 0x100001E, /* set the inactivity times before steering, in seconds */
    PROC_wlan_get_bs_inactivity_steer_time = 0x100001F, /* inactivity times before steering, in seconds */
    PROC_wlan_set_band_steer_util_sample_rate = 0x1000020, /* set the sampling interval of the medium utilisation */
    PROC_wlan_get_band_steer_util_sample_rate = 0x1000021, /* sampling interval of the medium utilisation */
    PROC_wlan_set_band_steer_util_avg_period = 0x1000022, /* set the averaging period of the medium utilisation */
    PROC_wlan_get_band_steer_util_avg_period = 0x1000023, /* averaging period of the medium utilisation */
    PROC_wlan_set_band_steer_defer_period = 0x1000024, /* set the time a station is left alone after steering */
    PROC_wlan_get_band_steer_defer_period = 0x1000025, /* time a station is left alone after steering */
    PROC_wlan_set_band_steer_assoc_low_rssi_threshold = 0x1000026, /* set the weakest RSSI of a steering target, in dBm */
    PROC_wlan_get_band_steer_assoc_low_rssi_threshold = 0x1000027, /* weakest RSSI of a steering target, in dBm */
    PROC_wlan_set_band_steer_time = 0x1000028, /* set the time allowed for one steering, 0 to 20 seconds */
    PROC_wlan_get_band_steer_time = 0x1000029, /* time allowed for one steering, in seconds */
    PROC_wlan_set_band_steer_count = 0x100002A, /* set how often authentication is refused, 0 to 3 */
    PROC_wlan_get_band_steer_count = 0x100002B, /* how often authentication is refused */
    PROC_wlan_set_advairtime_bssweight_enable = 0x100002C, /* switch airtime weights of BSSs */
    PROC_wlan_get_advairtime_bssweight_enable = 0x100002D, /* whether BSSs have airtime weights */
    PROC_wlan_set_advairtime_algorithm_type = 0x100002E, /* choose the airtime algorithm */
    PROC_wlan_get_advairtime_algorithm_type = 0x100002F, /* airtime algorithm */
    PROC_wlan_set_advairtime_staweight_enable = 0x1000030, /* switch airtime weights of stations */
    PROC_wlan_get_advairtime_staweight_enable = 0x1000031, /* whether stations have airtime weights */
    PROC_wlan_set_advairtime_wait_threshold = 0x1000032, /* accepted without effect */
    PROC_wlan_get_advairtime_wait_threshold = 0x1000033, /* answered without a value */
    PROC_wlan_set_advairtime_traffic_direction = 0x1000034, /* choose the traffic direction that airtime counts */
    PROC_wlan_get_advairtime_traffic_direction = 0x1000035, /* traffic direction that airtime counts */
    PROC_wlan_set_advairtime_application_atm_enable = 0x1000036, /* switch airtime management by application */
    PROC_wlan_get_advairtime_application_atm_enable = 0x1000037, /* whether airtime is managed by application */
    PROC_wlan_set_advairtime_distribution_type = 0x1000038, /* choose how spare airtime is distributed */
    PROC_wlan_get_advairtime_distribution_type = 0x1000039, /* how spare airtime is distributed */
    PROC_wlan_set_advairtime_sta_weight_destroy_all = 0x100003A, /* remove all airtime weights of stations */
    PROC_wlan_get_advairtime_sta_entry_count = 0x100003B, /* number of stations with an airtime weight */
    PROC_wlan_set_advairtime_sta_entry_add = 0x100003C, /* give a station an airtime weight */
    PROC_wlan_get_radius_server_pmkcaching = 0x100003D, /* whether PMKs are cached */
    PROC_wlan_set_radius_server_pmkcaching = 0x100003E, /* switch PMK caching */
    PROC_wlan_get_radius_server_pmklifetime = 0x100003F, /* PMK lifetime in seconds */
    PROC_wlan_set_radius_server_pmklifetime = 0x1000040, /* set the PMK lifetime in seconds */
    PROC_wlan_set_advairtime_sta_entry_del = 0x1000041, /* take the airtime weight from a station */
    PROC_wlan_get_advairtime_sta_mac = 0x1000042, /* MAC of the station with this number */
    PROC_wlan_get_advairtime_sta_weight = 0x1000043, /* airtime weight of the station with this number */
    PROC_wlan_set_advairtime_sta_period = 0x1000044, /* set the airtime period of the station with this number */
    PROC_wlan_get_advairtime_sta_period = 0x1000045, /* airtime period of the station with this number */
    PROC_wlan_get_advairtime_sta_list = 0x1000046, /* stations with an airtime weight */
    PROC_wlan_query_wlan_info = 0x1000049, /* send the airtime of every station to the system log */
    PROC_wlan_get_advairtime_statscl_atftable = 0x100004A, /* configured and used airtime of the connected stations */
    PROC_wlan_set_idle_timeout = 0x100004B, /* set the time after which an idle station is dropped */
    PROC_wlan_get_idle_timeout = 0x100004C, /* time after which an idle station is dropped */
    PROC_wlan_get_softblock_enable = 0x100004D, /* whether soft blocking is on */
    PROC_wlan_set_softblock_enable = 0x100004E, /* switch soft blocking */
    PROC_wlan_get_softblock_black_list_selector_mask = 0x100004F, /* black-list selector mask */
    PROC_wlan_set_softblock_black_list_selector_mask = 0x1000050, /* set the black-list selector mask */
    PROC_wlan_get_softblock_selector_mask = 0x1000051, /* soft-block selector mask */
    PROC_wlan_set_softblock_selector_mask = 0x1000052, /* set the soft-block selector mask */
    PROC_wlan_get_softblock_waiting_time = 0x1000053, /* soft-block waiting time */
    PROC_wlan_set_softblock_waiting_time = 0x1000054, /* set the soft-block waiting time */
    PROC_wlan_get_softblock_allow_timer = 0x1000055, /* soft-block allow timer */
    PROC_wlan_set_softblock_allow_timer = 0x1000056, /* set the soft-block allow timer */
    PROC_wlan_get_softblock_black_list = 0x1000057, /* stations on the soft-block list */
    PROC_wlan_set_softblock_black_list_add = 0x1000058, /* put a station on the soft-block list */
    PROC_wlan_set_softblock_black_list_del = 0x1000059, /* take a station off the soft-block list */
    PROC_wlan_set_softblock_black_list_clear = 0x100005A, /* clear the soft-block list */
    PROC_wlan_set_bs_bss_enable = 0x100005B, /* set band steering of a BSS pair, 0 to 2 */
    PROC_wlan_get_bs_bss_enable = 0x100005C, /* band steering of a BSS pair */
    PROC_wlan_set_bs_bss_5g_rssi_threshold = 0x100005D, /* set the 5 GHz RSSI for steering a BSS, -100 to -1 dBm */
    PROC_wlan_get_bs_bss_5g_rssi_threshold = 0x100005E, /* 5 GHz RSSI for steering a BSS, in dBm */
    PROC_wlan_set_bs_bss_delta_5g_rssi_threshold = 0x100005F, /* set the 5 GHz RSSI margin for steering a BSS, 0 to 100 */
    PROC_wlan_get_bs_bss_delta_5g_rssi_threshold = 0x1000060, /* 5 GHz RSSI margin for steering a BSS */
    PROC_wlan_set_bs_bss_2g_temp_timeout = 0x1000061, /* set how long a station stays on the 2.4 GHz temporary black list */
    PROC_wlan_get_bs_bss_2g_temp_timeout = 0x1000062, /* how long a station stays on the 2.4 GHz temporary black list */
    PROC_wlan_set_bs_bss_5g_capable_clear = 0x1000063, /* forget which stations of a BSS can use 5 GHz */
    PROC_wlan_set_bs_bss_2g_temp_blacklist_clear = 0x1000064, /* clear the 2.4 GHz temporary black list of a BSS */
    PROC_wlan_get_bs_bss_5g_capable_table = 0x1000065, /* stations of a BSS that can use 5 GHz */
    PROC_wlan_get_bs_bss_2g_temp_blacklist_table = 0x1000066, /* 2.4 GHz temporary black list of a BSS */
    PROC_wlan_set_radius_server_ipv6enable = 0x1000067, /* whether the RADIUS server is reached over IPv6 */
    PROC_wlan_get_radius_server_ipv6enable = 0x1000068, /* whether the RADIUS server is reached over IPv6 */
    PROC_wlan_get_softblock_auth_response_st_code = 0x1000069, /* status code in refused authentication responses */
    PROC_wlan_set_softblock_auth_response_st_code = 0x100006A, /* set the status code in refused authentication responses */
    PROC_wlan_get_softblock_ignore_probereq_type = 0x100006B, /* probe requests that are ignored */
    PROC_wlan_set_softblock_ignore_probereq_type = 0x100006C, /* choose the probe requests that are ignored */
    PROC_wlan_get_bss_client_rssi_threshold = 0x100006D, /* RSSI floor for stations of the BSS */
    PROC_wlan_set_bss_client_rssi_threshold = 0x100006E, /* set the RSSI floor for stations of the BSS */
    PROC_wlan_get_bss_client_rssi_threshold_delta = 0x100006F, /* margin of the RSSI floor */
    PROC_wlan_set_bss_client_rssi_threshold_delta = 0x1000070, /* set the margin of the RSSI floor */
    PROC_wlan_get_radius_operator_name = 0x1000071, /* RADIUS operator name */
    PROC_wlan_set_radius_operator_name = 0x1000072, /* set the RADIUS operator name */
    PROC_wlan_get_radius_location_data = 0x1000073, /* RADIUS location data */
    PROC_wlan_set_radius_location_data = 0x1000074, /* set the RADIUS location data */
    PROC_wlan_set_channel_switch = 0x1000075 /* announce a channel switch to the stations, then make it */
};

/* Fails to compile where a compiler lays a record out in another way. */
#define WLAN_CONFIG_CHECK(name, condition) typedef char wlan_config_check_##name[(condition) ? 1 : -1]
#define WLAN_CONFIG_CHECK_MEMBER(record, member, offset) \
    WLAN_CONFIG_CHECK(record##_##member, offsetof(record, member) == (offset))

/*
 * Traffic of a VAP. Travels as integers in return_values, one a member, not as a memory image.
 */
typedef struct wlan_basicStats_t {
    uint32_t tx_bytes; /* bytes */
    uint32_t rx_bytes; /* bytes */
    uint32_t tx_packets; /* packets */
    uint32_t rx_packets; /* packets */
    uint32_t assoc_count; /* stations */
} wlan_basicStats_t;
WLAN_CONFIG_CHECK(wlan_basicStats_t, sizeof(wlan_basicStats_t) == 20);
WLAN_CONFIG_CHECK_MEMBER(wlan_basicStats_t, tx_bytes, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_basicStats_t, rx_bytes, 4);
WLAN_CONFIG_CHECK_MEMBER(wlan_basicStats_t, tx_packets, 8);
WLAN_CONFIG_CHECK_MEMBER(wlan_basicStats_t, rx_packets, 12);
WLAN_CONFIG_CHECK_MEMBER(wlan_basicStats_t, assoc_count, 16);

/*
 * Errors and packets of a VAP. Travels as integers in return_values, one a member or element, not as a memory
 * image. The numbered words are 0; tx_multicast counts multicast and broadcast.
 */
typedef struct wlan_stats_t {
    uint32_t word_0;
    uint32_t rx_errors; /* packets */
    uint32_t tx_unicast; /* packets */
    uint32_t words_3_to_5[3];
    uint32_t tx_multicast; /* packets */
    uint32_t words_7_to_10[4];
} wlan_stats_t;
WLAN_CONFIG_CHECK(wlan_stats_t, sizeof(wlan_stats_t) == 44);
WLAN_CONFIG_CHECK_MEMBER(wlan_stats_t, word_0, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_stats_t, rx_errors, 4);
WLAN_CONFIG_CHECK_MEMBER(wlan_stats_t, tx_unicast, 8);
WLAN_CONFIG_CHECK_MEMBER(wlan_stats_t, words_3_to_5, 12);
WLAN_CONFIG_CHECK_MEMBER(wlan_stats_t, tx_multicast, 24);
WLAN_CONFIG_CHECK_MEMBER(wlan_stats_t, words_7_to_10, 28);

/*
 * One associated station. mac is six colon-separated hexadecimal pairs; interface is the VAP index - 1. What the
 * numbered members mean is the driver's.
 */
typedef struct wlan_device_t {
    char mac[18];
    char ip[64];
    char capabilities[45];
    char field_4[17];
    uint32_t connected_time; /* s */
    uint32_t state;
    uint32_t tx_packets; /* packets */
    uint32_t tx_rate;
    uint32_t max_rate;
    int32_t field_10;
    uint32_t mc_tx_packets; /* packets */
    uint32_t uc_tx_packets; /* packets */
    uint16_t field_13;
    uint8_t padding_13[2];
    uint32_t field_14;
    uint32_t field_15;
    uint32_t field_16;
    uint8_t interface;
    uint8_t padding_17[3];
    int32_t field_18;
    uint32_t reserved;
    char ssid[32];
} wlan_device_t;
WLAN_CONFIG_CHECK(wlan_device_t, sizeof(wlan_device_t) == 236);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, mac, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, ip, 18);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, capabilities, 82);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_4, 127);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, connected_time, 144);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, state, 148);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, tx_packets, 152);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, tx_rate, 156);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, max_rate, 160);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_10, 164);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, mc_tx_packets, 168);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, uc_tx_packets, 172);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_13, 176);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, padding_13, 178);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_14, 180);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_15, 184);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_16, 188);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, interface, 192);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, padding_17, 193);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, field_18, 196);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, reserved, 200);
WLAN_CONFIG_CHECK_MEMBER(wlan_device_t, ssid, 204);

/*
 * The associated stations of a VAP.
 */
typedef struct wlan_assoc_devices_table {
    uint32_t NumOfEntries; /* stations */
    wlan_device_t Devices[WLAN_ASSOC_DEVICES_MAX]; /* NumOfEntries of them mean something */
} wlan_assoc_devices_table;
WLAN_CONFIG_CHECK(wlan_assoc_devices_table, sizeof(wlan_assoc_devices_table) == 7556);
WLAN_CONFIG_CHECK_MEMBER(wlan_assoc_devices_table, NumOfEntries, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_assoc_devices_table, Devices, 4);

/*
 * One neighbouring access point. What the numbered members mean is the driver's.
 */
typedef struct scan_entry {
    uint8_t bssid[6];
    char ssid[32];
    uint8_t scan_octets_1[12];
    uint8_t scan_byte_1;
    uint8_t scan_octets_2[12];
    uint8_t scan_byte_2;
    uint8_t scan_octets_3[15];
    uint8_t scan_flag;
    uint8_t scan_byte_3;
    char scan_text_1[6];
    int8_t rssi; /* dBm */
    char auth_mode[15];
    char scan_text_2[8];
    char wireless_mode[8];
    uint8_t padding_1;
    int32_t scan_value;
    uint8_t scan_byte_4;
    uint8_t padding_2[3];
} scan_entry;
WLAN_CONFIG_CHECK(scan_entry, sizeof(scan_entry) == 128);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, bssid, 0);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, ssid, 6);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_octets_1, 38);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_byte_1, 50);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_octets_2, 51);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_byte_2, 63);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_octets_3, 64);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_flag, 79);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_byte_3, 80);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_text_1, 81);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, rssi, 87);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, auth_mode, 88);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_text_2, 103);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, wireless_mode, 111);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, padding_1, 119);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_value, 120);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, scan_byte_4, 124);
WLAN_CONFIG_CHECK_MEMBER(scan_entry, padding_2, 125);

/*
 * What a site survey has found.
 */
typedef struct scan_table {
    uint8_t num_entries; /* networks */
    uint8_t padding[3];
    scan_entry entries[WLAN_SCAN_ENTRIES_MAX]; /* num_entries of them mean something */
} scan_table;
WLAN_CONFIG_CHECK(scan_table, sizeof(scan_table) == 8196);
WLAN_CONFIG_CHECK_MEMBER(scan_table, num_entries, 0);
WLAN_CONFIG_CHECK_MEMBER(scan_table, padding, 1);
WLAN_CONFIG_CHECK_MEMBER(scan_table, entries, 4);

/*
 * One station on the soft-block list.
 */
typedef struct wlan_sb_station_t {
    uint8_t mac[6];
    uint8_t padding[2];
    int32_t timestamp; /* s */
} wlan_sb_station_t;
WLAN_CONFIG_CHECK(wlan_sb_station_t, sizeof(wlan_sb_station_t) == 12);
WLAN_CONFIG_CHECK_MEMBER(wlan_sb_station_t, mac, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_sb_station_t, padding, 6);
WLAN_CONFIG_CHECK_MEMBER(wlan_sb_station_t, timestamp, 8);

/*
 * The soft-block list. oldest is the index of the oldest entry.
 */
typedef struct wlan_sb_station_list_t {
    int32_t total; /* stations */
    int32_t oldest;
    wlan_sb_station_t entries[WLAN_SB_STATIONS_MAX]; /* total of them mean something */
} wlan_sb_station_list_t;
WLAN_CONFIG_CHECK(wlan_sb_station_list_t, sizeof(wlan_sb_station_list_t) == 776);
WLAN_CONFIG_CHECK_MEMBER(wlan_sb_station_list_t, total, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_sb_station_list_t, oldest, 4);
WLAN_CONFIG_CHECK_MEMBER(wlan_sb_station_list_t, entries, 8);

/*
 * The stations of a BSS that can use 5 GHz. The entries are the driver's own; how many there are is also in
 * return_values.
 */
typedef struct wlan_5g_capable_table_t {
    uint32_t count; /* stations */
    uint8_t entries[1532];
} wlan_5g_capable_table_t;
WLAN_CONFIG_CHECK(wlan_5g_capable_table_t, sizeof(wlan_5g_capable_table_t) == 1536);
WLAN_CONFIG_CHECK_MEMBER(wlan_5g_capable_table_t, count, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_5g_capable_table_t, entries, 4);

/*
 * The 2.4 GHz temporary black list of a BSS. The entries are the driver's own; how many there are is in
 * return_values.
 */
typedef struct wlan_2g_temp_blacklist_table_t {
    uint8_t entries[64][32];
} wlan_2g_temp_blacklist_table_t;
WLAN_CONFIG_CHECK(wlan_2g_temp_blacklist_table_t, sizeof(wlan_2g_temp_blacklist_table_t) == 2048);
WLAN_CONFIG_CHECK_MEMBER(wlan_2g_temp_blacklist_table_t, entries, 0);

/*
 * One station with an airtime weight. index counts from 1.
 */
typedef struct wlan_airtime_sta_t {
    uint32_t index;
    char mac[18];
    uint8_t padding[2];
    uint32_t weight;
    uint32_t period;
} wlan_airtime_sta_t;
WLAN_CONFIG_CHECK(wlan_airtime_sta_t, sizeof(wlan_airtime_sta_t) == 32);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_t, index, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_t, mac, 4);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_t, padding, 22);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_t, weight, 24);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_t, period, 28);

/*
 * The stations with an airtime weight.
 */
typedef struct wlan_airtime_sta_list_t {
    int32_t count; /* stations */
    wlan_airtime_sta_t stations[WLAN_AIRTIME_STAS_MAX]; /* count of them mean something */
} wlan_airtime_sta_list_t;
WLAN_CONFIG_CHECK(wlan_airtime_sta_list_t, sizeof(wlan_airtime_sta_list_t) == 2052);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_list_t, count, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_airtime_sta_list_t, stations, 4);

/*
 * One connected station with its configured and its used airtime. Packed. index counts from 1; name is an SSID
 * or a group; share is the station's part, configured that of the SSID or group; the others are airtime.
 */
#pragma pack(push, 1)
typedef struct wlan_atf_station_t {
    uint32_t index;
    char mac[18];
    char name[32];
    uint32_t share; /* % */
    uint32_t configured; /* % */
    uint32_t short_average;
    uint64_t total;
} wlan_atf_station_t;
#pragma pack(pop)
WLAN_CONFIG_CHECK(wlan_atf_station_t, sizeof(wlan_atf_station_t) == 74);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, index, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, mac, 4);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, name, 22);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, share, 54);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, configured, 58);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, short_average, 62);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_t, total, 66);

/*
 * The airtime of the connected stations. Packed: the entries follow each other without alignment.
 */
#pragma pack(push, 1)
typedef struct wlan_atf_station_table_t {
    uint32_t count; /* stations */
    wlan_atf_station_t stations[WLAN_ATF_STATIONS_MAX]; /* count of them mean something */
} wlan_atf_station_table_t;
#pragma pack(pop)
WLAN_CONFIG_CHECK(wlan_atf_station_table_t, sizeof(wlan_atf_station_table_t) == 4740);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_table_t, count, 0);
WLAN_CONFIG_CHECK_MEMBER(wlan_atf_station_table_t, stations, 4);

#undef WLAN_CONFIG_CHECK
#undef WLAN_CONFIG_CHECK_MEMBER

#endif
