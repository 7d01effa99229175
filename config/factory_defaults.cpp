// Factory defaults. See the header.
#include "config/factory_defaults.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "config/wps_files.h"
#include "platform/platform.h"
// The only includes of this folder that point upwards: a device with factory settings has no black list and knows no
// stations, and this room has to see to it, because clients ask for all of it in one call.
#include "steering/soft_block.h"
#include "steering/steering_tables.h"

constexpr const char OPERATION[] = "wlan_setRestoreDefaults";

constexpr const char DEFAULTS_FILE[] = "/tmp/wifi_defaults.dat";
constexpr const char DRIVER_LOG_FILE[] = "/nvram/wlanlog";

constexpr int SCOPE_5_GHZ = 0;
constexpr int SCOPE_ALL = 2;

// What the markers of a radio's section begin with. "DELIMETER" is how the defaults files in the field spell it.
constexpr const char *section_marker[] = {"SETTING_DELIMETER=50_RADIO", "SETTING_DELIMETER=24_RADIO"};

// The store begins with this many bytes that belong to the driver's tool, and its content ends with as many zeros.
constexpr off_t STORE_HEADER_SIZE = 4;
constexpr char STORE_END[4] = {};

// A line of 511 characters with its line break.
constexpr size_t PIECE_SIZE = 512;

enum class copying { OUTSIDE_SECTION, INSIDE_SECTION, EVERYTHING };

// What can be opened but not read, a directory for one, is no defaults file: the store must not be emptied for it.
static FILE *open_defaults(void) {
    FILE *defaults = fopen(DEFAULTS_FILE, "re");
    if (!defaults) {
        return nullptr;
    }
    int first = getc(defaults);
    if (first == EOF && ferror(defaults)) {
        fclose(defaults);
        return nullptr;
    }
    ungetc(first, defaults);
    return defaults;
}

// Opens the defaults file. A missing one is fetched from the other processor, an ARM.
static FILE *obtain_defaults(void) {
    FILE *defaults = open_defaults();
    if (defaults) {
        return defaults;
    }
    log_debug("[VLK-API] %s file not found: %s\n", OPERATION, DEFAULTS_FILE);
    athcfg_runcmdf(OPERATION, "wps_gpio wifi_conf");
    defaults = open_defaults();
    if (!defaults) {
        log_debug("[VLK-API] %s file could not be retrieved: %s\n", OPERATION, DEFAULTS_FILE);
        return nullptr;
    }
    log_debug("[VLK-API] %s file successfully retrieved from ARM: %s\n", OPERATION, DEFAULTS_FILE);
    return defaults;
}

// Goes to where the lines are written: over the zeros that end the store, or behind the header. The header stays as it
// is, also that of a store too short to have the zeros. Returns false when the store has no positions.
static bool find_place(FILE *store, int scope) {
    off_t place = STORE_HEADER_SIZE;
    if (scope != SCOPE_ALL && fseeko(store, -static_cast<off_t>(sizeof(STORE_END)), SEEK_END) == 0 &&
        ftello(store) > place) {
        place = ftello(store);
    }
    return fseeko(store, place, SEEK_SET) == 0;
}

// Reads a line with its line break, or as much of it as there is room for. Returns its length, 0 at the end.
static size_t read_piece(FILE *defaults, char *piece, size_t size) {
    size_t length = 0;
    while (length < size) {
        int byte = getc(defaults);
        if (byte == EOF) {
            break;
        }
        piece[length++] = static_cast<char>(byte);
        if (byte == '\n') {
            break;
        }
    }
    return length;
}

// A NUL is a character like any other here: nothing of the file may hide behind one.
static bool contains(const char *line, size_t length, const char *text) {
    return memmem(line, length, text, strlen(text)) != nullptr;
}

// Whether the line goes into the store. A marker of the section changes the state; all other markers are lines like
// any other, as they always were: the tool drops what is no setting.
static bool takes_line(copying *state, const char *marker, const char *line, size_t length) {
    switch (*state) {
        case copying::OUTSIDE_SECTION:
            if (contains(line, length, marker) && contains(line, length, "_START")) {
                *state = copying::INSIDE_SECTION;
            }
            return false;
        case copying::INSIDE_SECTION:
            if (contains(line, length, marker) && contains(line, length, "_STOP")) {
                *state = copying::OUTSIDE_SECTION;
                return false;
            }
            return true;
        case copying::EVERYTHING:
            return true;
    }
    return false;
}

