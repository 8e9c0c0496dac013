"""What is taken for a capture."""

import io
import os
import tempfile
import unittest
from pathlib import Path

import numpy as np
from PIL import Image

import velscrollingcapture as vel
from pages import captures_of, page


def added_back(capture, **settings):
    """The pixels of a single capture after their way through a session."""
    session = vel.Session(**settings)
    session.add(capture)
    return session.result().picture


class Arrays(unittest.TestCase):
    def setUp(self):
        self.page = page(100, 60)

    def test_colour_and_alpha_come_back(self):
        np.testing.assert_array_equal(added_back(self.page), self.page)

    def test_colours_get_an_opaque_alpha(self):
        np.testing.assert_array_equal(added_back(self.page[..., :3].copy()), self.page)

    def test_grey_becomes_colour(self):
        grey = self.page[..., 0].copy()
        back = added_back(grey)
        for channel in range(3):
            np.testing.assert_array_equal(back[..., channel], grey)
        self.assertTrue((back[..., 3] == 255).all())

    def test_straight_alpha_comes_back_as_straight_alpha(self):
        capture = np.zeros((40, 30, 4), np.uint8)
        capture[...] = (255, 50, 0, 51)
        np.testing.assert_array_equal(added_back(capture), capture)

    def test_strides_do_not_matter(self):
        wide = np.zeros((200, 120, 5), np.uint8)
        wide[::2, ::2, :4] = self.page
        bgr = self.page[..., 2::-1]
        cases = {
            "every other row": (np.repeat(self.page, 2, axis=0)[::2], self.page),
            "every other column": (wide[::2, ::2, :4], self.page),
            "rows backwards": (self.page[::-1], self.page[::-1]),
            "columns backwards": (self.page[:, ::-1], self.page[:, ::-1]),
            "channels backwards": (bgr, np.dstack((bgr, self.page[..., 3]))),
            "transposed": (self.page.transpose(1, 0, 2), self.page.transpose(1, 0, 2)),
            "columns first in memory": (np.asfortranarray(self.page), self.page),
            "a view without its last channel": (self.page[..., :3], self.page),
            "a window of it": (self.page[10:50, 7:31], self.page[10:50, 7:31]),
            "a single row": (self.page[:1], self.page[:1]),
            "one row many times": (np.broadcast_to(self.page[:1], (9, 60, 4)), self.page[[0] * 9]),
        }
        for name, (capture, expected) in cases.items():
            with self.subTest(name):
                np.testing.assert_array_equal(added_back(capture), expected)

    def test_strides_of_grey_do_not_matter(self):
        grey = self.page[::-1, ::-2, 1]
        np.testing.assert_array_equal(added_back(grey)[..., 0], grey)

    def test_array_may_be_used_again_after_add(self):
        session = vel.Session(engine="phase-correlation")
        expected = self.page.copy()
        session.add(self.page)
        self.page[...] = 7
        np.testing.assert_array_equal(session.result().picture, expected)

    def test_array_is_left_as_it_is(self):
        captures = captures_of(page())
        copies = [capture.copy() for capture in captures]
        vel.stitch(captures, engine="phase-correlation")
        for capture, copy in zip(captures, copies):
            np.testing.assert_array_equal(capture, copy)

    def test_read_only_array_is_taken(self):
        self.page.flags.writeable = False
        np.testing.assert_array_equal(added_back(self.page), self.page)

    def test_unusable_arrays_are_refused(self):
        cases = [
            (np.zeros((4, 4, 2), np.uint8), ValueError, r"not \(4, 4, 2\)"),
            (np.zeros((4,), np.uint8), ValueError, r"not \(4,\)"),
            (np.zeros((2, 4, 4, 4), np.uint8), ValueError, r"not \(2, 4, 4, 4\)"),
            (np.zeros((0, 4, 4), np.uint8), ValueError, "at least one row"),
            (np.zeros((4, 0), np.uint8), ValueError, "at least one row"),
            (np.zeros((4, 4, 4), np.float64), TypeError, "uint8, not float64"),
            (np.zeros((4, 4, 4), np.uint16), TypeError, "uint8, not uint16"),
            (np.zeros((4, 4, 4), np.int8), TypeError, "uint8, not int8"),
            (np.zeros((4, 4), bool), TypeError, "uint8, not bool"),
            (np.full((4, 4), None), TypeError, "uint8, not object"),
            (None, TypeError, "not NoneType"),
            ([[1, 2], [3, 4]], TypeError, "not list"),
            (7, TypeError, "not int"),
        ]
        for capture, error, message in cases:
            with self.subTest(message), self.assertRaisesRegex(error, message):
                vel.Session().add(capture)

    def test_capture_of_another_size_is_refused_and_the_others_stay(self):
        session = vel.Session()
        session.add(self.page)
        with self.assertRaisesRegex(ValueError, "'capture 2' has 59 x 100 pixels"):
            session.add(self.page[:, 1:])
        np.testing.assert_array_equal(session.result().picture, self.page)


