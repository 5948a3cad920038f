#!/usr/bin/env python3
"""Tries every LV2 effect that the mixer lists, and prints a table of the results.

Each effect is rendered alone twice and played live; then eight of it are rendered and played on eight strips; then
eight that follow each other in the list are. scripts/plugin_trial.sh installs and builds what this needs.
"""
import argparse
import array
import collections
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import wave

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/release/bin/orvane-cli"
PANEL = ROOT / "assets/demo/panel-8ch.flac"

STRIPS = 8
# The played part of the demo panel, in seconds; its first microphone has speech all the time.
START, LENGTH, RATE = 3.0, 2.0, 48000
# The duration of a live run, in seconds, and that for an effect that is still silent then.
PLAYED, PLAYED_LONGER = 0.5, 12.0
# A run that takes longer counts as hung, in seconds.
PATIENCE = 60
# Gives every run the same memory content at the same addresses.
EVEN_COMMAND = ["setarch", "-R"]
EVEN_VARIABLES = {"MALLOC_PERTURB_": "85", "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0"}
# Messages of the program that report no fault.
UNREMARKABLE = r"^orvane-cli: Ran for |: render recovered |\[Desktop\]"
# -120 dBFS: an effect that stays below is silent.
SILENCE = 1e-6

# The columns of the table.
FAILED, SILENT, SILENT_LIVE, LIKE_INPUT = "failed", "no sound", "no sound live", "like the input"
DRY, CHANGED, EIGHT_DIFFER = "dry at times", "changed between renders", "eight differ"
ENDED = "ended or hung"
MARKS = (FAILED, SILENT, SILENT_LIVE, LIKE_INPUT, DRY, CHANGED, EIGHT_DIFFER, ENDED)


class Outcome:
    """The results of one run of the program."""

    def __init__(self, end, sentences, channels):
        self.end = end
        self.sentences = sentences
        self.channels = channels


