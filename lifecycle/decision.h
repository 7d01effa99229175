// What becomes of a lifecycle request: the rules alone.
//
// Touches nothing and keeps nothing; any thread may ask.
#pragma once

// The four kinds of request, each of which has a worker of its own, in the order in which running workers are looked
// at. LIFECYCLE_NONE stands for no worker.
enum lifecycle_kind { LIFECYCLE_LOAD, LIFECYCLE_INIT, LIFECYCLE_RESET, LIFECYCLE_RECONNECT, LIFECYCLE_NONE };

enum class lifecycle_action {
    START,           // start its worker
    START_AND_INIT,  // park an init, then start its worker
    PARK,            // put it into the queue, in place of whatever is parked there
    DROP,            // forget it
    EMPTY_QUEUE,     // forget it, and what is parked as well
    CANCEL           // end the busy worker's scripts, empty the queue, and look at the next worker
};

// What a request does that meets this busy worker. init_parked says whether the parked request is an init. The request
// is one of the first four kinds.
lifecycle_action lifecycle_decide(lifecycle_kind busy, lifecycle_kind request, bool init_parked);
