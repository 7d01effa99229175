// wps_gpio: the board's general-purpose inputs and outputs, and its factory defaults.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/board.h"
#include "simulator/factory_defaults.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"

static int complain(const char *what, const char *why) {
    fprintf(stderr, "wps_gpio: %s: %s\n", what, why);
    return 1;
}

// A number from 0 to most, of at most three digits. False when the text is none.
static bool read_number(const char *text, int most, int *number) {
    size_t length = strlen(text);
    if (length == 0 || length > 3 || strspn(text, "0123456789") != length)
        return false;
    *number = atoi(text);
    return *number <= most;
}

static int read_line(const char *name) {
    int line;
    if (!read_number(name, BOARD_GPIO_LINES - 1, &line))
        return complain(name, "no such line");
    printf("%d\n", board_gpio_read(line));
    return 0;
}

static int write_line(const char *name, const char *text) {
    int line, value;
    if (!read_number(name, BOARD_GPIO_LINES - 1, &line))
        return complain(name, "no such line");
    if (!read_number(text, 1, &value))
        return complain(text, "a line is 0 or 1");
    return board_gpio_write(line, value) == 0 ? 0 : complain(GATEWAY_GPIO, strerror(errno));
}

static int fetch_defaults(void) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        return complain("wifi_conf", error);
    bool refused = scene->no_defaults;
    scenario_free(scene);
    if (refused)
        return complain("wifi_conf", "the factory defaults cannot be retrieved");
    return factory_defaults_fetch() == 0 ? 0 : complain("wifi_conf", strerror(errno));
}

int tool_wps_gpio(int argument_count, char *const *arguments) {
    const char *command = argument_count > 0 ? arguments[0] : "";
    if (argument_count == 2 && strcmp(command, "read") == 0)
        return read_line(arguments[1]);
    if (argument_count == 3 && strcmp(command, "write") == 0)
        return write_line(arguments[1], arguments[2]);
    if (argument_count == 1 && strcmp(command, "wifi_conf") == 0)
        return fetch_defaults();
    return tool_usage("wps_gpio");
}
