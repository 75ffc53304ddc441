"""The faults that are planted, read from the files `*.faults` beside this one.

A fault is a few lines, each a word and what it says, with a blank line behind the last:

    fault bitmap-set-past-the-end
    in runtime/bask/Bitmap.h
    behind inline void Bitmap::setBit(
    was index >= size_
    is index > size_

`was` stands exactly once in the file, or is the first of its like behind a text that does: `behind`.
White space in either stands for any white space, so that formatting anew changes nothing. README.md
tells the other words.
"""

import re
import zlib
from dataclasses import dataclass

WORDS = ("fault", "in", "behind", "was", "is", "chosen", "alone", "equivalent")
WANTED = ("in", "was", "is")


class Malformed(Exception):
    """A fault that cannot be read, or is not in the tree any more."""


@dataclass(frozen=True)
class Fault:
    """One small change that would hurt."""

    name: str
    area: str  # the file that tells it, without its suffix
    file: str  # below the root
    was: str
    now: str
    behind: str = ""
    chosen: str = ""  # how both stand in one program, where that is not made of `was` and `now`
    alone: bool = False  # needs a build of its own
    equivalent: str = ""  # why no test can notice it

    @property
    def number(self):
        """By what a program is told to run with it; does not depend on other faults."""
        return zlib.crc32(self.name.encode())

    @property
    def floor(self):
        """The folder of the floor that it is in."""
        return self.file.split("/", 1)[0]


def loose(text):
    """What finds a text whatever its white space; macros go on behind a backslash."""
    return re.compile(r"(?:\s|\\\n)+".join(re.escape(word) for word in text.split()))


def only_place(text, wanted, fault, begin=0):
    """Where a text stands that must stand there once."""
    found = list(loose(wanted).finditer(text, begin))
    if len(found) != 1:
        raise Malformed(f"{fault.name}: {len(found)} times in {fault.file}, not once: {wanted}")
    return found[0].span()


def place(fault, text):
    """Where in its file's text the fault goes: begin and end of what it replaces."""
    if not fault.behind:
        return only_place(text, fault.was, fault)
    begin = only_place(text, fault.behind, fault)[1]
    found = loose(fault.was).search(text, begin)
    if not found:
        raise Malformed(f"{fault.name}: not behind {fault.behind}: {fault.was}")
    return found.span()


def fault_of(area, said, where):
    """The fault that some lines tell."""
    missing = [word for word in WANTED if word not in said]
    if missing:
        raise Malformed(f"{where}: {said.get('fault', 'a fault')} does not say {missing[0]}")
    return Fault(
        name=said["fault"], area=area, file=said["in"], was=said["was"], now=said["is"],
        behind=said.get("behind", ""), chosen=said.get("chosen", ""), alone="alone" in said,
        equivalent=said.get("equivalent", ""),
    )


def read_text(area, text):
    """The faults that one file tells."""
    said = {}
    for number, line in enumerate(text.split("\n") + [""], 1):
        if line.startswith("#"):
            continue
        if not line:
            if said:
                yield fault_of(area, said, f"{area}.faults:{number}")
            said = {}
            continue
        word, _, what = line.partition(" ")
        if word not in WORDS or word in said or (word == "fault") != (not said):
            raise Malformed(f"{area}.faults:{number}: not expected here: {line}")
        said[word] = what


def read(folder):
    """All faults of a folder, in the order of their files."""
    faults = []
    for path in sorted(folder.glob("*.faults")):
        faults += read_text(path.stem, path.read_text(encoding="utf-8"))
    for what in ("name", "number"):
        seen = set()
        for fault in faults:
            if getattr(fault, what) in seen:
                raise Malformed(f"{fault.name}: this {what} is another fault's too")
            seen.add(getattr(fault, what))
    return faults
