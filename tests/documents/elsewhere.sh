#!/bin/sh
# Commands that a document shows and that cannot run inside the simulated gateway stand in blocks that begin with
# ```console. Each of them has to be in the list of what runs it instead, and the list has none besides.
#
#   elsewhere.sh LIST DOCUMENT...
set -eu
list=$1
shift
shown=$(mktemp)
known=$(mktemp)
trap 'rm -f "$shown" "$known"' EXIT
# Where a block's first line begins with a prompt, only such lines are commands; the others are what to type there.
awk '
    /^```console$/ { inside = 1; first = 1; next }
    /^```/ { inside = 0 }
    inside && NF {
        if (first) prompted = sub(/^# /, "# ")
        first = 0
        if (prompted && !sub(/^# /, "")) next
        sub(/   +[A-Za-z ]*$/, "")  # a remark behind it
        print
    }' "$@" | sort -u >"$shown"
grep -v '^#' "$list" | cut -f 1 | sort -u >"$known"
diff "$known" "$shown"
# A command in an indented block would be seen by neither of the two tests.
if grep -nE '^    (vlk_|\./|cmake|ctest|scripts/|apt|systemctl|\$ )' "$@"; then
    echo "commands outside a sh or console block"
    exit 1
fi
