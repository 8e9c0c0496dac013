"""What came of a stitch."""

from __future__ import annotations

import errno
import os
from collections import Counter
from collections.abc import Callable, Iterator
from functools import cached_property
from typing import TYPE_CHECKING, Any

from . import _core
from ._settings import thread_count, whole_number
from ._values import Borders, Join, PlacedCapture

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

_MOST_ROWS = 2**31 - 1
_ROWS_AT_A_TIME = 256
_STANDARD_OUTPUT = "-"


class Picture:
    """A stitched picture, whose pixels are made when somebody asks for them.

    Arrays have the shape (H, W, 4) and the dtype uint8: red, green, blue and straight alpha, which
    is 0 where no capture shows anything. They are the caller's own and may be written to. Any thread
    may ask; the GIL is released meanwhile.
    """

    def __init__(self, picture: _core.Picture, spill_folder: object) -> None:
        self._picture = picture
        self._spill_folder = spill_folder

    @property
    def width(self) -> int:
        """In pixels."""
        return self._picture.width

    @property
    def height(self) -> int:
        """In pixels."""
        return self._picture.height

    @property
    def shape(self) -> tuple[int, int, int]:
        """That of the whole picture's array: (height, width, 4)."""
        return (self.height, self.width, 4)

    @property
    def is_opaque(self) -> bool:
        """Whether no pixel is even partly transparent."""
        return self._picture.is_opaque

    def array(self) -> NDArray[np.uint8]:
        """The whole picture, made anew with every call: shape (H, W, 4), dtype uint8."""
        return self.area(0, 0, self.width, self.height)

    def area(self, x: int, y: int, width: int, height: int) -> NDArray[np.uint8]:
        """A part of the picture: shape (height, width, 4), dtype uint8.

        x is the first column, y the first row. Raises ValueError when the area is empty or reaches
        outside the picture, and OSError when a capture that waits in a file cannot be read back.
        """
        return self._picture.area(
            *(whole_number(name, value, -_MOST_ROWS, _MOST_ROWS)
              for name, value in (("x", x), ("y", y), ("width", width), ("height", height)))
        )

    def rows(self, height: int = _ROWS_AT_A_TIME) -> Iterator[NDArray[np.uint8]]:
        """The picture from top to bottom, that many rows at a time, in new arrays.

        Each has the shape (height, W, 4), the last one perhaps less rows. Only these are in memory,
        so that a picture may be larger than that.
        """
        whole_number("height", height, 1, _MOST_ROWS)
        starts = range(0, self.height, height)
        return (self.area(0, y, self.width, min(height, self.height - y)) for y in starts)

    def __array__(self, dtype: Any = None, copy: bool | None = None) -> NDArray[Any]:
        if copy is False:
            raise ValueError("a picture's pixels are made when they are asked for")
        array = self.array()
        return array if dtype is None else array.astype(dtype, copy=False)

    def __repr__(self) -> str:
        return f"<velscrollingcapture.Picture: {self.width} x {self.height} pixels>"


