#include <algorithm>

#include <live/SeenArea.h>

namespace ScrollingCapture::Live {
namespace {

/// Adds what of a rectangle lies outside another one: above and below it, left and right of it.
void AddOutside(const cv::Rect& whole, const cv::Rect& other, std::vector<cv::Rect>& outside) {
  const cv::Rect common = whole & other;
  if (common.empty()) {
    outside.push_back(whole);
    return;
  }
  const cv::Rect around[] = {
      {whole.x, whole.y, whole.width, common.y - whole.y},
      {whole.x, common.br().y, whole.width, whole.br().y - common.br().y},
      {whole.x, common.y, common.x - whole.x, common.height},
      {common.br().x, common.y, whole.br().x - common.br().x, common.height}};
  std::copy_if(std::begin(around), std::end(around), std::back_inserter(outside),
               [](const cv::Rect& piece) { return !piece.empty(); });
}

}  // namespace

void SeenArea::Add(const cv::Rect& rectangle) {
  if (!Covers(rectangle)) {
    rectangles.push_back(rectangle);
  }
}

bool SeenArea::Covers(const cv::Rect& rectangle) const {
  std::vector<cv::Rect> left = {rectangle};
  for (auto seen = rectangles.rbegin(); seen != rectangles.rend() && !left.empty(); ++seen) {
    std::vector<cv::Rect> outside;
    for (const cv::Rect& piece : left) {
      AddOutside(piece, *seen, outside);
    }
    left = std::move(outside);
  }
  return left.empty();
}

}  // namespace ScrollingCapture::Live
