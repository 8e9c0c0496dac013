#pragma once

#include <QTest>
#include <functional>

namespace ScrollingCapture::Desktop {

/// Lets events come in until something is so.
/// @return whether it ever was
inline bool WaitUntil(const std::function<bool()>& isSo) {
  constexpr int LongestMilliseconds = 20000;
  return QTest::qWaitFor(isSo, LongestMilliseconds);
}

}  // namespace ScrollingCapture::Desktop
