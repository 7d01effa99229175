// radstat: the statistics collector of a radio, as far as others see it.
//
// One process an interface, each started through a link of its own (/var/run/radstat8), so that it can be ended alone.
// It stays in the foreground and answers the request "result" with its last measurement. Rate, interval and the value
// behind -R are taken and make no difference: there is always a measurement of the moment.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/daemons/daemon.h"
#include "simulator/daemons/measurement.h"
#include "simulator/daemons/requests.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"

struct radstat {
    collector radio;
    int socket;
    char path[64];  // of the socket
};

static bool is_number(const char *text) {
    char *end;
    errno = 0;
    long value = strtol(text, &end, 10);
    return end != text && *end == '\0' && errno == 0 && value == (int)value;
}

// Each option once, in any order.
static bool read_arguments(int argument_count, char *const *arguments, const char **interface) {
    static const char options[] = "irmR";
    const char *values[sizeof options - 1] = {};
    for (int i = 0; i < argument_count; i += 2) {
        const char *option = arguments[i];
        const char *known = strlen(option) == 2 && option[0] == '-' ? strchr(options, option[1]) : nullptr;
        if (known == nullptr || i + 1 == argument_count || values[known - options] != nullptr)
            return false;
        values[known - options] = arguments[i + 1];
    }
    for (size_t i = 0; i < sizeof options - 1; i++) {
        if (values[i] == nullptr || (i > 0 && !is_number(values[i])))
            return false;
    }
    *interface = values[0];
    return true;
}

// The last values stay when there is nothing new to measure, also while the scenario is being edited.
static void look(collector *self) {
    char error[SCENARIO_ERROR_SIZE];
    driver_state state;
    driver_state_read(&state);
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene != nullptr)
        collector_look(self, scene, &state, driver_clock());
    scenario_free(scene);
}

static void serve(void *radstat_self, int) {
    radstat *self = (radstat *)radstat_self;
    request received;
    if (!request_receive(self->socket, "radstat", sizeof self->radio.last, &received) ||
        strcmp(received.text, "result") != 0)
        return;
    look(&self->radio);
    request_answer(self->socket, &received, &self->radio.last, sizeof self->radio.last);
}

int tool_radstat(int argument_count, char *const *arguments) {
    radstat self = {};
    const char *interface = nullptr;
    if (!read_arguments(argument_count, arguments, &interface))
        return tool_usage("radstat");
    self.radio.vap = vap_of_interface(interface);
    if (self.radio.vap < 0) {
        fprintf(stderr, "radstat: there is no interface \"%s\"\n", interface);
        return 1;
    }
    daemon_cut_ties();
    setsid();
    mkdir(RADSTAT_SOCKETS, 0755);
    snprintf(self.path, sizeof self.path, "%s/%s", RADSTAT_SOCKETS, interface);
    self.radio.started = driver_clock();
    self.socket = daemon_listen(self.path);
    if (self.socket < 0) {
        fprintf(stderr, "radstat: %s: %s\n", self.path, strerror(errno));
        return 1;
    }
    daemon_serve(&self.socket, 1, serve, &self);
    unlink(self.path);
    return 0;
}
