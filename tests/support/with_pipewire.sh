#!/usr/bin/env bash
# Runs a command beside a PipeWire server of its own, which has "Test Card", 8 inputs and 8 outputs without hardware.
# Usage: with_pipewire.sh COMMAND...
set -euo pipefail

if [ -z "${WITH_PIPEWIRE_BUS:-}" ]; then
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
    export WITH_PIPEWIRE_BUS=private XDG_RUNTIME_DIR=$folder XDG_CONFIG_HOME=$folder XDG_STATE_HOME=$folder
    dbus-run-session -- "$0" "$@"
    exit
fi

card() {
    echo "{ factory = adapter args = { factory.name = support.null-audio-sink node.name = $1
        node.description = \"Test Card $2\" media.class = $3 node.driver = $4
        audio.position = [ AUX0 AUX1 AUX2 AUX3 AUX4 AUX5 AUX6 AUX7 ] } }"
}
mkdir -p "$XDG_CONFIG_HOME/pipewire/pipewire.conf.d"
echo "context.objects = [ $(card out Out Audio/Sink true) $(card in In Audio/Source/Virtual false) ]" \
    >"$XDG_CONFIG_HOME/pipewire/pipewire.conf.d/card.conf"

await() {
    for ((tries = 0; tries < 600; ++tries)); do
        "$@" 2>/dev/null && return
        sleep 0.1
    done
    echo "PipeWire does not show its card." >&2
    exit 1
}
has_card() { [ "$(pw-link -o | grep -c '^in:capture')" -eq 8 ]; }

trap 'kill $(jobs -p); wait' EXIT
pipewire 2>/dev/null &
await test -S "$XDG_RUNTIME_DIR/pipewire-0"
wireplumber 2>/dev/null &
await has_card
"$@"
