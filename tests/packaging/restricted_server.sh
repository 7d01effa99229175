#!/bin/sh
# restricted_server.sh: stands in for the server in the simulated gateway and becomes the server under the restrictions
# of its service unit, which are taken from the unit's own lines.
#
# UNIT, SERVER, LIMIT_CALLS and CALL_NUMBERS are in the environment. Applied are Environment=, PrivateMounts=,
# ProtectSystem=strict with ReadWritePaths=, ProtectHostname=, CapabilityBoundingSet=, NoNewPrivileges= and the system
# call filters.
set -eu
if [ "${1-}" != inside ]; then
    exec unshare --mount --uts --propagation private sh "$0" inside
fi

# The value of a directive; ends with a complaint when the unit does not have it.
directive() {
    sed -n "s/^$1=//p" "$UNIT" | grep . || { echo "$UNIT has no $1=" >&2; exit 1; }
}

for yes in PrivateMounts ProtectHostname NoNewPrivileges LockPersonality MemoryDenyWriteExecute RestrictNamespaces \
    RestrictRealtime RestrictSUIDSGID; do
    [ "$(directive $yes)" = yes ]
done
[ "$(directive ProtectSystem)" = strict ]
[ "$(directive SystemCallArchitectures)" = native ]

# Everything is read-only but the kernel's trees and what is listed.
writable=
for path in $(directive ReadWritePaths); do
    path=${path#-}
    [ -e "$path" ] || continue
    mount --rbind "$path" "$path"
    writable="$writable $path"
done
while read -r _ _ _ _ path options _; do
    for kept in $writable /proc /sys /dev; do
        case $path in "$kept" | "$kept"/*) continue 2 ;; esac
    done
    [ -e "$path" ] || continue  # below another mount that covers it
    printf '%s %s\n' "$path" "${options#rw,}"
done </proc/self/mountinfo | while read -r path options; do
    mount -o "remount,bind,ro,$options" "$path"
done

capabilities=$(directive CapabilityBoundingSet | tr 'A-Z ' 'a-z,' | sed 's/cap_/+/g')
exec setpriv --bounding-set="-all,$capabilities" --no-new-privs \
    "$LIMIT_CALLS" "$CALL_NUMBERS" "$(directive RestrictAddressFamilies)" \
    env "$(directive Environment)" LD_PRELOAD="$VLK_GATEWAY_DRIVER" "$SERVER"
