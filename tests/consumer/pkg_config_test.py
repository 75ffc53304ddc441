#!/usr/bin/env python3
"""The same program, built by the compilers alone with what pkg-config says."""

import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import CLANG, COMPILER, HERE, PACKAGE, VERSION, WARNINGS, Test, attempt, copied, run

PATH = {"PKG_CONFIG_PATH": str(PACKAGE.folder / "pkgconfig")}
SOURCES = ("main", "allocation", "allocation_tracking", "multicast", "network_group", "own_types",
           "group_service")


def pkg_config(*arguments):
    """What pkg-config prints, word by word."""
    return run("pkg-config", *arguments, "VornicL3Shared", **PATH).split()


def compile_program(compiler):
    """Builds the program in one go without CMake; gives its path."""
    folder = copied("project")
    flags = ["-std=c++20", "-fvisibility=hidden", "-fvisibility-inlines-hidden", *WARNINGS]

    def compile_one(source):
        target = folder / f"{source}.o"
        run(compiler, *flags, *pkg_config("--cflags"), "-c", folder / f"{source}.cpp", "-o", target)
        return target

    with ThreadPoolExecutor(2) as pool:
        objects = list(pool.map(compile_one, SOURCES))
    run(compiler, *objects, *pkg_config("--libs"), "-o", folder / "consumer")
    return folder / "consumer"


class PkgConfig(Test):
    """The package as pkg-config knows it."""

    def check(self, compiler):
        program = compile_program(compiler)
        code, printed = attempt(program)
        self.assertNotEqual(code, 0, "the program runs without being told where the libraries are")
        self.assertIn("libVornicL3Shared.so.1", printed)
        printed = run(program, LD_LIBRARY_PATH=str(PACKAGE.folder))
        self.expect_file(HERE / "project/consumer.expected", printed)

    def test_the_compiler_that_built_the_libraries(self):
        self.check(COMPILER)

    def test_the_other_compiler(self):
        self.check(CLANG)

    def test_versions(self):
        self.assertEqual(pkg_config("--modversion"), [VERSION])
        major = VERSION.split(".", maxsplit=1)[0]
        for condition, code in ((f"--atleast-version={major}", 0),
                                (f"--atleast-version={int(major) + 1}", 1)):
            self.assertEqual(attempt("pkg-config", condition, "VornicL3Shared", **PATH)[0], code)


if __name__ == "__main__":
    unittest.main()
