#include <algorithm>
#include <cmath>

#include <desktop/picture/Tile.h>
#include <desktop/support/Pixels.h>
#include <opencv2/imgproc.hpp>

namespace ScrollingCapture::Desktop {
namespace {

constexpr int StripPixels = 1 << 20;

/// Rounded up, so that the last pixels of a picture are not lost.
int Halved(int length, int level) { return ((length - 1) >> level) + 1; }

/// A whole number of rows as they are shown.
int RowsOfStrip(int width, int level) {
  return std::max(1, (StripPixels / width) >> level) << level;
}

}  // namespace

cv::Rect AreaOf(const Tile& tile, const cv::Size& picture) {
  const int reach = ReachOf(tile.level);
  const cv::Rect whole({0, 0}, picture);
  return cv::Rect(tile.column * reach, tile.row * reach, reach, reach) & whole;
}

int LevelFor(double zoom) { return zoom >= 1 ? 0 : static_cast<int>(std::log2(1 / zoom)); }

QImage DrawTile(const RecordedPicture& picture, const Tile& tile,
                const std::function<bool()>& goOn) {
  const cv::Rect area = AreaOf(tile, picture.Size());
  if (tile.level == 0) {
    return ImageOf(picture.Area(area));
  }
  cv::Mat drawn(Halved(area.height, tile.level), Halved(area.width, tile.level), CV_8UC4);
  const int stripRows = RowsOfStrip(area.width, tile.level);
  for (int row = 0; row < area.height; row += stripRows) {
    if (!goOn()) {
      return {};
    }
    const int rows = std::min(stripRows, area.height - row);
    cv::Mat target = drawn.rowRange(row >> tile.level, Halved(row + rows, tile.level));
    cv::resize(picture.Area({area.x, area.y + row, area.width, rows}), target, target.size(), 0, 0,
               cv::INTER_AREA);
  }
  return ImageOf(drawn);
}

}  // namespace ScrollingCapture::Desktop
