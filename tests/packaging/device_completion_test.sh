#!/usr/bin/env bash
# What completes a device expands nothing that its name holds, whoever has named it.
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
    [ -z "$(ls -A)" ] || { echo "$program runs what a device is called." && exit 1; }
    COMPREPLY=()
done
