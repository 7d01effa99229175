#!/bin/sh
# manual_pages.sh FOLDER: mandoc has nothing to say about the manual pages, and every program that is installed has one.
set -eu
cd "$1"  # where mandoc looks for the pages that they refer to
[ "$(find . -name '*.[18]' | wc -l)" -eq 3 ] || { echo "these are not three pages" >&2; exit 1; }
# Other packages' manuals need not be on this machine.
mandoc -Tlint -W style ./*.[18] | grep -v 'referenced manual not found: Xr rpc' && exit 1
# A page's name and section agree with its file.
for page in *.[18]; do
    grep -qx "[.]Nm ${page%.*}" "$page" || { echo "$page is not about ${page%.*}" >&2; exit 1; }
    grep -qix "[.]Dt ${page%.*} ${page##*.}" "$page" || { echo "$page has another section" >&2; exit 1; }
done
