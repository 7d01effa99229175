// The irregular handlers, written out. What makes each irregular stands above it.
#include "config/log.h"
#include "config/store.h"
#include "handlers/backends.h"
#include "handlers/families.h"
#include "handlers/handlers.h"

// Entries cannot be added or removed, yet clients read a value behind the code: the back ends yield none, so it is 0.
static bool_t answer_entry(const char *name, int status, wlan_config_result_data_t *result) {
    const u_int entry = 0;
    result->return_code = static_cast<wlan_config_return_code_e>(status);
    pack_integers(result, &entry, 1);
    log_debug("[VLK-API] %s  WLAN RPC server : [entry %u]\n", name, entry);
    return TRUE;
}

bool_t wlan_add_entry_1_svc(wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s WLAN RPC server :\n", __func__);
    return answer_entry(__func__, wlan_addEntry(), result);
}

bool_t wlan_del_entry_1_svc(int entry, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [entry %d]\n", __func__, entry);
    return answer_entry(__func__, wlan_delEntry(), result);
}

// Clears the record after the back end's status is stored, so that the reply carries code 0 whatever happened. Do not
// mend it: clients take the text as it comes and treat a status query as one that cannot fail.
bool_t wlan_get_status_1_svc(int index, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
    char status[STORE_VALUE_SIZE] = "";
    result->return_code = static_cast<wlan_config_return_code_e>(wlan_getStatus(index, status, sizeof status));
    *result = {};
    pack_string(result, status);
    log_debug("[VLK-API] %s  WLAN RPC server : result->return_data.return_data_len = %d\n", __func__,
              static_cast<int>(result->return_data.return_data_len));
    return TRUE;
}

// The line behind the call has another beginning than every other handler's: whoever watches for it searches for these
// words.
bool_t wlan_ap_auto_channel_select_1_svc(int index, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
    result->return_code = static_cast<wlan_config_return_code_e>(wlan_apAutoChannelSelect(index));
    pack_nothing(result);
    log_debug("[VLK-API] %s  WLAN RPC server return code :%d\n", __func__, result->return_code);
    return TRUE;
}

// The two below end with a line on standard output, debugging or not and without the usual tag: whoever watches the
// server sees by it that a survey was started, or asked for, and that the call is over. Hence it is the last line of
// the call.
bool_t wlan_ap_scan_1_svc(int index, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
    result->return_code = static_cast<wlan_config_return_code_e>(wlan_ApSiteSurvey(index));
    pack_nothing(result);
    log_debug("[VLK-API] %s  WLAN RPC server : return code :%d\n", __func__, result->return_code);
    log_always("end wlan_ap_scan_1_svc\n");
    return TRUE;
}

bool_t wlan_get_ap_scan_status_1_svc(int index, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
    int status = 0;
    result->return_code = static_cast<wlan_config_return_code_e>(wlan_ApSiteSurveyStatus(index, &status));
    const u_int word = static_cast<u_int>(status);
    pack_integers(result, &word, 1);
    log_debug("[VLK-API] %s  WLAN RPC server : [status %d]\n", __func__, status);
    log_always("end wlan_get_ap_scan_status_1_svc\n");
    return TRUE;
}

// Says who the station is, for those who follow one through the log. The texts are the driver's, which need not
// terminate them.
bool_t wlan_get_assoc_device_1_svc(int index, int device, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d][device %d]\n", __func__, index, device);
    wlan_device_t station = {};
    result->return_code = static_cast<wlan_config_return_code_e>(wlan_getAssocDevice(index, device, &station));
    log_debug("[VLK-API] %s  WLAN RPC server : device MAC=%.*s IP=%.*s \n", __func__,
              static_cast<int>(sizeof station.mac), station.mac, static_cast<int>(sizeof station.ip), station.ip);
    pack_image(result, &station, sizeof station);
    log_debug("[VLK-API] %s  WLAN RPC server : result->return_data.return_data_len = %d\n", __func__,
              static_cast<int>(result->return_data.return_data_len));
    return TRUE;
}

// The length in its last line has a blank behind it, unlike those of all other handlers: it is searched for like that.
bool_t wlan_get_softblock_black_list_1_svc(int index, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
    wlan_sb_station_list_t list = {};
    result->return_code = static_cast<wlan_config_return_code_e>(wlan_getSBBlackList(index, &list));
    pack_image(result, &list, sizeof list);
    log_debug("[VLK-API] %s  WLAN RPC server : result->return_data.return_data_len = %d \n", __func__,
              static_cast<int>(result->return_data.return_data_len));
    return TRUE;
}

// The wait threshold has no back end: it is accepted and never kept, and reading it gives a record without a value.
bool_t wlan_set_advairtime_wait_threshold_1_svc(int index, int threshold, wlan_config_return_code_e *result,
                                                svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d][threshold %d]\n", __func__, index, threshold);
    *result = WLAN_CONFIG_SUCCESS;
    return TRUE;
}

bool_t wlan_get_advairtime_wait_threshold_1_svc(int index, wlan_config_result_data_t *result, svc_req *) {
    log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
    *result = {};
    return TRUE;
}

// Reports the switch on standard output, debugging or not and without the usual tag, because whoever watches the server
// looks for these lines; "%d" is their text, although the words are unsigned. Then it makes two back ends one
// operation: the configured channel follows the announced one, and a channel that the radio refuses is not the client's
// concern.
bool_t wlan_set_channel_switch_1_svc(int index, u_int type, u_int reserved_2, u_int channel, u_int reserved_4,
                                     u_int count, u_int reserved_6, u_int width, u_int reserved_8, u_int reserved_9,
                                     wlan_config_return_code_e *result, svc_req *) {
    log_always(" WLAN RPC server : [Channel Switch Type =%d]\n", static_cast<int>(type));
    log_always(" WLAN RPC server : [Channel Switch Channel Number =%d]\n", static_cast<int>(channel));
    log_always(" WLAN RPC server : [Channel Switch switchcount =%d]\n", static_cast<int>(count));
    log_always(" WLAN RPC server : [Channel Switch channelwidth =%d]\n", static_cast<int>(width));
    log_debug(
        "[VLK-API] %s  WLAN RPC server : [index %d][type %u][reserved_2 %u][channel %u][reserved_4 %u][count %u]"
        "[reserved_6 %u][width %u][reserved_8 %u][reserved_9 %u]\n",
        __func__, index, type, reserved_2, channel, reserved_4, count, reserved_6, width, reserved_8, reserved_9);
    int status = wlan_setChannelSwitch(index, type, channel, count, width);
    if (status == 0) {
        wlan_setChannel(index, channel);
    }
    *result = static_cast<wlan_config_return_code_e>(status);
    log_debug("[VLK-API] %s  WLAN RPC server : return code :%d\n", __func__, *result);
    return TRUE;
}
