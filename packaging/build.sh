#!/bin/sh
# build.sh BUILD OUT: makes the Debian packages of a build folder (a release build that is complete) and puts them into
# the folder OUT, which is made.
set -eu
[ $# -eq 2 ] || { echo "usage: $0 BUILD OUT" >&2; exit 2; }
mkdir -p "$2"
build=$(cd "$1" && pwd)
out=$(cd "$2" && pwd)
[ -f "$build/CPackConfig.cmake" ] || { echo "$build is no build folder" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
if ! cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/packages" >log 2>&1; then
    cat log >&2
    exit 1
fi
mv packages/*.deb "$out"
ls "$out"
