// The datagram channel to the two helper daemons. See the header.
#include "survey/control_channel.h"

#include <errno.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include "config/log.h"
#include "config/store.h"

// How long a daemon may take to accept a datagram, and again to answer it. The service thread serves nobody meanwhile.
constexpr int CHANNEL_WAIT_MS = 2000;

constexpr int SEND_FAILED = -1;
constexpr int NO_ANSWER = -2;
constexpr int RECEIVE_FAILED = -3;

// The highest VAP index whose answers are remembered in slot 0. VAP 8 is of the first radio and shares the slot of the
// second all the same. Do not mend it: collectors run for VAPs 1 and 9 only, and what a client is told that asks for
// VAP 8 without a collector is what VAP 9 answered last.
constexpr int SLOT_0_INDEX_MAX = 7;

// "/var/run/radstat/ath%d" with the longest number.
constexpr size_t COLLECTOR_PATH_SIZE = 40;

// The own address of each kind, up to the process id.
static const char *const local_prefix[] = {"/tmp/rad_ctrl_", "/tmp/ssidsteering_"};

// A connection's own address can be there once: held from rad_ctrl_open to rad_ctrl_close, one a kind.
static pthread_mutex_t connected[] = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_MUTEX_INITIALIZER};

// Held around each look at buf_reply: the init worker forgets answers while the service thread may be reading them.
static pthread_mutex_t remembered = PTHREAD_MUTEX_INITIALIZER;

uint8_t buf_reply[2 * COLLECTOR_ANSWER_SIZE];

// False when the address does not hold the path.
static bool set_address(sockaddr_un *address, const char *path, size_t length) {
    if (length > sizeof(address->sun_path)) {
        return false;
    }
    address->sun_family = AF_UNIX;
    // A path of all 108 bytes goes without NUL: it ends where the address does.
    memcpy(address->sun_path, path, length);
    return true;
}

static bool set_addresses(rad_ctrl_conn *connection, const char *peer_path) {
    char local[sizeof(connection->local.sun_path)];
    int length = snprintf(local, sizeof(local), "%s%d", local_prefix[connection->kind], getpid());
    return set_address(&connection->local, local, static_cast<size_t>(length)) &&
           set_address(&connection->peer, peer_path, strlen(peer_path));
}

static int bind_local(const rad_ctrl_conn *connection) {
    const sockaddr *address = reinterpret_cast<const sockaddr *>(&connection->local);
    if (bind(connection->sock, address, sizeof(connection->local)) == 0) {
        return 0;
    }
    if (errno != EADDRINUSE) {
        log_error("[VLK-API] Error %s Could not bind - %s \n", "rad_ctrl_open", strerror(errno));
        return -1;
    }
    // Left behind by an earlier process with this id. What is still in the way then is no socket of ours.
    unlink(connection->local.sun_path);
    return bind(connection->sock, address, sizeof(connection->local));
}

// Opens the socket of a connection whose addresses stand. Leaves nothing behind when it fails.
static int connect_socket(rad_ctrl_conn *connection) {
    connection->sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (connection->sock < 0) {
        return -1;
    }
    if (bind_local(connection) == 0) {
        const sockaddr *peer = reinterpret_cast<const sockaddr *>(&connection->peer);
        if (connect(connection->sock, peer, sizeof(connection->peer)) == 0) {
            return 0;
        }
        unlink(connection->local.sun_path);
    }
    close(connection->sock);
    return -1;
}

rad_ctrl_conn *rad_ctrl_open(const char *peer_path, int kind) {
    if (kind != RAD_CTRL_STATISTICS && kind != RAD_CTRL_STEERING) {
        return nullptr;
    }
    rad_ctrl_conn *connection = static_cast<rad_ctrl_conn *>(calloc(1, sizeof(rad_ctrl_conn)));
    if (!connection) {
        return nullptr;
    }
    connection->kind = kind;
    pthread_mutex_lock(&connected[kind]);
    if (!set_addresses(connection, peer_path) || connect_socket(connection) != 0) {
        pthread_mutex_unlock(&connected[kind]);
        free(connection);
        return nullptr;
    }
    return connection;
}

void rad_ctrl_close(rad_ctrl_conn *connection) {
    if (!connection) {
        return;
    }
    unlink(connection->local.sun_path);
    close(connection->sock);
    pthread_mutex_unlock(&connected[connection->kind]);
    free(connection);
}

