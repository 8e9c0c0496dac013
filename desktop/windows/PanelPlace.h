#pragma once

#include <QRect>
#include <QSize>
#include <QVector>
#include <optional>

namespace ScrollingCapture::Desktop {

/// Where a panel goes so that it is wholly on a screen, and nothing of it in a region: beside it
/// where there is room, else above or below, else on another screen. All in the same units.
/// @param screens the parts of the screens that windows may take
/// @return nothing when there is no such place
std::optional<QPoint> PlaceOutside(const QRect& region, const QSize& panel,
                                   const QVector<QRect>& screens);

}  // namespace ScrollingCapture::Desktop
