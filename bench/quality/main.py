"""The front door of the benchmark; bench/quality.sh starts it and explains it."""
import argparse
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "scripts"))

import acceptance
import recording
import report
import tables
from panel import SCENES
from results import Results
from systems import NAMES


def arguments():
    parser = argparse.ArgumentParser(prog="bench/quality.sh", usage="bench/quality.sh --help", allow_abbrev=False)
    parser.add_argument("--microphones", type=int, nargs="+", default=[8])
    parser.add_argument("--seeds", type=int, nargs="+", default=[1])
    parser.add_argument("--scenes", nargs="+", choices=SCENES, default=["talk"])
    parser.add_argument("--systems", nargs="+", choices=NAMES, default=NAMES)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--buffer-size", type=int, default=64)
    parser.add_argument("--results", type=pathlib.Path)
    parser.add_argument("--program", type=pathlib.Path, default=ROOT / "build/release/bin/orvane-cli")
    modes = parser.add_mutually_exclusive_group()
    modes.add_argument("--acceptance", action="store_true")
    modes.add_argument("--report", action="store_true")
    modes.add_argument("--recording", type=pathlib.Path)
    chosen = parser.parse_args()
    if min(chosen.microphones) < 2 or max(chosen.microphones) > 48:
        parser.error("a panel has 2 to 48 microphones.")
    if chosen.seconds < 20:
        parser.error("a panel takes at least 20 seconds.")
    if not chosen.program.exists():
        parser.error(f"{chosen.program} is not there; build it first (scripts/build.sh release).")
    return chosen


def print_panels(results, chosen):
    for scene in chosen.scenes:
        for count in chosen.microphones:
            for seed in chosen.seeds:
                results.measure(chosen.systems, count, seed, scene, chosen.buffer_size)
            rows = [(name, results.figures(name, count, chosen.seeds, scene, chosen.buffer_size))
                    for name in chosen.systems]
            columns = tables.PANEL if scene in ("talk", "overlap") else tables.EVENT
            seeds = ", ".join(map(str, chosen.seeds))
            print(tables.table(f"\n{scene}, {count} microphones, seeds {seeds}, {chosen.buffer_size} frames", rows,
                               columns))


def run(chosen):
    results = Results(chosen.program, chosen.seconds, chosen.results)
    if chosen.recording:
        rows = recording.measure_all(chosen.recording, chosen.program, chosen.buffer_size)
        print(tables.table(str(chosen.recording), rows, tables.RECORDING))
    elif chosen.acceptance:
        acceptance.measure(results)
        text, reached = acceptance.check(results)
        print(text)
        sys.exit(0 if reached else 1)
    elif chosen.report:
        report.measure(results)
        report.write(results, ROOT / "docs/quality.md")
    else:
        print_panels(results, chosen)


try:
    run(arguments())
except RuntimeError as error:
    sys.exit(f"bench/quality.sh: {error}")
