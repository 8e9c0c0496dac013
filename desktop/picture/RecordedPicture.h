#pragma once

#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <mutex>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture::Desktop {

/// What all parts of a recording share.
struct RecordingStore {
  std::unique_ptr<QTemporaryDir> spillFolder;  ///< captures beyond memory wait here
  std::mutex reading;
};

/// One part of what was recorded. Any number of threads may read it at once. Its captures, and the
/// files that they wait in, go with it.
class RecordedPicture : public StitchedPicture {
 public:
  /// @param kept not null
  RecordedPicture(std::shared_ptr<const StitchedPicture> shown,
                  std::shared_ptr<RecordingStore> kept);

  cv::Size Size() const override { return size; }
  bool IsOpaque() const override { return isOpaque; }
  cv::Mat Area(const cv::Rect& area) const override;

 private:
  std::shared_ptr<RecordingStore> store;  ///< goes last, since the picture needs its files
  std::shared_ptr<const StitchedPicture> picture;
  cv::Size size;
  bool isOpaque;
};

using SharedPicture = std::shared_ptr<const RecordedPicture>;

/// What a recording gives.
struct Recorded {
  std::vector<SharedPicture> parts;  ///< several where captures are missing in between
  QStringList notes;                 ///< what the user should know of them
};

}  // namespace ScrollingCapture::Desktop
