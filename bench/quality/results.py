"""Measures panels and keeps what was measured, in a file if there is one, so that nothing is measured twice."""
import json
import pathlib
import sys
import tempfile

import measures
from panel import make_panel
from systems import Workplace

# Figures of which the worst seed counts; of the others, the mean of all seeds.
WORST = ("loopWorst", "first20Worst", "first100Worst", "truePeak", "overs", "steps")


class Results:
    """Figures by panel and system."""

    def __init__(self, program, seconds, path=None):
        self.program, self.seconds, self.path = program, seconds, path and pathlib.Path(path)
        self.known = json.loads(self.path.read_text()) if self.path and self.path.exists() else {}

    def key(self, name, microphones, seed, scene, block):
        return f"{scene}, {microphones} microphones, seed {seed}, {self.seconds} s, {block} frames: {name}"

    def measure(self, names, microphones, seed, scene="talk", block=64):
        """Measures those of the systems that are not known yet on one panel."""
        missing = [name for name in names if self.key(name, microphones, seed, scene, block) not in self.known]
        if not missing:
            return
        panel = make_panel(microphones, seed, self.seconds, scene)
        with tempfile.TemporaryDirectory(prefix="orvane-quality.") as folder:
            workplace = Workplace(folder, panel.input, self.program, block)
            for name in missing:
                key = self.key(name, microphones, seed, scene, block)
                print(key, file=sys.stderr, flush=True)
                self.known[key] = measures.measure(panel, workplace.render(name))
                if self.path:
                    self.path.write_text(json.dumps(self.known, indent=1))

    def figures(self, name, microphones, seeds, scene="talk", block=64):
        """The figures of a system over the seeds that were measured; none if it was not measured."""
        keys = [self.key(name, microphones, seed, scene, block) for seed in seeds]
        runs = [self.known[key] for key in keys if key in self.known]
        if not runs:
            return None
        return {figure: over_seeds(figure, [run[figure] for run in runs]) for figure in runs[0]}


def over_seeds(figure, values):
    if isinstance(values[0], list):
        return [sum(column) / len(column) for column in zip(*values)] if figure == "onsetCurve" else values[0]
    numbers = [value for value in values if value is not None]
    if not numbers:
        return None
    return max(numbers) if figure in WORST else sum(numbers) / len(numbers)
