#!/bin/sh
# call_numbers.sh UNIT COMPILER: the numbers of the system calls that a unit's SystemCallFilter= permits.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
systemd-analyze syscall-filter --no-pager >"$folder/groups"
echo '#include <sys/syscall.h>' | "$2" -E -dM - |
    sed -n 's/^#define __NR_\([a-z0-9_]*\) \([0-9]*\)$/\1 \2/p' >"$folder/numbers"
# What is always permitted, then the unit's lines in their order.
{ echo @default; sed -n 's/^SystemCallFilter=//p' "$1"; } >"$folder/lines"
awk '
    function apply(name, value,    members, count, i) {
        if (name !~ /^@/) { permitted[name] = value; return }
        if (!(name in group)) { print name " is no group" >"/dev/stderr"; exit 1 }
        count = split(group[name], members, " ")
        for (i = 1; i <= count; i++) apply(members[i], value)
    }
    FILENAME == ARGV[1] && /^@/ { current = $1; group[current] = ""; next }
    FILENAME == ARGV[1] && /^ +[^ #]/ { group[current] = group[current] " " $1; next }
    FILENAME == ARGV[2] {
        value = sub(/^~/, "") ? 0 : 1
        for (i = 1; i <= NF; i++) apply($i, value)
    }
    FILENAME == ARGV[3] && permitted[$1] { print $2 }
' "$folder/groups" "$folder/lines" "$folder/numbers" >"$folder/permitted"
[ "$(wc -l <"$folder/permitted")" -gt 100 ] || { echo "these are too few to be true" >&2; exit 1; }
cat "$folder/permitted"
