// What the lifecycle's workers share with the service thread. See the header.
#include "lifecycle/state.h"

// Workers have to be able to rely on these without the C library's locks.
static_assert(std::atomic<uint8_t>::is_always_lock_free && std::atomic<int32_t>::is_always_lock_free);

std::atomic<uint8_t> load_state;
std::atomic<uint8_t> init_state;
std::atomic<uint8_t> reset_state;
std::atomic<uint8_t> reconnect_state;

std::atomic<uint8_t> driver_loaded;

std::atomic<int32_t> load_result;
std::atomic<int32_t> init_result;
std::atomic<int32_t> reset_result;
std::atomic<int32_t> reconnect_result;
