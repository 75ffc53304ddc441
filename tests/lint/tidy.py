#!/usr/bin/env python3
"""Runs clang-tidy over all sources, several at a time, in the units that CMake made of them.

usage: tidy.py BUILD [--shipped | --deep | PATTERN]

BUILD was configured with the preset lint: every command there compiles a unit, which includes two dozen
sources. Headers are read once a unit, which takes a fifth of the time. A unit in which the names of two
sources clash is taken apart. --shipped leaves out what users do not get: tests, benchmarks and examples.
PATTERN chooses single sources by a regular expression; --deep takes single sources too and adds the
analyzer that walks through paths, which takes hours.
"""

import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys
from pathlib import Path

# Too slow for every change, and of units that include sources.
DEEP = "--checks="
NOT_DEEP = "--checks=-clang-analyzer-*"
OF_UNITS = NOT_DEEP + ",-bugprone-suspicious-include,-clang-diagnostic-shadow"
# Tests make copies on purpose, and nobody waits for them.
NOT_OF_TESTS = ",-performance-*"
CLASH = "clang-diagnostic-error"
NOT_SHIPPED = re.compile("/(tests|bench|examples)/")


def sources_of(unit):
    """The sources that a unit includes."""
    return re.findall(r'^#include "(.+)"$', unit.read_text(), re.MULTILINE)


def commands(build):
    """Units with their sources, and the compilation of each single source, as in its unit."""
    units, single = {}, []
    for entry in json.loads((build / "compile_commands.json").read_text()):
        file = entry["file"]
        if "verify_interface_header_sets" in file:
            continue
        if "/Unity/unity_" not in file:
            units[file] = [file]
            single.append(entry)
            continue
        units[file] = sources_of(Path(file))
        for source in units[file]:
            single.append({"directory": entry["directory"], "file": source,
                           "command": entry["command"].replace(file, source)})
    return units, single


def tidy(folder, checks, file):
    """What clang-tidy finds in a file; its standard error only counts what it left out."""
    if "/tests/" in file:
        checks += NOT_OF_TESTS
    command = ["clang-tidy", "-p", str(folder), "--quiet", checks, file]
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                          check=False)


def all_of(folder, checks, files):
    """Runs for all files, as many at a time as there are cores; gives each with its result."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        yield from zip(files, pool.map(lambda file: tidy(folder, checks, file), files))


def main():
    """Prints each finding; the exit status is 1 when there is any."""
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--deep", action="store_true")
    parser.add_argument("--shipped", action="store_true")
    parser.add_argument("pattern", nargs="?")
    options = parser.parse_args()
    units, single = commands(options.build)
    if options.shipped:
        units = {unit: sources for unit, sources in units.items()
                 if not any(map(NOT_SHIPPED.search, sources))}
    alone = options.build / "single"
    alone.mkdir(exist_ok=True)
    (alone / "compile_commands.json").write_text(json.dumps(single))

    found = False
    again = []
    if options.deep or options.pattern:
        again = sorted({entry["file"] for entry in single
                        if re.search(options.pattern or "", entry["file"])})
        if not again:
            sys.exit(f"tidy: no source matches {options.pattern}")
    else:
        for unit, result in all_of(options.build, OF_UNITS, sorted(units)):
            if CLASH in result.stdout and len(units[unit]) > 1:
                again += units[unit]
            elif result.returncode != 0:
                found = True
                print(result.stdout)
    for _, result in all_of(alone, DEEP if options.deep else NOT_DEEP, again):
        if result.returncode != 0:
            found = True
            print(result.stdout)
    sys.exit(found)


if __name__ == "__main__":
    main()
