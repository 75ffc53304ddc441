#!/usr/bin/env python3
"""Installs, upgrades and removes the Debian packages with dpkg, in a folder of their own.

The folder has a dpkg database of its own, in which what the packages depend on is installed. The
machine's database, its log and its files are not touched, and no rights are needed.
"""

import os
import re
import stat
import subprocess
import tempfile
import unittest
from pathlib import Path

import vpagent
from debs import ARCHITECTURE, DEVELOPMENT, LIBRARY, MULTIARCH, PACKAGES, PROGRAM, VERSION
from debs import deb, output

# What a folder for packages has at least, for dpkg's sake.
DATABASE = ("var/lib/dpkg/info", "var/lib/dpkg/updates", "var/lib/dpkg/triggers")
# Files of others in folders that the packages share.
FOREIGN = (
    "usr/bin/other",
    f"usr/lib/{MULTIARCH}/libother.so.1",
    "usr/share/doc/vpagent-notes/README",
    "usr/share/man/man1/other.1.gz",
)


def seed():
    """Database entries: what the packages depend on is installed, in the versions that are here."""
    depends = "".join(output("dpkg-deb", "--field", deb(each), "Depends") for each in PACKAGES)
    entries = ""
    for name in sorted(set(re.findall(r"[a-z0-9.+-]+(?= \(>=)", depends))):
        package = f"{name}:{ARCHITECTURE}"
        version = output("dpkg-query", "--show", "--showformat=${Version}", package)
        entries += (
            f"Package: {name}\nStatus: install ok installed\nArchitecture: {ARCHITECTURE}\n"
            f"Version: {version}\nMaintainer: nobody <nobody@example.invalid>\n"
            "Description: installed on this machine\n\n"
        )
    return entries


def described(path):
    """What matters of a file, a link or a folder."""
    mode = path.lstat().st_mode
    what = path.readlink() if stat.S_ISLNK(mode) else path.read_bytes() if path.is_file() else ""
    return oct(mode), what


