#!/bin/sh
# Writes what follows from the table of procedures, with a build folder: first client/touches.def, the record of what
# each procedure touches in the simulated gateway; then, by a client that has it, the documents.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
find_rpcbind
build=$1
client=$build/client/vlk_rpc_wlan_config_client
cmake --build "$build" --target record_touches
sh tests/checks/touches.sh "$build/tests/system/record_touches" "$build/simulator/vlk_simulated_gateway" \
    --rpcbind "$rpcbind" >"$build/touches.def"
# One that is as it was is left alone, so that nothing is compiled again for it.
cmp -s "$build/touches.def" client/touches.def || cp "$build/touches.def" client/touches.def
cmake --build "$build" --target vlk_rpc_wlan_config_client
"$client" reference >docs/procedures.md
"$client" interface >docs/wlan_config.x
"$client" dissector >docs/wlan_config.lua
"$client" records >docs/wlan_config_records.h
"$client" manual >packaging/man/vlk_rpc_wlan_config_client.8