class Images(unittest.TestCase):
    def test_modes(self):
        picture = Image.fromarray(page(40, 30))
        for mode in ("RGBA", "RGB", "L", "1", "P", "LA", "CMYK"):
            with self.subTest(mode):
                image = picture.convert(mode)
                np.testing.assert_array_equal(added_back(image), np.asarray(image.convert("RGBA")))

    def test_transparent_colour_is_transparent(self):
        image = Image.new("RGB", (6, 4), (255, 0, 0))
        image.info["transparency"] = (255, 0, 0)
        self.assertFalse(added_back(image).any())

    def test_deep_image_is_refused(self):
        with self.assertRaisesRegex(ValueError, "'I;16'"):
            added_back(Image.new("I;16", (6, 4)))


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.page = page()
        self.captures = captures_of(self.page)

    def write(self, name, pixels):
        Image.fromarray(pixels).save(self.folder / name)
        return self.folder / name

    def test_path_and_bytes_are_read(self):
        path = self.write("capture.png", self.page)
        for capture in (path, str(path), path.read_bytes(), bytearray(path.read_bytes())):
            with self.subTest(type(capture).__name__):
                np.testing.assert_array_equal(added_back(capture), self.page)

    def test_name_that_is_no_text_is_read(self):
        path = os.path.join(os.fsencode(self.folder), b"\xff.png")
        with open(path, "wb") as file:
            Image.fromarray(self.page).save(file, "png")
        result = vel.stitch([os.fsdecode(path)])
        self.assertEqual(result.captures[0].name, os.fsdecode(path))

    def test_kinds_mix(self):
        first, second, third, *rest = self.captures
        mixed = [self.write("1.png", first), Image.fromarray(second), third[..., :3], *rest]
        np.testing.assert_array_equal(vel.stitch(mixed).picture, self.page)

    def test_folder_is_read_in_natural_order(self):
        for number, capture in enumerate(self.captures, 8):
            self.write(f"{number}.png", capture)
        for captures in (self.folder, str(self.folder), f"{self.folder}/*.png"):
            result = vel.stitch(captures)
            np.testing.assert_array_equal(result.picture, self.page)
            names = [Path(capture.name).name for capture in result.captures]
            self.assertEqual(names, [f"{number}.png" for number in range(8, 8 + len(names))])

    def test_generator_may_use_one_array_again_and_again(self):
        def captures():
            window = np.empty_like(self.captures[0])
            for capture in self.captures:
                window[...] = capture
                yield window
                window[...] = 0

        np.testing.assert_array_equal(vel.stitch(captures(), threads=4).picture, self.page)

    def test_generator_may_use_one_buffer_of_bytes_again_and_again(self):
        def captures():
            buffer = bytearray()
            for capture in self.captures:
                buffer[:] = self.write("capture.png", capture).read_bytes()
                yield buffer
                buffer.clear()

        np.testing.assert_array_equal(vel.stitch(captures(), threads=4).picture, self.page)

    def test_missing_file_is_told_by_its_name(self):
        missing = str(self.folder / "no.png")
        for attempt in (lambda: vel.Session().add(missing), lambda: vel.stitch(missing),
                        lambda: vel.stitch([missing])):
            with self.assertRaises(FileNotFoundError) as raised:
                attempt()
            self.assertEqual(raised.exception.filename, missing)

    def test_folder_is_no_capture(self):
        with self.assertRaises(IsADirectoryError):
            vel.Session().add(self.folder)

    def test_empty_folder_and_glob_without_matches_are_refused(self):
        for captures in (self.folder, self.folder / "*.png"):
            with self.assertRaises(ValueError):
                vel.stitch(captures)

    def test_file_that_is_no_image_is_refused(self):
        path = self.folder / "text.png"
        path.write_text("text")
        with self.assertRaisesRegex(ValueError, "text.png' is not an image"):
            vel.stitch([path])
        with self.assertRaisesRegex(ValueError, "'capture 1' is not an image"):
            vel.Session().add(b"text")

    def test_empty_file_is_refused(self):
        path = self.folder / "empty.png"
        path.touch()
        with self.assertRaisesRegex(ValueError, "empty.png' is empty"):
            vel.stitch([path])
        with self.assertRaisesRegex(ValueError, "'capture 1' is empty"):
            vel.Session().add(b"")

    def test_image_cut_short_is_refused(self):
        file = io.BytesIO()
        Image.fromarray(self.page).save(file, "bmp")
        with self.assertRaisesRegex(ValueError, "damaged or cut short"):
            vel.Session().add(file.getvalue()[:60])

    def test_one_capture_is_no_list_of_captures(self):
        for captures in (self.page, self.page[..., 0], b"bytes", Image.fromarray(self.page), 7, None):
            with self.subTest(type(captures).__name__), self.assertRaisesRegex(TypeError, "captures are"):
                vel.stitch(captures)

    def test_what_an_iterable_raises_passes(self):
        def captures():
            yield self.captures[0]
            raise LookupError("no window")

        with self.assertRaisesRegex(LookupError, "no window"):
            vel.stitch(captures())


if __name__ == "__main__":
    unittest.main()
