#!/bin/sh
# sanitized-build.sh PRESET [ARGUMENT...]: builds one of the sanitizers' presets as ./test does. The programs of the
# system tests are those that the release build has: server, client and tools are what the sanitizers are to see.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
configure "$1" -DWLAN_BUILD_TESTS=ON -DWLAN_TEST_PROGRAMS="$PWD/build/release/tests/system"
compile "$@"
