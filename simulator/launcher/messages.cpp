#include "simulator/launcher/messages.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

bool complain(const char *what, const char *why) {
    fprintf(stderr, "vlk_simulated_gateway: %s: %s\n", what, why);
    return false;
}

bool refused(const char *what, const char *remedy) {
    fprintf(stderr, "vlk_simulated_gateway: %s refused (%s); %s\n", what, strerror(errno), remedy);
    return false;
}
