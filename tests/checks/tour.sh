#!/bin/sh
# tour.sh COMMAND...: the tour ends as it should, and settings that were looked up one after another share a line.
set -u
output=$("$@") || { echo "$output"; exit 1; }
fail() {
    echo "$output"
    echo "$1"
    exit 1
}
echo "$output" | grep -qx '      read AP_RADIO_ID AP_PRIMARY_CH_2' || fail "getChannel 1 does not show its two keys in one line"
echo "$output" | awk '/^      read / { if (again) exit 1; again = 1; next } { again = 0 }' || fail "two lines of keys in succession"
