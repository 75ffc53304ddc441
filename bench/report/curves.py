"""Draws the curves as SVG: the same bytes for the same figures. Needs python3-matplotlib."""

from itertools import cycle

import matplotlib
from matplotlib.figure import Figure
from matplotlib.ticker import FuncFormatter, LogLocator

from figures import NANOSECONDS

STYLE = {
    "svg.hashsalt": "vornic",
    "svg.fonttype": "none",
    "font.family": "sans-serif",
    "font.size": 10,
    "axes.grid": True,
    "axes.axisbelow": True,
    "grid.color": "#dddddd",
    "axes.spines.top": False,
    "axes.spines.right": False,
}
OURS = "#c0392b"
OTHERS = ("#1f4e79", "#2e8b57", "#8e6bbf", "#b8860b", "#4f9fc7", "#555555", "#a0522d", "#9acd32")
MARKERS = "sD^vPXp*"
# From how far apart values are drawn in powers of ten.
LOGARITHMIC = 10
# Up to how many sizes each has its tick.
TICKS = 9


def unit_of_times(smallest):
    """The unit in which the smallest of the times reads well."""
    units = [unit for unit, length in NANOSECONDS.items() if length <= smallest]
    return max(units, key=NANOSECONDS.get, default="ns")


def scale_of(values):
    """How an axis is divided."""
    return "log" if min(values) > 0 and max(values) / min(values) >= LOGARITHMIC else "linear"


def divide_axes(axes, curve, lines, heights):
    """Scales, names and ticks of both axes."""
    xs = sorted({x for points in lines.values() for x, *_ in points})
    axes.set_xscale(scale_of(xs))
    axes.set_yscale(scale_of(heights))
    if axes.get_yscale() == "linear":
        axes.set_ylim(bottom=0)
    for axis in (axes.xaxis, axes.yaxis):
        if axis.get_scale() == "log":
            axis.set_major_locator(LogLocator(subs=(1, 2, 5)))
    if len(xs) <= TICKS:
        axes.set_xticks(xs)
    axes.minorticks_off()
    for axis in (axes.xaxis, axes.yaxis):
        axis.set_major_formatter(FuncFormatter(lambda value, _: f"{value:,g}"))
    axes.set_xlabel(curve.x)


def draw(curve, lines, path):
    """One line a `who`, ours in front, each with the middle half of its repetitions behind it."""
    medians = [median for points in lines.values() for _, _, median, _ in points]
    unit = curve.unit or unit_of_times(min(medians))
    scale = 1 if curve.unit else NANOSECONDS[unit]
    colours = cycle(zip(OTHERS, MARKERS))
    with matplotlib.rc_context(STYLE):
        figure = Figure(figsize=(7.2, 4.2), layout="constrained")
        axes = figure.subplots()
        for who, points in lines.items():
            ours = who == "ours"
            colour, marker = (OURS, "o") if ours else next(colours)
            xs, lows, middles, highs = ([*column] for column in zip(*points))
            lows, middles, highs = ([y / scale for y in ys] for ys in (lows, middles, highs))
            order = 4 if ours else 3
            axes.fill_between(xs, lows, highs, color=colour, alpha=0.2, linewidth=0, zorder=order)
            axes.plot(xs, middles, color=colour, marker=marker, markersize=4, label=who,
                      linewidth=2.2 if ours else 1.3, zorder=order)
        divide_axes(axes, curve, lines, [median / scale for median in medians])
        axes.set_ylabel(unit)
        axes.set_title(curve.title, loc="left", fontsize=11)
        axes.legend(frameon=False, fontsize=9)
        figure.savefig(path, format="svg", metadata={"Date": None, "Creator": None})
