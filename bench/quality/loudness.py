"""What a listener of the mix gets: loudness and true peak as ffmpeg measures them, and samples over full scale."""
import re

import numpy as np

from make_demo_audio import RATE
from tools import run


def measure(mix):
    """Of a mix on both sides of a stereo pair."""
    stereo = np.repeat(mix.astype("<f4")[:, None], 2, axis=1)
    report = run("ffmpeg", "-nostdin", "-hide_banner", "-f", "f32le", "-ar", str(RATE), "-ac", "2", "-i", "-",
                 "-af", "ebur128=peak=true", "-f", "null", "-", sound=stereo.tobytes())

    def last(pattern):
        return float(re.findall(pattern + r"\s+(-?[\d.]+|-inf)", report)[-1])

    return {"loudness": last("I:"), "truePeak": last("Peak:"), "overs": int(np.sum(np.abs(mix) >= 1.0))}
