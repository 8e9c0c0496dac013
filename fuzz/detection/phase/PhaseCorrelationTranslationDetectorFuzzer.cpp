// Detects the motion between any small captures: in pairs what the plain detector finds, and in a
// sequence what is found in pairs.

#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/RecordingListener.h>
#include <testkit/references/ReferenceDetector.h>

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 48;

std::vector<Translation> DetectInPairs(ScrollOrientation orientation,
                                       const std::vector<cv::Mat>& captures) {
  PhaseCorrelationTranslationDetector detector(orientation, false, 1);
  const Testing::ReferenceDetector reference(orientation);
  std::vector<Translation> translations;
  for (size_t i = 1; i < captures.size(); ++i) {
    const Translation found = detector.DetectTranslation(captures[i - 1], captures[i]);
    Expect(found == reference.DetectTranslation(captures[i - 1], captures[i]),
           "the translation is the reference's");
    Translation alternative;
    Translation expectedAlternative;
    Expect(detector.DetectTranslationWithAlternative(captures[i - 1], captures[i], alternative) ==
               reference.DetectTranslationWithAlternative(captures[i - 1], captures[i],
                                                          expectedAlternative),
           "the translation is the reference's beside an alternative");
    Expect(alternative == expectedAlternative, "the alternative is the reference's");
    translations.push_back(found);
  }
  return translations;
}

void DetectAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  const cv::Size size = AnySize(data, LongestSide);
  const auto orientation = data.PickValueInArray(
      {ScrollOrientation::Vertical, ScrollOrientation::Horizontal, ScrollOrientation::Both});
  const int type = data.ConsumeIntegralInRange(0, 7) == 0 ? CV_8UC3 : CV_8UC4;
  const cv::Mat page = AnyPixels(data, {size.width * 2, size.height * 2}, type);
  std::vector<cv::Mat> captures(data.ConsumeIntegralInRange<size_t>(2, 4));
  BasicImageProvider provider;
  for (cv::Mat& capture : captures) {
    capture = AnyCaptureOf(data, page, size, 4);
    provider.Add(capture);
  }
  const std::vector<Translation> inPairs = DetectInPairs(orientation, captures);

  PhaseCorrelationTranslationDetector detector(orientation, false,
                                               data.ConsumeIntegralInRange(1U, 2U));
  Testing::RecordingListener listener(data.ConsumeIntegralInRange<size_t>(0, 8));
  const int progressStart = AnyCoordinate(data, 100);
  const std::vector<Translation> inSequence =
      detector.DetectTranslation(provider, &listener, progressStart, AnyCoordinate(data, 100));
  const bool isCancelled = listener.calls.back() == "error 4 false";
  Expect(isCancelled ? inSequence.empty() : inSequence == inPairs,
         "a sequence gives what its pairs give, or was cancelled");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::DetectAny(data);
  return 0;
}
