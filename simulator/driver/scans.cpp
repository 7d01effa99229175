#include "simulator/driver/scans.h"

#include <errno.h>
#include <stdio.h>
#include <strings.h>
#include <unistd.h>

#include "simulator/paths.h"

// What is behind the name of a list: nothing for that of the last scan, of the one before it, and while one is written.
constexpr const char LAST[] = "";
constexpr const char BEFORE[] = ".before";
constexpr const char UNFINISHED[] = ".new";

struct list_name {
    char path[sizeof GATEWAY_SCANS + 24];
};

static list_name name_of(int radio, const char *which) {
    list_name name;
    snprintf(name.path, sizeof name.path, "%s%d%s", GATEWAY_SCANS, radio, which);
    return name;
}

scan_status scan_status_at(const driver_state *state, int radio, double now) {
    const driver_scan *scan = &state->scans[radio];
    if (!scan->begun)
        return SCAN_NEVER;
    return now < scan->until ? SCAN_RUNNING : SCAN_COMPLETE;
}

int scan_found(const driver_scan *scan, int count, double now) {
    if (!scan->begun || now < scan->since)
        return 0;
    return now < scan->until ? (int)(count * (now - scan->since) / (scan->until - scan->since)) : count;
}

// Neither a text of a scenario nor an address holds a quote or a line end, so each can be read again as it was.
static int write_list(const char *path, const scenario *scene, int radio) {
    FILE *file = fopen(path, "we");
    if (file == nullptr)
        return -1;
    for (int i = 0; i < scene->neighbour_count; i++) {
        const scenario_neighbour *near = &scene->neighbours[i];
        if (scenario_find_channel(&scene->radios[radio], near->channel) != nullptr)
            fprintf(file, "neighbour bssid=%s ssid=\"%s\" channel=%u rssi=%d auth=\"%s\" mode=\"%s\"\n", near->bssid,
                    near->ssid, near->channel, near->rssi, near->auth, near->mode);
    }
    bool written = ferror(file) == 0;
    return fclose(file) == 0 && written ? 0 : -1;
}

// Puts a new list in the place of the last one, which becomes the one before.
static int replace_list(const scenario *scene, int radio) {
    list_name last = name_of(radio, LAST), before = name_of(radio, BEFORE), unfinished = name_of(radio, UNFINISHED);
    if (write_list(unfinished.path, scene, radio) != 0)
        return -1;
    if (rename(last.path, before.path) != 0 && errno != ENOENT)
        return -1;
    return rename(unfinished.path, last.path);
}

static int begin(driver_state *state, const scenario *scene, int radio) {
    double now = driver_clock();
    // It may have gone since somebody looked.
    errno = ENODEV;
    if (!state->loaded)
        return -1;
    errno = EBUSY;
    if (scan_status_at(state, radio, now) == SCAN_RUNNING || replace_list(scene, radio) != 0)
        return -1;
    state->scans[radio] = {true, now, now + scene->radios[radio].scan_seconds};
    return driver_state_write(state);
}

// Gives the driver's lock back; errno stays as it is.
static void unlock(int lock) {
    int reason = errno;
    if (lock >= 0)
        close(lock);
    errno = reason;
}

int scan_begin(const scenario *scene, int radio) {
    int lock = driver_state_lock();
    driver_state state;
    driver_state_read(&state);
    int failed = begin(&state, scene, radio);
    unlock(lock);
    return failed;
}

// A list, null with errno when there is none that can be read.
static scenario *read_list(int radio, const char *which) {
    char error[SCENARIO_ERROR_SIZE];
    list_name name = name_of(radio, which);
    scenario *list = scenario_new(name.path, error, sizeof error);
    // Before the first scan, and of a scan before the first one, there is an empty list.
    if (list == nullptr && access(name.path, F_OK) != 0)
        list = scenario_parse(name.path, "", 0, error, sizeof error);
    errno = EIO;
    return list;
}

static bool has_network(const scan_network *networks, int count, const char *bssid) {
    for (int i = 0; i < count; i++) {
        if (strcasecmp(networks[i].seen.bssid, bssid) == 0)
            return true;
    }
    return false;
}

static int gather(const driver_state *state, int radio, const scenario *last, const scenario *before,
                  scan_network *networks) {
    double now = driver_clock();
    int found = scan_found(&state->scans[radio], last->neighbour_count, now);
    for (int i = 0; i < found; i++)
        networks[i] = {last->neighbours[i], true};
    int count = found;
    bool running = scan_status_at(state, radio, now) == SCAN_RUNNING;
    for (int i = 0; running && i < before->neighbour_count; i++) {
        if (!has_network(networks, found, before->neighbours[i].bssid))
            networks[count++] = {before->neighbours[i], false};
    }
    return count;
}

int scan_networks(int radio, scan_network *networks) {
    // A scan that begins meanwhile would exchange the lists.
    int lock = driver_state_lock();
    driver_state state;
    driver_state_read(&state);
    scenario *last = read_list(radio, LAST);
    scenario *before = read_list(radio, BEFORE);
    int count = last != nullptr && before != nullptr ? gather(&state, radio, last, before, networks) : -1;
    scenario_free(last);
    scenario_free(before);
    errno = EIO;
    unlock(lock);
    return count;
}

void scans_forget(void) {
    static const char *const all[] = {LAST, BEFORE, UNFINISHED};
    for (int i = 0; i < SCENARIO_RADIOS; i++) {
        for (const char *which : all)
            unlink(name_of(i, which).path);
    }
}
