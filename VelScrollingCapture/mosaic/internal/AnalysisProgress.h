#pragma once

#include <exception>

#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/internal/Truncation.h>

namespace ScrollingCapture {

/// Ends an analysis whose listener asked to stop.
class AnalysisCancelled : public std::exception {};

/// Tells a listener, which may be missing, how far an analysis, or a part of it, has come.
class AnalysisProgress {
 public:
  AnalysisProgress(IStitcherListener* listener, double start, double end)
      : listener(listener), start(start), end(end) {}

  /// The progress of a part that leads from one share of this to another.
  AnalysisProgress Part(double from, double to) const { return {listener, At(from), At(to)}; }

  /// Throws AnalysisCancelled when the listener asks to stop.
  /// @param share of the analysis, from 0 to 1
  void Report(double share) const {
    if (listener != nullptr && !listener->ProgressCallback(TruncateToInt(At(share)))) {
      throw AnalysisCancelled();
    }
  }

 private:
  double At(double share) const { return start + (end - start) * share; }

  IStitcherListener* listener;
  double start;
  double end;
};

}  // namespace ScrollingCapture
