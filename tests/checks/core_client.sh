#!/bin/sh
# core_client.sh SOURCES COMPILER GATEWAY OPTION...: without its comforts the client needs libc and libtirpc only, and
# separates the cells of its tables with tabs. GATEWAY and its options start the gateway that it asks for one.
set -eu
sources=$1 compiler=$2
shift 2
build=$(mktemp -d /var/tmp/core_client.XXXXXX)
trap 'rm -rf "$build"' EXIT
cmake -S "$sources" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE= -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS=-O0 \
    -DWLAN_CLIENT_TABLES=OFF -DWLAN_CLIENT_SHELL=OFF -DWLAN_CLIENT_DOCUMENTS=OFF >"$build/log" 2>&1 ||
    { cat "$build/log"; exit 1; }
cmake --build "$build" --target vlk_rpc_wlan_config_client >"$build/log" 2>&1 || { cat "$build/log"; exit 1; }
client=$build/client/vlk_rpc_wlan_config_client

needed=$(objdump -p "$client" | sed -n 's/^ *NEEDED *//p' | sort | tr '\n' ' ')
[ "$needed" = "libc.so.6 libtirpc.so.3 " ] || { echo "it needs $needed"; exit 1; }

table=$("$@" run "$client" getAssocDevicesTable 1)
tab=$(printf '\t')
echo "$table" | grep -q "^MAC${tab}IP${tab}CAPABILITIES${tab}" || { echo "no tabs in the heading: $table"; exit 1; }
echo "$table" | grep -qi "^28:6a:ba:4c:10:01${tab}192.168.0.20${tab}" || { echo "no tabs in a line: $table"; exit 1; }
