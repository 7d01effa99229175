// Requests to load, start, stop and hard-reset the Wi-Fi driver. See the header.
#include "lifecycle/requests.h"

#include <stdio.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "lifecycle/decision.h"
#include "lifecycle/pause.h"
#include "lifecycle/state.h"
#include "lifecycle/workers.h"
#include "platform/platform.h"
#include "steering/soft_block.h"

// Stands around every message of the state machine, for people who look through long logs.
constexpr const char BANNER[] = "**********";

// Numbers of the event library.
constexpr int EVENT_TYPE = 1;
constexpr int EVENT_LEVEL = 3;
constexpr int EVENT_FLAGS = 0;

// The event library takes short notices.
constexpr size_t EVENT_TEXT_SIZE = 256;

// How long the driver gets to settle after its scripts were killed.
constexpr int CANCEL_PAUSE_SECONDS = 3;

// How long a worker's end is left alone before the next one starts.
constexpr int QUEUE_PAUSE_SECONDS = 3;

pthread_t load_thread;
pthread_t init_thread;
pthread_t reset_thread;
pthread_t reconnect_thread;

lifecycle_request queued_request;
static char queued_name[REQUEST_NAME_LENGTH + 1];

// The four requests, by lifecycle_kind.
static const lifecycle_request REQUESTS[] = {
    {&load_thread, load_thread_function, nullptr, "wlan_load", &load_state},
    {&init_thread, init_thread_function, nullptr, "wlan_init", &init_state},
    {&reset_thread, reset_thread_function, nullptr, "wlan_reset", &reset_state},
    {&reconnect_thread, reconnect_thread_function, nullptr, "pci_reconnect", &reconnect_state},
};

// Requests are told apart by their workers. Whatever is none of the other three waits as a load does.
static lifecycle_kind kind_of(const lifecycle_request *request) {
    for (lifecycle_kind kind : {LIFECYCLE_INIT, LIFECYCLE_RESET, LIFECYCLE_RECONNECT}) {
        if (request->routine == REQUESTS[kind].routine) {
            return kind;
        }
    }
    return LIFECYCLE_LOAD;
}

static const char *name_of(const lifecycle_request *request) {
    return request->name ? request->name : "";
}

// The low 32 bits of an address, which is what the debug lines have room for.
static int as_number(const void *address) {
    return static_cast<int>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address)));
}

static int as_number(lifecycle_routine *routine) {
    return static_cast<int>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(routine)));
}

void queue_thread(const lifecycle_request *request) {
    snprintf(queued_name, sizeof(queued_name), "%s", name_of(request));
    queued_request = *request;
    queued_request.name = queued_name;
    log_debug("[VLK-API] %s queue'd -> thread: %d routine: %d arg: %d name: %s state: %d\n", __func__,
              as_number(queued_request.thread), as_number(queued_request.routine), as_number(queued_request.argument),
              queued_request.name, as_number(queued_request.state));
}

static void empty_queue(void) {
    const lifecycle_request nothing = {};
    queue_thread(&nothing);
}

static bool is_init_parked(void) {
    return queued_request.routine == REQUESTS[LIFECYCLE_INIT].routine;
}

// Ends the scripts of the worker. Its flag is not touched: the worker clears it itself when its script returns.
static void cancel_worker(const lifecycle_request *worker) {
    log_error("[VLK-API] Error %s %s cancelling %s process %s\n", "thread_wrapper", BANNER, worker->name, BANNER);
    run_shell("killall apup");
    run_shell("killall apup_simple");
    // An insertion that was begun goes on without its script; nothing may be done to the chips before it has ended.
    run_shell("while [ \"`ps | grep insmod | grep -v grep`\" ]; do sleep 1; done;");
    lifecycle_pause(CANCEL_PAUSE_SECONDS);
    empty_queue();
}

// A worker is running and a request comes. True when the request is done with, false when the next worker is to be
// looked at.
static bool meet_worker(lifecycle_kind busy, const lifecycle_request *request) {
    log_error("[VLK-API] Error %s %s %s - still processing, request queued. %s\n", "thread_wrapper", BANNER,
              REQUESTS[busy].name, BANNER);
    switch (lifecycle_decide(busy, kind_of(request), is_init_parked())) {
        case lifecycle_action::PARK:
            queue_thread(request);
            return true;
        case lifecycle_action::DROP:
            return true;
        case lifecycle_action::EMPTY_QUEUE:
            empty_queue();
            return true;
        case lifecycle_action::CANCEL:
            cancel_worker(&REQUESTS[busy]);
            return false;
        case lifecycle_action::START:
        case lifecycle_action::START_AND_INIT:
            break;  // not while a worker is running
    }
    return false;
}

