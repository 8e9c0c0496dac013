#include <cstdint>
#include <numeric>
#include <stdexcept>
#include <utility>

#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/mosaic/internal/AnalysisProgress.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/FrozenPanes.h>
#include <VelScrollingCapture/mosaic/internal/Layer.h>

namespace ScrollingCapture {
namespace {

/// The contents' share of the analysis, beside that of panes.
constexpr double ContentShare = 0.95;

CaptureLayout CheckedLayout(const CaptureSource& source, const std::vector<Place>& places) {
  if (places.size() != source.Count()) {
    throw std::invalid_argument("A mosaic takes as many places as captures.");
  }
  return CaptureLayout(source.CaptureSize(), places);
}

/// Where the layers' parts of each capture lie, when they move along some axes only.
std::vector<Place> PlacesAlong(const CaptureLayout& layout, bool rows, bool columns) {
  std::vector<Place> places;
  places.reserve(layout.Count());
  for (size_t capture = 0; capture < layout.Count(); ++capture) {
    const cv::Point corner = layout.CornerOf(capture);
    places.push_back({rows ? corner.y : 0, columns ? corner.x : 0});
  }
  return places;
}

}  // namespace

/// The contents as one layer, and frozen panes, if there are any, as further ones beside it.
class Mosaic::Composition {
 public:
  Composition(IImageProvider& captures, const std::vector<Place>& places,
              const MosaicSettings& settings, const AnalysisProgress& progress)
      : source(captures), layout(CheckedLayout(source, places)) {
    progress.Report(0);
    if (layout.Count() > 0) {
      AddLayers(settings, progress);
    }
    progress.Report(1);
  }

  void Render(const cv::Rect& area, cv::Mat& pixels) const {
    pixels.create(area.size(), source.Type());
    if (!Covers(area)) {
      pixels = cv::Scalar();
    }
    for (const Layer& layer : layers) {
      layer.Render(area, pixels);
    }
  }

  std::optional<size_t> CaptureAt(const cv::Point& pixel) const {
    for (const Layer& layer : layers) {
      if (const auto capture = layer.CaptureAt(pixel)) {
        return capture;
      }
    }
    return std::nullopt;
  }

  const CaptureLayout& Layout() const { return layout; }
  int Type() const { return source.Type(); }

 private:
  /// Whether captures show all of an area.
  bool Covers(const cv::Rect& area) const {
    const std::int64_t shown = std::accumulate(
        layers.begin(), layers.end(), std::int64_t{0},
        [&](std::int64_t sum, const Layer& layer) { return sum + layer.ShownPixels(area); });
    return shown == std::int64_t{area.width} * area.height;
  }

  void AddLayers(const MosaicSettings& settings, const AnalysisProgress& progress) {
    const cv::Size panes =
        settings.fixedParts == FixedParts::Once ? FindFrozenPanes(source, layout) : cv::Size();
    const cv::Size size = source.CaptureSize();
    const int left = panes.width;
    const int top = panes.height;
    const auto add = [&](const cv::Rect& part, bool rows, bool columns) {
      if (!part.empty()) {
        layers.emplace_back(CaptureSource(source, part), PlacesAlong(layout, rows, columns),
                            part.tl(), settings,
                            layers.empty() ? progress.Part(0, ContentShare)
                                           : progress.Part(ContentShare, ContentShare));
      }
    };
    add({left, top, size.width - left, size.height - top}, true, true);
    add({left, 0, size.width - left, top}, false, true);
    add({0, top, left, size.height - top}, true, false);
    add({0, 0, left, top}, false, false);
  }

  CaptureSource source;
  CaptureLayout layout;
  std::vector<Layer> layers;
};

Mosaic::Mosaic(IImageProvider& captures, const std::vector<Place>& places,
               const MosaicSettings& settings)
    : composition(std::make_unique<Composition>(captures, places, settings,
                                                AnalysisProgress(nullptr, 0, 0))) {}

Mosaic::Mosaic(std::unique_ptr<const Composition> composition)
    : composition(std::move(composition)) {}

std::unique_ptr<Mosaic> Mosaic::Analyse(IImageProvider& captures, const std::vector<Place>& places,
                                        const MosaicSettings& settings, IStitcherListener* listener,
                                        int progressStart, int progressEnd) {
  const AnalysisProgress progress(listener, progressStart, progressEnd);
  try {
    auto composition = std::make_unique<const Composition>(captures, places, settings, progress);
    return std::unique_ptr<Mosaic>(new Mosaic(std::move(composition)));
  } catch (const AnalysisCancelled&) {
    listener->StitchingError(IStitcherListener::Cancelled, false);
  }
  return nullptr;
}

Mosaic::~Mosaic() = default;

cv::Size Mosaic::Size() const { return composition->Layout().PictureSize(); }

int Mosaic::Type() const { return composition->Type(); }

void Mosaic::Render(const cv::Rect& area, cv::Mat& pixels) const {
  composition->Render(area, pixels);
}

cv::Rect Mosaic::AreaOf(size_t capture) const { return composition->Layout().RectOf(capture); }

std::optional<size_t> Mosaic::CaptureAt(const cv::Point& pixel) const {
  return composition->CaptureAt(pixel);
}

}  // namespace ScrollingCapture
