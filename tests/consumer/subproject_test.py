#!/usr/bin/env python3
"""Another project builds the libraries as a part of itself.

The build tree is kept between runs, and both ways lead to the same commands in it.
"""

import shutil
import unittest

from harness import HERE, SCRATCH, SOURCE, VERSION, Test, configure_command, empty_folder, run
from installed import LIBRARIES, Installed

# Third-party packages, and what finds them: none may be missed.
PACKAGES = ("CLI11", "GTest", "PkgConfig", "Python3", "SQLite3", "benchmark", "nlohmann_json")

TARGETS = """EXECUTABLE program
EXECUTABLE older
SHARED_LIBRARY vornic_runtime
SHARED_LIBRARY vornic_vpstate
SHARED_LIBRARY VornicL3Shared
"""


def files(folder):
    """All files below a folder."""
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


class Parent(Test):
    """The parent project in a build tree that stays."""

    build = SCRATCH / "build"

    def configure(self, *options):
        project = SCRATCH / "parent"
        shutil.rmtree(project, ignore_errors=True)
        shutil.copytree(HERE / "parent", project)
        disabled = (f"-DCMAKE_DISABLE_FIND_PACKAGE_{name}=ON" for name in PACKAGES)
        run(*configure_command(project, self.build, "--fresh", "-DCMAKE_CXX_FLAGS=-O0",
                               "-DCMAKE_UNITY_BUILD=ON", *disabled, *options))

    def install(self):
        """Installs the parent anew; gives the prefix."""
        prefix = empty_folder("prefix")
        run("cmake", "--install", self.build, "--prefix", prefix)
        return prefix

    def check(self, *way):
        self.configure(*way)
        self.expect_file(self.build / "targets.txt", TARGETS)
        run("cmake", "--build", self.build)
        self.assertEqual(run(self.build / "program"), "{vPort: 15, references: [bgp]}\n")
        listed = run("ctest", "--test-dir", self.build, "--show-only")
        self.assertIn("Total Tests: 1\n", listed)
        self.assertEqual(files(self.install()), ["bin/program"])

        self.configure("-DVORNIC_INSTALL=ON", *way)
        run("cmake", "--build", self.build)
        prefix = self.install()
        package = Installed(prefix)
        headers = (HERE / "abi/headers").read_text(encoding="utf-8").splitlines()
        self.assertEqual(package.headers(), headers)
        for name in LIBRARIES:
            self.assertTrue((package.folder / f"{name}.so.{VERSION}").is_file(), name)
        self.assertEqual(files(prefix / "bin"), ["program"])


class AddSubdirectory(Parent):
    """The sources stand beside those of the parent."""

    def test_the_libraries_and_nothing_else(self):
        self.check("-DPARENT_WAY=add_subdirectory", f"-DVORNIC_SOURCE={SOURCE}")


class FetchContent(Parent):
    """The parent would fetch the sources, and is told where they are."""

    def test_the_libraries_and_nothing_else(self):
        self.check("-DPARENT_WAY=fetch_content",
                   f"-DFETCHCONTENT_SOURCE_DIR_VORNICL3SHARED={SOURCE}")


if __name__ == "__main__":
    unittest.main()
