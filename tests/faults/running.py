"""Runs the test programs with a fault, until a test notices it."""

import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass

from scratch import PROGRAMS, program

# The tests by which a fault may be noticed: the program, which of its tests, and which not. Left out
# are the one that compares the line numbers of traces with the project's, which a choice of two
# statements moves, and those that measure time and memory, which others who use the machine change.
MEASURING = "InputLimits.*:ImportLimits.*:KeyLimit.*:Footprint.*"
SUITES = {
    "runtime": ("test_runtime", "*", ""),
    "vpstate": ("test_vpstate", "*", ""),
    "VornicL3Shared": ("test_VornicL3Shared", "*", "Model.*:EveryTrace.IsMadeInThisWorld"),
    "agent": ("test_agent", "*", MEASURING),
    "model": ("test_VornicL3Shared", "Model.*", ""),
}
SLOW = 50  # milliseconds; a test that takes longer runs after the others of its program
LEAST_TIMEOUT = 60  # seconds
DUMP = ("--trace", "all")
QUICK = "/dev/shm"  # files of the tests are synchronised often
MEMORY = 12 << 30  # bytes of a program; without the bound, one that loops would take them all

STARTED = re.compile(r"^\[ RUN      \] (\S+)", re.M)
ENDED = re.compile(r"^\[ +(OK|FAILED|SKIPPED) +\] ([^\s,]+)", re.M)
TIME = re.compile(rb"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z")
TIMED = re.compile(r"^\[       OK \] (\S+) \((\d+) ms\)", re.M)


@dataclass(frozen=True)
class Outcome:
    """How one run of a test program ended."""

    passed: bool
    test: str = ""  # the one that noticed
    how: str = ""
    seconds: float = 0.0
    slow: tuple = ()  # the tests that took long


def judged(output, code, hung):
    """Which test noticed a fault and how, by what a test program printed; nothing if none did."""
    ended = {}
    for result, test in ENDED.findall(output):
        ended.setdefault(test, result)
    failed = [test for test, result in ended.items() if result == "FAILED"]
    under_way = [test for test in STARTED.findall(output) if test not in ended]
    if hung:
        return (under_way or ["(behind the tests)"])[-1], "hangs"
    if code == 0 and not failed:
        return None
    if failed:
        return failed[0], "fails"
    died = f"dies of {signal.Signals(-code).name}" if code < 0 else f"ends with {code}"
    return (under_way or ["(beside the tests)"])[-1], died


def order(floor, seconds):
    """The suites, that of the fault's floor first, the model last, the others by what they take."""
    others = [suite for suite in SUITES if suite not in (floor, "model")]
    return [floor, *sorted(others, key=lambda suite: seconds.get(suite, 0)), "model"]


def filters(suite, slow):
    """What gtest is told to run, one after the other: the quick tests of a suite, then the slow."""
    _, tests, others = SUITES[suite]
    without = ":".join(filter(None, (others, *slow)))
    quick = f"{tests}-{without}" if without else tests
    return [quick, ":".join(slow)] if slow else [quick]


def limits():
    """No core files, and an end to the memory."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def wait(process, timeout):
    """Waits for a program, and ends it with all that it started when it takes too long."""
    try:
        process.wait(timeout)
        return False
    except subprocess.TimeoutExpired:
        return True
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def run(folder, suite, tests, number, timeout):
    """One run of tests with the fault of that number; 0 is none."""
    own = tempfile.mkdtemp(prefix="run-", dir=folder)
    files = tempfile.mkdtemp(prefix="vornic-fault-", dir=QUICK if os.path.isdir(QUICK) else folder)
    os.chmod(files, 0o755)  # some tests are nobody there
    environment = dict(os.environ, VORNIC_FAULT=str(number), TMPDIR=files, TEST_TMPDIR=files)
    command = [program(folder, SUITES[suite][0]), f"--gtest_filter={tests}", "--gtest_fail_fast",
               "--gtest_brief=0", "--gtest_color=no"]
    started = time.monotonic()
    try:
        with open(os.path.join(own, "output"), "w+b") as output:
            process = subprocess.Popen(
                command, cwd=own, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limits)
            hung = wait(process, timeout)
            output.seek(0)
            text = output.read().decode(errors="replace")
    finally:
        shutil.rmtree(own, ignore_errors=True)
        shutil.rmtree(files, ignore_errors=True)
    seconds = time.monotonic() - started
    noticed = judged(text, process.returncode, hung)
    if noticed is not None:
        return Outcome(False, *noticed, seconds)
    slow = tuple(test for test, taken in TIMED.findall(text) if int(taken) >= SLOW)
    return Outcome(True, seconds=seconds, slow=slow)


def timeless(printed):
    """What a program printed, without the times of its records."""
    return TIME.sub(b"(time)", printed)


def scripts_output(folder, scripts):
    """What vpagent prints for some scripts, without a fault."""
    environment = dict(os.environ, VORNIC_FAULT="0")
    printed = []
    for script in scripts:
        with open(script, "rb") as commands:
            done = subprocess.run([program(folder, "vpagent"), *DUMP], check=False, cwd=folder,
                                  env=environment, stdin=commands, timeout=LEAST_TIMEOUT,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        printed.append((script.name, done.returncode, timeless(done.stdout), done.stderr))
    return printed
