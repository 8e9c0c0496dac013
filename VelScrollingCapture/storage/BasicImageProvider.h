#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>

namespace ScrollingCapture {

/// Keeps every capture in memory.
///
/// Each entry is a new matrix header over the caller's pixels: a caller that writes into its own
/// matrix later changes the capture as well. Not locked: one thread at a time, except that any
/// number of threads may read while none changes the provider.
class VEL_EXPORT BasicImageProvider : public IImageProvider {
 public:
  size_t Count() override;
  bool IsEmpty() override;

  /// Throws std::out_of_range for an index that is not below Count().
  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override;

  /// The index is not checked.
  void SetImageAt(size_t index, cv::Mat& image) override;

  /// Captures that were handed out before stay valid.
  void Clear() override;

  void Add(cv::Mat& image) override;

  /// Not guarded against an empty provider.
  std::shared_ptr<cv::Mat> GetLastImage() override;

 private:
  std::vector<std::shared_ptr<cv::Mat>> images;
};

}  // namespace ScrollingCapture
