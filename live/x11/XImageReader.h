#pragma once

#include <cstddef>
#include <cstdint>

#include <live/x11/XConnection.h>
#include <live/x11/XPixels.h>
#include <opencv2/core.hpp>
#include <xcb/shm.h>

namespace ScrollingCapture::Live {

/// Reads pixels from the server: through memory shared with it where that is possible, and through
/// the connection where it is not, such as with a server on another machine.
class XImageReader {
 public:
  explicit XImageReader(const XConnection& connection);
  XImageReader(const XImageReader&) = delete;
  XImageReader& operator=(const XImageReader&) = delete;
  ~XImageReader();

  /// The pixels of an area of a window or pixmap, windows above included.
  /// @return CV_8UC4: red, green, blue, opaque; empty when the server refuses
  cv::Mat Read(xcb_drawable_t drawable, const cv::Rect& area, const XPixels& pixels);

 private:
  bool Share(std::size_t bytes);
  void Unshare();
  const std::uint32_t* ReadShared(xcb_drawable_t drawable, const cv::Rect& area);

  const XConnection& connection;
  bool mayShare;
  xcb_shm_seg_t segment = 0;
  std::uint32_t* shared = nullptr;
  std::size_t sharedBytes = 0;
};

}  // namespace ScrollingCapture::Live
