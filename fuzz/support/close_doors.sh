#!/bin/sh
# close_doors.sh SIDE LIBRARY CLOSED OBJCOPY NM: a copy of the library of the server or the client (SIDE) in which every
# way out of the process leads to the stand-ins of SIDE_doors.cpp.
#
# SIDE_doors.txt says what is replaced. What else the library takes from elsewhere has to be in SIDE_harmless.txt: a
# function that is in neither could reach this machine's files, processes or network, so there is no library then.
set -eu
doors=$(dirname "$0")/$1_doors.txt
harmless=$(dirname "$0")/$1_harmless.txt
library=$2
closed=$3
objcopy=$4
nm=$5

"$objcopy" --redefine-syms="$doors" "$library" "$closed.new"

"$nm" -u "$closed.new" | awk '$1 == "U" || $1 == "w" { print $2 }' | sort -u >"$closed.wanted"
{
    "$nm" --defined-only "$closed.new" | awk 'NF == 3 { print $3 }'
    awk '{ print $2 }' "$doors"
    cat "$harmless"
} | sort -u >"$closed.known"
# The wire's own routines; tables that are drawn and lines that are edited; what compilers and sanitizers add.
added='xdr_wlan_|xdr_scan_|xdr_text$|wlan_store_key_read$|scols_|el_'
added="$added|_ZSt|_ZNSt|_ZNKSt|_ZTV|_ZTI|_ZTS|_Znw|_Zdl|_Znam|_Zda|_Unwind"
added="$added|__(asan|ubsan|sanitizer|sancov|gcov|tsan|cxa|start___sanc|stop___sanc|gxx|tls|dso)_?|_GLOBAL_"
unknown=$(comm -23 "$closed.wanted" "$closed.known" | grep -vE "^($added)" || true)
if [ -n "$unknown" ]; then
    echo "Neither a door (fuzz/support/$1_doors.txt) nor harmless (fuzz/support/$1_harmless.txt):" >&2
    echo "$unknown" >&2
    exit 1
fi
mv "$closed.new" "$closed"
