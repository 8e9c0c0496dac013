// Stitches small captures by any translations. A stitch gives a result that holds all captures, or
// fails with one of the documented codes and leaves the caller's matrix alone.

#include <memory>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/ScriptedDetector.h>

#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int MostCaptures = 6;
constexpr int LongestSide = 24;

/// Stops the stitch after some progress, and remembers what it was told.
class Listener : public IStitcherListener {
 public:
  explicit Listener(int acceptedProgressCalls) : acceptedProgressCalls(acceptedProgressCalls) {}

  bool ProgressCallback(int /*progress*/) override { return acceptedProgressCalls-- > 0; }
  void StitchingComplete(bool success) override { completions.push_back(success); }
  bool StitchingError(StitcherErrorCodes code, bool /*fatal*/) override {
    codes.push_back(code);
    return false;
  }

  bool HasRefused() const { return acceptedProgressCalls < 0; }

  std::vector<bool> completions;
  std::vector<int> codes;

 private:
  int acceptedProgressCalls;
};

void ExpectFailureIsExplained(const Listener& listener, size_t translations) {
  Expect(listener.codes.size() <= 1, "a stitch tells at most one code");
  if (listener.codes.empty()) {
    Expect(translations == 0 || listener.HasRefused(), "a failure without a code has a reason");
    return;
  }
  const int code = listener.codes.front();
  Expect(code == IStitcherListener::NoImages || code == IStitcherListener::ImageProcessingFailed ||
             code == IStitcherListener::Cancelled,
         "the code is a documented one");
  Expect((code == IStitcherListener::Cancelled) == listener.HasRefused(),
         "cancelled means that progress was refused");
}

void StitchAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  const cv::Size size = AnySize(data, LongestSide);
  const int captureCount = data.ConsumeIntegralInRange(0, MostCaptures);
  BasicImageProvider captures;
  std::vector<Translation> translations;
  for (int i = 0; i < captureCount; ++i) {
    const bool fits = data.ConsumeIntegralInRange(0, 15) != 0;
    cv::Mat capture = AnyPixels(data, fits ? size : AnySize(data, LongestSide), CV_8UC4);
    captures.Add(capture);
    if (i > 0) {
      translations.push_back(AnyTranslation(data, size));
    }
  }
  if (data.ConsumeIntegralInRange(0, 15) == 0) {
    translations.clear();
  }
  Listener listener(data.ConsumeIntegralInRange(0, 15));
  const int progressStart = AnyCoordinate(data, 100);
  const int progressEnd = AnyCoordinate(data, 100);

  BasicStitcher stitcher(std::make_shared<Testing::ScriptedDetector>(translations));
  const cv::Mat before(1, 1, CV_8UC4);
  cv::Mat result = before;
  const bool stitched =
      stitcher.Stitch(captures, result, &listener, progressStart, progressEnd, true);
  Expect(listener.completions == std::vector<bool>{stitched}, "completion is told once");
  if (stitched) {
    const cv::Size first = captures.GetImageAt(0)->size();
    Expect(result.rows >= first.height && result.cols >= first.width, "captures fit the result");
    Expect(listener.codes.empty(), "a result comes without an error");
  } else {
    Expect(result.data == before.data, "a failure leaves the caller's matrix alone");
    ExpectFailureIsExplained(listener, translations.size());
  }
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::StitchAny(data);
  return 0;
}
