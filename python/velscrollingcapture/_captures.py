"""Captures from arrays, images and files."""

from __future__ import annotations

import errno
import glob
import os
import sys
from collections.abc import Iterable, Iterator
from typing import TYPE_CHECKING, Any, Union

import numpy as np

from . import _core

if TYPE_CHECKING:
    from numpy.typing import NDArray
    from PIL.Image import Image

    CaptureLike = Union["NDArray[np.uint8]", Image, str, "os.PathLike[str]", bytes]

_CHANNELS_LAST = 3
_WITHOUT_CONVERSION = ("L", "RGB", "RGBA")
_EIGHT_BITS = ("1", "P", "PA", "LA", "La", "RGBa", "RGBX", "CMYK", "YCbCr", "HSV", "LAB")


def can_wait(capture: Any) -> bool:
    """Whether a capture stays as it is, so that another thread may load it later."""
    return isinstance(capture, (str, os.PathLike, bytes))


def name_of(capture: Any, number: int) -> bytes:
    """What a capture is called in messages: its path, or "capture 3"."""
    if isinstance(capture, (str, os.PathLike)):
        return os.fsencode(capture)
    return b"capture %d" % number


def load(capture: CaptureLike, name: bytes) -> _core.Capture:
    """The capture's pixels, copied once."""
    if isinstance(capture, (str, os.PathLike)):
        with open(capture, "rb") as file:
            return _core.Capture.of_file(name, file.read())
    if isinstance(capture, (bytes, bytearray, memoryview)):
        return _core.Capture.of_file(name, bytes(capture))
    return _core.Capture.of_array(_array_of(capture))


def _array_of(capture: Any) -> NDArray[Any]:
    images = sys.modules.get("PIL.Image")
    if images is not None and isinstance(capture, images.Image):
        return _array_of_image(capture)
    if hasattr(capture, "__array__") or hasattr(capture, "__array_interface__"):
        return np.asarray(capture)
    raise TypeError(
        "a capture is a numpy array, a PIL image, a path, or the bytes of an image file, not "
        f"{type(capture).__name__}"
    )


def _array_of_image(image: Image) -> NDArray[np.uint8]:
    if image.mode in _WITHOUT_CONVERSION and "transparency" not in image.info:
        return np.asarray(image)
    if image.mode in _WITHOUT_CONVERSION + _EIGHT_BITS:
        return np.asarray(image.convert("RGBA"))
    raise ValueError(f"a PIL image has 8 bits a channel, not the mode {image.mode!r}; convert it")


def expand(captures: Any, outputs: Iterable[bytes] = ()) -> Iterator[CaptureLike]:
    """The captures that somebody means who names a folder, a glob, or an iterable of captures."""
    if isinstance(captures, (str, os.PathLike)):
        return iter(find([captures], outputs))
    if isinstance(captures, (bytes, bytearray, memoryview)):
        raise TypeError("captures are a list, a folder or a glob; put a single capture into a list")
    if isinstance(captures, np.ndarray) and captures.ndim <= _CHANNELS_LAST:
        raise TypeError("captures are a list of arrays, not one array; put a single capture into a list")
    try:
        return iter(captures)
    except TypeError:
        raise TypeError(
            f"captures are a list, a folder or a glob, not {type(captures).__name__}"
        ) from None


def find(names: Iterable[str | os.PathLike[str]], outputs: Iterable[bytes] = ()) -> list[str]:
    """The files that names stand for: files, folders and globs, in natural order.

    Files that are about to be written (outputs) are left out of folders and globs.
    """
    paths = [os.fspath(name) for name in names]
    for path in paths:
        if not os.path.lexists(path) and not glob.has_magic(path):
            raise FileNotFoundError(errno.ENOENT, os.strerror(errno.ENOENT), path)
    return _core.find_captures([os.fsencode(path) for path in paths], list(outputs))
