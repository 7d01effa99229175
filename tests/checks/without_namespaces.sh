#!/bin/sh
# without_namespaces.sh AS_IN_A_CONTAINER SYSTEM_TESTS GATEWAY --rpcbind PROGRAM: where namespaces are refused and the
# rights are those of a container, the gateway works all the same, several at once; it writes nothing outside, signals
# nobody outside, and leaves no process and no file behind, however it ends. GATEWAY is that of the build.
set -u
here=$(readlink -f "$0")
fail() {
    echo "$*" >&2
    exit 1
}

# First a namespace for processes around it all, so that nobody else's come and go meanwhile.
if [ -z "${STAGE:-}" ]; then
    FOLDER=$(mktemp -d /var/tmp/without_namespaces.XXXXXX)
    trap 'rm -rf "$FOLDER"' EXIT
    trap 'exit 1' INT TERM HUP
    # For the ordinary user below, who may have no way to the build.
    chmod 755 "$FOLDER"
    DESTDIR=$FOLDER/installed cmake --install "$(dirname "$(dirname "$3")")" >/dev/null || fail "nothing was installed"
    cp "$5" "$FOLDER/installed/rpcbind"
    root=
    [ "$(id -u)" = 0 ] || root=--map-root-user
    export FOLDER
    # shellcheck disable=SC2086 # an option or none
    STAGE=1 unshare $root --mount --pid --fork --kill-child --mount-proc sh "$here" "$@"
    exit
fi

# Then the rights and refusals of a container, and outside it daemons of the same names as those in the gateway.
if [ "$STAGE" = 1 ]; then
    container=$1
    rights=-all
    for right in chown dac_override fowner fsetid kill setgid setuid setpcap net_bind_service net_raw sys_chroot mknod \
        audit_write setfcap; do
        rights=$rights,+$right
    done
    OUTSIDERS=
    for name in radstat0 softblock hostapd portmap; do
        cp /bin/sleep "$FOLDER/$name"
        "$FOLDER/$name" 300 &
        OUTSIDERS="$OUTSIDERS $!"
    done
    export OUTSIDERS
    STAGE=2 setpriv --inh-caps=-all --bounding-set="$rights" "$container" sh "$here" "$@" || exit 1
    for pid in $OUTSIDERS; do
        kill -0 "$pid" || fail "a process outside was killed"
    done
    exit 0
fi

tests=$2
shift 2
unset STAGE
unshare -Urm true 2>/dev/null && fail "user namespaces are not refused"
unshare -n true 2>/dev/null && fail "network namespaces are not refused"
mount -t tmpfs none "$FOLDER" 2>/dev/null && fail "mounts are not refused"
capability=$(sed -n 's/^CapEff:\t//p' /proc/self/status)
# CAP_SYS_ADMIN is bit 21.
[ $((0x$capability >> 21 & 1)) = 0 ] || fail "the rights are more than those of a container"

# What the gateway writes inside, and what carries it, has these names.
outside() {
    ls -a "$TMPDIR"
    # shellcheck disable=SC2010 # others make files meanwhile
    ls -a /tmp /run /nvram /sys /etc /usr/sbin /etc/ath /sys/bus/pci/slots 2>&1 |
        grep -E '^(prooted-|vlk_|[.]apcfg|[.]wlan|wlandbg|conf_filename|wifi_def|gateway|rpcbind|hostapd|radstat|ssid|here|cfg|etc$|nvram|portmap|0000:)'
    ls -l /etc/passwd /etc/ld.so.preload /sys/bus/pci/rescan 2>&1
    ps -e -o comm= | grep -vxE 'sh|ps|grep|ls' | sort
}
mkdir "$FOLDER/tmp"
export TMPDIR="$FOLDER/tmp"
outside >"$FOLDER/before"

