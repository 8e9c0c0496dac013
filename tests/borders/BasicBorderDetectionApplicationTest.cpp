#include <iostream>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/StreamCapture.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::OpenBorderDetection;
using Testing::SameBits;
using Testing::StreamCapture;

std::shared_ptr<cv::Mat> NoiseBorder(const cv::Size& size, std::uint64_t seed) {
  return std::make_shared<cv::Mat>(NoiseCapture(size, seed));
}

bool IsZero(const cv::Mat& image) {
  return SameBits(image, cv::Mat::zeros(image.size(), image.type()));
}

/// Has borders that were extracted around a content box of 100 columns and 300 rows.
class BasicBorderDetectionApplication : public testing::Test {
 protected:
  void StoreTop() { detection.topBorder = NoiseBorder({115, 40}, 1); }
  void StoreBottom() { detection.bottomBorder = NoiseBorder({115, 20}, 2); }
  void StoreLeft() { detection.leftBorder = NoiseBorder({10, 300}, 3); }
  void StoreRight() { detection.rightBorder = NoiseBorder({5, 300}, 4); }
  void StoreAll() {
    StoreTop();
    StoreBottom();
    StoreLeft();
    StoreRight();
  }

  OpenBorderDetection detection{10, 2};
};

TEST_F(BasicBorderDetectionApplication, RefusesAnEmptyImageBeforeItLooksForBorders) {
  cv::Mat image;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(detection.ApplyBorders(image));
  EXPECT_EQ(errors.Text(), "Error: Input image is empty.\n");
}

TEST_F(BasicBorderDetectionApplication, NeedsABorder) {
  cv::Mat image = NoiseCapture({10, 10}, 9);
  const cv::Mat before = image.clone();
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(detection.ApplyBorders(image));
  EXPECT_EQ(errors.Text(), "Error: No border has been extracted.\n");
  EXPECT_TRUE(SameBits(image, before));
}

TEST_F(BasicBorderDetectionApplication, PutsATopBorderAbove) {
  detection.topBorder = NoiseBorder({1000, 40}, 1);
  const cv::Mat content = NoiseCapture({1000, 3000}, 9);
  cv::Mat image = content;
  EXPECT_TRUE(detection.ApplyBorders(image));
  ASSERT_EQ(image.size(), cv::Size(1000, 3040));
  EXPECT_TRUE(SameBits(image.rowRange(0, 40), *detection.topBorder));
  EXPECT_TRUE(SameBits(image.rowRange(40, 3040), content));
}

TEST_F(BasicBorderDetectionApplication, LeavesTheSidesOfTallContentTransparentBelowTheBorders) {
  StoreAll();
  const cv::Mat content = NoiseCapture({100, 3000}, 9);
  cv::Mat image = content;
  EXPECT_TRUE(detection.ApplyBorders(image));
  ASSERT_EQ(image.size(), cv::Size(115, 3060));
  EXPECT_TRUE(SameBits(image(cv::Rect(10, 40, 100, 3000)), content));
  EXPECT_TRUE(SameBits(image.rowRange(0, 40), *detection.topBorder));
  EXPECT_TRUE(SameBits(image.rowRange(3040, 3060), *detection.bottomBorder));
  EXPECT_TRUE(SameBits(image(cv::Rect(0, 40, 10, 300)), *detection.leftBorder));
  EXPECT_TRUE(SameBits(image(cv::Rect(110, 40, 5, 300)), *detection.rightBorder));
  EXPECT_TRUE(IsZero(image(cv::Rect(0, 340, 10, 2700))));
  EXPECT_TRUE(IsZero(image(cv::Rect(110, 340, 5, 2700))));
}

TEST_F(BasicBorderDetectionApplication, CoversTheFirstRowsOfTheSidesWithSideBordersAlone) {
  StoreLeft();
  StoreRight();
  cv::Mat image = NoiseCapture({100, 3000}, 9);
  EXPECT_TRUE(detection.ApplyBorders(image));
  ASSERT_EQ(image.size(), cv::Size(115, 3000));
  EXPECT_TRUE(SameBits(image(cv::Rect(0, 0, 10, 300)), *detection.leftBorder));
  EXPECT_TRUE(IsZero(image(cv::Rect(0, 300, 10, 2700))));
  EXPECT_TRUE(SameBits(image(cv::Rect(110, 0, 5, 300)), *detection.rightBorder));
  EXPECT_TRUE(IsZero(image(cv::Rect(110, 300, 5, 2700))));
}

TEST_F(BasicBorderDetectionApplication,
       LeavesTheTopAndBottomOfWideContentTransparentRightOfTheBorders) {
  StoreAll();
  const cv::Mat content = NoiseCapture({500, 300}, 9);
  cv::Mat image = content;
  EXPECT_TRUE(detection.ApplyBorders(image));
  ASSERT_EQ(image.size(), cv::Size(515, 360));
  EXPECT_TRUE(SameBits(image(cv::Rect(10, 40, 500, 300)), content));
  EXPECT_TRUE(SameBits(image(cv::Rect(0, 0, 115, 40)), *detection.topBorder));
  EXPECT_TRUE(IsZero(image(cv::Rect(115, 0, 400, 40))));
  EXPECT_TRUE(SameBits(image(cv::Rect(0, 340, 115, 20)), *detection.bottomBorder));
  EXPECT_TRUE(IsZero(image(cv::Rect(115, 340, 400, 20))));
  EXPECT_TRUE(SameBits(image(cv::Rect(510, 40, 5, 300)), *detection.rightBorder));
}

