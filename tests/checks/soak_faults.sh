#!/bin/sh
# The table of faults in docs/soak.md is the one that the soak has.
#
#   soak_faults.sh SOAK DOCUMENT
set -eu
table=$(mktemp)
trap 'rm -f "$table"' EXIT
awk '/^\| fault \|/ { inside = 1 } !/^\|/ { inside = 0 } inside' "$2" >"$table"
"$1" faults | diff -u "$table" -
