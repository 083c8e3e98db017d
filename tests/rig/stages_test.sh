#!/usr/bin/env bash
# The honesty of a run: a failing stage ends it, is named last and gives the status; ctest's closing line is last
# where all passed; and ctest's failure is not lost in the pipe behind it.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failures=0

# expect NAME STATUS LAST-LINE CTEST-BODY: two stages of tests with a made-up ctest
expect() {
    local name="$1" status="$2" last="$3" body="$4" got=0 output
    printf '#!/bin/bash\n%s\n' "$body" >"$scratch/ctest"
    chmod +x "$scratch/ctest"
    output="$(PATH="$scratch:$PATH" VIGIL_COMMAND=./test bash -c '
        set -euo pipefail
        source "$1/scripts/common.sh"
        source "$1/scripts/build.sh"
        stage "Tests of dev" run_tests dev
        stage "Tests of asan" run_tests asan' stages "$root" 2>&1)" || got=$?
    if [[ $got -ne $status || ${output##*$'\n'} != "$last" ]]; then
        printf 'FAILED %s: status %s (wanted %s), said:\n%s\n' "$name" "$got" "$status" "$output"
        failures=$((failures + 1))
    fi
}

good='echo "100% tests passed, 0 tests failed out of 7"; echo; echo "Total Test time (real) = 1.0 sec"'
bad='echo "50% tests passed, 1 tests failed out of 2"; echo "The following tests FAILED:"; exit 8'

expect "all passed" 0 "100% tests passed, 0 tests failed out of 7" "$good"
expect "the first fails" 1 "./test: the stage 'Tests of dev' failed (status 8); nothing after it was run" \
    "case \"\$*\" in *dev*) $bad ;; *) $good ;; esac"
expect "the second fails" 1 "./test: the stage 'Tests of asan' failed (status 8); nothing after it was run" \
    "case \"\$*\" in *asan*) $bad ;; *) $good ;; esac"

# Wrong use is told apart from findings.
got=0
"$root/test" --nonsense >/dev/null 2>&1 || got=$?
[[ $got -eq 2 ]] || { echo "FAILED wrong use: status $got"; failures=$((failures + 1)); }

[[ $failures -eq 0 ]] && echo "stages: all as wanted"
exit "$((failures > 0))"
