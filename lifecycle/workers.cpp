// The lifecycle's workers. See the header.
//
// Touches the driver's scripts and `cfg`, the soft-block daemon, the collectors, the board's GPIO lines and its PCI
// bus, and runs the command-line client. Each function runs on its own thread, beside the service thread and the
// others.
#include "lifecycle/workers.h"

#include "config/command.h"
#include "config/log.h"
#include "lifecycle/pause.h"
#include "lifecycle/state.h"
#include "params/vap.h"
#include "steering/soft_block.h"
#include "survey/collector.h"

// The last thing every worker does. The call comes back on the service thread, which may be waiting in a cancellation
// or in an earlier queue check just then: the client then waits too, and gives up after 25 seconds. Nothing is lost by
// that, since its call stays in the server's socket and is carried out in its turn.
static void trigger_queue_check(const char *caller) {
    athcfg_runcmdf(caller, "/usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue");
}

void *load_thread_function(void *) {
    athcfg_set_path();
    log_debug("[VLK-API] %s started load thread.\n", __func__);
    if (athcfg_runcmdf(__func__, "apup_simple > /dev/null 2>&1") != 0) {
        log_error("[VLK-API] Error %s load thread failed !!!\n", __func__);
        load_result = -1;
    } else {
        log_debug("[VLK-API] %s wlan loaded.\n", __func__);
        load_result = 0;
    }
    // driver_loaded stays as it is, after a failure too: only a reset or a reconnect makes another load possible.
    load_state = WORKER_IDLE;
    trigger_queue_check(__func__);
    return &load_result;
}

void *init_thread_function(void *) {
    log_debug("[VLK-API] %s entry.\n", __func__);
    athcfg_set_path();
    int32_t result = 0;
    if (athcfg_runcmdf(__func__, "apup > /dev/null 2>&1") != 0) {
        log_error("[VLK-API] Error %s init_thread failed!!!\n", __func__);
        result = -1;
    } else {
        log_debug("[VLK-API] %s wlan init - traffic is now passing.\n", __func__);
    }
    wlan_applyRSGSettings(FIRST_VAP_2G);
    wlan_applyRSGSettings(FIRST_VAP_5G);
    notifyWiFiRestartToSBCtrl();
    athcfg_runcmdf(__func__, "cfg -c");
    init_result = result;
    init_state = WORKER_IDLE;
    trigger_queue_check(__func__);
    return &init_result;
}

void *reset_thread_function(void *) {
    athcfg_set_path();
    loadSB(0);
    if (athcfg_runcmdf(__func__, "fast_down.sh > /dev/null 2>&1") != 0) {
        log_error("[VLK-API] Error %s reset thread failed !!!\n", __func__);
        reset_result = -1;
    } else {
        log_debug("[VLK-API] %s wlan reset complete.\n", __func__);
        reset_result = 0;
    }
    reset_state = WORKER_IDLE;
    driver_loaded = 0;
    trigger_queue_check(__func__);
    return &reset_result;
}

struct board_step {
    const char *command;
    int pause_seconds;  // behind it
};

// How this board resets its two Wi-Fi chips: GPIO lines 100 and 10, then off and on again on the PCI bus. The shell
// sees a backslash before each colon of the slots' names.
static const board_step CHIP_RESET_STEPS[] = {
    {"/usr/sbin/wps_gpio read 100", 0},
    {"/usr/sbin/wps_gpio read 10", 0},
    {"/usr/sbin/wps_gpio write 100 1", 1},
    {"/usr/sbin/wps_gpio write 10 0", 3},
    {"/usr/sbin/wps_gpio write 10 1", 1},
    {"/usr/sbin/wps_gpio write 100 0", 1},
    {"echo 0 > /sys/bus/pci/slots/0000\\:02\\:00.0/power", 0},
    {"echo 0 > /sys/bus/pci/slots/0000\\:03\\:00.0/power", 2},
    {"echo 1 > /sys/bus/pci/rescan", 3},
};

static void reset_chips(void) {
    for (const board_step &step : CHIP_RESET_STEPS) {
        run_shell(step.command);
        if (step.pause_seconds > 0) {
            lifecycle_pause(step.pause_seconds);
        }
    }
}

void *reconnect_thread_function(void *) {
    athcfg_set_path();
    if (athcfg_runcmdf(__func__, "fast_down.sh > /dev/null 2>&1") != 0) {
        log_error("[VLK-API] Error %s reconnect thread failed on fast_down.sh !!!\n", __func__);
        reconnect_result = -1;
    } else {
        // No error, but people look for this line under that word, and it has to be there without debugging.
        log_error("[VLK-API] Error %s Driver unload complete. Resetting Wireless Chipsets...\n", __func__);
        reset_chips();
        reconnect_result = 0;
    }
    // In this order: a load that finds the worker idle must find the driver unloaded.
    driver_loaded = 0;
    reconnect_state = WORKER_IDLE;
    trigger_queue_check(__func__);
    return &reconnect_result;
}
