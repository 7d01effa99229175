#include "simulator/launcher/beginning.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/authenticator/restart.h"
#include "simulator/board.h"
#include "simulator/driver/capable_table.h"
#include "simulator/driver/driver_life.h"
#include "simulator/factory_defaults.h"
#include "simulator/initial_store.h"
#include "simulator/internal_address.h"
#include "simulator/launcher/messages.h"
#include "simulator/launcher/root_contents.h"
#include "simulator/launcher/services.h"
#include "simulator/paths.h"
#include "simulator/wps_files.h"

static bool write_file(const char *path, const char *text, size_t length) {
    FILE *file = fopen(path, "we");
    if (file == nullptr)
        return complain(path, strerror(errno));
    size_t written = fwrite(text, 1, length, file);
    return (fclose(file) == 0 && written == length) || complain(path, strerror(errno));
}

static bool copy_scenario(const char *text, size_t length) {
    return (mkdir(GATEWAY_FAULTS, 0755) == 0 || complain(GATEWAY_FAULTS, strerror(errno))) &&
           write_file(GATEWAY_JOURNAL, "", 0) && write_file(GATEWAY_SCENARIO, text, length);
}

// What the driver's scripts would have done, at once.
static bool start_driver(const scenario *scene, driver_state *state) {
    int coming[SCENARIO_VAPS];
    int count = 0;
    bool up = scene->driver == DRIVER_UP;
    int failed = board_start() | driver_remove();
    if (scene->driver != DRIVER_UNLOADED)
        failed |= driver_insert();
    if (up)
        failed |= driver_start_begin(scene, APCFG_STORE, coming, &count);
    for (int i = 0; i < count; i++)
        failed |= driver_start_vap(scene, APCFG_STORE, coming[i]);
    if (up)
        failed |= driver_start_end(scene, APCFG_STORE);
    driver_state_read(state);
    if (failed != 0)
        return complain(GATEWAY_DIRECTORY, strerror(errno));
    return capable_table_complete(state, scene) == 0 || complain(CAPABLE_TABLE, strerror(errno));
}

// The store, the WPS files, the factory defaults and the state of the driver that the scenario begins with.
static bool lay_down_state(const scenario *scene, driver_state *state) {
    store_text store;
    bool laid = initial_store(scene, &store) == 0 && store_save(APCFG_STORE, &store) == 0;
    store_free(&store);
    if (!laid)
        return complain(APCFG_STORE, strerror(errno));
    if (wps_files_prepare(scene, APCFG_STORE) != 0)
        return complain(WPS_DIRECTORY, strerror(errno));
    if (factory_defaults_lay_down(scene) != 0)
        return complain(GATEWAY_DEFAULTS, strerror(errno));
    return start_driver(scene, state);
}

// What runs beside the driver when nobody has called a script yet. An authenticator that does not start is a gateway
// without one, as on a real one: its log says why.
static bool start_services(const options *given, const driver_state *state, scenario_driver driver) {
    if (driver == DRIVER_UP && authenticator_start(state, APCFG_STORE) != 0)
        fprintf(stderr, "vlk_simulated_gateway: %s does not run; %s says why\n", HOSTAPD_PROGRAM, GATEWAY_HOSTAPD_LOG);
    // As after a load.
    if (driver != DRIVER_UNLOADED)
        start_soft_block();
    return start_portmapper() && start_server(given->server, given->driver);
}

bool set_up_network(void) {
    if (loopback_up() != 0 || internal_address_add() != 0)
        return complain(GATEWAY_ADDRESS, strerror(errno));
    return true;
}

void set_environment(const options *given) {
    const char *path = getenv("PATH");
    char search[8192];
    // The gateway's own tools come first, wherever the host keeps some of the same name.
    snprintf(search, sizeof search, "/usr/sbin:/etc/ath:%s:/usr/bin:/bin:/sbin", path != nullptr ? path : "");
    setenv("PATH", search, 1);
    setenv("VLK_PRIVATE_NAMESPACE", "1", 1);
    setenv("VLK_GATEWAY_DRIVER", given->driver, 1);
    setenv("VLK_PORTMAP_PROGRAM", PORTMAPPER, 1);
}

bool begin(const options *given, const scenario *scene, const char *text, size_t length) {
    driver_state state = {};
    umask(022);
    allow_giving_up_groups();
    return copy_scenario(text, length) && lay_down_state(scene, &state) &&
           (given->bare || start_services(given, &state, scene->driver));
}
