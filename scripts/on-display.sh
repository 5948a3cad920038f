#!/usr/bin/env bash
# Runs a command on a private X server without hardware, with a window manager.
# Usage: scripts/on-display.sh WIDTHxHEIGHT COMMAND [ARGS]
set -euo pipefail

size=$1
shift
xvfb-run -a -s "-screen 0 ${size}x24" bash -c '
    openbox 2>/dev/null &
    until xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"; do sleep 0.05; done
    "$@"
' command "$@"
