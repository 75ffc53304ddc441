#!/usr/bin/env python3
"""Tests check_style.py on made-up trees: a clean one, and one with each fault that it must find."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECK = Path(__file__).with_name("check_style.py")
ROOMS = (
    "runtime", "vpstate", "VornicL3Shared", "agent",
    "tests", "bench", "examples", "docs", "packaging",
)


def function(head, lines):
    """A function of that many lines, its head and its closing brace included."""
    indent = " " * (len(head) - len(head.lstrip()))
    return "\n".join([head + " {"] + [f"{indent}    work();"] * (lines - 2) + [indent + "}"]) + "\n"


class CheckStyle(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for room in ROOMS:
            self.write(f"{room}/README.md", "What it is.\n")
        self.write("runtime/pelo/Node.h", "#pragma once\n\nclass Node {};\n")
        self.write("vpstate/include/vpstate/Vp.h", '#pragma once\n\n#include "pelo/Node.h"\n')
        self.write("VornicL3Shared/allocator/Pool.h", '#pragma once\n\n#include "vpstate/Vp.h"\n')
        includes = '#include "allocator/Pool.h"\n\n#include <vector>\n'
        self.write("agent/Database.h", "#pragma once\n\n" + includes)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def run_check(self):
        command = [sys.executable, CHECK, self.root]
        return subprocess.run(command, capture_output=True, text=True, check=False)

    def expect(self, *lines):
        result = self.run_check()
        self.assertEqual(result.stdout.splitlines(), list(lines), result.stderr)
        self.assertEqual(result.returncode, 1)

    def test_clean_tree_passes(self):
        result = self.run_check()
        self.assertEqual(result.stdout, "13 files follow the style\n", result.stderr)
        self.assertEqual(result.returncode, 0)

    def test_upward_include_by_its_root(self):
        self.write("runtime/pelo/Up.cpp", '#include "vpstate/Vp.h"\n')
        self.expect(
            "runtime/pelo/Up.cpp:1: runtime/ includes vpstate/Vp.h of the higher floor vpstate/"
        )

    def test_upward_include_in_angle_brackets(self):
        self.write("vpstate/Up.cpp", "#include <allocator/Pool.h>\n")
        self.expect(
            "vpstate/Up.cpp:1: "
            "vpstate/ includes allocator/Pool.h of the higher floor VornicL3Shared/"
        )

    def test_upward_include_by_a_relative_path(self):
        self.write("VornicL3Shared/Up.cpp", '\n#include "../agent/Database.h"\n')
        self.expect(
            "VornicL3Shared/Up.cpp:2: "
            "VornicL3Shared/ includes ../agent/Database.h of the higher floor agent/"
        )

    def test_include_of_a_test_helper(self):
        self.write("tests/Helper.h", "#pragma once\n")
        self.write("agent/Use.cpp", '#include "../tests/Helper.h"\n')
        self.expect("agent/Use.cpp:1: agent/ includes ../tests/Helper.h, which is on no floor")

    def test_tests_include_every_floor(self):
        self.write("tests/Use.cpp", '#include "Database.h"\n#include "pelo/Node.h"\n')
        self.assertEqual(self.run_check().returncode, 0)

    def test_file_of_600_lines_is_the_limit(self):
        self.write("runtime/Long.cpp", "int x;\n" * 600)
        self.write("examples/long.vp", "show\n" * 601)
        self.write("runtime/TooLong.cpp", "int x;\n" * 601)
        self.expect("runtime/TooLong.cpp:1: a file of 601 lines; at most 600")

    def test_function_of_70_lines_is_the_limit(self):
        self.write("runtime/Long.cpp", function("void f()", 70))
        self.write("runtime/TooLong.cpp", "int x;\n\n" + function("void f()", 71))
        self.expect("runtime/TooLong.cpp:3: a function of 71 lines; at most 70")

    def test_long_member_function_in_its_class(self):
        member = function("    int f(int x) const", 80)
        self.write("runtime/TooLong.cpp", "class C {\npublic:\n" + member + "};\n")
        self.expect("runtime/TooLong.cpp:3: a function of 80 lines; at most 70")

    def test_long_function_whose_head_takes_lines(self):
        body = "    work();\n\n#if 1\n    // With a }\n#endif\n    if (x) {\n        work();\n    }\n"
        head = "Pool::Pool(int size,\n           int other)\n    : size_(size) {\n"
        self.write("runtime/TooLong.cpp", head + body * 10 + "}\n")
        self.expect("runtime/TooLong.cpp:1: a function of 84 lines; at most 70")

    def test_long_test_counts_as_a_function(self):
        self.write("tests/TooLong.cpp", function("TEST(Pool, IsFull)", 71))
        self.expect("tests/TooLong.cpp:1: a function of 71 lines; at most 70")

    def test_blocks_that_are_no_functions_may_be_long(self):
        blocks = {
            "Class": ("struct S {", "    int f(int x);", "};"),
            "Table": ("auto table = makeTable({", "    1,", "});"),
            "Text": ('auto f() {\n    return R"(', "text\n}", ')";\n}'),
            "Space": ("namespace {", "void f(int x);", "} // namespace"),
        }
        for name, (head, line, end) in blocks.items():
            self.write(f"runtime/{name}.cpp", f"{head}\n" + f"{line}\n" * 90 + f"{end}\n")
        self.assertEqual(self.run_check().stdout, "17 files follow the style\n")

    def test_header_without_guard(self):
        self.write("runtime/Bare.h", "int x;\n")
        self.expect("runtime/Bare.h:1: no #pragma once")

    def test_white_space(self):
        self.write("cmake/Tools.cmake", "set(a) \n\tset(b)\n")
        self.write("scripts/run", "true\t\n")
        self.expect(
            "cmake/Tools.cmake:1: white space at the end of the line",
            "cmake/Tools.cmake:2: a tab",
            "scripts/run:1: white space at the end of the line",
            "scripts/run:1: a tab",
        )

    def test_stub_words(self):
        words = ("TO" "DO", "FIX" "ME", "XX" "X")
        lines = [f"{word}: later\n" for word in words]
        self.write("README.md", "".join(lines) + "XX" "XX is no such word\n")
        self.expect(*(f"README.md:{line}: the stub word {word}" for line, word in enumerate(words, 1)))

    def test_missing_readme(self):
        for room in ROOMS:
            (self.root / room / "README.md").unlink()
        self.expect(*(f"{room}/README.md:1: is missing" for room in ROOMS))

    def test_readme_of_40_lines_is_the_limit(self):
        self.write("docs/README.md", "A line.\n" * 40)
        self.write("bench/README.md", "A line.\n" * 41)
        self.expect("bench/README.md:1: has 41 lines; at most 40")


if __name__ == "__main__":
    unittest.main()
