// What the lifecycle's workers share with the service thread: a few words, each written and read in one piece, without
// locks.
//
// Touches nothing outside. The service thread sets a state flag to running and driver_loaded to 1; workers clear them
// and write their results.
#pragma once

#include <stdint.h>

#include <atomic>

// Values of the state flags. Any other is an unknown state: its worker is taken for idle by other requests and cannot
// be started.
constexpr uint8_t WORKER_IDLE = 0;
constexpr uint8_t WORKER_RUNNING = 1;

extern std::atomic<uint8_t> load_state;
extern std::atomic<uint8_t> init_state;
extern std::atomic<uint8_t> reset_state;
extern std::atomic<uint8_t> reconnect_state;

// 1 from the acceptance of a load, whatever becomes of it, until a reset or a reconnect has ended.
extern std::atomic<uint8_t> driver_loaded;

// How each worker's last run ended, 0 or -1: -1 when its script could not be started. Nothing depends on them; a
// debugger does.
extern std::atomic<int32_t> load_result;
extern std::atomic<int32_t> init_result;
extern std::atomic<int32_t> reset_result;
extern std::atomic<int32_t> reconnect_result;
