#!/usr/bin/env bash
# What `cmake --install` puts where; that it works from there, also staged below DESTDIR; and the units.
#     install_test.sh BUILD
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need systemd-analyze systemd

# there ROOT WHAT...: files (with something in them) below the root.
there() {
    local root="$1" file
    shift
    for file in "$@"; do
        [[ -s $root/$file ]] || wrong "$file is not installed"
    done
}

# works BIN: the installed program finds its module and its helper, from anywhere.
works() {
    local said
    said="$(cd / && "$1/vigil" demo --seconds 2 2>&1)" || wrong "the installed demo ended with $?: $said"
    [[ $said == *"0 failed."* && $said == *"FIRED"* ]] || wrong "the installed demo said: $said"
    said="$(cd / && "$1/vigil" doctor --json || [[ $? -le 3 ]])"
    [[ $said == *'"probe":"module","state":"ok"'* ]] || wrong "doctor and the installed module: $said"
    [[ $said == *'"probe":"helper","state":"ok","says":"'*libexec/vigil/vigil-helper* ]] ||
        wrong "doctor and the installed helper: $said"
}

# serves BIN: the installed service runs a script of the folder it was told.
serves() {
    local site="$work/site/home.vigilsite" process status=0 said=""
    mkdir -p "$work/site" "$work/scripts"
    printf '#!/bin/sh\necho "the script of $VIGIL_MONITOR"\n' >"$work/scripts/tell.sh"
    chmod +x "$work/scripts/tell.sh"
    {
        "$1/vigil" site create --site "$site"
        "$1/vigil" station create Home --site "$site" --feed 'simulated:?speed=3000'
        "$1/vigil" monitor create Always --site "$site" --station Home --active \
            --condition 'outsideTemp.unitValue > -99' --action 'Run script=tell.sh'
    } >"$work/log" 2>&1 || { wrong "a site cannot be made: $(cat "$work/log")"; return; }
    (cd / && exec "$1/vigil" run --site "$site" --scripts "$work/scripts") >"$work/log" 2>&1 &
    process=$!
    for ((i = 0; i < 100; ++i)); do
        said="$("$1/vigil" actions --site "$site" 2>&1 || true)"
        [[ $said == *"the script of Always"* ]] && break
        sleep 0.2
    done
    kill -TERM "$process"
    wait "$process" || status=$?
    [[ $said == *"the script of Always"* ]] || wrong "the installed service ran no script: $said $(cat "$work/log")"
    [[ $status -eq 0 ]] || wrong "the installed service ended with $status: $(cat "$work/log")"
}

DESTDIR="$work/staged" cmake --install "$build" --prefix /usr >"$work/log" || wrong "cmake --install: $(cat "$work/log")"
usr="$work/staged/usr"
there "$usr" bin/vigil libexec/vigil/vigil-helper libexec/vigil/vigil-helper-media lib/libvigilkit.so.0 lib/libvigilkit.so \
    lib/vigil/VigilPlugIn/{Info.json,VigilPlugIn.so,Resources/QRVVigilPlugIn.ui,Resources/bell.wav} \
    lib/systemd/{system,user}/vigil.service lib/sysusers.d/vigil.conf lib/tmpfiles.d/vigil.conf \
    share/man/man1/{vigil,vigil-monitor}.1 share/bash-completion/completions/vigil \
    share/zsh/vendor-completions/_vigil share/fish/vendor_completions.d/vigil.fish \
    share/doc/vigil/{copyright,LICENSE,CHANGELOG.md,small-server.md,formats/csv.md,examples/frost-night.csv} \
    include/vigil/host_contract/Module.hpp lib/cmake/VigilKit/VigilKitConfig.cmake share/doc/vigil-dev/copyright
# The window is there where its libraries are.
window=()
if [[ -e $build/bin/vigil-window ]]; then
    window=(vigil-window)
    there "$usr" share/applications/vigil.desktop share/doc/vigil-window/desktop.md
fi
[[ $(ls "$usr/bin") == $(printf '%s\n' vigil "${window[@]}") ]] || wrong "bin holds more than the programs: $(ls "$usr/bin")"
[[ $(ls "$work/staged") == usr ]] || wrong "something is installed outside the prefix: $(ls "$work/staged")"
# Only what is run has the right to be run; nothing is writable for others.
(cd "$usr" && find . -type f -perm /111 ! -name '*.so*' | sort) >"$work/runs"
printf '%s\n' ./bin/vigil "${window[@]/#/./bin/}" ./libexec/vigil/vigil-helper ./libexec/vigil/vigil-helper-media ./share/doc/vigil/examples/make-readings.sh |
    diff - "$work/runs" || wrong "other files than the programs may be run"
if [[ -n $(find "$usr" -perm /022 ! -type l) ]]; then wrong "others may write: $(find "$usr" -perm /022 ! -type l)"; fi
grep -q '^ExecStart=/usr/bin/vigil run ' "$usr/lib/systemd/system/vigil.service" || wrong "the unit's program"
if grep -rIlF "$work" "$usr" "$work/staged" >/dev/null; then wrong "files name the folder of DESTDIR"; fi
if grep -rlF "$(cd "$build/../.." && pwd)/build" "$usr/lib/systemd" "$usr/share" "$usr/lib/cmake"; then
    wrong "files name the folder of the build"
fi
works "$usr/bin"

# Below a prefix of its own the units name a program that is there, so systemd can judge them.
cmake --install "$build" --prefix "$work/own" >"$work/log" || wrong "cmake --install --prefix: $(cat "$work/log")"
works "$work/own/bin"
known=" $(commands | paste -s -d " ") "
if [[ $known == *" run "* && $known == *" station "* ]]; then serves "$work/own/bin"; fi
silent "the system's unit" systemd-analyze verify --man=no "$work/own/lib/systemd/system/vigil.service"
mkdir -m 700 "$work/run"
XDG_RUNTIME_DIR="$work/run" silent "the user's unit" \
    systemd-analyze verify --user --man=no "$work/own/lib/systemd/user/vigil.service"
# 30 stands for 3.0 of 10; below it systemd calls a service's exposure OK.
systemd-analyze security --offline=true --threshold=30 --no-pager "$work/own/lib/systemd/system/vigil.service" \
    >"$work/log" || wrong "the unit is too open: $(tail -n 1 "$work/log")"
exposure="$(sed -n 's/.*Overall exposure level for vigil.service: \([0-9.]*\).*/\1/p' "$work/log")"
[[ -n $exposure ]] || wrong "systemd told no exposure: $(cat "$work/log")"
# The option line of the unit is one that the command understands.
for option in $(sed -n 's/^ExecStart=[^ ]* run //p' "$usr/lib/systemd/system/vigil.service" | grep -oE -- '--[a-z-]+'); do
    if [[ $known == *" run "* ]]; then
        long_options run | grep -qx -- "$option" || wrong "vigil run has no $option"
    fi
done
finish "installed files, the unit's exposure $exposure"
