"""The scratch copies of the project: made, kept up to date, and built."""

import os
import shutil
import subprocess
from pathlib import Path

from catalogue import Malformed
from planting import planted

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
# What a build without the examples and the package reads.
FOLDERS = ("cmake", "runtime", "vpstate", "VornicL3Shared", "agent", "packaging", "tests")
# Where the choice of a fault comes in.
CHOICE = "runtime/pelo/Faults"
TESTS = "tests/CMakeLists.txt"
CONFIGURATION = (
    "-G", "Ninja", "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_BUILD_TYPE=Release",
    "-DCMAKE_CXX_FLAGS_RELEASE=-O1", "-DVORNIC_BUILD_EXAMPLES=OFF", "-DVORNIC_INSTALL=OFF",
    "--compile-no-warning-as-error",
)
# The planted libraries are optimised, so that the tests run fast; what tests them is not, so that it
# builds fast.
QUICK_BUILD = "    target_compile_options(${program} PRIVATE -O0)\n"
PROGRAMS = ("test_runtime", "test_vpstate", "test_VornicL3Shared", "test_agent", "vpagent")


class NotBuilt(Exception):
    """The scratch copy does not build; with the end of what the build said."""


def sources(root):
    """The files of the project that are copied, each with its bytes, by their path below it."""
    paths = [root / "CMakeLists.txt"]
    for folder in FOLDERS:
        paths += [path for path in (root / folder).rglob("*") if path.is_file()]
    return {
        str(path.relative_to(root)): path.read_bytes()
        for path in sorted(paths) if "__pycache__" not in path.parts
    }


def with_choice(files, faults, alone=None):
    """The files with faults planted, and with what chooses one of them."""
    files = dict(files)
    by_file = {}
    for fault in faults:
        by_file.setdefault(fault.file, []).append(fault)
    for file, its_faults in by_file.items():
        if file not in files:
            raise Malformed(f"{its_faults[0].name}: there is no {file}")
        here = alone if alone and alone.file == file else None
        files[file] = planted(files[file].decode(), its_faults, here).encode()
    for suffix in (".h", ".cpp"):
        files[CHOICE + suffix] = (HERE / f"Faults{suffix}").read_bytes()
    files[TESTS] = scratch_tests(files[TESTS].decode()).encode()
    return files


def scratch_tests(text):
    """How the tests are built in the scratch copy."""
    defaults = "vornic_target_defaults(${program})\n"
    places = 'VORNIC_SOURCE_DIR="${PROJECT_SOURCE_DIR}"'
    for wanted in (defaults, places):
        if text.count(wanted) != 1:
            raise Malformed(f"{TESTS}: {wanted} is expected once")
    # Tests that read the project's texts read those of the project.
    text = text.replace(places, f'VORNIC_SOURCE_DIR="{ROOT}"')
    return text.replace(defaults, defaults + QUICK_BUILD)


def write(folder, files):
    """Makes a folder hold these files; what does not change keeps its time."""
    for path in [each for each in folder.rglob("*") if each.is_file()]:
        if str(path.relative_to(folder)) not in files:
            path.unlink()
    for name, content in files.items():
        path = folder / name
        if path.is_file() and path.read_bytes() == content:
            continue
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        shutil.copymode(ROOT / name, path) if (ROOT / name).exists() else None


def run_quietly(command, environment):
    """Runs a step of the build."""
    done = subprocess.run(command, check=False, env=environment, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode:
        raise NotBuilt(f"{' '.join(map(str, command))}\n{done.stdout[-20000:]}")


def build(folder, files, jobs, programs):
    """Brings a scratch copy up to date and builds some of its programs."""
    environment = dict(os.environ, CCACHE_NOHASHDIR="1")
    environment.setdefault("CCACHE_BASEDIR", str(ROOT))
    source, binaries = folder / "source", folder / "build"
    write(source, files)
    choice = f"-DCMAKE_CXX_FLAGS=-include {source / CHOICE}.h"
    run_quietly(["cmake", "-S", source, "-B", binaries, *CONFIGURATION, choice], environment)
    run_quietly(["cmake", "--build", binaries, "-j", str(jobs), "--target", *programs],
                environment)


def program(folder, name):
    """Where a program of a scratch copy is."""
    return folder / "build" / ("agent" if name == "vpagent" else "tests") / name
