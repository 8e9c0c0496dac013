"""Sessions, and a stitch in one call."""

from __future__ import annotations

import os
import shutil
import tempfile
import weakref
from collections import deque
from collections.abc import Callable, Iterable, Iterator
from concurrent.futures import Future, ThreadPoolExecutor
from typing import TYPE_CHECKING, Any

from . import _captures, _core
from ._result import Result
from ._settings import checked
from ._values import Outcome

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray
    from typing_extensions import Unpack

    from ._captures import CaptureLike
    from ._settings import SessionOptions

_Loaded = Callable[[], _core.PreparedCapture]


class _SpillFolder:
    """A folder for spill files that goes with the last session or result that needs it."""

    def __init__(self, parent: str) -> None:
        self.path = tempfile.mkdtemp(prefix="velscroll-", dir=parent or None)
        weakref.finalize(self, shutil.rmtree, self.path, ignore_errors=True)


class Session:
    """One scrolling capture: takes capture after capture, says of each what has become of it, shows
    the picture as it grows, and stitches.

    The settings are those of SessionOptions. A capture is

    - a numpy array of dtype uint8 and shape (H, W), grey, (H, W, 3), red, green and blue, or
      (H, W, 4), with straight alpha; its strides do not matter,
    - a PIL image,
    - the path of an image file, or its bytes.

    All captures have one size. Their pixels are copied, once: an array may be used again as soon as
    add returns. Several threads may use a session; one works and the others wait, without the GIL.
    """

    def __init__(self, **settings: Unpack[SessionOptions]) -> None:
        options = checked(settings)
        self._threads: int = options["threads"]
        self._spill_folder = None
        if options["memory_limit"] is not None:
            self._spill_folder = _SpillFolder(options["spill_folder"])
            options["spill_folder"] = os.fsencode(self._spill_folder.path)
        self._session = _core.Session(options)
        self._given = 0

    def add(self, capture: CaptureLike) -> Outcome:
        """Adds the next capture, unless it shows the same as the last one.

        Raises ValueError for a capture that cannot be used, because of its size for one, TypeError
        for something that is no capture, OSError for a file that cannot be read, and MemoryError.
        """
        name = _captures.name_of(capture, self._given + 1)
        return self._add(name, self._session.prepare(_captures.load(capture, name)))

    def preview(self) -> NDArray[np.uint8] | None:
        """The live preview: shape (H, W, 4), dtype uint8, opaque.

        None when the settings ask for none, or nothing of it is left to show.
        """
        return self._session.preview()

    @property
    def exceeds_memory_limit(self) -> bool:
        """Whether captures stay in memory beyond the limit, since they cannot be spilled."""
        return self._session.exceeds_memory_limit()

    def result(self, progress: Callable[[int], object] | None = None) -> Result:
        """Stitches the captures that were added.

        progress is called on this thread with values from 0 to 100. What it raises stops the work
        and passes to the caller, and so does KeyboardInterrupt. With exact joins more captures may be
        added afterwards, and result called again; with phase correlation a session stitches once.

        Raises ValueError when there are no captures, MemoryError, and OSError when a capture that
        waits in a file cannot be read back.
        """
        stitched = self._session.stitch(progress)
        return Result(stitched, self._threads, self._spill_folder)

    def _add(self, name: bytes, prepared: _core.PreparedCapture) -> Outcome:
        outcome = Outcome._of(self._session.add(name, prepared))
        self._given += 1
        return outcome

    def _add_all(self, captures: Iterable[CaptureLike]) -> None:
        pool = ThreadPoolExecutor(self._threads, "velscrollingcapture")
        try:
            for name, prepared in _ahead(self._prepare_all(captures, pool), 2 * (self._threads - 1)):
                self._add(name, prepared.result())
        finally:
            pool.shutdown(wait=False, cancel_futures=True)

    def _prepare_all(
        self, captures: Iterable[CaptureLike], pool: ThreadPoolExecutor
    ) -> Iterator[tuple[bytes, Future[_core.PreparedCapture]]]:
        for number, capture in enumerate(captures, self._given + 1):
            name = _captures.name_of(capture, number)
            yield name, pool.submit(self._prepare_later(capture, name))

    def _prepare_later(self, capture: CaptureLike, name: bytes) -> _Loaded:
        if _captures.can_wait(capture):
            return lambda: self._session.prepare(_captures.load(capture, name))
        loaded = _captures.load(capture, name)
        return lambda: self._session.prepare(loaded)

    def __repr__(self) -> str:
        return f"<velscrollingcapture.Session: {self._given} captures>"


def _ahead(
    started: Iterable[tuple[bytes, Future[Any]]], most: int
) -> Iterator[tuple[bytes, Future[Any]]]:
    """What was started, in its order, with at most so many started ahead."""
    waiting: deque[tuple[bytes, Future[Any]]] = deque()
    for item in started:
        waiting.append(item)
        if len(waiting) > most:
            yield waiting.popleft()
    yield from waiting


def stitch(
    captures: str | os.PathLike[str] | Iterable[CaptureLike],
    *,
    progress: Callable[[int], object] | None = None,
    **settings: Unpack[SessionOptions],
) -> Result:
    """Joins captures into one picture.

    captures are in scroll order: an iterable of what Session.add takes, a folder of image files, or a
    glob for them; both of these in natural order, 2 before 10. Files are read, and captures compared,
    on as many threads as the settings say. The settings are those of SessionOptions; progress, what
    is raised and what Ctrl-C does are as in Session.add and Session.result.
    """
    session = Session(**settings)
    session._add_all(_captures.expand(captures))
    return session.result(progress)
