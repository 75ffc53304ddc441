"""What is said of the faults: the list, and the table of what noticed each."""

from collections import Counter

from running import SUITES


def as_told(fault, noticed):
    """Whether a fault was noticed, or was not and is told to be one that cannot be."""
    return bool(noticed.suite) != bool(fault.equivalent)


def row(fault, noticed):
    """The line of one fault."""
    if noticed.suite:
        by = noticed.suite if noticed.suite != fault.floor else "own"
        what = f"{by} | {noticed.test} {noticed.how}"
        if fault.equivalent:
            what += "; told to be equivalent: " + fault.equivalent
    elif fault.equivalent:
        what = "- | equivalent: " + fault.equivalent
    else:
        what = "- | NOT NOTICED"
    return f"| {fault.name} | {fault.file} | {what} |"


def suites(results):
    """How many faults each suite noticed, by the floor of the fault."""
    counts = Counter((fault.floor, noticed.suite) for fault, noticed in results)
    floors = list(dict.fromkeys(fault.floor for fault, _ in results))
    lines = ["| faults in | " + " | ".join(SUITES) + " | nobody |",
             "|---|" + "--:|" * (len(SUITES) + 1)]
    for floor in floors:
        cells = [str(counts[floor, suite]) for suite in (*SUITES, "")]
        lines.append(f"| {floor} | " + " | ".join(cells) + " |")
    return lines


def summary(results):
    """The last line."""
    noticed = sum(bool(result.suite) for _, result in results)
    own = sum(result.suite in (fault.floor, fault.floor == "VornicL3Shared" and "model")
              for fault, result in results)
    equivalent = sum(not result.suite and bool(fault.equivalent) for fault, result in results)
    survivors = len(results) - noticed - equivalent
    return (f"{len(results)} faults: {noticed} noticed, {own} of them by the tests of their own "
            f"floor; {equivalent} equivalent; {survivors} not noticed")


def text(results, seconds):
    """The whole report."""
    lines = ["| fault | file | noticed by | test |", "|---|---|---|---|"]
    lines += [row(fault, noticed) for fault, noticed in results]
    lines += ["", "Without a fault the tests take " +
              ", ".join(f"{suite} {taken:.1f} s" for suite, taken in seconds.items()) + ".", ""]
    lines += suites(results)
    lines += ["", summary(results)]
    return "\n".join(lines)


def listed(faults):
    """The faults themselves: what each changes, and into what."""
    lines = []
    for fault in faults:
        lines += [f"{fault.area}: {fault.name} ({fault.file})", f"    - {fault.was}",
                  f"    + {fault.now}"]
        if fault.equivalent:
            lines.append(f"    equivalent: {fault.equivalent}")
    return "\n".join([*lines, f"{len(faults)} faults"])
