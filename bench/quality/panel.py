"""Panels of synthetic speech whose voices, bleed, noise and other sounds are known separately."""
import dataclasses
import functools

import numpy as np

import events
from make_demo_audio import LINES, RATE, pink, speak

# What a panel may have beside people who speak in turn.
SCENES = ("talk", "overlap", "cough", "rustle", "applause", "music")

NOISE_DB = -57.0
QUIETEST_TALKER_DB, LOUDEST_TALKER_DB = -26.0, -18.0
# The first seconds are a pause.
FIRST_WORD_SECONDS = 3.0
OVERLAP_SECONDS = 1.5
# Sound travels 0.7 m from one microphone to the next.
SECONDS_PER_SEAT = 0.0021

speech = functools.cache(speak)


@dataclasses.dataclass
class Utterance:
    """A sentence of a talker, from its first sample that is heard to its last."""
    talker: int
    begin: int
    end: int


@dataclasses.dataclass
class Panel:
    """The parts of what the microphones pick up, float32, microphones x frames."""
    voice: np.ndarray            # each talker at their own microphone
    bleed: np.ndarray            # the talkers at all others
    noise: np.ndarray            # of the room, different at every microphone
    event: np.ndarray | None     # what a scene adds
    seats: list                  # the microphone of each talker
    event_seat: int              # the microphone of a cough, a rustle or music
    utterances: list
    event_spans: list            # pairs of frames

    @property
    def shape(self):
        return self.voice.shape

    @functools.cached_property
    def input(self):
        total = self.voice + self.bleed
        total += self.noise
        return total if self.event is None else total + self.event

    @functools.cached_property
    def talk(self):
        """Whether somebody speaks, per frame."""
        mask = np.zeros(self.shape[1], bool)
        for utterance in self.utterances:
            mask[utterance.begin:utterance.end] = True
        return mask

    @functools.cached_property
    def pause(self):
        """Whether nobody has spoken for 0.3 s, per frame; the first second counts as neither."""
        mask = np.ones(self.shape[1], bool)
        mask[:RATE] = False
        for utterance in self.utterances:
            mask[utterance.begin:utterance.end + int(0.3 * RATE)] = False
        return mask


def distance_gain(distance):
    """How much of a sound the microphone that is so many seats away picks up."""
    return 10 ** (-(13 + 3 * min(distance, 5)) / 20)


def heard_part(voice):
    """The frames between which a sentence is above a tenth of its RMS, beginning 2.5 ms early."""
    envelope = np.sqrt(np.convolve(voice ** 2, np.ones(240) / 240, "same"))
    heard = np.nonzero(envelope > 0.1 * np.sqrt(np.mean(voice ** 2)))[0]
    return max(heard[0] - 120, 0), heard[-1]


def order_of_talkers(talkers, rng):
    """Endless; everybody once before anybody twice, and nobody twice in a row."""
    last = -1
    while True:
        order = rng.permutation(talkers)
        if order[0] == last and talkers > 1:
            order = np.roll(order, 1)
        yield from order
        last = order[-1]


def perform(talkers, frames, scene, rng):
    """What each talker says, talkers x frames, the utterances, and where a scene's events begin."""
    dry = np.zeros((talkers, frames))
    levels = rng.uniform(QUIETEST_TALKER_DB, LOUDEST_TALKER_DB, talkers)
    utterances, event_begins = [], []
    at = FIRST_WORD_SECONDS
    for count, talker in enumerate(order_of_talkers(talkers, rng)):
        name, speed, pitch, _ = LINES[talker]
        voice = speech(name, speed, pitch, LINES[int(rng.integers(len(LINES)))][3])
        voice = events.at_level(voice, levels[talker] + rng.uniform(-1, 1))
        first, last = heard_part(voice)
        start = int(at * RATE)
        if start + len(voice) >= frames - RATE:
            return dry, utterances, event_begins
        dry[talker, start:start + len(voice)] += voice
        utterances.append(Utterance(int(talker), start + first, start + last))
        at += last / RATE
        is_long_pause = count % 4 == 3 or (count % 2 == 1 and scene in ("applause", "music"))
        if scene in ("cough", "rustle"):
            event_begins.append(start + first + RATE)
        if scene == "overlap" and count % 2 == 0:
            at -= OVERLAP_SECONDS
        elif is_long_pause and scene in ("applause", "music"):
            event_begins.append(int((at + 0.7) * RATE))
            at += 5.5
        else:
            at += rng.uniform(2.0, 4.0) if is_long_pause else rng.uniform(0.2, 0.9)


def add_bleed(sound, seat, begin, tracks):
    """Adds a sound at one microphone, weaker and later, to the tracks of all others."""
    for microphone, track in enumerate(tracks):
        distance = abs(microphone - seat)
        at = begin + int(distance * SECONDS_PER_SEAT * RATE)
        if distance > 0:
            track[at:at + len(sound)] += distance_gain(distance) * sound[:len(track) - at]


def add_events(panel, scene, begins, rng):
    """Adds a scene's sounds to the panel."""
    panel.event = np.zeros(panel.shape, np.float32)
    for begin in begins:
        sound = getattr(events, scene)(rng)
        if begin + len(sound) >= panel.shape[1] - RATE:
            continue
        panel.event_spans.append((begin, begin + len(sound)))
        if scene == "applause":
            for track in panel.event:
                track[begin:begin + len(sound)] += events.applause(rng)
            continue
        panel.event[panel.event_seat, begin:begin + len(sound)] += sound
        if scene != "music":
            add_bleed(sound, panel.event_seat, begin, panel.event)


def make_panel(microphones, seed, seconds, scene="talk"):
    """A panel of up to six talkers. The same arguments give the same panel."""
    rng = np.random.default_rng([seed, microphones])
    frames = int(seconds * RATE)
    talkers = min(microphones, len(LINES))
    seats = [talker * microphones // talkers for talker in range(talkers)]
    dry, utterances, event_begins = perform(talkers, frames, scene, rng)
    voice, bleed, noise = (np.zeros((microphones, frames), np.float32) for _ in range(3))
    for talker, seat in enumerate(seats):
        voice[seat] = dry[talker]
        add_bleed(dry[talker], seat, 0, bleed)
    for track in noise:
        track[:] = events.at_level(pink(frames, rng), NOISE_DB)
    free = [microphone for microphone in range(microphones) if microphone not in seats]
    panel = Panel(voice, bleed, noise, None, seats, free[0] if free else microphones - 1, utterances, [])
    if event_begins:
        add_events(panel, scene, event_begins, rng)
    return panel
