#pragma once

#include <QApplication>
#include <QWidget>

#include "Waiting.h"

namespace ScrollingCapture::Desktop {

/// The window of a kind that is on the screen; null when there is none.
template <typename Window>
Window* Shown() {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    auto* const window = qobject_cast<Window*>(widget);
    if (window != nullptr && window->isVisible()) {
      return window;
    }
  }
  return nullptr;
}

/// The same, once there is one.
template <typename Window>
Window* WaitFor() {
  WaitUntil([] { return Shown<Window>() != nullptr; });
  return Shown<Window>();
}

}  // namespace ScrollingCapture::Desktop
