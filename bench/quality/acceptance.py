"""Compares ORVANE's options for loudspeakers in the room with the bars that they must reach."""

MICROPHONES, SEEDS = (8, 48), (1, 2, 3)
PLAIN, HELD, OFF = "plain sum", "ORVANE, all, leveler held", "ORVANE, all, leveler off"

# What is compared, whether the bar is a least or a most, and the bars of the leveler held and off with 8 and 48
# microphones.
BARS = (
    ("voice to noise over the plain sum, dB", "least", ((6, 13), (8, 15))),
    ("noise in pauses to voice, dB", "most", ((-28, -26), (-31, -27))),
    ("worst open-loop gain in pauses, dB", "most", ((5, 5), (1, 1.5))),
    ("first 20 ms under what follows, dB", "most", ((4, 7), (4, 7))),
    ("STOI", "least", ((0.99, 0.98), (0.99, 0.98))),
    ("true peak, dB", "most", ((-1, -1), (-1, -1))),
)


def values_of(run, plain):
    return (run["voiceToNoise"] - plain["voiceToNoise"], run["pauseNoise"], run["loopWorst"], run["first20"],
            run["stoi"], run["truePeak"])


def measure(results):
    for microphones in MICROPHONES:
        for seed in SEEDS:
            results.measure((PLAIN, HELD, OFF), microphones, seed)


def comparison(bar, kind, values, digits):
    """The bar, the value of each panel and the verdict, and whether the worst panel reaches the bar."""
    reached = min(values) >= bar if kind == "least" else max(values) <= bar
    numbers = " ".join(f"{value:8.{digits}f}" for value in values)
    return f"{kind:>5} {bar:5g} {numbers}  {'pass' if reached else 'FAIL'}", reached


def check(results):
    """Every comparison as text, and whether all bars are reached. Everything must have been measured."""
    lines = [f"{'':42} {'bar':>9} " + " ".join(f"panel {seed:2}" for seed in SEEDS)]
    failures = 0
    for row, name in enumerate((HELD, OFF)):
        for column, microphones in enumerate(MICROPHONES):
            lines.append(f"{name}, {microphones} microphones")
            runs = [values_of(results.figures(name, microphones, [seed]), results.figures(PLAIN, microphones, [seed]))
                    for seed in SEEDS]
            for (what, kind, bars), values in zip(BARS, zip(*runs)):
                text, reached = comparison(bars[row][column], kind, values, 3 if what == "STOI" else 1)
                lines.append(f"  {what:38} {text}")
                failures += not reached
    lines.append("All bars are reached." if failures == 0 else f"{failures} bars are missed.")
    return "\n".join(lines), failures == 0
