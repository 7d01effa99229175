#!/bin/sh
# packages.sh SOURCE BUILD RPCBIND: the Debian packages can be built, please lintian, and do on a machine what they are
# meant to: they are installed, upgraded, removed and purged in a copy of this machine's root that is forgotten
# afterwards, with processes and a network of its own. Needs root.
set -eu
cd "$(dirname "$0")"
. ./expect.sh
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
source=$1
build=$2
rpcbind=$(readlink -f "$3")

"$source/packaging/build.sh" "$build" "$folder/packages" >"$folder/list"
[ "$(wc -l <"$folder/list")" -eq 4 ] || fail "not four packages: $(cat "$folder/list")"

# There are no overrides: there is nothing to be said about these packages.
lintian --allow-root --fail-on error,warning "$folder"/packages/*.deb >"$folder/lintian" 2>&1 &
lintian=$!

dpkg-deb -f "$folder"/packages/vlk-wlan-config-server_*.deb Depends >"$folder/depends"
for needed in 'vlk-wlan-config-client (= ' 'procps' 'psmisc' 'libc6 (>= ' 'libtirpc3 (>= '; do
    grep -qF "$needed" "$folder/depends" || fail "the server does not depend on $needed: $(cat "$folder/depends")"
done

mkdir "$folder/inside"
cp "$folder"/packages/*.deb "$rpcbind" expect.sh installed_packages.sh "$folder/inside"
# shellcheck disable=SC2016 # the inner shell expands it
unshare --mount --net --pid --fork --propagation private sh -c '
    set -eu
    root=$1/root
    mkdir "$root" "$1/changes"
    mount -t tmpfs changes "$1/changes"
    mkdir "$1/changes/upper" "$1/changes/work"
    mount -t overlay root -o "lowerdir=/,upperdir=$1/changes/upper,workdir=$1/changes/work" "$root"
    mkdir -p "$root/nvram" "$root/packages"
    for own in tmp run nvram sys; do mount -t tmpfs own "$root/$own"; done
    mount --rbind /dev "$root/dev"
    mount -t proc proc "$root/proc"
    cp "$1"/inside/* "$root/packages"
    exec chroot "$root" sh /packages/installed_packages.sh' sh "$folder"

wait "$lintian" || fail "$(cat "$folder/lintian")"
