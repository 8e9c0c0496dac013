#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// A patch is a square of this many pixels.
constexpr int PatchSide = 16;

/// A patch that was chosen by its own content.
struct Anchor {
  std::uint32_t hash;      ///< of its pixels
  std::uint32_t position;  ///< of its top-left pixel: row times the capture's width, plus column
};

/// The anchors of one capture: of all its patches those whose hash, once spread, begins with some
/// zero bits, so that the same content gives the same anchors wherever it lies (S. Schleimer, D. S.
/// Wilkerson, A. Aiken, "Winnowing: Local Algorithms for Document Fingerprinting", SIGMOD 2003).
/// Patches that equal their neighbour to the left or above are left out: they say nothing about the
/// motion along that axis.
struct CaptureAnchors {
  cv::Size size;                ///< of the capture
  int type = 0;                 ///< of the capture
  std::vector<Anchor> anchors;  ///< ordered by hash

  /// Whether the capture has four channels and all its transparent pixels are 0.
  bool arePixelsKeys = false;

  cv::Point PlaceOf(const Anchor& anchor) const {
    const auto width = static_cast<std::uint32_t>(size.width);
    return {static_cast<int>(anchor.position % width), static_cast<int>(anchor.position / width)};
  }
};

/// The middle of the patch at a place.
inline cv::Point CentreOf(const cv::Point& place) {
  return place + cv::Point(PatchSide / 2, PatchSide / 2);
}

/// Throws std::invalid_argument unless the capture has pixels of 8 bits in 1, 3 or 4 channels.
void RequireUsableCapture(const cv::Mat& capture);

/// How many zero bits the spread hash of an anchor begins with: fewer in small captures, which have
/// few patches to choose from.
int SelectingZeroBits(const cv::Size& size, int channels);

/// The anchors of a capture that RequireUsableCapture accepts.
CaptureAnchors FindAnchors(const cv::Mat& capture);

}  // namespace ScrollingCapture
