#!/usr/bin/env python3
"""Looks at how the packaged libraries and program are hardened against a fault in memory."""

import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from debs import LIBRARY, PROGRAM, deb, output


class Hardening(unittest.TestCase):
    """What the compiler, the linker and the C library can guard, they guard."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        for package in (LIBRARY, PROGRAM):
            subprocess.run(["dpkg-deb", "-x", deb(package), cls.folder.name], check=True)
        root = Path(cls.folder.name)
        cls.program = root / "usr/bin/vpagent"
        cls.libraries = sorted(path for path in root.rglob("*.so.*") if not path.is_symlink())

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def each(self, option):
        """The path and what readelf says, of the program and of each library."""
        self.assertEqual(len(self.libraries), 3)
        return [(path, output("readelf", "--wide", option, path))
                for path in (self.program, *self.libraries)]

    def test_each_is_loaded_at_an_address_that_nobody_knows(self):
        for path, header in self.each("--file-header"):
            self.assertRegex(header, r"Type: +DYN ", path)

    def test_no_memory_is_both_written_and_executed(self):
        for path, segments in self.each("--program-headers"):
            self.assertRegex(segments, r"GNU_STACK .* RW +0x", path)
            self.assertIsNone(re.search(r"LOAD .* RWE ", segments), path)

    def test_the_tables_of_the_linker_are_read_only(self):
        for path, segments in self.each("--program-headers"):
            self.assertIn("GNU_RELRO", segments, path)
        for path, entries in self.each("--dynamic"):
            self.assertRegex(entries, r"\(FLAGS_1\).*\bNOW\b", path)

    def test_a_damaged_frame_of_the_stack_ends_the_process(self):
        for path, symbols in self.each("--dyn-syms"):
            self.assertIn("__stack_chk_fail", symbols, path)

    def test_an_index_beyond_the_end_of_a_container_ends_the_process(self):
        for path, symbols in self.each("--dyn-syms"):
            self.assertIn("_ZSt21__glibcxx_assert_fail", symbols, path)

    def test_the_c_library_checks_the_sizes_that_it_is_given(self):
        self.assertRegex(output("readelf", "--wide", "--dyn-syms", self.program), r"__\w+_chk@")


if __name__ == "__main__":
    unittest.main()
