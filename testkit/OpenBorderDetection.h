#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Testing {

/// A BasicBorderDetection whose operations and borders a test can reach.
class OpenBorderDetection : public BasicBorderDetection {
 public:
  /// Without a stitcher to wrap.
  OpenBorderDetection(unsigned int differenceThreshold, unsigned int neighborThreshold)
      : BasicBorderDetection(nullptr, differenceThreshold, neighborThreshold) {}

  using BasicBorderDetection::AddBorders;
  using BasicBorderDetection::ApplyBorders;
  using BasicBorderDetection::BasicBorderDetection;
  using BasicBorderDetection::bottomBorder;
  using BasicBorderDetection::CalculateFinalImageSize;
  using BasicBorderDetection::CheckNearestNeighbors;
  using BasicBorderDetection::CopyBorders;
  using BasicBorderDetection::ExtractBorders;
  using BasicBorderDetection::FindBottomAndRightContentBoundary;
  using BasicBorderDetection::FindContent;
  using BasicBorderDetection::FindTopAndLeftContentBoundary;
  using BasicBorderDetection::leftBorder;
  using BasicBorderDetection::rightBorder;
  using BasicBorderDetection::topBorder;
};

/// Opaque, all of one grey.
inline cv::Mat GreyCapture(const cv::Size& size, int grey) {
  return {size, CV_8UC4, cv::Scalar(grey, grey, grey, 255)};
}

/// Adds a copy of the provider's last capture in which the pixels of an area are inverted, so that
/// all of them differ from it; black or white captures give the largest difference.
inline void AddWithChange(BasicImageProvider& captures, const cv::Rect& area) {
  cv::Mat capture = captures.GetLastImage()->clone();
  cv::Mat changed = capture(area);
  cv::bitwise_xor(changed, cv::Scalar(255, 255, 255, 0), changed);
  captures.Add(capture);
}

/// Captures the first of which is black, while each other one differs from the one before it in one
/// of the areas.
inline BasicImageProvider CapturesThatChange(const cv::Size& size,
                                             const std::vector<cv::Rect>& areas) {
  BasicImageProvider captures;
  cv::Mat first = GreyCapture(size, 0);
  captures.Add(first);
  for (const cv::Rect& area : areas) {
    AddWithChange(captures, area);
  }
  return captures;
}

}  // namespace ScrollingCapture::Testing
