"""Nothing is kept of what was let go of."""

import gc
import subprocess
import sys
import tempfile
import tracemalloc
import unittest
from pathlib import Path

import numpy as np
from PIL import Image

import velscrollingcapture as vel
from pages import captures_of, page


def resident_bytes():
    pages = int(Path("/proc/self/statm").read_text().split()[1])
    return pages * 4096


# Prints by how much memory grew at the most while a capture was added, and while a picture was made.
COPIES = """
import resource
import numpy as np
import velscrollingcapture as vel

def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024

vel.stitch([np.zeros((50, 50, 4), np.uint8)], threads=1).picture
captures = [np.full((4000, 4000, 4), colour, np.uint8) for colour in (255, 128)]
captures[1][..., 3] = 255
before = peak()
session = vel.Session(engine="phase-correlation")
for capture in captures:
    session.add(capture)
print((peak() - before) / sum(capture.nbytes for capture in captures))
result = vel.stitch(captures[1:])
before = peak()
picture = result.parts[0].array()
print((peak() - before) / picture.nbytes)
"""


class Copies(unittest.TestCase):
    def test_one_is_made_of_a_capture_and_none_of_a_picture(self):
        run = subprocess.run([sys.executable, "-c", COPIES], check=True, capture_output=True, text=True)
        adding, making = map(float, run.stdout.split())
        self.assertLess(adding, 1.5)
        self.assertLess(making, 1.5)


class References(unittest.TestCase):
    def setUp(self):
        self.captures = captures_of(page())

    def test_captures_and_callbacks_are_not_held(self):
        capture = self.captures[0]
        calls = []
        listener = calls.append
        session = vel.Session(preview=(50, 50))
        before = sys.getrefcount(capture), sys.getrefcount(listener)
        session.add(capture)
        result = session.result(listener)
        with tempfile.TemporaryDirectory() as folder:
            result.save(Path(folder, "page.png"), progress=listener)
        gc.collect()
        self.assertEqual((sys.getrefcount(capture), sys.getrefcount(listener)), before)

    def test_refused_arguments_are_not_held(self):
        wrong = np.zeros((4, 4, 2), np.uint8)
        before = sys.getrefcount(wrong)
        for _ in range(100):
            with self.assertRaises(ValueError):
                vel.Session().add(wrong)
        gc.collect()
        self.assertEqual(sys.getrefcount(wrong), before)

    def test_raised_exceptions_are_not_held(self):
        class Complaint(Exception):
            pass

        def complain(percent):
            raise Complaint

        session = vel.Session()
        session.add(self.captures[0])
        for _ in range(100):
            with self.assertRaises(Complaint):
                session.result(complain)
        gc.collect()
        held = [thing for thing in gc.get_objects() if isinstance(thing, Complaint)]
        self.assertEqual(held, [])

    def work(self, folder):
        session = vel.Session(preview=(60, 60))
        for capture in self.captures:
            session.add(capture)
        session.preview()
        result = session.result(lambda percent: None)
        result.picture
        result.captures
        for rows in result.rows(64):
            rows.sum()
        result.save(Path(folder, "page.png"), progress=lambda percent: None)
        vel.stitch([Path(folder, "page.png")], memory_limit=1)
        vel.stitch([Image.fromarray(self.captures[0])], engine="phase-correlation").picture

    def test_memory_stays_flat_over_many_rounds(self):
        picture_bytes = page().nbytes
        with tempfile.TemporaryDirectory() as folder:
            for _ in range(10):
                self.work(folder)
            gc.collect()
            tracemalloc.start()
            self.addCleanup(tracemalloc.stop)
            traced, resident = tracemalloc.get_traced_memory()[0], resident_bytes()
            rounds = 60
            for _ in range(rounds):
                self.work(folder)
            gc.collect()
            self.assertLess(tracemalloc.get_traced_memory()[0] - traced, rounds * 100)
            self.assertLess(resident_bytes() - resident, rounds * picture_bytes / 4)


if __name__ == "__main__":
    unittest.main()
