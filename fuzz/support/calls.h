// Calls as datagrams through transport, dispatcher and handlers, and what every reply has to be.
#pragma once

#include <stdint.h>

#include <string>

// A call's header with an empty credential.
std::string call_header(uint32_t procedure);

// An XDR number and an XDR text.
void put_number(std::string *datagram, uint32_t number);
void put_counted(std::string *datagram, const std::string &text);

// Hands one datagram to the server, on the running platform. Checks the reply, if there is one: it belongs to the call,
// is what the procedure's row promises, and nothing stands behind it. Returns whether a handler carried the call out,
// whose number is then among those served.
bool serve(const std::string &datagram);

// How many different procedures were served since the process began.
size_t served_procedures();
size_t all_procedures();
