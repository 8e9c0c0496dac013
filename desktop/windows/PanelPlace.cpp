#include <algorithm>

#include <desktop/windows/PanelPlace.h>

namespace ScrollingCapture::Desktop {
namespace {

constexpr int Gap = 8;

/// As near to a place as a screen has room.
QPoint Within(const QRect& screen, const QSize& panel, const QPoint& place) {
  const int lastColumn = std::max(screen.left(), screen.right() + 1 - panel.width());
  const int lastRow = std::max(screen.top(), screen.bottom() + 1 - panel.height());
  return {std::clamp(place.x(), screen.left(), lastColumn),
          std::clamp(place.y(), screen.top(), lastRow)};
}

/// What belongs to the region's own screen is nearer to the eye.
QVector<QRect> NearestFirst(QVector<QRect> screens, const QRect& region) {
  const auto shared = [&region](const QRect& screen) {
    const QRect common = screen.intersected(region);
    return std::int64_t{common.width()} * common.height();
  };
  std::stable_sort(screens.begin(), screens.end(), [&](const QRect& left, const QRect& right) {
    return shared(left) > shared(right);
  });
  return screens;
}

}  // namespace

std::optional<QPoint> PlaceOutside(const QRect& region, const QSize& panel,
                                   const QVector<QRect>& screens) {
  const QPoint end = region.bottomRight() + QPoint(1, 1);
  const QPoint sides[] = {{end.x() + Gap, region.top()},
                          {region.left() - Gap - panel.width(), region.top()},
                          {region.left(), end.y() + Gap},
                          {region.left(), region.top() - Gap - panel.height()},
                          region.topLeft()};
  for (const QRect& screen : NearestFirst(screens, region)) {
    for (const QPoint& side : sides) {
      const QRect place(Within(screen, panel, side), panel);
      if (screen.contains(place) && !place.intersects(region)) {
        return place.topLeft();
      }
    }
  }
  return std::nullopt;
}

}  // namespace ScrollingCapture::Desktop
