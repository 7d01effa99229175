#include "simulator/daemons/requests.h"

#include <ctype.h>
#include <errno.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/daemons/daemon.h"
#include "simulator/driver/driver_state.h"
#include "simulator/faults.h"
#include "simulator/journal.h"

// The longest answer that a fault can make up.
constexpr size_t LONGEST_ANSWER = 1024;

// How soon a daemon that does not read, or is slow, sees that its fault was switched off.
constexpr double LOOK_SECONDS = 0.02;

// Faults.

// "short N", of an answer that has more bytes.
static bool parse_short(const char *value, size_t answer_size, size_t *bytes) {
    static const char word[] = "short ";
    if (strncmp(value, word, strlen(word)) != 0 || !isdigit((unsigned char)value[strlen(word)]))
        return false;
    char *end;
    errno = 0;
    *bytes = strtoul(value + strlen(word), &end, 10);
    return errno == 0 && *end == '\0' && *bytes < answer_size;
}

bool daemon_fault_parse(const char *value, size_t answer_size, daemon_fault *fault) {
    struct word {
        const char *value;
        daemon_fault_kind kind;
    };
    static const word words[] = {
        {"silent", DAEMON_SILENT}, {"stuck", DAEMON_STUCK}, {"zeros", DAEMON_ZEROS}, {"garbage", DAEMON_GARBAGE}};
    *fault = {};
    for (const word &candidate : words) {
        if (strcmp(candidate.value, value) == 0)
            fault->kind = candidate.kind;
    }
    if (parse_short(value, answer_size, &fault->bytes))
        fault->kind = DAEMON_SHORT;
    if (fault_slowness(value, &fault->seconds))
        fault->kind = DAEMON_SLOW;
    return fault->kind != DAEMON_WORKS;
}

bool daemon_is_absent(const char *value) {
    return strcmp(value, "fail") == 0 || strcmp(value, "missing") == 0;
}

static daemon_fault fault_of(const char *name, size_t answer_size) {
    char value[FAULT_VALUE_SIZE];
    daemon_fault fault = {};
    // One that should not be there is about to be ended; until then it says nothing.
    if (fault_get(name, value, sizeof value) && !daemon_fault_parse(value, answer_size, &fault) &&
        daemon_is_absent(value))
        fault.kind = DAEMON_SILENT;
    return fault;
}

// Waits while the daemon is to be slow. False when it was told to end meanwhile.
static bool be_slow(const char *name, size_t answer_size, double seconds) {
    double end = driver_clock() + seconds;
    double left = seconds;
    while (left > 0 && fault_of(name, answer_size).kind == DAEMON_SLOW) {
        if (!daemon_pause(left < LOOK_SECONDS ? left : LOOK_SECONDS))
            return false;
        left = end - driver_clock();
    }
    return true;
}

// Requests.

// Whether the bytes are one text with the NUL that ends it.
static bool is_text(const char *bytes, size_t length) {
    return length > 0 && memchr(bytes, '\0', length) == bytes + length - 1;
}

bool request_receive(int socket, const char *fault_name, size_t answer_size, request *received) {
    received->fault = fault_of(fault_name, answer_size);
    if (received->fault.kind == DAEMON_STUCK) {
        daemon_pause(LOOK_SECONDS);
        return false;
    }
    received->from_length = sizeof received->from;
    // With this flag the result is the whole length, also of what was cut.
    ssize_t length = recvfrom(socket, received->text, REQUEST_SIZE, MSG_DONTWAIT | MSG_TRUNC,
                              (sockaddr *)&received->from, &received->from_length);
    if (length < 0)
        return false;
    // A name that fills its whole field is handed out with one byte more, for its NUL.
    if (received->from_length > sizeof received->from)
        received->from_length = sizeof received->from;
    size_t have = (size_t)length < REQUEST_SIZE ? (size_t)length : REQUEST_SIZE;
    received->text[have] = '\0';
    journal_datagram(program_invocation_short_name, received->text, have, (size_t)length);
    if (received->fault.kind == DAEMON_SILENT || (size_t)length > have || !is_text(received->text, have))
        return false;
    return received->fault.kind != DAEMON_SLOW || be_slow(fault_name, answer_size, received->fault.seconds);
}

// Numbers that no reader expects: two far beyond any table, and negative ones in whatever follows.
static void fill_with_garbage(void *answer, size_t size) {
    for (size_t i = 0; i + sizeof(int32_t) <= size; i += sizeof(int32_t)) {
        int32_t number = i < 2 * sizeof(int32_t) ? 0x7FFE81A5 - (int32_t)i : -0x00FE8145 * (int32_t)(i % 97 + 1);
        memcpy((char *)answer + i, &number, sizeof number);
    }
}

void request_answer(int socket, const request *received, const void *answer, size_t size) {
    char made_up[LONGEST_ANSWER] = {};
    const void *sent = answer;
    if (received->fault.kind == DAEMON_GARBAGE)
        fill_with_garbage(made_up, sizeof made_up);
    if (size <= sizeof made_up && (received->fault.kind == DAEMON_GARBAGE || received->fault.kind == DAEMON_ZEROS))
        sent = made_up;
    if (received->fault.kind == DAEMON_SHORT && received->fault.bytes < size)
        size = received->fault.bytes;
    if (received->from_length > sizeof received->from.sun_family)
        sendto(socket, sent, size, MSG_DONTWAIT | MSG_NOSIGNAL, (const sockaddr *)&received->from,
               received->from_length);
}
