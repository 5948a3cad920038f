"""STOI, the short-time objective intelligibility measure, after C. H. Taal et al., IEEE Transactions on Audio, Speech,
and Language Processing 19 (7), 2011."""
import numpy as np
from scipy.signal import resample_poly

RATE = 10000
FRAME, HOP, FFT = 256, 128, 512
BANDS, LOWEST_HZ = 15, 150.0
SEGMENT = 30                    # frames, 384 ms
LOWEST_SDR_DB = -15.0
DYNAMIC_RANGE_DB = 40.0


def frames_of(sound):
    window = np.hanning(FRAME + 2)[1:-1]
    return np.lib.stride_tricks.sliding_window_view(sound, FRAME)[::HOP] * window


def third_octaves():
    """Which bins of the spectrum belong to each band."""
    frequencies = np.arange(FFT // 2 + 1) * RATE / FFT
    centres = LOWEST_HZ * 2 ** (np.arange(BANDS)[:, None] / 3)
    return ((frequencies >= centres * 2 ** (-1 / 6)) & (frequencies < centres * 2 ** (1 / 6))).astype(float)


def segments_of(frames):
    """Band levels, bands x segments x frames of a segment."""
    levels = np.sqrt(third_octaves() @ (np.abs(np.fft.rfft(frames, FFT)) ** 2).T)
    return np.lib.stride_tricks.sliding_window_view(levels, SEGMENT, axis=1)


def stoi(clean, processed, rate):
    """From 0 to 1, of sounds of equal length."""
    clean, processed = (frames_of(resample_poly(sound, RATE, rate)) for sound in (clean, processed))
    energy = 20 * np.log10(np.linalg.norm(clean, axis=1) + 1e-12)
    heard = energy > energy.max() - DYNAMIC_RANGE_DB
    x, y = segments_of(clean[heard]), segments_of(processed[heard])

    def norm(values):
        return np.linalg.norm(values, axis=2, keepdims=True) + 1e-12

    y = np.minimum(y * (norm(x) / norm(y)), x * (1 + 10 ** (-LOWEST_SDR_DB / 20)))
    x, y = (values - values.mean(axis=2, keepdims=True) for values in (x, y))
    return float(np.mean(np.sum(x / norm(x) * (y / norm(y)), axis=2)))
