// How many sockets the code under test has opened: a `socket` in front of the C library's, for the whole program, that
// counts.
#pragma once

unsigned sockets_opened();
