# shellcheck shell=sh
# What the packaging's tests share. Sourced, with $folder being a folder for what passes.

# expect STATUS TEXT COMMAND...: the command ends with this status, and its output contains the text.
expect() {
    wanted_status=$1
    wanted_text=$2
    shift 2
    status=0
    # shellcheck disable=SC2154 # whoever sources this has it
    "$@" >"$folder/output" 2>&1 || status=$?
    if [ "$status" -ne "$wanted_status" ] ||
        { [ -n "$wanted_text" ] && ! grep -qF -e "$wanted_text" "$folder/output"; }; then
        echo "$*: status $status instead of $wanted_status, or no \"$wanted_text\" in:" >&2
        cat "$folder/output" >&2
        exit 1
    fi
}

# fail TEXT...: what is wrong, as the last thing.
fail() {
    echo "$*" >&2
    exit 1
}

# eventually COMMAND...: the command succeeds within ten seconds.
eventually() {
    tries=200
    until "$@" >/dev/null 2>&1; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || fail "not within ten seconds: $*"
        sleep 0.05
    done
}
