# Sourced by the tests of this folder: the build, a folder to work in, and how a finding is told.
# shellcheck shell=bash
set -euo pipefail
export LC_ALL=C.UTF-8
# shellcheck disable=SC2034 # those who source this use them
build="$1"
vigil="$1/bin/vigil"
pages="$1/packaging/pages-made"
work="$(mktemp -d)"
failures=0

trap 'rm -rf "$work"' EXIT

wrong() {
    printf 'FAILED: %s\n' "$*"
    failures=$((failures + 1))
}

# need PROGRAM PACKAGE: a check that cannot be made is no check that passed.
need() {
    command -v "$1" >/dev/null || { echo "FAILED: there is no $1; install the package $2"; exit 1; }
}

# silent WHAT COMMAND...: it ends with 0 and says nothing.
silent() {
    local what="$1" said status=0
    shift
    said="$("$@" 2>&1)" || status=$?
    if [[ $status -ne 0 || -n $said ]]; then wrong "$what: status $status: $said"; fi
}

# commands [COMMAND]: the commands below it, as --help lists them.
commands() {
    "$vigil" "$@" --help | awk '/^Subcommands:/ { on = 1; next } /^[^ ]/ { on = 0 } on && /^  [a-z]/ { print $1 }'
}

# long_options COMMAND...: the long options, as --help lists them.
long_options() {
    "$vigil" "$@" --help | awk '/^Options:/ { on = 1; next } /^[^ ]/ { on = 0 } on && /^  -/' |
        grep -oE '^  (-[a-zA-Z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+'
}

finish() {
    [[ $failures -eq 0 ]] && echo "$1: all as wanted"
    exit "$((failures > 0))"
}
