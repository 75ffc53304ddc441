"""Figures as text."""

from judgement import NOT_MEASURED


def number(value):
    """Three digits that count, without an exponent: 0.0571, 1.26, 231, 1,230,000."""
    if value == 0:
        return "0"
    if abs(value) >= 999.5:
        digits = 3 - len(f"{abs(value):.0f}")
        return f"{round(value, digits):,.0f}"
    exponent = int(f"{value:.2e}".split("e")[1])
    return f"{value:.{2 - exponent}f}"


def duration(nanoseconds):
    """A time in the unit that suits it."""
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if abs(nanoseconds) >= 0.9995 * scale:
            return f"{number(nanoseconds / scale)} {unit}"
    return f"{number(nanoseconds)} ns"


def percent(share):
    return f"{100 * share:.0f} %" if share >= 0.095 or share == 0 else f"{100 * share:.1f} %"


def unit_of(goal):
    """What stands behind the figures of a goal."""
    if goal.form in ("difference", "counter"):
        return " " + goal.keys["unit"]
    return {"ratio": " x", "spread": " x", "rate": " a second"}[goal.form]


def measured(judgement):
    """What was measured of a goal, its alternative included."""
    return "; ".join(
        f"{outcome.reason}" if outcome.reason else number(outcome.value) + unit_of(outcome.goal)
        for outcome in judgement.outcomes
    )


def middle_half(judgement):
    """From where to where the figure goes."""
    return "; ".join(
        "-" if outcome.reason else f"{number(outcome.low)} to {number(outcome.high)}"
        for outcome in judgement.outcomes
    )


def medians(judgement):
    """The times that were compared."""
    return "; ".join(
        ", ".join(duration(median) for median in outcome.medians) or "-"
        for outcome in judgement.outcomes
    )


def result(judgement):
    """The result in words, with a word of warning where it is decided by little."""
    return judgement.result + (", close" if judgement.close else "")


def counts(judgements):
    """How many goals have which result, in words: "3 reached, 1 missed"."""
    results = [judgement.result for judgement in judgements]
    words = [(results.count(each), each) for each in ("reached", "missed", NOT_MEASURED)]
    return ", ".join(f"{count} {each}" for count, each in words if count) or "no goal"
