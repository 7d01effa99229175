// The heap of a process that proot carries.
//
// proot stands in for brk() and takes the heap of a process that was started with vfork() or posix_spawn() for that of
// the one that started it: when one of the two asks for more, it may be told that it has memory which is the other's.
// So each process takes what it needs at once, before it starts any other, and does not ask again.
#include <malloc.h>
#include <stdlib.h>

// Far more than anything in the gateway needs from its heap; what is never touched costs nothing.
constexpr int HEAP_SIZE = 64 << 20;

// More than the heap may have already, and less than what would get a mapping of its own.
constexpr size_t STEP = 100'000;

__attribute__((constructor)) static void take_heap(void) {
    mallopt(M_TOP_PAD, HEAP_SIZE);
    mallopt(M_TRIM_THRESHOLD, 2 * HEAP_SIZE);
    // A compiler would leave out memory that nobody uses.
    void *volatile first = malloc(STEP);
    void *volatile second = malloc(STEP);
    free(second);
    free(first);
}
