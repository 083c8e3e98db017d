#!/usr/bin/env bash
# Makes the Debian packages out of build/release, and with --try installs and removes them in a fresh root.
set -euo pipefail
VIGIL_COMMAND=scripts/package.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source "$VIGIL_ROOT/scripts/setup.sh"
source "$VIGIL_ROOT/scripts/build.sh"

usage() {
    cat <<'END'
scripts/package.sh [--try]   installs what is missing (Debian 12), builds build/release and makes
                             build/release/packages/vigil_*.deb and vigil-dev_*.deb
    --try                    installs them in a fresh root (debootstrap; root's rights and the network), runs what
                             they bring, removes them and looks for what they left behind

SOURCE_DATE_EPOCH is the commit's time unless it is set: the same commit gives the same bytes.
END
}

# The time that stands in the packages.
source_date() {
    git -C "$VIGIL_ROOT" log -1 --format=%ct 2>/dev/null || date +%s
}

make_packages() {
    export SOURCE_DATE_EPOCH="${SOURCE_DATE_EPOCH:-$(source_date)}"
    build release
    (umask 022 && cd "$VIGIL_ROOT/build/release" && rm -rf packages && cpack -G DEB)
    ls -l "$VIGIL_ROOT/build/release/packages/"*.deb
}

case "${1:-}" in
    --help | -h) usage; exit 0 ;;
    "" | --try) [[ $# -le 1 ]] || { usage >&2; fail "$EXIT_USAGE" "one argument at most"; } ;;
    *) usage >&2; fail "$EXIT_USAGE" "unknown argument '$1'" ;;
esac
install_packages run package
make_packages
if [[ ${1:-} == --try ]]; then
    rights="$(administrator)" || fail "$EXIT_ENVIRONMENT" "--try needs root's rights for debootstrap and chroot"
    mkdir -p "$VIGIL_ROOT/build/fresh-root" # ours, so that we can remove what root leaves in it
    # shellcheck disable=SC2086 # the words of the rights are apart on purpose
    $rights "$VIGIL_ROOT/tests/packaging/fresh_root.sh" "$VIGIL_ROOT/build/fresh-root" \
        "$VIGIL_ROOT/build/release/packages/"*.deb
fi
