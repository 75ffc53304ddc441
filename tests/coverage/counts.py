"""What an export of llvm-cov says of each file: which lines ran, and which way its conditions went.

Instantiations of a template, and the copies of an inline function, count as one: a line or an
outcome of a condition is taken when any of them takes it. A template that nobody instantiates does
not count. A condition within a macro counts once for each place that uses the macro. What stands
behind a call that throws or ends the process counts as run, up to the next branch; conditions that
the compiler decides or has written itself, as for `= default`, do not count.
"""

from collections import Counter
from dataclasses import dataclass, field

# Kinds of regions, as the export numbers them. A region is a list: line and column of its beginning
# and of its end, how often it ran, its file, the file that it expands to, and its kind.
CODE, EXPANSION, SKIPPED = 0, 1, 2


@dataclass(frozen=True, order=True)
class Condition:
    """A condition that is no `&&` or `||` of others, where it stands.

    `place` is line, column, last line and last column in the file; where a macro holds the
    condition, those of the macro's name. `inner` is the file and place in the macro. Of
    several that have all that in common, as the conditions have that one macro hands to another,
    `nth` tells which one it is.
    """

    place: tuple
    inner: tuple = ()
    nth: int = 0


@dataclass
class File:
    """How often each line ran that can, and each condition was true and false."""

    lines: dict = field(default_factory=dict)
    conditions: dict = field(default_factory=dict)

    def outcomes(self):
        """Each outcome of a condition: the condition, which outcome, how often."""
        for condition, counts in sorted(self.conditions.items()):
            for outcome, count in zip((True, False), counts):
                yield condition, outcome, count


def read(export):
    """The files of an export, by the names that it has for them."""
    (data,) = export["data"]
    files = {}
    for function in data["functions"]:
        for name, line, count in lines(function):
            known = files.setdefault(name, File()).lines
            known[line] = known.get(line, 0) + count
        for name, condition, counts in conditions(function):
            known = files.setdefault(name, File()).conditions.setdefault(condition, [0, 0])
            known[:] = [one + other for one, other in zip(known, counts)]
    return files


def lines(function):
    """The lines of a function: the file, the line, how often it ran.

    A line runs as often as the part of it that runs most often. It consists of the innermost region
    that goes on from the lines above, and of those that begin on it.
    """
    by_file = {}
    for region in function["regions"]:
        by_file.setdefault(region[5], []).append(region)
    for file, regions in by_file.items():
        for line in range(min(r[0] for r in regions), max(r[2] for r in regions) + 1):
            parts = [r[4] for r in regions if r[0] == line and r[7] in (CODE, EXPANSION)]
            above = innermost(regions, (line, 0), (line, 1))
            if above and above[7] != SKIPPED:
                parts.append(above[4])
            if parts:
                yield function["filenames"][file], line, max(parts)


def innermost(regions, start, end):
    """The innermost of the regions around a place; None when there is none."""
    around = [r for r in regions if tuple(r[:2]) <= start and end <= tuple(r[2:4])]
    return max(around, key=lambda r: (r[:2], [-part for part in r[2:4]]), default=None)


def conditions(function):
    """The conditions of a function: the file, the condition, how often it was true and false."""
    expansions = {region[6]: region for region in function["regions"] if region[7] == EXPANSION}
    seen = Counter()
    for branch in function["branches"]:
        place, counts, within = tuple(branch[:4]), branch[4:6], branch[6]
        if place == tuple(function["regions"][0][:4]):
            continue  # the compiler has written the function, as for `= default`
        if counts == [0, 0] and runs(function, place, within):
            continue  # the compiler knows the outcome, as of `if constexpr`
        inner = ()
        while within in expansions:
            inner = inner or (function["filenames"][within], *place)
            place, within = tuple(expansions[within][:4]), expansions[within][5]
        yield function["filenames"][within], Condition(place, inner, seen[place, inner]), counts
        seen[place, inner] += 1


def runs(function, place, within):
    """Whether the innermost code around a place has run."""
    code = [r for r in function["regions"] if r[7] == CODE and r[5] == within]
    around = innermost(code, place[:2], place[2:])
    return around is not None and around[4] > 0
