#!/usr/bin/env python3
"""Looks into the Debian packages: their files, control fields and dependencies.

The files stand in expected/PACKAGE.files, one a line with its mode and, for a link, what it points
to. `contents_test.py --update`, in the environment that ctest sets, writes these lists anew.
"""

import gzip
import hashlib
import io
import os
import re
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

from debs import ARCHITECTURE, DEVELOPMENT, FOLDER, LIBRARY, MULTIARCH, PACKAGES, PROGRAM, VERSION
from debs import deb, output

EXPECTED = Path(__file__).with_name("expected")
MAINTAINER = "VornicL3Shared developers <vornicl3shared@example.invalid>"
OF_THIS_VERSION = f"{LIBRARY} (= {VERSION})"
EVERY_PROGRAM = {"libc6", "libgcc-s1", "libstdc++6"}


def unpacked(option, package):
    """The tar archive of a package: its files or what it says of them."""
    command = ["dpkg-deb", option, deb(package)]
    data = subprocess.run(command, capture_output=True, check=True).stdout
    return tarfile.open(fileobj=io.BytesIO(data))


def file_list(package):
    """All but the folders, in the form of expected/."""
    lines = []
    for member in unpacked("--fsys-tarfile", package):
        path = member.name.removeprefix(".").replace(MULTIARCH, "@MULTIARCH@")
        path = path.replace(f".so.{VERSION}", ".so.@VERSION@")
        if member.issym():
            target = member.linkname.replace(f".so.{VERSION}", ".so.@VERSION@")
            lines.append(f"link {path} -> {target}")
        elif not member.isdir():
            lines.append(f"{member.mode:04o} {path}")
    return sorted(lines, key=lambda line: line.split()[1])


def field(package, name):
    return output("dpkg-deb", "--field", deb(package), name).rstrip("\n")


def dependencies(package):
    return {each.strip() for each in field(package, "Depends").split(",")}


def names(depends):
    return {each.split()[0] for each in depends}


class Contents(unittest.TestCase):
    maxDiff = None

    def test_there_are_these_packages_and_no_other(self):
        self.assertEqual(sorted(FOLDER.glob("*.deb")), sorted(map(deb, PACKAGES)))

    def test_files(self):
        for package in PACKAGES:
            expected = (EXPECTED / f"{package}.files").read_text(encoding="utf-8").splitlines()
            self.assertEqual(file_list(package), expected, f"{package}; see {__file__} on --update")

    def test_all_belongs_to_root(self):
        for package in PACKAGES:
            for member in unpacked("--fsys-tarfile", package):
                self.assertEqual((member.uid, member.gid), (0, 0), member.name)
                if member.isdir():
                    self.assertEqual(member.mode, 0o755, member.name)

    def test_fields(self):
        sections = {LIBRARY: "libs", DEVELOPMENT: "libdevel", PROGRAM: "net"}
        for package in PACKAGES:
            expected = {
                "Package": package, "Version": VERSION, "Architecture": ARCHITECTURE,
                "Section": sections[package], "Priority": "optional", "Maintainer": MAINTAINER,
                "Source": "vornicl3shared",
            }
            self.assertEqual({name: field(package, name) for name in expected}, expected)
            self.assertRegex(field(package, "Installed-Size"), r"^[1-9][0-9]*$")

    def test_descriptions(self):
        for package in PACKAGES:
            summary, *lines = field(package, "Description").splitlines()
            self.assertRegex(summary, "^virtual port indices of a leaf switch, .{5,}$")
            self.assertGreater(len(lines), 4)
            for line in (summary, *lines):
                self.assertLess(len(line), 80, line)

    def test_dependencies(self):
        self.assertEqual(names(dependencies(LIBRARY)), EVERY_PROGRAM)
        self.assertEqual(dependencies(DEVELOPMENT), {OF_THIS_VERSION})
        program = dependencies(PROGRAM)
        self.assertIn(OF_THIS_VERSION, program)
        linked = EVERY_PROGRAM | {"libedit2", "libsqlite3-0"}
        self.assertEqual(names(program - {OF_THIS_VERSION}), linked)
        for each in (dependencies(LIBRARY) | program) - {OF_THIS_VERSION}:
            self.assertRegex(each, r"^\S+ \(>= \S+\)$")

    def test_control_files(self):
        always = {"control", "md5sums"}
        expected = {LIBRARY: always | {"shlibs", "triggers"}, DEVELOPMENT: always, PROGRAM: always}
        for package in PACKAGES:
            found = {Path(member.name).name for member in unpacked("--ctrl-tarfile", package)
                     if member.isfile()}
            self.assertEqual(found, expected[package], package)

    def test_the_linkers_cache_is_refreshed(self):
        triggers = output("dpkg-deb", "--info", deb(LIBRARY), "triggers")
        self.assertEqual(triggers, "activate-noawait ldconfig\n")

    def test_other_packages_learn_what_to_depend_on(self):
        shlibs = output("dpkg-deb", "--info", deb(LIBRARY), "shlibs").splitlines()
        libraries = ("libVornicL3Shared", "libvornic_runtime", "libvornic_vpstate")
        expected = [f"{library} 1 {LIBRARY} (>= {VERSION})" for library in libraries]
        self.assertEqual(sorted(shlibs), sorted(expected))

    def test_checksums(self):
        for package in PACKAGES:
            listed = output("dpkg-deb", "--info", deb(package), "md5sums").splitlines()
            files = unpacked("--fsys-tarfile", package)
            found = [
                f"{hashlib.md5(files.extractfile(member).read()).hexdigest()}  {member.name[2:]}"
                for member in files if member.isfile()
            ]
            self.assertEqual(sorted(listed), sorted(found))

    def test_the_changelog_is_of_this_version(self):
        for package in PACKAGES:
            files = unpacked("--fsys-tarfile", package)
            packed = files.extractfile(f"./usr/share/doc/{package}/changelog.gz").read()
            with tempfile.NamedTemporaryFile() as changelog:
                changelog.write(gzip.decompress(packed))
                changelog.flush()
                command = ("dpkg-parsechangelog", "-l", changelog.name, "-S")
                self.assertEqual(output(*command, "Version"), VERSION + "\n")
                self.assertEqual(output(*command, "Maintainer"), MAINTAINER + "\n")


