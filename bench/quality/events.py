"""Sounds that are no speech: a cough, a paper rustle, applause and music, each synthesised at a known level."""
import numpy as np
from scipy.signal import butter, sosfilt

from make_demo_audio import RATE


def at_level(sound, level_db):
    """The sound with the given RMS, in dB full scale."""
    return sound * 10 ** (level_db / 20) / np.sqrt(np.mean(sound ** 2))


def band(low_hz, high_hz, frames, rng):
    """Noise between two frequencies."""
    return sosfilt(butter(2, [low_hz, high_hz], "bandpass", fs=RATE, output="sos"), rng.standard_normal(frames))


def cough(rng):
    """Two bursts, 0.5 s, -20 dB."""
    time = np.arange(int(0.5 * RATE)) / RATE
    envelope = np.exp(-time / 0.06) + 0.7 * np.where(time > 0.22, np.exp(-(time - 0.22) / 0.07), 0.0)
    return at_level(band(250, 3500, len(time), rng) * envelope, -20)


def rustle(rng):
    """Crackles of a sheet of paper, 2 s, -38 dB."""
    frames = 2 * RATE
    crackles = np.zeros(frames)
    crackles[rng.integers(frames, size=120)] = rng.exponential(1.0, 120)
    envelope = sosfilt(butter(1, 40, fs=RATE, output="sos"), crackles)
    return at_level(band(2000, 12000, frames, rng) * envelope, -38)


def applause(rng):
    """The clapping of some sixty people, 4 s, -32 dB. Call it once a microphone: each has people close to it."""
    frames = 4 * RATE
    claps = np.zeros(frames)
    claps[rng.integers(frames, size=60 * 4 * 4)] = rng.exponential(1.0, 60 * 4 * 4)
    decay = np.exp(-np.arange(int(0.03 * RATE)) / (0.006 * RATE))
    envelope = np.convolve(claps, decay)[:frames]
    return at_level(band(800, 5000, frames, rng) * envelope, -32)


def music(rng):
    """Eight struck chords, 4 s, -24 dB."""
    frames = 4 * RATE
    sound = np.zeros(frames)
    time = np.arange(frames // 8) / RATE
    for beat in range(8):
        root = 220 * 2 ** (rng.choice([0, 3, 5, 7]) / 12)
        for note in (1.0, 1.26, 1.498):
            for partial in range(1, 6):
                sound[beat * len(time):(beat + 1) * len(time)] += (
                    np.sin(2 * np.pi * root * note * partial * time) * np.exp(-time * 3) / partial ** 1.5)
    return at_level(sound, -24)
