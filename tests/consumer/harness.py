"""How the tests build and run what uses the package."""

import os
import shutil
import subprocess
import unittest
from pathlib import Path

from installed import Installed

HERE = Path(__file__).resolve().parent
SOURCE = Path(os.environ["VORNIC_SOURCE"])
VERSION = os.environ["VORNIC_VERSION"]
COMPILER = os.environ["VORNIC_COMPILER"]
CLANG = "clang++"
SCRATCH = Path(os.environ["VORNIC_SCRATCH"])
PACKAGE = Installed(os.environ["VORNIC_PREFIX"])

WARNINGS = (
    "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion",
    "-Wold-style-cast", "-Wnon-virtual-dtor", "-Woverloaded-virtual", "-Werror",
)

# What would lead a build or a program to other files than those that the test means.
MISLEADING = (
    "CMAKE_PREFIX_PATH", "CPATH", "CPLUS_INCLUDE_PATH", "CXXFLAGS", "LDFLAGS", "LD_LIBRARY_PATH",
    "LD_PRELOAD", "LIBRARY_PATH", "PKG_CONFIG_PATH", "VornicL3Shared_DIR", "VornicL3Shared_ROOT",
)


def attempt(*command, **environment):
    """Runs a program; gives its exit code and all that it prints."""
    inherited = {name: value for name, value in os.environ.items() if name not in MISLEADING}
    result = subprocess.run(
        [str(part) for part in command], env=inherited | environment, text=True, check=False,
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
    )
    return result.returncode, result.stdout


def run(*command, **environment):
    """Runs a program that must succeed; gives what it prints."""
    code, printed = attempt(*command, **environment)
    if code != 0:
        raise AssertionError(f"{' '.join(map(str, command))}: {code}\n{printed}")
    return printed


def empty_folder(name):
    """A new folder for a test's files."""
    folder = SCRATCH / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def copied(name):
    """A project of this folder, copied away from the tree."""
    folder = empty_folder(name)
    shutil.copytree(HERE / name, folder, dirs_exist_ok=True)
    return folder


def configure_command(project, build, *options):
    """How CMake is called for a project that knows the package only by the options."""
    return ("cmake", "-S", project, "-B", build, "-G", "Ninja", "--no-warn-unused-cli",
            f"-DCMAKE_CXX_COMPILER={COMPILER}", "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF", *options)


def build(project, folder, prefix, *targets):
    """Configures a project against the package below a prefix, and builds it."""
    run(*configure_command(project, folder, f"-DCMAKE_PREFIX_PATH={prefix}"))
    run("cmake", "--build", folder, *(("--target", *targets) if targets else ()))


class Test(unittest.TestCase):
    """Compares whole texts, and shows how they differ."""

    maxDiff = None

    def expect_file(self, path, text):
        """The text is what the file holds."""
        self.assertMultiLineEqual(path.read_text(encoding="utf-8"), text)
