#include <algorithm>
#include <utility>

#include <VelScrollingCapture/session/internal/PhaseCorrelationEngine.h>
#include <VelScrollingCapture/session/internal/Placement.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>

namespace ScrollingCapture {
namespace {

class MatrixPicture : public Picture {
 public:
  explicit MatrixPicture(cv::Mat matrix) : matrix(std::move(matrix)) {}

  cv::Size Size() const override { return matrix.size(); }
  cv::Mat Area(const cv::Rect& area) const override { return matrix(area); }

 private:
  cv::Mat matrix;
};

std::vector<CaptureInPicture> CapturesInPicture(const std::vector<Translation>& translations) {
  const std::vector<Place> places = PlacesOf(translations);
  std::vector<CaptureInPicture> placed = {{{}, places.front(), false}};
  for (size_t i = 0; i < translations.size(); ++i) {
    placed.push_back({translations[i], places[i + 1], translations[i] == Translation()});
  }
  return placed;
}

}  // namespace

PhaseCorrelationEngine::PhaseCorrelationEngine(const SessionSettings& settings)
    : stitcher(StitcherFactory::CreateBasicStitcher(settings.orientation,
                                                    settings.expectConsistentTranslations,
                                                    std::max(settings.threadCount, 1U))) {
  if (settings.borders) {
    borderDetection = std::make_shared<RecordedBorders>(stitcher, settings.borders->difference,
                                                        settings.borders->neighbors);
    stitcher = borderDetection;
  }
}

std::optional<SessionResult> PhaseCorrelationEngine::Stitch(
    const std::shared_ptr<IImageProvider>& captures, IStitcherListener* listener) {
  constexpr int WholeProgress = 100;
  cv::Mat image;
  if (!stitcher->Stitch(*captures, image, listener, 0, WholeProgress, false)) {
    return std::nullopt;
  }
  return SessionResult{std::make_shared<MatrixPicture>(image),
                       CapturesInPicture(stitcher->GetTranslations()), FoundBorders()};
}

std::optional<FixedBorders> PhaseCorrelationEngine::FoundBorders() const {
  return borderDetection ? borderDetection->Found() : std::nullopt;
}

}  // namespace ScrollingCapture
