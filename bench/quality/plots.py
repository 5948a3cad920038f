"""Draws the plots of docs/quality.md."""
from measures import CURVE_MS

WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 960, 400, 60, 36, 64, 44
COLOURS = {
    "plain sum": "#7a7a7a",
    "gates": "#cc79a7",
    "gain sharing by power": "#e69f00",
    "ORVANE, defaults": "#d55e00",
    "ORVANE, all, leveler held": "#0072b2",
    "ORVANE, all, leveler off": "#009e73",
}
DASHES = {"gates": "7 3", "ORVANE, all, leveler off": "9 4"}
# Wide, so that it shows below others that it equals.
STROKE_WIDTHS = {"gain sharing by power": 6}


def signed(value):
    return f"{value:g}".replace("-", "−")


class Chart:
    """A plot with two linear axes and a legend above it."""

    def __init__(self, x_range, y_range, x_ticks, y_ticks, y_title):
        self.x_range, self.y_range = x_range, y_range
        self.svg = [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" '
            f'height="{HEIGHT}" font-family="sans-serif" font-size="12" fill="#333">',
            f'<rect width="{WIDTH}" height="{HEIGHT}" fill="#fff"/>',
            f'<rect x="{LEFT}" y="{TOP}" width="{WIDTH - LEFT - RIGHT}" height="{HEIGHT - TOP - BOTTOM}" '
            f'fill="#f4f5f7"/>']
        self.grid = []
        for value in y_ticks:
            self.grid.append(f'<path d="M{LEFT} {self.y(value):.1f}H{WIDTH - RIGHT}" stroke="#d3d6db"/>')
            self.grid.append(f'<text x="{LEFT - 8}" y="{self.y(value) + 4:.1f}" text-anchor="end">'
                             f'{signed(value)}</text>')
        for value, name in x_ticks:
            self.grid.append(f'<text x="{self.x(value):.1f}" y="{HEIGHT - BOTTOM + 18}" '
                             f'text-anchor="middle">{name}</text>')
        middle = (TOP + HEIGHT - BOTTOM) / 2
        self.grid.append(f'<text x="16" y="{middle}" text-anchor="middle" '
                         f'transform="rotate(-90 16 {middle})">{y_title}</text>')
        self.legend_x, self.legend_y = LEFT, 20

    def x(self, value):
        low, high = self.x_range
        return LEFT + (value - low) / (high - low) * (WIDTH - LEFT - RIGHT)

    def y(self, value):
        low, high = self.y_range
        return TOP + (high - min(max(value, low), high)) / (high - low) * (HEIGHT - TOP - BOTTOM)

    def shade(self, begin, end):
        """Marks a part of the horizontal axis, below the grid."""
        self.svg.append(f'<rect x="{self.x(begin):.1f}" y="{TOP}" width="{self.x(end) - self.x(begin):.1f}" '
                        f'height="{HEIGHT - TOP - BOTTOM}" fill="#ffe0a3" fill-opacity="0.6"/>')

    def legend(self, sign, name):
        if self.legend_x + 40 + 7 * len(name) > WIDTH - RIGHT:
            self.legend_x, self.legend_y = LEFT, self.legend_y + 20
        self.grid.append(f'<g transform="translate({self.legend_x} {self.legend_y})">{sign}'
                         f'<text x="30" y="4">{name}</text></g>')
        self.legend_x += 50 + 7 * len(name)

    def line(self, name, points, marks=False):
        """The curve of a system, with a mark at each point if wanted."""
        stroke = (f'stroke="{COLOURS[name]}" stroke-width="{STROKE_WIDTHS.get(name, 2)}" '
                  f'stroke-dasharray="{DASHES.get(name, "none")}"')
        path = " ".join(f"{self.x(x):.1f},{self.y(y):.1f}" for x, y in points)
        self.grid.append(f'<polyline points="{path}" fill="none" {stroke}/>')
        if marks:
            self.grid += [f'<circle cx="{self.x(x):.1f}" cy="{self.y(y):.1f}" r="3.5" fill="{COLOURS[name]}"/>'
                          for x, y in points]
        self.legend(f'<path d="M0 0h24" {stroke}/>', name)

    def text(self):
        return "\n".join(self.svg + self.grid + ["</svg>", ""])


def loop_gain(results, seed=1, seconds=40):
    """The open-loop gain of eight microphones over time."""
    chart = Chart((0, seconds), (-10, 32), [(second, f"{second} s") for second in range(0, seconds + 1, 5)],
                  range(-10, 31, 10), "open-loop gain, dB")
    for begin, end in results.figures("plain sum", 8, [seed])["talkSpans"]:
        if begin < seconds:
            chart.shade(begin, min(end, seconds))
    chart.legend('<rect y="-6" width="24" height="12" fill="#ffe0a3"/>', "somebody speaks")
    for name in ("plain sum", "gain sharing by power", "ORVANE, defaults", "ORVANE, all, leveler held",
                 "ORVANE, all, leveler off"):
        curve = results.figures(name, 8, [seed])["loopCurve"]
        chart.line(name, [(point / 10, gain) for point, gain in enumerate(curve[:seconds * 10])])
    return chart.text()


def onset(results, seeds):
    """The gain of a talker's microphone around the beginnings of utterances, eight microphones."""
    chart = Chart((int(CURVE_MS[0]), int(CURVE_MS[-1])), (-30, 12), [(ms, f"{ms} ms".replace("-", "−"))
                                                                    for ms in range(-20, 201, 20)],
                  range(-30, 11, 10), "gain to that of 100 to 500 ms, dB")
    chart.grid.append(f'<path d="M{chart.x(0):.1f} {TOP}V{HEIGHT - BOTTOM}" stroke="#333" stroke-dasharray="3 3"/>')
    for name in ("gates", "gain sharing by power", "ORVANE, defaults", "ORVANE, all, leveler held",
                 "ORVANE, all, leveler off"):
        curve = results.figures(name, 8, seeds)["onsetCurve"]
        chart.line(name, list(zip(CURVE_MS.tolist(), curve)))
    return chart.text()


def microphones(results, counts, seed=1):
    """Voice to noise by the number of microphones, whose steps are evenly spaced."""
    chart = Chart((-0.2, len(counts) - 0.8), (0, 45), [(i, f"{count} microphones") for i, count in enumerate(counts)],
                  range(0, 41, 10), "voice to noise, dB")
    for name in COLOURS:
        chart.line(name, [(i, results.figures(name, count, [seed])["voiceToNoise"])
                          for i, count in enumerate(counts)], marks=True)
    return chart.text()
