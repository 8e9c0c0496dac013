"""Ctrl-C, and other threads of Python while the library works."""

import os
import signal
import sys
import tempfile
import threading
import time
import unittest

import velscrollingcapture as vel
from pages import captures_of, page
from velscrollingcapture import _core
from velscrollingcapture._settings import checked

class CtrlC(unittest.TestCase):
    def assert_stops_early(self, make_work):
        """Presses Ctrl-C after a fifth of the time that the whole work takes."""
        work = make_work()
        started = time.monotonic()
        work()
        whole = time.monotonic() - started
        work = make_work()
        timer = threading.Timer(whole / 5, signal.raise_signal, [signal.SIGINT])
        timer.start()
        started = time.monotonic()
        with self.assertRaises(KeyboardInterrupt):
            work()
        self.assertLess(time.monotonic() - started, whole * 0.7)

    def test_stops_a_detection(self):
        captures = captures_of(page(1200, 600), 600, 30)

        def make_work():
            session = vel.Session(engine="phase-correlation", threads=1)
            for capture in captures:
                session.add(capture)
            return session.result

        self.assert_stops_early(make_work)

    def test_stops_saving_and_leaves_nothing_half_written(self):
        result = vel.stitch(captures_of(page(3000, 1200), 2000, 1000), threads=1)
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "page.png")
            self.assert_stops_early(lambda: lambda: result.save(file, png_level=6))
            self.assertEqual(os.listdir(folder), ["page.png"])

    def test_stops_reading_files(self):
        with tempfile.TemporaryDirectory() as folder:
            waiting = os.path.join(folder, "waiting.png")
            os.mkfifo(waiting)

            def press():
                with open(waiting, "wb"):  # goes on when it is read
                    signal.raise_signal(signal.SIGINT)
                    time.sleep(0.2)

            thread = threading.Thread(target=press)
            thread.start()
            with self.assertRaises(KeyboardInterrupt):
                vel.stitch([waiting])
            thread.join()

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
        session = _core.Session(checked({"preview": (250, 250)}))
        loaded = _core.Capture.of_array(capture)
        prepared = session.prepare(loaded)
        steps = {
            "copying": lambda: _core.Capture.of_array(capture),
            "preparing": lambda: session.prepare(loaded),
            "adding": lambda: session.add(b"capture", prepared),
            "showing": session.preview,
        }
        for name, step in steps.items():
            with self.subTest(name):
                self.assert_lets_others_work(step)

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
