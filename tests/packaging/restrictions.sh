#!/bin/sh
# restrictions.sh BUILD LIMIT_CALLS COMPILER GATEWAY...: the installed server does its work under the restrictions of
# its service unit: the tour from the installed simulated gateway, and every procedure once (with the gateway of the
# build, which GATEWAY runs). See restricted_server.sh for what is in force.
set -eu
cd "$(dirname "$0")"
. ./expect.sh
build=$1
limit_calls=$2
compiler=$3
shift 3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
DESTDIR=$folder cmake --install "$build" >"$folder/log"
prefix=$(dirname "$(dirname "$(find "$folder" -name vlk_simulated_gateway)")")
export SERVER="$prefix/sbin/vlk_rpc_wlan_config_server"
export UNIT="$prefix/lib/systemd/system/vlk-wlan-config.service"
# The prefix is what can be seen in the gateway, wherever sources and build are.
export LIMIT_CALLS="$prefix/limit_calls" CALL_NUMBERS="$prefix/call_numbers"
sh call_numbers.sh "$UNIT" "$compiler" >"$CALL_NUMBERS" 2>"$folder/log" || fail "$(cat "$folder/log")"
# The bounding set as the kernel shows it: a bit a capability.
echo '#include <linux/capability.h>' | "$compiler" -E -dM - |
    sed -n 's/^#define \(CAP_[A-Z_]*\) \([0-9]*\)$/\1 \2/p' >"$folder/bits"
mask=0
# shellcheck disable=SC2013 # words are wanted
for capability in $(sed -n 's/^CapabilityBoundingSet=//p' "$UNIT"); do
    bit=$(sed -n "s/^$capability //p" "$folder/bits")
    mask=$((mask | (1 << bit)))
done
CAPABILITIES=$(printf '%016x' "$mask")
export CAPABILITIES
cp "$limit_calls" restricted_server.sh "$prefix"
chmod +x "$prefix/restricted_server.sh"

# What is in force, seen from the outside: of the supervisor and its child.
cat >"$prefix/in_force.sh" <<'EOF'
set -eu
refused() { ! "$@" >/dev/null 2>&1 || { echo "not refused: $*" >&2; exit 1; }; }
same() { [ "$1" = "$2" ] || { echo "$1 instead of $2" >&2; exit 1; }; }
servers=$(pgrep -f '^[^ ]*vlk_rpc_wlan_config_server$')
same "$(echo "$servers" | wc -l)" 2
for pid in $servers; do
    same "$(sed -n 's/^CapEff:\t//p' "/proc/$pid/status")" "$(sed -n 's/^CapBnd:\t//p' "/proc/$pid/status")"
    same "$(sed -n 's/^CapBnd:\t//p' "/proc/$pid/status")" "$CAPABILITIES"
    same "$(sed -n 's/^NoNewPrivs:\t//p' "/proc/$pid/status")" 1
    same "$(sed -n 's/^Seccomp:\t//p' "/proc/$pid/status")" 2
    refused nsenter -t "$pid" -m touch /etc/ath/new
    refused nsenter -t "$pid" -m touch /usr/sbin/new
    nsenter -t "$pid" -m touch /tmp/new /nvram/new /run/new /etc/wpa2/new
done
# The filter is there for what the server starts as well: the kernel kills what it must not do.
refused "$LIMIT_CALLS" "$CALL_NUMBERS" AF_UNIX sh -c 'mount -t tmpfs new /mnt'
refused "$LIMIT_CALLS" "$CALL_NUMBERS" AF_UNIX sh -c 'unshare -n true'
refused "$LIMIT_CALLS" "$CALL_NUMBERS" AF_UNIX sh -c 'nice -n 1 true'
refused "$LIMIT_CALLS" "$CALL_NUMBERS" AF_UNIX sh -c 'chmod 4755 /tmp/new'
refused "$LIMIT_CALLS" "$CALL_NUMBERS" AF_UNIX ip address
# The rights it has are enough for what belongs to others: the store, which is read and replaced, and a daemon that the
# tour ends; and for bringing back the address, with which a child that was killed has the driver's script help it.
chown 65534 /tmp/.apcfg
chmod 600 /tmp/.apcfg
ln -s "$(command -v sleep)" /tmp/softblock
setpriv --reuid=65534 --clear-groups /tmp/softblock 600 &
fault address missing
kill "$(echo "$servers" | tail -n 1)"
until vlk_rpc_wlan_config_client getSsid 1; do sleep 0.05; done >/dev/null 2>&1
grep -q 'socket bind failed restarting driver' /run/gateway/server.log
sh "$1"
refused grep ': not found' /run/gateway/server.log
! kill -0 $! 2>/dev/null || { echo "a daemon of another user was not ended" >&2; exit 1; }
EOF
export GTEST_BRIEF=1
tour=$(find "$prefix" -name tour.sh)
"$prefix/bin/vlk_simulated_gateway" --rpcbind "$RPCBIND" --server "$prefix/restricted_server.sh" \
    run sh "$prefix/in_force.sh" "$tour" >"$folder/tour" 2>&1 &
touring=$!
"$@" --server "$prefix/restricted_server.sh" run "$build/tests/system/system_tests" --gtest_filter='Table/Procedures.*' \
    >"$folder/procedures" 2>&1 || fail "$(cat "$folder/procedures")"
wait "$touring" || fail "$(cat "$folder/tour")"
tail -n 1 "$folder/tour"
sed -n 's/^\[  PASSED  \]/every procedure:/p' "$folder/procedures" | grep . || fail "no procedure was called"
