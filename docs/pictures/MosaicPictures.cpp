#include "MosaicPictures.h"

#include <array>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

constexpr int HeaderHeight = 64;
constexpr int PanelWidth = 170;
constexpr int CaptureCount = 5;

const cv::Scalar White(255, 255, 255, 255);
const cv::Scalar Bar(35, 60, 110, 255);
const cv::Scalar Panel(238, 241, 246, 255);
const cv::Scalar Ink(60, 66, 80, 255);
const cv::Scalar Green(20, 140, 90, 255);

void DrawText(cv::Mat& picture, const char* text, const cv::Point& baseline,
              const cv::Scalar& colour, double scale = 0.6) {
  cv::putText(picture, text, baseline, cv::FONT_HERSHEY_SIMPLEX, scale, colour, 1, cv::LINE_AA);
}

void DrawPanel(cv::Mat& window) {
  window.colRange(0, PanelWidth).setTo(Panel);
  int row = HeaderHeight + 40;
  for (const char* entry : {"Contents", "First steps", "Places", "Pictures", "Index"}) {
    DrawText(window, entry, {16, row}, Ink);
    row += 34;
  }
}

void DrawHeader(cv::Mat& window) {
  window.rowRange(0, HeaderHeight).setTo(Bar);
  DrawText(window, "The window's own toolbar", {20, 40}, White, 0.8);
}

void DrawChatButton(cv::Mat& window) {
  const cv::Point centre(window.cols - 60, window.rows - 56);
  cv::circle(window, centre, 32, Green, cv::FILLED);
  DrawText(window, "chat", centre + cv::Point(-21, 6), White);
}

/// The content at the right of the panel and below the header.
cv::Mat ContentOf(const cv::Mat& page) {
  cv::Mat content;
  cv::copyMakeBorder(page, content, HeaderHeight, 0, PanelWidth, 0, cv::BORDER_CONSTANT, White);
  return content;
}

std::vector<Place> PlacesIn(const cv::Mat& content, const cv::Size& window) {
  std::vector<Place> places;
  for (int i = 0; i < CaptureCount; ++i) {
    places.push_back({(content.rows - window.height) * i / (CaptureCount - 1), 0});
  }
  return places;
}

cv::Mat CaptureAt(const cv::Mat& content, const cv::Size& size, const Place& place) {
  cv::Mat window = content(cv::Rect({place.column, place.row}, size)).clone();
  DrawPanel(window);
  DrawHeader(window);
  DrawChatButton(window);
  return window;
}

cv::Mat Compose(const Mosaic& mosaic) {
  cv::Mat picture;
  mosaic.Render({{}, mosaic.Size()}, picture);
  return picture;
}

/// The picture, each pixel in the tint of the capture that shows it.
cv::Mat DrawShares(const Mosaic& mosaic) {
  const std::array<cv::Vec4b, 4> tints = {cv::Vec4b(230, 90, 60, 255), cv::Vec4b(60, 130, 220, 255),
                                          cv::Vec4b(90, 180, 80, 255),
                                          cv::Vec4b(240, 190, 50, 255)};
  const cv::Mat picture = Compose(mosaic);
  cv::Mat_<cv::Vec4b> tint(picture.size());
  for (auto pixel = tint.begin(); pixel != tint.end(); ++pixel) {
    *pixel = tints[mosaic.CaptureAt(pixel.pos()).value_or(0) % tints.size()];
  }
  cv::Mat shares;
  cv::addWeighted(picture, 0.65, tint, 0.35, 0, shares);
  return shares;
}

}  // namespace

MosaicPictures::MosaicPictures(const cv::Mat& page) {
  const cv::Mat content = ContentOf(page);
  const cv::Size window(content.cols, content.rows * 2 / 5);
  const std::vector<Place> places = PlacesIn(content, window);
  BasicImageProvider captures;
  for (const Place& place : places) {
    cv::Mat shown = CaptureAt(content, window, place);
    captures.Add(shown);
  }
  MosaicSettings keeping;
  keeping.fixedParts = FixedParts::Keep;
  const Mosaic once(captures, places);
  capture = *captures.GetImageAt(CaptureCount / 2);
  overlay = Compose(Mosaic(captures, places, keeping));
  mosaic = Compose(once);
  shares = DrawShares(once);
}

}  // namespace ScrollingCapture
