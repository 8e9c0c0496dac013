"""What a session is asked to do."""

from __future__ import annotations

import os
from collections.abc import Mapping
from typing import Any, TypedDict

_MOST_THREADS = 1024
_LONGEST_SIDE = 10000
_DEFAULT_THRESHOLDS = (10, 2)
_CHOICES = {
    "engine": ("exact", "phase-correlation"),
    "orientation": ("vertical", "horizontal", "both"),
    "fixed": ("once", "keep"),
}


class SessionOptions(TypedDict, total=False):
    """The settings of Session and stitch, all of which may be left out."""

    engine: str
    """How captures are joined: "exact", proven on the pixels (default), or "phase-correlation"."""

    orientation: str
    """In which directions the content may move: "vertical", "horizontal" or "both" (default)."""

    consistent: bool
    """Whether steps are expected to be even; of several likely motions, the one before then counts."""

    fixed: str
    """With exact joins, what becomes of toolbars and the like: shown "once" (default), or "keep"."""

    borders: bool | tuple[int, int]
    """With phase correlation: find what stands still at the edges, and show it once. A tuple gives
    the grey-level difference (0 to 255) and the number of changed neighbours (0 to 8) above which a
    pixel has changed; True stands for (10, 2)."""

    threads: int | None
    """The most threads that work at once; None for all cores that the process may use."""

    keep_repeats: bool
    """Whether captures are kept that show the same as the one before."""

    memory_limit: int | None
    """Bytes of captures to keep in memory; the others wait in files. None: all stay in memory."""

    spill_folder: str | os.PathLike[str] | None
    """Where those files go, in a folder of their own; None for the system's temporary folder."""

    preview: tuple[int, int] | None
    """The width and height in pixels that the live preview fits into. None: there is no preview."""


_DEFAULTS: dict[str, Any] = {
    "engine": "exact",
    "orientation": "both",
    "consistent": False,
    "fixed": "once",
    "borders": False,
    "threads": None,
    "keep_repeats": False,
    "memory_limit": None,
    "spill_folder": None,
    "preview": None,
}


def whole_number(name: str, value: Any, smallest: int, largest: int) -> int:
    if isinstance(value, bool) or not hasattr(value, "__index__"):
        raise TypeError(f"{name} is a whole number, not {value!r}")
    if not smallest <= value <= largest:
        raise ValueError(f"{name} is a whole number from {smallest} to {largest}, not {value}")
    return int(value)


def thread_count(threads: int | None) -> int:
    if threads is None:
        usable = os.sched_getaffinity(0) if hasattr(os, "sched_getaffinity") else range(os.cpu_count() or 1)
        return min(len(usable), _MOST_THREADS)
    return whole_number("threads", threads, 1, _MOST_THREADS)


def _pair(name: str, value: Any, smallest: int, largest: tuple[int, int]) -> tuple[int, int]:
    try:
        first, second = value
    except TypeError:
        raise TypeError(f"{name} is a tuple of two whole numbers, not {value!r}") from None
    return (
        whole_number(f"{name}[0]", first, smallest, largest[0]),
        whole_number(f"{name}[1]", second, smallest, largest[1]),
    )


def _borders(value: Any) -> tuple[int, int] | None:
    if isinstance(value, bool) or value is None:
        return _DEFAULT_THRESHOLDS if value else None
    return _pair("borders", value, 0, (255, 8))


def _require_known(options: Mapping[str, Any]) -> None:
    for name in options:
        if name not in _DEFAULTS:
            raise TypeError(f"there is no setting {name!r}, but {', '.join(_DEFAULTS)}")
    for name, choices in _CHOICES.items():
        if name in options and options[name] not in choices:
            known = " or ".join(repr(choice) for choice in choices)
            raise ValueError(f"{name} is {known}, not {options[name]!r}")


def checked(options: Mapping[str, Any]) -> dict[str, Any]:
    """All settings, with defaults for those that are missing, in the types of the compiled module."""
    _require_known(options)
    settings = {**_DEFAULTS, **options}
    if settings["engine"] == "exact" and _borders(settings["borders"]):
        raise ValueError("borders needs engine='phase-correlation'; with 'exact' there is fixed='once'")
    if settings["spill_folder"] is not None and settings["memory_limit"] is None:
        raise ValueError("spill_folder needs memory_limit, without which no capture waits in a file")
    limit, folder, preview = (settings[name] for name in ("memory_limit", "spill_folder", "preview"))
    settings.update(
        consistent=bool(settings["consistent"]),
        keep_repeats=bool(settings["keep_repeats"]),
        borders=_borders(settings["borders"]),
        threads=thread_count(settings["threads"]),
        memory_limit=None if limit is None else whole_number("memory_limit", limit, 0, 2**63 - 1),
        spill_folder="" if folder is None else os.fspath(folder),
        preview=None if preview is None else _pair("preview", preview, 1, (_LONGEST_SIDE,) * 2),
    )
    return settings
