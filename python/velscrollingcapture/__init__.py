"""Joins screen captures, taken while a window scrolls, into one tall or wide picture.

    import velscrollingcapture

    result = velscrollingcapture.stitch("captures/")
    result.save("page.png")

stitch takes a folder, or an iterable of numpy arrays, PIL images, paths and bytes of image files;
Session takes one capture after the other and says of each at once what has become of it. Every join
has a verdict: whether its motion is proven on the pixels, likely, or in doubt.
"""

from ._core import __version__
from ._result import Picture, Result
from ._session import Session, stitch
from ._settings import SessionOptions
from ._values import Borders, Join, Motion, Outcome, PlacedCapture, State, Verdict

__all__ = [
    "Borders",
    "Join",
    "Motion",
    "Outcome",
    "Picture",
    "PlacedCapture",
    "Result",
    "Session",
    "SessionOptions",
    "State",
    "Verdict",
    "__version__",
    "stitch",
]
