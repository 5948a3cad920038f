#!/usr/bin/env python3
"""Draws the gains that the automix gives the microphones of a recording.

Renders the recording with orvane-cli and writes a picture of every strip's gain over time, with the times in which
somebody speaks into its microphone shaded. Needs nothing but Python 3 and a built orvane-cli; the same recording
gives the same picture.

Usage: docs/plot_gains.py [RECORDING [PICTURE.svg]]
Without arguments it draws the demo panel to docs/pictures/gain-sharing.svg.
"""
import array
import json
import math
import pathlib
import struct
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/release/bin/orvane-cli"

# In pixels.
WIDTH, LEFT, RIGHT, TOP, BOTTOM = 960, 64, 44, 40, 34
LANE, GAP = 52, 8
# The range of a lane, in dB.
HIGHEST, LOWEST = 6.0, -28.0
FLOOR = -26.0
# A microphone has speech if it is above the first level and at most the second below the loudest one.
SPEECH, BELOW_LOUDEST = -45.0, 8.0


def samples_of(path):
    """The samples of a mono file of 32-bit floats."""
    data = path.read_bytes()
    at = 12
    while data[at:at + 4] != b"data":
        at += 8 + struct.unpack_from("<I", data, at + 4)[0]
    size = struct.unpack_from("<I", data, at + 4)[0]
    samples = array.array("f", data[at + 8:at + 8 + size])
    if sys.byteorder == "big":
        samples.byteswap()
    return samples


def level_of(samples):
    return 10.0 * math.log10(max(sum(x * x for x in samples) / max(len(samples), 1), 1e-12))


def render(recording):
    """The report of a render, and every strip's level before its gain, point by point, in dB."""
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        subprocess.run(
            [PROGRAM, "render", "--input", recording, "--output", folder / "mix.wav",
             "--stems", folder / "stems", "--report", folder / "report.json"],
            check=True, stdout=subprocess.DEVNULL)
        report = json.loads((folder / "report.json").read_text())
        frames = round(report["gainIntervalSeconds"] * report["sampleRate"])
        levels = []
        for strip, stem in zip(report["strips"], sorted((folder / "stems").iterdir())):
            samples = samples_of(stem)
            levels.append([level_of(samples[point * frames:(point + 1) * frames]) - gain
                           for point, gain in enumerate(strip["gainsDB"])])
    return report, levels


def turns_of(levels, strip):
    """Pairs of points between which the strip's microphone has speech."""
    turns = []
    for point, level in enumerate(levels[strip]):
        if level < max(SPEECH, max(other[point] for other in levels) - BELOW_LOUDEST):
            continue
        if turns and turns[-1][1] >= point - 2:
            turns[-1][1] = point + 1
        else:
            turns.append([point, point + 1])
    return turns


def draw(report, levels):
    interval, strips = report["gainIntervalSeconds"], report["strips"]
    height = TOP + len(strips) * (LANE + GAP) + BOTTOM
    lanes_end = height - BOTTOM - GAP

    def x_of(seconds):
        return LEFT + seconds / report["seconds"] * (WIDTH - LEFT - RIGHT)

    def y_of(top, gain):
        return top + (HIGHEST - gain) / (HIGHEST - LOWEST) * LANE

    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" '
           f'height="{height}" font-family="sans-serif" font-size="12" fill="#333">',
           f'<rect width="{WIDTH}" height="{height}" fill="#fff"/>',
           f'<rect x="{LEFT}" y="14" width="14" height="10" fill="#ffe0a3"/>',
           f'<text x="{LEFT + 20}" y="23">somebody speaks into this microphone</text>',
           f'<path d="M{LEFT + 270} 19h14" stroke="#1f5fa8" stroke-width="2"/>',
           f'<text x="{LEFT + 290}" y="23">gain that the automix gives it</text>']
    for index, strip in enumerate(strips):
        top = TOP + index * (LANE + GAP)
        svg.append(f'<rect x="{LEFT}" y="{top}" width="{WIDTH - LEFT - RIGHT}" height="{LANE}" fill="#f4f5f7"/>')
        for begin, end in turns_of(levels, index):
            x = x_of(begin * interval)
            svg.append(f'<rect x="{x:.1f}" y="{top}" width="{x_of(end * interval) - x:.1f}" height="{LANE}" '
                       f'fill="#ffe0a3"/>')
        for gain in (0.0, FLOOR):
            y = y_of(top, gain)
            svg.append(f'<path d="M{LEFT} {y:.1f}H{WIDTH - RIGHT}" stroke="#b8bcc4" stroke-dasharray="3 3"/>')
            name = f"{gain:.0f} dB".replace("-", "−")
            svg.append(f'<text x="{WIDTH - RIGHT + 4}" y="{y + 3:.1f}" font-size="9">{name}</text>')
        points = " ".join(f"{x_of((point + 1) * interval):.1f},{y_of(top, gain):.1f}"
                          for point, gain in enumerate(strip["gainsDB"]))
        svg.append(f'<polyline points="{points}" fill="none" stroke="#1f5fa8" stroke-width="2"/>')
        svg.append(f'<text x="{LEFT - 8}" y="{top + LANE / 2 + 4}" text-anchor="end">Mic {strip["number"]}</text>')
    step = max(1, round(report["seconds"] / 12))
    for second in range(0, int(report["seconds"]) + 1, step):
        svg.append(f'<text x="{x_of(second):.1f}" y="{lanes_end + 18}" text-anchor="middle">{second} s</text>')
    return "\n".join(svg + ["</svg>", ""])


def main():
    if len(sys.argv) > 3 or "--help" in sys.argv:
        sys.exit(__doc__)
    if not PROGRAM.exists():
        sys.exit(f"{PROGRAM} is not there; build it with scripts/build.sh release.")
    recording = sys.argv[1] if len(sys.argv) > 1 else ROOT / "assets/demo/panel-8ch.flac"
    picture = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else ROOT / "docs/pictures/gain-sharing.svg")
    picture.write_text(draw(*render(recording)), encoding="utf-8")
    print(picture)


main()
