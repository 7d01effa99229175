// Compiled for a 32-bit machine by the tests: the assertions of the header are what is checked.
#include "server/records.h"
