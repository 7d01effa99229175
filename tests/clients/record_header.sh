#!/bin/sh
# record_header.sh CC CXX PROCESSOR DOCS STUBS: docs/wlan_config_records.h compiles as C99, C11 and C++ without a
# warning, for both word sizes where the compiler makes both, and together with rpcgen's header in either order.
set -eu
header=$4/wlan_config_records.h
sizes=-Wall # an option that is there anyway
[ "$3" = x86_64 ] && sizes="-m64 -m32"
for size in $sizes; do
    for language in "$1 -x c -std=c99" "$1 -x c -std=c11" "$2 -x c++ -std=c++11" "$2 -x c++ -std=c++20"; do
        # shellcheck disable=SC2086 # commands with options
        printf '#include "%s"\n#include "%s"\nint main(void) { return 0; }\n' "$header" "$header" |
            $language $size -Wall -Wextra -pedantic -Werror -fsyntax-only -
    done
done
for pair in "$header $5/wlan_config.h" "$5/wlan_config.h $header"; do
    # shellcheck disable=SC2086 # two files
    printf '#include "%s"\n#include "%s"\nint main(void) { return WLAN_CONFIG_SUCCESS + WLAN_RETURN_SUCCESS; }\n' $pair |
        "$1" -x c -std=gnu11 -Wall -Wextra -Werror -isystem /usr/include/tirpc -fsyntax-only -
done
# What it says is checked: a member in another place does not compile.
if sed 's/^    uint32_t tx_bytes;/    uint64_t tx_bytes;/; s/^    uint32_t tx_bytes /    uint64_t tx_bytes /' "$header" |
    "$1" -x c -std=c99 -fsyntax-only - 2>/dev/null; then
    echo "a record with a wider member compiled"
    exit 1
fi
