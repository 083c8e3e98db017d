#!/usr/bin/env bash
# The completions, asked of each shell itself.    completions_test.sh BUILD
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need zsh zsh
need fish fish
silent "bash's syntax" bash -n "$pages/bash/vigil"
silent "zsh's syntax" zsh -n "$pages/zsh/_vigil"
silent "fish's syntax" fish -n "$pages/fish/vigil.fish"
mkdir -p "$work/here/folder"
touch "$work/here/file.csv" "$work/here/file with blanks"
cd "$work/here"
export HOME="$work" XDG_CONFIG_HOME="$work" XDG_DATA_HOME="$work"

# in_bash WORD...: what bash offers for the last word, sorted, as "a b c".
in_bash() {
    bash --norc -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _vigil
        [[ ${#COMPREPLY[@]} -eq 0 ]] || printf "%s\n" "${COMPREPLY[@]}" | sort | paste -s -d " "' \
        "$pages/bash/vigil" "$@"
}

# in_fish LINE: the same of fish.
in_fish() {
    fish --no-config -c 'source $argv[1]; complete -C $argv[2]' "$pages/fish/vigil.fish" "$1" | cut -f1 | sort |
        paste -s -d " "
}

# both WANTED WORD...: both offer it.
both() {
    local wanted="$1" got
    shift
    got="$(in_bash "$@")"
    [[ $got == "$wanted" ]] || wrong "bash at '$*': '$got', wanted '$wanted'"
    got="$(in_fish "$*")"
    [[ $got == "$wanted" ]] || wrong "fish at '$*': '$got', wanted '$wanted'"
}

# has COMMAND...: the commands and options of --help are offered, down the whole tree.
has() {
    local got wanted below
    wanted="$(commands "$@" | sort | paste -s -d " ")"
    if [[ -n $wanted ]]; then both "$wanted" vigil "$@" ""; fi
    wanted="$(long_options "$@" | sort | paste -s -d " ")"
    both "$wanted" vigil "$@" --
    for below in $(commands "$@"); do
        has "$@" "$below"
    done
    visited=$((visited + 1))
}

visited=0
has
[[ $visited -gt 8 ]] || wrong "only $visited commands were visited"
both "monitor" vigil mon
both "--condition" vigil replay --cond
both "file.csv" vigil replay file.c
both "file.csv" vigil replay --condition x --retrigger 5 file.c
both "file.csv" vigil replay --trace --condition x --json file.c
both "" vigil check file
both "file.csv" vigil eval condition file.c
both "create" vigil monitor cr
both "file.csv" vigil monitor create Title --site file.c
both "" vigil replay --condition repl
[[ $(in_bash vigil monitor create --site = file.c) == file.csv ]] || wrong "bash at --site="
[[ $(in_bash vigil plugin check fo) == folder ]] || wrong "bash offers no folder"
[[ $(in_bash vigil plugin check fi) == "" ]] || wrong "bash offers a file for a folder"
[[ $(in_fish "vigil plugin check fo") == folder/ ]] || wrong "fish offers no folder"
[[ $(in_bash vigil replay "file w") == "file with blanks" ]] || wrong "bash and blanks"

# zsh completes only where people type, so it is given a terminal.
cat >"$work/zsh_asks" <<'END'
zmodload zsh/zpty
zpty typed 'PS1="> " zsh -f -i'
# A widget that completes and tells what the line has become.
zpty -w typed "fpath=($1 \$fpath); autoload -U compinit; compinit -u -D; setopt no_beep"
zpty -w typed 'tell() { zle complete-word; print -r -- "<$BUFFER>" >$OUT; zle send-break }; zle -N tell; bindkey "^T" tell'
zpty -w typed "OUT=$3"
zpty -w -n typed "$2"$'\C-t'
for _ in {1..500}; do [[ -s $3 ]] && break; sleep 0.1; done
zpty -d typed
END
# in_zsh LINE WANTED: the line once the tabulator was pressed.
in_zsh() {
    rm -f "$work/told"
    timeout 60 zsh -f "$work/zsh_asks" "$pages/zsh" "$1" "$work/told" || true
    [[ $(cat "$work/told" 2>/dev/null) == "<$2>" ]] || wrong "zsh at '$1': '$(cat "$work/told" 2>/dev/null)'"
}
in_zsh "vigil mon" "vigil monitor "
in_zsh "vigil monitor cr" "vigil monitor create "
in_zsh "vigil replay --cond" "vigil replay --condition="
in_zsh "vigil replay file.c" "vigil replay file.csv "
in_zsh "vigil monitor edit Title --on-ch" "vigil monitor edit Title --on-change="
finish "completions of $visited commands"
