"""What the tests of the report share: the report's modules, and runs made by hand."""

import json
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bench/report"))

SURROUNDINGS = {
    "date": "2026-11-20T10:11:12+00:00",
    "machine": {
        "processor": "Some Processor", "processors": 2, "megahertz": 2600, "virtual": True,
        "memory": "23.5 GiB", "system": "Some System 12", "loadAtStart": [0.5, 0.25, 0.125],
    },
    "compiler": "g++ 12.2.0, Release: -O3",
    "packages": {"libstd-dev": "1.2-3", "libother-dev": "4"},
}


def repetition(name, time, **more):
    """One repetition as Google Benchmark writes it: both clocks the same, in nanoseconds."""
    entry = {
        "name": name, "run_name": name, "run_type": "iteration", "family_index": 0,
        "per_family_instance_index": 0, "repetitions": 3, "repetition_index": 0, "threads": 1,
        "iterations": 1000, "real_time": time, "cpu_time": time, "time_unit": "ns",
    }
    return {**entry, **more}


def benchmark_json(*entries):
    """A file of Google Benchmark."""
    context = {
        "date": "2026-11-20T10:11:12+00:00", "host_name": "somewhere", "executable": "/x/bench",
        "num_cpus": 2, "mhz_per_cpu": 2600, "load_avg": [0.5, 0.25, 0.125],
    }
    return json.dumps({"context": context, "benchmarks": entries})


def run_of(more_names=(), **cases):
    """A run of cases that are named with underscores, `subject__who__size=[times]`."""
    from figures import Case, Run

    cases = {name.replace("__", "/"): case for name, case in cases.items()}
    cases = {name: Case(case) if isinstance(case, list) else case for name, case in cases.items()}
    return Run(cases, set(cases) | set(more_names))
