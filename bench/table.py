"""The table of ratios that the measurements end in: one row a figure, beside it the peer's and the limit's of the same run."""

from dataclasses import dataclass
from typing import Optional


@dataclass(frozen=True)
class Figure:
    """A measured amount, and whose it is when it is not ours."""
    amount: float
    unit: str  # ms, ns or MB
    whose: str = ""
    processor: Optional[float] = None  # where the amount is the clock's, of all processes that took part

    def __str__(self):
        said = f"{self.whose}{': ' if self.whose else ''}{rounded(self.amount)} {self.unit}"
        return said + (f" (processor {rounded(self.processor)})" if self.processor is not None else "")


def rounded(amount):
    digits = 0 if amount >= 100 else 1 if amount >= 10 else 2 if amount >= 1 else 3
    return f"{amount:,.{digits}f}"


@dataclass(frozen=True)
class Promise:
    """What the project promises of a row's ratio to its peer or its limit, or of its own figure."""
    of: str  # peer, limit or own
    bound: float
    aim: Optional[float] = None

    def __str__(self):
        said = {"peer": f"peer at least {self.bound:g} times ours",
                "limit": f"at most {self.bound:g} times the limit",
                "own": f"at most {self.bound:g}"}[self.of]
        return said + (f", aim {self.aim:g}" if self.aim else "")

    def is_met(self, row):
        if self.of == "peer":
            return row.peer_ratio >= self.bound
        return (row.limit_ratio if self.of == "limit" else row.own.amount) <= self.bound


@dataclass(frozen=True)
class Row:
    what: str
    own: Optional[Figure] = None
    peer: Optional[Figure] = None
    limit: Optional[Figure] = None
    promise: Optional[Promise] = None
    skipped: str = ""  # why there is no figure

    @property
    def peer_ratio(self):
        return self.peer.amount / self.own.amount

    @property
    def limit_ratio(self):
        return self.own.amount / self.limit.amount

    @property
    def verdict(self):
        return "" if self.promise is None else "yes" if self.promise.is_met(self) else "**no**"

    def cells(self):
        if self.skipped:
            return [self.what, "skipped: " + self.skipped] + [""] * (len(HEADINGS) - 2)
        return [self.what, str(self.own), str(self.peer or ""), f"{self.peer_ratio:.2f}" if self.peer else "",
                str(self.limit or ""), self.said_limit_ratio() if self.limit else "", str(self.promise or ""),
                self.verdict]

    def said_limit_ratio(self):
        said = f"{self.limit_ratio:.2f}"
        if self.own.processor is not None and self.limit.processor:
            said += f" (processor {self.own.processor / self.limit.processor:.2f})"
        return said


HEADINGS = ["What", "Parvex", "Peer", "Peer / Parvex", "Limit", "Parvex / limit", "Promised", "Met"]


def markdown(rows):
    """The rows as a table that can be read as it stands, too."""
    lines = [HEADINGS] + [row.cells() for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    lines.insert(1, ["-" * width for width in widths])
    return "".join("| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |\n" for line in lines)
