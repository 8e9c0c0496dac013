#pragma once

#include <opencv2/core.hpp>
#include <pybind11/numpy.h>

namespace ScrollingCapture::Python {

/// A copy of an array as a capture: CV_8UC4 with red, green, blue and premultiplied alpha.
///
/// The array is copied once, whatever its strides are, and the GIL is released meanwhile. Throws
/// pybind11::type_error for another dtype than uint8, and pybind11::value_error for another shape.
/// @param array (H, W): grey, (H, W, 3): red, green, blue, or (H, W, 4): those and straight alpha
cv::Mat CaptureOf(const pybind11::array& array);

/// Pixels as an array of shape (H, W, 4) and dtype uint8: red, green, blue and straight alpha. The
/// array may be written to: pixels that are shared with anybody else are copied, others are not.
/// @param pixels CV_8UC4 with premultiplied alpha
/// @param opaque whether no pixel is even partly transparent
pybind11::array ArrayOf(cv::Mat pixels, bool opaque);

}  // namespace ScrollingCapture::Python
