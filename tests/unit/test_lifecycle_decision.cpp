// The rules of the lifecycle: what a request does in each situation. The table is written out a second time here, cell
// by cell.
#include "lifecycle/decision.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using enum lifecycle_action;

struct cell {
    const char *name;
    lifecycle_kind busy;
    lifecycle_kind request;
    lifecycle_action without_init;  // nothing is parked, or something that is no init
    lifecycle_action with_init;     // an init is parked
};

constexpr cell CELLS[] = {
    {"LoadDuringLoad", LIFECYCLE_LOAD, LIFECYCLE_LOAD, PARK, DROP},
    {"InitDuringLoad", LIFECYCLE_LOAD, LIFECYCLE_INIT, PARK, DROP},
    {"ResetDuringLoad", LIFECYCLE_LOAD, LIFECYCLE_RESET, PARK, DROP},
    {"ReconnectDuringLoad", LIFECYCLE_LOAD, LIFECYCLE_RECONNECT, CANCEL, CANCEL},
    {"LoadDuringInit", LIFECYCLE_INIT, LIFECYCLE_LOAD, PARK, DROP},
    {"InitDuringInit", LIFECYCLE_INIT, LIFECYCLE_INIT, PARK, DROP},
    {"ResetDuringInit", LIFECYCLE_INIT, LIFECYCLE_RESET, PARK, DROP},
    {"ReconnectDuringInit", LIFECYCLE_INIT, LIFECYCLE_RECONNECT, CANCEL, CANCEL},
    {"LoadDuringReset", LIFECYCLE_RESET, LIFECYCLE_LOAD, PARK, DROP},
    {"InitDuringReset", LIFECYCLE_RESET, LIFECYCLE_INIT, PARK, DROP},
    {"ResetDuringReset", LIFECYCLE_RESET, LIFECYCLE_RESET, EMPTY_QUEUE, EMPTY_QUEUE},
    {"ReconnectDuringReset", LIFECYCLE_RESET, LIFECYCLE_RECONNECT, PARK, PARK},
    {"LoadDuringReconnect", LIFECYCLE_RECONNECT, LIFECYCLE_LOAD, PARK, DROP},
    {"InitDuringReconnect", LIFECYCLE_RECONNECT, LIFECYCLE_INIT, PARK, DROP},
    {"ResetDuringReconnect", LIFECYCLE_RECONNECT, LIFECYCLE_RESET, EMPTY_QUEUE, EMPTY_QUEUE},
    {"ReconnectDuringReconnect", LIFECYCLE_RECONNECT, LIFECYCLE_RECONNECT, PARK, DROP},
    {"LoadWhenIdle", LIFECYCLE_NONE, LIFECYCLE_LOAD, START, START},
    {"InitWhenIdle", LIFECYCLE_NONE, LIFECYCLE_INIT, START, START},
    {"ResetWhenIdle", LIFECYCLE_NONE, LIFECYCLE_RESET, START, START},
    {"ReconnectWhenIdle", LIFECYCLE_NONE, LIFECYCLE_RECONNECT, START_AND_INIT, START_AND_INIT},
};

class LifecycleDecision : public testing::TestWithParam<cell> {};

TEST_P(LifecycleDecision, WithoutAParkedInit) {
    EXPECT_EQ(lifecycle_decide(GetParam().busy, GetParam().request, false), GetParam().without_init);
}

TEST_P(LifecycleDecision, WithAParkedInit) {
    EXPECT_EQ(lifecycle_decide(GetParam().busy, GetParam().request, true), GetParam().with_init);
}

std::ostream &operator<<(std::ostream &out, const cell &which) {
    return out << which.name;
}

std::string cell_name(const testing::TestParamInfo<cell> &info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Table, LifecycleDecision, testing::ValuesIn(CELLS), cell_name);

}  // namespace
