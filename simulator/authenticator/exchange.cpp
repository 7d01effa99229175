#include "simulator/authenticator/exchange.h"

#include <ctype.h>
#include <stdio.h>
#include <string.h>

void exchange_begin(exchange *current, const scenario_wps *plan, double timeout, double now) {
    bool peer_comes = plan->result != WPS_RUNS_OUT && plan->seconds <= timeout;
    *current = {};
    current->active = true;
    current->ends = now + (peer_comes ? plan->seconds : timeout);
    current->coming = EXCHANGE_TIMEOUT;
    if (peer_comes) {
        current->coming = plan->result == WPS_SUCCEEDS ? EXCHANGE_SUCCESS : EXCHANGE_FAILED;
        // The authenticator writes addresses in small letters.
        for (size_t i = 0; i < sizeof current->peer; i++)
            current->peer[i] = (char)tolower((unsigned char)plan->mac[i]);
    }
}

void exchange_cancel(exchange *current) {
    *current = {};
}

void exchange_settle(exchange *current, double now) {
    if (!current->active || now < current->ends)
        return;
    current->active = false;
    current->last = current->coming;
}

static const char *button(const exchange *current) {
    if (current->active)
        return "Active";
    return current->last == EXCHANGE_TIMEOUT ? "Timed-out" : "Disabled";
}

void exchange_describe(const exchange *current, char *text, size_t size) {
    static const char *const results[] = {"None", "Success", "Failed", "Timeout"};
    int length = snprintf(text, size, "PBC Status: %s\nLast WPS result: %s\n", button(current), results[current->last]);
    bool has_peer = !current->active && current->peer[0] != '\0';
    if (has_peer && (size_t)length < size)
        snprintf(text + length, size - (size_t)length, "Peer Address: %s\n", current->peer);
}
