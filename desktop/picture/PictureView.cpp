#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <exception>

#include <desktop/picture/PictureView.h>
#include <desktop/support/Explanation.h>

namespace ScrollingCapture::Desktop {
namespace {

constexpr double LowestZoom = 1.0 / 4096;
constexpr double HighestZoom = 8;
constexpr double ZoomStep = 1.25;
constexpr int NotchOfWheel = 120;
constexpr std::size_t MostTilesKept = 128;  // of a MiB each

/// What transparent pixels are shown on.
QBrush Chequers() {
  constexpr int Side = 8;
  QPixmap pattern(2 * Side, 2 * Side);
  pattern.fill(Qt::white);
  QPainter painter(&pattern);
  painter.fillRect(0, 0, Side, Side, QColor(220, 220, 220));
  painter.fillRect(Side, Side, Side, Side, QColor(220, 220, 220));
  painter.end();
  return pattern;
}

int Ceiled(double length) { return static_cast<int>(std::ceil(length)); }

}  // namespace

PictureView::PictureView(QWidget* parent) : QAbstractScrollArea(parent) {
  viewport()->setCursor(Qt::OpenHandCursor);
  setMinimumSize(200, 150);
}

void PictureView::setPicture(const SharedPicture& shown) {
  picture = shown;
  tiles.clear();
  broken.clear();
  try {
    loader = std::make_unique<TileLoader>(picture);
  } catch (const std::exception&) {
    loader.reset();
    emit failed(Explain(std::current_exception()));
  }
  if (loader) {
    connect(loader.get(), &TileLoader::loaded, this, &PictureView::keep);
    connect(loader.get(), &TileLoader::failed, this, &PictureView::giveUp);
  }
  fitWidth();
  viewport()->update();
}

void PictureView::setZoom(double zoom, const QPointF& fixed) {
  fitting = Fit::None;
  const QPointF place = (fixed - origin()) / unit();
  apply(zoom);
  const QPointF target = place * unit() - fixed;
  horizontalScrollBar()->setValue(static_cast<int>(std::lround(target.x())));
  verticalScrollBar()->setValue(static_cast<int>(std::lround(target.y())));
}

void PictureView::setZoom(double zoom) { setZoom(zoom, viewport()->rect().center()); }

void PictureView::zoomIn() { setZoom(scale * ZoomStep); }

void PictureView::zoomOut() { setZoom(scale / ZoomStep); }

void PictureView::fitWhole() {
  fitting = Fit::Whole;
  fit();
}

void PictureView::fitWidth() {
  fitting = Fit::Width;
  fit();
}

/// Room for scroll bars is kept free, so that they do not come and go.
void PictureView::fit() {
  if (!picture || fitting == Fit::None) {
    return;
  }
  const QSizeF room =
      QSizeF(maximumViewportSize() - QSize(verticalScrollBar()->sizeHint().width(), 0)) *
      devicePixelRatioF();
  const double width = room.width() / picture->Size().width;
  const double height = room.height() / picture->Size().height;
  apply(std::min({1.0, width, fitting == Fit::Whole ? height : 1.0}));
}

void PictureView::apply(double zoom) {
  scale = std::clamp(zoom, LowestZoom, HighestZoom);
  updateBars();
  viewport()->update();
  emit zoomChanged(scale);
}

void PictureView::updateBars() {
  const QSizeF shown = shownSize();
  const QSize room = viewport()->size();
  horizontalScrollBar()->setRange(0, std::max(0, Ceiled(shown.width()) - room.width()));
  verticalScrollBar()->setRange(0, std::max(0, Ceiled(shown.height()) - room.height()));
  for (QScrollBar* const bar : {horizontalScrollBar(), verticalScrollBar()}) {
    constexpr int Line = 60;
    bar->setSingleStep(Line);
  }
  horizontalScrollBar()->setPageStep(room.width());
  verticalScrollBar()->setPageStep(room.height());
}

/// How long a pixel of the picture is in the view's coordinates.
double PictureView::unit() const { return scale / devicePixelRatioF(); }

QSizeF PictureView::shownSize() const {
  return picture ? QSizeF(picture->Size().width, picture->Size().height) * unit() : QSizeF();
}

/// Where the picture begins in the view: in the middle, where it is smaller.
QPointF PictureView::origin() const {
  const QSizeF shown = shownSize();
  const auto begin = [](double shownLength, int room, int scrolled) {
    return shownLength < room ? std::floor((room - shownLength) / 2) : -scrolled;
  };
  return {begin(shown.width(), viewport()->width(), horizontalScrollBar()->value()),
          begin(shown.height(), viewport()->height(), verticalScrollBar()->value())};
}

QRectF PictureView::placeOf(const Tile& tile) const {
  const cv::Rect area = AreaOf(tile, picture->Size());
  return {origin() + QPointF(area.x, area.y) * unit(), QSizeF(area.width, area.height) * unit()};
}

std::vector<Tile> PictureView::tilesIn(const QRect& area) const {
  const int level = LevelFor(scale);
  const double side = ReachOf(level) * unit();
  const QRectF visible =
      QRectF(area).intersected(QRectF(origin(), shownSize())).translated(-origin());
  std::vector<Tile> found;
  if (visible.isEmpty()) {
    return found;
  }
  for (int row = static_cast<int>(visible.top() / side); row * side < visible.bottom(); ++row) {
    for (int column = static_cast<int>(visible.left() / side); column * side < visible.right();
         ++column) {
      found.push_back({level, column, row});
    }
  }
  return found;
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), palette().dark());
  if (!picture) {
    return;
  }
  painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < 1);
  painter.fillRect(QRectF(origin(), shownSize()),
                   picture->IsOpaque() ? QBrush(Qt::white) : Chequers());
  std::vector<Tile> missing;
  for (const Tile& tile : tilesIn(viewport()->rect())) {
    const auto known = tiles.find(tile);
    if (known != tiles.end()) {
      painter.drawImage(placeOf(tile), known->second);
    } else if (broken.count(tile) > 0) {
      painter.fillRect(placeOf(tile), Qt::BDiagPattern);
    } else {
      missing.push_back(tile);
    }
  }
  if (loader) {
    loader->want(missing);
  }
}

