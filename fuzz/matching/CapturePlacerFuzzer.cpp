// Places any small captures in any way: each one gets a place and a join that fits its pixels, and
// the number of threads makes no difference.

#include <optional>
#include <stdexcept>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/RecordingListener.h>

#include <VelScrollingCapture/matching/PairMatcher.h>
#include <VelScrollingCapture/matching/SequenceMatcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 64;

void ExpectSound(const PlacedCapture& placed, std::size_t index) {
  Expect(placed.part >= 1 && placed.part <= static_cast<int>(index) + 1, "parts are numbered");
  Expect(placed.join.equal >= 0 && placed.join.equal <= placed.join.compared,
         "no more pixels are equal than were compared");
  Expect(!placed.joinedTo || *placed.joinedTo < index, "captures are joined to earlier ones");
  Expect(placed.join.verdict == Verdict::Doubtful || placed.join.alternatives.empty(),
         "only doubt has alternatives");
}

/// One by one, with motions that somebody prescribes in between.
void PlaceOneByOne(FuzzedDataProvider& data, BasicImageProvider& captures,
                   const MatchingSettings& settings) {
  CapturePlacer placer(captures, settings);
  for (std::size_t i = 0; i < captures.Count(); ++i) {
    const cv::Mat& capture = *captures.GetImageAt(i);
    const PreparedCapture prepared = PreparedCapture(capture);
    if (data.ConsumeIntegralInRange(0, 3) == 0) {
      const Translation motion = AnyTranslation(data, capture.size());
      const bool isSmall = std::abs(std::int64_t{motion.GetRows()}) < (1 << 18) &&
                           std::abs(std::int64_t{motion.GetCols()}) < (1 << 18);
      placer.PlaceAt(i, prepared, isSmall ? motion : Translation());
    } else {
      placer.Place(i, prepared);
    }
    for (std::size_t k = 0; k <= i; ++k) {
      ExpectSound(placer.At(k), k);
    }
  }
}

void ExpectSameForAnyThreads(FuzzedDataProvider& data, BasicImageProvider& captures,
                             const MatchingSettings& settings) {
  const std::vector<PlacedCapture> alone = MatchSequence(captures, nullptr, {settings, 1, 0, 100});
  Testing::RecordingListener listener(data.ConsumeIntegralInRange<size_t>(0, 9));
  const std::vector<PlacedCapture> together =
      MatchSequence(captures, &listener, {settings, data.ConsumeIntegralInRange(2U, 4U), 0, 100});
  if (!together.empty()) {
    Expect(together.size() == alone.size(), "every capture is placed");
    for (std::size_t i = 0; i < alone.size(); ++i) {
      Expect(together[i].place == alone[i].place && together[i].part == alone[i].part &&
                 together[i].join.verdict == alone[i].join.verdict,
             "the number of threads makes no difference");
    }
  }
}

void PlaceAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  const cv::Size size = AnySize(data, LongestSide);
  const MatchingSettings settings = {
      data.PickValueInArray({Vertical, Horizontal, Both, static_cast<ScrollOrientation>(5)}),
      data.ConsumeBool()};
  const int type = data.PickValueInArray({CV_8UC1, CV_8UC3, CV_8UC4});
  const cv::Mat page = AnyPixels(data, {size.width * 2, size.height * 3}, type);
  BasicImageProvider captures;
  const auto count = data.ConsumeIntegralInRange<std::size_t>(1, 6);
  for (std::size_t i = 0; i < count; ++i) {
    cv::Mat capture = AnyCaptureOf(data, page, size, 6);
    captures.Add(capture);
  }
  PlaceOneByOne(data, captures, settings);
  ExpectSameForAnyThreads(data, captures, settings);
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::PlaceAny(data);
  return 0;
}
