#pragma once

#include <QAbstractScrollArea>
#include <QPoint>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include <desktop/picture/RecordedPicture.h>
#include <desktop/picture/Tile.h>
#include <desktop/picture/TileLoader.h>

namespace ScrollingCapture::Desktop {

/// Shows a picture of any size by tiles, which are drawn on another thread as they come into sight.
/// The wheel scrolls, and zooms with Ctrl; the left button moves the picture.
class PictureView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit PictureView(QWidget* parent = nullptr);

  /// Shows another picture, as wide as the view, or smaller pictures in their own size.
  void setPicture(const SharedPicture& shown);

  /// Pixels of the screen for one of the picture.
  double zoom() const { return scale; }

  /// Zooms, and keeps what is at a place of the view there.
  void setZoom(double zoom, const QPointF& fixed);
  void setZoom(double zoom);

  void zoomIn();
  void zoomOut();

  /// Shows the whole picture, and goes on to do so when the view's size changes.
  void fitWhole();

  /// Shows the picture's whole width, in the same way.
  void fitWidth();

  /// One pixel of the screen for one of the picture.
  void showActualSize() { setZoom(1); }

 signals:
  void zoomChanged(double zoom);
  /// @param line why something cannot be shown, for the user
  void failed(const QString& line);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

 private:
  enum class Fit { None, Width, Whole };

  void fit();
  void apply(double zoom);
  void updateBars();
  double unit() const;
  QSizeF shownSize() const;
  QPointF origin() const;
  QRectF placeOf(const Tile& tile) const;
  std::vector<Tile> tilesIn(const QRect& area) const;
  void keep(const Tile& tile, const QImage& image);
  void forgetHiddenTiles();
  void giveUp(const Tile& tile, const QString& line);

  SharedPicture picture;
  std::unique_ptr<TileLoader> loader;
  std::map<Tile, QImage> tiles;
  std::set<Tile> broken;
  double scale = 1;
  Fit fitting = Fit::None;
  QPoint grabbed;
};

}  // namespace ScrollingCapture::Desktop
