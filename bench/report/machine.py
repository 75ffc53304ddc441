"""What the figures were made with: the machine, the compiler, and the versions of the packages."""

import json
import re
import subprocess
from pathlib import Path


def first(pattern, path):
    """What the pattern finds in a file of the system, or an empty text."""
    try:
        match = re.search(pattern, Path(path).read_text(encoding="utf-8"), re.MULTILINE)
    except OSError:
        return ""
    return match[1] if match else ""


def output(*command):
    """What a command prints; it must succeed."""
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def versions(packages):
    """The versions of those packages that are installed."""
    form = "${Package} ${db:Status-Status} ${Version}\n"
    query = ["dpkg-query", "-W", "-f", form, *sorted(packages)]
    # It fails for a package that it has never heard of, and still lists the others.
    listed = subprocess.run(query, check=False, capture_output=True, text=True).stdout
    lines = (line.split() for line in listed.splitlines())
    return {line[0]: line[2] for line in lines if len(line) == 3 and line[1] == "installed"}


def compiler(build):
    """The compiler of a build folder, in its own words, and how it was told to optimise."""
    cache = build / "CMakeCache.txt"
    kind = first(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", cache)
    flags = first(rf"^CMAKE_CXX_FLAGS_{kind.upper()}:\w+=(.*)$", cache)
    program = first(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache)
    version = output(program, "--version").splitlines()[0]
    return f"{version}, {kind}: {flags}"


def describe(benchmark_json, build, root):
    """What belongs to a run beside its figures; names of machines and folders are left out."""
    context = json.loads(benchmark_json)["context"]
    install_deps = str(root / "scripts/install-deps")
    building = set(output(install_deps, "--list").split()) - {"libbenchmark-dev"}
    packages = set(output(install_deps, "--bench", "--list").split()) - building
    kilobytes = int(first(r"^MemTotal: +(\d+) kB", "/proc/meminfo") or 0)
    virtual = bool(first(r"^flags.*\b(hypervisor)\b", "/proc/cpuinfo"))
    return {
        "date": context["date"],
        "machine": {
            "processor": first(r"^model name\s*: (.*)$", "/proc/cpuinfo"),
            "processors": context["num_cpus"],
            "megahertz": context["mhz_per_cpu"],
            "virtual": virtual,
            "memory": f"{kilobytes / 2**20:.1f} GiB",
            "system": first(r'^PRETTY_NAME="(.*)"$', "/etc/os-release"),
            "loadAtStart": context["load_avg"],
        },
        "compiler": compiler(build),
        "packages": versions(packages),
    }
