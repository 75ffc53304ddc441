#!/usr/bin/env python3
"""A project outside of the tree finds the installed package with CMake, builds with it and runs."""

import os
import shutil
import unittest

from harness import HERE, PACKAGE, VERSION, Test, attempt, build, configure_command, copied
from harness import empty_folder, run

FINDER = """cmake_minimum_required(VERSION 3.25)
project(Finder LANGUAGES CXX)
find_package(VornicL3Shared {} REQUIRED)
message("found ${{VornicL3Shared_VERSION}} in ${{VornicL3Shared_DIR}}")
foreach(name IN ITEMS VornicL3Shared vpstate runtime)
    if(NOT TARGET Vornic::${{name}})
        message(FATAL_ERROR "no target Vornic::${{name}}")
    endif()
endforeach()
"""


def moved(name):
    """The package at another place, whose name is awkward."""
    target = empty_folder("moved") / name
    shutil.copytree(PACKAGE.prefix, target, symlinks=True, copy_function=os.link)
    return target


def find(*arguments):
    """Asks for the package; gives the exit code and what CMake prints, in one line."""
    project = empty_folder("finder")
    (project / "CMakeLists.txt").write_text(FINDER.format(" ".join(arguments)), encoding="utf-8")
    code, printed = attempt(*configure_command(
        project, project / "build", f"-DCMAKE_PREFIX_PATH={PACKAGE.prefix}"))
    return code, " ".join(printed.split())


class Built(Test):
    """Programs that are built with the package, at its own place and at another one."""

    def check(self, folder):
        """The programs print what they should."""
        self.expect_file(HERE / "project/consumer.expected", run(folder / "consumer"))
        self.expect_file(HERE / "project/runtime_alone.expected", run(folder / "runtime_alone"))
        self.expect_file(HERE / "project/vpstate_alone.expected", run(folder / "vpstate_alone"))

    def test_every_unit_and_each_floor_alone(self):
        project = copied("project")
        build(project, project / "build", PACKAGE.prefix)
        self.check(project / "build")

    def test_the_prefix_can_be_moved(self):
        project = copied("project")
        build(project, project / "build", moved("another place"))
        self.check(project / "build")


class Found(Test):
    """What find_package accepts and refuses."""

    def test_versions(self):
        major, minor, patch = map(int, VERSION.split("."))
        for fits in (f"{major}", f"{major}.{minor}", VERSION, f"{VERSION} EXACT"):
            code, printed = find(*fits.split())
            self.assertEqual(code, 0, printed)
            self.assertIn(f"found {VERSION} in {PACKAGE.folder}/cmake/VornicL3Shared", printed)
        for fails in (f"{major + 1}.0", f"{major}.{minor + 1}", f"{major}.{minor}.{patch + 1}",
                      f"{major}.{minor + 1} EXACT"):
            code, printed = find(*fails.split())
            self.assertNotEqual(code, 0, fails)
            self.assertIn(f"VornicL3SharedConfig.cmake, version: {VERSION}", printed)

    def test_components(self):
        for component in ("runtime", "vpstate", "VornicL3Shared", "runtime vpstate"):
            code, printed = find("1.0", "COMPONENTS", *component.split())
            self.assertEqual(code, 0, printed)
        code, printed = find("1.0", "COMPONENTS", "runtime", "agents")
        self.assertNotEqual(code, 0)
        self.assertIn("no component agents,", printed)
        self.assertEqual(find("1.0", "OPTIONAL_COMPONENTS", "agents")[0], 0)


if __name__ == "__main__":
    unittest.main()
