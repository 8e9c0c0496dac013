"""Ctrl-C, and other threads of Python while the library works."""

import os
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import velscrollingcapture as vel
from pages import captures_of, page

# Says "ready" once the work is under way, and prints what ended it after how long.
SCRIPT = """
import sys, threading, time
import velscrollingcapture as vel
from pages import captures_of, page

work = sys.argv[1]
session = vel.Session(engine="phase-correlation" if work == "detect" else "exact", threads=1)
for capture in captures_of(page(2400, 1200), 800, 20):
    session.add(capture)
if work == "save":
    result = session.result()
started = time.monotonic()
try:
    print("ready", flush=True)
    if work == "save":
        while True:
            result.save(sys.argv[2], png_level=9)
    else:
        session.result()
except KeyboardInterrupt:
    print("interrupted", flush=True)
"""


class CtrlC(unittest.TestCase):
    def interrupted_seconds(self, *arguments):
        process = subprocess.Popen([sys.executable, "-c", SCRIPT, *arguments], text=True,
                                   stdout=subprocess.PIPE)
        with process:
            self.assertEqual(process.stdout.readline(), "ready\n")
            time.sleep(0.1)
            sent = time.monotonic()
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.stdout.readline(), "interrupted\n")
            return time.monotonic() - sent

    def test_stops_a_detection(self):
        self.assertLess(self.interrupted_seconds("detect"), 10)

    def test_stops_saving_and_leaves_nothing_half_written(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertLess(self.interrupted_seconds("save", os.path.join(folder, "page.png")), 10)
            self.assertLessEqual(set(os.listdir(folder)), {"page.png"})

    def test_stops_a_stitch_on_the_main_thread(self):
        session = vel.Session()
        for capture in captures_of(page()):
            session.add(capture)
        with self.assertRaises(KeyboardInterrupt):
            session.result(lambda percent: signal.raise_signal(signal.SIGINT))


class OtherThreads(unittest.TestCase):
    TURNS = 5

    def assert_lets_others_work(self, work):
        """Fails unless another thread has its turns while the work is done, again and again."""
        turns = 0
        ended = threading.Event()

        def count():
            nonlocal turns
            while not ended.is_set():
                turns += 1
                time.sleep(0.0005)

        thread = threading.Thread(target=count)
        interval = sys.getswitchinterval()
        sys.setswitchinterval(1000)  # others work only when the GIL is given up
        try:
            thread.start()
            before, deadline = turns, time.monotonic() + 20
            while turns < before + self.TURNS and time.monotonic() < deadline:
                work()
            self.assertGreaterEqual(turns, before + self.TURNS)
        finally:
            sys.setswitchinterval(interval)
            ended.set()
            thread.join()

    def test_go_on_while_a_capture_is_added(self):
        capture = page(2000, 2000)
        session = vel.Session()
        self.assert_lets_others_work(lambda: session.add(capture))

    def test_go_on_while_captures_are_stitched(self):
        session = vel.Session()
        for capture in captures_of(page(1200, 800), 800, 100):
            session.add(capture)
        self.assert_lets_others_work(session.result)

    def test_go_on_while_pixels_are_made(self):
        result = vel.stitch(captures_of(page(4000, 2000), 2000, 500))
        self.assert_lets_others_work(result.parts[0].array)


if __name__ == "__main__":
    unittest.main()
