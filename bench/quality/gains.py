"""Finds the gains of a system from what it was given and what it made of it, without knowing how it works."""
import dataclasses

import numpy as np

BLOCK = 64
# The master gain runs in a line over so many frames.
SHORT = 4


def blocks_of(track, length):
    """The track in rows of `length` frames; the rest is left out."""
    count = len(track) // length
    return track[:count * length].reshape(count, length)


def strip_gain(before, after):
    """The gain of every frame; where the input is exactly silent, between those of its neighbours."""
    heard = before != 0
    gain = np.divide(after, before, out=np.zeros_like(before), where=heard)
    if heard.any() and not heard.all():
        gain[~heard] = np.interp(np.nonzero(~heard)[0], np.nonzero(heard)[0], gain[heard])
    return gain


def mean_gain(before, after, length=BLOCK):
    """The gain of each block that fits best, by least squares; 0 in blocks of silence."""
    x, y = blocks_of(before, length), blocks_of(after, length)
    power = np.einsum("bf,bf->b", x, x)
    return np.divide(np.einsum("bf,bf->b", x, y), power, out=np.zeros_like(power), where=power > 0)


def line_gain(before, after):
    """The gain of every frame as lines over short blocks, by least squares. Zero crossings do not matter."""
    x, y = (blocks_of(track.astype(float), SHORT) for track in (before, after))
    time = np.arange(SHORT) / SHORT
    xt = x * time
    a, b, c = (np.einsum("bf,bf->b", p, q) for p, q in ((x, x), (x, xt), (xt, xt)))
    u, v = (np.einsum("bf,bf->b", p, y) for p in (x, xt))
    determinant = a * c - b * b
    solvable = determinant > 1e-9 * a * c
    scale = np.divide(1.0, determinant, out=np.zeros_like(a), where=solvable)
    flat = np.divide(u, a, out=np.zeros_like(a), where=~solvable & (a > 0))
    start, slope = (c * u - b * v) * scale + flat, (a * v - b * u) * scale
    return (start[:, None] + slope[:, None] * time).ravel().astype(np.float32)


@dataclasses.dataclass
class Gains:
    """Of a rendering. Frames beyond the last whole block are left out."""
    master: np.ndarray      # per frame
    loop_db: np.ndarray     # per block: the power sum of the strips' gains, times the master gain's power
    strips: object          # called with a microphone: its gain per frame


def find(sound, rendering):
    """The gains with which the system made the rendering from the sound."""
    frames = min(sound.shape[1], len(rendering.mix), *(len(stem) for stem in rendering.stems)) // BLOCK * BLOCK
    bus = np.zeros(frames)
    power = np.zeros(frames // BLOCK)
    for track, stem in zip(sound, rendering.stems):
        bus += stem[:frames]
        power += mean_gain(track[:frames], stem[:frames]) ** 2
    master = line_gain(bus, rendering.mix[:frames])
    power *= blocks_of(master, BLOCK).mean(axis=1) ** 2
    return Gains(master, 10 * np.log10(power + 1e-12),
                 lambda i: strip_gain(sound[i, :frames], rendering.stems[i][:frames]))
