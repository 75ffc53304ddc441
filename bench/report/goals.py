"""The goals and curves of the areas: what bench/AREA/goals.json says, as bench/README.md shows."""

import json
from dataclasses import dataclass

from errors import ReportError
from figures import NANOSECONDS

# The forms of a goal, by the keys that each consists of.
FORMS = {
    "ratio": {"time", "over", "atMost"},
    "difference": {"time", "minus", "atMost", "unit"},
    "counter": {"counter", "of", "atMost", "unit"},
    "spread": {"spread", "atMost"},
    "rate": {"rate", "atLeast"},
}
ROW = {"row": int, "title": str, "goals": list}
CURVE = {"file": str, "title": str, "x": str, "subject": str, "who": list, "sizes": dict}
# A curve of a counter instead of the time.
CURVE_OPTIONS = {"counter": str, "unit": str}


@dataclass
class Goal:
    """A limit for one figure; with `other`, it is enough to reach one of the two."""

    what: str
    form: str
    keys: dict
    other: "Goal | None" = None

    @property
    def limit(self):
        return self.keys["atLeast" if self.form == "rate" else "atMost"]

    @property
    def cases(self):
        """The cases that it compares, the one that is to be cheap first."""
        if self.form == "spread":
            return self.keys["spread"]
        parts = {
            "ratio": ("time", "over"), "difference": ("time", "minus"),
            "counter": ("of",), "rate": ("rate",),
        }
        return [self.keys[part] for part in parts[self.form]]

    def all_cases(self):
        return self.cases + (self.other.all_cases() if self.other else [])


@dataclass
class Row:
    """Goals that belong together."""

    number: int
    title: str
    goals: list
    note: str
    path: str


@dataclass
class Curve:
    """Lines of one subject over its sizes, a line a `who`."""

    file: str
    title: str
    x: str
    subject: str
    who: list
    sizes: dict
    path: str
    counter: str = ""
    unit: str = ""

    def case(self, who, size):
        return f"{self.subject}/{who}/{size}"


def require(condition, place, text):
    """Ends with a message that names the place, unless the condition holds."""
    if not condition:
        raise ReportError(f"{place}: {text}")


def check_keys(value, place, required, optional):
    """An object with these keys, of these types, and no others."""
    require(isinstance(value, dict), place, "is no object")
    types = {**required, **optional}
    for key in value:
        require(key in types, place, f"has the unknown key {key}")
        right = isinstance(value[key], types[key]) and not isinstance(value[key], bool)
        require(right, place, f"{key} is no {types[key].__name__}")
    for key in required:
        require(key in value, place, f"has no {key}")


def check_name(name, place):
    """A case is named subject/who/size."""
    right = isinstance(name, str) and name.count("/") == 2 and all(name.split("/"))
    require(right, place, f"{name!r} is not of the form subject/who/size")


def parse_goal(value, place, what=None):
    """A goal; an alternative within one has no words of its own."""
    require(isinstance(value, dict), place, "is no object")
    keys = dict(value)
    if what is None:
        what = keys.pop("what", None)
        require(isinstance(what, str) and what, place, "says not what it is")
        place = f"{place} ({what})"
    alternative = keys.pop("or", None)
    form = next((form for form, parts in FORMS.items() if parts == keys.keys()), None)
    forms = "; ".join(", ".join(sorted(parts)) for parts in FORMS.values())
    require(form, place, f"has the keys {', '.join(sorted(keys))}. The forms are: {forms}")
    other = None if alternative is None else parse_goal(alternative, f"{place}: or", what)
    goal = Goal(what, form, keys, other)
    check_goal(goal, place)
    return goal


def check_goal(goal, place):
    """The values that belong to the keys."""
    right = isinstance(goal.limit, (int, float)) and not isinstance(goal.limit, bool)
    require(right and goal.limit > 0, place, f"the limit {goal.limit!r} is no positive number")
    require(isinstance(goal.cases, list), place, "spread is no list")
    for name in goal.cases:
        check_name(name, place)
    if goal.form == "spread":
        require(len(set(goal.cases)) > 1, place, "a spread wants two cases or more")
    if goal.form == "difference":
        unit = goal.keys["unit"]
        require(unit in NANOSECONDS, place, f"{unit!r} is no unit of time; ns, us, ms and s are")
    if goal.form == "counter":
        for key in ("counter", "unit"):
            require(isinstance(goal.keys[key], str), place, f"{key} is no str")


def parse_curve(value, path):
    """A curve; its sizes map the last part of the cases' names to numbers of the x axis."""
    place = f"{path}: curve {value.get('file', '') if isinstance(value, dict) else ''}".rstrip()
    check_keys(value, place, CURVE, CURVE_OPTIONS)
    require(("counter" in value) == ("unit" in value), place, "a counter wants a unit, and only it")
    require(len(value["sizes"]) > 1, place, "wants two sizes or more")
    for size, number in value["sizes"].items():
        right = isinstance(number, (int, float)) and not isinstance(number, bool)
        require(right, place, f"size {size} is no number")
    require(value["who"], place, "has no lines")
    curve = Curve(**value, path=path)
    for who in curve.who:
        for size in curve.sizes:
            check_name(curve.case(who, size), place)
    return curve


def parse(text, path):
    """The rows and curves of one file."""
    try:
        content = json.loads(text)
    except json.JSONDecodeError as error:
        raise ReportError(f"{path}: {error}") from error
    check_keys(content, path, {"rows": list}, {"curves": list})
    rows = []
    for number, row in enumerate(content["rows"], 1):
        place = f"{path}: row {row.get('row', number) if isinstance(row, dict) else number}"
        check_keys(row, place, ROW, {"note": str})
        goals = [
            parse_goal(goal, f"{place}: goal {index}") for index, goal in enumerate(row["goals"], 1)
        ]
        rows.append(Row(row["row"], row["title"], goals, row.get("note", ""), path))
    return rows, [parse_curve(curve, path) for curve in content.get("curves", [])]


def read_all(root):
    """The rows of all areas by number, and their curves in the order of those rows."""
    rows, areas = [], []
    for path in sorted((root / "bench").glob("*/goals.json")):
        name = str(path.relative_to(root))
        own_rows, own_curves = parse(path.read_text(encoding="utf-8"), name)
        rows += own_rows
        first = min((row.number for row in own_rows), default=len(areas) + 1000)
        areas.append((first, name, own_curves))
    rows.sort(key=lambda row: row.number)
    for one, next_one in zip(rows, rows[1:]):
        place = f"{next_one.path}: row {next_one.number}"
        require(one.number != next_one.number, place, f"stands in {one.path} too")
    curves = [curve for _, _, own in sorted(areas, key=lambda area: area[:2]) for curve in own]
    files = [curve.file for curve in curves]
    for curve in curves:
        require(files.count(curve.file) == 1, curve.path, f"two curves are named {curve.file}")
    return rows, curves
