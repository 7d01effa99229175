// The datagram channel to the two helper daemons: the radio statistics collector (one a radio) and soft block.
//
// Touches UNIX datagram sockets: its own end is /tmp/rad_ctrl_PID or /tmp/ssidsteering_PID, the daemons listen below
// /var/run. Service thread and lifecycle workers. The own address carries the process id, so there can be one
// connection of a kind at a time: whoever opens a second one waits until the first is closed. One exchange takes four
// seconds at most, two until a daemon that does not empty its queue takes the request and two until it answers.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/un.h>

// What a connection is for.
constexpr int RAD_CTRL_STATISTICS = 0;
constexpr int RAD_CTRL_STEERING = 1;

constexpr const char STEERING_SOCKET[] = "/var/run/ssidsteering";

// Size of one answer of the collector; it fixes this size.
constexpr size_t COLLECTOR_ANSWER_SIZE = 192;

// The last non-zero answer of each radio: slot 0 for VAP indices up to 7, slot 1 for those above. All bytes 0xFF (every
// number reads as -1) until there is one; the server's child sees to that before it serves. From then on only this room
// touches it, under its own lock.
extern uint8_t buf_reply[2 * COLLECTOR_ANSWER_SIZE];

struct rad_ctrl_conn {
    int sock;
    int kind;
    sockaddr_un local;
    sockaddr_un peer;
};

// Connects to a daemon. Null for a kind other than the two, a peer path of more than 108 bytes, or when the system
// refuses. The connection is the caller's to close, on the same thread and before that thread opens another of its
// kind: it would wait for itself.
rad_ctrl_conn *rad_ctrl_open(const char *peer_path, int kind);

// Sends one datagram. Waits at most two seconds for a daemon that does not empty its queue, signals or not. Returns 0
// or -1.
int rad_ctrl_send(const rad_ctrl_conn *connection, const void *data, size_t length);

// Sends a request and waits at most two seconds for its answer, one datagram. *reply_length is the room in reply and
// becomes what was received; a longer answer is cut. Returns 0, -1 when sending failed, -2 without an answer, -3 when
// waiting or receiving failed; but for 0 the reply and its length stay as they were.
int rad_ctrl_request(const rad_ctrl_conn *connection, const void *request, size_t length, void *reply,
                     size_t *reply_length);

// Closes a connection and removes its socket file. Null is allowed.
void rad_ctrl_close(rad_ctrl_conn *connection);

// One exchange with the collector of a VAP's radio (kind RAD_CTRL_STATISTICS) or with soft block (RAD_CTRL_STEERING,
// which asks no index). Collector answers are remembered a radio, a short one as far as it goes: one of zeros only, and
// an empty one, is replaced by the remembered one, and without a connection the remembered one is given out together
// with -1. The remembered one has COLLECTOR_ANSWER_SIZE bytes; a reply with less room gets as many as fit. Returns what
// rad_ctrl_request returns, or -1 when there is no connection.
int rad_ctrl_request_buffered(int index, const void *request, size_t length, void *reply, size_t *reply_length,
                              int kind);

// Forgets the remembered answer of a VAP's radio: from then on every number of it is -1.
void rad_ctrl_forget(int index);
