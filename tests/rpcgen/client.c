/*
 * A client as anybody writes one: stubs that rpcgen made of docs/wlan_config.x, no code of ours. Calls one procedure
 * of every argument shape, or with the argument "all" every procedure, and prints, a line each, its name and what became
 * of it: "answered CODE", or the error that the RPC library names.
 */
#include <netinet/in.h>
#include <stdio.h>
#include <string.h>

#include "wlan_config.h"

static void report(const char *name, CLIENT *client, const int *code)
{
    if (code)
        printf("%s answered %d\n", name, *code);
    else
        printf("%s%s\n", name, clnt_sperror(client, ""));
}

#define CODE(name, ...) report(#name, client, (const int *)name##_1(__VA_ARGS__, client))
#define DATA(name, ...) report_data(#name, client, name##_1(__VA_ARGS__, client))

static void report_data(const char *name, CLIENT *client, wlan_config_result_data_t *result)
{
    report(name, client, result ? (const int *)&result->return_code : NULL);
    if (result)
        printf("  %u integers, %u bytes\n", result->return_values.return_values_len, result->return_data.return_data_len);
}

/* Made of docs/wlan_config.x, too: CODE(wlan_set_ssid, 1, text); and its like for each procedure. */
static void call_all(CLIENT *client)
{
    char text[] = "rpcgen";
#include "calls.inc"
}

int main(int argc, char **argv)
{
    struct timeval whole = {25, 0};
    char bssid[] = "00:00:00:00:00:00", text[] = "rpcgen", mac[] = "02:00:00:00:00:01";
    CLIENT *client = clnt_create("192.168.254.254", WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, "udp");
    if (!client) {
        clnt_pcreateerror("192.168.254.254");
        return 1;
    }
    /* A call that is repeated is carried out twice: retrying first after the whole time means never. */
    clnt_control(client, CLSET_TIMEOUT, (char *)&whole);
    clnt_control(client, CLSET_RETRY_TIMEOUT, (char *)&whole);
    if (argc > 1 && strcmp(argv[1], "all") == 0) {
        call_all(client);
        clnt_destroy(client);
        return 0;
    }
    report_data("wlan_get_number_of_entries", client, wlan_get_number_of_entries_1(client));
    report("wlan_check_thread_queue", client, (const int *)wlan_check_thread_queue_1(client));
    DATA(wlan_get_name, 3);
    DATA(wlan_get_bssid_port, bssid);
    CODE(wlan_associate_vlan, bssid, 7);
    CODE(wlan_set_ssid, 3, text);
    DATA(wlan_get_ssid, 3);
    CODE(wlan_set_enable, 3, TRUE);
    CODE(wlan_set_channel, 1, 11);
    CODE(wlan_set_mac_address_control_enabled, 3, 1);
    DATA(wlan_get_wep_key, 1, 1);
    CODE(wlan_set_wep_key, 1, 1, text);
    CODE(wlan_set_og_aifsn, 1, 1, 2);
    CODE(wlan_set_og_ack_policy, 1, 1, TRUE);
    CODE(wlan_set_extension_channel, 1, 0, 2);
    CODE(wlan_set_mac_address_control_add, 1, mac, text);
    CODE(wlan_set_advairtime_sta_entry_add, 1, mac, 10);
    CODE(wlan_set_rad_stat_enable, 1, 0, 30, 1800);
    CODE(wlan_set_dot11u_attribute, 1, 0, TRUE, TRUE, TRUE, TRUE);
    CODE(wlan_set_bs_enable, 0);
    CODE(wlan_set_band_steer_time, 5);
    CODE(wlan_set_bs_inactivity_steer_time, 1, 30, 60);
    CODE(wlan_set_channel_switch, 1, 1, 0, 36, 0, 5, 0, 2, 0, 0);
    clnt_destroy(client);
    return 0;
}
