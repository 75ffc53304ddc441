"""Runs every fault against the tests, several at a time."""

from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

from running import LEAST_TIMEOUT, SUITES, filters, order, run
from scratch import NotBuilt


@dataclass(frozen=True)
class Noticed:
    """What noticed a fault; no suite when nothing did."""

    suite: str = ""
    test: str = ""
    how: str = ""
    seconds: float = 0.0  # of all runs until then


class Campaign:
    """The runs of one scratch copy."""

    def __init__(self, folder, jobs, log):
        self.folder = folder
        self.jobs = jobs
        self.log = log
        self.seconds = {}
        self.filters = {}

    def run_without(self):
        """Runs all tests without a fault: they must pass. How long each suite takes, in seconds."""
        def run_all(suite):
            return run(self.folder, suite, filters(suite, ())[0], 0, 20 * LEAST_TIMEOUT)

        with ThreadPoolExecutor(self.jobs) as pool:
            for suite, outcome in zip(SUITES, pool.map(run_all, SUITES)):
                if not outcome.passed:
                    raise NotBuilt(f"without a fault, {outcome.test} {outcome.how} ({suite})")
                self.seconds[suite] = outcome.seconds
                self.filters[suite] = filters(suite, outcome.slow if suite != "model" else ())
        return self.seconds

    def timeout(self, suite):
        """When a run is given up: others may use the machine too."""
        return max(LEAST_TIMEOUT, 4 * self.seconds[suite])

    def run_fault(self, fault, number):
        """Runs the tests in their order until one notices the fault."""
        spent = 0.0
        for suite in order(fault.floor, self.seconds):
            for tests in self.filters[suite]:
                outcome = run(self.folder, suite, tests, number, self.timeout(suite))
                spent += outcome.seconds
                if not outcome.passed:
                    return Noticed(suite, outcome.test, outcome.how, spent)
        return Noticed(seconds=spent)

    def run_chosen(self, faults):
        """The results of the faults that are chosen when a program runs."""
        done = 0
        results = {}
        with ThreadPoolExecutor(self.jobs) as pool:
            found = pool.map(lambda fault: self.run_fault(fault, fault.number), faults)
            for fault, noticed in zip(faults, found):
                done += 1
                results[fault] = noticed
                what = f"{noticed.test} {noticed.how}" if noticed.suite else "not noticed"
                print(f"{done}/{len(faults)} {fault.name}: {what}, {noticed.seconds:.1f} s",
                      file=self.log, flush=True)
        return results
