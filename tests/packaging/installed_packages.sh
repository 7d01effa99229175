#!/bin/sh
# Runs in the copy of the root that packages.sh makes: what the packages do to a machine.
set -eu
cd /packages
. ./expect.sh
folder=$(mktemp -d)
export PATH=/usr/sbin:/usr/bin:/sbin:/bin
export DEBIAN_FRONTEND=noninteractive
script=/etc/init.d/vlk-wlan-config
server=/usr/sbin/vlk_rpc_wlan_config_server
# Build machines forbid packages to start anything, and so do those without an init.
printf '#!/bin/sh\nexit 0\n' >/usr/sbin/policy-rc.d
chmod +x /usr/sbin/policy-rc.d
# The index of manuals, and bringing to the disk what is forgotten at once, only take time.
rm -f /var/lib/man-db/auto-update
echo force-unsafe-io >/etc/dpkg/dpkg.cfg.d/quickly
servers() {
    pgrep -f "^$server\$" | tr '\n' ' '
}
address() {
    ip address "$1" 192.168.254.254/32 dev lo
}

# A first installation starts nothing, and nothing will at the next start of the machine.
ip link set lo up
address add
grep -q '^_rpc:' /etc/passwd || echo '_rpc:x:0:0::/run/rpcbind:/usr/sbin/nologin' >>/etc/passwd
ln -s /packages/rpcbind /usr/sbin/portmap
portmap -f &
eventually test -S /run/rpcbind.sock
expect 0 '' dpkg -i ./*.deb
[ -z "$(servers)" ] || fail "installing has started the server"
expect 3 'does not run' "$script" status
! ls /etc/rc2.d/S*vlk-wlan-config 2>/dev/null || fail "installing has enabled the server"
[ ! -e /etc/systemd/system/multi-user.target.wants/vlk-wlan-config.service ] || fail "installing has enabled the unit"

# What runs is replaced by an upgrade, in whatever way it was started.
expect 0 started "$script" start
first=$(servers)
expect 0 '' dpkg -i ./vlk-wlan-config-server_*.deb
second=$(servers)
[ -n "$second" ] || fail "an upgrade has stopped the server: $(cat "$folder/output")"
[ "$second" != "$first" ] || fail "an upgrade has left the old server: $(cat "$folder/output")"
expect 0 16 vlk_rpc_wlan_config_client getNumberOfEntries

# The device's own libraries stand in front of the stand-ins, and an upgrade leaves them alone.
libraries=$(dirname "$(dpkg -L vlk-wlan-config-server | grep '/libzubra_event.so$')")
LD_TRACE_LOADED_OBJECTS=1 "$server" | grep -q 'vlk-wlan-config/libzubra_event.so' || fail "no stand-in"
cp "$libraries/libzubra_event.so" "$libraries/device"
expect 0 '' dpkg -i ./vlk-wlan-config-server_*.deb
LD_TRACE_LOADED_OBJECTS=1 "$server" | grep -q 'device/libzubra_event.so' || fail "not the device's own library"
rm "$libraries/device/libzubra_event.so"

# The simulated gateway works from where it is installed.
expect 0 'Home network' vlk_simulated_gateway --rpcbind /packages/rpcbind run vlk_rpc_wlan_config_client getSsid 1
[ -r /usr/share/vlk-wlan-config/wlan_config.x ] || fail "no interface file"

# The store is the gateway's and stays; everything that was installed goes.
touch /tmp/.apcfg
expect 0 '' dpkg -r vlk-wlan-simulated-gateway vlk-wlan-config-server
[ -z "$(servers)" ] || fail "removing has left the server running"
expect 5 'there is no' "$script" start
expect 0 '' dpkg -P vlk-wlan-config-server vlk-wlan-simulated-gateway vlk-wlan-config-client vlk-wlan-config-dev
[ -e /tmp/.apcfg ] || fail "purging has removed the store"
left=$(find /etc /usr/sbin /usr/bin /usr/lib /usr/libexec /usr/share /var/log -name '*vlk*' | tr '\n' ' ')
[ -z "$left" ] || fail "purging has left $left"
echo "The packages can be installed, upgraded, removed and purged."
