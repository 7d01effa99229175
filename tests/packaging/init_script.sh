#!/bin/sh
# init_script.sh SCRIPT SERVER SHELL...: the start-up script does what such a script has to, in a gateway without a
# portmapper and a server. SHELL is what runs the script, one word or several.
set -eu
cd "$(dirname "$0")"
. ./expect.sh
folder=$(mktemp -d)
script=$folder/vlk-wlan-config
cp "$1" "$script"
server=$2
shift 2
pidfile=/var/run/vlk-wlan-config.pid
# The host's folder shows through a link, which is the gateway's own.
[ -L /etc/default ] || fail "/etc/default is not the gateway's"
rm /etc/default
mkdir /etc/default
printf 'DAEMON=%s\nLOG=%s/log\n' "$server" "$folder" >/etc/default/vlk-wlan-config
# A small system has small tools too.
if [ "$1" = busybox ]; then
    mkdir "$folder/bin"
    for tool in cat grep head kill readlink rm setsid sleep tail touch tr wc; do
        ln -s "$(command -v busybox)" "$folder/bin/$tool"
    done
    echo "PATH=$folder/bin:\$PATH" >>/etc/default/vlk-wlan-config
fi

ask() {
    vlk_rpc_wlan_config_client getNumberOfEntries
}
servers() {
    pgrep -f "^$server\$" | wc -l
}
some_servers() {
    [ "$(servers)" -eq "$1" ]
}

# Nothing runs, and nothing can: there is no portmapper.
expect 3 'does not run' "$@" "$script" status
expect 0 'does not run' "$@" "$script" stop
expect 0 '' "$@" "$script" try-restart
some_servers 0 || fail "try-restart has started what did not run"
expect 1 'Network and/or portmapper has not been setup' "$@" "$script" start
[ ! -e "$pidfile" ] || fail "a failed start leaves $pidfile"
expect 2 'usage:' "$@" "$script" reload

"$VLK_PORTMAP_PROGRAM" -f &
eventually test -S /run/rpcbind.sock
expect 0 'vlk-wlan-config: started' "$@" "$script" start
some_servers 2 || fail "not a supervisor and a child: $(servers)"
expect 0 16 ask
[ "$(stat -c %a "$folder/log")" = 600 ] || fail "others can read the log"
first=$(cat "$pidfile")
expect 0 "runs, process $first" "$@" "$script" status
expect 0 'runs already' "$@" "$script" start
[ "$(cat "$pidfile")" = "$first" ] || fail "a second start takes the first one's place"
some_servers 2 || fail "a second start has started something"
tr '\0' '\n' <"/proc/$first/environ" | grep -x 'PATH=.*:/etc/ath' >/dev/null || fail "no /etc/ath in the PATH"
[ "$(ps -o sid= -p "$first" | tr -d ' ')" = "$first" ] || fail "it is not detached from the terminal"

expect 0 'vlk-wlan-config: started' "$@" "$script" restart
second=$(cat "$pidfile")
[ "$second" != "$first" ] || fail "a restart has started nothing"
expect 0 16 ask
expect 0 'vlk-wlan-config: started' "$@" "$script" try-restart
[ "$(cat "$pidfile")" != "$second" ] || fail "try-restart has started nothing"
: >"$folder/log"
vlk_rpc_wlan_config_client getSsid 1 >/dev/null
touch /tmp/wlandbg
vlk_rpc_wlan_config_client getSsid 1 >/dev/null
rm /tmp/wlandbg
head -c 5 "$folder/log" | grep -q '^\[VLK-' || fail "lines do not go to the start of a log that was emptied"

# A process id that somebody else has by now is not the server's.
expect 0 'vlk-wlan-config: stopped' "$@" "$script" stop
some_servers 0 || fail "stop has left $(servers)"
[ ! -e "$pidfile" ] || fail "stop leaves $pidfile"
sleep 60 &
echo $! >"$pidfile"
expect 1 'has ended, and left' "$@" "$script" status
expect 0 'does not run' "$@" "$script" stop
kill -0 $! || fail "somebody else was stopped"
kill $!

# One that was started by hand, and a child that has lost its supervisor, are found all the same; a client is not taken
# for one.
"$server" >"$folder/by_hand" 2>&1 &
by_hand=$!
eventually grep -q 'bind successfully' "$folder/by_hand"
expect 0 "was not started here" "$@" "$script" status
expect 0 'runs already' "$@" "$script" start
kill -KILL "$by_hand"
eventually some_servers 1
expect 0 "was not started here" "$@" "$script" status
expect 0 'vlk-wlan-config: stopped' "$@" "$script" stop
some_servers 0 || fail "stop has left a child without supervisor"
ln -s "$(command -v sleep)" "$folder/vlk_rpc_wlan_config_client"
"$folder/vlk_rpc_wlan_config_client" 60 &
expect 3 'does not run' "$@" "$script" status
kill $!

# Without its address it runs, and says what it waits for.
ip address del 192.168.254.254/32 dev lo
sed -i 's/^START_TENTHS=.*/START_TENTHS=5/' "$script"
expect 0 'has no address yet: ' "$@" "$script" start
ip address add 192.168.254.254/32 dev lo
eventually ask
expect 0 'vlk-wlan-config: stopped' "$@" "$script" stop

echo 'DAEMON=/usr/sbin/nobody' >/etc/default/vlk-wlan-config
expect 5 'there is no /usr/sbin/nobody' "$@" "$script" start
echo "The start-up script works with: $*"
