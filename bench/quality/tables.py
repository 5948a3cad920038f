"""Prints figures as tables of plain text."""

# From here down, nothing is left to measure.
NOTHING_DB = -100.0

# Figure, heading above, heading below, format.
PANEL = (
    ("voiceToNoise", "voice:", "noise", "7.1f"),
    ("voiceToBleed", "voice:", "bleed", "7.1f"),
    ("pauseNoise", "noise in", "pauses", "9.1f"),
    ("loopMedian", "loop", "median", "7.1f"),
    ("loop99", "gain", "99 %", "6.1f"),
    ("loopWorst", "", "worst", "6.1f"),
    ("first20", "first", "20 ms", "6.1f"),
    ("first20Worst", "", "worst", "6.1f"),
    ("first100", "first", "100 ms", "7.1f"),
    ("spread", "", "spread", "7.1f"),
    ("stoi", "", "STOI", "6.3f"),
    ("loudness", "", "LUFS", "6.1f"),
    ("truePeak", "", "dBTP", "6.1f"),
    ("overs", "", "overs", "7.0f"),
    ("steps", "", "steps", "6.0f"),
)
EVENT = (
    ("event", "sound:", "voice", "7.1f"),
    ("eventLoss", "talker", "loses", "7.1f"),
    ("eventSwing", "", "swing", "6.1f"),
    ("voiceToNoise", "voice:", "noise", "7.1f"),
    ("pauseNoise", "noise in", "pauses", "9.1f"),
    ("loopWorst", "loop", "worst", "6.1f"),
    ("first20", "first", "20 ms", "6.1f"),
    ("stoi", "", "STOI", "6.3f"),
    ("loudness", "", "LUFS", "6.1f"),
    ("truePeak", "", "dBTP", "6.1f"),
)
RECORDING = (
    ("pauseNoise", "noise in", "pauses", "9.1f"),
    ("loopMedian", "loop", "median", "7.1f"),
    ("loop99", "gain", "99 %", "6.1f"),
    ("loopWorst", "", "worst", "6.1f"),
    ("loudness", "", "LUFS", "6.1f"),
    ("truePeak", "", "dBTP", "6.1f"),
    ("overs", "", "overs", "7.0f"),
    ("steps", "", "steps", "6.0f"),
)


def cell(value, form):
    width = int(form.split(".")[0])
    if value is None or value <= NOTHING_DB:
        return "–".rjust(width)
    text = format(value, form)
    # Zero has no sign.
    return text.replace("-", " ") if float(text) == 0 else text


def table(title, rows, columns):
    """A table of the rows (name, figures) under a title; rows without figures are left out."""
    rows = [(name, figures) for name, figures in rows if figures]
    width = max(len(name) for name, _ in rows) + 1
    lines = [title]
    for part in (1, 2):
        heads = (column[part].rjust(int(column[3].split(".")[0])) for column in columns)
        lines.append((" " * width + " ".join(heads)).rstrip())
    for name, figures in rows:
        lines.append(name.ljust(width) + " ".join(cell(figures.get(column[0]), column[3]) for column in columns))
    return "\n".join(lines)
