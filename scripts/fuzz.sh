# Sourced: runs every fuzzer of the fuzz build for a while.
# shellcheck shell=bash

# A reading of a station is small, so is a condition: what needs more time or memory than this is a finding.
FUZZ_SECONDS="${VIGIL_FUZZ_SECONDS:-60}"
FUZZ_INPUT_SECONDS=10
FUZZ_MEGABYTES=2048

# run_fuzzers: seeds are made from the vectors by the build; what is learnt and what breaks stays under build/fuzz.
run_fuzzers() {
    local program name seeds dictionary count=0
    for program in "$VIGIL_ROOT"/build/fuzz/fuzz/*_fuzz; do
        [[ -x $program ]] || continue
        count=$((count + 1))
        name="$(basename "$program" _fuzz)"
        seeds="$VIGIL_ROOT/build/fuzz/fuzz/corpus/$name"
        dictionary="$VIGIL_ROOT/fuzz/$name.dict"
        local -a words=("$program" "-max_total_time=$FUZZ_SECONDS" "-timeout=$FUZZ_INPUT_SECONDS"
            "-rss_limit_mb=$FUZZ_MEGABYTES" "-print_final_stats=1" "-verbosity=0"
            "-artifact_prefix=$VIGIL_ROOT/build/fuzz/findings/$name-")
        [[ -f $dictionary ]] && words+=("-dict=$dictionary")
        mkdir -p "$VIGIL_ROOT/build/fuzz/findings" "$VIGIL_ROOT/build/fuzz/learnt/$name"
        words+=("$VIGIL_ROOT/build/fuzz/learnt/$name")
        [[ -d $seeds ]] && words+=("$seeds")
        say "Fuzzer $name, $FUZZ_SECONDS s"
        calmly fuzz "${words[@]}" </dev/null || return
    done
    if [[ $count -eq 0 ]]; then
        printf 'no fuzzer was built\n' >&2
        return 1
    fi
    say "$count fuzzers, no finding"
}
