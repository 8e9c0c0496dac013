#include <algorithm>
#include <cstdint>

#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/Panels.h>

namespace ScrollingCapture {
namespace {

constexpr size_t BothStanding = Standing + PixelKindCount * Standing;

/// The cells that not one pixel changes of in any capture.
cv::Mat StandingThroughout(const SequenceEvidence& evidence, const cv::Size& cells) {
  cv::Mat stands(cells, CV_8U, cv::Scalar(StandsExactly));
  for (size_t i = 0; i + 1 < evidence.standsWithNext.size(); ++i) {
    stands &= evidence.standsWithNext[i];
  }
  return stands;
}

bool IsPlain(const cv::Mat& pixels, const cv::Point& cell) {
  const cv::Rect area(cell * CellSize, cv::Size(CellSize, CellSize));
  const cv::Mat shown = pixels(area & cv::Rect({}, pixels.size()));
  const std::uint8_t* const first = shown.ptr();
  for (int row = 0; row < shown.rows; ++row) {
    for (int column = 0; column < shown.cols; ++column) {
      if (!std::equal(first, first + shown.elemSize(), shown.ptr(row, column))) {
        return false;
      }
    }
  }
  return true;
}

/// Bands of columns that stand still.
class PanelSearch {
 public:
  /// @param stands what stands still
  PanelSearch(const SequenceEvidence& evidence, const cv::Mat& pixels, const cv::Mat& stands,
              bool ofColumns)
      : evidence(evidence), pixels(pixels), stands(stands), ofColumns(ofColumns) {
    const int lines = ofColumns ? stands.cols : stands.rows;
    for (int line = 0; line < lines; ++line) {
      const cv::Mat cells = ofColumns ? stands.col(line) : stands.row(line);
      const bool isStill = cv::countNonZero(cells) == static_cast<int>(cells.total());
      const bool goesOn = isStill && line > 0 && bandOf.back() != 0;
      bandCount += isStill && !goesOn ? 1 : 0;
      bandOf.push_back(isStill ? bandCount : 0);
    }
  }

  void Mark(cv::Mat& panels) const {
    const std::vector<bool> isPanel = FindContradictory();
    for (size_t line = 0; line < bandOf.size(); ++line) {
      if (isPanel[bandOf[line]]) {
        const int index = static_cast<int>(line);
        const cv::Mat cells = ofColumns ? stands.col(index) : stands.row(index);
        cells.copyTo(ofColumns ? panels.col(index) : panels.row(index), cells);
      }
    }
  }

 private:
  /// For each band whether things in it contradict each other.
  std::vector<bool> FindContradictory() const {
    std::vector<bool> isContradictory(bandCount + 1);
    for (const PairEvidence& found : evidence.found) {
      for (const Contradiction& contradiction : found.contradictions) {
        const size_t band = BandOf(PlaceOf(contradiction.firstCell));
        if (band != 0 && !isContradictory[band] && contradiction.counts[BothStanding] > 0 &&
            band == BandOf(PlaceOf(contradiction.secondCell)) && IsThing(contradiction.firstCell) &&
            IsThing(contradiction.secondCell)) {
          isContradictory[band] = true;
        }
      }
    }
    return isContradictory;
  }

  cv::Point PlaceOf(std::uint32_t cell) const {
    const int index = static_cast<int>(cell);
    return {index % stands.cols, index / stands.cols};
  }

  size_t BandOf(const cv::Point& place) const {
    return bandOf[static_cast<size_t>(ofColumns ? place.x : place.y)];
  }

  /// Whether a cell of a band shows something that is no bar: that does not go on beside the band.
  bool IsThing(std::uint32_t cell) const {
    const cv::Point place = PlaceOf(cell);
    return !IsPlain(pixels, place) && !StandsBeside(place, -1) && !StandsBeside(place, 1);
  }

  /// Whether a cell stands still that is the nearest one outside of the band, on one side of it, or
  /// next to that: a bar may end within a cell.
  bool StandsBeside(cv::Point place, int direction) const {
    const cv::Point across = ofColumns ? cv::Point(direction, 0) : cv::Point(0, direction);
    const cv::Point along = ofColumns ? cv::Point(0, 1) : cv::Point(1, 0);
    while (IsInWindow(place) && BandOf(place) != 0) {
      place += across;
    }
    return Stands(place - along) || Stands(place) || Stands(place + along);
  }

  bool Stands(const cv::Point& place) const {
    return IsInWindow(place) && stands.at<std::uint8_t>(place) != 0;
  }

  bool IsInWindow(const cv::Point& place) const {
    return cv::Rect({}, stands.size()).contains(place);
  }

  const SequenceEvidence& evidence;
  const cv::Mat& pixels;
  const cv::Mat& stands;
  const bool ofColumns;
  size_t bandCount = 0;
  std::vector<size_t> bandOf;  ///< by column or row; 0 for those of none
};

}  // namespace

cv::Mat FindPanels(const SequenceEvidence& evidence, const cv::Mat& pixels, const cv::Size& cells,
                   bool vertically, bool sideways) {
  const cv::Mat stands = StandingThroughout(evidence, cells);
  cv::Mat panels = cv::Mat::zeros(cells, CV_8U);
  if (vertically) {
    PanelSearch(evidence, pixels, stands, true).Mark(panels);
  }
  if (sideways) {
    PanelSearch(evidence, pixels, stands, false).Mark(panels);
  }
  return panels;
}

}  // namespace ScrollingCapture
