#!/bin/sh
# variant-build.sh PRESET [ARGUMENT...]: builds one of the presets besides release as ./test does. The programs of the
# system tests are those that the release build has: server, client and tools are what is another here.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
[ "$1" != i386 ] || scripts/i386-libraries.sh
configure "$1" -DWLAN_BUILD_TESTS=ON -DWLAN_TEST_PROGRAMS="$PWD/build/release/tests/system"
compile "$@"
