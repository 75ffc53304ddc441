#!/usr/bin/env python3
"""Writes down anew what the installed package shows to its users, and says what has changed.

usage: renew.py PREFIX

Called by scripts/renew-abi.
"""

import difflib
import subprocess
import sys
import tempfile
from pathlib import Path

from installed import LIBRARIES, Installed, describe, lines, strong_symbols

ABI = Path(__file__).resolve().parent / "abi"
SOURCE = ABI.parents[2]


def text_changes(old, new):
    """The lines that came and went."""
    changed = difflib.unified_diff(old.splitlines(), new.splitlines(), lineterm="", n=0)
    return "".join(f"  {line}\n" for line in changed if not line.startswith(("---", "+++", "@@")))


def interface_changes(old, new):
    """What abidiff says of two descriptions; its exit code tells whether it failed."""
    result = subprocess.run(["abidiff", "--no-show-locs", old, new],
                            capture_output=True, text=True, check=False)
    if result.returncode & 3:
        sys.exit(f"abidiff {old} {new}: {result.stderr}")
    return result.stdout or "  what users of the library cannot tell apart\n"


def renew(path, new):
    """Replaces a file; tells whether it was another one."""
    old = path.read_text(encoding="utf-8") if path.exists() else ""
    if old == new:
        return False
    described = path.suffix == ".abi" and old
    with tempfile.TemporaryDirectory() as folder:
        fresh = Path(folder) / path.name
        fresh.write_text(new, encoding="utf-8")
        print(f"{path.name}:")
        print(interface_changes(path, fresh) if described else text_changes(old, new), end="")
    path.write_text(new, encoding="utf-8")
    return True


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    package = Installed(sys.argv[1])
    ABI.mkdir(exist_ok=True)
    changed = [renew(ABI / "headers", lines(package.headers()))]
    for name in LIBRARIES:
        changed.append(renew(ABI / f"{name}.symbols", strong_symbols(package.library(name))))
        changed.append(renew(ABI / f"{name}.abi", describe(package, name, SOURCE)))
    print(f"{sum(changed)} of {len(changed)} files renewed")


if __name__ == "__main__":
    main()
