#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>

#include <desktop/picture/RecordedPicture.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Desktop {

/// A picture that is in memory already.
class GivenPicture : public StitchedPicture {
 public:
  explicit GivenPicture(cv::Mat given) : pixels(std::move(given)) {}

  cv::Size Size() const override { return pixels.size(); }
  bool IsOpaque() const override { return true; }
  cv::Mat Area(const cv::Rect& area) const override { return pixels(area); }

 private:
  const cv::Mat pixels;
};

/// A picture of stripes, far too tall to be in memory, that notes the largest area asked for.
class EndlessPicture : public StitchedPicture {
 public:
  static constexpr int StripeRows = 10000;

  cv::Size Size() const override { return {800, 4000000}; }
  bool IsOpaque() const override { return true; }
  cv::Mat Area(const cv::Rect& area) const override {
    largestArea = std::max(largestArea, std::int64_t{area.width} * area.height);
    cv::Mat rows(area.size(), CV_8UC4);
    for (int row = 0; row < rows.rows; ++row) {
      const int level = (area.y + row) / StripeRows % 2 == 0 ? 0 : 255;
      rows.row(row).setTo(cv::Scalar(level, level, level, 255));
    }
    return rows;
  }

  mutable std::int64_t largestArea = 0;
};

/// A picture whose captures are lost.
class LostPicture : public StitchedPicture {
 public:
  cv::Size Size() const override { return {300, 400}; }
  bool IsOpaque() const override { return true; }
  cv::Mat Area(const cv::Rect& /*area*/) const override {
    throw std::runtime_error("the captures are lost");
  }
};

inline SharedPicture RecordedAs(const std::shared_ptr<const StitchedPicture>& picture) {
  return std::make_shared<RecordedPicture>(picture, std::make_shared<RecordingStore>());
}

inline SharedPicture RecordedFrom(const cv::Mat& pixels) {
  return RecordedAs(std::make_shared<GivenPicture>(pixels));
}

}  // namespace ScrollingCapture::Desktop
