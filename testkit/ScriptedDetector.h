#pragma once

#include <utility>
#include <vector>

#include <VelScrollingCapture/core/ITranslationDetector.h>

namespace ScrollingCapture::Testing {

/// Gives the translations that it was told to give, and remembers how it was asked.
class ScriptedDetector : public ITranslationDetector {
 public:
  explicit ScriptedDetector(std::vector<Translation> translations)
      : translations(std::move(translations)) {}

  Translation DetectTranslation(const cv::Mat& /*previous*/, const cv::Mat& /*current*/) override {
    return {};
  }

  std::vector<Translation> DetectTranslation(IImageProvider& /*images*/,
                                             IStitcherListener* listener, int progressStart,
                                             int progressEnd) override {
    ranges.emplace_back(progressStart, progressEnd);
    lastListener = listener;
    return translations;
  }

  Translation DetectTranslationWithAlternative(const cv::Mat& /*previous*/,
                                               const cv::Mat& /*current*/,
                                               Translation& /*alternative*/) override {
    return {};
  }

  std::vector<Translation> translations;
  /// The progress range of every sequence detection that was asked for.
  std::vector<std::pair<int, int>> ranges;
  IStitcherListener* lastListener = nullptr;
};

}  // namespace ScrollingCapture::Testing