# The tour, beside it some of the system tests, and beside those a gateway with another SSID under the same address.
"$@" tour >"$FOLDER/tour" 2>"$FOLDER/tour.errors" &
touring=$!
# shellcheck disable=SC2016 # the gateway's shell expands it
"$@" run sh -c '
    set -e
    grep -q "^proot 127[.]" /run/gateway/carrier
    touch /tmp/here /run/here /nvram/here /sys/here /etc/here /usr/sbin/here
    # The same for every call that asks for a path, old or new.
    [ -r /nvram/here ] && bash -c "[[ -r /nvram/here && -w /nvram/here ]]" && find /nvram/here >/dev/null
    # What starts many programs keeps its memory.
    i=0
    while [ $i -lt 4000 ]; do
        eval "value_$i=a_value_that_takes_some_room_in_the_heap_of_this_shell_and_then_some_more_of_it_again_$i"
        [ $((i % 1000)) != 0 ] || /bin/true
        i=$((i + 1))
    done
    [ "${value_0##*_}" = 0 ] && [ "${value_3999##*_}" = 3999 ]
    # Nobody gets any by brk(), of which proot makes one heap for processes that are started at the same time.
    [ "$(/usr/bin/python3 -c "import ctypes; print(ctypes.CDLL(None).sbrk(4096))")" = -1 ]
    [ -z "$(ls -A /.host/tmp /.host/run /.host/proc | grep -v :)" ]
    vlk_rpc_wlan_config_client setSsid 1 "Second gateway"
    vlk_rpc_wlan_config_client getSsid 1 | grep -qx "Second gateway"
    vlk_rpc_wlan_config_client setRadStatEnable 1 1 30 1800
    rpcinfo -T udp 192.168.254.254 538121015 1
    # The internal address goes and comes back.
    ip address | grep -qw 192.168.254.254
    fault address missing
    ! ip address | grep -w 192.168.254.254 || exit 1
    ! vlk_rpc_wlan_config_client getSsid 1 || exit 1
    fault address off
    vlk_rpc_wlan_config_client getSsid 1
    # Whom it sees, and whom its signals reach.
    reached() { echo "$1 is reached"; exit 1; }
    running() { pgrep -x -r R,S,D "$1" >/dev/null; }
    until running radstat0; do sleep 0.1; done
    for pid in $OUTSIDERS; do
        if pgrep . | grep -qx "$pid"; then reached "$pid"; fi
        if ps -e -o pid= | grep -qx " *$pid"; then reached "$pid"; fi
        if kill -0 "$pid" 2>/dev/null; then reached "$pid"; fi
    done
    for name in radstat0 softblock hostapd portmap; do
        [ "$(pgrep -c -x $name)" = 1 ]
        [ "$(pidof -x $name | wc -w)" = 1 ]
    done
    killall radstat0 softblock hostapd
    pkill -KILL -x portmap
    for name in radstat0 softblock hostapd portmap; do
        while running $name; do sleep 0.1; done
    done
    # All that it can reach, but its first process and itself.
    sleep 300 &
    kill -KILL -1
    wait $! || [ $? = 137 ]' >"$FOLDER/second" 2>&1 &
second=$!
GTEST_FILTER='Vap.*:SoftBlock.*' "$@" run "$tests" --gtest_brief=1 >"$FOLDER/system" 2>&1 ||
    fail "$(cat "$FOLDER/system")"
wait "$second" || fail "the second gateway: $(cat "$FOLDER/second")"
wait "$touring" || fail "$(cat "$FOLDER/tour" "$FOLDER/tour.errors")"
grep -x 'vlk_simulated_gateway: namespaces are refused here; proot carries this run' "$FOLDER/tour.errors" ||
    fail "the way is not said: $(cat "$FOLDER/tour.errors")"
tail -n 1 "$FOLDER/tour"
grep -E '^\[  PASSED  \] [1-9]' "$FOLDER/system" || fail "no system test was run"

# The status is the command's, and so are its output and errors.
[ "$("$@" --bare run sh -c 'echo said; exit 7' 2>/dev/null; echo $?)" = "said
7" ] || fail "status and output are not the command's"
# Whatever is killed, everything ends with it.
for killed in launcher-TERM launcher-KILL proot; do
    mkfifo "$FOLDER/$killed"
    "$@" --bare run sh -c 'sleep 300 & echo up; sleep 300' >"$FOLDER/$killed" 2>/dev/null &
    launcher=$!
    # Reading ends when everything that writes has.
    {
        read -r _
        case $killed in
        launcher-*) kill "-${killed#launcher-}" "$launcher" ;;
        proot) pkill -KILL -x proot ;;
        esac
        cat
    } <"$FOLDER/$killed"
    wait "$launcher" && fail "a gateway whose $killed was killed ends with 0"
done
# What the command leaves behind is ended before it could get at the files outside.
"$@" --bare run sh -c 'while :; do : >/tmp/here_too; done & sleep 0.1' 2>/dev/null || fail "it did not end as it should"
# Another container that shares /tmp may have a proot of the same number, whose loader is left to it.
# shellcheck disable=SC2016 # the gateway's shell expands it
"$@" --bare run sh -c 'sed -n "s/^TracerPid:\t//p" /proc/self/status; until [ -e "$0" ]; do sleep 0.1; done' \
    "$FOLDER/enough" >"$FOLDER/number" 2>/dev/null &
numbered=$!
until [ -s "$FOLDER/number" ]; do sleep 0.1; done
foreign=/tmp/prooted-$(cat "$FOLDER/number")-foreign
touch "$foreign" "$FOLDER/enough"
wait "$numbered"
rm "$foreign" || fail "the loader of another container's proot is gone"
# As the ordinary user too, who may not have ports below 1024.
[ "$(id -u)" != 0 ] || {
    mkdir -m 777 "$TMPDIR/user"
    installed=$(find "$FOLDER/installed" -name vlk_simulated_gateway -type f)
    TMPDIR="$TMPDIR/user" setpriv --reuid=65534 --regid=65534 --clear-groups --bounding-set=-all "$installed" \
        --rpcbind "$FOLDER/installed/rpcbind" run vlk_rpc_wlan_config_client getSsid 1 >"$FOLDER/user" 2>&1
    grep -qx 'Home network' "$FOLDER/user" || fail "not for an ordinary user: $(cat "$FOLDER/user")"
    rmdir "$TMPDIR/user"
}

# The keeper of a launcher that was killed has its work to do yet. What others leave or take away does not count.
for _ in 1 2 3 4 5 6 7 8 9 10; do
    outside >"$FOLDER/after"
    diff "$FOLDER/before" "$FOLDER/after" | grep '^>' >"$FOLDER/added" || exit 0
    sleep 0.5
done
cat "$FOLDER/added"
fail "something was left behind or changed outside"
