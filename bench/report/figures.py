"""The figures of one run: cases by name, each with what its repetitions took."""

import json
import re
import statistics
from dataclasses import dataclass, field

from errors import NotMeasured, ReportError

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
# What Google Benchmark adds to the name of a case.
ADDED = re.compile(
    r"real_time|manual_time|process_time"
    r"|(iterations|repeats|threads|min_time|min_warmup_time):[\d.]+"
)
WALL_CLOCK = {"real_time", "manual_time"}
# What Google Benchmark says of each repetition; every other number is a counter of the case.
OWN_KEYS = {
    "family_index", "per_family_instance_index", "repetitions", "repetition_index", "threads",
    "iterations", "real_time", "cpu_time", "items_per_second", "bytes_per_second",
}
# More digits than any repetition repeats, and few enough to read.
DIGITS = 5


def rounded(value):
    """The value as it is kept in the file of results."""
    return float(f"{value:.{DIGITS}g}")


def quartiles(values):
    """The bounds of the middle half of the values, and their median between them."""
    if len(values) == 1:
        return values[0], values[0], values[0]
    return tuple(statistics.quantiles(values, n=4, method="inclusive"))


@dataclass
class Case:
    """What the repetitions of one benchmark took: nanoseconds an item, or an iteration."""

    times: list = field(default_factory=list)
    per_item: bool = False
    counters: dict = field(default_factory=dict)
    error: str = ""

    @property
    def median(self):
        return statistics.median(self.times)

    @property
    def noise(self):
        """The middle half of the repetitions relative to their median."""
        low, median, high = quartiles(self.times)
        return (high - low) / median if median else 0.0

    @property
    def rates(self):
        """Items a second; none where the benchmark counts no items."""
        return [1e9 / time for time in self.times] if self.per_item else []


def who_of(name):
    """The middle part of `subject/who/size`."""
    return name.split("/")[1]


@dataclass
class Run:
    """The cases that ran, and the names of all cases that the program knows."""

    cases: dict
    names: set

    def case(self, name):
        """The case of that name, which must have run.

        A case that does not exist is a mistake of whoever names it, unless nothing at all is known
        of its `who`: then that is a library that was not found when the benchmarks were built. Of
        ours, nothing may be missing.
        """
        if name not in self.names:
            who = who_of(name)
            if who != "ours" and who not in {who_of(known) for known in self.names}:
                raise NotMeasured(f"{who} is not there")
            raise ReportError(f"there is no case {name}")
        if name not in self.cases:
            raise NotMeasured(f"{name} did not run")
        case = self.cases[name]
        if case.error and who_of(name) == "ours":
            raise ReportError(f"{name} failed: {case.error}")
        if case.error:
            raise NotMeasured(case.error)
        return case

    def has(self, names):
        """Whether all of these have run or are unknown; a filter leaves others out."""
        return not any(name in self.names and name not in self.cases for name in names)


def case_name(run_name):
    """A benchmark's name without what Google Benchmark adds, and whether its wall clock counts."""
    parts = run_name.split("/")
    name, added = parts[:3], parts[3:]
    if len(name) < 3 or not all(name) or not all(ADDED.fullmatch(part) for part in added):
        raise ReportError(f"the benchmark {run_name} is not named subject/who/size")
    return "/".join(name), not WALL_CLOCK.isdisjoint(added)


def case_names(listed):
    """The names of the cases in a list of Google Benchmark, which must differ."""
    names = set()
    for line in listed.split():
        name, _ = case_name(line)
        if name in names:
            raise ReportError(f"there are two cases {name}")
        names.add(name)
    return names


def add_repetition(case, entry, wall_clock):
    """Takes one repetition of a benchmark over into its case."""
    if entry.get("error_occurred"):
        case.error = entry.get("error_message") or "the benchmark failed"
        return
    case.per_item = "items_per_second" in entry
    if case.per_item:
        time = 1e9 / entry["items_per_second"]
    else:
        time = entry["real_time" if wall_clock else "cpu_time"] * NANOSECONDS[entry["time_unit"]]
    case.times.append(rounded(time))
    for key, value in entry.items():
        if key not in OWN_KEYS and isinstance(value, (int, float)) and not isinstance(value, bool):
            case.counters.setdefault(key, []).append(rounded(value))


def from_google_benchmark(text, names):
    """The figures of Google Benchmark's JSON, without its aggregates: those are made here."""
    cases = {}
    for entry in json.loads(text)["benchmarks"]:
        if entry["run_type"] != "iteration":
            continue
        name, wall_clock = case_name(entry["run_name"])
        add_repetition(cases.setdefault(name, Case()), entry, wall_clock)
    return Run(cases, names)


def to_results(run):
    """The cases as the file of results holds them."""
    results = {}
    for name, case in sorted(run.cases.items()):
        if case.error:
            results[name] = {"error": case.error}
            continue
        results[name] = {
            "median": rounded(case.median),
            "noise": round(case.noise, 4),
            "unit": "ns an item" if case.per_item else "ns an iteration",
            "repetitions": case.times,
            **({"counters": case.counters} if case.counters else {}),
        }
    return results


def from_results(results):
    """The run that the file of results tells of."""
    cases = {}
    for name, result in results.items():
        if "error" in result:
            cases[name] = Case(error=result["error"])
        else:
            per_item = result["unit"] == "ns an item"
            cases[name] = Case(result["repetitions"], per_item, result.get("counters", {}))
    return Run(cases, set(cases))


def require_repetitions(run, least):
    """Refuses figures of too few repetitions, and a run without figures."""
    if all(case.error for case in run.cases.values()):
        raise ReportError("no case brought a figure")
    for name, case in sorted(run.cases.items()):
        if not case.error and len(case.times) < least:
            raise ReportError(f"{name} ran {len(case.times)} times; the page wants {least}")
