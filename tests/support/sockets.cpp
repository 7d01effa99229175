// How many sockets the code under test has opened. See the header.
#include "tests/support/sockets.h"

#include <dlfcn.h>
#include <sys/socket.h>

#include <atomic>

static std::atomic<unsigned> opened;

unsigned sockets_opened() {
    return opened;
}

extern "C" int socket(int domain, int type, int protocol) noexcept {
    static auto *const next = reinterpret_cast<int (*)(int, int, int)>(dlsym(RTLD_NEXT, "socket"));
    opened++;
    return next(domain, type, protocol);
}
