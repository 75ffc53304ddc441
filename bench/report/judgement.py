"""Whether goals are reached: medians are compared, and the spread of the repetitions is told."""

import statistics
from dataclasses import dataclass

from errors import NotMeasured, ReportError
from figures import NANOSECONDS, quartiles, who_of

REACHED, MISSED, NOT_MEASURED = "reached", "missed", "not measured"


@dataclass
class Outcome:
    """One figure beside its limit. `low` and `high` bound the middle half of what it may be."""

    goal: object
    value: float = 0.0
    low: float = 0.0
    high: float = 0.0
    medians: tuple = ()
    reason: str = ""

    @property
    def result(self):
        if self.reason:
            return NOT_MEASURED
        limit = self.goal.limit
        reached = self.value >= limit if self.goal.form == "rate" else self.value <= limit
        return REACHED if reached else MISSED

    @property
    def close(self):
        """Whether the limit lies within the spread: another run may find otherwise."""
        return not self.reason and self.low <= self.goal.limit <= self.high


@dataclass
class Judgement:
    """A goal with the outcome of each of its alternatives; it is reached when one of them is."""

    goal: object
    outcomes: list

    @property
    def result(self):
        results = {outcome.result for outcome in self.outcomes}
        return next(each for each in (REACHED, NOT_MEASURED, MISSED) if each in results)

    @property
    def close(self):
        """Whether the outcomes that decide are all close."""
        deciding = [each for each in self.outcomes if each.result == self.result]
        return self.result != NOT_MEASURED and all(each.close for each in deciding)


def pairs(operation, ones, others):
    """The operation's result for each repetition of the one case with each of the other."""
    return [operation(one, other) for one in ones for other in others]


def divide(one, other):
    return one / other


def ratio(goal, one, other):
    if not all(other.times):
        raise NotMeasured("a case took no time")
    low, _, high = quartiles(pairs(divide, one.times, other.times))
    return Outcome(goal, one.median / other.median, low, high, (one.median, other.median))


def difference(goal, one, other):
    unit = NANOSECONDS[goal.keys["unit"]]
    low, _, high = quartiles(pairs(lambda a, b: (a - b) / unit, one.times, other.times))
    return Outcome(
        goal, (one.median - other.median) / unit, low, high, (one.median, other.median)
    )


def spread(goal, *cases):
    """The dearest of the cases beside the cheapest."""
    cheapest = min(cases, key=lambda case: case.median)
    dearest = max(cases, key=lambda case: case.median)
    outcome = ratio(goal, dearest, cheapest)
    outcome.medians = tuple(case.median for case in cases)
    return outcome


def counter(goal, case):
    name = goal.keys["counter"]
    if name not in case.counters:
        raise ReportError(f"{goal.keys['of']} counts no {name}")
    values = case.counters[name]
    low, _, high = quartiles(values)
    return Outcome(goal, statistics.median(values), low, high)


def rate(goal, case):
    if not case.rates:
        raise ReportError(f"{goal.keys['rate']} counts no items")
    low, _, high = quartiles(case.rates)
    return Outcome(goal, statistics.median(case.rates), low, high, (case.median,))


MEASURES = {
    "ratio": ratio, "difference": difference, "counter": counter, "spread": spread, "rate": rate,
}


def outcome_of(goal, run):
    """The outcome of one goal, without its alternative."""
    try:
        return MEASURES[goal.form](goal, *(run.case(name) for name in goal.cases))
    except NotMeasured as reason:
        return Outcome(goal, reason=str(reason))


def judge(goal, run):
    """The judgement of a goal. An alternative is measured too, also where it is not needed."""
    outcomes = [outcome_of(goal, run)]
    if goal.other:
        outcomes.append(outcome_of(goal.other, run))
    return Judgement(goal, outcomes)


def judge_rows(rows, run, only_what_ran=False):
    """The rows with their judgements: (row, judgements). A filter leaves out what did not run."""
    judged = []
    for row in rows:
        try:
            goals = [goal for goal in row.goals if not only_what_ran or run.has(goal.all_cases())]
            if only_what_ran:
                goals = [goal for goal in goals if run.cases.keys() & set(goal.all_cases())]
            judged.append((row, [judge(goal, run) for goal in goals]))
        except ReportError as error:
            raise ReportError(f"{row.path}: row {row.number}: {error}") from error
    return judged


def curve_lines(curve, run):
    """The lines of a curve, {who: [(x, low, median, high)]}, and the reasons for missing ones."""
    lines, missing = {}, {}
    for who in curve.who:
        try:
            lines[who] = [
                (x, *quartiles(curve_values(curve, run.case(curve.case(who, size)))))
                for size, x in sorted(curve.sizes.items(), key=lambda size: size[1])
            ]
        except NotMeasured as reason:
            missing[who] = str(reason)
        except ReportError as error:
            raise ReportError(f"{curve.path}: curve {curve.file}: {error}") from error
    return lines, missing


def curve_values(curve, case):
    """What a curve shows of a case: its times, or the counter that it names."""
    if not curve.counter:
        return case.times
    if curve.counter not in case.counters:
        raise ReportError(f"a case counts no {curve.counter}")
    return case.counters[curve.counter]


def goal_text(goal):
    """A goal in words: "at most 0.5 x rte_bitmap"."""
    limit = f"{goal.limit:,g}" if goal.limit < 1e6 else f"{goal.limit:,.0f}"
    if goal.form in ("ratio", "difference"):
        one, other = goal.cases
        beside = who_of(other) if who_of(one) != who_of(other) else other
    text = {
        "ratio": lambda: f"at most {limit} x {beside}",
        "difference": lambda: f"at most {limit} {goal.keys['unit']} above {beside}",
        "counter": lambda: f"at most {limit} {goal.keys['unit']}",
        "spread": lambda: f"at most {limit} x from the cheapest to the dearest",
        "rate": lambda: f"at least {limit} a second",
    }[goal.form]()
    return f"{text}, or {goal_text(goal.other)}" if goal.other else text