// Copies the lines, or without a store only counts their bytes. A line that is too long comes in pieces: its beginning
// decides for all of it.
static off_t copy_lines(FILE *defaults, FILE *store, int scope) {
    copying state = scope == SCOPE_ALL ? copying::EVERYTHING : copying::OUTSIDE_SECTION;
    const char *marker = scope == SCOPE_ALL ? "" : section_marker[scope];
    char piece[PIECE_SIZE];
    bool begins_line = true;
    bool taken = false;
    off_t copied = 0;
    size_t length;
    while (!(store && ferror(store)) && (length = read_piece(defaults, piece, sizeof(piece))) > 0) {
        if (begins_line) {
            taken = takes_line(&state, marker, piece, length);
        }
        if (taken) {
            copied += static_cast<off_t>(length);
        }
        if (taken && store) {
            fwrite(piece, 1, length, store);
        }
        begins_line = piece[length - 1] == '\n';
    }
    if (store && ferror(defaults)) {
        log_error("[VLK-API] Error %s read %s failed\n", OPERATION, DEFAULTS_FILE);
    }
    return copied;
}

// What is no file may have no end, or be there once only.
static bool can_be_read_twice(FILE *defaults) {
    struct stat status;
    return fstat(fileno(defaults), &status) == 0 && S_ISREG(status.st_mode);
}

// Takes the room for the lines and the zeros behind them before anything is written: a store that was written over by
// half is none. Returns false without room; the store is then as it was.
static bool take_room(FILE *store, FILE *defaults, int scope) {
    if (!can_be_read_twice(defaults)) {
        return true;
    }
    off_t length = copy_lines(defaults, nullptr, scope) + static_cast<off_t>(sizeof(STORE_END));
    rewind(defaults);
    int error = posix_fallocate(fileno(store), ftello(store), length);
    return error != ENOSPC && error != EFBIG;
}

// Writes the lines and the zeros behind them, and closes the store.
static void rewrite_store(FILE *store, FILE *defaults, int scope) {
    bool written = find_place(store, scope) && take_room(store, defaults, scope);
    if (written) {
        copy_lines(defaults, store, scope);
        written = !ferror(store) && fwrite(STORE_END, 1, sizeof(STORE_END), store) == sizeof(STORE_END);
    }
    // Closing writes what is still buffered.
    if (fclose(store) != 0 || !written) {
        log_error("[VLK-API] Error %s write %s failed\n", OPERATION, STORE_FILE);
    }
}

// Copies the defaults into the store while nobody else looks at it. Returns -1 when there is no store.
static int copy_defaults(FILE *defaults, int scope) {
    int lock = lock_store();
    FILE *store = fopen(STORE_FILE, "r+e");
    if (store) {
        rewrite_store(store, defaults, scope);
    }
    fclose(defaults);
    unlock_store(lock);
    if (!store) {
        log_debug("[VLK-API] %s file not found: %s\n", OPERATION, STORE_FILE);
        return -1;
    }
    return 0;
}

static void remove_existing(const char *path) {
    if (access(path, F_OK) == 0) {
        athcfg_runcmdf(OPERATION, "rm -f %s", path);
    }
}

// The WPS files of both radios go whatever the scope. Do not mend this: clients that restore one radio count on the
// pairing state of every VAP being gone.
static void remove_persistent_files(void) {
    athcfg_runcmdf(OPERATION, "rm -f %s/*", WPS_DIRECTORY);
    remove_existing(CAPABLE_TABLE_FILE);
    remove_existing(DRIVER_LOG_FILE);
}

int wlan_setRestoreDefaults(int scope) {
    if (scope < SCOPE_5_GHZ || scope > SCOPE_ALL) {
        return -1;
    }
    wlan_setSBBlackListClear(1, 1);
    wlan_clearWiFiStatisticsOnFactory();
    FILE *defaults = obtain_defaults();
    if (!defaults || copy_defaults(defaults, scope) != 0) {
        return -1;
    }
    athcfg_runcmdf(OPERATION, "cfg -c");
    remove_persistent_files();
    return 0;
}
