"""Mixers to compare with, each as simple as its kind allows: they give every microphone a gain per block."""
import numpy as np

from make_demo_audio import RATE

BLOCK = 64

GATE_THRESHOLD_DB, GATE_HOLD_SECONDS = -45.0, 0.3
GATE_ATTACK_MS, GATE_RELEASE_MS = 2.0, 50.0
SHARING_ATTACK_MS, SHARING_RELEASE_MS = 2.0, 100.0


def coefficient(time_ms):
    return np.exp(-BLOCK / RATE / (time_ms / 1000))


def block_powers(sound):
    """The mean square of each block, blocks x microphones."""
    blocks = sound.shape[1] // BLOCK
    return np.array([np.mean(track[:blocks * BLOCK].reshape(blocks, BLOCK) ** 2, axis=1) for track in sound]).T


def follow(values, attack_ms, release_ms):
    """The values smoothed with one time upwards and another downwards."""
    attack, release = coefficient(attack_ms), coefficient(release_ms)
    state, smoothed = values[0].copy(), np.empty_like(values)
    for block, value in enumerate(values):
        state = value + np.where(value > state, attack, release) * (state - value)
        smoothed[block] = state
    return smoothed


def plain_sum(sound):
    """All microphones open."""
    return np.ones((sound.shape[1] // BLOCK, len(sound)))


def gates(sound):
    """Each microphone is open above a threshold and for a while after it, otherwise closed."""
    powers = follow(block_powers(sound), 2.0, 10.0)
    hold = int(GATE_HOLD_SECONDS * RATE / BLOCK)
    quiet_for = np.full(len(sound), hold)
    is_open = np.empty(powers.shape)
    for block, power in enumerate(powers):
        quiet_for = np.where(power > 10 ** (GATE_THRESHOLD_DB / 10), 0, quiet_for + 1)
        is_open[block] = quiet_for < hold
    return follow(is_open, GATE_ATTACK_MS, GATE_RELEASE_MS)


def gain_sharing(sound):
    """Each microphone has its share of the power as power gain, so that all together are as open as one."""
    powers = follow(block_powers(sound), SHARING_ATTACK_MS, SHARING_RELEASE_MS) + 1e-12
    return np.sqrt(powers / powers.sum(axis=1, keepdims=True))


def stems_of(sound, gains):
    """The microphones with their gains, which run in a line over each block."""
    ends = np.arange(1, len(gains) + 1) * BLOCK - 1
    frames = np.arange(len(gains) * BLOCK)
    return [track[:len(frames)] * np.interp(frames, ends, gain).astype(np.float32)
            for track, gain in zip(sound, gains.T)]
