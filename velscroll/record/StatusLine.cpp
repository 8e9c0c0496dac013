#include <cstdlib>

#include <velscroll/record/StatusLine.h>

namespace ScrollingCapture::Program {
namespace {

std::string Amount(int pixels, const std::string& one, const std::string& several) {
  return std::to_string(std::abs(pixels)) + (std::abs(pixels) == 1 ? one : several);
}

/// Where the window went over its content, so against the content's motion.
std::string StepText(const Translation& motion) {
  std::string text;
  if (motion.GetRows() != 0) {
    text = Amount(motion.GetRows(), " row", " rows") + (motion.GetRows() < 0 ? " down" : " up");
  }
  if (motion.GetCols() != 0) {
    text += (text.empty() ? "" : ", ") + Amount(motion.GetCols(), " column", " columns") +
            (motion.GetCols() < 0 ? " right" : " left");
  }
  return text;
}

std::string WayBackText(const Place& place) {
  return "too fast: scroll back a little, to where row " + std::to_string(place.row) +
         (place.column != 0 ? ", column " + std::to_string(place.column) : "") +
         " of the picture was at the top";
}

}  // namespace

std::string StatusLine(const Live::RecordingStatus& status) {
  if (!status.hindrance.empty()) {
    return status.hindrance;
  }
  const std::string step = StepText(status.lastStep);
  const std::string size = std::to_string(status.seen.height) + " rows, " +
                           std::to_string(status.seen.width) + " columns" +
                           (step.empty() ? std::string() : ", last step " + step);
  return size + "; " + (status.tooFast ? WayBackText(status.WayBack()) : "Enter ends");
}

}  // namespace ScrollingCapture::Program
