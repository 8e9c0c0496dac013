#pragma once

#include <optional>
#include <string>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/matching/CapturePlacer.h>

namespace ScrollingCapture {

/// What has become of a capture when it was added: the live answer to whoever captures.
struct CaptureOutcome {
  /// How the capture stands to those before it.
  enum class State {
    Placed,    ///< It was added. With phase correlation its place is found by the final stitch.
    Repeated,  ///< It shows the same as the last capture that was added, and was dropped.
    Doubtful,  ///< It was added, and several places explain it alike; `placed` lists them.
    TooFast,   ///< It was added, but nothing joins it to those before it: scroll back a little.
    Unusable,  ///< It was refused; `reason` says why.
  };

  State state = State::Placed;  ///< What was done with the capture.

  /// Why the capture is of no use, to go on after "the capture"; empty unless it is Unusable.
  std::string reason;

  /// Where it lies and how that is known, as it stands now: later captures may join parts or take a
  /// proof back. Nothing unless it was added, and with phase correlation.
  std::optional<PlacedCapture> placed;
};

/// What has become of a capture that was added and placed.
/// @param isFirst whether it is the first one, which nothing can join
VEL_EXPORT CaptureOutcome OutcomeOf(const PlacedCapture& placed, bool isFirst);

}  // namespace ScrollingCapture
