// A minimal host: stitches captures from image files and prints the progress.
//
//   cpp-host [--stop-at PERCENT] OUTPUT CAPTURE...
//
// Exit status: 0 done, 1 failed or stopped, 2 wrong usage or a file that cannot be read.
#include <cstdlib>
#include <limits>
#include <string>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

// [host]
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include <VelScrollingCapture/ScrollingCapture.h>

using namespace ScrollingCapture;

class Progress : public ScrollingProgressDelegate {
 public:
  explicit Progress(int stopAt) : stopAt(stopAt) {}
  void setCurrentProgress(int progress) override {
    std::cout << progress << " %" << std::endl;
    reached = progress;
  }
  bool continueScrolling() override { return reached < stopAt; }

 private:
  int stopAt;
  int reached = 0;
};

std::optional<PlatformImage> Stitch(const std::vector<PlatformImage>& captures, int stopAt) {
  const auto progress = std::make_shared<Progress>(stopAt);
  const auto capture = VelScrollingCapture::initWithExactJoins(2);  // on two threads
  capture->setProgressDelegate(progress);                           // held weakly
  for (const PlatformImage& image : captures) {
    if (capture->addCapture(image).state == CaptureOutcome::State::TooFast) {
      std::cerr << "too fast: scroll back a little\n";
    }
  }
  return capture->stitchAndReturnFinalImage();
}
// [host]

namespace {

/// Image files hold blue, green, red and perhaps alpha, which is not premultiplied.
std::optional<PlatformImage> Read(const std::string& path) {
  const cv::Mat file = cv::imread(path, cv::IMREAD_UNCHANGED);
  if (file.depth() != CV_8U || (file.channels() != 3 && file.channels() != 4)) {
    return std::nullopt;
  }
  cv::Mat pixels;
  if (file.channels() == 3) {
    cv::cvtColor(file, pixels, cv::COLOR_BGR2RGBA);
  } else {
    cv::cvtColor(file, pixels, cv::COLOR_BGRA2RGBA);
    cv::cvtColor(pixels, pixels, cv::COLOR_RGBA2mRGBA);
  }
  return PlatformImage::imageWithCVMat(pixels);
}

bool Write(const std::string& path, const PlatformImage& image) {
  cv::Mat pixels;
  cv::cvtColor(image.CVMat(), pixels, cv::COLOR_mRGBA2RGBA);
  cv::cvtColor(pixels, pixels, cv::COLOR_RGBA2BGRA);
  return cv::imwrite(path, pixels);
}

constexpr int Failed = 1;
constexpr int WrongUsage = 2;

int Run(std::vector<std::string> arguments) {
  int stopAt = std::numeric_limits<int>::max();
  if (arguments.size() > 2 && arguments[0] == "--stop-at") {
    stopAt = std::stoi(arguments[1]);
    arguments.erase(arguments.begin(), arguments.begin() + 2);
  }
  if (arguments.size() < 2) {
    std::cerr << "usage: cpp-host [--stop-at PERCENT] OUTPUT CAPTURE...\n";
    return WrongUsage;
  }
  std::vector<PlatformImage> captures;
  for (size_t i = 1; i < arguments.size(); ++i) {
    const std::optional<PlatformImage> image = Read(arguments[i]);
    if (!image) {
      std::cerr << arguments[i] << ": not an 8-bit colour image\n";
      return WrongUsage;
    }
    captures.push_back(*image);
  }
  const std::optional<PlatformImage> image = Stitch(captures, stopAt);
  if (!image) {
    std::cerr << "no image: the stitch was stopped or failed\n";
    return Failed;
  }
  if (!Write(arguments[0], *image)) {
    std::cerr << arguments[0] << ": cannot be written\n";
    return Failed;
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return WrongUsage;
  }
}
