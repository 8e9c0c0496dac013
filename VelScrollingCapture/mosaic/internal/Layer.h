#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/mosaic/internal/AnalysisProgress.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Runs.h>

namespace ScrollingCapture {

/// A picture of its own, made of one part of the window in every capture: the contents, or a pane
/// that moves in another way.
class Layer {
 public:
  /// @param source what to show of each capture
  /// @param places where these parts lie
  /// @param corner where the layer's top-left pixel lies in the whole picture
  Layer(const CaptureSource& source, const std::vector<Place>& places, const cv::Point& corner,
        const MosaicSettings& settings, const AnalysisProgress& progress);

  /// The layer's part of the whole picture.
  cv::Rect Area() const { return {corner, layout.PictureSize()}; }

  /// How many pixels of an area of the whole picture the layer's captures show.
  std::int64_t ShownPixels(const cv::Rect& area) const;

  /// Writes what the layer has of an area of the whole picture, and nothing else.
  void Render(const cv::Rect& area, cv::Mat& pixels) const;

  /// Which capture shows a pixel of the whole picture.
  std::optional<size_t> CaptureAt(const cv::Point& pixel) const;

 private:
  void RenderCapture(size_t capture, const cv::Rect& area, const std::vector<size_t>& runsOfCapture,
                     cv::Mat& pixels) const;
  std::vector<Run>::const_iterator FirstRunIn(int row) const;

  CaptureSource source;
  CaptureLayout layout;
  cv::Point corner;
  std::vector<std::vector<cv::Rect>> areas;  ///< what each capture shows, apart from the runs
  std::vector<Run> runs;                     ///< by rows and columns
};

}  // namespace ScrollingCapture
