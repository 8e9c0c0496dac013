#pragma once

#include <string>

#include <pybind11/pybind11.h>

namespace ScrollingCapture::Python {

/// Text that may hold a file's name, and so bytes that are no UTF-8: they become what Python's own
/// file functions make of them.
pybind11::str TextOf(const std::string& text);

/// Lets the exceptions of the library, of OpenCV and of the file functions pass to Python as
/// ValueError, OSError, MemoryError and RuntimeError.
void TranslateExceptions();

}  // namespace ScrollingCapture::Python
