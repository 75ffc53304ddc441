"""An installed package, and what can be read from its files."""

import re
import subprocess
from pathlib import Path

LIBRARIES = ("libvornic_runtime", "libvornic_vpstate", "libVornicL3Shared")

# The namespaces of the project. Its headers put nothing outside of them.
NAMESPACES = (
    "Bask", "Bridging", "Devbus", "Interface", "Lumlog", "Netzo", "Pelo", "Qor", "QorPelo",
    "VornicCentral", "VornicL3", "Vxlan",
)

# A mangled name up to its outermost namespace: what kind of thing it is (a virtual table, type
# information, a thunk, the guard of a local object, an object within a function), then qualifiers.
MANGLED = re.compile(
    r"_Z(?:T[VIST]|GV|Th\w*?_|Tv\w*?_)?Z*(?:N[VKRO]*)?(?P<length>[1-9]\d*)(?P<rest>\w+)"
)

# What of a library's interface is described: types and functions that programs reach through its
# exported functions, without places in sources or paths.
DESCRIPTION = (
    "--exported-interfaces-only", "--drop-private-types", "--no-show-locs", "--no-corpus-path",
    "--no-comp-dir-path", "--no-parameter-names", "--type-id-style", "hash",
    "--suppressions", Path(__file__).resolve().parent / "abi/standard-library.ini",
)


def output(*command):
    """What a program prints on standard output; it must succeed."""
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    if result.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}\n{result.stdout}{result.stderr}")
    return result.stdout


def lines(texts):
    """The texts as a file of lines, in order and each once."""
    return "".join(f"{text}\n" for text in sorted(set(texts)))


def namespace(symbol):
    """The outermost namespace of a mangled name; an empty text when it is in none."""
    match = MANGLED.match(symbol)
    return match["rest"][: int(match["length"])] if match else ""


class Installed:
    """The package below a prefix."""

    def __init__(self, prefix):
        self.prefix = Path(prefix)
        self.include = self.prefix / "include/vornic"
        found = list(self.prefix.glob("lib*/**/libVornicL3Shared.so"))
        if len(found) != 1:
            raise RuntimeError(f"{prefix} holds no package: {found}")
        self.folder = found[0].parent

    def library(self, name):
        """The file that programs are linked to."""
        return self.folder / f"{name}.so"

    def headers(self):
        """The headers as they are included, in order."""
        return sorted(
            str(path.relative_to(self.include))
            for path in self.include.rglob("*") if path.is_file()
        )


def exported(library):
    """The symbols that a library exports, as (letter of nm, mangled name)."""
    table = output("nm", "--dynamic", "--defined-only", "--format=posix", library)
    return [tuple(reversed(line.split()[:2])) for line in table.splitlines()]


def demangled(symbols):
    """The names as the source spells them."""
    result = subprocess.run(
        ["c++filt"], input="\n".join(symbols), capture_output=True, text=True, check=True
    )
    return result.stdout.splitlines()


def is_weak(letter):
    """Whether a symbol may be defined elsewhere too: an inline function, a table, a template."""
    return letter in "WVwvu"


def strong_symbols(library):
    """The symbols that only this library defines, `T VornicCentral::f(int)`, a line each."""
    strong = [(letter, name) for letter, name in exported(library) if not is_weak(letter)]
    names = demangled([name for _, name in strong])
    return lines(f"{letter} {name}" for (letter, _), name in zip(strong, names))


def foreign_symbols(library):
    """The exported names that are in none of the project's namespaces."""
    names = [name for _, name in exported(library) if namespace(name) not in NAMESPACES]
    return sorted(demangled(names))


def dynamic(library):
    """The dynamic section: tag to its values."""
    entries = {}
    table = output("readelf", "--dynamic", "--wide", library)
    for tag, text in re.findall(r"^ 0x[0-9a-f]+ \((\w+)\)\s+(.*?)\s*$", table, re.MULTILINE):
        value = re.search(r"\[(.*)\]", text)
        entries.setdefault(tag, []).append(value[1] if value else text)
    return entries


def stack_flags(library):
    """What may be done to the stack's memory, "RW" as a rule."""
    table = output("readelf", "--program-headers", "--wide", library)
    return "".join(re.search(r"GNU_STACK(?:\s+0x[0-9a-f]+){5}\s+([RWE ]+?)\s+0x", table)[1].split())


def describe(installed, name, source):
    """The description of a library's interface; `source` is the tree that it was built from."""
    text = output("abidw", *DESCRIPTION, "--headers-dir", installed.include, installed.library(name))
    return text.replace(f"path='{source}/", "path='")
