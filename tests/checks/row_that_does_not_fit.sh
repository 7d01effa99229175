#!/bin/sh
# row_that_does_not_fit.sh COMPILER SOURCE: a row whose back end has another signature does not compile, and the error
# says in one sentence which signature the row wants.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/server"
compile() {
    "$1" -std=gnu++20 -fsyntax-only -I"$folder" -I"$2" -I/usr/include/tirpc "$2/handlers/regular.cpp" 2>"$folder/errors"
}
cp "$2/server/procedures.def" "$folder/server"
compile "$1" "$2" || { cat "$folder/errors"; echo "the table as it stands does not compile"; exit 1; }
sed '/ wlan_set_enable, /s/BOOL(enabled)/TEXT(enabled)/' "$2/server/procedures.def" >"$folder/server/procedures.def"
if cmp -s "$2/server/procedures.def" "$folder/server/procedures.def"; then
    echo "the row to change was not found"
    exit 1
fi
if compile "$1" "$2"; then
    echo "a row that does not fit its back end compiled"
    exit 1
fi
grep -F 'wlan_set_enable: its row wants the back end wlan_setEnable to be int(int , const char *)' "$folder/errors" ||
    { cat "$folder/errors"; exit 1; }
