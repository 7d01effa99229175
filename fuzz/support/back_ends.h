// Rows of back ends for targets that try one kind of foreign answer on each of them.
#pragma once

#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include "config/store.h"
#include "fuzz/support/check.h"

struct back_end {
    void (*call)(int index);
};

// What the address sanitizer fills fresh memory with. A text that has it, although the input has not, was read from
// behind the end of another.
constexpr char FRESH_MEMORY = '\xBE';
inline bool input_has_fresh_byte;

// One that gives out a text: into memory of exactly the size that handlers have for it, so that nothing beyond it can
// be written, and filled, so that a missing end shows.
template <int (*getter)(int, char *, size_t)>
void read_text(int index) {
    char *text = static_cast<char *>(malloc(STORE_VALUE_SIZE));
    memset(text, 0, STORE_VALUE_SIZE);
    getter(index, text, STORE_VALUE_SIZE);
    must_be_terminated(text, STORE_VALUE_SIZE, "a text that is given out");
    must(input_has_fresh_byte || !strchr(text, FRESH_MEMORY), "no text is read from behind the end of another");
    free(text);
}

// One that gives out numbers or a record.
template <typename T, int (*getter)(int, T *)>
void read_record(int index) {
    T *record = static_cast<T *>(calloc(1, sizeof(T)));
    getter(index, record);
    free(record);
}

// A store that has everything switched on.
constexpr const char BUSY_STORE[] =
    "AP_RADIO_ID=0\nAP_RADIO_ID_3=0\nAP_RADIO_ID_9=1\nAP_RADIO_ENABLED=1\nAP_RADIO_ENABLED_2=1\nAP_ENABLE=1\n"
    "AP_ENABLE_3=1\nAP_ENABLE_9=1\nAP_CHMODE=11ACVHT80\nAP_CHMODE_2=11NGHT20\nWPS_ENABLE=1\nWPS_ENABLE_9=1\n"
    "AP_BSSID=00:11:22:33:44:55\nAP_PRIMARY_CH=36\nAP_PRIMARY_CH_2=6\nBS_BSS_ENABLE=1\nRSG_Enable=3\n"
    "AP_SECMODE=WPA\nAP_VAP_NUM=16\n";
