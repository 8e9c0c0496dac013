#include <string>

#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Refusals.h>

namespace ScrollingCapture {
namespace {

std::shared_ptr<const cv::Mat> Fetch(IImageProvider& provider, size_t index) {
  std::shared_ptr<const cv::Mat> capture = provider.GetImageAt(index);
  if (capture == nullptr || capture->dims > 2 || capture->empty()) {
    throw UnusableCapture("Capture " + std::to_string(index) + " has no pixels.");
  }
  return capture;
}

}  // namespace

CaptureSource::CaptureSource(IImageProvider& provider)
    : provider(provider), count(provider.Count()) {
  if (count == 0) {
    return;
  }
  const auto first = Fetch(provider, 0);
  size = first->size();
  part = cv::Rect({}, size);
  type = first->type();
  if (first->depth() != CV_8U || first->channels() > 4) {
    throw UnusableCapture("A mosaic takes captures of 8 bits a channel, 4 channels at most.");
  }
}

CaptureSource::CaptureSource(const CaptureSource& whole, const cv::Rect& part)
    : CaptureSource(whole) {
  this->part = part;
}

std::shared_ptr<const cv::Mat> CaptureSource::Get(size_t index) const {
  auto capture = Fetch(provider, index);
  if (capture->size() != size || capture->type() != type) {
    throw UnusableCapture("Capture " + std::to_string(index) +
                          " differs in size or type from the first one.");
  }
  return part.size() == size ? capture : std::make_shared<const cv::Mat>(*capture, part);
}

}  // namespace ScrollingCapture
