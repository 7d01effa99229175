// The channel table and the SSID.
#include <errno.h>
#include <stdint.h>
#include <string.h>
#include <sys/socket.h>

#include "simulator/paths.h"
#include "simulator/preload/requests.h"
#include "simulator/scenario.h"
#include "simulator/store.h"

struct table_entry {
    uint16_t frequency;
    uint16_t padding;
    uint32_t flags;
    uint8_t rest[12];
};

struct channel_table {
    uint32_t count;
    table_entry entries[SCENARIO_CHANNELS];
};
static_assert(sizeof(channel_table) == 5104);

// The radio that an interface name stands for.
static const scenario_radio *radio_of(const scenario *scene, const char *name) {
    int vap = vap_of_interface(name);
    return &scene->radios[vap >= 0 ? scene->vaps[vap].radio : radio_of_device(name)];
}

static void fill_table(const scenario_radio *radio, channel_table *table) {
    memset(table, 0, sizeof *table);
    table->count = (uint32_t)radio->channel_count;
    for (int i = 0; i < radio->channel_count; i++) {
        table->entries[i].frequency = (uint16_t)radio->channels[i].frequency;
        table->entries[i].flags = radio->channels[i].flags;
    }
}

int answer_channel_table(const char *interface, iwreq *request, int *) {
    char error[SCENARIO_ERROR_SIZE];
    if (request->u.data.pointer == nullptr)
        return EFAULT;
    if (request->u.data.length < sizeof(channel_table))
        return E2BIG;
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        return EIO;
    fill_table(radio_of(scene, interface), (channel_table *)request->u.data.pointer);
    request->u.data.length = sizeof(channel_table);
    scenario_free(scene);
    return 0;
}

int answer_essid(const char *interface, iwreq *request, int *) {
    int vap = vap_of_interface(interface);
    if (vap < 0)
        return EOPNOTSUPP;
    if (request->u.essid.pointer == nullptr)
        return EFAULT;
    char key[SETTING_KEY_SIZE];
    char ssid[SSID_SIZE];
    store_key("AP_SSID", vap + 1, key, sizeof key);
    store_value(APCFG_STORE, key, ssid, sizeof ssid);
    size_t length = strlen(ssid);
    if (request->u.essid.length < length)
        return E2BIG;
    memcpy(request->u.essid.pointer, ssid, length);
    request->u.essid.length = (uint16_t)length;
    request->u.essid.flags = 1;
    return 0;
}
