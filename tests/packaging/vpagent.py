"""The program under test, and what it says of itself."""

import functools
import os
import re
import subprocess

VPAGENT = os.environ["VPAGENT"]


@functools.cache
def run(*arguments, commands=""):
    """Runs vpagent on these commands and gives what it prints."""
    result = subprocess.run(
        [VPAGENT, *arguments], input=commands, capture_output=True, text=True, check=False
    )
    if result.returncode != 0:
        raise AssertionError(f"vpagent {arguments}: {result.returncode}: {result.stderr}")
    return result.stdout


def options():
    """The options of --help in order: (names, word for the value or an empty text)."""
    found = re.findall(r"^  (-\S+)(?: (\S+))?(?:  |$)", run("--help"), re.MULTILINE)
    if not found:
        raise AssertionError("--help lists no options")
    return [(names.split(","), value) for names, value in found]


def usages():
    """The commands with their arguments, as `help` lists them."""
    commands = run(commands="help").split("\n\n")[0]
    found = [re.split(r"  +", line.strip())[0] for line in commands.splitlines()
             if re.match(r"  \S", line)]
    if not found:
        raise AssertionError("help lists no commands")
    return found


def choices(command):
    """What `help COMMAND` lists of the command's arguments: settings, options or roots."""
    text = run(commands=f"help {command}")
    names = re.findall(r"^ {4,6}([a-z-]+(?: [A-Z]+)?): ", text, re.MULTILINE)
    if not names:
        raise AssertionError(f"help {command} lists no choices")
    return names


def kinds():
    """The kinds of virtual ports with their keys, as `help` lists them."""
    forms = run(commands="help").split("\n\n")[1]
    found = re.findall(r"^  ([a-z]+ [A-Z@:]+)  ", forms, re.MULTILINE)
    if not found:
        raise AssertionError("help lists no kinds")
    return found
