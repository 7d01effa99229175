#!/bin/sh
# names.sh SERVER SOURCE: every derived name is a real function of the server, and git grep finds each of them.
set -eu
count() { nm "$1" | grep -cE " T $2\$"; }
expect() {
    found=$(count "$1" "$2")
    [ "$found" = "$3" ] || { echo "$found functions named $2 instead of $3"; exit 1; }
}
expect "$1" '_wlan_.*_1' 340
expect "$1" 'wlan_.*_1_svc' 340
expect "$1" 'xdr_.*_1_argument' 164
nm "$1" | sed -nE 's/.* T (_wlan_.*_1|wlan_.*_1_svc|xdr_.*_1_argument)$/\1/p' | while read -r name; do
    grep -qwF -- "$name" "$2/docs/procedures.md" || { echo "$name is not in docs/procedures.md"; exit 1; }
done

# The back end of every procedure lives in the file that the page names.
pairs=$(sed -nE 's/.*\| `(wlan_[A-Za-z0-9_]+)`, ([a-z_]+\/[a-z_]+\.cpp) \|.*/\1 \2/p' "$2/docs/procedures.md")
[ "$(echo "$pairs" | wc -l)" -eq 338 ] || { echo "docs/procedures.md does not name the back ends of all procedures that have one"; exit 1; }
echo "$pairs" | while read -r back_end file; do
    grep -qE "^(int $back_end\(|[A-Z_]+\(.*\b$back_end\b)" "$2/$file" || { echo "$back_end is not in $file"; exit 1; }
done