TEST_F(BasicBorderDetectionApplication, CutsBordersThatReachOutsideTheFrame) {
  StoreAll();
  const cv::Mat content = NoiseCapture({60, 50}, 9);
  cv::Mat image = content;
  EXPECT_TRUE(detection.ApplyBorders(image));
  ASSERT_EQ(image.size(), cv::Size(75, 110));
  EXPECT_TRUE(SameBits(image(cv::Rect(10, 40, 60, 50)), content));
  EXPECT_TRUE(SameBits(image(cv::Rect(0, 0, 75, 40)), detection.topBorder->colRange(0, 75)));
  // A side border that is too tall ends with the frame, and so covers the border laid before it.
  EXPECT_TRUE(SameBits(image(cv::Rect(0, 40, 10, 70)), detection.leftBorder->rowRange(0, 70)));
  EXPECT_TRUE(SameBits(image(cv::Rect(70, 40, 5, 70)), detection.rightBorder->rowRange(0, 70)));
  EXPECT_TRUE(SameBits(image(cv::Rect(10, 90, 60, 20)), detection.bottomBorder->colRange(10, 70)));
}

TEST_F(BasicBorderDetectionApplication, GivesTheTypeOfTheContent) {
  StoreTop();
  const cv::Mat content(300, 115, CV_8UC1, cv::Scalar(200));
  cv::Mat image = content;
  EXPECT_TRUE(detection.ApplyBorders(image));
  ASSERT_EQ(image.type(), CV_8UC1);
  EXPECT_TRUE(SameBits(image.rowRange(40, 340), content));
  EXPECT_TRUE(IsZero(image.rowRange(0, 40)));
}

TEST_F(BasicBorderDetectionApplication, FailsWhenThereIsNoMemoryForTheFrame) {
  StoreTop();
  // A header over one pixel that pretends to be larger than any memory.
  uchar pixel[4] = {};
  cv::Mat image(1'000'000'000, 1'000'000'000, CV_8UC4, pixel);
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(detection.ApplyBorders(image));
  EXPECT_EQ(errors.Text(), "Error: Insufficient memory to apply borders.\n");
  EXPECT_EQ(image.data, pixel);
  EXPECT_EQ(image.size(), cv::Size(1'000'000'000, 1'000'000'000));
}

TEST_F(BasicBorderDetectionApplication, KeepsTheImageWhenTheBordersCannotBeAdded) {
  class Refusing : public OpenBorderDetection {
   public:
    using OpenBorderDetection::OpenBorderDetection;

   protected:
    bool AddBorders(const cv::Range& /*rows*/, const cv::Range& /*columns*/,
                    cv::Mat& /*frame*/) override {
      return false;
    }
  };
  Refusing refusing(10, 2);
  refusing.topBorder = NoiseBorder({10, 4}, 1);
  cv::Mat image = NoiseCapture({10, 10}, 9);
  const cv::Mat before = image.clone();
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(refusing.ApplyBorders(image));
  EXPECT_EQ(errors.Text(), "Error: Failed to apply borders.\n");
  EXPECT_TRUE(SameBits(image, before));
}

TEST_F(BasicBorderDetectionApplication, LeavesTheContentsPixelsAlone) {
  StoreAll();
  const cv::Mat content = NoiseCapture({100, 300}, 9);
  const cv::Mat before = content.clone();
  cv::Mat image = content;
  EXPECT_TRUE(detection.ApplyBorders(image));
  EXPECT_NE(image.data, content.data);
  EXPECT_TRUE(SameBits(content, before));
}

TEST_F(BasicBorderDetectionApplication, AddsBordersAtTheEdgesOfAnyFrame) {
  StoreAll();
  cv::Mat frame = cv::Mat::zeros(500, 200, CV_8UC4);
  EXPECT_TRUE(detection.AddBorders({60, 450}, {30, 180}, frame));
  EXPECT_TRUE(SameBits(frame(cv::Rect(0, 0, 115, 40)), *detection.topBorder));
  EXPECT_TRUE(SameBits(frame(cv::Rect(0, 450, 115, 20)), *detection.bottomBorder));
  EXPECT_TRUE(SameBits(frame(cv::Rect(0, 60, 10, 300)), *detection.leftBorder));
  EXPECT_TRUE(SameBits(frame(cv::Rect(180, 60, 5, 300)), *detection.rightBorder));
}

TEST_F(BasicBorderDetectionApplication, SizesTheFrameAsTheContentWithoutBorders) {
  cv::Size size;
  cv::Range rows;
  cv::Range columns;
  detection.CalculateFinalImageSize({70, 90}, size, rows, columns);
  EXPECT_EQ(size, cv::Size(70, 90));
  EXPECT_EQ(rows, cv::Range(0, 90));
  EXPECT_EQ(columns, cv::Range(0, 70));
}

TEST_F(BasicBorderDetectionApplication, SizesTheFrameWithRoomForEveryBorder) {
  StoreAll();
  cv::Size size;
  cv::Range rows;
  cv::Range columns;
  detection.CalculateFinalImageSize({70, 90}, size, rows, columns);
  EXPECT_EQ(size, cv::Size(85, 150));
  EXPECT_EQ(rows, cv::Range(40, 130));
  EXPECT_EQ(columns, cv::Range(10, 80));
}

}  // namespace
}  // namespace ScrollingCapture
