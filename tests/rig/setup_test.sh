#!/usr/bin/env bash
# What the setup says and does where packages, rights or apt are missing: every program that it could ask is a
# made-up one in a folder that is the whole PATH.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failures=0

# world: a fresh PATH with what the scripts themselves need
world() {
    rm -rf "${scratch:?}/bin" "$scratch/calls"
    mkdir "$scratch/bin"
    : >"$scratch/calls"
    local tool
    for tool in bash dirname env grep cat rm sed true mkdir tail; do
        ln -s "$(type -P "$tool")" "$scratch/bin/$tool"
    done
}

# program NAME BODY: a made-up program that notes its call
program() {
    printf '#!%s/bin/bash\necho "%s $*" >>"%s/calls"\n%s\n' "$scratch" "$1" "$scratch" "$2" >"$scratch/bin/$1"
    chmod +x "$scratch/bin/$1"
}

# expect NAME STATUS TEXT STAGE...: installs for the stages in this world
expect() {
    local name="$1" status="$2" text="$3" got=0 output
    shift 3
    output="$(PATH="$scratch/bin" CI=true VIGIL_COMMAND=./run bash -c '
        set -euo pipefail
        source "$1/scripts/common.sh"
        source "$1/scripts/setup.sh"
        shift
        install_packages "$@"' setup "$root" "$@" 2>&1 </dev/null)" || got=$?
    if [[ $got -ne $status || $output != *"$text"* ]]; then
        printf 'FAILED %s: status %s (wanted %s), said:\n%s\n' "$name" "$got" "$status" "$output"
        failures=$((failures + 1))
    fi
}

# called NAME TEXT / not_called NAME TEXT: what the made-up programs were asked
called() {
    grep -q -e "$2" "$scratch/calls" || { echo "FAILED $1: no call of '$2'"; failures=$((failures + 1)); }
}
not_called() {
    ! grep -q -e "$2" "$scratch/calls" || { echo "FAILED $1: a call of '$2'"; failures=$((failures + 1)); }
}

all_there='printf installed'
none_there='exit 1'

world; program dpkg-query "$all_there"; program apt-get 'exit 0'; program id 'echo 1000'
expect "everything is there" 0 "" run
not_called "everything is there" "apt-get"
called "everything is there" "dpkg-query.* g++"

world; program dpkg-query "$none_there"; program apt-get 'exit 0'; program id 'echo 1000'
expect "no rights and no sudo" 3 "./run: packages are missing and installing them needs root's rights, so have root run this and start again: apt-get update && apt-get install -y --no-install-recommends g++ cmake" run
not_called "no rights and no sudo" "apt-get"

world; program dpkg-query "$none_there"; program apt-get 'exit 0'; program id 'echo 1000'; program sudo 'exit 1'
expect "sudo refuses" 3 "needs root's rights" run

world; program dpkg-query "$none_there"; program apt-get 'exit 0'; program id 'echo 1000'
program sudo 'shift; exec "$@"'
expect "sudo allows" 0 "To install from Debian: g++ cmake" run
called "sudo allows" "sudo -n env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -o DPkg::Lock::Timeout=300 -qq update"
called "sudo allows" "apt-get -o DPkg::Lock::Timeout=300 -qq install -y --no-install-recommends g++ cmake"

world; program dpkg-query 'case "$*" in *ninja*) exit 1 ;; *) printf installed ;; esac'
program apt-get 'exit 0'; program id 'echo 0'
expect "only what is missing" 0 "To install from Debian: ninja-build" run
called "only what is missing" "install -y --no-install-recommends ninja-build$"

world; program dpkg-query 'printf config-files'; program apt-get 'exit 0'; program id 'echo 1000'
expect "removed is not installed" 3 "needs root's rights" run

world; program dpkg-query "$none_there"; program id 'echo 0'
expect "no apt" 3 "./run: apt-get is not to be found, so install these packages by your own means and start again: g++" run

world; program id 'echo 0'
expect "not Debian" 3 "this is not a Debian system" run

world; program dpkg-query "$none_there"; program id 'echo 0'; program apt-get 'exit 100'
expect "no network" 3 "apt-get update failed" run

world; program dpkg-query "$none_there"; program id 'echo 0'
program apt-get 'case "$*" in *"-qq install"*) exit 100 ;; *) exit 0 ;; esac'
expect "a package cannot be had" 3 "apt-get could not install" run

[[ $failures -eq 0 ]] && echo "setup: all as wanted"
exit "$((failures > 0))"
