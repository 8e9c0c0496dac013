#pragma once

#include <vector>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>

namespace ScrollingCapture {

/// How a sequence is matched.
struct SequenceSettings {
  MatchingSettings matching;     ///< how each pair is matched
  unsigned int threadCount = 1;  ///< the threads that work at once, the calling one included
  int progressStart = 0;         ///< the progress that the listener hears of lies above this
  int progressEnd = 100;         ///< the progress when the last capture is placed
};

/// Places all captures of a provider: reading, anchors, pairs and placing overlap on some threads.
///
/// The outcome does not depend on their number. Each capture is read once, and again only where it
/// has to be compared with others than its neighbours; never more captures are held than there are
/// threads, and two.
///
/// ProgressCallback comes from any of the threads, one at a time, once for each capture but the
/// first one as it is placed, and once more from the calling thread with progressEnd. A false
/// answer stops the work; StitchingError(Cancelled, false) then follows from the calling thread.
/// What a thread's work throws (captures of different sizes or unusable types:
/// std::invalid_argument; the provider's exceptions, those of OpenCV, lack of memory, the
/// listener's) is thrown here, once all threads have ended.
///
/// @param listener hears of progress; may be null, and is not owned
/// @return one element a capture; empty when cancelled
VEL_EXPORT std::vector<PlacedCapture> MatchSequence(IImageProvider& captures,
                                                    IStitcherListener* listener,
                                                    const SequenceSettings& settings);

}  // namespace ScrollingCapture
