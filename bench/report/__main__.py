"""Runs the benchmarks once and says which goals they reach. scripts/bench calls it."""

import argparse
import subprocess
import sys
from pathlib import Path

import figures
import goals
import machine
import page
import words
from errors import ReportError
from judgement import curve_lines, goal_text, judge_rows

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/release"
PROGRAM = BUILD / "bench/bench_vornic"
DOCS = ROOT / "docs"
# What the page asks of its figures.
LEAST_REPETITIONS = 9


def parse(arguments):
    """The command line; scripts/bench tells what it means."""
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__)
    parser.add_argument("--repetitions", type=int, default=LEAST_REPETITIONS)
    parser.add_argument("--min-time", type=float, default=0.05)
    parser.add_argument("--page", action="store_true")
    parser.add_argument("pattern", nargs="?")
    return parser.parse_args(arguments)


def names_of(pattern):
    """The names of the cases that match."""
    command = [PROGRAM, "--benchmark_list_tests", f"--benchmark_filter={pattern}"]
    listed = subprocess.run(command, check=False, stdout=subprocess.PIPE, text=True)
    if listed.returncode:
        raise ReportError(f"{PROGRAM.name} could not list its cases")
    return figures.case_names(listed.stdout)


def measure(options):
    """Runs the cases in one process, the repetitions of all shuffled: their JSON and figures."""
    known = names_of(".")
    pattern = options.pattern or "."
    names = names_of(pattern) if options.pattern else known
    if not names:
        raise ReportError(f"no case matches {pattern}")
    print(f"{len(names)} cases, {options.repetitions} repetitions of each", file=sys.stderr)
    out = BUILD / "bench/run.json"
    command = [
        PROGRAM, f"--benchmark_filter={pattern}", f"--benchmark_repetitions={options.repetitions}",
        f"--benchmark_min_time={options.min_time:g}", "--benchmark_enable_random_interleaving=true",
        f"--benchmark_out={out}", "--benchmark_out_format=json",
    ]
    code = subprocess.run(command, check=False, stdout=subprocess.DEVNULL).returncode
    if code:
        raise ReportError(f"{PROGRAM.name} failed with {code}")
    text = out.read_text(encoding="utf-8")
    run = figures.from_google_benchmark(text, known)
    if missing := sorted(names - run.cases.keys()):
        raise ReportError(f"these cases brought no figures: {', '.join(missing)}")
    return text, run


def print_table(rows):
    """Prints columns that are as wide as what they hold."""
    widths = [max(map(len, column)) for column in zip(*rows)]
    for row in rows:
        print("  ".join(text.ljust(width) for text, width in zip(row, widths)).rstrip())


def print_cases(run):
    """What each case costs."""
    rows = [("CASE", "MEDIAN", "NOISE", "COUNTERS")]
    for name, case in sorted(run.cases.items()):
        if case.error:
            rows.append((name, "-", "-", case.error))
            continue
        counters = ", ".join(
            f"{key} {words.number(figures.quartiles(values)[1])}"
            for key, values in case.counters.items()
        )
        rows.append((name, words.duration(case.median), words.percent(case.noise), counters))
    print_table(rows)


def print_goals(judged):
    """Which goals are reached."""
    rows = [("ROW", "WHAT", "GOAL", "MEASURED", "MIDDLE HALF", "RESULT")]
    for row, judgements in judged:
        for each in judgements:
            rows.append((
                str(row.number), each.goal.what, goal_text(each.goal), words.measured(each),
                words.middle_half(each), words.result(each),
            ))
    if len(rows) > 1:
        print()
        print_table(rows)


def write_page(results, rows, curves):
    """Writes the page and its results; the texts are made before any file is touched."""
    text = page.page_text(template(), results, rows, curves)
    (DOCS / "performance").mkdir(exist_ok=True)
    (DOCS / "performance/results.json").write_text(results, encoding="utf-8")
    (DOCS / "performance.md").write_text(text, encoding="utf-8")


def template():
    return (Path(__file__).parent / "performance.md.in").read_text(encoding="utf-8")


def draw_curves(results, curves):
    """Draws all curves anew; those that no area names any more go."""
    from curves import draw  # here, because a run without a page needs no matplotlib

    for old in (DOCS / "performance").glob("*.svg"):
        old.unlink()
    run = page.read_results(results)[2]
    for curve in curves:
        lines, _ = curve_lines(curve, run)
        if lines:
            draw(curve, lines, DOCS / f"performance/{curve.file}.svg")


def run_for_docs(options, rows, curves):
    """A full run, and the page of it."""
    text, run = measure(options)
    figures.require_repetitions(run, LEAST_REPETITIONS)
    settings = {
        "repetitions": options.repetitions, "minTime": options.min_time,
        "randomInterleaving": True, "cases": len(run.cases),
    }
    surroundings = machine.describe(text, BUILD, ROOT)
    results = page.results_text(surroundings, settings, rows, run)
    write_page(results, rows, curves)
    draw_curves(results, curves)
    judged = judge_rows(rows, page.read_results(results)[2])
    print_goals(judged)
    print(f"\n{words.counts([each for _, some in judged for each in some])}: docs/performance.md")


def page_again(rows, curves):
    """The page and its curves of the results that are there, without a run."""
    path = DOCS / "performance/results.json"
    if not path.exists():
        raise ReportError("there are no results to make the page of: scripts/bench measures them")
    results = page.results_again(path.read_text(encoding="utf-8"), rows)
    write_page(results, rows, curves)
    draw_curves(results, curves)


def main(arguments):
    options = parse(arguments)
    if options.repetitions < LEAST_REPETITIONS and not options.pattern:
        raise ReportError(f"the page wants {LEAST_REPETITIONS} repetitions or more")
    rows, curves = goals.read_all(ROOT)
    if options.page:
        page_again(rows, curves)
    elif options.pattern:
        _, run = measure(options)
        print_cases(run)
        print_goals(judge_rows(rows, run, only_what_ran=True))
    else:
        run_for_docs(options, rows, curves)


if __name__ == "__main__":
    try:
        main(sys.argv[1:])
    except ReportError as error:
        sys.exit(f"bench: {error}")
