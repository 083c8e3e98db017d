#!/usr/bin/env bash
# Line coverage of each folder, from the coverage preset's tests. Needs the packages of test and long.
set -euo pipefail
VIGIL_COMMAND=scripts/coverage.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source "$VIGIL_ROOT/scripts/build.sh"

build coverage
# counts of an earlier run would be added to
find "$VIGIL_ROOT/build/coverage" -name '*.gcda' -delete
run_tests coverage >"$VIGIL_ROOT/build/coverage-tests.log" || {
    tail -n 40 "$VIGIL_ROOT/build/coverage-tests.log"
    fail "$EXIT_FINDINGS" "a test fails in the coverage build"
}
gcovr --root "$VIGIL_ROOT" --exclude '.*_test\.cpp' --exclude 'tests/.*' --exclude 'build/.*' \
    --json-summary "$VIGIL_ROOT/build/coverage.json" "$VIGIL_ROOT/build/coverage" >/dev/null
python3 "$VIGIL_ROOT/scripts/coverage_table.py" "$VIGIL_ROOT/build/coverage.json"
