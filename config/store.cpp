// The driver's key=value store: reads go straight to the file, writes through the `cfg` tool.
//
// Touches /tmp/.apcfg (read only) and /tmp/.apcfg_lock, and runs `cfg -a`. Runs on the service thread and on
// lifecycle workers.
#include "config/store.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "config/command.h"
#include "config/log.h"

// The file is read in pieces of this size: a whole store of an ordinary gateway takes one. On the heap, because a
// lifecycle worker has a stack of 32 KiB.
constexpr size_t STORE_BLOCK_SIZE = 64 << 10;

// Room for every key with its suffix and "=".
constexpr size_t SEARCH_KEY_SIZE = 256;

// Told the key of each look-up, with its "=", before it is made, where something in the process defines it: the
// library that the simulated gateway preloads into the server does, for its journal, since a look-up runs no tool that
// could be watched. A gateway has no such function, and the address is null there.
extern "C" __attribute__((weak)) void wlan_store_key_read(const char *search_key);

// A window on the store file: block[begin..end) is read and not yet used.
struct store_window {
    int file;
    char *block;
    size_t size;
    size_t begin;
    size_t end;
};

static ssize_t read_again(int file, char *buffer, size_t size) {
    ssize_t length;
    do {
        length = read(file, buffer, size);
    } while (length < 0 && errno == EINTR);
    return length;
}

// Keeps the last `keep` unused bytes and reads on behind them. Returns false at the end of the file.
static bool move_on(store_window *window, size_t keep) {
    size_t unused = window->end - window->begin;
    if (keep > unused) {
        keep = unused;
    }
    memmove(window->block, window->block + window->end - keep, keep);
    window->begin = 0;
    window->end = keep;
    ssize_t length = read_again(window->file, window->block + keep, window->size - keep);
    if (length <= 0) {
        return false;
    }
    window->end += static_cast<size_t>(length);
    return true;
}

// The next byte, or -1 at the end of the file.
static int next_byte(store_window *window) {
    if (window->begin == window->end && !move_on(window, 0)) {
        return -1;
    }
    return static_cast<unsigned char>(window->block[window->begin++]);
}

// Moves to the start of the first line that begins with the key. `line_start` is the key behind a line break:
// searching for both at once skips whole lines without looking at each, which is faster than going from line break
// to line break (measured on 10,000 lines).
static bool find_line(store_window *window, const char *line_start) {
    size_t length = strlen(line_start);
    for (;;) {
        void *found = memmem(window->block + window->begin, window->end - window->begin, line_start, length);
        if (found) {
            window->begin = static_cast<size_t>(static_cast<char *>(found) - window->block) + 1;
            return true;
        }
        // The break and the key may lie on both sides of the border between two blocks.
        if (!move_on(window, length - 1)) {
            return false;
        }
    }
}

// Moves behind the first "=" of the line. A NUL ends the text of a line like a line break does.
static bool skip_equals_sign(store_window *window) {
    for (;;) {
        int byte = next_byte(window);
        if (byte == '=') {
            return true;
        }
        if (byte == '\n' || byte == '\0' || byte < 0) {
            return false;
        }
    }
}

static void copy_value(store_window *window, char *value, size_t size) {
    size_t length = 0;
    while (length + 1 < size) {
        int byte = next_byte(window);
        if (byte == '\r' || byte == '\n' || byte == '\0' || byte < 0) {
            break;
        }
        value[length++] = static_cast<char>(byte);
    }
    value[length] = '\0';
}

// Looks the key up in the opened store.
static int look_up(int file, const char *search_key, char *value, size_t size) {
    char line_start[SEARCH_KEY_SIZE + 1];
    if (snprintf(line_start, sizeof(line_start), "\n%s", search_key) >= static_cast<int>(sizeof(line_start))) {
        return -1;
    }
    size_t block_size = sizeof(line_start) + STORE_BLOCK_SIZE;
    char *block = static_cast<char *>(malloc(block_size));
    if (!block) {
        return -1;
    }
    // The start of the file is the start of a line too: a break before it says so.
    block[0] = '\n';
    store_window window = {file, block, block_size, 0, 1};
    int status = -1;
    if (!find_line(&window, line_start)) {
        log_debug("[VLK-API] %s %s does not exist in %s\n", "getWifiParam", search_key, STORE_FILE);
    } else if (skip_equals_sign(&window)) {
        copy_value(&window, value, size);
        status = 0;
    }
    free(block);
    return status;
}

