"""The example that captures a web page in a headless browser."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
from PIL import Image

EXAMPLE = Path(__file__).resolve().parents[2] / "examples" / "python"


@unittest.skipUnless(shutil.which("chromium"), "chromium is not installed")
class CapturePage(unittest.TestCase):
    def capture(self, *arguments):
        """The stitched page and the browser's own picture of it."""
        with tempfile.TemporaryDirectory() as folder:
            files = [Path(folder, name) for name in ("page.png", "full.png")]
            subprocess.run([sys.executable, EXAMPLE / "capture_page.py", (EXAMPLE / "page.html").as_uri(),
                            "-o", files[0], "--full-page", files[1], *arguments],
                           check=True, timeout=60, stdout=subprocess.DEVNULL)
            return [np.asarray(Image.open(file).convert("RGB")) for file in files]

    def test_stitched_viewports_are_the_full_page(self):
        stitched, full_page = self.capture()
        self.assertGreater(len(full_page), 3 * 600)
        np.testing.assert_array_equal(stitched, full_page)

    def test_size_and_step_do_not_matter(self):
        np.testing.assert_array_equal(*self.capture("--size", "700x420", "--step", "150"))


if __name__ == "__main__":
    unittest.main()