void PictureView::keep(const Tile& tile, const QImage& image) {
  if (tiles.size() >= MostTilesKept) {
    forgetHiddenTiles();
  }
  tiles[tile] = image;
  viewport()->update();
}

void PictureView::forgetHiddenTiles() {
  std::map<Tile, QImage> visible;
  for (const Tile& tile : tilesIn(viewport()->rect())) {
    const auto known = tiles.find(tile);
    if (known != tiles.end()) {
      visible.insert(*known);
    }
  }
  tiles.swap(visible);
}

void PictureView::giveUp(const Tile& tile, const QString& line) {
  broken.insert(tile);
  viewport()->update();
  emit failed(line);
}

void PictureView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  updateBars();
  fit();
}

void PictureView::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) == 0) {
    QAbstractScrollArea::wheelEvent(event);
    return;
  }
  const double notches = static_cast<double>(event->angleDelta().y()) / NotchOfWheel;
  setZoom(scale * std::pow(ZoomStep, notches), event->position());
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  grabbed = event->pos();
  viewport()->setCursor(Qt::ClosedHandCursor);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
  if ((event->buttons() & Qt::LeftButton) == 0) {
    return;
  }
  const QPoint way = event->pos() - grabbed;
  grabbed = event->pos();
  horizontalScrollBar()->setValue(horizontalScrollBar()->value() - way.x());
  verticalScrollBar()->setValue(verticalScrollBar()->value() - way.y());
}

void PictureView::mouseReleaseEvent(QMouseEvent* /*event*/) {
  viewport()->setCursor(Qt::OpenHandCursor);
}

void PictureView::scrollContentsBy(int /*dx*/, int /*dy*/) { viewport()->update(); }

}  // namespace ScrollingCapture::Desktop
