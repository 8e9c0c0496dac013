#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>
#include <testkit/output/DrawnPicture.h>
#include <velscroll/output/formats/PngFilter.h>

namespace ScrollingCapture {
namespace {

using Program::FilterForPng;

constexpr int Width = 200;
constexpr int Rows = 100;
constexpr size_t RowBytes = 3 * Width + 1;

/// The filter of the first row.
int FilterOf(const std::vector<unsigned char>& filtered) { return filtered.front(); }

cv::Mat Photograph() {
  cv::Mat picture = Testing::NoiseCapture({Width, Rows}, 4);
  cv::GaussianBlur(picture, picture, {0, 0}, 12);
  cv::normalize(picture, picture, 0, 255, cv::NORM_MINMAX);
  cv::cvtColor(picture, picture, cv::COLOR_RGBA2RGB);
  return picture;
}

cv::Mat Letters() {
  cv::Mat picture = Testing::DrawnPicture({Width, Rows});
  picture.colRange(Width / 2, Width).setTo(cv::Scalar::all(255));
  cv::cvtColor(picture, picture, cv::COLOR_RGBA2RGB);
  return picture;
}

TEST(PngFilter, LeavesLettersAsTheyAre) {
  const cv::Mat letters = Letters();
  const auto filtered = FilterForPng({}, letters);
  ASSERT_EQ(filtered.size(), RowBytes * Rows);
  for (int row = 0; row < Rows; ++row) {
    const unsigned char* const from = filtered.data() + RowBytes * static_cast<size_t>(row);
    EXPECT_EQ(from[0], 0);
    EXPECT_TRUE(std::equal(from + 1, from + RowBytes, letters.ptr(row)));
  }
}

TEST(PngFilter, TakesDifferencesFromThePredictionInAPhotograph) {
  const cv::Mat photograph = Photograph();
  const auto filtered = FilterForPng(photograph.row(0), photograph.rowRange(1, Rows));
  ASSERT_EQ(filtered.size(), RowBytes * (Rows - 1));
  EXPECT_EQ(FilterOf(filtered), 4);
  const cv::Vec3b left = photograph.at<cv::Vec3b>(1, 0);
  const cv::Vec3b above = photograph.at<cv::Vec3b>(0, 0);
  for (int channel = 0; channel < 3; ++channel) {
    EXPECT_EQ(filtered[static_cast<size_t>(1 + channel)],
              static_cast<unsigned char>(left[channel] - above[channel]));
  }
}

/// Undoes it as a decoder does, with the predictor as the format's definition puts it.
TEST(PngFilter, CanBeUndone) {
  const cv::Mat photograph = Photograph();
  const auto filtered = FilterForPng({}, photograph);
  ASSERT_EQ(FilterOf(filtered), 4);
  cv::Mat undone(Rows, Width, CV_8UC3);
  for (int row = 0; row < Rows; ++row) {
    const unsigned char* const from = filtered.data() + RowBytes * static_cast<size_t>(row) + 1;
    for (int i = 0; i < 3 * Width; ++i) {
      const int a = i < 3 ? 0 : undone.ptr(row)[i - 3];
      const int b = row == 0 ? 0 : undone.ptr(row - 1)[i];
      const int c = i < 3 || row == 0 ? 0 : undone.ptr(row - 1)[i - 3];
      const int p = a + b - c;
      const int pa = std::abs(p - a);
      const int pb = std::abs(p - b);
      const int pc = std::abs(p - c);
      const int predicted = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
      undone.ptr(row)[i] = static_cast<unsigned char>(from[i] + predicted);
    }
  }
  EXPECT_TRUE(Testing::SameBits(undone, photograph));
}

}  // namespace
}  // namespace ScrollingCapture
