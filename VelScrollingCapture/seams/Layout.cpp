#include <cstdint>

#include <VelScrollingCapture/core/internal/Narrowing.h>
#include <VelScrollingCapture/seams/Layout.h>

namespace ScrollingCapture {
namespace {

/// How far the captures reach along one axis, as they are placed one after another. Wider than any
/// result can be, since a detector may report any motion.
class AxisExtent {
 public:
  explicit AxisExtent(int captureLength) : end(captureLength), maximumEnd(captureLength) {}

  void Move(int translation) {
    if (translation < 0) {
      MoveForward(-std::int64_t{translation});
    } else {
      MoveBack(translation);
    }
  }

  /// Both throw cv::Exception when the extent is longer than any matrix.
  int Length() const { return Narrowed(maximumEnd - minimumStart); }
  int FirstCaptureOffset() const { return Narrowed(-minimumStart); }

 private:
  void MoveForward(std::int64_t step) {
    start += step;
    end += step;
    if (end > maximumEnd) {
      maximumEnd += step;
    }
  }

  void MoveBack(std::int64_t step) {
    start -= step;
    end -= step;
    if (start < minimumStart) {
      minimumStart -= step;
    }
  }

  std::int64_t start = 0;
  std::int64_t end;
  std::int64_t maximumEnd;
  std::int64_t minimumStart = 0;
};

}  // namespace

Layout LayoutOf(const cv::Size& captureSize, const std::vector<Translation>& translations) {
  AxisExtent rows(captureSize.height);
  AxisExtent columns(captureSize.width);
  for (const Translation& translation : translations) {
    rows.Move(translation.GetRows());
    columns.Move(translation.GetCols());
  }
  Layout layout;
  layout.size = cv::Size(columns.Length(), rows.Length());
  Place place = {rows.FirstCaptureOffset(), columns.FirstCaptureOffset()};
  layout.places.reserve(translations.size() + 1);
  layout.places.push_back(place);
  for (const Translation& translation : translations) {
    place.row -= translation.GetRows();
    place.column -= translation.GetCols();
    layout.places.push_back(place);
  }
  return layout;
}

}  // namespace ScrollingCapture
