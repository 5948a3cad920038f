"""The systems that are measured: each turns the microphones' sound into a stem a microphone and a mix."""
import dataclasses
import json
import pathlib
import shutil

import numpy as np
from scipy.io import wavfile

import mixers
from make_demo_audio import RATE
from tools import run

TARGET_DB = -18.0
CEILING_DB = -1.0
HALL = ["--open-microphone-limit", "--fast-onset", "--gain-ramps", "--limiter", str(CEILING_DB)]

# The options of orvane-cli.
ORVANE = {
    "ORVANE, defaults": ["--leveler", "follow"],
    "ORVANE, leveler held": ["--leveler", "hold"],
    "ORVANE, leveler off": ["--leveler", "off"],
    "ORVANE, open-microphone limit": ["--open-microphone-limit"],
    "ORVANE, fast onset": ["--fast-onset"],
    "ORVANE, gain ramps": ["--gain-ramps"],
    "ORVANE, limiter": ["--limiter", str(CEILING_DB)],
    "ORVANE, all, leveler held": ["--leveler", "hold", *HALL],
    "ORVANE, all, leveler off": ["--leveler", "off", *HALL],
}
MIXERS = {
    "plain sum": mixers.plain_sum,
    "gates": mixers.gates,
    "gain sharing by power": mixers.gain_sharing,
}
FFMPEG = "ffmpeg agate, amix, dynaudnorm"
NAMES = [*MIXERS, FFMPEG, *ORVANE]
# Those of tables that have no place for all.
MAIN_NAMES = [*MIXERS, FFMPEG, "ORVANE, defaults", "ORVANE, all, leveler held", "ORVANE, all, leveler off"]


@dataclasses.dataclass
class Rendering:
    """What a system made of a recording; all aligned with it."""
    stems: list          # one array a microphone: with its gain, before the sum
    mix: np.ndarray      # one side of the master bus


class Workplace:
    """A recording on disk that systems render, and where they leave their results."""

    def __init__(self, folder, sound, program, block):
        self.folder = pathlib.Path(folder)
        self.sound, self.program, self.block = sound, program, block
        self.recording = self.folder / "in.wav"
        wavfile.write(self.recording, RATE, np.ascontiguousarray(sound.T))

    def render(self, name):
        """The recording through a system of NAMES."""
        if name in MIXERS:
            stems = mixers.stems_of(self.sound, MIXERS[name](self.sound))
            return Rendering(stems, np.sum(stems, axis=0, dtype=np.float32))
        return self.ffmpeg() if name == FFMPEG else self.orvane(ORVANE[name])

    def session(self):
        """A session of one strip a microphone and the master bus on outputs 1 and 2."""
        path = self.folder / "panel.orvane"
        run(self.program, "session", "--new", str(len(self.sound)), "--force", path)
        session = json.loads(path.read_text())
        session["masterTargetDB"] = TARGET_DB
        session["masterOutputRouting"] = {"stereo": {"left": 0, "right": 1}}
        for strip in session["channels"]:
            strip["outputRouting"] = {"none": {}}
        path.write_text(json.dumps(session))
        return path

    def orvane(self, options):
        stems, mix = self.folder / "stems", self.folder / "mix.wav"
        shutil.rmtree(stems, ignore_errors=True)
        run(self.program, "render", "--input", self.recording, "--output", mix, "--stems", stems,
            "--session", self.session(), "--buffer-size", str(self.block), *options)
        return Rendering([wavfile.read(path, mmap=True)[1] for path in sorted(stems.iterdir())],
                         wavfile.read(mix)[1][:, 0])

    def ffmpeg(self):
        """Gates of ffmpeg, whose outputs are the stems, their sum, and its leveler, which looks ahead."""
        count = len(self.sound)
        raw = ["-f", "f32le", "-ar", str(RATE), "-ac", "1"]
        inputs, stems, filters, outputs = [], [], [], []
        for i, track in enumerate(self.sound):
            track.tofile(self.folder / f"{i}.raw")
            stems.append(self.folder / f"{i}.gated")
            inputs += [*raw, "-i", self.folder / f"{i}.raw"]
            filters.append(f"[{i}]agate=threshold={10 ** (mixers.GATE_THRESHOLD_DB / 20):.5f}:release=300,"
                           f"asplit[s{i}][g{i}];")
            outputs += ["-map", f"[s{i}]", *raw, stems[i]]
        mix = self.folder / "mix.raw"
        filters += [*(f"[g{i}]" for i in range(count)), f"amix=inputs={count}:normalize=0,",
                    f"dynaudnorm=targetrms={10 ** (TARGET_DB / 20):.5f}[mix]"]
        run("ffmpeg", "-nostdin", "-v", "error", "-y", *inputs, "-filter_complex", "".join(filters),
            *outputs, "-map", "[mix]", *raw, mix)
        return Rendering([np.memmap(path, np.float32, "r") for path in stems], np.fromfile(mix, np.float32))
