#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::Testing {

/// Writes down every call in order, and refuses progress from a chosen call on.
class RecordingListener : public IStitcherListener {
 public:
  RecordingListener() = default;

  /// @param acceptedProgressCalls how many progress calls are answered with true
  explicit RecordingListener(size_t acceptedProgressCalls)
      : acceptedProgressCalls(acceptedProgressCalls) {}

  bool ProgressCallback(int progress) override {
    calls.push_back("progress " + std::to_string(progress));
    return ++progressCalls <= acceptedProgressCalls;
  }

  void StitchingComplete(bool success) override {
    calls.emplace_back(success ? "complete true" : "complete false");
  }

  bool StitchingError(StitcherErrorCodes code, bool fatal) override {
    calls.push_back("error " + std::to_string(code) + (fatal ? " true" : " false"));
    return answerToErrors;
  }

  /// Such as "progress 90", "error 4 false", "complete true".
  std::vector<std::string> calls;
  bool answerToErrors = false;

 private:
  size_t acceptedProgressCalls = std::numeric_limits<size_t>::max();
  size_t progressCalls = 0;
};

}  // namespace ScrollingCapture::Testing
