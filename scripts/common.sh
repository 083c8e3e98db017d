# Sourced by the commands of this folder's neighbours: where the clone is, and how to speak.
# shellcheck shell=bash

# shellcheck disable=SC2034 # those who source this use them
VIGIL_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Exit statuses, the same as the `vigil` command's.
EXIT_FINDINGS=1
# shellcheck disable=SC2034
EXIT_USAGE=2
# shellcheck disable=SC2034
EXIT_ENVIRONMENT=3

# say TEXT: a line about what happens next.
say() {
    printf '== %s\n' "$*"
}

# fail STATUS TEXT: one sentence to standard error, then the end.
fail() {
    local status="$1"
    shift
    printf '%s: %s\n' "${VIGIL_COMMAND:-vigil}" "$*" >&2
    exit "$status"
}

# stage NAME COMMAND...: runs a stage; where it fails, its name is the last thing said and the run ends.
stage() {
    local name="$1" status=0
    shift
    say "$name"
    "$@" || status=$?
    if [[ $status -ne 0 ]]; then
        fail "$EXIT_FINDINGS" "the stage '$name' failed (status $status); nothing after it was run"
    fi
}
