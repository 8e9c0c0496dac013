#pragma once

#include <exception>

#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/internal/Truncation.h>

namespace ScrollingCapture {

/// Ends an analysis whose listener asked to stop.
class AnalysisCancelled : public std::exception {};

/// Tells a listener, which may be missing, how far an analysis has come.
class AnalysisProgress {
 public:
  AnalysisProgress(IStitcherListener* listener, int start, int end)
      : listener(listener), start(start), end(end) {}

  /// Throws AnalysisCancelled when the listener asks to stop.
  /// @param share of the whole analysis, from 0 to 1
  void Report(double share) const {
    if (listener == nullptr) {
      return;
    }
    const int progress = TruncateToInt(start + (static_cast<double>(end) - start) * share);
    if (!listener->ProgressCallback(progress)) {
      throw AnalysisCancelled();
    }
  }

 private:
  IStitcherListener* listener;
  int start;
  int end;
};

}  // namespace ScrollingCapture
