// The lists that the driver hands out in records: the networks that a radio's scans have found, and the stations of a
// VAP. Each is put together at the moment of the request, by a file of its own.
//
// Any thread.
#pragma once

#include <stdint.h>

// The largest of the records.
constexpr int LARGEST_RECORD = 236;

struct record_list {
    uint8_t *records;  // one behind the other, on the heap; null when there are none
    int count;
};

// A record of 128 bytes a network, or 236 bytes a station, of a VAP (0 to 15). Return 0 and the list, whose records are
// the caller's to free, or an error number.
int network_records(int vap, record_list *list);
int station_records(int vap, record_list *list);

// What the first octet of an address has that somebody has made up.
constexpr uint8_t MADE_UP = 0x02;

// Give a record another address, which tells it from the one that it repeats: made up, with its place in the list as
// the last two octets.
void mark_network(uint8_t *record, uint32_t place);
void mark_station(uint8_t *record, uint32_t place);
