"""The page of docs/ and its file of results: both follow from a run's figures and the goals."""

import json
import re
import textwrap

import words
from errors import ReportError
from figures import from_results, quartiles, rounded, to_results
from judgement import NOT_MEASURED, curve_lines, goal_text, judge_rows

TABLE_HEAD = (
    "| What | Goal | Measured | Middle half | Times | Result |",
    "|---|---|---|---|---|---|",
)
LIMITS = {"rate": "atLeast"}


def results_text(surroundings, settings, rows, run):
    """The file of results: what was measured, where and how, with one line a goal and a case."""
    parts = {
        **surroundings,
        "benchmark": settings,
        "goals": [
            goal_result(row, each) for row, some in judge_rows(rows, run) for each in some
        ],
        "cases": to_results(run),
    }
    lines = []
    for key, value in parts.items():
        if key == "goals":
            text = "[\n" + ",\n".join("    " + json.dumps(each) for each in value) + "\n  ]"
        elif key == "cases":
            cases = (f"    {json.dumps(name)}: {json.dumps(case)}" for name, case in value.items())
            text = "{\n" + ",\n".join(cases) + "\n  }"
        else:
            text = json.dumps(value, indent=2).replace("\n", "\n  ")
        lines.append(f"  {json.dumps(key)}: {text}")
    return "{\n" + ",\n".join(lines) + "\n}\n"


def goal_result(row, judgement):
    """What the file of results says of a goal."""
    return {
        "row": row.number,
        "what": judgement.goal.what,
        "goal": goal_text(judgement.goal),
        "result": judgement.result,
        "close": judgement.close,
        "measured": [outcome_result(outcome) for outcome in judgement.outcomes],
    }


def outcome_result(outcome):
    """The figure of a goal as the file of results holds it."""
    if outcome.reason:
        return {"result": NOT_MEASURED, "reason": outcome.reason}
    return {
        LIMITS.get(outcome.goal.form, "atMost"): outcome.goal.limit,
        "value": rounded(outcome.value),
        "middleHalf": [rounded(outcome.low), rounded(outcome.high)],
        "unit": words.unit_of(outcome.goal).strip(),
    }


def read_results(text):
    """The surroundings, the settings and the run of a file of results."""
    results = json.loads(text)
    run = from_results(results.pop("cases"))
    results.pop("goals")
    settings = results.pop("benchmark")
    return results, settings, run


def cell(text):
    """A text as it may stand in a table."""
    return text.replace("|", "\\|")


def row_section(row, judgements):
    """One row: its table, and its note where not all goals are reached."""
    lines = [f"### {row.number}. {row.title}", "", *TABLE_HEAD]
    for each in judgements:
        cells = (
            each.goal.what, goal_text(each.goal), words.measured(each), words.middle_half(each),
            words.medians(each), words.result(each),
        )
        lines.append("| " + " | ".join(cell(text) for text in cells) + " |")
    if row.note and any(each.result != "reached" for each in judgements):
        lines += ["", textwrap.fill(row.note, 120)]
    return "\n".join(lines)


def summary(judged):
    """The rows with their counts, and those of all."""
    everything = [each for _, judgements in judged for each in judgements]
    head = f"Of {len(everything)} goals: {words.counts(everything)}."
    lines = [head, "", "| Row | Goals |", "|---|---|"]
    for row, judgements in judged:
        lines.append(f"| {row.number}. {cell(row.title)} | {words.counts(judgements)} |")
    return "\n".join(lines)


def curve_section(curve, run):
    """A curve as an image, with its ends in words, and the lines that are missing."""
    lines, missing = curve_lines(curve, run)
    if not lines:
        reasons = "; ".join(sorted(set(missing.values())))
        return f"### {curve.title}\n\nNot measured: {reasons}."
    say = (lambda value: f"{words.number(value)} {curve.unit}") if curve.unit else words.duration
    ends = ", ".join(
        f"{who} {say(points[0][2])} to {say(points[-1][2])}" for who, points in lines.items()
    )
    first, last = (f"{x:,g}" for x in (min(curve.sizes.values()), max(curve.sizes.values())))
    text = f"{curve.title}, from {first} to {last} {curve.x}: {ends}"
    section = f"### {curve.title}\n\n![{text}](performance/{curve.file}.svg)"
    if missing:
        section += f"\n\nNot measured: {'; '.join(missing.values())}."
    return section


def surroundings_section(surroundings, settings):
    """The machine, the compiler and the packages."""
    machine = surroundings["machine"]
    kind = "processors of a virtual machine" if machine["virtual"] else "processors"
    load = ", ".join(f"{load:.2f}" for load in machine["loadAtStart"])
    packages = ", ".join(f"{name} {version}" for name, version in surroundings["packages"].items())
    return "\n".join([
        f"- {surroundings['date'][:10]}, {settings['repetitions']} repetitions of at least "
        f"{settings['minTime']:g} s a case, {settings['cases']} cases",
        f"- {machine['processors']} {kind}, {machine['processor']}, {machine['memory']} of memory",
        f"- {machine['system']}; load averages at the start {load}",
        f"- {surroundings['compiler']}",
        textwrap.fill(f"- {packages}", 120, subsequent_indent="  ", break_on_hyphens=False),
    ])


def noise_section(run):
    """How much the repetitions of the cases differ."""
    noises = sorted(case.noise for case in run.cases.values() if not case.error)
    _, median, high = quartiles(noises)
    text = (
        f"In this run the middle half of a case's repetitions spans at most "
        f"{words.percent(median)} of its median for half of the cases, {words.percent(high)} for "
        f"three quarters of them, and {words.percent(noises[-1])} for the noisiest."
    )
    return textwrap.fill(text, 120)


def page_text(template, results, rows, curves):
    """The page: what is written by hand, the template, around the parts that are made here."""
    surroundings, settings, run = read_results(results)
    judged = judge_rows(rows, run)
    parts = {
        "SUMMARY": summary(judged),
        "ROWS": "\n\n".join(row_section(*each) for each in judged),
        "CURVES": "\n\n".join(curve_section(curve, run) for curve in curves),
        "SURROUNDINGS": surroundings_section(surroundings, settings),
        "NOISE": noise_section(run),
    }
    for name, text in parts.items():
        if template.count(f"@{name}@") != 1:
            raise ReportError(f"the template of the page must hold @{name}@ once")
        template = template.replace(f"@{name}@", text)
    if left := re.search(r"@[A-Z]+@", template):
        raise ReportError(f"the template of the page names the unknown part {left[0]}")
    return template


def results_again(results, rows):
    """The file of results made from itself: its goals follow today's limits."""
    surroundings, settings, run = read_results(results)
    return results_text(surroundings, settings, rows, run)
