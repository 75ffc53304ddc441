"""What each operation is allowed to cost, and the comparison of what it does cost."""

import json
import re

# By so much of its figure a count may differ. Counts repeat exactly on one machine; another patch
# level of the compiler or the C library moves them a little.
TOLERANCE = 0.04

OTHER_REASON = "renew the figures with scripts/renew-instructions if that is meant"


def total(text):
    """The instructions that a file of callgrind counts in all."""
    match = re.search(r"^totals: (\d+)$", text, re.MULTILINE)
    if not match:
        raise ValueError("callgrind wrote no totals")
    return int(match[1])


def finding(figure, count):
    """What is wrong with the count of an operation; an empty text when nothing is."""
    if figure is None:
        return f"has no figure: {OTHER_REASON}"
    if count is None:
        return f"has a figure and is not measured any more: {OTHER_REASON}"
    if count > figure * (1 + TOLERANCE):
        return "costs more than its figure"
    if count < figure * (1 - TOLERANCE):
        return "costs less than its figure: scripts/renew-instructions keeps what was gained"
    return ""


def findings(figures, counts):
    """For each operation that has a figure or a count: its name and what is wrong with it."""
    names = list(counts) + [name for name in figures if name not in counts]
    return {name: finding(figures.get(name), counts.get(name)) for name in names}


def table(figures, counts):
    """Figures and counts, a line each."""
    def cell(value):
        return "-" if value is None else f"{value:.1f}"

    lines = [f"{'instructions of one':24}{'figure':>10}{'now':>10}{'change':>9}"]
    for name, wrong in findings(figures, counts).items():
        figure, count = figures.get(name), counts.get(name)
        change = "" if None in (figure, count) else f"{count / figure - 1:+.1%}"
        note = f"  {wrong}" if wrong else ""
        lines.append(f"{name:24}{cell(figure):>10}{cell(count):>10}{change:>9}{note}")
    return "\n".join(lines)


def load(text):
    """The figures by operation."""
    figures = json.loads(text)
    for name, figure in figures.items():
        if isinstance(figure, bool) or not isinstance(figure, (int, float)) or figure <= 0:
            raise ValueError(f"the figure of {name} is no positive number")
    return figures


def dump(counts):
    """The counts as the text of a file of figures."""
    return json.dumps({name: round(count, 1) for name, count in counts.items()}, indent=2) + "\n"
