// Requests to load, start, stop and hard-reset the Wi-Fi driver. They take from seconds to a minute, so a request is
// only filed: it is started on a worker thread (lifecycle/workers), parked in a queue of one place, dropped, or cancels
// the worker that runs, as lifecycle/decision says.
//
// Touches the workers' threads, the driver's scripts (to end them), the soft-block daemon and the event system. Service
// thread only: the queue and the thread handles have no other user.
#pragma once

#include <pthread.h>
#include <stddef.h>
#include <stdint.h>

#include <atomic>

using lifecycle_routine = void *(void *);

// One request. The queue is empty when its routine is null.
struct lifecycle_request {
    pthread_t *thread;            // the handle to fill
    lifecycle_routine *routine;   // the worker, which also tells the kind of the request
    void *argument;               // for the worker; always null
    const char *name;             // for messages; null is the empty name
    std::atomic<uint8_t> *state;  // the worker's flag
};

// A parked request keeps this much of its name.
constexpr size_t REQUEST_NAME_LENGTH = 16;

// Filled when the worker is started. The threads are detached: nobody joins them.
extern pthread_t load_thread;
extern pthread_t init_thread;
extern pthread_t reset_thread;
extern pthread_t reconnect_thread;

// The one parked request. It holds its name itself.
extern lifecycle_request queued_request;

// Requests of clients. 0 when started, parked, dropped or absorbed by a running worker, -1 when the worker cannot be
// started. They return at once, except that a reconnect which cancels a load or an init waits for the end of the
// driver's insertion and three seconds. wlan_load does nothing once a load was accepted, until the next reset or
// reconnect. Both restarts are another name for init.
int wlan_load(void);
int wlan_init(void);
int wlan_reset(void);
int wlan_pci_reconnect(void);
int wlan_restart(void);
int wlan_restart_all(void);

// Starts the parked request, three seconds later; at once 0 when there is none. Workers ask for it, through the
// client, when they end. Returns what thread_wrapper returns.
int wlan_checkThreadQueue(void);

// Carries out what lifecycle_decide says of the request. 0 when it was started, parked, dropped or absorbed, -1 when
// its worker could not be started.
int thread_wrapper(const lifecycle_request *request);

// Parks a request, whose name is copied, in place of the one that is there. A request of nulls empties the queue.
void queue_thread(const lifecycle_request *request);
