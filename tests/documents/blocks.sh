#!/bin/sh
# Runs the commands that a document shows: each block that begins with ```sh, in order, inside the simulated gateway.
#
#   blocks.sh DOCUMENT...
#
# A block stops at its first command that fails, and fails the test.
set -u
folder=$(mktemp -d /tmp/blocks.XXXXXX)
failures=0
blocks=0
for document; do
    rm -f "$folder"/*
    awk -v folder="$folder" '
        /^```sh$/ { name = sprintf("%s/%05d", folder, NR + 1); inside = 1; next }
        /^```/ { inside = 0; next }
        # A shell goes on behind "! command" whatever its status is.
        inside && sub(/^! /, "") { $0 = "if " $0 "; then exit 1; fi" }
        inside { print > name }' "$document"
    for block in "$folder"/*; do
        [ -e "$block" ] || continue
        blocks=$((blocks + 1))
        if ! sh -e "$block" </dev/null >"$folder.log" 2>&1; then
            failures=$((failures + 1))
            echo "$document, the block at line $(basename "$block" | sed 's/^0*//'), fails:"
            cat "$block"
            echo "-- its output:"
            cat "$folder.log"
        fi
    done
done
echo "$blocks blocks, $failures failed"
[ "$blocks" -gt 0 ] && [ "$failures" -eq 0 ]
