"""What a session and a result tell."""

from __future__ import annotations

from dataclasses import dataclass
from enum import Enum
from typing import Any, NamedTuple


class _Name(str, Enum):
    """A name that is equal to its text."""

    __str__ = str.__str__


class Verdict(_Name):
    """How sure it is that a capture was joined rightly."""

    PROVEN = "proven"
    """The motion is the only one that the pixels allow."""

    LIKELY = "likely"
    """The captures do not agree to the pixel, but one motion explains them far better than every other."""

    DOUBTFUL = "doubtful"
    """Several motions explain the pixels alike. One was taken, the others are listed."""

    NONE = "none"
    """The captures have nothing in common."""


class State(_Name):
    """What has become of a capture."""

    PLACED = "placed"
    """It was added."""

    REPEATED = "repeated"
    """It shows the same as the last capture that was added, and was dropped."""

    DOUBTFUL = "doubtful"
    """It was added, and several places explain it alike."""

    TOO_FAST = "too fast"
    """It was added, but nothing joins it to those before it: scroll back a little."""

    KEPT = "kept"
    """It is part of the stitched picture."""

    LEFT_OUT = "left out"
    """With phase correlation: it has not moved, and is not part of the stitched picture."""


class Motion(NamedTuple):
    """How far the content moved, in pixels: scrolling down by 100 pixels gives -100 rows."""

    rows: int
    columns: int


@dataclass(frozen=True)
class Join:
    """How a capture is joined to what was seen before it."""

    verdict: Verdict
    """How sure the motion is."""

    motion: Motion
    """Since the capture before; (0, 0) where that is not known."""

    compared: int
    """How many pixels of the overlap were compared under the motion."""

    equal: int
    """How many of those are equal."""

    alternatives: tuple[Motion, ...]
    """The other motions that explain the pixels as well; empty unless doubtful."""

    @classmethod
    def _of(cls, value: tuple[Any, ...]) -> Join:
        verdict, rows, columns, compared, equal, alternatives = value
        others = tuple(Motion(*motion) for motion in alternatives)
        return cls(Verdict(verdict), Motion(rows, columns), compared, equal, others)


@dataclass(frozen=True)
class Outcome:
    """What has become of a capture when it was added, as it stands now.

    Later captures may join parts or take a proof back. Where nothing is known, the values are None:
    for a repeat, and with phase correlation, whose joins are found by the final stitch.
    """

    state: State
    """PLACED, REPEATED, DOUBTFUL or TOO_FAST."""

    part: int | None
    """The part of the picture, from 0 on."""

    row: int | None
    """Of the capture's first pixel, relative to the first capture of its part; may be negative."""

    column: int | None
    """The same for its column."""

    join: Join | None
    """How it is joined; None for the first capture of a part."""

    joined_to: int | None
    """The earlier capture that the join was proven against, counted from 0 without repeats."""

    @classmethod
    def _of(cls, value: tuple[Any, ...]) -> Outcome:
        state, part, row, column, join, joined_to = value
        joined = None if joined_to is None else Join._of(join)
        return cls(State(state), part, row, column, joined, joined_to)


@dataclass(frozen=True)
class PlacedCapture:
    """Where a capture has gone."""

    name: str
    """Its file, or "capture 3" for the third one when it came without a name."""

    state: State
    """KEPT, REPEATED or LEFT_OUT."""

    part: int
    """The part of the picture that it belongs to, from 0 on."""

    row: int
    """Where its first pixel lies in that part; a repeat's is that of what it repeats."""

    column: int
    """The same for its column."""

    join: Join | None
    """How it is joined to the captures before; None for the first one."""

    @classmethod
    def _of(cls, value: tuple[Any, ...]) -> PlacedCapture:
        name, state, part, row, column, join = value
        return cls(name, State(state), part, row, column, None if join is None else Join._of(join))


class Borders(NamedTuple):
    """The rows and columns of a capture, at its edges, that stand still."""

    top: int
    bottom: int
    left: int
    right: int
