#!/usr/bin/env bash
# Measures automatic mixers on synthetic panels whose voices, bleed and noise are known separately: ORVANE with each of
# its output options, a plain sum, gates, gain sharing by power, and ffmpeg. docs/quality.md explains the figures.
set -euo pipefail

usage() {
    cat <<'TEXT'
Usage: bench/quality.sh [--microphones N...] [--seeds N...] [--scenes NAME...] [--systems NAME...]
                        [--seconds N] [--buffer-size N] [--results FILE] [--program FILE]
       bench/quality.sh --acceptance | --report [--results FILE] [--program FILE]
       bench/quality.sh --recording FILE [--buffer-size N] [--program FILE]

  --microphones  2 to 48; several give a table each (8)
  --seeds        of the panels; a table has their means, and of peaks, overs, steps and "worst" the worst (1)
  --scenes       talk, overlap, cough, rustle, applause, music (talk)
  --systems      by the names of the tables (all)
  --seconds      the length of a panel (60)
  --buffer-size  frames per block of ORVANE (64)
  --results      keeps all figures in this JSON file, and measures only what is not in it
  --program      the orvane-cli to measure (that of build/release)
  --acceptance   compares 3 panels of 8 and of 48 microphones with the bars of docs/quality.md; fails if one is missed
  --report       measures all that docs/quality.md shows, and replaces its tables and plots
  --recording    measures a sound file with a microphone on each channel instead of panels

Tables go to standard output, progress to standard error. 8 microphones take about half a minute, 48 several.
TEXT
}

for argument in "$@"; do
    if [ "$argument" = --help ] || [ "$argument" = -h ]; then
        usage
        exit 0
    fi
done
here=$(cd "$(dirname "$0")" && pwd)
"$here/../scripts/setup.sh" bench
# Debian's own Python, which has its numpy and scipy; another one may come first on the path.
PYTHONDONTWRITEBYTECODE=1 exec /usr/bin/python3 "$here/quality/main.py" "$@"
