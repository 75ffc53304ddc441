"""Puts faults into the text of a source file: all at once, one of them chosen when a program runs.

`Faults::planted(NUMBER)`, which Faults.h tells, is true in a program that runs with this fault. What
a fault replaces may lie within what another one replaces.
"""

from catalogue import Malformed, place


def is_statement(text):
    """Whether a text is whole statements, and no expression."""
    return text.endswith((";", "}"))


def alternatives(fault, before):
    """The text in which both stand; `before` is what was there, with the faults within it."""
    number = f"0x{fault.number:08X}u"
    planted = f"Faults::planted({number})"
    if fault.chosen:
        text = fault.chosen.replace("PLANTED_AT_START", f"Faults::plantedAtStart({number})")
        return text.replace("PLANTED", planted).replace("BEFORE", before)
    if is_statement(fault.was):
        after = f"{{ {fault.now} }}" if fault.now else "{}"
        return f"if ({planted}) {after} else {{ {before} }}"
    return f"({planted} ? ({fault.now}) : ({before}))"


def nested(faults, text):
    """The faults of one file with their places: (begin, end, fault, those within)."""
    found = [(*place(fault, text), fault) for fault in faults]
    found.sort(key=lambda each: (each[0], -each[1]))
    roots, open_ones = [], []
    for begin, end, fault in found:
        while open_ones and open_ones[-1][1] <= begin:
            open_ones.pop()
        if open_ones and open_ones[-1][1] < end:
            raise Malformed(f"{fault.name} overlaps {open_ones[-1][2].name}")
        node = (begin, end, fault, [])
        (open_ones[-1][3] if open_ones else roots).append(node)
        open_ones.append(node)
    return roots


def rendered(text, begin, end, nodes):
    """A part of the text, with the faults in it."""
    pieces, at = [], begin
    for node_begin, node_end, fault, within in nodes:
        pieces.append(text[at:node_begin])
        pieces.append(alternatives(fault, rendered(text, node_begin, node_end, within)))
        at = node_end
    return "".join(pieces) + text[at:end]


def planted(text, faults, alone=None):
    """The text with all faults that can be chosen, or with the one that stands alone in it instead.

    A replacement takes one line and what was there keeps its lines, so lines keep their numbers.
    """
    if alone:
        begin, end = place(alone, text)
        lines = "\n" * text.count("\n", begin, end)
        return text[:begin] + alone.now + lines + text[end:]
    chosen = [fault for fault in faults if not fault.alone]
    return rendered(text, 0, len(text), nested(chosen, text))
