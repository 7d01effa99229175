// The countries that the driver knows: their two letters and the driver's regulatory numbers.
//
// Touches nothing. Service thread.
#pragma once

// The letters of a country number ("DE" for 276), null for a number that is none.
const char *country_text(int number);

// The number of a country's letters, -1 for letters that are none. Capitals only.
int country_number(const char *text);
