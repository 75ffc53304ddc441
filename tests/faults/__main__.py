"""Plants faults and reports which of them no test notices. scripts/plant-faults calls it."""

import argparse
import os
import re
import shutil
import sys
from pathlib import Path

import catalogue
import report
import scratch
from campaign import Campaign
from running import scripts_output

FOLDER = scratch.ROOT / "build/faults"
EXAMPLES = sorted((scratch.ROOT / "examples").glob("*.vp"))


def parse(arguments):
    """The command line; scripts/plant-faults tells what it means."""
    parser = argparse.ArgumentParser(prog="scripts/plant-faults", description=__doc__)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("pattern", nargs="?", default="")
    return parser.parse_args(arguments)


def build_both(files, faults, jobs):
    """Builds the scratch copy with the faults; the one without must print the same."""
    printed = []
    for name, planted, programs in (("untouched", [], ["vpagent"]),
                                    ("planted", faults, scratch.PROGRAMS)):
        print(f"Building build/faults/{name}; the first time takes minutes", file=sys.stderr)
        folder = FOLDER / name
        scratch.build(folder, scratch.with_choice(files, planted), jobs, programs)
        printed.append(scripts_output(folder, EXAMPLES))
    if printed[0] != printed[1]:
        raise scratch.NotBuilt("without a fault, the scratch copy prints something else")


def plant(faults, options):
    """Builds, runs all, prints the report; whether every fault that matters was noticed."""
    everything = catalogue.read(scratch.HERE)
    files = scratch.sources(scratch.ROOT)
    build_both(files, everything, options.jobs)
    campaign = Campaign(FOLDER / "planted", options.jobs, sys.stderr)
    seconds = campaign.run_without()
    results = campaign.run_chosen([fault for fault in faults if not fault.alone])
    for fault in faults:
        if fault.alone:
            planted = scratch.with_choice(files, everything, alone=fault)
            scratch.build(FOLDER / "planted", planted, options.jobs, scratch.PROGRAMS)
            results[fault] = campaign.run_fault(fault, 0)
    print(report.text([(fault, results[fault]) for fault in faults], seconds))
    return all(report.as_told(fault, results[fault]) for fault in faults)


def main(arguments):
    """What the script does; its exit code."""
    options = parse(arguments)
    try:
        faults = [fault for fault in catalogue.read(scratch.HERE)
                  if re.search(options.pattern, fault.name) or re.fullmatch(options.pattern, fault.area)]
        if not faults:
            raise catalogue.Malformed(f"no fault matches {options.pattern}")
        if options.list:
            print(report.listed(faults))
            return 0
        told = plant(faults, options)
        if not options.keep:
            shutil.rmtree(FOLDER)
        return 0 if told else 1
    except (catalogue.Malformed, scratch.NotBuilt, re.error) as error:
        print(f"plant-faults: {error}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