class Installed(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.root = self.folder / "root"
        for name in DATABASE:
            (self.root / name).mkdir(parents=True)
        for name in FOREIGN:
            (self.root / name).parent.mkdir(parents=True, exist_ok=True)
            (self.root / name).write_text("of another package\n", encoding="utf-8")
        database = self.root / "var/lib/dpkg"
        (database / "status").write_text(seed(), encoding="utf-8")
        for name in re.findall(r"^Package: (.*)$", seed(), re.MULTILINE):
            (database / f"info/{name}.list").touch()

    def dpkg(self, *arguments):
        """Runs dpkg on the folder; settings of this machine that leave files out do not count."""
        command = [
            "dpkg", f"--root={self.root}", f"--log={self.folder}/dpkg.log", "--path-include=/*",
            "--force-not-root", "--force-script-chrootless", "--force-bad-path",
            "--force-unsafe-io", *arguments,
        ]
        environment = {**os.environ, "LC_ALL": "C"}
        return subprocess.run(
            command, env=environment, capture_output=True, text=True, check=False
        )

    def expect(self, *arguments):
        result = self.dpkg(*arguments)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result

    def install(self, *packages):
        result = self.expect("--install", *(deb(package) for package in packages))
        self.assertEqual(result.stderr, "")

    def states(self):
        """The packages of the project that the database knows, and their states."""
        form = "${Package} ${db:Status-Status} ${Version}\n"
        database = f"--admindir={self.root}/var/lib/dpkg"
        lines = output("dpkg-query", database, "--show", f"--showformat={form}").splitlines()
        split = (line.split() for line in lines)
        return {name: f"{state} {version}" for name, state, version in split if name in PACKAGES}

    def tree(self):
        """All that stands in the folder, but for the database."""
        paths = (path for path in self.root.rglob("*") if "dpkg" not in path.parts)
        return {str(path.relative_to(self.root)): described(path) for path in paths}

    def traces_in_the_database(self):
        info = self.root / "var/lib/dpkg/info"
        return [path.name for path in info.iterdir() if path.name.startswith(PACKAGES)]

    def run_program(self, *arguments):
        libraries = self.root / "usr/lib" / MULTIARCH
        environment = {**os.environ, "LD_LIBRARY_PATH": str(libraries)}
        return output(self.root / "usr/bin/vpagent", *arguments, env=environment)

    def test_installs_runs_and_leaves_nothing_behind(self):
        before = self.tree()
        self.install(*PACKAGES)
        self.assertEqual(self.states(), {package: f"installed {VERSION}" for package in PACKAGES})
        self.assertEqual(self.dpkg("--verify", *PACKAGES).stdout, "")

        self.assertEqual(self.run_program("--version"), f"vpagent {VERSION}\n")
        example = self.root / "usr/share/doc/vpagent/examples/full-table.vp"
        printed = self.run_program(example)
        self.assertIn("verify: passed\n", printed)
        self.assertEqual(printed, vpagent.run(str(example)))

        self.expect("--remove", *PACKAGES)
        self.assertEqual(self.states(), {})
        self.assertEqual(self.tree(), before)
        self.assertEqual(self.traces_in_the_database(), [])

    def test_the_program_loads_the_libraries_of_its_package(self):
        self.install(LIBRARY, PROGRAM)
        libraries = str(self.root / "usr/lib" / MULTIARCH)
        environment = {**os.environ, "LD_LIBRARY_PATH": libraries}
        loaded = output("ldd", self.root / "usr/bin/vpagent", env=environment)
        found = re.findall(r"^\s+lib[vV]ornic\S+ => (\S+)/lib[^/]+ \(", loaded, re.MULTILINE)
        self.assertEqual([os.path.normpath(each) for each in found], [libraries] * 3)

    def test_each_example_runs(self):
        self.install(LIBRARY, PROGRAM)
        state = self.folder / "leaf.state"
        examples = self.root / "usr/share/doc/vpagent/examples"
        self.run_program("--state", state, examples / "before-a-crash.vp")
        self.run_program("--state", state, examples / "after-a-crash.vp")
        for example in sorted(examples.iterdir()):
            if "-a-crash" not in example.name:
                self.assertNotEqual(self.run_program(example), "", example)

    def test_installing_again_changes_nothing(self):
        self.install(*PACKAGES)
        installed = self.tree()
        self.install(*PACKAGES)
        self.assertEqual(self.tree(), installed)
        self.assertEqual(self.states(), {package: f"installed {VERSION}" for package in PACKAGES})

    def test_installing_again_repairs_files(self):
        self.install(*PACKAGES)
        installed = self.tree()
        (self.root / "usr/bin/vpagent").unlink()
        (self.root / "usr/share/bash-completion/completions/vpagent").write_text("damaged\n")
        self.assertNotEqual(self.dpkg("--verify", PROGRAM).stdout, "")
        self.install(PROGRAM)
        self.assertEqual(self.tree(), installed)

    def test_purging_leaves_nothing_behind(self):
        before = self.tree()
        self.install(*PACKAGES)
        self.expect("--purge", *PACKAGES)
        self.assertEqual((self.tree(), self.states()), (before, {}))
        self.assertEqual(self.traces_in_the_database(), [])

    def test_a_users_own_file_stays(self):
        self.install(LIBRARY, PROGRAM)
        own = self.root / "usr/share/doc/vpagent/examples/my-own.vp"
        own.write_text("echo mine\n", encoding="utf-8")
        self.dpkg("--purge", PROGRAM)
        self.assertEqual(own.read_text(encoding="utf-8"), "echo mine\n")

    def test_without_the_library_nothing_is_set_up(self):
        for package in (PROGRAM, DEVELOPMENT):
            result = self.dpkg("--install", deb(package))
            self.assertEqual(result.returncode, 1)
            self.assertIn(f"{package} depends on {LIBRARY} (= {VERSION})", result.stderr)
            self.assertEqual(self.states()[package], f"unpacked {VERSION}")

    def test_the_library_stays_while_it_is_needed(self):
        self.install(*PACKAGES)
        result = self.dpkg("--remove", LIBRARY)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.states()[LIBRARY], f"installed {VERSION}")
        self.run_program("--version")


if __name__ == "__main__":
    unittest.main()
