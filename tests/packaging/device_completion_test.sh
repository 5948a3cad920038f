#!/usr/bin/env bash
# Checks that completing a device name never expands anything in the name.
# Usage: device_completion_test.sh FOLDER_OF_COMPLETIONS
set -euo pipefail

names=('jack:$(touch broken-into)' "jack:Anna's \"Grand\" Hall" 'jack:Built-in `id` $HOME' 'alsa:hw:0')
orvane-cli() {
    local name
    for name in "${names[@]}"; do printf '    "uid": "%s",\n' "${name//\"/\\\"}"; done
}
_init_completion() { prev=--device cur=; }
__ltrim_colon_completions() { :; }

cd "$(mktemp -d)"
trap 'rm -rf "$PWD"' EXIT
for program in orvane orvane-cli; do
    . "$1/$program.bash"
    "_${program//-/_}"
    eval "completed=(${COMPREPLY[*]})"
    [ "${completed[*]}" = "${names[*]}" ] || { echo "$program completes: ${COMPREPLY[*]}" && exit 1; }
    [ -z "$(ls -A)" ] || { echo "$program executes a device name." && exit 1; }
    COMPREPLY=()
done
