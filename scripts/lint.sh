#!/bin/sh
# Runs clang-tidy over the sources with the compile commands of a build folder; any finding fails.
set -eu
cd "$(dirname "$0")/.."
log=build/lint.log
# The analyzer gives up on a function after a fifth of the steps that are usual: the long ones take most of the time.
budget="--extra-arg=-Xclang --extra-arg=-analyzer-config --extra-arg=-Xclang --extra-arg=max-nodes=45000"
# shellcheck disable=SC2086 # a list of options
if ! find client config handlers lifecycle params platform server simulator steering survey -name '*.cpp' 2>/dev/null |
    sort | xargs -P "$(nproc)" -n 1 clang-tidy-14 --quiet $budget -p "$1" >"$log" 2>&1; then
    grep -vE '^[0-9]+ warnings? generated' "$log" >&2
    exit 1
fi
