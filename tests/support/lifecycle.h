// The lifecycle's state as its unit tests set it up and look at it.
#pragma once

#include <string>

#include "lifecycle/requests.h"
#include "lifecycle/state.h"

// Nothing runs, nothing is parked, nothing is loaded, and no worker has ended yet.
constexpr int NO_RESULT = 7;

inline void reset_lifecycle() {
    load_state = init_state = reset_state = reconnect_state = WORKER_IDLE;
    driver_loaded = 0;
    load_result = init_result = reset_result = reconnect_result = NO_RESULT;
    const lifecycle_request nothing = {};
    queue_thread(&nothing);
}

// The parked request's name, "" when there is none.
inline std::string parked() {
    return queued_request.routine ? queued_request.name : "";
}
