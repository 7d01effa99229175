// The clients: threads that call the server, each with a socket and a sequence of calls of its own.
#pragma once

// Starts them. What client N calls, and in which order, follows from the seed; how far it gets does not.
void start_clients();

// Has them finish what they are at, and waits for it; lets them go on.
void pause_clients();
void resume_clients();

// Ends them.
void end_clients();
