#!/usr/bin/env python3
"""What the installed libraries show to the dynamic linker."""

import unittest

from harness import COMPILER, HERE, PACKAGE, Test, empty_folder, run
from installed import LIBRARIES, dynamic, exported, foreign_symbols, stack_flags, strong_symbols

SYSTEM = {"ld-linux-x86-64.so.2", "libc.so.6", "libgcc_s.so.1", "libm.so.6", "libstdc++.so.6"}

# What the tests look for, all in one library.
FAULTY = """
#include <string>
namespace Qor { int good() { return 1; } template <class T> T twice(T t) { return t + t; }
template int twice(int); }
namespace Foreign { int strong() { return 2; } inline int weak() { static int n; return ++n; } }
int (*used)() = &Foreign::weak;
template class std::basic_string<char, std::char_traits<char>, std::allocator<char>>;
asm(".text\\n.globl relocated\\nrelocated: .quad used\\n");
"""


class Symbols(Test):
    """The exported symbols."""

    def test_the_strong_ones_are_those_of_the_list(self):
        for name in LIBRARIES:
            with self.subTest(name):
                self.expect_file(HERE / f"abi/{name}.symbols",
                                 strong_symbols(PACKAGE.library(name)))

    def test_all_are_of_the_projects_namespaces(self):
        for name in LIBRARIES:
            with self.subTest(name):
                self.assertEqual(foreign_symbols(PACKAGE.library(name)), [])


class Linking(Test):
    """What the libraries ask of the dynamic linker."""

    def test_names_and_paths(self):
        own = {f"{name}.so.1" for name in LIBRARIES}
        for name in LIBRARIES:
            with self.subTest(name):
                entries = dynamic(PACKAGE.library(name))
                self.assertEqual(entries["SONAME"], [f"{name}.so.1"])
                self.assertEqual(entries["RUNPATH"], ["$ORIGIN"])
                self.assertNotIn("RPATH", entries)
                self.assertEqual(set(entries["NEEDED"]) - SYSTEM - own, set())

    def test_the_floors_need_those_below_only(self):
        needed = {name: set(dynamic(PACKAGE.library(name))["NEEDED"]) - SYSTEM
                  for name in LIBRARIES}
        runtime, vpstate = "libvornic_runtime.so.1", "libvornic_vpstate.so.1"
        self.assertEqual(needed, {
            "libvornic_runtime": set(),
            "libvornic_vpstate": {runtime},
            "libVornicL3Shared": {runtime, vpstate},
        })

    def test_they_stay_once_they_are_loaded(self):
        for name in LIBRARIES:
            with self.subTest(name):
                self.assertIn("NODELETE", dynamic(PACKAGE.library(name))["FLAGS_1"][0])

    def test_neither_code_is_changed_nor_the_stack_run(self):
        for name in LIBRARIES:
            with self.subTest(name):
                library = PACKAGE.library(name)
                self.assertNotIn("TEXTREL", dynamic(library))
                self.assertEqual(stack_flags(library), "RW")


class Faults(Test):
    """A library that has every fault."""

    def test_each_is_seen(self):
        folder = empty_folder("faulty")
        (folder / "faulty.cpp").write_text(FAULTY, encoding="utf-8")
        library = folder / "libfaulty.so"
        run(COMPILER, "-std=c++20", "-fPIC", "-shared", "-Wl,-z,execstack,-z,notext",
            folder / "faulty.cpp", "-o", library)
        foreign = foreign_symbols(library)
        for name in ("Foreign::strong()", "Foreign::weak()", "Foreign::weak()::n", "used",
                     "relocated"):
            self.assertIn(name, foreign)
        self.assertTrue(any("std::__cxx11::basic_string" in name for name in foreign))
        self.assertFalse(any("Qor::" in name for name in foreign))
        self.assertTrue(any("twice" in name for _, name in exported(library)))
        self.assertIn("T Qor::good()\n", strong_symbols(library))
        self.assertIn("TEXTREL", dynamic(library))
        self.assertNotIn("FLAGS_1", dynamic(library))
        self.assertNotIn("RUNPATH", dynamic(library))
        self.assertEqual(stack_flags(library), "RWE")


if __name__ == "__main__":
    unittest.main()
