#!/usr/bin/env python3
"""Programs that load the library while they run, and what is left when they close it."""

import unittest

from harness import HERE, PACKAGE, Test, build, copied, run
from installed import LIBRARIES, dynamic


class Loaded(Test):
    """Programs that are not linked to the library that allocates."""

    @classmethod
    def setUpClass(cls):
        project = copied("loaded")
        cls.folder = project / "build"
        build(project, cls.folder, PACKAGE.prefix)

    def linked(self, program):
        """The libraries of the package that a program is linked to."""
        needed = dynamic(self.folder / program).get("NEEDED", [])
        return [name for name in needed if name.startswith(LIBRARIES)]

    def test_a_host_that_has_the_records(self):
        self.assertNotIn("libVornicL3Shared.so.1", self.linked("host"))
        self.expect_file(HERE / "loaded/host.expected", run(self.folder / "host"))

    def test_a_program_that_has_nothing(self):
        self.assertEqual(self.linked("bare"), [])
        self.expect_file(HERE / "loaded/bare.expected", run(self.folder / "bare"))


if __name__ == "__main__":
    unittest.main()
