"""What ends the report with a message, and what leaves a goal open."""


class ReportError(Exception):
    """The input is wrong: the message says where, what was found and what was expected."""


class NotMeasured(Exception):
    """A figure is not there for a reason that is no mistake; the message says which."""
