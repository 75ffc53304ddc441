#!/usr/bin/env python3
"""Proves docs/extending.md: its diffs, applied to a copy of the tree, make a sixth kind that works.

usage: extending_test.py SOURCE WORK COMPILER [--accept]

SOURCE is the project, WORK a folder that may be kept for the next run, COMPILER a C++ compiler. The
output of vpagent is compared with sixth-kind.expected beside this file; --accept writes that file.
"""

import difflib
import filecmp
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
# What the libraries and vpagent are built of.
PARTS = ("CMakeLists.txt", "cmake", "packaging", "runtime", "vpstate", "VornicL3Shared", "agent")
SCREEN = 50
AFTER = "start table-size=11\nshow references\nclear-stale\ninspect references/routedVport\nverify\n"


def fail(text):
    """Ends the test."""
    sys.exit(f"extending_test: {text}")


def run(command, **options):
    """The output of a command; the test ends when it fails."""
    done = subprocess.run(command, capture_output=True, text=True, **options)
    if done.returncode != 0:
        output = (done.stdout + done.stderr)[-6000:]
        fail(f"{' '.join(map(str, command))} gave {done.returncode}:\n{output}")
    return done.stdout


def diffs(page):
    """The diff blocks of the page as one patch, which must be as long as the page says."""
    patch = "".join(re.findall(r"^```diff\n(.*?)^```$", page, re.DOTALL | re.MULTILINE))
    lines = len(re.findall(r"^[+-](?!\+\+ b/|-- a/)", patch, re.MULTILINE))
    said = re.search(r"the whole change, (\d+) lines", page)
    if not said or int(said[1]) != lines:
        fail(f"the page changes {lines} lines and says: {said and said[0]}")
    if not 0 < lines <= SCREEN:
        fail(f"the page changes {lines} lines; at most {SCREEN} fit on a screen")
    return patch


def copy_of(source, work):
    """Copies the tree, so that a file that is the same as in the copy of the last run stays."""
    fresh = work / "fresh"
    shutil.rmtree(fresh, ignore_errors=True)
    fresh.mkdir(parents=True)
    for part in PARTS:
        if (source / part).is_dir():
            shutil.copytree(source / part, fresh / part)
        else:
            shutil.copy(source / part, fresh / part)
    return fresh


def bring_over(fresh, tree):
    """Makes `tree` equal to `fresh` and touches only what differs."""
    new = {path.relative_to(fresh) for path in fresh.rglob("*") if path.is_file()}
    for path in [path for path in tree.rglob("*") if path.is_file()]:
        if path.relative_to(tree) not in new:
            path.unlink()
    for name in new:
        kept = tree / name
        if not kept.is_file() or not filecmp.cmp(fresh / name, kept, shallow=False):
            kept.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(fresh / name, kept)
    shutil.rmtree(fresh)


def build(tree, target, compiler):
    """Builds the libraries and vpagent without tests and sanitizers; gives the program."""
    options = {
        "CMAKE_BUILD_TYPE": "Debug",
        "CMAKE_CXX_COMPILER": compiler,
        "CMAKE_CXX_FLAGS_DEBUG": "-O0",
        "CMAKE_UNITY_BUILD": "ON",
        "VORNIC_BUILD_AGENT": "ON",
        "VORNIC_BUILD_EXAMPLES": "OFF",
        "VORNIC_BUILD_TESTS": "OFF",
        "VORNIC_INSTALL": "OFF",
    }
    run(["cmake", "-G", "Ninja", "-S", tree, "-B", target]
        + [f"-D{name}={value}" for name, value in options.items()])
    run(["cmake", "--build", target, "--parallel", str(min(4, os.cpu_count() or 1))])
    return target / "agent" / "vpagent"


def output_of(program, work):
    """What two programs print that use one state file one after the other, and the kind's help."""
    state = work / "state"
    for left in work.glob("state*"):
        left.unlink()
    script = HERE / "sixth-kind.vp"
    first = run([program, "--json", "--trace", "all", "--state", state, script])
    second = run([program, "--state", state, "-"], input=AFTER)
    help_lines = run([program, "-"], input="help\n").splitlines(keepends=True)
    return first + second + "".join(line for line in help_lines if "routed" in line)


def main():
    """Runs the test."""
    arguments = [argument for argument in sys.argv[1:] if argument != "--accept"]
    if len(arguments) != 3:
        sys.exit(__doc__)
    source, work, compiler = Path(arguments[0]), Path(arguments[1]), arguments[2]
    patch = diffs((source / "docs" / "extending.md").read_text(encoding="utf-8"))

    fresh = copy_of(source, work)
    run(["patch", "-p1", "-F0", "--no-backup-if-mismatch"], cwd=fresh, input=patch)
    bring_over(fresh, work / "tree")
    output = output_of(build(work / "tree", work / "build", compiler), work)

    expected = HERE / "sixth-kind.expected"
    if "--accept" in sys.argv:
        expected.write_text(output, encoding="utf-8")
    before = expected.read_text(encoding="utf-8").splitlines()
    if difference := list(difflib.unified_diff(before, output.splitlines(), "expected", "output",
                                               n=2, lineterm="")):
        fail("the output is another one:\n" + "\n".join(difference))


if __name__ == "__main__":
    main()
