// insmod: inserts the driver into the kernel.
//
// It takes the time that its parameter "seconds" says, and the driver counts as loaded at its end.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "simulator/driver/driver_life.h"
#include "simulator/paths.h"
#include "simulator/scenario_reader.h"
#include "simulator/tools/driver_time.h"
#include "simulator/tools/tools.h"

void sleep_seconds(double seconds) {
    timespec left = {};
    left.tv_sec = (time_t)seconds;
    left.tv_nsec = (long)((seconds - (double)left.tv_sec) * 1e9);
    while (nanosleep(&left, &left) != 0) {
    }
}

void name_absent_radios(const char *tool, const scenario *scene) {
    driver_state state;
    driver_state_read(&state);
    for (int i = 0; i < SCENARIO_RADIOS; i++) {
        if (scene->radios[i].declared && state.absent[i])
            fprintf(stderr, "%s: wifi%d is not on the bus\n", tool, i);
    }
}

// The time that the parameters ask for. False when one is none of the driver's.
static bool read_parameters(int argument_count, char *const *arguments, double *seconds) {
    *seconds = 0;
    for (int i = 0; i < argument_count; i++) {
        if (strncmp(arguments[i], "seconds=", 8) != 0 || !parse_seconds(arguments[i] + 8, seconds))
            return false;
    }
    return true;
}

// In the kernel's words for a module that is not there or does not know a parameter.
static int refuse(const char *module, int reason) {
    fprintf(stderr, "insmod: ERROR: could not insert module %s: %s\n", module, strerror(reason));
    return 1;
}

int tool_insmod(int argument_count, char *const *arguments) {
    char error[SCENARIO_ERROR_SIZE];
    double seconds;
    if (argument_count < 1)
        return tool_usage("insmod");
    if (strcmp(arguments[0], DRIVER_MODULE) != 0)
        return refuse(arguments[0], ENOENT);
    if (!read_parameters(argument_count - 1, arguments + 1, &seconds))
        return refuse(arguments[0], EINVAL);
    sleep_seconds(seconds);
    if (driver_insert() != 0)
        return refuse(arguments[0], errno);
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene != nullptr)
        name_absent_radios("insmod", scene);
    scenario_free(scene);
    return 0;
}
