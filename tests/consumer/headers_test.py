#!/usr/bin/env python3
"""The installed headers: which they are, and that each compiles alone, and twice."""

import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import CLANG, COMPILER, HERE, PACKAGE, WARNINGS, Test, attempt, empty_folder
from installed import lines

FLAGS = ("-fsyntax-only", "-std=c++20", "-fvisibility=hidden", *WARNINGS)


def refused(compiler, include, headers):
    """Compiles each header twice in a unit that holds nothing else; gives what is said of those
    that do not compile, by header."""
    folder = empty_folder("units")

    def compile_one(header):
        unit = folder / f"{header.replace('/', '_')}.cpp"
        unit.write_text(f'#include "{header}"\n' * 2, encoding="utf-8")
        code, printed = attempt(compiler, *FLAGS, f"-I{include}", unit)
        return header, code, printed

    with ThreadPoolExecutor(2) as pool:
        results = list(pool.map(compile_one, headers))
    return {header: printed for header, code, printed in results if code != 0}


class Headers(Test):
    """What is below include/vornic."""

    def test_the_list_of_headers(self):
        self.expect_file(HERE / "abi/headers", lines(PACKAGE.headers()))

    def test_each_is_self_contained_with_the_one_compiler(self):
        self.assertEqual(refused(COMPILER, PACKAGE.include, PACKAGE.headers()), {})

    def test_each_is_self_contained_with_the_other_compiler(self):
        self.assertEqual(refused(CLANG, PACKAGE.include, PACKAGE.headers()), {})

    def test_a_header_that_is_not_is_found(self):
        folder = empty_folder("faulty")
        faults = {
            "incomplete.h": "#pragma once\nstd::string text();\n",
            "unguarded.h": "struct Twice {};\n",
            "careless.h": "#pragma once\ninline int half(long n) { return n / 2; }\n",
        }
        for name, text in faults.items():
            (folder / name).write_text(text, encoding="utf-8")
        for compiler in (COMPILER, CLANG):
            self.assertEqual(set(refused(compiler, folder, faults)), set(faults))


if __name__ == "__main__":
    unittest.main()
