"""What takes time, with arguments that the package has checked already."""

from collections.abc import Callable
from typing import Any

import numpy as np
from numpy.typing import NDArray

__version__: str

class Capture:
    @staticmethod
    def of_array(array: NDArray[Any]) -> Capture:
        """shape (H, W), (H, W, 3) or (H, W, 4), dtype uint8, any strides; copied once"""
    @staticmethod
    def of_file(name: bytes, content: bytes) -> Capture:
        """the bytes of an image file"""

class PreparedCapture: ...

class Session:
    def __init__(self, options: dict[str, Any]) -> None: ...
    def prepare(self, capture: Capture) -> PreparedCapture:
        """does most of the work of add; any number of threads may do it at once"""
    def add(self, name: bytes, capture: PreparedCapture) -> tuple[Any, ...]: ...
    def preview(self) -> NDArray[np.uint8] | None: ...
    def exceeds_memory_limit(self) -> bool: ...
    def stitch(self, progress: Callable[[int], object] | None) -> Stitched: ...

class Picture:
    @property
    def width(self) -> int: ...
    @property
    def height(self) -> int: ...
    @property
    def is_opaque(self) -> bool: ...
    def area(self, x: int, y: int, width: int, height: int) -> NDArray[np.uint8]: ...

class Stitched:
    @property
    def parts(self) -> list[Picture]: ...
    @property
    def captures(self) -> list[tuple[Any, ...]]: ...
    @property
    def borders(self) -> tuple[int, int, int, int] | None: ...
    @property
    def warnings(self) -> list[str]: ...
    def save(
        self, options: dict[str, Any], progress: Callable[[int], object] | None
    ) -> tuple[list[str], str]:
        """the names of the files, and one line that says what was made"""

def find_captures(names: list[bytes], outputs: list[bytes]) -> list[str]: ...
def check_outputs(options: dict[str, Any]) -> None: ...
