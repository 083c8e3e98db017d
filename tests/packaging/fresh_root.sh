#!/usr/bin/env bash
# Installs the packages in a fresh root, runs what they bring, removes and purges them, and compares what files there
# were before with what there are afterwards. Root's rights and the network are needed.
#
#     fresh_root.sh FOLDER PACKAGE...        (FOLDER keeps the fresh root as base.tar for the next time)
#
# VIGIL_SUITE and VIGIL_MIRROR choose the distribution (bookworm) and where it comes from.
set -euo pipefail
export LC_ALL=C

folder="$1"
shift
suite="${VIGIL_SUITE:-bookworm}"
mirror="${VIGIL_MIRROR:-http://deb.debian.org/debian}"
root="$folder/root"
failures=0

wrong() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

inside() {
    env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C \
        DEBIAN_FRONTEND=noninteractive chroot "$root" "$@"
}

clear_root() {
    if mountpoint -q "$root/proc" 2>/dev/null; then umount "$root/proc"; fi
    rm -rf "${root:?}"
}

fresh() {
    mkdir -p "$folder"
    clear_root
    if [[ ! -f $folder/base.tar ]]; then
        debootstrap --variant=minbase --include=init-system-helpers "$suite" "$root" "$mirror" >"$folder/debootstrap.log"
        # Nothing that is installed here starts by itself.
        printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
        chmod +x "$root/usr/sbin/policy-rc.d"
        tar -C "$root" -cf "$folder/base.tar.part" .
        mv "$folder/base.tar.part" "$folder/base.tar"
    else
        mkdir -p "$root"
        tar -C "$root" -xf "$folder/base.tar"
    fi
    mount -t proc proc "$root/proc"
}

# What there is, with its kind and its rights. What every installation of anything changes is left out.
listing() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./dev -o -path ./tmp -o -path ./var/log \
        -o -path ./var/cache -o -path ./var/lib/dpkg -o -path ./var/lib/apt \) -prune -o -printf '%y %m %u %g %p\n') | sort
}

tell_difference() {
    diff "$1" "$2" || wrong "$3"
}

# runs WORD COMMAND...: it ends with 0 and says the word
runs() {
    local word="$1" said
    shift
    said="$(inside timeout 60 "$@" 2>&1)" || wrong "$* ended with $?: ${said:0:300}"
    [[ $said == *"$word"* ]] || wrong "$* did not say \"$word\": ${said:0:300}"
}

install_packages_inside() {
    local package needed
    mkdir -p "$root/tmp/packages"
    cp "$@" "$root/tmp/packages/"
    inside apt-get -qq update
    # First what they depend on, so that the comparison is about them alone.
    mapfile -t needed < <(for package in "$@"; do
        dpkg-deb -f "$package" Depends
    done | tr ',' '\n' | sed 's/^ *//; s/[ (|:].*//' | grep -vx -e 'vigil.*' -e '' | sort -u)
    inside apt-get -qq install -y --no-install-recommends "${needed[@]}" >"$folder/apt.log" 2>&1 ||
        { tail "$folder/apt.log"; wrong "what the packages depend on cannot be installed"; }
    listing >"$folder/before"
    inside bash -c 'dpkg -i /tmp/packages/*.deb' || wrong "dpkg -i"
}

trap clear_root EXIT
fresh
install_packages_inside "$@"
inside dpkg --verify vigil vigil-dev || wrong "dpkg --verify"
[[ -z $(inside dpkg --audit) ]] || wrong "dpkg --audit: $(inside dpkg --audit)"

runs "vigil " vigil --version
runs "0 failed" vigil demo --seconds 2
runs "Fired " vigil replay /usr/share/doc/vigil/examples/frost-night.csv --condition 'outsideTemp.unitValue < 0' --trace
runs '"probe":"module","state":"ok"' sh -c 'vigil doctor --json || test $? -le 1'
runs '"probe":"helper","state":"ok"' sh -c 'vigil doctor --json || test $? -le 1'
if [[ -e $root/etc/systemd/system/multi-user.target.wants/vigil.service ]]; then
    wrong "the service was enabled by itself"
fi

inside dpkg -r vigil-dev vigil >/dev/null || wrong "dpkg -r"
listing >"$folder/removed"
# What the administrator has enabled is remembered until the purge.
sed -i '\#\./var/lib/systemd#d' "$folder/removed"
tell_difference <(sed '\#\./var/lib/systemd#d' "$folder/before") "$folder/removed" "files stay when the packages are removed"
inside dpkg -P vigil >/dev/null || wrong "dpkg -P"
listing >"$folder/after"
tell_difference "$folder/before" "$folder/after" "files stay when the packages are purged"

# A site stays where it is, also after a purge, and the purge says so.
inside bash -c 'dpkg -i /tmp/packages/vigil_*.deb' >/dev/null
mkdir -p "$root/var/lib/vigil"
echo site >"$root/var/lib/vigil/home.vigilsite"
inside dpkg -P vigil >"$folder/purge.log" 2>&1 || wrong "dpkg -P with a site"
grep -q '/var/lib/vigil' "$folder/purge.log" || wrong "the purge does not say that the site stays"
[[ $(cat "$root/var/lib/vigil/home.vigilsite") == site ]] || wrong "the purge took the site"

[[ $failures -eq 0 ]] && echo "fresh root: $(wc -l <"$folder/after") files before and after, none left behind"
exit "$((failures > 0))"
