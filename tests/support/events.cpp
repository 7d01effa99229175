// The device event library as the unit tests need it. See the header.
#include "tests/support/events.h"

#include <string.h>

#include "platform/platform.h"
#include "tests/support/steps.h"

static std::vector<sent_event> events;

std::vector<sent_event> take_events() {
    std::vector<sent_event> taken;
    taken.swap(events);
    return taken;
}

extern "C" int send_zubra_event(int type, int level, int flags, const char *text, int length) {
    events.push_back({type, level, flags, std::string(text, static_cast<size_t>(length)), strlen(text)});
    record_step(std::string("event ") + text);
    return 0;
}
