"""Figures, and the table that shows them."""

import math
from dataclasses import dataclass
from statistics import median


@dataclass(frozen=True)
class Row:
    what: str
    ours: float
    unit: str
    peer: float | None = None
    peerName: str = ""
    most: float | None = None  # the aim, in the same unit
    noMoreThanPeer: bool = False  # the aim is the peer's figure

    def ratio(self):
        return self.ours / self.peer if self.peer else None

    def aim(self):
        if self.noMoreThanPeer:
            return "1.00 of the peer"
        return "" if self.most is None else f"{self.most:g} {self.unit}".rstrip()

    def isMissed(self):
        limit = self.peer if self.noMoreThanPeer else self.most
        return limit is not None and self.ours > limit

    def cells(self):
        ratio = self.ratio()
        peer = "" if self.peer is None else f"{self.peerName} {figure(self.peer)}"
        return (self.what, f"{figure(self.ours)} {self.unit}".rstrip(), peer,
                "" if ratio is None else f"{ratio:.2f}", self.aim(),
                "missed" if self.isMissed() else ("met" if self.aim() else ""))


def figure(value):
    if value == int(value):
        return f"{int(value):,}"
    return f"{value:.1f}" if abs(value) >= 10 else f"{value:.2f}"


def percentile(values, part):
    """The smallest value that at least `part` percent of all don't exceed."""
    ordered = sorted(values)
    return ordered[max(0, math.ceil(len(ordered) * part / 100) - 1)]


def middle(samples, name):
    return median(getattr(sample, name) for sample in samples)


def show(rows):
    """The table, as Markdown that can be read as it is."""
    head = ("measured", "ours", "peer", "ratio", "aim", "")
    lines = [head, *(row.cells() for row in rows)]
    widths = [max(len(line[i]) for line in lines) for i in range(len(head))]
    text = ["| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |"
            for line in lines]
    text.insert(1, "|" + "|".join("-" * (width + 2) for width in widths) + "|")
    return "\n".join(text)
