#pragma once

#include <QImage>
#include <functional>
#include <tuple>

#include <desktop/picture/RecordedPicture.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Desktop {

/// A square of a picture as it is shown, so that no picture has to be in memory as a whole.
struct Tile {
  static constexpr int Side = 512;  ///< in pixels as shown

  int level = 0;  ///< each level halves the picture
  int column = 0;
  int row = 0;

  bool operator<(const Tile& other) const {
    return std::tie(level, column, row) < std::tie(other.level, other.column, other.row);
  }
};

/// The pixels of the picture that one side of a tile stands for.
inline int ReachOf(int level) { return Tile::Side << level; }

/// The part of a picture that a tile shows, in the picture's pixels.
cv::Rect AreaOf(const Tile& tile, const cv::Size& picture);

/// The level at which tiles have as many pixels as a zoom shows, or up to twice as many.
/// @param zoom pixels of the screen for one of the picture, above 0
int LevelFor(double zoom);

/// Draws a tile, with no more than some MiB of the picture in memory. Throws what Area throws.
/// @param goOn asked now and then; false ends the drawing
/// @return null then
QImage DrawTile(const RecordedPicture& picture, const Tile& tile,
                const std::function<bool()>& goOn);

}  // namespace ScrollingCapture::Desktop
