#include <utility>

#include <VelScrollingCapture/session/CaptureIntake.h>
#include <VelScrollingCapture/similarity/RepeatFilter.h>

namespace ScrollingCapture {
namespace {

std::string Pixels(const cv::Size& size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
}

/// Stitchers place every capture with the size of the first, and compare pixels byte by byte.
std::string WhyUnlike(const cv::Mat& last, const cv::Mat& capture) {
  if (capture.size() != last.size()) {
    return "has " + Pixels(capture.size()) + ", but the captures before it have " +
           Pixels(last.size()) + "; all captures must have the same size";
  }
  if (capture.type() != last.type()) {
    return "has pixels of another type than the captures before it";
  }
  return {};
}

}  // namespace

CaptureIntake::CaptureIntake(IImageProvider& captures, PreviewImage* preview, bool keepRepeats)
    : captures(captures), preview(preview), keepRepeats(keepRepeats) {}

CaptureOutcome CaptureIntake::Add(cv::Mat capture) {
  if (!captures.IsEmpty()) {
    std::string reason = WhyUnlike(*captures.GetLastImage(), capture);
    if (!reason.empty()) {
      return {CaptureOutcome::State::Unusable, std::move(reason), {}};
    }
    if (!keepRepeats && RepeatsLastCapture(captures, capture)) {
      return {CaptureOutcome::State::Repeated, {}, {}};
    }
  }
  captures.Add(capture);
  if (preview != nullptr) {
    preview->AddCapture(capture);
  }
  return {};
}

std::string WhyUnusable(const cv::Mat& capture) {
  if (capture.empty() || capture.dims != 2) {
    return "has no pixels";
  }
  if (capture.type() != CV_8UC4) {
    return "has pixels of another type than 8 bits for red, green, blue and alpha each";
  }
  return {};
}

}  // namespace ScrollingCapture
