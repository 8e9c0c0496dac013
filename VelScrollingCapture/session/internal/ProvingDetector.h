#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

#include <VelScrollingCapture/core/ITranslationDetector.h>
#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>

namespace ScrollingCapture {

/// Proves on the pixels what another detector finds in a sequence, before anybody cuts a seam.
class ProvingDetector : public ITranslationDetector {
 public:
  ProvingDetector(std::shared_ptr<ITranslationDetector> detector, const MatchingSettings& settings);

  /// Puts a motion in the place of what will be detected.
  /// @param capture the index of the capture that it leads to
  void Prescribe(std::size_t capture, const Translation& motion);

  /// How each capture but the first one of the last sequence is joined to the one before.
  const std::vector<Join>& Joins() const { return joins; }

  Translation DetectTranslation(const cv::Mat& previous, const cv::Mat& current) override;
  std::vector<Translation> DetectTranslation(IImageProvider& images, IStitcherListener* listener,
                                             int progressStart, int progressEnd) override;
  Translation DetectTranslationWithAlternative(const cv::Mat& previous, const cv::Mat& current,
                                               Translation& alternative) override;

 private:
  const std::shared_ptr<ITranslationDetector> detector;
  const MatchingSettings settings;
  std::map<std::size_t, Translation> prescribed;
  std::vector<Join> joins;
};

}  // namespace ScrollingCapture
