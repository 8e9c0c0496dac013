#include <utility>

#include <desktop/picture/RecordedPicture.h>

namespace ScrollingCapture::Desktop {

RecordedPicture::RecordedPicture(std::shared_ptr<const StitchedPicture> shown,
                                 std::shared_ptr<RecordingStore> kept)
    : store(std::move(kept)),
      picture(std::move(shown)),
      size(picture->Size()),
      isOpaque(picture->IsOpaque()) {}

cv::Mat RecordedPicture::Area(const cv::Rect& area) const {
  const std::lock_guard<std::mutex> lock(store->reading);
  return picture->Area(area);
}

}  // namespace ScrollingCapture::Desktop
