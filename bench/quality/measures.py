"""The figures of a system on a panel. docs/quality.md explains each."""
import numpy as np
from scipy.signal import butter, sosfiltfilt

import gains as gain_finder
import loudness
from gains import BLOCK
from make_demo_audio import RATE
from stoi import stoi

# Voices below the first frequency have no sound of their own above the second.
STEPS_LOW_HZ, STEPS_HIGH_HZ = 1500, 4000
# What may be left of the mix without its parts.
HIGHEST_REST_DB = -60.0
CURVE_MS = np.arange(-20, 201, 2)


def db(power):
    return float(10 * np.log10(power + 1e-20))


def power_db(sound):
    return db(np.mean(np.square(sound, dtype=float))) if len(sound) else -200.0


def below(sound):
    """The part of a sound below the steps' low frequency; 100 dB less at the high one."""
    return sosfiltfilt(butter(8, STEPS_LOW_HZ, fs=RATE, output="sos"), sound)


def steps_db(low_sound):
    """The loudest 10 ms above the steps' high frequency of a sound that had none."""
    high = sosfiltfilt(butter(8, STEPS_HIGH_HZ, "highpass", fs=RATE, output="sos"), low_sound)
    # The filters' own beginning and end are left out.
    powers = np.mean(gain_finder.blocks_of(high, RATE // 100)[20:-20] ** 2, axis=1)
    return db(powers.max())


def mix_parts(panel, found):
    """The voices, bleed, noise and events of the mix, its voices below the steps' low frequency, and the gain of each
    talker's microphone."""
    frames = len(found.master)
    names = [name for name in ("voice", "bleed", "noise", "event") if getattr(panel, name) is not None]
    parts = {name: np.zeros(frames, np.float32) for name in [*names, "low"]}
    own = {}
    for microphone in range(panel.shape[0]):
        gain = found.strips(microphone) * found.master
        for name in names:
            if name != "voice" or microphone in panel.seats:
                parts[name] += gain * getattr(panel, name)[microphone, :frames]
        if microphone in panel.seats:
            own[microphone] = gain
            parts["low"] += gain * below(panel.voice[microphone, :frames])
        elif microphone == panel.event_seat:
            own[microphone] = gain
    return parts, own


def check_parts(parts, mix):
    """Fails if the parts do not add up to the mix, so that the gains that were found are not the system's."""
    rest = power_db(mix - sum(part for name, part in parts.items() if name != "low")) - power_db(mix)
    if rest > HIGHEST_REST_DB:
        raise RuntimeError(f"the parts add up to the mix only to {rest:.0f} dB.")


def voice_gain_db(panel, own, talker, begin, end):
    """The gain of a talker's microphone, weighted with the talker's voice."""
    voice = panel.voice[panel.seats[talker], begin:end].astype(float)
    return db(np.sum((voice * own[panel.seats[talker]][begin:end]) ** 2) / (np.sum(voice ** 2) + 1e-20))


def onsets(panel, own):
    """The loss of each utterance's first 20 and 100 ms against what follows, and the mean gain around a beginning."""
    losses, curves = [], []
    for utterance in panel.utterances:
        begin = utterance.begin
        after = voice_gain_db(panel, own, utterance.talker, begin + RATE // 10, begin + RATE // 2)
        losses.append([after - voice_gain_db(panel, own, utterance.talker, begin, begin + frames)
                       for frames in (RATE // 50, RATE // 10)])
        gain = own[panel.seats[utterance.talker]][begin + CURVE_MS * RATE // 1000]
        curves.append(20 * np.log10(np.abs(gain) + 1e-6) - after)
    losses = np.array(losses)
    return {"first20": losses[:, 0].mean(), "first20Worst": losses[:, 0].max(), "first100": losses[:, 1].mean(),
            "first100Worst": losses[:, 1].max(), "onsetCurve": np.mean(curves, axis=0).round(2).tolist()}


def talker_spread(panel, own):
    """The difference between the loudest and the quietest talker of the mix."""
    levels = {}
    for utterance in panel.utterances:
        span = slice(utterance.begin, utterance.end)
        seat = panel.seats[utterance.talker]
        levels.setdefault(seat, []).append(np.mean((panel.voice[seat, span].astype(float) * own[seat][span]) ** 2))
    means = [db(np.mean(powers)) for powers in levels.values()]
    return max(means) - min(means)


def event_figures(panel, parts, own, voice_db):
    """What a scene's sounds come to, and what they do to a talker meanwhile."""
    if panel.event is None or not panel.event_spans:
        return {}
    spans = [slice(begin, end) for begin, end in panel.event_spans]
    level = power_db(np.concatenate([parts["event"][span] for span in spans]))
    losses = []
    for utterance in panel.utterances:
        for begin, end in panel.event_spans:
            if utterance.begin < begin and end < utterance.end:
                losses.append(voice_gain_db(panel, own, utterance.talker, begin - RATE // 2, begin)
                              - voice_gain_db(panel, own, utterance.talker, begin, end))
    swing = []
    for span in spans:
        blocks = np.abs(own[panel.event_seat][span])[:4 * RATE // BLOCK * BLOCK].reshape(-1, BLOCK).mean(axis=1)
        swing.append(20 * np.log10(np.percentile(blocks, 95) / max(np.percentile(blocks, 5), 1e-6)))
    return {"event": level - voice_db, "eventLoss": float(np.mean(losses)) if losses else None,
            "eventSwing": float(np.mean(swing))}


def loop_figures(loop_db):
    return {"loopMedian": np.median(loop_db), "loop99": np.percentile(loop_db, 99), "loopWorst": loop_db.max()}


def measure(panel, rendering):
    """All figures, in dB if they are no share or count, and two curves for plots."""
    found = gain_finder.find(panel.input, rendering)
    frames = len(found.master)
    parts, own = mix_parts(panel, found)
    check_parts(parts, rendering.mix[:frames])
    talk, pause = panel.talk[:frames], panel.pause[:frames]
    voice = power_db(parts["voice"][talk])
    figures = {
        "voiceToNoise": voice - power_db(parts["noise"][talk]),
        "voiceToBleed": voice - power_db(parts["bleed"][talk]),
        "pauseNoise": power_db(parts["noise"][pause]) - voice,
        "spread": talker_spread(panel, own),
        "stoi": stoi(panel.voice[panel.seats].sum(axis=0)[:frames][talk], rendering.mix[:frames][talk], RATE),
        "steps": steps_db(parts["low"]) - voice,
        "loopCurve": gain_finder.blocks_of(found.loop_db, 75).mean(axis=1).round(2).tolist(),
        "talkSpans": [[utterance.begin / RATE, utterance.end / RATE] for utterance in panel.utterances],
    }
    figures |= loop_figures(found.loop_db[pause[::BLOCK][:len(found.loop_db)]])
    figures |= onsets(panel, own) | event_figures(panel, parts, own, voice) | loudness.measure(rendering.mix)
    return {name: value if isinstance(value, (int, list)) or value is None else round(float(value), 4)
            for name, value in figures.items()}
