#!/usr/bin/env bash
# The format of every source, and clang-tidy over the changed ones (or, with --all, over all).
set -euo pipefail
VIGIL_COMMAND=scripts/lint.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$VIGIL_ROOT"

# Changed: against the main branch's last common commit, and what is not committed yet.
changed_sources() {
    local base
    base="$(git merge-base HEAD origin/main 2>/dev/null || git merge-base HEAD main 2>/dev/null || echo HEAD)"
    { git diff --name-only --diff-filter=d "$base" -- '*.cpp' && git ls-files -o --exclude-standard -- '*.cpp'; } | sort -u
}

# All that the dev preset compiles; fuzzers and benchmarks have builds of their own.
all_sources() {
    python3 -c '
import json, os
for entry in json.load(open("build/dev/compile_commands.json")):
    path = os.path.relpath(entry["file"])
    if not path.startswith("build/"):
        print(path)' | sort -u
}

sources=changed_sources
case "${1:-}" in
    "") ;;
    --all) sources=all_sources ;;
    *) fail "$EXIT_USAGE" "unknown argument '$1'" ;;
esac

python3 tests/house/format.py || [[ $? -eq 77 ]] || fail "$EXIT_FINDINGS" "clang-format -i sets the format right"
[[ -f build/dev/compile_commands.json ]] || fail "$EXIT_ENVIRONMENT" "run ./test first: clang-tidy needs build/dev"

mapfile -t files < <(comm -12 <($sources) <(all_sources))
say "clang-tidy over ${#files[@]} sources"
[[ ${#files[@]} -eq 0 ]] && exit 0
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "${VIGIL_JOBS:-2}" clang-tidy --quiet -p build/dev --extra-arg=-Wno-unknown-warning-option \
        2>/dev/null || fail "$EXIT_FINDINGS" "clang-tidy has findings; they stand above"
say "no finding"
