#include <limits>
#include <memory>
#include <string>
#include <utility>

#include <opencv2/imgproc.hpp>
#include <python/bindings/Arrays.h>
#include <velscroll/pixels/Premultiplication.h>

namespace ScrollingCapture::Python {
namespace {

namespace py = pybind11;

constexpr int Grey = 1;
constexpr int Colour = 3;
constexpr int ColourAndAlpha = 4;

/// The pixels of an array, which may lie in any order, backwards for one.
struct StridedPixels {
  const unsigned char* data;
  int rows;
  int columns;
  int channels;
  py::ssize_t rowStride;
  py::ssize_t columnStride;
  py::ssize_t channelStride;

  /// Whether OpenCV can read them where they are.
  bool AreInRows() const {
    return channelStride == 1 && columnStride == channels &&
           (rows == 1 || rowStride >= columnStride * columns);
  }
};

std::string ShapeText(const py::array& array) { return py::str(array.attr("shape")); }

int Side(py::ssize_t length) {
  if (length < 1 || length > std::numeric_limits<int>::max()) {
    throw py::value_error("a capture has at least one row and one column of pixels");
  }
  return static_cast<int>(length);
}

StridedPixels PixelsOf(const py::array& array) {
  if (!py::isinstance<py::array_t<unsigned char>>(array)) {
    throw py::type_error("a capture has the dtype uint8, not " +
                         std::string(py::str(array.dtype())));
  }
  const py::ssize_t channels = array.ndim() == 2 ? Grey : array.ndim() == 3 ? array.shape(2) : 0;
  const bool isGrey = array.ndim() == 2;
  if (!isGrey && channels != Colour && channels != ColourAndAlpha) {
    throw py::value_error("a capture has the shape (H, W), (H, W, 3) or (H, W, 4), not " +
                          ShapeText(array));
  }
  return {static_cast<const unsigned char*>(array.data()),
          Side(array.shape(0)),
          Side(array.shape(1)),
          static_cast<int>(channels),
          array.strides(0),
          array.strides(1),
          isGrey ? 1 : array.strides(2)};
}

cv::Mat CopyOfRows(const StridedPixels& pixels) {
  const auto step =
      static_cast<size_t>(pixels.rows == 1 ? py::ssize_t{cv::Mat::AUTO_STEP} : pixels.rowStride);
  // OpenCV has no matrices of constant pixels; this one is only read.
  const cv::Mat shared(pixels.rows, pixels.columns, CV_8UC(pixels.channels),
                       const_cast<unsigned char*>(pixels.data), step);
  cv::Mat capture;
  if (pixels.channels == ColourAndAlpha) {
    shared.copyTo(capture);
  } else {
    cv::cvtColor(shared, capture,
                 pixels.channels == Grey ? cv::COLOR_GRAY2RGBA : cv::COLOR_RGB2RGBA);
  }
  return capture;
}

cv::Vec4b PixelAt(const unsigned char* channel, const StridedPixels& pixels) {
  constexpr unsigned char Opaque = 255;
  const py::ssize_t next = pixels.channels == Grey ? 0 : pixels.channelStride;
  return {channel[0], channel[next], channel[2 * next],
          pixels.channels == ColourAndAlpha ? channel[3 * next] : Opaque};
}

cv::Mat CopyPixelByPixel(const StridedPixels& pixels) {
  cv::Mat capture(pixels.rows, pixels.columns, CV_8UC4);
  for (int row = 0; row < pixels.rows; ++row) {
    auto* const target = capture.ptr<cv::Vec4b>(row);
    const unsigned char* source = pixels.data + row * pixels.rowStride;
    for (int column = 0; column < pixels.columns; ++column, source += pixels.columnStride) {
      target[column] = PixelAt(source, pixels);
    }
  }
  return capture;
}

bool IsShared(const cv::Mat& pixels) { return pixels.u == nullptr || pixels.u->refcount > 1; }

}  // namespace

cv::Mat CaptureOf(const py::array& array) {
  const StridedPixels pixels = PixelsOf(array);
  const py::gil_scoped_release released;
  cv::Mat capture = pixels.AreInRows() ? CopyOfRows(pixels) : CopyPixelByPixel(pixels);
  if (pixels.channels == ColourAndAlpha) {
    Program::Premultiply(capture);
  }
  return capture;
}

py::array ArrayOf(cv::Mat pixels, bool opaque) {
  {
    const py::gil_scoped_release released;
    if (IsShared(pixels)) {
      pixels = pixels.clone();
    }
    if (!opaque) {
      Program::Unpremultiply(pixels);
    }
  }
  auto owner = std::make_unique<cv::Mat>(std::move(pixels));
  const cv::Mat& matrix = *owner;
  const py::capsule keeper(owner.get(), [](void* kept) { delete static_cast<cv::Mat*>(kept); });
  owner.release();
  return py::array(
      py::dtype::of<unsigned char>(), {matrix.rows, matrix.cols, int{ColourAndAlpha}},
      {static_cast<py::ssize_t>(matrix.step), py::ssize_t{ColourAndAlpha}, py::ssize_t{1}},
      matrix.data, keeper);
}

}  // namespace ScrollingCapture::Python
