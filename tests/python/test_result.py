"""Results: pixels and files."""

import json
import os
import tempfile
import unittest
from pathlib import Path

import numpy as np
from PIL import Image

import velscrollingcapture as vel
from pages import captures_of, page


def in_two_parts():
    return vel.stitch(captures_of(page()) + captures_of(page(seed=2)))


class Pixels(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.page = page()
        cls.result = vel.stitch(captures_of(cls.page))

    def test_picture_is_the_page(self):
        np.testing.assert_array_equal(self.result.picture, self.page)
        self.assertEqual(self.result.parts[0].shape, self.page.shape)
        self.assertIs(self.result.picture, self.result.picture)

    def test_area_is_a_part_of_it(self):
        np.testing.assert_array_equal(self.result.area(7, 200, 31, 99), self.page[200:299, 7:38])

    def test_areas_outside_or_empty_are_refused(self):
        for area in ((-1, 0, 9, 9), (0, -1, 9, 9), (0, 0, 201, 1), (0, 0, 1, 601), (0, 0, 0, 1),
                     (0, 0, 1, 0), (200, 0, 1, 1), (0, 0, -5, 9), (2**31 - 1, 0, 2**31 - 1, 1)):
            with self.subTest(area), self.assertRaisesRegex(ValueError, "200 x 600 pixels"):
                self.result.area(*area)
        with self.assertRaises(ValueError):
            self.result.area(0, 0, 2**40, 1)
        with self.assertRaises(TypeError):
            self.result.area(0.5, 0, 1, 1)

    def test_rows_make_up_the_picture(self):
        for height in (1, 7, 100, 256, 600, 10_000):
            pieces = list(self.result.rows(height))
            self.assertEqual(len(pieces), -(-600 // height))
            np.testing.assert_array_equal(np.concatenate(pieces), self.page)

    def test_rows_are_checked_at_once(self):
        with self.assertRaises(ValueError):
            self.result.rows(0)

    def test_arrays_are_the_callers_own(self):
        for engine in ("exact", "phase-correlation"):
            result = vel.stitch(captures_of(self.page), engine=engine)
            before = result.area(0, 0, 50, 50)
            changed = result.area(0, 0, 50, 50)
            changed[...] = 1
            np.testing.assert_array_equal(result.area(0, 0, 50, 50), before)
            self.assertTrue(changed.flags.writeable)

    def test_array_outlives_its_result(self):
        picture = vel.stitch(captures_of(self.page)).parts[0].array()
        np.testing.assert_array_equal(picture, self.page)

    def test_numpy_and_pil_take_a_picture(self):
        np.testing.assert_array_equal(np.asarray(self.result.parts[0]), self.page)
        np.testing.assert_array_equal(np.asarray(Image.fromarray(self.result.picture)), self.page)

    def test_several_parts_are_never_taken_for_one(self):
        result = in_two_parts()
        self.assertEqual(len(result.parts), 2)
        self.assertIn("a new part begins", result.warnings[0])
        for attempt in (lambda: result.picture, lambda: result.area(0, 0, 1, 1), result.rows):
            with self.assertRaisesRegex(ValueError, "in 2 parts"):
                attempt()
        np.testing.assert_array_equal(result.parts[1].array(), page(seed=2))

    def test_places_nobody_captured_are_transparent(self):
        captures = [self.page[0:300, 0:120], self.page[40:340, 60:180]]
        picture = vel.stitch(captures).picture
        self.assertEqual(picture.shape, (340, 180, 4))
        self.assertFalse(picture[:40, 120:].any())
        np.testing.assert_array_equal(picture[40:300, 60:120], self.page[40:300, 60:120])


class Files(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.page = page()
        cls.result = vel.stitch(captures_of(cls.page))

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def assert_nothing_written(self):
        self.assertEqual(os.listdir(self.folder), [])

    def test_lossless_formats_hold_the_page(self):
        for name in ("page.png", "page.tif", "page.bmp", "page.webp"):
            with self.subTest(name):
                self.assertEqual(self.result.save(self.folder / name), [str(self.folder / name)])
                with Image.open(self.folder / name) as image:
                    np.testing.assert_array_equal(np.asarray(image.convert("RGBA")), self.page)

    def test_quality_and_level_matter(self):
        size = lambda name, **settings: os.path.getsize(
            self.result.save(self.folder / name, **settings)[0])
        self.assertLess(size("a.jpg", jpeg_quality=10), size("b.jpg"))
        self.assertLess(size("a.png", png_level=9), size("b.png", png_level=0))

    def test_background_shows_where_nobody_captured(self):
        result = vel.stitch([self.page[0:300, 0:120], self.page[40:340, 60:180]])
        result.save(self.folder / "page.png", background="#ff0000")
        with Image.open(self.folder / "page.png") as image:
            self.assertEqual(image.convert("RGBA").getpixel((179, 0)), (255, 0, 0, 255))

    def test_split_cuts_it(self):
        files = self.result.save(self.folder / "page.png", split=250)
        self.assertEqual(files, [str(self.folder / f"page-{i}.png") for i in range(1, len(files) + 1)])
        pieces = []
        for file in files:
            with Image.open(file) as image:
                self.assertLessEqual(image.height, 250)
                pieces.append(np.asarray(image.convert("RGBA")))
        np.testing.assert_array_equal(np.concatenate(pieces), self.page)

    def test_parts_get_numbers(self):
        files = in_two_parts().save(self.folder / "page.png")
        self.assertEqual([Path(file).name for file in files], ["page-1.png", "page-2.png"])

    def test_report_tells_the_joins(self):
        self.result.save(self.folder / "page.png", report=self.folder / "page.json")
        report = json.loads((self.folder / "page.json").read_text())
        self.assertEqual(report["captures"][1]["join"]["verdict"], "proven")
        self.assertEqual(report["result"]["height"], 600)

    def test_resolution_of_the_first_file_is_kept(self):
        for number, capture in enumerate(captures_of(self.page)):
            Image.fromarray(capture).save(self.folder / f"{number}.png", dpi=(144, 144))
        vel.stitch(self.folder).save(self.folder / "page.png")
        with Image.open(self.folder / "page.png") as image:
            self.assertAlmostEqual(image.info["dpi"][0], 144, places=1)

    def test_progress_is_told_and_may_stop_it(self):
        told = []
        self.result.save(self.folder / "page.png", progress=told.append)
        self.assertEqual((told, told[-1]), (sorted(told), 100))
        os.remove(self.folder / "page.png")
        with self.assertRaises(LookupError):
            self.result.save(self.folder / "page.png", progress=lambda percent: {}[percent])
        self.assert_nothing_written()

    def test_captures_are_never_replaced(self):
        for number, capture in enumerate(captures_of(self.page)):
            Image.fromarray(capture).save(self.folder / f"{number}.png")
        result = vel.stitch(self.folder)
        before = (self.folder / "0.png").read_bytes()
        with self.assertRaisesRegex(ValueError, "over the capture"):
            result.save(self.folder / "0.png")
        self.assertEqual((self.folder / "0.png").read_bytes(), before)

    def test_wrong_settings_are_told_and_write_nothing(self):
        cases = [
            ("page", {}, ValueError, "has no extension"),
            ("page.gif", {}, ValueError, "no known format"),
            ("page.png", {"jpeg_quality": 0}, ValueError, "jpeg_quality"),
            ("page.png", {"png_level": 10}, ValueError, "png_level"),
            ("page.png", {"split": 0}, ValueError, "split"),
            ("page.png", {"background": "reddish"}, ValueError, "background takes a colour"),
            ("page.png", {"report": self.folder / "page.png"}, ValueError, "two results"),
            ("page.png", {"report": self.folder / "no" / "page.json"}, FileNotFoundError, "page.json"),
            ("no/page.png", {}, FileNotFoundError, "no/page.png"),
            ("", {}, IsADirectoryError, ""),
        ]
        for name, settings, error, message in cases:
            with self.subTest(name=name, **settings), self.assertRaisesRegex(error, message):
                self.result.save(self.folder / name, **settings)
        self.assert_nothing_written()

    def test_picture_too_large_for_the_format_is_refused(self):
        cases = [
            ((20, 16384), "too large for WebP, .* columns; write a PNG file$"),
            ((16384, 20), "too large for WebP, .* columns; set split, or write a PNG file$"),
        ]
        for shape, message in cases:
            with self.subTest(shape=shape), self.assertRaisesRegex(ValueError, message):
                vel.stitch([np.zeros(shape, np.uint8)]).save(self.folder / "page.webp")
        self.assert_nothing_written()

    def test_full_disk_is_an_os_error(self):
        import resource
        import signal

        before = resource.getrlimit(resource.RLIMIT_FSIZE)
        handler = signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (4096, before[1]))
        try:
            with self.assertRaisesRegex(OSError, "File too large"):
                self.result.save(self.folder / "page.png")
        finally:
            resource.setrlimit(resource.RLIMIT_FSIZE, before)
            signal.signal(signal.SIGXFSZ, handler)
        self.assert_nothing_written()


if __name__ == "__main__":
    unittest.main()
