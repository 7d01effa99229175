// A gateway's platform that is made of an input. See the header.
#include "fuzz/support/platform.h"

#include <string.h>

#include "config/wireless.h"
#include "fuzz/support/check.h"
#include "lifecycle/requests.h"
#include "lifecycle/state.h"
#include "survey/control_channel.h"

fuzz_platform platform;

// More than the server ever writes for one call: the store at its largest.
constexpr size_t STORAGE = 1 << 20;

// A request parks one other at most, so few workers can follow each other. More would be a queue that feeds itself.
constexpr int WORKERS_MAX = 8;

// The server keeps one piece of low memory. As soon as it has been given back no other is mapped for this.
static void take_kept_low_memory() {
    void *piece = low_memory_new(1);
    must(piece != nullptr, "there is low memory");
    low_memory_free(piece, 1);
}

void begin_platform(const fuzz_input *answers) {
    take_kept_low_memory();
    platform = {};
    platform.answers = *answers;
    platform.storage_left = STORAGE;
    memset(buf_reply, 0xFF, sizeof(buf_reply));
}

void run_workers() {
    for (int i = 0; i < WORKERS_MAX && !platform.workers.empty(); i++) {
        void *(*routine)(void *) = platform.workers.front();
        platform.workers.erase(platform.workers.begin());
        routine(nullptr);
        wlan_checkThreadQueue();
    }
    must(platform.workers.empty(), "workers come to an end");
}

void end_platform() {
    run_workers();
    must(!is_file_open(), "every file was closed");
    must(!is_socket_open(), "every socket was closed");
    must(platform.open_pipes == 0, "every command was waited for");
    take_kept_low_memory();
    must(platform.bytes_mapped == 0, "all low memory was given back");
    must(load_state == WORKER_IDLE && init_state == WORKER_IDLE && reset_state == WORKER_IDLE &&
             reconnect_state == WORKER_IDLE,
         "no worker is taken for running when all have ended");
    driver_loaded = 0;
    queued_request = {};
    platform = {};
}

static tool_answer answer_from_input() {
    constexpr uint8_t DOES_NOT_START = 0xFE;
    constexpr uint8_t BREAKS = 0xFD;
    uint8_t head = platform.answers.left > 0 ? *platform.answers.next : 0;
    if (head == DOES_NOT_START) {
        take_byte(&platform.answers);
        return {false, false, ""};
    }
    bool breaks = head == BREAKS;
    if (breaks) {
        take_byte(&platform.answers);
    }
    return {true, breaks, take_text(&platform.answers)};
}

tool_answer answer_command(const char *command) {
    must(*command != '\0', "a command is not empty");
    platform.commands.push_back(command);
    tool_answer answer = {true, false, ""};
    if (platform.run_tool && platform.run_tool(command, &answer.text)) {
        return answer;
    }
    if (platform.outputs.empty()) {
        return answer_from_input();
    }
    size_t last = platform.outputs.size() - 1;
    size_t turn = platform.commands.size() - 1;
    answer.text = platform.outputs[turn < last ? turn : last];
    return answer;
}