int lock_store(void) {
    int lock = open(STORE_LOCK_FILE, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (lock < 0) {
        return -1;
    }
    struct flock whole_file = {};
    whole_file.l_type = F_WRLCK;
    whole_file.l_whence = SEEK_SET;
    whole_file.l_pid = getpid();
    int status;
    do {
        status = fcntl(lock, F_SETLKW, &whole_file);
    } while (status < 0 && errno == EINTR);
    return lock;
}

void unlock_store(int lock) {
    if (lock >= 0) {
        close(lock);
    }
}

int getWifiParam(const char *search_key, char *value, size_t size) {
    if (wlan_store_key_read) {
        wlan_store_key_read(search_key);
    }
    int lock = lock_store();
    int file = open(STORE_FILE, O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        log_debug("[VLK-API] %s Cannot open file %s\n", __func__, STORE_FILE);
        unlock_store(lock);
        return -1;
    }
    int status = look_up(file, search_key, value, size);
    close(file);
    unlock_store(lock);
    return status;
}

int athcfg_getbyname(int index, const char *name, char *value, size_t size) {
    value[0] = '\0';
    char search_key[SEARCH_KEY_SIZE] = {};
    if (index < 2) {
        snprintf(search_key, sizeof(search_key), "%s=", name);
    } else {
        snprintf(search_key, sizeof(search_key), "%s_%d=", name, index);
    }
    getWifiParam(search_key, value, size);
    log_debug("[VLK-API] %s index %d, Param: %s is %s\n", __func__, interface_number(index), search_key, value);
    return value[0] != '\0' ? 0 : -1;
}

// The value is not escaped here: callers that take texts from clients do that where it is wanted, and some settings
// are passed on exactly as they came.
static char *write_command(int index, const char *name, const char *value) {
    char *command = nullptr;
    int length = index < 2 ? asprintf(&command, "cfg -a %s=\"%s\"", name, value)
                           : asprintf(&command, "cfg -a %s_%d=\"%s\"", name, index, value);
    return length < 0 ? nullptr : command;
}

int athcfg_setbyname(int index, const char *name, const char *value) {
    char *command = write_command(index, name, value);
    if (!command) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: index %d, execute cmd: %s\n", __func__, __func__, interface_number(index), command);
    int status = athcfg_runcmdf(__func__, "%s", command);
    free(command);
    return status == 0 ? 0 : -1;
}

int athcfg_getint(int index, const char *name, int *value) {
    char text[STORE_VALUE_SIZE];
    int status = athcfg_getbyname(index, name, text, sizeof(text));
    *value = atoi(text);
    return status;
}

int athcfg_setint(int index, const char *name, int value) {
    char text[sizeof("-2147483648")];
    snprintf(text, sizeof(text), "%d", value);
    return athcfg_setbyname(index, name, text);
}

int athcfg_get_radio(int index) {
    char text[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_RADIO_ID", text, sizeof(text));
    // "1", "wifi1" and "10" all name the second radio.
    int radio = strchr(text, '1') ? 1 : 0;
    log_debug("[VLK-API] %s %s: index %d => radio %d\n", __func__, __func__, index, radio);
    return radio;
}

int interface_number(int index) {
    // Unsigned arithmetic has no overflow at the lowest index.
    return static_cast<int>(index - 1U);
}

void interface_name(int index, char name[INTERFACE_NAME_SIZE]) {
    snprintf(name, INTERFACE_NAME_SIZE, "ath%d", interface_number(index));
}

int radio_store_index(int radio) {
    return radio == 1 ? 1 : 2;
}
