#!/usr/bin/env bash
# Checks that the manual page and the completion of every shell have each option and subcommand of the program's help.
# Usage: options_test.sh PROGRAM FOLDER_OF_PACKAGING
set -euo pipefail

program=$1
name=${program##*/}
cd "$2"

subcommands=$("$program" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
options=$({
    "$program" --help
    for subcommand in $subcommands; do "$program" "$subcommand" --help; done
} | grep -oE -- '^ +(-h,)?--[a-z-]+' | sed 's/.*--//' | sort -u)
[ "$(wc -w <<<"$options")" -gt 5 ] || { echo "The help of $name has no options." >&2 && exit 1; }

missing=0
# lacks FILE WORD PATTERN
lacks() {
    grep -qE -- "$3" "$1" && return
    echo "$1 lacks $2 of $name."
    missing=1
}
for option in $options; do
    lacks "man/$name.1" "--$option" "\\\\-\\\\-${option//-/\\\\-}( |\"|$)"
    lacks "completions/$name.bash" "--$option" "--$option( |\"|$)"
    lacks "completions/$name.zsh" "--$option" "--$option[[}]"
    lacks "completions/$name.fish" "--$option" "(-l |_option ([a-z]+|'[a-z ]+') )$option "
done
for subcommand in $subcommands; do
    lacks "man/$name.1" "$subcommand" "^\.SS $subcommand$"
    for shell in bash zsh fish; do
        lacks "completions/$name.$shell" "$subcommand" "\\b$subcommand\\b"
    done
done
exit $missing
