// What the gateway's daemons have in common as processes: they keep nothing of their starter, own datagram sockets with
// names in the file system, and serve them until they are told to end.
//
// Touches the process itself and the sockets it is given. One thread, the daemon's.
#pragma once

// As many sockets as a daemon can serve: one an interface.
constexpr int DAEMON_SOCKETS = 16;

// What the process was started with is none of its business: neither descriptors beyond the standard ones nor what its
// starter did with signals. A lost terminal does not end it, and from here on SIGTERM and SIGINT are events that
// daemon_serve sees. Before anything is opened.
void daemon_cut_ties(void);

// Opens a datagram socket under a name, in the place of one whose owner is gone. One whose owner is just ending is
// waited for, for a moment. Returns its descriptor, or -1 with errno: EADDRINUSE when somebody serves it. Whoever ends
// takes the name away before the descriptor is closed, or the name might be a successor's already.
int daemon_listen(const char *path);

// Calls `serve` for each of the sockets, by its place among them, that has something to read; returns when the process
// was told to end.
void daemon_serve(const int *sockets, int count, void (*serve)(void *self, int number), void *self);

// Waits. False as soon as the process was told to end.
bool daemon_pause(double seconds);