def samples_of(path):
    """The channels of a file of 32-bit floats; none if the file is missing or incomplete."""
    data = path.read_bytes() if path.exists() else b""
    if b"data" not in data:
        return []
    at = data.index(b"data") + 8
    samples = array.array("f", data[at:at + (len(data) - at) // (4 * STRIPS) * 4 * STRIPS])
    if sys.byteorder == "big":
        samples.byteswap()
    return [samples[channel::STRIPS] for channel in range(STRIPS)]


def is_silent(samples):
    return all(abs(sample) < SILENCE for sample in samples)


def general(sentence, effects):
    """A sentence without the names in it, so that equal ones can be counted."""
    for effect in sorted(effects, key=lambda effect: -len(effect["name"])):
        sentence = sentence.replace(effect["name"], "NAME")
    return re.sub(r"Ch ?\d,? slot ?\d", "SLOT", re.sub(r"/\S+/", "FOLDER/", sentence))


class Trial:
    """Runs the program in a folder of its own, on the virtual devices only."""

    def __init__(self, folder):
        self.folder = folder
        self.environment = dict(os.environ, ORVANE_DRIVERS="virtual")
        for kind in ("CACHE", "CONFIG", "DATA"):
            self.environment[f"XDG_{kind}_HOME"] = str(folder / kind.lower())
        self.session = folder / "empty.orvane"
        self.ask("session", "--new", str(STRIPS), self.session)
        self.input = folder / "input.wav"
        self.make_input()

    def ask(self, *arguments, **variables):
        done = subprocess.run([PROGRAM, *arguments], env=self.environment | variables, check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        return done.stdout

    def make_input(self):
        """Eight channels of the same speech."""
        raw = self.folder / "raw.wav"
        self.ask("render", "--input", PANEL, "--session", self.session_of([None] * STRIPS, self.folder),
                 "--output", raw)
        first, last = int(START * RATE), int((START + LENGTH) * RATE)
        words = array.array("h", (round(sample * 32767) for sample in samples_of(raw)[0][first:last]
                                  for _ in range(STRIPS)))
        if sys.byteorder == "big":
            words.byteswap()
        with wave.open(str(self.input), "wb") as file:
            file.setparams((STRIPS, 2, RATE, 0, "NONE", ""))
            file.writeframes(words.tobytes())

    def session_of(self, effects, folder):
        """A session with an effect in the first slot of each strip, whose output is that strip's alone."""
        session = json.loads(self.session.read_text())
        session["masterOutputRouting"] = {"none": {}}
        for number, (strip, effect) in enumerate(zip(session["channels"], effects)):
            strip["bypassed"] = True
            strip["outputRouting"] = {"mono": {"channel": number}}
            if effect:
                codes = {key: code for key, code in effect.items() if key.startswith("component")}
                strip["pluginSlots"][0].update(pluginName=effect["name"], component=codes)
        path = folder / "session.orvane"
        path.write_text(json.dumps(session))
        return path

    def run(self, folder, output, arguments, memory_is_even=False):
        command, variables = ([*EVEN_COMMAND, PROGRAM], EVEN_VARIABLES) if memory_is_even else ([PROGRAM], {})
        with open(folder / "log", "wb") as log:
            process = subprocess.Popen([*command, *arguments], env=self.environment | variables, cwd=folder,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=log)
            try:
                code = process.wait(PATIENCE)
                end = f"ended by {signal.Signals(-code).name}" if code < 0 else f"exit code {code}" if code else ""
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
                end = "hung"
        lines = (folder / "log").read_text(errors="replace").splitlines()
        sentences = [line.split(" ", 1)[1] for line in lines
                     if line.startswith(("orvane-cli: ", "app.orvane.")) and not re.search(UNREMARKABLE, line)]
        return Outcome(end, sentences, samples_of(output))

    def render(self, effects, memory_is_even=False):
        with tempfile.TemporaryDirectory(dir=self.folder) as name:
            folder = pathlib.Path(name)
            output = folder / "out.wav"
            return self.run(folder, output, ["render", "--input", self.input, "--output", output,
                                             "--session", self.session_of(effects, folder)], memory_is_even)

    def play(self, effects, seconds=PLAYED):
        with tempfile.TemporaryDirectory(dir=self.folder) as name:
            folder = pathlib.Path(name)
            output = folder / "out.wav"
            return self.run(folder, output, [
                "run", "--virtual-input", self.input, "--device", f"virtual:file:{self.input.name}", "--record",
                output, "--seconds", str(seconds), "--meters", "none", "--session",
                self.session_of(effects, folder)])

    def effects(self, **variables):
        return json.loads(self.ask("plugins", "--json", **variables))["plugins"]

    def packages(self):
        """The package of each effect, by its codes."""
        bundles = collections.defaultdict(list)
        found = subprocess.run(["dpkg-query", "-S", *pathlib.Path("/usr/lib/lv2").glob("*.lv2")], check=False,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        for line in found.splitlines():
            package, bundle = line.split(": ", 1)
            bundles[package.split(",")[0]].append(pathlib.Path(bundle))
        packages = {}
        for package, paths in bundles.items():
            folder = self.folder / "bundles" / package
            folder.mkdir(parents=True)
            for path in paths:
                (folder / path.name).symlink_to(path)
            for effect in self.effects(LV2_PATH=str(folder), XDG_CACHE_HOME=str(folder)):
                packages[codes_of(effect)] = package
        return packages


def codes_of(effect):
    return tuple(effect[f"component{part}"] for part in ("Type", "SubType", "Manufacturer"))


def why_changed(trial, effects):
    """Why two renders differ: because of uninitialised memory if they are equal with constant memory content."""
    first, second = (trial.render(effects, memory_is_even=True).channels for _ in range(2))
    return "memory it does not set" if first == second else "time, threads or random numbers"


def why_eight_differ(trial, effects):
    """Why an effect differs between strips, likewise."""
    channels = trial.render(effects, memory_is_even=True).channels
    is_alike = all(channel == channels[0] for channel in channels)
    return "memory it does not set" if is_alike else "random numbers or what its instances share"


def try_effect(trial, effect, dry):
    """The results of one effect alone and of eight instances, as JSON, and its sound."""
    alone = [effect] + [None] * (STRIPS - 1)
    eight = [effect] * STRIPS
    runs = {"rendered": trial.render(alone), "rendered again": trial.render(alone), "played": trial.play(alone),
            "eight rendered": trial.render(eight), "eight played": trial.play(eight)}
    rendered, again, company = (runs[name].channels for name in ("rendered", "rendered again", "eight rendered"))
    result = {"name": effect["name"], "package": effect["package"], "marks": {}}
    marks = result["marks"]
    if any(sentence.startswith("Failed to load") for sentence in runs["rendered"].sentences):
        marks[FAILED] = ""
    elif rendered:
        if is_silent(rendered[0]):
            marks[SILENT] = ""
        elif runs["played"].channels and is_silent(runs["played"].channels[0]):
            runs["played longer"] = trial.play(alone, PLAYED_LONGER)
            if all(map(is_silent, runs["played longer"].channels[:1])):
                marks[SILENT_LIVE] = ""
        if rendered[0] == dry:
            marks[LIKE_INPUT] = ""
        if again and rendered[0] != again[0]:
            marks[CHANGED] = why_changed(trial, alone)
        elif company and any(channel != rendered[0] for channel in company):
            marks[EIGHT_DIFFER] = why_eight_differ(trial, eight)
    if any("renderBlock failed" in sentence for run in runs.values() for sentence in run.sentences):
        marks[DRY] = ""
    if any(run.end for run in runs.values()):
        marks[ENDED] = ", ".join(f"{name}: {run.end}" for name, run in runs.items() if run.end)
    result["sentences"] = sorted({sentence for run in runs.values() for sentence in run.sentences})
    return result, rendered[0] if rendered else None


def try_group(trial, group, alone):
    """The results of eight neighbours of the list, and which of them sound different than alone."""
    effects = group + [None] * (STRIPS - len(group))
    rendered, played = trial.render(effects), trial.play(effects)
    other = [effect["name"] for effect, channel, single in zip(group, rendered.channels, alone)
             if single is not None and channel != single]
    return {"names": [effect["name"] for effect in group],
            "ends": {name: run.end for name, run in (("rendered", rendered), ("played", played)) if run.end},
            "changed": other}


def print_table(results):
    print(f"| package | effects | loaded | {' | '.join(MARKS)} |")
    print("|---|" + "--:|" * (len(MARKS) + 2))
    for package in [*sorted({result["package"] for result in results}), "all"]:
        rows = [result for result in results if package in ("all", result["package"])]
        counts = [sum(mark in result["marks"] for result in rows) for mark in MARKS]
        print(f"| {package} | {len(rows)} | {len(rows) - counts[0]} | {' | '.join(map(str, counts))} |")


def print_names(results):
    for mark in MARKS:
        names = [result["name"] + (f" ({result['marks'][mark]})" if result["marks"][mark] else "")
                 for result in results if mark in result["marks"]]
        print(f"\n{mark}: {'; '.join(names) or 'none'}")


def print_sentences(results, effects):
    """Each sentence once, with the number of effects that caused it."""
    counts = collections.Counter(sentence for result in results
                                 for sentence in {general(sentence, effects) for sentence in result["sentences"]})
    for sentence, count in counts.most_common():
        print(f"\n{count} x {sentence}")


def print_groups(groups):
    others = "; ".join(name for group in groups for name in group["changed"]) or "none"
    print(f"\n{len(groups)} groups of eight; effects that sound different there than alone: {others}")
    for group in groups:
        for run, end in group["ends"].items():
            print(f"\n{', '.join(group['names'])}, {run}: {end}")


def in_parallel(jobs, title, tasks):
    """Runs the tasks, shows how many are done, and returns their results in order."""
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        futures = [pool.submit(*task) for task in tasks]
        for done, _ in enumerate(concurrent.futures.as_completed(futures), 1):
            if sys.stderr.isatty() or done % 20 == 0 or done == len(futures):
                print(f"{title}: {done} of {len(futures)}", end="\r" if sys.stderr.isatty() else "\n",
                      file=sys.stderr, flush=True)
        return [future.result() for future in futures]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--only", default="", help="try effects whose name or package holds this text")
    parser.add_argument("--jobs", type=int, default=2, help="programs that run at a time (2)")
    parser.add_argument("--json", type=pathlib.Path, help="a file for what came of each effect")
    options = parser.parse_args()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="plugin_trial-"))
    try:
        trial = Trial(folder)
        packages = trial.packages()
        effects = [effect | {"package": packages.get(codes_of(effect), "none")} for effect in trial.effects()]
        effects = [effect for effect in effects if options.only in effect["name"] + " " + effect["package"]]
        dry = trial.render([None] * STRIPS).channels[0]
        tried = in_parallel(options.jobs, "effects", [(try_effect, trial, effect, dry) for effect in effects])
        results = [result for result, _ in tried]
        alone = [None if {FAILED, CHANGED} & result["marks"].keys() else sound for result, sound in tried]
        groups = in_parallel(options.jobs, "groups", [
            (try_group, trial, effects[at:at + STRIPS], alone[at:at + STRIPS])
            for at in range(0, len(effects), STRIPS)])
    finally:
        shutil.rmtree(folder)
    if options.json:
        options.json.write_text(json.dumps({"effects": results, "groups": groups}, indent=1))
    print_table(results)
    print_names(results)
    print_sentences(results, effects)
    print_groups(groups)
    sys.exit(1 if any(ENDED in result["marks"] for result in results) or any(group["ends"] for group in groups) else 0)


main()
