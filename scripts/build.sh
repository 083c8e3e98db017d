# Sourced: configures and builds a preset, and runs its tests.
# shellcheck shell=bash

# configure PRESET: afresh where the clone was moved or copied since the last time, for a cache names its folder.
configure() {
    local preset="$1" home=""
    local cache="$VIGIL_ROOT/build/$preset/CMakeCache.txt"
    if [[ -f $cache ]]; then
        home="$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$cache")"
        if [[ $home != "$VIGIL_ROOT" ]]; then
            say "The clone has moved: $preset starts afresh"
            rm -rf "${VIGIL_ROOT:?}/build/$preset"
        fi
    fi
    (cd "$VIGIL_ROOT" && cmake --preset "$preset" >"$(log_of "$preset")" 2>&1) || {
        cat "$(log_of "$preset")" >&2
        return 1
    }
}

log_of() {
    mkdir -p "$VIGIL_ROOT/build"
    printf '%s/build/%s-configure.log' "$VIGIL_ROOT" "$1"
}

# Old sanitizer run-time libraries lose their shadow memory where the kernel spreads addresses over more bits than
# they know, so the sanitizers' programs run without that spreading where the system allows it. Building runs them
# too: each test program is asked for its list of tests.
calmly() {
    local preset="$1"
    shift
    if [[ $preset =~ ^(asan|tsan|fuzz)$ ]] && setarch "$(uname -m)" -R true 2>/dev/null; then
        setarch "$(uname -m)" -R "$@"
    else
        "$@"
    fi
}

# ccache stops a build where it cannot write its cache, so a user without a home folder gets one in the clone.
own_ccache() {
    local cache="${CCACHE_DIR:-${XDG_CACHE_HOME:-${HOME:-/nonexistent}/.cache}/ccache}"
    if ! mkdir -p "$cache" 2>/dev/null || [[ ! -w $cache ]]; then
        export CCACHE_DIR="$VIGIL_ROOT/build/ccache"
    fi
}

# build PRESET [CMAKE-BUILD-ARGUMENTS...]: two jobs, or VIGIL_JOBS.
build() {
    local preset="$1"
    shift
    configure "$preset" || return
    own_ccache
    (cd "$VIGIL_ROOT" && calmly "$preset" cmake --build --preset "$preset" --parallel "${VIGIL_JOBS:-2}" "$@")
}

# run_tests PRESET: ctest's report, with its closing line ("100% tests passed, ...") kept for the very end.
run_tests() {
    (
        set -o pipefail
        cd "$VIGIL_ROOT" || exit
        calmly "$1" ctest --preset "$1" --no-tests=error --parallel "${VIGIL_JOBS:-2}" </dev/null 2>&1 |
            awk '/tests? passed, [0-9]+ tests? failed out of [0-9]+/ { closing = $0; next }
                 { print; fflush() }
                 END { if (closing != "") print closing }'
    )
}
