#!/usr/bin/env python3
"""The binary interface of the libraries against that of the last release, which abi/ describes."""

import re
import unittest

from harness import HERE, PACKAGE, SOURCE, Test, attempt, empty_folder
from installed import LIBRARIES, describe

LARGEST = 1_000_000  # bytes; what is larger nobody can review

# Edits of the runtime's description that stand for changes of the library, and what abidiff must
# say of each.
CHANGES = {
    "a member removed": (
        r"<data-member access='private' layout-offset-in-bits='\d+'>\s*"
        r"<var-decl name='setCount_'.*?</data-member>", "", "setCount_"),
    "a class grown": (
        r"(<class-decl name='Bitmap' size-in-bits=)'\d+'", r"\1'1024'", "type size changed"),
    "a parameter of another type": (
        r"(<function-decl name='subscriberAdd'.*?<parameter type-id=)'\w+'(/>\s*<return)",
        r"\1'f0981eec'\2", "subscriberAdd"),
    "a function removed": (
        r"<elf-symbol name='_ZN4Bask6Bitmap6setBitEj'[^>]*/>", "", "setBit"),
    "an enumerator renumbered": (
        r"(<enumerator name='iterate' value=)'\d+'", r"\1'70'", "iterate"),
    "a virtual function moved": (
        r"(vtable-offset=)'\d+'(>\s*<function-decl name='typeData' "
        r"mangled-name='_ZNK4Pelo4Node8typeDataEv')", r"\1'9'\2", "typeData"),
}


def difference(old, new):
    """What abidiff says of two descriptions; an empty text when they mean the same."""
    code, printed = attempt("abidiff", "--no-show-locs", old, new)
    return printed if code != 0 else ""


class Abi(Test):
    """The description of each library, made now and checked in."""

    @classmethod
    def setUpClass(cls):
        cls.folder = empty_folder("now")
        for name in LIBRARIES:
            text = describe(PACKAGE, name, SOURCE)
            (cls.folder / f"{name}.abi").write_text(text, encoding="utf-8")

    def test_nothing_has_changed(self):
        for name in LIBRARIES:
            with self.subTest(name):
                changes = difference(HERE / f"abi/{name}.abi", self.folder / f"{name}.abi")
                self.assertEqual(changes, "", f"{name}; scripts/renew-abi accepts a change")

    def test_the_descriptions_hold_for_every_machine(self):
        for name in LIBRARIES:
            with self.subTest(name):
                text = (HERE / f"abi/{name}.abi").read_text(encoding="utf-8")
                self.assertLess(len(text), LARGEST)
                self.assertEqual(re.findall(r".*(?:['\"(]/[^>]|\.\./|/home/|/tmp/).*", text), [])

    def test_a_change_is_noticed(self):
        description = self.folder / "libvornic_runtime.abi"
        text = description.read_text(encoding="utf-8")
        for change, (pattern, replacement, word) in CHANGES.items():
            with self.subTest(change):
                edited, count = re.subn(pattern, replacement, text, flags=re.DOTALL)
                self.assertGreater(count, 0, "nothing was edited")
                other = self.folder / "edited.abi"
                other.write_text(edited, encoding="utf-8")
                self.assertIn(word, difference(description, other))


if __name__ == "__main__":
    unittest.main()
