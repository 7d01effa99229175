#!/bin/sh
# touches.sh RECORDER GATEWAY...: prints client/touches.def anew. Each procedure is called in a simulated gateway of its
# own, several at once; GATEWAY... is the command that runs another one in such a gateway.
set -eu
recorder=$1
shift
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
trap 'exit 1' INT TERM HUP

cat <<'END'
// What each procedure touched on the simulated gateway when it was called once: made from the gateway's journal by
// tests/system/record_touches.cpp. Do not edit it; scripts/update-documents.sh makes it again.
//
//   TOUCHES(number, procedure, SAMPLE(arguments), READS(keys), WRITES(keys), COMMANDS(shell commands),
//           FILES(opened by the server itself), REQUESTS(ioctls), DATAGRAMS(to daemons), MESSAGES(to the event library))
//
// client/touches.h says what stands in the lists.

END
# shellcheck disable=SC2016 # the inner shell expands these
"$recorder" | FOLDER=$folder xargs -P 6 -I '{}' sh -c \
    'procedure=$1
    shift
    "$@" run "$0" "$procedure" >"$FOLDER/$procedure" </dev/null && exit
    echo "no row of $procedure" >&2
    exit 1' "$recorder" '{}' "$@"
cat "$folder"/* | LC_ALL=C sort | cut -f 2
echo '#undef TOUCHES'