class Result:
    """What came of a stitch: one picture, or several where captures are missing in between."""

    def __init__(self, stitched: _core.Stitched, threads: int, spill_folder: object) -> None:
        self._stitched = stitched
        self._threads = threads
        self._parts = tuple(Picture(part, spill_folder) for part in stitched.parts)

    @property
    def parts(self) -> tuple[Picture, ...]:
        """The pictures, in the order in which they begin. There is at least one."""
        return self._parts

    @cached_property
    def picture(self) -> NDArray[np.uint8]:
        """The whole picture: shape (H, W, 4), dtype uint8; red, green, blue, straight alpha.

        It is made when it is first asked for, and kept. Raises ValueError when the picture is in
        several parts: take result.parts[i].array() then.
        """
        return self._only_part().array()

    def area(self, x: int, y: int, width: int, height: int) -> NDArray[np.uint8]:
        """A part of the only picture; see Picture.area."""
        return self._only_part().area(x, y, width, height)

    def rows(self, height: int = _ROWS_AT_A_TIME) -> Iterator[NDArray[np.uint8]]:
        """The only picture, some rows at a time; see Picture.rows."""
        return self._only_part().rows(height)

    @cached_property
    def captures(self) -> tuple[PlacedCapture, ...]:
        """What has become of every capture, repeats among them, in the order they were added."""
        return tuple(PlacedCapture._of(value) for value in self._stitched.captures)

    @property
    def joins(self) -> tuple[Join, ...]:
        """How each capture but the first is joined to those before it."""
        return tuple(capture.join for capture in self.captures if capture.join is not None)

    @property
    def warnings(self) -> list[str]:
        """One line for each join that is not sure; empty when all are."""
        return self._stitched.warnings

    @property
    def borders(self) -> Borders | None:
        """With phase correlation, the borders that were found; None when there are none."""
        borders = self._stitched.borders
        return None if borders is None else Borders(*borders)

    def save(
        self,
        path: str | os.PathLike[str],
        *,
        jpeg_quality: int = 95,
        png_level: int = 3,
        background: str | None = None,
        split: int | None = None,
        report: str | os.PathLike[str] | None = None,
        threads: int | None = None,
        progress: Callable[[int], object] | None = None,
    ) -> list[str]:
        """Writes the picture, row by row, and gives the names of the files.

        The extension tells the format: .png, .tif, .tiff, .bmp, .webp (lossless), .jpg or .jpeg; "-"
        is standard output, in PNG. Several parts become page-1.png, page-2.png and so on. No file
        appears before everything has been written.

        jpeg_quality is 1 to 100, png_level 0 (fast) to 9 (small). background, such as "#f0f0f0" or
        "white", shows where no capture does. split cuts the picture into files of at most that many
        rows. report is a JSON file for what was found. threads are those of the session unless given.
        progress is called on this thread with 0 to 100.

        Raises ValueError for an extension that stands for no format, a picture that the format cannot
        hold, a file that is one of the captures, and a report called like a file of the picture;
        OSError when a file cannot be written.
        """
        options = output_options(
            path, jpeg_quality=jpeg_quality, png_level=png_level, background=background, split=split,
            report=report, threads=self._threads if threads is None else threads,
        )
        return self._stitched.save(options, progress)[0]

    def _only_part(self) -> Picture:
        if len(self._parts) > 1:
            raise ValueError(
                f"the picture is in {len(self._parts)} parts, since captures are missing in between; "
                "take one of result.parts"
            )
        return self._parts[0]

    def __repr__(self) -> str:
        sizes = ", ".join(f"{part.width} x {part.height}" for part in self._parts)
        verdicts = Counter(join.verdict for join in self.joins)
        joins = ", ".join(f"{count} {verdict}" for verdict, count in verdicts.items()) or "none"
        return (
            f"<velscrollingcapture.Result: {sizes} pixels from {len(self.captures)} captures; "
            f"joins: {joins}>"
        )


def output_options(
    path: str | os.PathLike[str],
    *,
    jpeg_quality: int,
    png_level: int,
    background: str | None,
    split: int | None,
    report: str | os.PathLike[str] | None,
    threads: int | None,
) -> dict[str, Any]:
    """How to save, in the types of the compiled module. Raises what Result.save raises for it."""
    for output in (path, report):
        if output is not None:
            _require_writable(os.fspath(output))
    options = {
        "path": os.fsencode(path),
        "report": b"" if report is None else os.fsencode(report),
        "jpeg_quality": whole_number("jpeg_quality", jpeg_quality, 1, 100),
        "png_level": whole_number("png_level", png_level, 0, 9),
        "background": background,
        "split": None if split is None else whole_number("split", split, 1, _MOST_ROWS),
        "threads": thread_count(threads),
    }
    _core.check_outputs(options)
    return options


def _require_writable(path: str) -> None:
    """Raises what opening the file for writing would raise, without touching it."""
    if path == _STANDARD_OUTPUT:
        return
    folder = os.path.dirname(os.path.realpath(path))
    if not os.path.isdir(folder):
        raise _os_error(errno.ENOENT, path)
    if os.path.isdir(path):
        raise _os_error(errno.EISDIR, path)
    if not os.access(path if os.path.exists(path) else folder, os.W_OK):
        raise _os_error(errno.EACCES, path)


def _os_error(number: int, path: str) -> OSError:
    return OSError(number, os.strerror(number), path)