static int create_worker(const lifecycle_request *request) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    // Refused where the C library cannot run a thread on so little; its own size then stays.
    pthread_attr_setstacksize(&attributes, WORKER_STACK_SIZE);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    int error = pthread_create(request->thread, &attributes, request->routine, request->argument);
    pthread_attr_destroy(&attributes);
    return error;
}

static void announce_start(const char *name) {
    char text[EVENT_TEXT_SIZE];
    snprintf(text, sizeof(text), "%s %s - thread started. %s\n", BANNER, name, BANNER);
    send_zubra_event(EVENT_TYPE, EVENT_LEVEL, EVENT_FLAGS, text, static_cast<int>(strlen(text)));
}

static int start_worker(const lifecycle_request *request) {
    uint8_t state = *request->state;
    if (state != WORKER_IDLE) {
        log_error("[VLK-API] Error %s %s %s - unknown state-machine state: %d. %s\n", "thread_wrapper", BANNER,
                  name_of(request), state, BANNER);
        return -1;
    }
    // Before the thread is there: one whose script cannot be started may be at its end before this function goes on,
    // and a flag set after that would never be cleared.
    *request->state = WORKER_RUNNING;
    if (create_worker(request) != 0) {
        *request->state = WORKER_IDLE;
        log_error("[VLK-API] Error %s %s %s - error creating thread. %s\n", "thread_wrapper", BANNER, name_of(request),
                  BANNER);
        return -1;
    }
    announce_start(name_of(request));
    return 0;
}

int thread_wrapper(const lifecycle_request *request) {
    // Each flag is read when its turn comes, since workers end while an earlier one is being cancelled.
    for (lifecycle_kind busy : {LIFECYCLE_LOAD, LIFECYCLE_INIT, LIFECYCLE_RESET, LIFECYCLE_RECONNECT}) {
        if (*REQUESTS[busy].state == WORKER_RUNNING && meet_worker(busy, request)) {
            return 0;
        }
    }
    // The init is parked even when the reconnect then cannot be started.
    if (lifecycle_decide(LIFECYCLE_NONE, kind_of(request), is_init_parked()) == lifecycle_action::START_AND_INIT) {
        queue_thread(&REQUESTS[LIFECYCLE_INIT]);
    }
    return start_worker(request);
}

int wlan_load(void) {
    if (driver_loaded) {
        log_debug("[VLK-API] %s driver already loaded\n", __func__);
        return 0;
    }
    // Before it is known what becomes of the request, and it stays when the request is dropped or fails: callers load
    // once at their start and rely on every later load being nothing.
    driver_loaded = 1;
    loadSB(1);
    return thread_wrapper(&REQUESTS[LIFECYCLE_LOAD]);
}

int wlan_init(void) {
    return thread_wrapper(&REQUESTS[LIFECYCLE_INIT]);
}

int wlan_reset(void) {
    return thread_wrapper(&REQUESTS[LIFECYCLE_RESET]);
}

int wlan_pci_reconnect(void) {
    return thread_wrapper(&REQUESTS[LIFECYCLE_RECONNECT]);
}

int wlan_restart_all(void) {
    athcfg_set_path();
    return wlan_init();
}

int wlan_restart(void) {
    athcfg_set_path();
    return wlan_restart_all();
}

int wlan_checkThreadQueue(void) {
    if (!queued_request.routine) {
        return 0;
    }
    lifecycle_pause(QUEUE_PAUSE_SECONDS);
    char name[REQUEST_NAME_LENGTH + 1];
    snprintf(name, sizeof(name), "%s", queued_request.name);
    lifecycle_request request = queued_request;
    request.name = name;
    empty_queue();
    log_debug("[VLK-API] %s de-queue'd -> thread: %d routine: %d arg: %d name: %s state: %d\n", __func__,
              as_number(request.thread), as_number(request.routine), as_number(request.argument), request.name,
              as_number(request.state));
    return thread_wrapper(&request);
}
