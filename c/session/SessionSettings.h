#pragma once

#include <VelScrollingCapture/c/session.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::C {

/// What a caller's settings ask for. Throws InvalidArgument when they make no sense.
/// @param settings null: the defaults
SessionSettings SettingsOf(const vel_session_settings* settings);

/// Throws InvalidArgument unless it is a vel_orientation.
ScrollOrientation OrientationOf(int orientation);

/// Throws InvalidArgument when one of them is out of range.
BorderThresholds ThresholdsOf(unsigned int difference, unsigned int neighbors);

}  // namespace ScrollingCapture::C
