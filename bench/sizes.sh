#!/bin/sh
# sizes.sh BUILD: what each folder of ours contributes to the server: code and constants, before the linker adds its own.
set -eu
objects=$1/server/CMakeFiles
echo "what each folder contributes to the server, in bytes of code and constants"
for folder in server handlers config params survey steering lifecycle; do
    case $folder in
    server) files=$(find "$objects" -name '*.o' -not -path '*/__/*') ;;
    *) files=$(find "$objects" -name '*.o' -path "*/__/$folder/*") ;;
    esac
    # shellcheck disable=SC2086 # a list of files
    size $files | awk -v folder="$folder" 'NR > 1 { sum += $1 + $2 } END { printf "    %-10s %7d\n", folder, sum }'
done
