// Settings that are lists of stations: read as a whole, brought from one state to another by single calls.
//
// The calls lead to the document's order: stations that already stand in it stay, all others are taken off, and what is
// missing is added behind.
#pragma once

#include "client/settings.h"

extern const setting_list mac_list;         // [{"mac":"...","list":"..."},...]
extern const setting_list airtime_list;     // [{"mac":"...","weight":1,"period":0},...]
extern const setting_list soft_block_list;  // ["...",...]
