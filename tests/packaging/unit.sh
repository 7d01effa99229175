#!/bin/sh
# unit.sh UNIT BUILD: the installed service unit is one that systemd takes, and gives away no more than it has to.
set -eu
cd "$(dirname "$0")"
. ./expect.sh
unit=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# What the unit reaches, in tenths, as `systemd-analyze security` counts (0 is a service that can do nothing, 100 one
# without restrictions). Each directive that is missing has its reason in the unit. Lower it when the unit gets better.
EXPOSURE_TENTHS_MAX=40

systemd-analyze security --offline=true --no-pager "$unit" >"$folder/security"
exposure=$(sed -n 's/.*Overall exposure level for .*: \([0-9]*\)\.\([0-9]\) .*/\1\2/p' "$folder/security")
[ -n "$exposure" ] || fail "$(cat "$folder/security")"
tail -n 1 "$folder/security"
if [ "$exposure" -gt "$EXPOSURE_TENTHS_MAX" ]; then
    grep '^✗' "$folder/security" >&2
    fail "the exposure is $exposure tenths, and was $EXPOSURE_TENTHS_MAX"
fi

# Whatever counts and is not set is spoken of in the unit, by name.
grep '^✗' "$folder/security" | sed 's/^✗ \([A-Za-z]*\)=.*/\1/' | sort -u | while read -r directive; do
    grep -q "$directive=" "$unit" || fail "the unit does not say why $directive= is not set"
done

# As installed, with the programs in their places; without manuals, which are not in this machine's search path.
DESTDIR=$folder/root cmake --install "$2" --component server >"$folder/log"
mkdir -p "$folder/root/bin"
for program in /usr/sbin/vlk_rpc_wlan_config_server /bin/sh; do
    [ -x "$folder/root$program" ] || cp /bin/true "$folder/root$program"
done
for needed in sysinit.target basic.target network.target multi-user.target shutdown.target; do
    printf '[Unit]\nDescription=%s\n' "$needed" >"$folder/root/usr/lib/systemd/system/$needed"
done
systemd-analyze verify --man=no --root="$folder/root" vlk-wlan-config.service >"$folder/verify" 2>&1 ||
    fail "$(cat "$folder/verify")"
! grep . "$folder/verify" || fail "that is what systemd says about the unit"
