// The daemons of the simulated gateway: the portmapper, the soft-block daemon and the server under test.
//
// Touches processes, sockets and /run inside the gateway. The gateway's first process.
#pragma once

// Starts the portmapper and waits until it answers. False after saying why not.
bool start_portmapper(void);

// Starts the soft-block daemon and waits until it serves. False after saying why not.
bool start_soft_block(void);

// Lets daemons that give up their groups do so where that is not allowed (an ordinary user's namespace): for this
// process and all that it starts the call succeeds without doing anything. Where it is allowed nothing changes.
void allow_giving_up_groups(void);

// Starts the server with the driver library preloaded and its output in the server's log, and waits until the
// portmapper knows its port. False after saying why not, with the end of the log.
bool start_server(const char *server, const char *driver);
