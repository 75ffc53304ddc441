#!/usr/bin/env python3
"""Runs an example and compares all that it prints.

usage: run_example.py PROGRAM EXPECTED

Exits with 0 when the program exits with 0 and its standard output is the contents of the file
EXPECTED, to the byte; else with 1, and shows the difference.
"""

import difflib
import subprocess
import sys
from pathlib import Path


def difference(expected, printed):
    """The lines that differ, in the form of diff -u."""
    return "".join(
        difflib.unified_diff(
            expected.splitlines(keepends=True),
            printed.splitlines(keepends=True),
            "expected",
            "printed",
        )
    )


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    expected = Path(sys.argv[2]).read_bytes()
    run = subprocess.run([sys.argv[1]], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=False)
    if run.stdout != expected:
        print(difference(expected.decode(), run.stdout.decode(errors="backslashreplace")))
    if run.returncode != 0:
        print(f"exit status {run.returncode}")
    sys.exit(0 if run.returncode == 0 and run.stdout == expected else 1)


if __name__ == "__main__":
    main()
