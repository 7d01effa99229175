#!/bin/sh
# needs.sh BUILD SANITIZERS: the installed server needs nothing but libc, libtirpc and the device's libraries. A
# sanitizer build needs the sanitizers' libraries as well and is only installed.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
DESTDIR=$folder cmake --install "$1" >"$folder/log"
server=$(find "$folder" -name vlk_rpc_wlan_config_server)
[ -x "$server" ]
[ -x "$(find "$folder" -path '*/sbin/vlk_rpc_wlan_config_client')" ]
[ -z "$2" ] || exit 0
needed=$(objdump -p "$server" | sed -n 's/^ *NEEDED *//p')
echo "$needed"
if echo "$needed" | grep -vE '^(libc\.so\.6|libtirpc\.so\.3|libzubra_event\.so|libwifi_statistics\.so)$'; then
    echo "is more than the server may need"
    exit 1
fi