static int64_t now_ms(void) {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

// Waits until the socket is ready for an event, and no longer than to the deadline however many signals arrive.
// Returns 1 when it is ready, 0 when the time is over, -1 on failure.
static int wait_until_ready(int sock, short event, int64_t deadline_ms) {
    for (;;) {
        int64_t left = deadline_ms - now_ms();
        if (left <= 0) {
            return 0;
        }
        pollfd ready = {sock, event, 0};
        int count = poll(&ready, 1, static_cast<int>(left));
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

int rad_ctrl_send(const rad_ctrl_conn *connection, const void *data, size_t length) {
    int64_t deadline_ms = now_ms() + CHANNEL_WAIT_MS;
    while (send(connection->sock, data, length, MSG_DONTWAIT) < 0) {
        // EAGAIN is a daemon whose queue is full.
        if (errno != EAGAIN || wait_until_ready(connection->sock, POLLOUT, deadline_ms) <= 0) {
            return -1;
        }
    }
    return 0;
}

int rad_ctrl_request(const rad_ctrl_conn *connection, const void *request, size_t length, void *reply,
                     size_t *reply_length) {
    if (rad_ctrl_send(connection, request, length) != 0) {
        return SEND_FAILED;
    }
    int ready = wait_until_ready(connection->sock, POLLIN, now_ms() + CHANNEL_WAIT_MS);
    if (ready == 0) {
        return NO_ANSWER;
    }
    ssize_t received = ready < 0 ? -1 : recv(connection->sock, reply, *reply_length, MSG_DONTWAIT);
    if (received < 0) {
        return RECEIVE_FAILED;
    }
    *reply_length = static_cast<size_t>(received);
    return 0;
}

static uint8_t *slot_of(int index) {
    return buf_reply + (index > SLOT_0_INDEX_MAX ? COLLECTOR_ANSWER_SIZE : 0);
}

static size_t one_answer_at_most(size_t length) {
    return length < COLLECTOR_ANSWER_SIZE ? length : COLLECTOR_ANSWER_SIZE;
}

// Puts the remembered answer of a radio into a reply that has room for so many bytes.
static void recall(int index, void *reply, size_t room, size_t *reply_length) {
    size_t length = one_answer_at_most(room);
    pthread_mutex_lock(&remembered);
    memcpy(reply, slot_of(index), length);
    pthread_mutex_unlock(&remembered);
    *reply_length = length;
}

// Remembers an answer. A short one leaves the rest of what is remembered as it is.
static void remember(int index, const void *answer, size_t length) {
    pthread_mutex_lock(&remembered);
    memcpy(slot_of(index), answer, length);
    pthread_mutex_unlock(&remembered);
}

void rad_ctrl_forget(int index) {
    uint8_t nothing[COLLECTOR_ANSWER_SIZE];
    memset(nothing, 0xFF, sizeof(nothing));
    remember(index, nothing, sizeof(nothing));
}

static bool is_all_zero(const void *bytes, size_t length) {
    const uint8_t *byte = static_cast<const uint8_t *>(bytes);
    for (size_t i = 0; i < length; i++) {
        if (byte[i] != 0) {
            return false;
        }
    }
    return true;
}

// A collector that has only just been started answers zeros, or nothing at all: the last real numbers of its radio are
// better.
static void use_memory(int index, void *reply, size_t room, size_t *reply_length) {
    size_t length = one_answer_at_most(*reply_length);
    if (is_all_zero(reply, length)) {
        recall(index, reply, room, reply_length);
    } else {
        remember(index, reply, length);
    }
}

static rad_ctrl_conn *open_daemon(int index, int kind) {
    if (kind != RAD_CTRL_STATISTICS) {
        return rad_ctrl_open(STEERING_SOCKET, kind);
    }
    char path[COLLECTOR_PATH_SIZE];
    snprintf(path, sizeof(path), "/var/run/radstat/ath%d", interface_number(index));
    return rad_ctrl_open(path, kind);
}

int rad_ctrl_request_buffered(int index, const void *request, size_t length, void *reply, size_t *reply_length,
                              int kind) {
    const size_t room = *reply_length;
    rad_ctrl_conn *connection = open_daemon(index, kind);
    if (!connection) {
        log_error("[VLK-API] Error %s Could not connect\n", __func__);
        if (kind == RAD_CTRL_STATISTICS) {
            recall(index, reply, room, reply_length);
        }
        return -1;
    }
    int status = rad_ctrl_request(connection, request, length, reply, reply_length);
    if (status == 0 && kind == RAD_CTRL_STATISTICS) {
        use_memory(index, reply, room, reply_length);
    }
    rad_ctrl_close(connection);
    return status;
}
