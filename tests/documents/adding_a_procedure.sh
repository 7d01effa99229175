#!/bin/sh
# adding_a_procedure.sh SOURCE DOCUMENT: applies the patches of the document to a copy of the tree, builds the copy after
# each, and asks the client that was built about the new procedure.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/tree"
tar -C "$1" --exclude=./build --exclude=./.git -cf - . | tar -C "$folder/tree" -xf -
document=$(readlink -f "$2")
cd "$folder/tree"
build() {
    cmake --build "$folder/build" >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
    # Of the tests only what a step changes is compiled.
    [ tests/unit/test_vap.cpp -nt "$folder/stamp" ] || return 0
    c++ -std=gnu++20 -fno-exceptions -fno-rtti -I. -I/usr/include/tirpc -fsyntax-only tests/unit/test_vap.cpp
}
cmake -S . -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS=-O0 -DWLAN_BUILD_TESTS=OFF \
    -DWLAN_BUILD_SIMULATOR=OFF -DWLAN_CLIENT_TABLES=OFF -DWLAN_CLIENT_SHELL=OFF -DWLAN_CLIENT_DOCUMENTS=OFF >"$folder/log"
touch "$folder/stamp"
awk -v folder="$folder" '
    /^```diff$/ { name = sprintf("%s/step%02d", folder, ++steps); inside = 1; next }
    /^```/ { inside = 0 }
    inside { print > name }' "$document"
for step in "$folder"/step*; do
    patch -p1 -s <"$step"
    build
    echo "$(basename "$step") builds"
done
client=$folder/build/client/vlk_rpc_wlan_config_client
"$client" describe setDescription
"$client" list description | grep -q 'getDescription <index>'
"$client" interface | grep -q 'WLAN_SET_DESCRIPTION(int /\* index \*/, string /\* description \*/) = 0x1000077;'
