// Tells whether two image files show the same: same_pixels FIRST SECOND
// Exit status 0 when they do, 1 when they differ, 2 when one cannot be read.
#include <iostream>

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace {

/// Blue, green, red and alpha; opaque where the file has no alpha.
cv::Mat ReadWithAlpha(const char* path) {
  cv::Mat image = cv::imread(path, cv::IMREAD_UNCHANGED);
  if (image.empty()) {
    return image;
  }
  if (image.channels() == 1) {
    cv::cvtColor(image, image, cv::COLOR_GRAY2BGRA);
  } else if (image.channels() == 3) {
    cv::cvtColor(image, image, cv::COLOR_BGR2BGRA);
  }
  return image;
}

int CountDifferentPixels(const cv::Mat& first, const cv::Mat& second) {
  cv::Mat difference;
  cv::absdiff(first, second, difference);
  int count = 0;
  for (int row = 0; row < difference.rows; ++row) {
    for (int column = 0; column < difference.cols; ++column) {
      count += static_cast<int>(difference.at<cv::Vec4b>(row, column) != cv::Vec4b::all(0));
    }
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: same_pixels FIRST SECOND\n";
    return 2;
  }
  const cv::Mat first = ReadWithAlpha(argv[1]);
  const cv::Mat second = ReadWithAlpha(argv[2]);
  if (first.empty() || second.empty()) {
    std::cerr << "cannot read " << argv[first.empty() ? 1 : 2] << "\n";
    return 2;
  }
  if (first.size() != second.size()) {
    std::cout << "different sizes: " << first.size() << " and " << second.size() << "\n";
    return 1;
  }
  const int different = CountDifferentPixels(first, second);
  std::cout << different << " of " << first.total() << " pixels differ\n";
  return different == 0 ? 0 : 1;
}
