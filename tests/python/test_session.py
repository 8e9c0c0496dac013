"""Sessions: settings, outcomes, previews and results."""

import contextlib
import os
import resource
import tempfile
import threading
import unittest

import numpy as np

import velscrollingcapture as vel
from pages import STEP, captures_of, page


class Settings(unittest.TestCase):
    def test_wrong_ones_are_told(self):
        cases = [
            ({"engine": "magic"}, ValueError, "engine is 'exact' or 'phase-correlation', not 'magic'"),
            ({"orientation": 1}, ValueError, "orientation is"),
            ({"fixed": "twice"}, ValueError, "fixed is 'once' or 'keep'"),
            ({"speed": 1}, TypeError, "no setting 'speed'"),
            ({"threads": 0}, ValueError, "from 1 to 1024, not 0"),
            ({"threads": 1.5}, TypeError, "threads is a whole number"),
            ({"threads": True}, TypeError, "threads is a whole number"),
            ({"memory_limit": -1}, ValueError, "memory_limit"),
            ({"memory_limit": 2**64}, ValueError, "memory_limit"),
            ({"preview": 250}, TypeError, "preview is a tuple"),
            ({"preview": (0, 9)}, ValueError, r"preview\[0\]"),
            ({"preview": (1, 2, 3)}, ValueError, "too many values"),
            ({"borders": True}, ValueError, "borders needs engine='phase-correlation'"),
            ({"borders": (256, 2), "engine": "phase-correlation"}, ValueError, r"borders\[0\]"),
            ({"spill_folder": "/tmp"}, ValueError, "spill_folder needs memory_limit"),
            ({"memory_limit": 1, "spill_folder": "/nowhere"}, FileNotFoundError, "/nowhere"),
        ]
        for settings, error, message in cases:
            with self.subTest(settings), self.assertRaisesRegex(error, message):
                vel.Session(**settings)

    def test_orientation_is_obeyed(self):
        captures = captures_of(page())
        self.assertEqual(len(vel.stitch(captures, orientation="vertical").parts), 1)
        self.assertGreater(len(vel.stitch(captures, orientation="horizontal").parts), 1)

    def test_repeats_are_kept_when_asked_for(self):
        capture = page(100, 60)
        states = lambda **settings: [c.state for c in vel.stitch([capture, capture], **settings).captures]
        self.assertEqual(states(), ["kept", "repeated"])
        self.assertEqual(states(keep_repeats=True), ["kept", "kept"])

    def test_phase_correlation_finds_borders(self):
        content = page(900)
        captures = captures_of(content, step=60)
        for capture in captures:
            capture[:20] = (250, 250, 250, 255)
            capture[8:12] = (30, 60, 90, 255)
        result = vel.stitch(captures, engine="phase-correlation", borders=True)
        self.assertEqual(result.borders, vel.Borders(20, 0, 0, 0))
        self.assertIsNone(vel.stitch(captures, engine="phase-correlation").borders)

    def test_spill_files_wait_in_a_private_folder_and_go_with_the_result(self):
        picture = page()
        with tempfile.TemporaryDirectory() as folder:
            result = vel.stitch(captures_of(picture), memory_limit=1, spill_folder=folder)
            (private,) = (entry.path for entry in os.scandir(folder))
            self.assertEqual(os.stat(private).st_mode & 0o777, 0o700)
            self.assertTrue(os.listdir(private))
            part = result.parts[0]
            del result
            np.testing.assert_array_equal(part.array(), picture)
            del part
            self.assertEqual(os.listdir(folder), [])

    def test_lost_spill_files_are_an_os_error(self):
        with tempfile.TemporaryDirectory() as folder:
            result = vel.stitch(captures_of(page()), memory_limit=1, spill_folder=folder)
            for path, _, names in os.walk(folder):
                for name in names:
                    os.remove(os.path.join(path, name))
            with self.assertRaises(OSError):
                result.picture


class Outcomes(unittest.TestCase):
    def setUp(self):
        self.page = page()
        self.captures = captures_of(self.page)

    def test_placed_capture_has_place_and_proof(self):
        session = vel.Session()
        first = session.add(self.captures[0])
        self.assertEqual((first.state, first.part, first.row, first.column), ("placed", 0, 0, 0))
        self.assertIsNone(first.join)
        second = session.add(self.captures[1])
        self.assertEqual((second.state, second.row, second.column), (vel.State.PLACED, STEP, 0))
        self.assertEqual(second.joined_to, 0)
        self.assertEqual(second.join.verdict, vel.Verdict.PROVEN)
        self.assertEqual(second.join.motion, (-STEP, 0))
        self.assertEqual(second.join.equal, second.join.compared)
        self.assertEqual(second.join.alternatives, ())

    def test_repeat_is_told(self):
        session = vel.Session()
        session.add(self.captures[0])
        self.assertEqual(session.add(self.captures[0]).state, "repeated")

    def test_capture_that_came_too_fast_is_told_and_joined_later(self):
        session = vel.Session()
        session.add(self.captures[0])
        outcome = session.add(self.captures[3])
        self.assertEqual((outcome.state, outcome.part), (vel.State.TOO_FAST, 1))
        session.add(self.captures[1])
        session.add(self.captures[2])
        self.assertEqual([capture.part for capture in session.result().captures], [0] * 4)

    def test_doubt_is_told_with_the_other_motions(self):
        stripes = np.tile(page(20, 200), (12, 1, 1))
        result = vel.stitch([stripes, np.roll(stripes, -5, axis=0)])
        (join,) = result.joins
        self.assertEqual(join.verdict, "doubtful")
        self.assertTrue(join.alternatives)
        self.assertIn("it is in doubt how 'capture 2' joins 'capture 1'", result.warnings[0])

    def test_phase_correlation_knows_no_places_before_the_stitch(self):
        outcome = vel.Session(engine="phase-correlation").add(self.captures[0])
        self.assertEqual((outcome.state, outcome.row, outcome.join), ("placed", None, None))

    def test_values_tell_what_they_are(self):
        session = vel.Session()
        session.add(self.captures[0])
        text = repr(session.add(self.captures[1]))
        self.assertIn(f"motion=Motion(rows=-{STEP}, columns=0)", text)
        self.assertEqual(repr(session), "<velscrollingcapture.Session: 2 captures>")
        result = session.result()
        self.assertEqual(
            repr(result),
            "<velscrollingcapture.Result: 200 x 330 pixels from 2 captures; joins: 1 proven>",
        )
        self.assertEqual(repr(result.parts[0]), "<velscrollingcapture.Picture: 200 x 330 pixels>")


