#!/bin/bash
# portmap_name.sh SERVER: which ways to start rpcbind the server's start-up check takes for a portmapper. In a gateway
# that has none yet. (bash, for its exec -a.)
set -eu
cd "$(dirname "$0")"
. ./expect.sh
server=$1
folder=$(mktemp -d)
rpcbind=$(readlink -f "$VLK_PORTMAP_PROGRAM")
refused='Network and/or portmapper has not been setup'

# with_portmapper COMMAND...: starts it, leaves its process id in $portmapper.
with_portmapper() {
    "$@" &
    portmapper=$!
    eventually test -S /run/rpcbind.sock
}
end_portmapper() {
    kill "$portmapper"
    wait "$portmapper" || true
    rm -f /run/rpcbind.sock
}

with_portmapper "$rpcbind" -f
expect 0 "$refused" "$server"
end_portmapper

# The kernel's name of a process is that of its file, whatever it is told to be called.
# shellcheck disable=SC2016 # the inner shell expands it
with_portmapper bash -c 'exec -a portmap "$0" -f' "$rpcbind"
expect 0 "$refused" "$server"
end_portmapper

ln -s "$rpcbind" "$folder/portmap"
with_portmapper "$folder/portmap" -f
"$server" >"$folder/log" 2>&1 &
eventually vlk_rpc_wlan_config_client getNumberOfEntries
kill $!
end_portmapper
echo "A link called portmap is what it takes."
