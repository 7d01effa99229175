// The authenticator's control sockets: a UNIX datagram socket an interface, a command in, an answer out.
//
// Touches /var/run/hostapd/athN. Used by the authenticator, which owns the sockets, and by its client.
#pragma once

#include <stddef.h>

// The longest command; what is longer is cut.
constexpr size_t CONTROL_COMMAND_SIZE = 512;

// Opens the socket of an interface, in the place of one that a killed authenticator left behind. Returns its
// descriptor, or -1 after saying what is wrong on standard output: also when another one answers there and does not
// go away for a moment, as one does that was just told to end.
int control_listen(const char *interface);

// Takes the socket's name away. Before its descriptor is closed, or the name might be a successor's already.
void control_remove(const char *interface);

// The same from the other side: a descriptor that is connected to an interface's socket, or -1 with errno.
int control_connect(const char *interface);

// Sends a command and waits for its answer, which gets a NUL. False when there is none in time.
bool control_request(int socket, const char *command, char *answer, size_t size);
