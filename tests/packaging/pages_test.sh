#!/usr/bin/env bash
# The manual pages: one a command, every option of --help in it, and not a word of complaint from three programs that
# read such pages.    pages_test.sh BUILD
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need man man-db
need mandoc mandoc
need groff groff

shown() {
    MANWIDTH=200 man -l -Tutf8 -P cat "$1" 2>/dev/null | sed 's/.\x08//g; s/\x1b\[[0-9;]*m//g'
}

# options_in PAGE COMMAND...: what --help prints of it and of all below it.
options_in() {
    local page="$1" option below
    shift
    for option in $(long_options "$@"); do
        grep -qE -- "(^| |,)$option( |$|,)" <<<"$page" || wrong "the page of vigil $1 has no $option of vigil $*"
    done
    for below in $(commands "$@"); do
        grep -qF "vigil $* $below" <<<"$page" || wrong "the page of vigil $1 has no vigil $* $below"
        options_in "$page" "$@" "$below"
    done
}

count=0
for file in "$pages"/man1/*.1; do
    silent "man: $file" bash -c "man --warnings=w -l -Tutf8 '$file' >/dev/null"
    silent "groff: $file" bash -c "groff -ww -man -Tutf8 -z '$file'"
    silent "mandoc: $file" mandoc -Tlint "$file"
    count=$((count + 1))
done
names=(vigil)
for command in $(commands); do
    names+=("vigil-$command")
    [[ -f $pages/man1/vigil-$command.1 ]] || { wrong "vigil $command has no page"; continue; }
    page="$(shown "$pages/man1/vigil-$command.1")"
    options_in "$page" "$command"
    grep -q "vigil-$command" <<<"$(shown "$pages/man1/vigil.1")" || wrong "the page of vigil names no vigil-$command"
    if grep -qF "$HOME/" <<<"$page"; then wrong "the page of vigil $command names the builder's home"; fi
    # apropos reads this line.
    line="$(lexgrog "$pages/man1/vigil-$command.1")" || wrong "vigil-$command has no line for apropos: $line"
done
[[ ${#names[@]} -eq $count && $count -gt 5 ]] || wrong "$count pages for ${#names[@]} programs and commands"
finish "$count pages"
