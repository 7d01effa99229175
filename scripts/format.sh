#!/bin/sh
# Formats the sources in place, or with --check says which differ and fails.
set -eu
cd "$(dirname "$0")/.."
mode=-i
[ "${1:-}" = --check ] && mode="--dry-run -Werror"
# shellcheck disable=SC2086 # one or two options
find bench client config fuzz handlers lifecycle params platform server simulator soak steering survey tests \
    \( -name '*.cpp' -o -name '*.h' \) -print0 2>/dev/null | xargs -0 clang-format-14 $mode
