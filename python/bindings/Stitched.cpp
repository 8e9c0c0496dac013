#include <stdexcept>
#include <utility>

#include <python/bindings/Stitched.h>

namespace ScrollingCapture::Python {

LockedPicture::LockedPicture(std::shared_ptr<const StitchedPicture> stitched,
                             std::shared_ptr<std::mutex> lockedMeanwhile)
    : picture(std::move(stitched)),
      mutex(std::move(lockedMeanwhile)),
      size(picture->Size()),
      opaque(picture->IsOpaque()) {}

cv::Mat LockedPicture::Area(const cv::Rect& area) const {
  const bool isWithin = area.x >= 0 && area.y >= 0 && area.x < size.width && area.y < size.height &&
                        area.width <= size.width - area.x && area.height <= size.height - area.y;
  if (!isWithin || area.width < 1 || area.height < 1) {
    throw std::invalid_argument("the area is empty or reaches outside the picture, which has " +
                                std::to_string(size.width) + " x " + std::to_string(size.height) +
                                " pixels");
  }
  const std::lock_guard<std::mutex> lock(*mutex);
  return picture->Area(area);
}

}  // namespace ScrollingCapture::Python
