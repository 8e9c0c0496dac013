#include <algorithm>
#include <utility>

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/seams/Layout.h>
#include <VelScrollingCapture/session/internal/Coverage.h>
#include <VelScrollingCapture/session/internal/PhaseCorrelationEngine.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>

namespace ScrollingCapture {
namespace {

class MatrixPicture : public StitchedPicture {
 public:
  explicit MatrixPicture(cv::Mat matrix) : matrix(std::move(matrix)) {}

  cv::Size Size() const override { return matrix.size(); }
  bool IsOpaque() const override { return Covers(matrix); }
  cv::Mat Area(const cv::Rect& area) const override { return matrix(area); }

 private:
  cv::Mat matrix;
};

std::shared_ptr<ProvingDetector> MakeDetector(const SessionSettings& settings) {
  return std::make_shared<ProvingDetector>(
      std::make_shared<PhaseCorrelationTranslationDetector>(settings.orientation,
                                                            settings.expectConsistentTranslations,
                                                            std::max(settings.threadCount, 1U)),
      MatchingSettings{settings.orientation, settings.expectConsistentTranslations});
}

}  // namespace

PhaseCorrelationEngine::PhaseCorrelationEngine(const SessionSettings& settings,
                                               std::shared_ptr<IImageProvider> captures)
    : captures(std::move(captures)),
      detector(MakeDetector(settings)),
      stitcher(std::make_shared<BasicStitcher>(detector)) {
  if (settings.borders) {
    borderDetection = std::make_shared<RecordedBorders>(stitcher, settings.borders->difference,
                                                        settings.borders->neighbors);
    stitcher = borderDetection;
  }
}

std::optional<PlacedCapture> PhaseCorrelationEngine::Join(const IncomingCapture& capture) {
  const std::size_t index = captures->Count() - 1;
  if (capture.motion && index > 0) {
    detector->Prescribe(index, *capture.motion);
  }
  return std::nullopt;
}

std::optional<SessionResult> PhaseCorrelationEngine::Stitch(IStitcherListener* listener) {
  constexpr int WholeProgress = 100;
  const std::size_t count = captures->Count();
  cv::Mat image;
  if (!stitcher->Stitch(*captures, image, listener, 0, WholeProgress, false)) {
    return std::nullopt;
  }
  captures->Clear();
  return SessionResult{{std::make_shared<MatrixPicture>(image)},
                       CapturesInPicture(count),
                       borderDetection ? borderDetection->Found() : std::nullopt};
}

std::vector<CaptureInPicture> PhaseCorrelationEngine::CapturesInPicture(std::size_t count) const {
  const std::vector<Translation> translations = stitcher->GetTranslations();
  // The size of the captures has no part in where they begin.
  const std::vector<Place> places = LayoutOf(cv::Size(), translations).places;
  std::vector<CaptureInPicture> described(count);
  for (std::size_t i = 0; i < count; ++i) {
    described[i].place = places[i];
    if (i > 0) {
      described[i].join = detector->Joins()[i - 1];
      described[i].joinedTo = i - 1;
      described[i].leftOut = translations[i - 1] == Translation();
    }
  }
  return described;
}

}  // namespace ScrollingCapture
