#!/bin/sh
# Unpacks the 32-bit libraries that a build with scripts/i386.cmake needs beside the compiler's own into build/i386.
# Nothing is installed: a machine of 64 bits stays one.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
packages="libtirpc-dev libgtest-dev libsmartcols-dev libedit-dev"
folder=$PWD/build/i386
[ -e "$folder/complete" ] && exit 0
rm -rf "$folder"
mkdir -p "$folder/apt/lists/partial" "$folder/apt/archives/partial" "$folder/root"
: >"$folder/apt/status"

# A package manager of its own, for a machine on which nothing is installed yet.
apt_i386() {
    apt-get -q -y -o Dir::State::lists="$folder/apt/lists" -o Dir::State::status="$folder/apt/status" \
        -o Dir::Cache="$folder/apt" -o APT::Architecture=i386 -o APT::Architectures=i386 -o APT::Sandbox::User= \
        -o Debug::NoLocking=1 "$@"
}
# Sources that have nothing for this architecture are passed over; what is missing then shows below.
apt_i386 update >"$folder/log" 2>&1 || true
# shellcheck disable=SC2086 # a list of packages
quietly "$folder/log" apt_i386 --download-only --no-install-recommends install $packages
for package in "$folder"/apt/archives/*.deb; do
    case ${package##*/} in
    # The compiler brings these.
    libc6* | libc-dev-bin* | linux-libc-dev* | gcc-* | libgcc-* | libcrypt*) ;;
    *) dpkg -x "$package" "$folder/root" ;;
    esac
done
# Their absolute links mean this folder.
find "$folder/root" -type l -lname '/*' | while read -r link; do
    ln -sf "$folder/root$(readlink "$link")" "$link"
done
rm -r "$folder/apt"
touch "$folder/complete"