class Previews(unittest.TestCase):
    def test_preview_grows(self):
        session = vel.Session(preview=(120, 90))
        for capture in captures_of(page()):
            session.add(capture)
        preview = session.preview()
        self.assertEqual((preview.dtype, preview.ndim, preview.shape[2]), (np.uint8, 3, 4))
        self.assertLessEqual(preview.shape[:2], (90, 120))
        self.assertTrue(preview.any())

    def test_there_is_none_unless_asked_for(self):
        self.assertIsNone(vel.Session().preview())


class Results(unittest.TestCase):
    def test_exact_session_goes_on_after_a_result(self):
        picture = page()
        captures = captures_of(picture)
        session = vel.Session()
        session.add(captures[0])
        early = session.result()
        for capture in captures[1:]:
            session.add(capture)
        np.testing.assert_array_equal(session.result().picture, picture)
        np.testing.assert_array_equal(early.picture, captures[0])

    def test_session_with_phase_correlation_stitches_once(self):
        session = vel.Session(engine="phase-correlation")
        session.add(page(100, 60))
        session.result()
        for attempt in (session.result, lambda: session.add(page(100, 60, seed=2))):
            with self.assertRaisesRegex(RuntimeError, "stitches once"):
                attempt()

    def test_without_captures_there_is_nothing_to_stitch(self):
        for engine in ("exact", "phase-correlation"):
            with self.assertRaisesRegex(ValueError, "no captures"):
                vel.stitch([], engine=engine)

    def test_progress_runs_to_100_on_the_calling_thread(self):
        for engine in ("exact", "phase-correlation"):
            told = []
            vel.stitch(captures_of(page()), engine=engine,
                       progress=lambda percent: told.append((percent, threading.get_ident())))
            values = [percent for percent, _ in told]
            self.assertEqual(values, sorted(values))
            self.assertEqual(values[-1], 100)
            self.assertEqual({thread for _, thread in told}, {threading.get_ident()})

    def test_what_progress_raises_passes_and_stops_the_work(self):
        def complain(percent):
            raise LookupError(f"at {percent}")

        session = vel.Session()
        for capture in captures_of(page()):
            session.add(capture)
        with self.assertRaisesRegex(LookupError, "at "):
            session.result(complain)
        np.testing.assert_array_equal(session.result().picture, page())

    def test_library_prints_nothing(self):
        with tempfile.TemporaryFile() as output:
            kept = os.dup(1), os.dup(2)
            os.dup2(output.fileno(), 1)
            os.dup2(output.fileno(), 2)
            try:
                vel.stitch(captures_of(page()), engine="phase-correlation", borders=True)
            finally:
                for number, copy in enumerate(kept, 1):
                    os.dup2(copy, number)
                    os.close(copy)
            output.seek(0)
            self.assertEqual(output.read(), b"")


class Memory(unittest.TestCase):
    @contextlib.contextmanager
    def only(self, more_bytes):
        """Lets the process have no more memory than that in addition."""
        limits = resource.getrlimit(resource.RLIMIT_AS)
        with open("/proc/self/statm") as file:
            pages = int(file.read().split()[0])
        resource.setrlimit(resource.RLIMIT_AS, (pages * resource.getpagesize() + more_bytes, limits[1]))
        try:
            yield
        finally:
            resource.setrlimit(resource.RLIMIT_AS, limits)

    def test_session_goes_on_after_a_capture_for_which_there_was_none(self):
        picture = page(5000, 3000)
        captures = captures_of(picture, 4000, 1000)
        session = vel.Session()
        session.add(captures[0])
        with self.only(16 << 20), self.assertRaises(MemoryError):
            session.add(captures[1])
        session.add(captures[1])
        np.testing.assert_array_equal(session.result().picture, picture)


class Threads(unittest.TestCase):
    def test_any_number_may_use_one_session(self):
        captures = captures_of(page())
        session = vel.Session(preview=(100, 100))
        session.add(captures[0])
        failures = []

        def work():
            try:
                for capture in captures:
                    session.add(capture)
                    session.preview()
                    session.result().area(0, 0, 10, 10)
            except Exception as error:
                failures.append(error)

        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(failures, [])
        np.testing.assert_array_equal(session.result().picture, page())


if __name__ == "__main__":
    unittest.main()
