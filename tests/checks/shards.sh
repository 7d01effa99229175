#!/bin/sh
# shards.sh COUNT COMMAND...: runs a test program in COUNT shards at once, each with its part of the tests, for tests
# that mostly wait; in SHARDS at most, where that is in the environment. Shows the output of the shards that failed.
# Fails when one of them did, or when no test was run.
set -u
count=$1
shift
[ "${SHARDS:-$count}" -ge "$count" ] || count=$SHARDS
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
pids=
# shellcheck disable=SC2086 # a list of numbers
trap 'kill $pids 2>/dev/null; exit 1' INT TERM HUP
shard=0
while [ "$shard" -lt "$count" ]; do
    GTEST_TOTAL_SHARDS=$count GTEST_SHARD_INDEX=$shard "$@" >"$folder/$shard" 2>&1 &
    pids="$pids $!"
    shard=$((shard + 1))
done
failed=0
shard=0
for pid in $pids; do
    if ! wait "$pid"; then
        failed=$((failed + 1))
        echo "== shard $shard of $count failed"
        cat "$folder/$shard"
    fi
    shard=$((shard + 1))
done
run=$(sed -n 's/^\[==========\] \([0-9]*\) tests\{0,1\} from .* ran\..*/\1/p' "$folder"/* |
    awk '{ sum += $1 } END { print sum + 0 }')
echo "$run tests in $count shards, $failed of which failed"
[ "$run" -gt 0 ] && [ "$failed" -eq 0 ]
