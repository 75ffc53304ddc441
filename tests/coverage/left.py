"""What no test takes: found in the counts, and named with its reason in left.json."""

import json
from collections import Counter
from dataclasses import dataclass

RUN = "run"


@dataclass(frozen=True, order=True)
class Left:
    """Lines that never run, or an outcome of a condition that never comes about.

    `code` is the text of the lines, or of the line on which the condition begins, so that a change
    elsewhere in the file moves nothing; `never` is "run", or the text of the condition with
    " is true" or " is false".
    """

    path: str
    code: str
    never: str


@dataclass(frozen=True)
class Reason:
    """Why something is left, in how many places of its file, and whether chance decides."""

    why: str
    times: int = 1
    sometimes: bool = False


class Sources:
    """The texts of the files below a folder."""

    def __init__(self, root):
        self.root = root
        self.texts = {}

    def lines(self, path):
        """The lines of a file."""
        if path not in self.texts:
            self.texts[path] = (self.root / path).read_text(encoding="utf-8").split("\n")
        return self.texts[path]

    def text(self, path, first, within):
        """The text from a line on, as long as the lines are among those given."""
        last = first
        while last + 1 in within:
            last += 1
        return " ".join(line.strip() for line in self.lines(path)[first - 1:last])

    def between(self, path, place):
        """The text of a place, as one line."""
        line, column, last, end = place
        parts = self.lines(path)[line - 1:last]
        parts[-1] = parts[-1][:end - 1]
        parts[0] = parts[0][column - 1:]
        return " ".join(part.strip() for part in parts)

    def condition(self, path, condition):
        """The text of a condition; behind the name of the macro where one holds it."""
        text = self.between(path, condition.place)
        if condition.inner:
            text += ": " + self.between(condition.inner[0], condition.inner[1:])
        return text


def find(files, sources):
    """Everything left in some files, each with the number of its first line.

    Lines that never run count as one where they follow each other, and stand for the conditions on
    them too.
    """
    found = []
    for path, file in sorted(files.items()):
        idle = {line for line, count in file.lines.items() if count == 0}
        for line in sorted(idle):
            if line - 1 not in idle:
                found.append((line, Left(path, sources.text(path, line, idle), RUN)))
        for condition, outcome, count in file.outcomes():
            line = condition.place[0]
            if count == 0 and line not in idle:
                never = f"{sources.condition(path, condition)} is {str(outcome).lower()}"
                found.append((line, Left(path, sources.text(path, line, ()), never)))
    return found


def parse(text):
    """The reasons of left.json."""
    reasons = {}
    for path, entries in json.loads(text).items():
        for entry in entries:
            entry = dict(entry)
            left = Left(path, entry.pop("code"), entry.pop("never"))
            if left in reasons:
                raise ValueError(f"{left.path}: {left.code}: never {left.never}: named twice")
            try:
                reasons[left] = Reason(**entry)
            except TypeError as error:
                raise ValueError(f"{left.path}: {left.code}: {error}") from None
    return reasons


def judge(found, reasons):
    """What is found without a reason, and what has a reason and is not found."""
    there = Counter(left for _, left in found)
    named = Counter({left: reason.times for left, reason in reasons.items()})
    stale = Counter({left: count for left, count in (named - there).items()
                     if not reasons[left].sometimes})
    return there - named, stale


def page(reasons):
    """The reasons as a list of Markdown, for docs/reliability.md."""
    lines = []
    for path in sorted({left.path for left in reasons}):
        lines += ["", f"`{path}`:", ""]
        for left, reason in reasons.items():
            if left.path == path:
                times = f", {reason.times} times" if reason.times > 1 else ""
                outcome = f"{words(left)} by chance only" if reason.sometimes else f"never {words(left)}"
                lines.append(f"- `{left.code}`{times}: {outcome}. {reason.why}")
    return "\n".join(lines[1:]) + "\n"


def words(left):
    """What does not come about; a condition as code, unless it is the whole line."""
    if left.never == RUN:
        return "runs"
    condition, _, outcome = left.never.rpartition(" is ")
    return f"`{condition}` is {outcome}"
