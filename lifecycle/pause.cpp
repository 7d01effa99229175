// Pauses that the driver and the board need between two steps. See the header.
#include "lifecycle/pause.h"

#include <errno.h>
#include <time.h>

void lifecycle_pause(int seconds) {
    timespec left = {seconds, 0};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
    }
}
