#pragma once

#include <memory>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/frontend/StitcherAdapter.h>
#include <VelScrollingCapture/session/CaptureOutcome.h>

namespace ScrollingCapture {

class SessionEngine;

/// An adapter that joins its captures exactly: each is placed, with proof on the pixels, against
/// everything seen before, and the stitch gives the whole picture with fixed parts shown once.
///
/// Where nothing joins some captures to the others the picture is in parts. The stitch then gives
/// the largest part, and says so in a message; a host that heard of CaptureOutcome::State::TooFast
/// can have the user scroll back before it comes to that.
class VEL_EXPORT ExactStitcherAdapter : public StitcherAdapter {
 public:
  /// Looks for motion in both directions.
  /// @param threadCount the most threads that work at once; less than 1 counts as 1
  explicit ExactStitcherAdapter(int threadCount);

  ExactStitcherAdapter(const ExactStitcherAdapter&) = delete;
  ExactStitcherAdapter& operator=(const ExactStitcherAdapter&) = delete;
  ~ExactStitcherAdapter() override;

  /// Removes all captures and forgets where they lay.
  void Clear() override;

  /// Finds where the last capture lies, which has just been added. Throws cv::Exception or
  /// std::bad_alloc when memory runs out.
  PlacedCapture PlaceLast();

 private:
  const int threadCount;
  std::unique_ptr<SessionEngine> engine;
};

}  // namespace ScrollingCapture
