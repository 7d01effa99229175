// What becomes of a lifecycle request: the rules alone. See the header.
#include "lifecycle/decision.h"

lifecycle_action lifecycle_decide(lifecycle_kind busy, lifecycle_kind request, bool init_parked) {
    using enum lifecycle_action;
    // A parked init is not given up for another request, because without it the interfaces would stay down. That goes
    // for a reset during a load or an init too, although it is the newer wish: scripts in the field count on it.
    const lifecycle_action park_unless_init = init_parked ? DROP : PARK;
    // clang-format off
    const lifecycle_action table[][LIFECYCLE_NONE] = {
        //  load request      init request      reset request     reconnect request
        {   park_unless_init, park_unless_init, park_unless_init, CANCEL           },  // load running
        {   park_unless_init, park_unless_init, park_unless_init, CANCEL           },  // init running
        {   park_unless_init, park_unless_init, EMPTY_QUEUE,      PARK             },  // reset running
        {   park_unless_init, park_unless_init, EMPTY_QUEUE,      park_unless_init },  // reconnect running
        {   START,            START,            START,            START_AND_INIT   },  // none
    };
    // clang-format on
    return table[busy][request];
}
