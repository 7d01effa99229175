#include "client/status.h"

#include "client/ask.h"
#include "client/radio.h"
#include "client/vaps.h"

const option_row status_options[] = {
    {"enabled", nullptr, "only VAPs that are switched on", word_kind::NONE, '\0'},
};
const size_t status_option_count = sizeof status_options / sizeof *status_options;

static bool is_enabled(gathering *from, int index) {
    int64_t enabled;
    return gather_number(from, PROC_wlan_get_enable, index, &enabled) && enabled;
}

static value *gather_vaps(gathering *from, int count, bool enabled_only) {
    value *vaps = new_list();
    for (int index = 1; index <= count && from->status == EXIT_STATUS_SUCCESS; index++)
        if (!enabled_only || is_enabled(from, index))
            add_vap(from, add_object(vaps, nullptr), index);
    return vaps;
}

client_exit_status run_status(client_session *session, const command_line *line) {
    gathering from = {session, EXIT_STATUS_SUCCESS};
    int count = gather_vap_count(&from);
    value *vaps = gather_vaps(&from, count, option_value(line, "enabled"));
    value *result = new_object();
    add_value(result, "radios", gather_radios(&from, count, vaps, add_utilisation));
    add_value(result, "vaps", vaps);
    if (from.status == EXIT_STATUS_SUCCESS)
        return show(session, result);
    free_value(result);
    return complain_of_call(session, from.status);
}
