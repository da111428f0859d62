#!/usr/bin/env bash
# zsh and fish complete the programs' options by the scripts that the programs write.
#   shells.sh PROGRAM...
# Skipped, with status 77, where one of the shells is missing.
set -u
for shell in zsh fish; do
    command -v "$shell" >/dev/null || { echo "skipped: no $shell"; exit 77; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-test-XXXXXX")
trap 'rm -rf "$work"' EXIT
export HOME=$work LC_ALL=C
unset XDG_CONFIG_HOME
mkdir -p "$work/here/dir" "$work/bin" "$work/.config/zarnsys"
printf '[%s]\nlatitude = 1N\nlongitude = 1E\n' hill island >"$work/.config/zarnsys/sites.ini"
touch "$work/here/file"
for program in "$@"; do
    name=$(basename "$program")
    ln -s "$(realpath "$program")" "$work/bin/$name"
    "$program" --zsh-completion >"$work/_$name" || exit 1
    "$program" --fish-completion >"$work/$name.fish" || exit 1
done

PATH=$work/bin:$PATH  # where completion finds the sites' names

# What zsh offers is known only within an interactive one, whose compadd gets it.
cat >"$work/offers.zsh" <<'SCRIPT'
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "fpath=($1 \$fpath); autoload -Uz compinit; compinit -u -D; typeset -aU all"
zpty -w shell 'compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd "$@"; return $?; fi
    local -a words; builtin compadd -A words "$@"; all+=($words); builtin compadd "$@" }'
zpty -w shell "offer() { zle complete-word; print -r -- \${(o)all} >$1/offered; exit }
    zle -N offer; bindkey '^Xo' offer; touch $1/ready"
until [[ -e $1/ready ]]; do sleep 0.05; done
zpty -w -n shell "$2"$'\030o'
until [[ -s $1/offered ]]; do sleep 0.05; done
cat $1/offered
rm $1/offered $1/ready
SCRIPT
zshOffers() { timeout 30 zsh -f "$work/offers.zsh" "$work" "$1"; }
fishOffers() { fish -N -c "source $work/${1%% *}.fish; complete -C '$1'" | cut -f 1 | sort | xargs; }

# A line and what it can go on with, in zsh and in fish.
expected=$(realpath "$(dirname "$0")/data/completed.txt")
cd "$work/here" || exit 1
while IFS='|' read -r line _; do
    echo "$line|$(zshOffers "$line")|$(fishOffers "$line")"
done <"$expected" | diff "$expected" - && echo "completed by zsh and fish: all lines"
