#!/usr/bin/env python3
"""Judges what the tests take of the libraries, by an export of llvm-cov and by left.json.

usage: check_coverage.py EXPORT     EXPORT: the file of `llvm-cov export`
       check_coverage.py --page     prints left.json as docs/reliability.md has it

Prints the figures of each folder and everything that no test takes, with its reason. Exits with 1
when a folder is below a floor, when something that no test takes is not named, and when something
is named that a test takes.
"""

import json
import os
import sys
from pathlib import Path

import counts
import left

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
FOLDERS = ("runtime", "vpstate", "VornicL3Shared")

# In percent, of each folder.
LINE_FLOOR = 99
OUTCOME_FLOOR = 95


def own_files(files, root):
    """The files below the folders, by their path from the root."""
    own = {}
    for name, file in files.items():
        path = Path(os.path.normpath(name))
        if path.is_relative_to(root) and path.relative_to(root).parts[0] in FOLDERS:
            own[path.relative_to(root).as_posix()] = file
    return own


def share(taken, there):
    """Percent, rounded down to hundredths: 100 means all."""
    return taken * 10000 // there / 100 if there else 100.0


def figures(files):
    """For each folder: lines run, lines, outcomes taken, outcomes."""
    totals = {folder: [0, 0, 0, 0] for folder in FOLDERS}
    for path, file in files.items():
        ran = [count > 0 for count in file.lines.values()]
        taken = [count > 0 for _, _, count in file.outcomes()]
        more = [sum(ran), len(ran), sum(taken), len(taken)]
        folder = path.split("/", maxsplit=1)[0]
        totals[folder] = [one + other for one, other in zip(totals[folder], more)]
    return totals


def below(totals):
    """What is below its floor."""
    for folder, (ran, there, taken, outcomes) in totals.items():
        if not there or not outcomes:
            yield f"{folder}/: nothing of it was counted"
        if share(ran, there) < LINE_FLOOR:
            yield f"{folder}/: {share(ran, there):.2f} % of the lines; at least {LINE_FLOOR} %"
        if share(taken, outcomes) < OUTCOME_FLOOR:
            yield (f"{folder}/: {share(taken, outcomes):.2f} % of the branches;"
                   f" at least {OUTCOME_FLOOR} %")


def table(totals):
    """The figures, a line for each folder."""
    yield f"{'':16}{'lines':>8}{'run':>8}{'':>11}{'branches':>10}{'taken':>8}"
    for folder, (ran, there, taken, outcomes) in totals.items():
        yield (f"{folder + '/':16}{there:8}{ran:8}{share(ran, there):9.2f} %"
               f"{outcomes:10}{taken:8}{share(taken, outcomes):9.2f} %")


def report(files, sources, reasons):
    """The lines to print, and what is wrong."""
    totals = figures(files)
    found = left.find(files, sources)
    unnamed, stale = left.judge(found, reasons)
    lines = [*table(totals)]
    for number, one in found:
        why = "NOT NAMED" if one in unnamed else reasons[one].why
        lines.append(f"{one.path}:{number}: {one.code}: never {left.words(one)}: {why}")
    wrong = [*below(totals)]
    for several, what in ((unnamed, "gives no reason"), (stale, "names it, and it is not so")):
        for one, count in sorted(several.items()):
            wrong.append(f"{one.path}: {one.code}: never {left.words(one)} ({count} x):"
                         f" tests/coverage/left.json {what}")
    return lines, wrong


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    reasons = left.parse((HERE / "left.json").read_text(encoding="utf-8"))
    if sys.argv[1] == "--page":
        print(left.page(reasons), end="")
        return
    export = json.loads(Path(sys.argv[1]).read_text(encoding="utf-8"))
    files = own_files(counts.read(export), ROOT)
    lines, wrong = report(files, left.Sources(ROOT), reasons)
    print("\n".join(lines))
    if wrong:
        print("\n".join(["", "WRONG:", *wrong]), file=sys.stderr)
        sys.exit(1)


if __name__ == "__main__":
    main()
