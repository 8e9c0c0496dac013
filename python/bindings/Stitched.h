#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/metadata/ImageMetadata.h>
#include <velscroll/report/Report.h>

#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture::Python {

/// A stitched picture that any thread may ask for pixels.
class LockedPicture : public StitchedPicture {
 public:
  /// @param mutex is held while the picture reads the captures of a session
  LockedPicture(std::shared_ptr<const StitchedPicture> picture, std::shared_ptr<std::mutex> mutex);

  cv::Size Size() const override { return size; }
  bool IsOpaque() const override { return opaque; }

  /// As StitchedPicture::Area. Throws std::invalid_argument when the area is empty or reaches
  /// outside the picture.
  cv::Mat Area(const cv::Rect& area) const override;

 private:
  const std::shared_ptr<const StitchedPicture> picture;
  const std::shared_ptr<std::mutex> mutex;
  const cv::Size size;
  const bool opaque;
};

/// What came of a stitch. Nobody changes it.
struct Stitched {
  std::vector<std::shared_ptr<const LockedPicture>> parts;

  /// All but what saving adds: the files, and how long that took.
  Program::ReportContent content;

  Program::ImageMetadata metadata;  ///< of the first capture
};

}  // namespace ScrollingCapture::Python
