#!/usr/bin/env python3
"""Checks the rules of the house that the compilers do not know.

usage: check_style.py ROOT

Prints one line per finding, `path:line: what is wrong`, and exits with 1 when there is any. The
rules read text, not C++: they rely on the layout that clang-format gives the code.
"""

import re
import sys
from pathlib import Path

# The floors from the lowest up. Each includes only itself and the floors before it.
FLOORS = ("runtime", "vpstate", "VornicL3Shared", "agent")
# The folders in which an include is looked up, floor by floor.
INCLUDE_ROOTS = (
    "runtime",
    "vpstate/include",
    "vpstate",
    "VornicL3Shared/include",
    "VornicL3Shared",
    "agent",
)
# Folders with a README of their own.
ROOMS = FLOORS + ("tests", "bench", "examples", "docs", "packaging")
# Where files are read, beside what stands at the top.
FOLDERS = ROOMS + ("cmake", "scripts", ".ci", "fuzz")

CODE = {".h", ".cpp"}
# Prose and data, which may be of any length.
DATA = {".json", ".md", ".vp", ".1", ".7"}
TEXT = CODE | DATA | {".py", ".cmake"}

FILE_LINES = 600
FUNCTION_LINES = 70
README_LINES = 40

# Spelled in halves, because this file is read as well.
STUB = re.compile(r"\b(" + "|".join(("TO" "DO", "FIX" "ME", "XX" "X")) + r")\b")
INCLUDE = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]')
RAW_STRING = re.compile(r'R"([^()\\ ]*)\(.*?\)\1"', re.DOTALL)
# What may stand at the head of a block that is no function.
OTHER_BLOCK = re.compile(
    r"^(if|else|for|while|do|switch|case|default|try|catch|return"
    r"|namespace|class|struct|enum|union|extern)\b"
)
LABEL = re.compile(r"(public|protected|private|case .*|default):")
SCRIPT_FOLDERS = ("scripts", ".ci", "completion")


def is_text(path):
    """Whether the file is code or prose; a script has no suffix."""
    if path.suffix:
        return path.suffix in TEXT or path.name == "CMakeLists.txt"
    return path.parent.name in SCRIPT_FOLDERS


def files(root):
    """The files of the project that are text, in a fixed order."""
    found = [path for path in root.iterdir() if path.is_file()]
    for folder in FOLDERS:
        found += [path for path in (root / folder).rglob("*") if path.is_file()]
    return sorted(path for path in found if is_text(path))


def floor_of(root, path):
    """The number of the floor that holds the file, or None beside the floors."""
    try:
        top = path.relative_to(root).parts[0]
    except ValueError:
        return None
    return FLOORS.index(top) if top in FLOORS else None


def included_file(root, path, name):
    """The file that the include in `path` means, or None when it is not one of the project's."""
    for folder in (path.parent, *(root / each for each in INCLUDE_ROOTS)):
        candidate = (folder / name).resolve()
        if candidate.is_file():
            return candidate
    return None


def check_includes(root, path, lines):
    """Includes point down the floors, and nobody includes what stands beside them."""
    own = floor_of(root, path)
    if own is None:
        return
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        target = match and included_file(root, path, match[1])
        if not target:
            continue
        floor = floor_of(root, target)
        if floor is None:
            yield number, f"{FLOORS[own]}/ includes {match[1]}, which is on no floor"
        elif floor > own:
            yield number, f"{FLOORS[own]}/ includes {match[1]} of the higher floor {FLOORS[floor]}/"


def check_functions(lines):
    """A function fits a screen.

    A line that is a closing brace alone ends a block; the block's head is the nearest line above it
    at the same indentation. The block is a function when its head has a parenthesis before the brace
    and begins with no word that opens another kind of block.
    """
    text = "\n".join(lines)
    lines = RAW_STRING.sub(lambda match: "\n" * match[0].count("\n"), text).split("\n")
    for end, line in enumerate(lines):
        if line.strip() != "}":
            continue
        indent = len(line) - 1
        start = end - 1
        while start > 0 and not is_head(lines[start], indent):
            start -= 1
        head = " ".join(lines[start:end]).split("{")[0]
        length = end - start + 1
        if "(" in head and not OTHER_BLOCK.match(head.strip()) and length > FUNCTION_LINES:
            yield start + 1, f"a function of {length} lines; at most {FUNCTION_LINES}"


def is_head(line, indent):
    """Whether a statement begins on this line, at this indentation."""
    rest = line.strip()
    if not rest or len(line) - len(line.lstrip()) != indent:
        return False
    return not rest.startswith(("}", "{", "#", "//", ":")) and not LABEL.fullmatch(rest)


def check_text(path, lines):
    """Length, white space, stub words, and the guard of a header."""
    if path.suffix not in DATA and len(lines) > FILE_LINES:
        yield 1, f"a file of {len(lines)} lines; at most {FILE_LINES}"
    if path.suffix == ".h" and "#pragma once" not in lines:
        yield 1, "no #pragma once"
    for number, line in enumerate(lines, 1):
        if line != line.rstrip():
            yield number, "white space at the end of the line"
        if "\t" in line:
            yield number, "a tab"
        if match := STUB.search(line):
            yield number, f"the stub word {match[0]}"


def check_readmes(root):
    """Each folder says in a page what it is."""
    for room in ROOMS:
        path = root / room / "README.md"
        if not path.is_file():
            yield path, 1, "is missing"
        elif (length := len(path.read_text(encoding="utf-8").splitlines())) > README_LINES:
            yield path, 1, f"has {length} lines; at most {README_LINES}"


def findings(root):
    """All findings of the tree as (path, line, text)."""
    yield from check_readmes(root)
    for path in files(root):
        lines = path.read_text(encoding="utf-8").split("\n")
        if lines[-1] == "":
            lines.pop()
        checks = [check_text(path, lines)]
        if path.suffix in CODE:
            checks += [check_includes(root, path, lines), check_functions(lines)]
        for check in checks:
            for number, text in check:
                yield path, number, text


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    root = Path(sys.argv[1]).resolve()
    found = [f"{path.relative_to(root)}:{number}: {text}" for path, number, text in findings(root)]
    print("\n".join(found) if found else f"{len(files(root))} files follow the style")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
