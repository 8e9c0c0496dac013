"""Uses all of the package, as many rounds as the argument says."""

import sys
import tempfile

import numpy as np

import velscrollingcapture as vel
from pages import captures_of, page


def complain(percent):
    raise LookupError(percent)


def provoke(*attempts):
    """What is refused must not be kept, either."""
    for attempt in attempts:
        try:
            attempt()
        except (LookupError, ValueError):
            continue
        raise AssertionError("nothing was raised")


def work(folder):
    captures = captures_of(page(200, 80), 100, 40)
    session = vel.Session(preview=(60, 60), threads=1)
    for capture in [*captures, captures[-1], captures[0][::-1]]:
        repr(session.add(capture))
    session.preview()
    result = session.result(lambda percent: None)
    repr((result, result.captures, result.joins, result.warnings))
    picture = result.parts[0]
    repr((picture.array(), list(picture.rows(64)), picture.area(1, 1, 5, 5)))
    files = result.save(f"{folder}/page.png", report=f"{folder}/page.json", progress=lambda percent: None)
    provoke(
        lambda: session.result(complain),
        lambda: session.add(np.zeros((3, 3), np.uint8)),
        lambda: session.add(np.zeros((3, 3, 2), np.uint8)),
        lambda: picture.area(-1, 0, 1, 1),
        lambda: result.save(f"{folder}/page.xyz"),
    )
    vel.stitch(files[:1], engine="phase-correlation", threads=1, memory_limit=1).parts[0].array()


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        for _ in range(int(sys.argv[1])):
            work(folder)
