#include "simulator/driver/capable_table.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/paths.h"

static bool has_station(const capable_slot *slot, const capable_entry *wanted) {
    for (uint32_t i = 0; i < slot->count; i++) {
        if (memcmp(slot->entries[i].mac, wanted->mac, sizeof wanted->mac) == 0)
            return true;
    }
    return false;
}

// Adds the stations that the scenario has for a VAP (1 to 8). True when there was one to add.
static bool add_stations(capable_slot *slot, const scenario *scene, int vap) {
    bool changed = false;
    for (int i = 0; i < scene->capable_count; i++) {
        capable_entry entry = {};
        if (scene->capable[i].vap != vap)
            continue;
        mac_octets(scene->capable[i].mac, entry.mac);
        // A slot with a greater number than it can have is nobody's to mend.
        if (slot->count >= CAPABLE_ENTRIES || has_station(slot, &entry))
            continue;
        slot->entries[slot->count++] = entry;
        changed = true;
    }
    return changed;
}

static int complete_slot(int file, const scenario *scene, int vap) {
    capable_slot slot = {};
    off_t place = (off_t)(vap - 1) * (off_t)sizeof slot;
    if (pread(file, &slot, sizeof slot, place) < 0)
        return -1;
    if (!add_stations(&slot, scene, vap))
        return 0;
    return pwrite(file, &slot, sizeof slot, place) == (ssize_t)sizeof slot ? 0 : -1;
}

// The server reads whole slots, so all of them have to be there.
static int complete_file(int file) {
    constexpr off_t whole = CAPABLE_SLOTS * sizeof(capable_slot);
    struct stat status;
    if (fstat(file, &status) != 0)
        return -1;
    return status.st_size < whole ? ftruncate(file, whole) : 0;
}

static bool is_concerned(const driver_state *state, const scenario *scene) {
    for (int i = 0; i < scene->capable_count; i++) {
        if (state->vaps[scene->capable[i].vap - 1].up)
            return true;
    }
    return false;
}

int capable_table_complete(const driver_state *state, const scenario *scene) {
    if (!is_concerned(state, scene))
        return 0;
    int file = open(CAPABLE_TABLE, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0)
        return -1;
    int failed;
    while ((failed = flock(file, LOCK_EX)) != 0 && errno == EINTR) {
    }
    if (failed == 0)
        failed = complete_file(file);
    for (int vap = 1; vap <= CAPABLE_SLOTS && failed == 0; vap++) {
        if (state->vaps[vap - 1].up)
            failed = complete_slot(file, scene, vap);
    }
    int reason = errno;
    close(file);
    errno = reason;
    return failed;
}
