# Sourced: finds out which Debian packages of packages.txt are missing and installs them. Where that cannot
# be done it says in one sentence what to do, and ends with EXIT_ENVIRONMENT.
# shellcheck shell=bash

# packages_for STAGE...: the packages that any of these stages needs, one a line.
packages_for() {
    local package stages stage rest
    # shellcheck disable=SC2034 # rest swallows the columns that are for people
    while read -r package stages rest; do
        [[ -z $package || $package == '#'* ]] && continue
        for stage in "$@"; do
            if [[ ",$stages," == *",$stage,"* ]]; then
                printf '%s\n' "$package"
                break
            fi
        done
    done <"$VIGIL_ROOT/scripts/packages.txt"
}

# missing_packages STAGE...: those of packages_for that are not installed.
missing_packages() {
    local package state
    for package in $(packages_for "$@"); do
        state="$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)"
        # A package that only exists under another architecture's or a virtual name answers several words.
        [[ $state == installed* ]] || printf '%s\n' "$package"
    done
}

# administrator: prints the words that run a command with root's rights; fails where there is no way.
administrator() {
    if [[ "$(id -u)" == 0 ]]; then
        printf 'env'
    elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
        printf 'sudo -n env'
    elif command -v sudo >/dev/null && [[ -t 0 && -z ${CI:-} ]]; then
        printf 'sudo env' # asks for the password
    else
        return 1
    fi
}

# install_packages STAGE...: nothing at all where nothing is missing.
install_packages() {
    [[ ${VIGIL_SETUP:-} == skip ]] && return 0
    if ! command -v dpkg-query >/dev/null; then
        fail "$EXIT_ENVIRONMENT" "this is not a Debian system, so install what scripts/packages.txt lists" \
            "by your own means and start again with VIGIL_SETUP=skip"
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@")
    [[ ${#missing[@]} -eq 0 ]] && return 0

    if ! command -v apt-get >/dev/null; then
        fail "$EXIT_ENVIRONMENT" "apt-get is not to be found, so install these packages by your own means" \
            "and start again: ${missing[*]}"
    fi
    local rights
    if ! rights="$(administrator)"; then
        fail "$EXIT_ENVIRONMENT" "packages are missing and installing them needs root's rights, so have root run" \
            "this and start again: apt-get update && apt-get install -y --no-install-recommends ${missing[*]}"
    fi
    apt_install "$rights" "${missing[@]}"
}

# apt_install RIGHTS PACKAGE...
apt_install() {
    local -a apt
    read -r -a apt <<<"$1 DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -o DPkg::Lock::Timeout=300"
    shift
    say "To install from Debian: $*"
    if ! "${apt[@]}" -qq update </dev/null; then
        fail "$EXIT_ENVIRONMENT" "apt-get update failed, so see to the network and /etc/apt/sources.list" \
            "and start again"
    fi
    # Answering no to the question makes apt-get tell the size and end with 1.
    local size
    size="$("${apt[@]}" install --assume-no --no-install-recommends "$@" </dev/null 2>/dev/null |
        grep -E '^(Need to get|After this operation)' || true)"
    [[ -n $size ]] && printf '%s\n' "$size"
    say "This takes about a minute on a fast line, about five on a slow one."
    local log="$VIGIL_ROOT/build/setup.log"
    mkdir -p "$VIGIL_ROOT/build"
    if ! "${apt[@]}" -qq install -y --no-install-recommends "$@" </dev/null >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        fail "$EXIT_ENVIRONMENT" "apt-get could not install the packages; its own message stands above and in $log"
    fi
    say "Installed"
}
