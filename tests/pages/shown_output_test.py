#!/usr/bin/env python3
"""Runs what the pages show: each `console` block is tried, and must print what it shows.

usage: shown_output_test.py SOURCE VPAGENT

A block is a sequence of commands, each behind `$ ` with its further lines behind `> `, and below
each what it prints. A line `...` stands for any lines. Times and the lines of call sites are not
compared. A block runs in a folder of its own, which holds the examples.
"""

import difflib
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"^```console\n(.*?)^```$", re.DOTALL | re.MULTILINE)
TIME = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d+Z")
CALL_SITE = re.compile(r"(VornicL3VpIndexAllocator):\d+ +")


def pages(source):
    """The pages that may show runs."""
    return [source / "README.md", source / "CONTRIBUTING.md", *sorted((source / "docs").glob("*.md"))]


def steps(block):
    """The commands of a block, each with the lines that it is shown to print."""
    found = []
    for line in block.splitlines():
        if line.startswith("$ "):
            found.append((line[2:], []))
        elif line.startswith("> ") and found and not found[-1][1]:
            found[-1] = (found[-1][0] + "\n" + line[2:], [])
        else:
            found[-1][1].append(line)
    return found


def compared(line):
    """A line without what differs from run to run."""
    line = TIME.sub("TIME", line.rstrip())
    return CALL_SITE.sub(r"\1:LINE ", line)


def agrees(shown, printed):
    """Whether a run printed what is shown."""
    pattern = "".join(
        "(?:.*\n)*" if line == "..." else re.escape(compared(line)) + "\n" for line in shown
    )
    return re.fullmatch(pattern, "".join(compared(line) + "\n" for line in printed)) is not None


def check(page, block, source, program):
    """The first difference between a block and its run, as text; None when there is none."""
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "examples").symlink_to(source / "examples")
        path = f"{program.parent}{os.pathsep}{os.environ['PATH']}"
        for command, shown in steps(block):
            run = subprocess.run(["bash", "-c", command], cwd=folder, text=True, check=False,
                                 env={**os.environ, "PATH": path}, stdout=subprocess.PIPE)
            if not agrees(shown, run.stdout.splitlines()):
                difference = difflib.unified_diff(shown, run.stdout.splitlines(), "shown",
                                                  "printed", lineterm="")
                return f"{page.name}: $ {command}\n" + "\n".join(difference)
    return None


def main():
    """Runs the test."""
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    source, program = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    blocks = [(page, block) for page in pages(source)
              for block in BLOCK.findall(page.read_text(encoding="utf-8"))]
    if not blocks:
        sys.exit("no page shows a run")
    wrong = [text for text in (check(*block, source, program) for block in blocks) if text]
    print("\n\n".join(wrong), end="")
    sys.exit(bool(wrong))


if __name__ == "__main__":
    main()
