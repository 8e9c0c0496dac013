#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Testing {

inline const cv::Scalar White(255, 255, 255, 255);
inline const cv::Scalar Ink(30, 30, 40, 255);
inline const cv::Scalar Blue(40, 80, 160, 255);
inline const cv::Scalar Pale(235, 238, 245, 255);

/// Draws lines of something like words into an area; the same for the same seed.
inline void DrawText(cv::Mat& picture, const cv::Rect& area, std::uint64_t seed,
                     const cv::Scalar& colour = Ink) {
  cv::RNG random(seed);
  for (int row = area.y + 3; row + 7 < area.y + area.height; row += 12) {
    int column = area.x + 4;
    const int end = area.x + area.width * random.uniform(60, 100) / 100 - 4;
    while (column + 4 < end) {
      const int height = random.uniform(3, 8);
      const cv::Rect letter(column, row + 7 - height, random.uniform(1, 4), height);
      picture(letter & area).setTo(colour);
      column += letter.width + (random.uniform(0, 6) == 0 ? 6 : 2);
    }
  }
}

/// A page of text with plain margins.
inline cv::Mat TextPage(const cv::Size& size, std::uint64_t seed) {
  cv::Mat page(size, CV_8UC4, White);
  DrawText(page, {12, 0, size.width - 24, size.height}, seed);
  return page;
}

/// A window that scrolls over a page, with things drawn over what it shows.
class DrawnScene {
 public:
  /// Draws over the capture with the given index.
  using Overlay = std::function<void(int capture, cv::Mat& window)>;

  DrawnScene(cv::Mat page, const cv::Size& window, std::vector<Place> places)
      : page(std::move(page)), window(window), places(std::move(places)) {}

  /// Changes what is drawn over captures from here on.
  DrawnScene& With(Overlay overlay) {
    overlays.push_back(std::move(overlay));
    return *this;
  }

  cv::Mat CaptureAt(int index) const {
    const Place& place = places[static_cast<size_t>(index)];
    cv::Mat capture = page(cv::Rect({place.column, place.row}, window)).clone();
    for (const Overlay& overlay : overlays) {
      overlay(index, capture);
    }
    return capture;
  }

  std::vector<cv::Mat> Captures() const {
    std::vector<cv::Mat> captures;
    for (int i = 0; i < static_cast<int>(places.size()); ++i) {
      captures.push_back(CaptureAt(i));
    }
    return captures;
  }

  /// The part of the page that the captures reach, transparent where none lies.
  cv::Mat Content() const {
    cv::Rect box;
    cv::Mat content(page.size(), CV_8UC4, cv::Scalar());
    for (const Place& place : places) {
      const cv::Rect area({place.column, place.row}, window);
      box = box.empty() ? area : box | area;
      page(area).copyTo(content(area));
    }
    return content(box).clone();
  }

  const std::vector<Place>& Places() const { return places; }

 private:
  cv::Mat page;
  cv::Size window;
  std::vector<Place> places;
  std::vector<Overlay> overlays;
};

/// Places of captures taken while scrolling down by unequal steps.
inline std::vector<Place> ScrolledDown() {
  return {{0, 0}, {70, 0}, {125, 0}, {203, 0}, {262, 0}, {341, 0}};
}

inline void AddAll(BasicImageProvider& provider, std::vector<cv::Mat> captures) {
  for (cv::Mat& capture : captures) {
    provider.Add(capture);
  }
}

/// The whole picture of captures.
inline cv::Mat Compose(const std::vector<cv::Mat>& captures, const std::vector<Place>& places,
                       const MosaicSettings& settings = {}) {
  BasicImageProvider provider;
  AddAll(provider, captures);
  const Mosaic mosaic(provider, places, settings);
  cv::Mat picture;
  mosaic.Render({{}, mosaic.Size()}, picture);
  return picture;
}

inline cv::Mat Compose(const DrawnScene& scene, const MosaicSettings& settings = {}) {
  return Compose(scene.Captures(), scene.Places(), settings);
}

/// How many pixels differ; -1 for pictures of different sizes.
inline int DifferentPixels(const cv::Mat& first, const cv::Mat& second) {
  if (first.size() != second.size() || first.type() != second.type()) {
    return -1;
  }
  int different = 0;
  for (int row = 0; row < first.rows; ++row) {
    for (int column = 0; column < first.cols; ++column) {
      const std::uint8_t* const left = first.ptr(row, column);
      different += std::equal(left, left + first.elemSize(), second.ptr(row, column)) ? 0 : 1;
    }
  }
  return different;
}

}  // namespace ScrollingCapture::Testing
