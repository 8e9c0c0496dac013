#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/Layer.h>
#include <VelScrollingCapture/mosaic/internal/Selection.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>
#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {
namespace {

/// Shares of the analysis.
constexpr double AgreementFound = 0.2;
constexpr double SuspicionFound = 0.7;

void Copy(const cv::Mat& capture, const cv::Point& captureCorner, const cv::Rect& part,
          const cv::Point& pixelsCorner, cv::Mat& pixels) {
  capture(part - captureCorner).copyTo(pixels(part - pixelsCorner));
}

}  // namespace

Layer::Layer(const CaptureSource& source, const std::vector<Place>& places, const cv::Point& corner,
             const MosaicSettings& settings, const AnalysisProgress& progress)
    : source(source), layout(source.CaptureSize(), places), corner(corner) {
  if (settings.fixedParts == FixedParts::Keep) {
    areas = LastShown(layout);
    return;
  }
  Workers workers(settings.threadCount);
  Agreement agreement = FindAgreement(source, layout, workers, progress.Part(0, AgreementFound));
  areas = std::move(agreement.firstShown);
  if (!agreement.disputed.empty()) {
    const Suspicion suspicion(source, layout, agreement.disputed, workers,
                              progress.Part(AgreementFound, SuspicionFound));
    runs = SelectCaptures(source, layout, agreement.disputed, suspicion, workers,
                          progress.Part(SuspicionFound, 1));
  }
}

std::int64_t Layer::ShownPixels(const cv::Rect& area) const {
  const cv::Rect wanted = (area & Area()) - corner;
  std::int64_t pixels = 0;
  for (const size_t capture : layout.CapturesIn(wanted)) {
    for (const cv::Rect& shown : areas[capture]) {
      const cv::Size common = (shown & wanted).size();
      pixels += std::int64_t{common.width} * common.height;
    }
  }
  return pixels;
}

void Layer::Render(const cv::Rect& area, cv::Mat& pixels) const {
  const cv::Rect shown = (area & Area()) - corner;
  if (shown.empty()) {
    return;
  }
  cv::Mat target = pixels(shown + corner - area.tl());
  std::map<size_t, std::vector<size_t>> runsOfCaptures;
  for (auto run = FirstRunIn(shown.y); run != runs.end() && run->row < shown.y + shown.height;
       ++run) {
    runsOfCaptures[run->capture].push_back(static_cast<size_t>(run - runs.begin()));
  }
  // In capture order: a run replaces what an earlier capture was the first to show.
  for (const size_t capture : layout.CapturesIn(shown)) {
    RenderCapture(capture, shown, runsOfCaptures[capture], target);
  }
}

void Layer::RenderCapture(size_t capture, const cv::Rect& area,
                          const std::vector<size_t>& runsOfCapture, cv::Mat& pixels) const {
  std::vector<cv::Rect> parts;
  for (const cv::Rect& shown : areas[capture]) {
    parts.push_back(shown & area);
  }
  for (const size_t index : runsOfCapture) {
    const Run& run = runs[index];
    parts.push_back(cv::Rect(run.column, run.row, run.length, 1) & area);
  }
  std::shared_ptr<const cv::Mat> image;
  for (const cv::Rect& part : parts) {
    if (!part.empty()) {
      image = image == nullptr ? source.Get(capture) : image;
      Copy(*image, layout.CornerOf(capture), part, area.tl(), pixels);
    }
  }
}

std::optional<size_t> Layer::CaptureAt(const cv::Point& pixel) const {
  if (!Area().contains(pixel)) {
    return std::nullopt;
  }
  const cv::Point place = pixel - corner;
  for (auto run = FirstRunIn(place.y); run != runs.end() && run->row == place.y; ++run) {
    if (place.x >= run->column && place.x < run->column + run->length) {
      return run->capture;
    }
  }
  for (const size_t capture : layout.CapturesIn({place, cv::Size(1, 1)})) {
    const std::vector<cv::Rect>& shown = areas[capture];
    if (std::any_of(shown.begin(), shown.end(),
                    [&](const cv::Rect& rect) { return rect.contains(place); })) {
      return capture;
    }
  }
  return std::nullopt;
}

std::vector<Run>::const_iterator Layer::FirstRunIn(int row) const {
  return std::lower_bound(runs.begin(), runs.end(), row,
                          [](const Run& run, int wanted) { return run.row < wanted; });
}

}  // namespace ScrollingCapture
