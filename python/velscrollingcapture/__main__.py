"""Stitches image files: python3 -m velscrollingcapture captures/ -o page.png"""

from __future__ import annotations

import argparse
import contextlib
import os
import re
import signal
import sys
from typing import Any, NoReturn

from . import Session, __version__, _captures
from ._result import Result, output_options

_PROGRAM = "velscrollingcapture"
_DONE, _FAILED, _WRONG_USAGE, _DONE_IN_PARTS, _CANCELLED = 0, 1, 2, 3, 130
_STANDARD_OUTPUT = "-"


class _Failure(Exception):
    def __init__(self, status: int, cause: str | BaseException) -> None:
        super().__init__(cause if isinstance(cause, str) else _line_about(cause))
        self.status = status


class _Parser(argparse.ArgumentParser):
    def error(self, message: str) -> NoReturn:
        _tell(f"{message}; see python3 -m {_PROGRAM} --help")
        sys.exit(_WRONG_USAGE)


def _tell(line: str) -> None:
    shown = "".join(character if character.isprintable() else "?" for character in line)
    with contextlib.suppress(OSError):
        print(f"{_PROGRAM}: {shown}", file=sys.stderr)


def _line_about(error: BaseException) -> str:
    if isinstance(error, MemoryError):
        return "not enough memory; use fewer --threads or stitch fewer captures at a time"
    if isinstance(error, OSError) and error.filename is not None:
        return f"{error.strerror}: {error.filename!r}"
    return str(error)


def _size(text: str) -> int:
    match = re.fullmatch(r"(\d+)\s*([kmgt]?)(i?b)?", text.strip().lower())
    if match is None:
        raise argparse.ArgumentTypeError(f"a size such as 200MiB or 1G is needed, not {text!r}")
    return int(match[1]) << 10 * " kmgt".index(match[2] or " ")


def _parser() -> argparse.ArgumentParser:
    parser = _Parser(
        prog=f"python3 -m {_PROGRAM}",
        description="Joins the captures of a scrolling window into one image.",
        epilog="Exit status: 0 done, 1 failed, 2 wrong usage or bad input, 3 written in several parts "
        "since captures are missing in between, 130 cancelled.",
        allow_abbrev=False,
    )
    add = parser.add_argument
    add("captures", metavar="CAPTURE", nargs="+", help="captures in scroll order: image files, folders, globs")
    add("-o", "--output", metavar="FILE", required=True, help="the image to write; - is standard output, in PNG")
    add("--engine", choices=("exact", "phase-correlation"), default="exact", help="how captures are joined")
    add("--orientation", choices=("vertical", "horizontal", "both"), default="both",
        help="the directions in which the content scrolled")
    add("--consistent", action="store_true", help="expect steps of equal length")
    add("--fixed", choices=("once", "keep"), help="what becomes of toolbars and other parts that stand still")
    add("--borders", action="store_true", help="with phase-correlation: find toolbars, and show them once")
    add("--keep-repeats", action="store_true", help="do not drop captures that repeat the one before")
    add("--strict", action="store_true", help="fail, and write nothing, when a join is doubtful or missing")
    add("--split", metavar="ROWS", type=int, help="cut the image into files of at most that many rows")
    add("--background", metavar="COLOUR", help="what shows where no capture does: #rrggbb or a basic name")
    add("--jpeg-quality", metavar="N", type=int, default=95, help="1 to 100")
    add("--png-level", metavar="N", type=int, default=3, help="0 (fast) to 9 (small)")
    add("--memory-limit", metavar="SIZE", type=_size, help="keep no more captures in memory, such as 200MiB")
    add("--spill-folder", metavar="DIR", help="where the others wait")
    add("--report", metavar="FILE", help="write what was found to a JSON file")
    add("--threads", metavar="N", type=int, help="the most threads that work at once")
    add("-q", "--quiet", action="count", default=0, help="print warnings only; twice, nothing but errors")
    add("--version", action="version", version=f"{_PROGRAM} {__version__}")
    return parser


def _output_options(options: argparse.Namespace) -> dict[str, Any]:
    return output_options(
        options.output,
        jpeg_quality=options.jpeg_quality,
        png_level=options.png_level,
        background=options.background,
        split=options.split,
        report=options.report,
        threads=options.threads,
    )


def _session(options: argparse.Namespace) -> Session:
    if options.engine != "exact" and options.fixed is not None:
        raise ValueError("--fixed needs --engine exact; with phase-correlation there is --borders")
    return Session(
        engine=options.engine,
        orientation=options.orientation,
        consistent=options.consistent,
        fixed=options.fixed or "once",
        borders=options.borders,
        threads=options.threads,
        keep_repeats=options.keep_repeats,
        memory_limit=options.memory_limit,
        spill_folder=options.spill_folder,
    )


def _read(options: argparse.Namespace) -> tuple[Session, dict[str, Any]]:
    """Reads the captures, and how to save. What fails here is the fault of what was asked for."""
    try:
        output = _output_options(options)
        session = _session(options)
        results = [os.fsencode(name) for name in (options.output, options.report) if name is not None]
        session._add_all(_captures.find(options.captures, results))
        return session, output
    except (OSError, TypeError, ValueError) as error:
        raise _Failure(_WRONG_USAGE, error) from error


def _result(session: Session, options: argparse.Namespace) -> Result:
    result = session.result()
    if options.strict and result.warnings:
        raise _Failure(_FAILED, f"{result.warnings[0]}; nothing was written, as --strict asks")
    return result


def _run(options: argparse.Namespace) -> tuple[Result, str]:
    """Stitches and saves, and gives a line that says what was done."""
    session, output = _read(options)
    if session.exceeds_memory_limit and options.quiet < 2:
        _tell("warning: captures stay in memory beyond --memory-limit, since they cannot be written to files")
    try:
        result = _result(session, options)
        _, summary = result._stitched.save(output, None)
        return result, summary
    except (MemoryError, OSError, RuntimeError, TypeError, ValueError) as error:
        raise _Failure(_FAILED, error) from error


def _conclude(result: Result, summary: str, options: argparse.Namespace) -> int:
    if options.quiet < 2:
        for warning in result.warnings:
            _tell(f"warning: {warning}")
    if options.quiet < 1:
        uses_output = _STANDARD_OUTPUT in (options.output, options.report)
        with contextlib.suppress(OSError):
            print(summary, file=sys.stderr if uses_output else sys.stdout, flush=True)
    return _DONE if len(result.parts) == 1 else _DONE_IN_PARTS


def _stop_like_ctrl_c(number: int) -> None:
    if signal.getsignal(number) != signal.SIG_IGN:
        signal.signal(number, signal.default_int_handler)


def main(arguments: list[str] | None = None) -> int:
    """Does what the command line asks for, and gives the exit status."""
    options = _parser().parse_args(arguments)
    _stop_like_ctrl_c(signal.SIGTERM)
    _stop_like_ctrl_c(signal.SIGHUP)
    try:
        result, summary = _run(options)
    except _Failure as failure:
        _tell(str(failure))
        return failure.status
    except MemoryError as error:
        _tell(_line_about(error))
        return _FAILED
    except KeyboardInterrupt:
        _tell("cancelled, nothing was written")
        return _CANCELLED
    return _conclude(result, summary, options)


if __name__ == "__main__":
    sys.exit(main())
