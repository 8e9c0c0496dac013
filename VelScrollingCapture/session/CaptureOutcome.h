#pragma once

#include <string>

namespace ScrollingCapture {

/// What has become of a capture when it was added: the live answer to whoever captures.
struct CaptureOutcome {
  /// How the capture stands to those before it.
  enum class State {
    Placed,    ///< It was added. With phase correlation its place is found by the final stitch.
    Repeated,  ///< It shows the same as the last capture that was added, and was dropped.
    Unusable,  ///< It was refused; `reason` says why.
  };

  State state = State::Placed;

  /// Why the capture is of no use, to go on after "the capture"; empty unless it is Unusable.
  std::string reason;
};

}  // namespace ScrollingCapture
