// Draws the pictures of the algorithm's description from the samples.
//   make_pictures SAMPLES_FOLDER OUTPUT_FOLDER

#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/ScriptedDetector.h>

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

#include "MatchingPictures.h"
#include "MosaicPictures.h"

namespace ScrollingCapture {
namespace {

const cv::Scalar Paper(255, 255, 255, 255);
const cv::Scalar Mark(220, 40, 40, 255);
constexpr int Gap = 16;

cv::Mat ReadImage(const std::string& file) {
  cv::Mat image;
  cv::cvtColor(cv::imread(file, cv::IMREAD_COLOR), image, cv::COLOR_BGR2RGBA);
  return image;
}

std::vector<cv::Mat> ReadSample(const std::string& folder) {
  std::vector<std::string> files;
  cv::glob(folder + "/captures/*.png", files);
  std::vector<cv::Mat> captures;
  std::transform(files.begin(), files.end(), std::back_inserter(captures), ReadImage);
  return captures;
}

void Write(const std::string& file, const cv::Mat& picture) {
  cv::Mat pixels;
  cv::cvtColor(picture, pixels, cv::COLOR_RGBA2BGR);
  if (!cv::imwrite(file, pixels)) {
    throw std::runtime_error("cannot write " + file);
  }
}

cv::Mat WithHeight(const cv::Mat& image, int height) {
  cv::Mat scaled;
  cv::resize(image, scaled, {image.cols * height / image.rows, height}, 0, 0, cv::INTER_AREA);
  return scaled;
}

/// The panels next to each other, a frame around each.
cv::Mat SideBySide(const std::vector<cv::Mat>& panels) {
  int width = Gap;
  int height = 0;
  for (const cv::Mat& panel : panels) {
    width += panel.cols + Gap;
    height = std::max(height, panel.rows);
  }
  cv::Mat picture(height + 2 * Gap, width, CV_8UC4, Paper);
  int column = Gap;
  for (const cv::Mat& panel : panels) {
    const cv::Rect place({column, Gap}, panel.size());
    panel.copyTo(picture(place));
    cv::rectangle(picture, place + cv::Size(1, 1), cv::Scalar(150, 150, 150, 255));
    column += panel.cols + Gap;
  }
  return picture;
}

class SurfaceDetector : public PhaseCorrelationTranslationDetector {
 public:
  SurfaceDetector() : PhaseCorrelationTranslationDetector(Both, false, 1) {}
  using PhaseCorrelationTranslationDetector::CalculateCorrelationMatrix;
};

/// The surface as grey levels, dark where it is high: its square root brings out the noise around
/// the peak, and the maximum of each neighbourhood keeps the peak's one pixel visible in small.
cv::Mat DrawSurface(const cv::Mat& surface, int height) {
  double highest = 0;
  cv::Point peak;
  cv::minMaxLoc(surface, nullptr, &highest, nullptr, &peak);
  cv::Mat heights;
  cv::sqrt(cv::max(surface, 0) / highest, heights);
  cv::dilate(heights, heights, cv::Mat::ones(5, 5, CV_8UC1));
  cv::Mat levels;
  heights.convertTo(levels, CV_8UC1, -255, 255);
  cv::Mat picture;
  cv::cvtColor(levels, picture, cv::COLOR_GRAY2RGBA);
  cv::circle(picture, peak, surface.rows / 30, Mark, 4, cv::LINE_AA);
  return WithHeight(picture, height);
}

/// Two captures, and their correlation surface with its peak.
cv::Mat DrawCorrelation(const cv::Mat& first, const cv::Mat& second) {
  constexpr int Height = 240;
  cv::Size surfaceSize;
  const cv::Mat surface = SurfaceDetector().CalculateCorrelationMatrix(first, second, surfaceSize);
  return SideBySide(
      {WithHeight(first, Height), WithHeight(second, Height), DrawSurface(surface, Height)});
}

BasicImageProvider ProviderOf(std::vector<cv::Mat> captures) {
  BasicImageProvider provider;
  for (cv::Mat& capture : captures) {
    provider.Add(capture);
  }
  return provider;
}

/// The stitched captures, each in a tint of its own.
cv::Mat DrawShares(const std::vector<cv::Mat>& captures, int height) {
  const std::vector<cv::Scalar> tints = {
      {230, 90, 60, 255}, {60, 130, 220, 255}, {90, 180, 80, 255}, {240, 190, 50, 255}};
  BasicImageProvider plain = ProviderOf(captures);
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  const std::vector<Translation> translations = detector.DetectTranslation(plain, nullptr, 0, 100);

  std::vector<cv::Mat> tinted;
  for (size_t i = 0; i < captures.size(); ++i) {
    const cv::Mat tint(captures[i].size(), captures[i].type(), tints[i % tints.size()]);
    tinted.emplace_back();
    cv::addWeighted(captures[i], 0.7, tint, 0.3, 0, tinted.back());
  }
  BasicImageProvider provider = ProviderOf(tinted);
  BasicStitcher stitcher(std::make_shared<Testing::ScriptedDetector>(translations));
  cv::Mat result;
  if (!stitcher.Stitch(provider, result, nullptr, 0, 100, false)) {
    throw std::runtime_error("the captures were not stitched");
  }
  cv::Mat alpha;
  cv::extractChannel(result, alpha, 3);
  result.setTo(Paper, alpha == 0);
  return WithHeight(result, height);
}

/// The preview after every other capture.
cv::Mat DrawPreviews(const std::vector<cv::Mat>& captures) {
  constexpr int Height = 240;
  PreviewImage preview;
  std::vector<cv::Mat> panels;
  for (size_t i = 0; i < captures.size(); ++i) {
    preview.AddCapture(captures[i]);
    if (i % 2 == 0) {
      panels.push_back(WithHeight(preview.GetPreview(), Height));
    }
  }
  return SideBySide(panels);
}

/// What the cells say about the right motion, and about one that is wrong by a line of text.
cv::Mat DrawProofs(const cv::Mat& earlier, const cv::Mat& later) {
  constexpr int Height = 360;
  const cv::Point motion = MotionOfMostVotes(earlier, later);
  return SideBySide({WithHeight(DrawProof(earlier, later, motion), Height),
                     WithHeight(DrawProof(earlier, later, motion + cv::Point(0, 26)), Height)});
}

void DrawMosaic(const cv::Mat& page, const std::string& output) {
  constexpr int Width = 300;
  const auto small = [](const cv::Mat& image) {
    return WithHeight(image, image.rows * Width / image.cols);
  };
  const MosaicPictures pictures(page);
  Write(output + "/mosaic.png",
        SideBySide({small(pictures.capture), small(pictures.overlay), small(pictures.mosaic)}));
  Write(output + "/mosaic-shares.png", SideBySide({small(pictures.shares)}));
}

void DrawAll(const std::string& samples, const std::string& output) {
  constexpr int SharesHeight = 420;
  const std::vector<cv::Mat> article = ReadSample(samples + "/article");
  const std::vector<cv::Mat> map = ReadSample(samples + "/map");
  Write(output + "/correlation.png", DrawCorrelation(map[1], map[2]));
  Write(output + "/seams.png",
        SideBySide({DrawShares(article, SharesHeight), DrawShares(map, SharesHeight)}));
  Write(output + "/preview.png", DrawPreviews(article));
  const std::vector<cv::Mat> toolbar = ReadSample(samples + "/toolbar");
  Write(output + "/votes.png", SideBySide({WithHeight(DrawVotes(toolbar[0], toolbar[1]), 360)}));
  Write(output + "/proof.png", DrawProofs(toolbar[0], toolbar[1]));
  DrawMosaic(ReadImage(samples + "/article/truth.png"), output);
}

}  // namespace
}  // namespace ScrollingCapture

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: make_pictures SAMPLES_FOLDER OUTPUT_FOLDER\n";
    return 2;
  }
  try {
    ScrollingCapture::DrawAll(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
