// A WPS exchange: somebody pressed the button or gave a PIN, and a peer comes or does not.
//
// Touches nothing. What becomes of it is decided when it begins and shows when its time has come; nobody waits for it.
#pragma once

#include "simulator/scenario.h"

enum exchange_result { EXCHANGE_NONE, EXCHANGE_SUCCESS, EXCHANGE_FAILED, EXCHANGE_TIMEOUT };

struct exchange {
    bool active;
    double ends;             // on the boot clock
    exchange_result coming;  // how it ends then
    exchange_result last;    // how the last one ended; none after a new one began or was cancelled
    char peer[MAC_TEXT_SIZE];
};

// Begins an exchange that ends as the scenario has it, at the latest after `timeout` seconds; one that runs is over.
void exchange_begin(exchange *current, const scenario_wps *plan, double timeout, double now);

// Ends it without a result.
void exchange_cancel(exchange *current);

// Takes note of the time: an exchange whose end has come has its result afterwards.
void exchange_settle(exchange *current, double now);

// The authenticator's words for the state, in lines. At most `size` bytes with the NUL.
void exchange_describe(const exchange *current, char *text, size_t size);
