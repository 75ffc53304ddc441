#!/usr/bin/env python3
"""Counts the instructions of the operations that users wait for, and compares them with figures.json.

usage: check_instructions.py [--update] PREFIX SCRATCH COMPILER

Takes the package that is installed below PREFIX and builds the program of project/ with it in the
folder SCRATCH. Exits with 1 when a count differs from its figure by more than the tolerance; with
--update it writes the counts down as the new figures.
"""

import os
import subprocess
import sys
from pathlib import Path

import figures

HERE = Path(__file__).resolve().parent
FIGURES = HERE / "figures.json"

# Functions of the C library that have a form for each processor are all taken in their plain form,
# and addresses are the same in every run: a count does not depend on the machine.
PLAIN_PROCESSOR = "glibc.cpu.hwcaps=" + ",".join(
    f"-{name}" for name in (
        "AVX2", "AVX", "AVX512F", "AVX512VL", "AVX512BW", "BMI1", "BMI2", "ERMS", "FSRM", "MOVBE",
        "RTM", "SSE4_1", "SSE4_2", "SSSE3", "XSAVEC", "XSAVE", "AVX_Fast_Unaligned_Load",
        "Prefer_No_VZEROUPPER",
    )
)
ENVIRONMENT = {"PATH": os.environ["PATH"], "LC_ALL": "C", "GLIBC_TUNABLES": PLAIN_PROCESSOR}

# One command of vpagent is the difference of a long and a short script, by the commands in between.
ROUNDS = (10, 60)
PORTS = 100


def run(*command):
    """Runs a program that must succeed; gives what it prints."""
    result = subprocess.run([str(part) for part in command], env=ENVIRONMENT, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    if result.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: {result.returncode}\n{result.stdout}")
    return result.stdout


def build(prefix, scratch, compiler):
    """Builds the program of project/; gives its path."""
    folder = scratch / "build"
    run("cmake", "-S", HERE / "project", "-B", folder, "-G", "Ninja",
        f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
        "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF", f"-DCMAKE_PREFIX_PATH={prefix}")
    run("cmake", "--build", folder)
    return folder / "operations"


def instructions(scratch, *command, options=()):
    """How many instructions a program executes, or the part of it that it has counted."""
    out = scratch / "callgrind.out"
    out.unlink(missing_ok=True)
    run("valgrind", "--tool=callgrind", f"--callgrind-out-file={out}", *options, *command)
    return figures.total(out.read_text(encoding="utf-8"))


def script(rounds):
    """A client that requests its virtual ports and withdraws them, round by round."""
    lines = ["start table-size=1024", "client add bgp"]
    for _ in range(rounds):
        for word in ("request", "withdraw"):
            lines += [f"{word} bgp edge Ethernet1/1:{vlan}" for vlan in range(1, PORTS + 1)]
    return "".join(f"{line}\n" for line in lines)


def agent_command(prefix, scratch):
    """The instructions of one command of the installed vpagent."""
    totals = []
    for rounds in ROUNDS:
        path = scratch / f"{rounds}.vp"
        path.write_text(script(rounds), encoding="utf-8")
        totals.append(instructions(scratch, prefix / "bin/vpagent", "--json", path))
    return (totals[1] - totals[0]) / ((ROUNDS[1] - ROUNDS[0]) * 2 * PORTS)


def measure(prefix, scratch, compiler):
    """The instructions of each operation, by its name."""
    scratch.mkdir(parents=True, exist_ok=True)
    program = build(prefix, scratch, compiler)
    counts = {}
    for line in run(program).splitlines():
        name, count = line.split()
        counted = instructions(scratch, program, name, options=["--instr-atstart=no"])
        counts[name] = counted / int(count)
    counts["agent.command"] = agent_command(prefix, scratch)
    return counts


def main():
    arguments = [each for each in sys.argv[1:] if each != "--update"]
    if len(arguments) != 3:
        sys.exit(__doc__)
    prefix, scratch = (Path(each).resolve() for each in arguments[:2])
    former = figures.load(FIGURES.read_text(encoding="utf-8")) if FIGURES.exists() else {}
    counts = measure(prefix, scratch, arguments[2])
    print(figures.table(former, counts))
    if "--update" in sys.argv:
        FIGURES.write_text(figures.dump(counts), encoding="utf-8")
    elif any(figures.findings(former, counts).values()):
        sys.exit(1)


if __name__ == "__main__":
    main()
