// The heap of a process that proot carries.
//
// proot stands in for brk() and takes the heap of a process that was started with vfork() or posix_spawn() for that of
// the one that started it, and so for that of all others that are being started by it: one may be told that it has
// memory which is another's. So no process asks for any. Where the heap would go beyond the last address, sbrk() says
// that there is no memory without asking anybody, and malloc() takes a mapping instead: at once, and one that is large
// enough, because it leaves an error number behind each time, and there are programs that look at it.
#include <malloc.h>
#include <stdint.h>
#include <stdlib.h>

// The address at which the C library believes the heap to end.
extern "C" __attribute__((weak)) uintptr_t __curbrk;

// Far more than anything in the gateway needs; what is never touched costs nothing.
constexpr int MAPPING_SIZE = 64 << 20;

// More than the heap may have already, and less than what would get a mapping of its own.
constexpr size_t STEP = 100'000;

__attribute__((constructor)) static void take_mapping(void) {
    if (&__curbrk != nullptr)
        __curbrk = UINTPTR_MAX - sizeof(void *) + 1;
    mallopt(M_TOP_PAD, MAPPING_SIZE);
    // A compiler would leave out memory that nobody uses.
    void *volatile first = malloc(STEP);
    void *volatile second = malloc(STEP);
    free(second);
    free(first);
}
