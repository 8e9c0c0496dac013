#pragma once

#include <functional>
#include <optional>
#include <thread>

#include <velscroll/report/Report.h>
#include <velscroll/stitch/StageClock.h>

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::Program {

/// Passes the progress of a stitch on, and notes when the detection ended and why a stitch failed.
/// To be made on the thread that stitches, just before.
class StitchListener : public IStitcherListener {
 public:
  /// @param tell hears of the progress in percent, on any thread; returns false to end the stitch
  explicit StitchListener(std::function<bool(int percent)> tell);

  bool ProgressCallback(int percent) override;
  void StitchingComplete(bool success) override;
  bool StitchingError(StitcherErrorCodes code, bool fatal) override;

  /// Why the stitch failed, if it did.
  std::optional<StitcherErrorCodes> Error() const { return error; }

  /// To be called once, when the stitch has ended: sets the times of detection and composing.
  void FillTimes(StageSeconds& seconds);

 private:
  const std::function<bool(int)> tell;
  const std::thread::id caller = std::this_thread::get_id();
  StageClock clock;
  std::optional<double> detectionSeconds;
  std::optional<StitcherErrorCodes> error;
};

}  // namespace ScrollingCapture::Program
