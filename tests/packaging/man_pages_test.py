#!/usr/bin/env python3
"""Holds the manual pages against the program: well formed, and with all that there is."""

import os
import re
import subprocess
import unittest
from pathlib import Path

import vpagent

PAGES = Path(os.environ["VORNIC_SOURCE"]) / "packaging/man"
# Wide enough that no line is broken.
WIDE = "-rLL=2000n"


def groff(page, *options):
    """The page as text, and what groff has to say about it."""
    result = subprocess.run(
        ["groff", "-mandoc", "-Tutf8", "-ww", "-P-cbou", *options, PAGES / page],
        capture_output=True, encoding="utf-8", check=False,
    )
    return result.stdout, result.stderr


class Page:
    """A page as text, by sections and by what stands at the left of their lists."""

    def __init__(self, name):
        self.sections = {}
        title = ""
        for line in groff(name, WIDE)[0].splitlines():
            if re.match(r"[A-Z]", line):
                title = line.strip()
            self.sections[title] = self.sections.get(title, "") + line + "\n"

    def items(self, *titles):
        """What the sections' lists describe: {item: text}. Other text begins in capitals."""
        item = re.compile(r"^ {5}([a-z-].*?)(?:\n| {2,})", re.MULTILINE)
        parts = [part for title in titles for part in item.split(self.sections[title])[1:]]
        return dict(zip(parts[::2], parts[1::2]))


def inner_items(text):
    """What the lists within a list's item describe, in order."""
    return re.findall(r"^ {13}([a-z-].*?)(?: {2,}.*)?$", text, re.MULTILINE)


COMMAND_SECTIONS = (
    "CLIENTS AND RECORDS", "THE STATE MACHINE", "LOOKING", "MULTICAST", "UNITS AND OTHER COMMANDS",
)


class ManPages(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.program = Page("vpagent.1")
        cls.language = Page("vpagent-commands.7")

    def described(self, beginning):
        """What the page says of the one command that begins so."""
        commands = self.language.items(*COMMAND_SECTIONS)
        (text,) = [text for usage, text in commands.items() if usage.startswith(beginning)]
        return text

    def test_groff_has_nothing_to_say(self):
        for page in ("vpagent.1", "vpagent-commands.7"):
            self.assertEqual(groff(page)[1], "", page)

    def test_each_option_is_described_and_no_other(self):
        described = list(self.program.items("DESCRIPTION"))
        expected = [f"{', '.join(names)} {value}".strip() for names, value in vpagent.options()]
        self.assertEqual(sorted(described), sorted(expected))

    def test_each_option_is_in_the_synopsis(self):
        synopsis = re.split(r"[^\w|-]+", self.program.sections["SYNOPSIS"].replace("| --", " --"))
        for names, value in vpagent.options():
            at = synopsis.index(names[-1])
            self.assertIn(value, ("", synopsis[at + 1]), names)

    def test_each_command_is_described_and_no_other(self):
        described = list(self.language.items(*COMMAND_SECTIONS))
        self.assertEqual(sorted(described), sorted(vpagent.usages()))

    def test_the_settings_of_start_are_described(self):
        self.assertEqual(inner_items(self.described("start ")), vpagent.choices("start"))

    def test_the_options_of_the_ring_are_described(self):
        self.assertEqual(inner_items(self.described("show ring ")), vpagent.choices("show ring"))

    def test_each_view_is_named(self):
        views = re.findall(r"WHAT: (.*)", vpagent.run(commands="help show"))[0].split(", ")
        named = re.findall(r"[a-z]+", self.described("show [WHAT").split("With")[0])
        self.assertEqual([view for view in views if view not in named], [])

    def test_each_root_is_described(self):
        described = ", ".join(self.language.items("PATHS")).split(", ")
        self.assertEqual(described, vpagent.choices("inspect"))

    def test_each_kind_is_described(self):
        self.assertEqual(inner_items(self.language.sections["ARGUMENTS"]), vpagent.kinds())

    def test_the_example_prints_what_the_page_shows(self):
        source = (PAGES / "vpagent-commands.7").read_text(encoding="utf-8").split(".Sh EXAMPLES")[1]
        blocks = re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed$", source, re.MULTILINE | re.DOTALL)
        script, output = blocks
        self.assertEqual(vpagent.run(commands=script), output)


if __name__ == "__main__":
    unittest.main()