class Binaries(unittest.TestCase):
    """The libraries and the program, as they are unpacked."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.root = Path(folder.name)
        for package in (LIBRARY, PROGRAM):
            output("dpkg-deb", "--extract", deb(package), cls.root)
        cls.libraries = cls.root / "usr/lib" / MULTIARCH
        shared = [path for path in cls.libraries.iterdir() if not path.is_symlink()]
        cls.binaries = [cls.root / "usr/bin/vpagent", *shared]

    def dynamic(self, path, tag):
        lines = output("readelf", "--dynamic", "--wide", path, env={**os.environ, "LC_ALL": "C"})
        return re.findall(rf"\({tag}\).*\[(.*)\]", lines)

    def test_there_are_four(self):
        self.assertEqual(len(self.binaries), 4)

    def test_libraries_are_looked_for_beside_nothing_but_the_package(self):
        for path in self.binaries:
            self.assertEqual(self.dynamic(path, "RPATH"), [], path)
            for run_path in self.dynamic(path, "RUNPATH"):
                where = run_path.replace("$ORIGIN", str(path.parent))
                self.assertEqual(os.path.normpath(where), str(self.libraries), path)

    def test_a_library_has_the_name_that_it_is_linked_by(self):
        for path in self.binaries[1:]:
            (name,) = self.dynamic(path, "SONAME")
            self.assertEqual(name, path.name.removesuffix(VERSION) + "1")
            self.assertEqual((self.libraries / name).resolve(), path.resolve())

    def test_they_are_stripped(self):
        for path in self.binaries:
            sections = output("readelf", "--sections", "--wide", path)
            self.assertNotIn(".symtab", sections, path)
            self.assertNotIn(".debug_info", sections, path)


def update():
    EXPECTED.mkdir(exist_ok=True)
    for package in PACKAGES:
        text = "".join(line + "\n" for line in file_list(package))
        (EXPECTED / f"{package}.files").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    if sys.argv[1:] == ["--update"]:
        update()
    else:
        unittest.main()
