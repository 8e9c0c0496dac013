#include <algorithm>
#include <utility>

#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/session/internal/Coverage.h>
#include <VelScrollingCapture/session/internal/ExactEngine.h>
#include <VelScrollingCapture/session/internal/SelectedCaptures.h>

namespace ScrollingCapture {
namespace {

class MosaicPicture : public StitchedPicture {
 public:
  MosaicPicture(std::shared_ptr<IImageProvider> captures, std::unique_ptr<const Mosaic> mosaic,
                bool isOpaque)
      : captures(std::move(captures)), mosaic(std::move(mosaic)), isOpaque(isOpaque) {}

  cv::Size Size() const override { return mosaic->Size(); }
  bool IsOpaque() const override { return isOpaque; }

  cv::Mat Area(const cv::Rect& area) const override {
    CV_Assert((area & cv::Rect({}, Size())) == area);
    cv::Mat pixels;
    mosaic->Render(area, pixels);
    return pixels;
  }

 private:
  const std::shared_ptr<IImageProvider> captures;  ///< which the mosaic reads
  const std::unique_ptr<const Mosaic> mosaic;
  const bool isOpaque;
};

/// The captures that make one picture.
struct Part {
  std::vector<std::size_t> indices;
  std::vector<Place> places;  ///< from the picture's first row and column on
};

void MoveToOrigin(std::vector<Place>& places) {
  Place origin = places.front();
  for (const Place& place : places) {
    origin = {std::min(origin.row, place.row), std::min(origin.column, place.column)};
  }
  for (Place& place : places) {
    place = {place.row - origin.row, place.column - origin.column};
  }
}

std::vector<Part> PartsOf(const std::vector<PlacedCapture>& placed) {
  std::vector<Part> parts;
  for (std::size_t i = 0; i < placed.size(); ++i) {
    const auto part = static_cast<std::size_t>(placed[i].part) - 1;
    parts.resize(std::max(parts.size(), part + 1));
    parts[part].indices.push_back(i);
    parts[part].places.push_back(placed[i].place);
  }
  for (Part& part : parts) {
    MoveToOrigin(part.places);
  }
  return parts;
}

std::vector<CaptureInPicture> Describe(const std::vector<PlacedCapture>& placed,
                                       const std::vector<Part>& parts) {
  std::vector<CaptureInPicture> described(placed.size());
  for (std::size_t part = 0; part < parts.size(); ++part) {
    for (std::size_t i = 0; i < parts[part].indices.size(); ++i) {
      const std::size_t capture = parts[part].indices[i];
      described[capture] = {part, parts[part].places[i], placed[capture].join,
                            placed[capture].joinedTo, false};
    }
  }
  return described;
}

}  // namespace

ExactEngine::ExactEngine(const SessionSettings& settings, std::shared_ptr<IImageProvider> captures)
    : captures(std::move(captures)),
      mosaicSettings{settings.fixedParts, std::max(settings.threadCount, 1U)},
      placer(*this->captures, {settings.orientation, settings.expectConsistentTranslations}) {}

std::optional<PlacedCapture> ExactEngine::Join(const IncomingCapture& capture) {
  const std::size_t index = captures->Count() - 1;
  if (capture.motion) {
    prescribed[index] = *capture.motion;
  }
  PlaceLeftOver(index);
  return PlaceNext(capture);
}

std::optional<SessionResult> ExactEngine::Stitch(IStitcherListener* listener) {
  constexpr std::size_t WholeProgress = 100;
  PlaceLeftOver(captures->Count());
  if (placer.Count() == 0) {
    TellError("Error: No captures to stitch.");
    if (listener != nullptr) {
      listener->StitchingError(IStitcherListener::NoImages, false);
    }
    return std::nullopt;
  }
  const std::vector<PlacedCapture> placed = placer.All();
  const std::vector<Part> parts = PartsOf(placed);
  const cv::Size captureSize = captures->GetImageAt(0)->size();
  SessionResult result;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto selected = std::make_shared<SelectedCaptures>(captures, parts[i].indices);
    auto mosaic = Mosaic::Analyse(*selected, parts[i].places, mosaicSettings, listener,
                                  static_cast<int>(WholeProgress * i / parts.size()),
                                  static_cast<int>(WholeProgress * (i + 1) / parts.size()));
    if (!mosaic) {
      return std::nullopt;
    }
    const bool isOpaque = allOpaque && Cover(mosaic->Size(), captureSize, parts[i].places);
    result.parts.push_back(std::make_shared<MosaicPicture>(selected, std::move(mosaic), isOpaque));
  }
  result.captures = Describe(placed, parts);
  return result;
}

PlacedCapture ExactEngine::PlaceNext(const IncomingCapture& capture) {
  const std::size_t index = placer.Count();
  const PreparedCapture prepared =
      capture.prepared ? *capture.prepared : PreparedCapture(capture.pixels);
  const auto motion = prescribed.find(index);
  const PlacedCapture placed = motion != prescribed.end()
                                   ? placer.PlaceAt(index, prepared, motion->second)
                                   : placer.Place(index, prepared);
  allOpaque = allOpaque && Covers(capture.pixels);
  return placed;
}

/// Captures that were added when there was no memory to place them.
void ExactEngine::PlaceLeftOver(std::size_t end) {
  while (placer.Count() < end) {
    PlaceNext({*captures->GetImageAt(placer.Count()), {}, {}});
  }
}

}  // namespace ScrollingCapture
