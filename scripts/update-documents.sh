#!/bin/sh
# Writes the documents that follow from the table of procedures, with the client of a build folder.
set -eu
cd "$(dirname "$0")/.."
client=$1/client/vlk_rpc_wlan_config_client
"$client" reference >docs/procedures.md
"$client" interface >docs/wlan_config.x
