#!/bin/sh
# server_ends.sh UNIT SERVER: what an end of the server leaves alone, how the unit ends it, and what a new one finds. In
# a running gateway.
set -eu
cd "$(dirname "$0")"
. ./expect.sh
unit=$1
server=$2
folder=$(mktemp -d)
client=vlk_rpc_wlan_config_client
log=/run/gateway/server.log

supervisor() {
    sed -n 's/^VLK WLAN RPC Server pid=\([0-9]*\) .*/\1/p' "$log" | tail -n 1
}
servers() {
    pgrep -f '^[^ ]*vlk_rpc_wlan_config_server$' | xargs -r ps -o stat= -p | grep -cv Z
}
no_servers() {
    [ "$(servers)" -eq 0 ]
}
# As systemd with KillMode=process: a signal for the process that it has started, then what the unit says.
stop() {
    grep -qx KillMode=process "$unit"
    kill "$(supervisor)"
    after=$(sed -n 's/^ExecStopPost=-+\/bin\/sh -c //p' "$unit" | sed 's/\$\$/$/g')
    eval "/bin/sh -c $after" || true
    eventually no_servers
}
start() {
    setsid env LD_PRELOAD="$VLK_GATEWAY_DRIVER" "$server" >>"$log" 2>&1 </dev/null &
    eventually answers
}
answers() {
    "$client" getNumberOfEntries
}
processes_of_others() {
    pgrep hostapd && pgrep softblock && pgrep radstat0
}

expect 0 '' "$client" setRadStatEnable 1 1 30 1800
expect 0 '' "$client" setSsid 2 "stays as it is"
eventually processes_of_others
before=$(processes_of_others)

# A call that is under way is lost, and its client waits in vain; the tool that it runs comes to its end.
fault iwconfig slow 1
"$client" --timeout 2 getStatus 1 >"$folder/in_flight" 2>&1 &
in_flight=$!
eventually grep -q '^run iwconfig' /run/gateway/journal
stop
[ "$(processes_of_others)" = "$before" ] || fail "stopping the server has ended something else"
! "$client" getSsid 1 >"$folder/output" 2>&1 || fail "somebody still answers"
pgrep iwconfig >"$folder/output" || fail "the tool was ended too"
! wait "$in_flight" || fail "the call was answered: $(cat "$folder/in_flight")"
fault off

start
expect 0 'stays as it is' "$client" getSsid 2
[ "$(processes_of_others)" = "$before" ] || fail "starting the server has ended something else"

# A driver that is being brought up comes up; the new server only does not know that it did.
"$client" reset >/dev/null
eventually sh -c '! grep -q "^up" /run/gateway/driver'
eventually sh -c "tail -n 1 /run/gateway/journal | grep -q checkThreadQueue"
sed -i 's/^script apup .*/script apup seconds=1/' /run/gateway/scenario
"$client" init >/dev/null
eventually pgrep -x apup
stop
eventually grep -q '^up ath8' /run/gateway/driver

# Two servers: the second takes away the first one's registration for as long as it tries.
start
"$server" >"$folder/second" 2>&1 &
second=$!
eventually grep -q 'bind: Address already in use' "$folder/second"
grep -q 'socket bind failed restarting driver' "$folder/second" ||
    fail "the authenticator runs, and apup was not called"
! answers >"$folder/output" 2>&1 || fail "the first one is still registered"
grep -q 'is the server running' "$folder/output" || fail "$(cat "$folder/output")"
kill "$second"
stop
start
echo "The server can be ended and started at any time."
