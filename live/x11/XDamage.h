#pragma once

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>
#include <xcb/damage.h>

namespace ScrollingCapture::Live {

/// Hears of what is drawn into a window and those within it. Where the server has no Damage
/// extension, it never hears anything.
class XDamage {
 public:
  XDamage(const XConnection& connection, xcb_window_t window);
  XDamage(const XDamage&) = delete;
  XDamage& operator=(const XDamage&) = delete;
  ~XDamage();

  bool IsHeard() const { return damage != 0; }

  /// Whether an event tells of something drawn into an area of the window.
  bool IsIn(const xcb_generic_event_t& event, const cv::Rect& area) const;

  /// From now on places are told again that were told before.
  void Forget() const;

 private:
  const XConnection& connection;
  xcb_damage_damage_t damage = 0;
};

}  // namespace ScrollingCapture::Live
