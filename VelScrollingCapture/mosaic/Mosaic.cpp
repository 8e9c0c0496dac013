#include <algorithm>
#include <stdexcept>
#include <utility>

#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/AnalysisProgress.h>
#include <VelScrollingCapture/mosaic/internal/Selection.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {

class Mosaic::Composition {
 public:
  Composition(IImageProvider& captures, const std::vector<Place>& places,
              const MosaicSettings& settings, const AnalysisProgress& progress)
      : source(captures), layout(CheckedLayout(source, places)) {
    progress.Report(0);
    if (settings.fixedParts == FixedParts::Keep) {
      areas = LastShown(layout);
    } else {
      Agreement agreement = FindAgreement(source, layout);
      areas = std::move(agreement.firstShown);
      progress.Report(0.3);
      if (!agreement.disputed.empty()) {
        const Suspicion suspicion(source, layout);
        progress.Report(0.7);
        runs = SelectCaptures(source, layout, agreement.disputed, suspicion);
      }
    }
    progress.Report(1);
  }

  void Render(const cv::Rect& area, cv::Mat& pixels) const {
    pixels.create(area.size(), source.Type());
    pixels = cv::Scalar();
    for (const size_t capture : layout.CapturesIn(area)) {
      RenderCapture(capture, area, pixels);
    }
    RenderRuns(area, pixels);
  }

  std::optional<size_t> CaptureAt(const cv::Point& pixel) const {
    for (auto run = FirstRunIn(pixel.y); run != runs.end() && run->row == pixel.y; ++run) {
      if (pixel.x >= run->column && pixel.x < run->column + run->length) {
        return run->capture;
      }
    }
    for (const size_t capture : layout.CapturesIn({pixel, cv::Size(1, 1)})) {
      for (const cv::Rect& rect : areas[capture]) {
        if (rect.contains(pixel)) {
          return capture;
        }
      }
    }
    return std::nullopt;
  }

  const CaptureLayout& Layout() const { return layout; }
  int Type() const { return source.Type(); }

 private:
  static CaptureLayout CheckedLayout(const CaptureSource& source,
                                     const std::vector<Place>& places) {
    if (places.size() != source.Count()) {
      throw std::invalid_argument("A mosaic takes as many places as captures.");
    }
    return CaptureLayout(source.CaptureSize(), places);
  }

  void RenderCapture(size_t capture, const cv::Rect& area, cv::Mat& pixels) const {
    std::shared_ptr<const cv::Mat> image;
    for (const cv::Rect& rect : areas[capture]) {
      const cv::Rect common = rect & area;
      if (!common.empty()) {
        image = image == nullptr ? source.Get(capture) : image;
        Copy(*image, capture, common, area, pixels);
      }
    }
  }

  void RenderRuns(const cv::Rect& area, cv::Mat& pixels) const {
    for (auto run = FirstRunIn(area.y); run != runs.end() && run->row < area.y + area.height;
         ++run) {
      const cv::Rect common = cv::Rect(run->column, run->row, run->length, 1) & area;
      if (!common.empty()) {
        Copy(*source.Get(run->capture), run->capture, common, area, pixels);
      }
    }
  }

  void Copy(const cv::Mat& image, size_t capture, const cv::Rect& from, const cv::Rect& area,
            cv::Mat& pixels) const {
    image(from - layout.CornerOf(capture)).copyTo(pixels(from - area.tl()));
  }

  std::vector<Run>::const_iterator FirstRunIn(int row) const {
    return std::lower_bound(runs.begin(), runs.end(), row,
                            [](const Run& run, int wanted) { return run.row < wanted; });
  }

  CaptureSource source;
  CaptureLayout layout;
  std::vector<std::vector<cv::Rect>> areas;  ///< what each capture shows, apart from the runs
  std::vector<Run> runs;
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
