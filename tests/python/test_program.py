"""python3 -m velscrollingcapture."""

import contextlib
import io
import json
import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
from PIL import Image

import velscrollingcapture as vel
from pages import captures_of, page
from velscrollingcapture.__main__ import main


class Program(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        self.page = page()
        (self.folder / "captures").mkdir()
        for number, capture in enumerate(captures_of(self.page), 8):
            Image.fromarray(capture).save(self.folder / "captures" / f"{number}.png")

    def run_it(self, *arguments):
        return subprocess.run([sys.executable, "-m", "velscrollingcapture", *arguments],
                              cwd=self.folder, capture_output=True)

    def assert_fails(self, status, message, *arguments):
        before = sorted(os.listdir(self.folder))
        output, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(errors):
            try:
                returned = main(list(arguments))
            except SystemExit as stopped:
                returned = stopped.code
        line = errors.getvalue()
        self.assertEqual(returned, status, line)
        self.assertIn(message, line)
        self.assertTrue(line.startswith("velscrollingcapture: "), line)
        self.assertEqual((line.count("\n"), output.getvalue()), (1, ""), line)
        self.assertEqual(sorted(os.listdir(self.folder)), before)

    def assert_is_the_page(self, file):
        with Image.open(file) as image:
            np.testing.assert_array_equal(np.asarray(image.convert("RGBA")), self.page)

    def add_another_page(self):
        Image.fromarray(page(240, 200, seed=9)).save(self.folder / "captures" / "20.png")

    def test_folder_becomes_the_page(self):
        run = self.run_it("captures", "-o", "page.png", "--report", "page.json")
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        self.assertEqual(run.stdout, b"page.png: 200 x 600 pixels from 5 captures\n")
        self.assert_is_the_page(self.folder / "page.png")
        self.assertEqual(len(json.loads((self.folder / "page.json").read_text())["captures"]), 5)

    def test_options_reach_the_stitch(self):
        run = self.run_it("captures", "-o", "page.png", "--engine", "phase-correlation", "--orientation",
                          "vertical", "--threads", "2", "--split", "250", "--memory-limit", "1K", "--report",
                          "page.json", "--consistent", "--keep-repeats", "--png-level", "1", "-q")
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, b"", b""))
        settings = json.loads((self.folder / "page.json").read_text())["settings"]
        self.assertEqual(settings, {
            "engine": "phase-correlation", "orientation": "vertical", "consistent": True, "threads": 2,
            "keepRepeats": True, "fixed": None, "borders": None, "memoryLimit": 1024})
        self.assertTrue((self.folder / "page-2.png").exists())

    def test_standard_output_gets_the_picture_alone(self):
        run = self.run_it("captures/*.png", "-o", "-")
        (self.folder / "page.png").write_bytes(run.stdout)
        self.assert_is_the_page(self.folder / "page.png")
        self.assertIn(b"200 x 600 pixels", run.stderr)

    def test_parts_have_a_status_of_their_own(self):
        self.add_another_page()
        run = self.run_it("captures", "-o", "page.png")
        self.assertEqual(run.returncode, 3)
        self.assertIn(b"a new part begins", run.stderr)
        self.assert_is_the_page(self.folder / "page-1.png")
        self.assertEqual(self.run_it("captures", "-o", "page.png", "-qq").stderr, b"")

    def test_strict_writes_nothing_in_doubt(self):
        self.add_another_page()
        self.assert_fails(1, "as --strict asks", "captures", "-o", "page.png", "--strict")

    def test_same_command_can_be_run_again(self):
        for _ in range(2):
            self.assertEqual(self.run_it(".//captures", "-o", "captures/page.png", "-q").returncode, 0)
        self.assert_is_the_page(self.folder / "captures" / "page.png")

    def test_wrong_usage_is_told_in_a_line(self):
        cases = [
            ("required: CAPTURE, -o",),
            ("required: -o", "captures"),
            ("No such file or directory: 'none'", "none", "-o", "page.png"),
            ("has no extension", "captures", "-o", "page"),
            ("No such file or directory: 'no/page.png'", "captures", "-o", "no/page.png"),
            ("invalid choice: 'magic'", "captures", "-o", "page.png", "--engine", "magic"),
            ("threads", "captures", "-o", "page.png", "--threads", "0"),
            ("a size such as", "captures", "-o", "page.png", "--memory-limit", "much"),
            ("--fixed needs", "captures", "-o", "page.png", "--engine", "phase-correlation", "--fixed", "once"),
            ("unrecognized", "captures", "-o", "page.png", "--orient", "both"),
            ("is both a capture and a file to write", "captures/8.png", "-o", "captures/8.png"),
            ("background takes a colour", "captures", "-o", "page.png", "--background", "reddish"),
            ("jpeg_quality", "captures", "-o", "page.png", "--jpeg-quality", "0"),
        ]
        for message, *arguments in cases:
            with self.subTest(arguments):
                self.assert_fails(2, message, *arguments)

    def test_damaged_capture_is_told_by_name(self):
        content = (self.folder / "captures" / "9.png").read_bytes()
        (self.folder / "captures" / "9.png").write_bytes(content[:99])
        run = self.run_it("captures", "-o", "page.png")
        self.assertEqual(run.returncode, 2)
        self.assertIn(b"'captures/9.png' is damaged or cut short", run.stderr)

    @unittest.skipUnless("VELSCROLL" in os.environ, "there is no velscroll to compare with")
    def test_does_what_velscroll_does(self):
        self.add_another_page()
        cases = [
            ["captures"],
            ["captures", "--engine", "phase-correlation", "--orientation", "vertical"],
            ["captures", "--strict"],
            ["captures", "-q", "--split", "100"],
            ["captures", "none.png"],
            ["captures", "--speed"],
        ]
        for arguments in cases:
            with self.subTest(arguments):
                theirs = self.outcome([os.environ["VELSCROLL"]], arguments)
                ours = self.outcome([sys.executable, "-m", "velscrollingcapture"], arguments)
                self.assertEqual(ours, theirs)

    def outcome(self, program, arguments):
        """Status, standard output, warnings, and the files that were written."""
        run = subprocess.run([*program, *arguments, "-o", "page.png"], cwd=self.folder, capture_output=True,
                             text=True)
        warnings = [line.split(": ", 1)[1] for line in run.stderr.splitlines() if ": warning: " in line]
        files = {path.name: path.read_bytes() for path in self.folder.glob("page*.png")}
        for name in files:
            os.remove(self.folder / name)
        return run.returncode, run.stdout, warnings, files

    def test_ctrl_c_and_termination_leave_nothing(self):
        os.mkfifo(self.folder / "waiting.png")
        before = sorted(os.listdir(self.folder))
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            command = [sys.executable, "-m", "velscrollingcapture", "captures", "waiting.png", "-o", "page.png"]
            with subprocess.Popen(command, cwd=self.folder, stderr=subprocess.PIPE) as process:
                with open(self.folder / "waiting.png", "wb"):  # goes on when the program reads
                    process.send_signal(number)
                    line = process.stderr.readline()
                self.assertEqual(line, b"velscrollingcapture: cancelled, nothing was written\n")
                self.assertEqual(process.wait(), 130)
            self.assertEqual(sorted(os.listdir(self.folder)), before)

    def test_version_is_that_of_the_package(self):
        self.assertEqual(self.run_it("--version").stdout.decode(), f"velscrollingcapture {vel.__version__}\n")


if __name__ == "__main__":
    unittest.main()
