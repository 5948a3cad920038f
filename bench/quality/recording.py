"""Measures the systems on a recording of microphones whose voices, bleed and noise are not known separately."""
import pathlib
import sys
import tempfile

import numpy as np
from scipy.io import wavfile

import gains
import loudness
from make_demo_audio import RATE
from measures import below, loop_figures, power_db, steps_db
from systems import MAIN_NAMES, Workplace
from tools import run

SPAN = 75 * gains.BLOCK         # 0.1 s


def read(path, folder):
    """A sound file of any format as float32, microphones x frames."""
    decoded = pathlib.Path(folder) / "decoded.wav"
    run("ffmpeg", "-nostdin", "-v", "error", "-i", path, "-ar", str(RATE), "-c:a", "pcm_f32le", decoded)
    sound = np.atleast_2d(wavfile.read(decoded)[1].T)
    return np.ascontiguousarray(sound)


def talk_and_pauses(sound):
    """Two masks of spans of 0.1 s: the half in which the loudest microphone is loudest, and the quietest tenth."""
    levels = np.max([np.mean(gains.blocks_of(track, SPAN) ** 2, axis=1) for track in sound], axis=0)
    return levels >= np.percentile(levels, 50), levels <= np.percentile(levels, 10)


def measure(sound, rendering):
    """What can be measured without the parts."""
    found = gains.find(sound, rendering)
    frames = len(found.master)
    talk, pauses = (mask[:frames // SPAN] for mask in talk_and_pauses(sound))
    low = sum(found.strips(i) * found.master * below(track[:frames]) for i, track in enumerate(sound))
    mix = gains.blocks_of(rendering.mix[:frames], SPAN)
    voice = power_db(mix[talk].ravel())
    loop = gains.blocks_of(found.loop_db, SPAN // gains.BLOCK)[pauses].ravel()
    return {"pauseNoise": power_db(mix[pauses].ravel()) - voice, "steps": steps_db(low) - voice,
            **loop_figures(loop), **loudness.measure(rendering.mix)}


def measure_all(path, program, block, names=MAIN_NAMES):
    """Rows of the systems and their figures."""
    rows = []
    with tempfile.TemporaryDirectory(prefix="orvane-quality.") as folder:
        sound = read(path, folder)
        workplace = Workplace(folder, sound, program, block)
        for name in names:
            print(f"{path}: {name}", file=sys.stderr, flush=True)
            rows.append((name, measure(sound, workplace.render(name))))
    return rows
