#include <VelScrollingCapture/matching/PreparedCapture.h>
#include <VelScrollingCapture/matching/internal/Anchors.h>

namespace ScrollingCapture {

PreparedCapture::PreparedCapture(const cv::Mat& capture) {
  RequireUsableCapture(capture);
  anchors = std::make_shared<const CaptureAnchors>(FindAnchors(capture));
}

std::size_t PreparedCapture::Bytes() const {
  return anchors ? sizeof *anchors + anchors->anchors.capacity() * sizeof(Anchor) : 0;
}

}  // namespace ScrollingCapture
