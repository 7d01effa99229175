// Requests to the daemons that the driver's programs ask by datagrams, and the faults that can lie between a request
// and its answer.
//
// Touches the socket it is given, the journal and the daemon's fault, which it looks at with each request: a fault that
// is switched on or off counts at once. One thread, the daemon's.
#pragma once

#include <stddef.h>
#include <sys/socket.h>
#include <sys/un.h>

// Far longer than any message that a daemon understands; what is longer is cut, and is none.
constexpr size_t REQUEST_SIZE = 1024;

enum daemon_fault_kind {
    DAEMON_WORKS,
    DAEMON_SILENT,   // reads, and neither acts nor answers
    DAEMON_STUCK,    // does not read
    DAEMON_SHORT,    // answers only its first bytes
    DAEMON_ZEROS,    // answers zeros
    DAEMON_GARBAGE,  // answers odd bytes
    DAEMON_SLOW      // waits, then acts and answers
};

struct daemon_fault {
    daemon_fault_kind kind;
    size_t bytes;    // of a short answer
    double seconds;  // of a slow one
};

// Reads the value of a daemon's fault, whose full answer has so many bytes. False when it is none.
bool daemon_fault_parse(const char *value, size_t answer_size, daemon_fault *fault);

// Whether the value is one with which the daemon cannot be started.
bool daemon_is_absent(const char *value);

struct request {
    char text[REQUEST_SIZE + 1];
    sockaddr_un from;
    socklen_t from_length;
    daemon_fault fault;
};

// Takes a datagram from a socket, writes it to the journal under the process's name, and does what the fault of this
// name asks for before an answer. True when it is to be acted on; its text is then one text, whose NUL was its end.
bool request_receive(int socket, const char *fault_name, size_t answer_size, request *received);

// Answers what was received, or what the fault makes of it. Whoever asks without a name of his own gets no answer.
void request_answer(int socket, const request *received, const void *answer, size_t size);
