// Facts about the gateway as OpenMetrics text.
//
// What there is stands in one table of metric families. Readers of the older Prometheus text format, such as
// node_exporter's textfile collector, take the text as well.
#pragma once

#include <stdio.h>

#include "client/value.h"

// Facts: {up, radios: [...], vaps: [...]} with the members that client/vaps.h and client/radio.h make and the counters
// tx_bytes, rx_bytes, tx_packets, rx_packets, rx_errors, tx_unicast, tx_multicast of a VAP. What is null or missing has
// no line.
void print_open_metrics(FILE *out, const value *facts);
