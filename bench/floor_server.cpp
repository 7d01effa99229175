// The bare server that the benchmark measures against: what rpcgen and the RPC library make of floor.x, with the least
// that an answer needs. It has no portmapper: it prints its port.
#include <fcntl.h>
#include <rpc/rpc.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

extern "C" {
#include "bench/floor.h"
void floor_prog_1(svc_req *request, SVCXPRT *transport);
}

constexpr const char STORE[] = "/tmp/.apcfg";
constexpr const char STORE_LOCK[] = "/tmp/.apcfg_lock";
constexpr size_t BLOCK_SIZE = 64 << 10;
constexpr size_t VALUE_SIZE = 1728;
constexpr size_t TABLE_SIZE = 8196;

// One integer travels as four elements.
static u_int integers[4];
static char text[VALUE_SIZE];
static char table[TABLE_SIZE];
static floor_result answer;

// The value behind the key in the lines of a block, moved to the front; nullptr when it is not there.
static const char *find_in(char *block, char *end, const char *key, size_t key_length) {
    for (char *line = block; line < end;) {
        char *line_end = static_cast<char *>(memchr(line, '\n', static_cast<size_t>(end - line)));
        if (!line_end)
            return nullptr;
        if (static_cast<size_t>(line_end - line) > key_length && memcmp(line, key, key_length) == 0) {
            *line_end = '\0';
            return line + key_length;
        }
        line = line_end + 1;
    }
    return nullptr;
}

// Lock, open, read in large blocks, memchr, close. A line is no longer than what is kept from block to block.
static void look_up(const char *key, char *value, size_t size) {
    static char block[BLOCK_SIZE + VALUE_SIZE];
    size_t key_length = strlen(key), kept = 0;
    int lock = open(STORE_LOCK, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    fcntl(lock, F_SETLKW, &whole);
    int file = open(STORE, O_RDONLY | O_CLOEXEC);
    value[0] = '\0';
    for (ssize_t length; (length = read(file, block + kept, BLOCK_SIZE)) > 0;) {
        char *end = block + kept + length;
        const char *found = find_in(block, end, key, key_length);
        if (found) {
            snprintf(value, size, "%s", found);
            break;
        }
        const char *last_break = static_cast<const char *>(memrchr(block, '\n', static_cast<size_t>(end - block)));
        const char *rest = last_break ? last_break + 1 : end;
        kept = static_cast<size_t>(end - rest);
        memmove(block, rest, kept);
    }
    close(file);
    close(lock);
}

static floor_result *with_integer(u_int value) {
    integers[0] = value;
    answer.return_values.return_values_len = 4;
    answer.return_values.return_values_val = integers;
    answer.return_data.return_data_len = 0;
    return &answer;
}

static floor_result *with_data(char *data, size_t size) {
    answer.return_values.return_values_len = 0;
    answer.return_data.return_data_len = static_cast<u_int>(size);
    answer.return_data.return_data_val = data;
    return &answer;
}

static void look_for_nothing(int times) {
    for (int i = 0; i < times; i++)
        access("/tmp/bench_debug", R_OK);
}

floor_result *floor_integer_looked_up_1_svc(int *looks, svc_req *) {
    char value[VALUE_SIZE];
    look_for_nothing(*looks);
    look_up("AP_DTIM=", value, sizeof value);
    return with_integer(static_cast<u_int>(atoi(value)));
}

floor_result *floor_text_looked_up_1_svc(int *looks, svc_req *) {
    look_for_nothing(*looks);
    look_up("AP_SSID=", text, sizeof text);
    return with_data(text, strlen(text) + 1);
}

floor_result *floor_table_1_svc(int *looks, svc_req *) {
    look_for_nothing(*looks);
    return with_data(table, sizeof table);
}

int main() {
    SVCXPRT *transport = svcudp_create(RPC_ANYSOCK);
    // Protocol 0: nobody is told of the port.
    if (!transport || !svc_register(transport, FLOOR_PROG, FLOOR_VERSION, floor_prog_1, 0))
        return 1;
    // As many calls wait as in the server it is compared with.
    int size = 4 << 20;
    setsockopt(transport->xp_fd, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size);
    printf("%d\n", transport->xp_port);
    fflush(stdout);
    svc_run();
    return 1;
}
