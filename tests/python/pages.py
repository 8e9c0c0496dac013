"""Pages of known pixels, and captures of them."""

import numpy as np

STEP = 90


def page(height=600, width=200, seed=1):
    """A picture whose places differ from each other: shape (height, width, 4), opaque."""
    random = np.random.default_rng(seed)
    pixels = random.integers(0, 256, (height // 2, width // 2, 4), np.uint8).repeat(2, 0).repeat(2, 1)
    pixels[..., 3] = 255
    return pixels


def captures_of(picture, height=240, step=STEP):
    """What a window shows that scrolls down over the whole picture."""
    return [picture[top : top + height].copy() for top in range(0, len(picture) - height + 1, step)]
