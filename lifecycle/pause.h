// Pauses that the driver and the board need between two steps.
//
// Stops the calling thread: the service thread or a worker.
#pragma once

// Waits for the whole time, also when signals arrive.
void lifecycle_pause(int seconds);
