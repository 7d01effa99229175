// Compiled for a 32-bit machine by the tests: the assertions of the headers are what is checked.
#include "server/records.h"
#include "config/wireless.h"
#include "steering/airtime_table.h"
