#!/usr/bin/env bash
# The Debian packages, made of this build and looked at: what they hold and need, and that the program runs out of them.
# Installing them in a fresh root is for scripts/package.sh --try.    packages_test.sh BUILD
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need dpkg-shlibdeps dpkg-dev
need cpack cmake
export SOURCE_DATE_EPOCH=1700000000

# The configuration names the build's own folder for what it makes; here it is the test's.
(umask 022 && cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/made") >"$work/log" 2>&1 ||
    wrong "cpack: $(tail "$work/log")"
shopt -s nullglob
packages=("$work"/made/vigil_*.deb "$work"/made/vigil-dev_*.deb)
[[ ${#packages[@]} -eq 2 ]] || { wrong "not two packages: $(ls "$work/made")"; finish packages; }
window=("$work"/made/vigil-window_*.deb)
if [[ ${#window[@]} -eq 1 ]]; then
    # No pipe into a grep that ends at once: what it leaves unread would count as a failure.
    [[ $(dpkg-deb -f "${window[0]}" Depends) == *libqt6widgets6* ]] || wrong "what vigil-window depends on"
    [[ $(dpkg-deb -c "${window[0]}") == *usr/share/applications/vigil.desktop* ]] ||
        wrong "the window has no entry in the menus"
    packages+=("${window[0]}")
fi
[[ $(dpkg-deb -f "${packages[0]}" Depends) != *qt* ]] || wrong "the service depends on Qt"
package="${packages[0]}"

field() {
    dpkg-deb -f "$package" "$1"
}
[[ $(field Package) == vigil && $(field Version) == "$("$vigil" --version | cut -d' ' -f2)" ]] || wrong "name and version"
for library in libc6 libstdc++6 libicu72 libsqlite3-0; do
    # A library that the program does not need yet is no dependency.
    if ldd "$vigil" | grep -q "${library%%[0-9-]*}" && [[ $(field Depends) != *"$library"* ]]; then
        wrong "no dependency on $library: $(field Depends)"
    fi
done
[[ $(dpkg-deb -f "${packages[1]}" Depends) == *"vigil (= $(field Version))"* ]] || wrong "what vigil-dev depends on"
[[ -z $(field Conffiles) ]] || wrong "configuration files"

mkdir "$work/control" "$work/tree"
dpkg-deb -e "$package" "$work/control"
dpkg-deb -x "$package" "$work/tree"
for script in postinst prerm postrm; do
    [[ -x $work/control/$script ]] || wrong "there is no $script"
    silent "$script" sh -n "$work/control/$script"
done
[[ ! -e $work/control/conffiles ]] || wrong "configuration files: $(cat "$work/control/conffiles")"
(cd "$work/tree" && md5sum --quiet -c "$work/control/md5sums") || wrong "the sums of the files"
gzip -t "$work"/tree/usr/share/man/man1/vigil.1.gz "$work"/tree/usr/share/doc/vigil/changelog.gz || wrong "packed texts"
[[ -z $(find "$work/tree" -name '*.1') ]] || wrong "a manual page is not packed"
[[ -d $work/tree/etc/vigil/scripts ]] || wrong "no folder for the scripts"
[[ -f $work/tree/usr/share/doc/vigil/copyright ]] || wrong "no copyright"
[[ ! -d $work/tree/usr/include ]] || wrong "headers are in the wrong package"
if file -b "$work/tree/usr/bin/vigil" | grep -q 'not stripped'; then wrong "the program is not stripped"; fi
dpkg-deb -c "$package" >"$work/list"
if awk '{ print $2 }' "$work/list" | grep -qv '^root/root$'; then wrong "files belong to somebody else than root"; fi
if grep -v '2023-11-14 22:13' "$work/list"; then wrong "files have another time than SOURCE_DATE_EPOCH"; fi
said="$(cd / && "$work/tree/usr/bin/vigil" demo --seconds 2 2>&1)" || wrong "the demo of the package ended with $?"
[[ $said == *"0 failed."* ]] || wrong "the demo of the package said: $said"

# Again the same bytes.
(umask 022 && cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/again") >"$work/log" 2>&1
for one in "${packages[@]}"; do
    cmp "$one" "$work/again/${one##*/}" || wrong "${one##*/} is not the same a second time"
done
finish "${#packages[@]} packages"
