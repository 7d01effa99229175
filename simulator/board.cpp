#include "simulator/board.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/driver/driver_state.h"
#include "simulator/paths.h"
#include "simulator/store.h"

static const char *const slots[] = {PCI_POWER_0, PCI_POWER_1};

// Room for the number of a line.
constexpr size_t LINE_KEY_SIZE = 12;

// The radios are out of reset when the board is switched on; every other line is low.
static int start_value(int line) {
    return line == GPIO_RADIO_RESET ? 1 : 0;
}

int board_start(void) {
    static char text[] = "10=1\n100=0\n";
    const store_text lines = {text, sizeof text - 1};
    return lines_save(GATEWAY_GPIO, &lines);
}

int board_gpio_read(int line) {
    char key[LINE_KEY_SIZE];
    store_text lines;
    size_t length;
    snprintf(key, sizeof key, "%d", line);
    const char *found = lines_load(GATEWAY_GPIO, &lines) == 0 ? store_find(&lines, key, &length) : nullptr;
    // The value ends in LF, which atoi stops at, unless it is the first thing it sees.
    int value = start_value(line);
    if (found != nullptr)
        value = length > 0 && atoi(found) != 0 ? 1 : 0;
    store_free(&lines);
    return value;
}

int board_gpio_write(int line, int value) {
    char key[LINE_KEY_SIZE];
    snprintf(key, sizeof key, "%d", line);
    int lock = driver_state_lock();
    store_text lines;
    int failed = lines_load(GATEWAY_GPIO, &lines) == 0 || errno == ENOENT ? 0 : -1;
    if (failed == 0)
        failed = store_set(&lines, key, value != 0 ? "1" : "0");
    if (failed == 0)
        failed = lines_save(GATEWAY_GPIO, &lines);
    store_free(&lines);
    if (lock >= 0)
        close(lock);
    return failed;
}

// The number that a file of the bus holds and when it was written. False when it holds none.
static bool read_bus(const char *path, long *number, timespec *written) {
    char text[16] = "";
    struct stat status;
    FILE *file = fopen(path, "re");
    if (file == nullptr)
        return false;
    bool got = fgets(text, sizeof text, file) != nullptr && fstat(fileno(file), &status) == 0;
    fclose(file);
    if (!got)
        return false;
    char *end;
    *number = strtol(text, &end, 10);
    *written = status.st_mtim;
    return end != text;
}

// Times of files move in the kernel's ticks, so two that are equal say nothing: the rescan counts as the later one.
static bool is_later_or_equal(const timespec *one, const timespec *other) {
    return one->tv_sec != other->tv_sec ? one->tv_sec > other->tv_sec : one->tv_nsec >= other->tv_nsec;
}

static void write_power(const char *path) {
    FILE *file = fopen(path, "we");
    if (file == nullptr)
        return;
    fputs("1\n", file);
    fclose(file);
}

static bool has_power(const char *slot) {
    long power, rescan;
    timespec switched, looked;
    if (!read_bus(slot, &power, &switched) || power != 0)
        return true;
    if (!read_bus(PCI_RESCAN, &rescan, &looked) || rescan != 1 || !is_later_or_equal(&looked, &switched))
        return false;
    write_power(slot);
    return true;
}

bool board_has_radio(int radio) {
    // Both are looked at: a slot gets its power back whether its radio is held in reset or not.
    bool powered = has_power(slots[radio]);
    return powered && board_gpio_read(GPIO_RADIO_RESET) != 0;
}
