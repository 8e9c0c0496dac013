#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/StreamCapture.h>

namespace ScrollingCapture {
namespace {

using Testing::CapturesThatChange;
using Testing::GreyCapture;
using Testing::OpenBorderDetection;
using Testing::StreamCapture;

constexpr unsigned int AnyDifference = 0;
constexpr unsigned int AnyNeighbor = 0;

/// What FindContent says about captures.
struct Found {
  bool found;
  cv::Range rows;
  cv::Range columns;
  std::string messages;
};

Found FindContentIn(BasicImageProvider captures, unsigned int neighborThreshold = AnyNeighbor,
                    unsigned int differenceThreshold = AnyDifference) {
  OpenBorderDetection detection(differenceThreshold, neighborThreshold);
  const StreamCapture errors(std::cerr);
  Found result = {};
  const cv::Size size = captures.IsEmpty() ? cv::Size() : captures.GetImageAt(0)->size();
  result.found = detection.FindContent(captures, size, result.rows, result.columns);
  result.messages = errors.Text();
  return result;
}

std::string NoTopOrLeft(int index) {
  return "Error: Failed to find top or left content boundary for image with index " +
         std::to_string(index) + ".\n";
}

TEST(BasicBorderDetectionContentBox, NeedsTwoCaptures) {
  for (const BasicImageProvider& captures :
       {BasicImageProvider(), CapturesThatChange({20, 20}, {})}) {
    const Found result = FindContentIn(captures);
    EXPECT_FALSE(result.found);
    EXPECT_EQ(result.messages, "Error: Not enough images to identify a content box.\n");
  }
}

TEST(BasicBorderDetectionContentBox, EnclosesWhatChanged) {
  const Found result = FindContentIn(CapturesThatChange({60, 50}, {{7, 9, 30, 20}}), 2);
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.rows, cv::Range(9, 29));
  EXPECT_EQ(result.columns, cv::Range(7, 37));
  EXPECT_EQ(result.messages, "");
}

TEST(BasicBorderDetectionContentBox, LeavesTheCapturesAsTheyAre) {
  BasicImageProvider captures = CapturesThatChange({30, 30}, {{5, 5, 9, 9}});
  const cv::Mat before = captures.GetImageAt(1)->clone();
  EXPECT_TRUE(FindContentIn(captures).found);
  EXPECT_TRUE(Testing::SameBits(*captures.GetImageAt(1), before));
}

TEST(BasicBorderDetectionContentBox, FailsWhenTheFirstTwoCapturesAreTheSame) {
  const Found result = FindContentIn(CapturesThatChange({20, 20}, {{}, {5, 5, 9, 9}}));
  EXPECT_FALSE(result.found);
  EXPECT_EQ(result.messages, NoTopOrLeft(1));
}

TEST(BasicBorderDetectionContentBox, TakesLaterCapturesThatAreTheSame) {
  const Found result = FindContentIn(CapturesThatChange({20, 20}, {{5, 6, 9, 8}, {}}));
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.rows, cv::Range(6, 14));
  EXPECT_EQ(result.columns, cv::Range(5, 14));
}

TEST(BasicBorderDetectionContentBox, ComparesOnlyConsecutiveCaptures) {
  // A corner that brightens slowly: too little from capture to capture, enough since the first.
  BasicImageProvider captures = CapturesThatChange({20, 20}, {{5, 6, 9, 8}});
  for (const int grey : {8, 16, 24}) {
    cv::Mat capture = captures.GetLastImage()->clone();
    capture(cv::Rect(0, 0, 4, 4)).setTo(cv::Scalar(grey, grey, grey, 255));
    captures.Add(capture);
  }
  const Found result = FindContentIn(captures, AnyNeighbor, 10);
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.rows, cv::Range(6, 14));
  EXPECT_EQ(result.columns, cv::Range(5, 14));
}

TEST(BasicBorderDetectionContentBox, OverlooksAnIsolatedChange) {
  const std::vector<cv::Rect> areas = {{5, 6, 9, 8}, {1, 1, 1, 1}, {18, 18, 1, 1}};
  const Found result = FindContentIn(CapturesThatChange({20, 20}, areas), AnyNeighbor);
  EXPECT_EQ(result.rows, cv::Range(6, 14));
  EXPECT_EQ(result.columns, cv::Range(5, 14));
}

TEST(BasicBorderDetectionContentBox, OverlooksADifferenceNotAboveTheThreshold) {
  cv::Mat dark = GreyCapture({20, 20}, 100);
  cv::Mat brighter = GreyCapture({20, 20}, 110);
  BasicImageProvider captures;
  captures.Add(dark);
  captures.Add(brighter);
  EXPECT_TRUE(FindContentIn(captures, AnyNeighbor, 9).found);
  EXPECT_EQ(FindContentIn(captures, AnyNeighbor, 10).messages, NoTopOrLeft(1));
}

TEST(BasicBorderDetectionContentBox, NeverSeesADifferenceAboveThresholdsOf255AndMore) {
  const BasicImageProvider captures = CapturesThatChange({20, 20}, {{0, 0, 20, 20}});
  EXPECT_TRUE(FindContentIn(captures, AnyNeighbor, 254).found);
  EXPECT_FALSE(FindContentIn(captures, AnyNeighbor, 255).found);
  EXPECT_FALSE(FindContentIn(captures, AnyNeighbor, 256 + 10).found);
}

TEST(BasicBorderDetectionContentBox, GrowsTheBoxFromPairToPair) {
  const std::vector<cv::Rect> areas = {{0, 100, 20, 301}, {0, 50, 20, 151}};
  const Found result = FindContentIn(CapturesThatChange({20, 500}, areas), 4);
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.rows.start, 50);
  EXPECT_EQ(result.rows.end, 401);
}

TEST(BasicBorderDetectionContentBox, IsNotExtendedByTheRowJustBelowTheBox) {
  const std::vector<cv::Rect> areas = {{5, 5, 10, 10}, {5, 15, 10, 1}};
  EXPECT_EQ(FindContentIn(CapturesThatChange({30, 30}, areas)).rows, cv::Range(5, 15));
}

TEST(BasicBorderDetectionContentBox, IsExtendedByTheRowAfterThatOne) {
  const std::vector<cv::Rect> areas = {{5, 5, 10, 10}, {5, 16, 10, 1}};
  EXPECT_EQ(FindContentIn(CapturesThatChange({30, 30}, areas)).rows, cv::Range(5, 17));
}

TEST(BasicBorderDetectionContentBox, IsNotExtendedByTheColumnJustRightOfTheBox) {
  const std::vector<cv::Rect> areas = {{5, 5, 10, 10}, {15, 5, 1, 10}};
  EXPECT_EQ(FindContentIn(CapturesThatChange({30, 30}, areas)).columns, cv::Range(5, 15));
}

TEST(BasicBorderDetectionContentBox, IsExtendedByTheRowJustAboveAndTheColumnJustLeftOfTheBox) {
  const std::vector<cv::Rect> areas = {{5, 5, 10, 10}, {4, 4, 10, 1}, {4, 4, 1, 10}};
  const Found result = FindContentIn(CapturesThatChange({30, 30}, areas));
  EXPECT_EQ(result.rows.start, 4);
  EXPECT_EQ(result.columns.start, 4);
}

TEST(BasicBorderDetectionContentBox, FailsWhenOnlyTheFirstRowOrColumnChanges) {
  for (const cv::Rect& area : {cv::Rect(0, 0, 20, 1), cv::Rect(0, 0, 1, 20)}) {
    const Found result = FindContentIn(CapturesThatChange({20, 20}, {area}));
    EXPECT_FALSE(result.found);
    EXPECT_EQ(result.messages, "Error: Bad content box created.\n");
  }
}

TEST(BasicBorderDetectionContentBox, FailsForCapturesTooSmallToHaveNeighbours) {
  for (const cv::Size& size : {cv::Size(20, 1), cv::Size(1, 20), cv::Size(1, 1)}) {
    const Found result = FindContentIn(CapturesThatChange(size, {{0, 0, 1, 1}}), 9);
    EXPECT_FALSE(result.found);
    EXPECT_EQ(result.messages,
              "Error: Image too small to remove border.\n"
              "Error: Nearest neighbor detection failed.\n" +
                  NoTopOrLeft(1));
  }
}

TEST(BasicBorderDetectionContentBox, NamesTheBottomRightSearchWhenThatOneFails) {
  // With a box that starts at the first pixel there is nothing for the top-left search to look at.
  BasicImageProvider captures = CapturesThatChange({20, 1}, {{3, 0, 1, 1}});
  OpenBorderDetection detection(AnyDifference, AnyNeighbor);
  cv::Range rows;
  cv::Range columns;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(detection.FindContent(captures, cv::Size(0, 0), rows, columns));
  EXPECT_EQ(errors.Text(),
            "Error: Image too small to remove border.\n"
            "Error: Nearest neighbor detection failed.\n"
            "Error: Failed to find bottom or right content boundary for image with index 1.\n");
}

TEST(BasicBorderDetectionContentBox, FailsWhenNoPixelCanHaveEnoughNeighbours) {
  const BasicImageProvider captures = CapturesThatChange({20, 20}, {{0, 0, 20, 20}});
  EXPECT_TRUE(FindContentIn(captures, 7).found);
  for (const unsigned int neighborThreshold : {8U, 9U, 255U, 256U}) {
    EXPECT_EQ(FindContentIn(captures, neighborThreshold).messages, NoTopOrLeft(1));
  }
}

TEST(BasicBorderDetectionContentBox, NeverTakesCornersWithThreeNeighboursNorEdgesWithFive) {
  const BasicImageProvider corner = CapturesThatChange({20, 20}, {{0, 0, 2, 2}});
  EXPECT_TRUE(FindContentIn(corner, 2).found);
  EXPECT_FALSE(FindContentIn(corner, 3).found);
  const BasicImageProvider all = CapturesThatChange({20, 20}, {{0, 0, 20, 20}});
  EXPECT_EQ(FindContentIn(all, 4).rows, cv::Range(0, 20));
  EXPECT_EQ(FindContentIn(all, 5).rows, cv::Range(1, 19));
  EXPECT_EQ(FindContentIn(all, 5).columns, cv::Range(1, 19));
}

TEST(BasicBorderDetectionContentBox, TellsWhichCaptureCannotBeCompared) {
  for (const cv::Mat& odd :
       {GreyCapture({20, 21}, 0), cv::Mat(), cv::Mat(20, 20, CV_8UC1, cv::Scalar(0))}) {
    BasicImageProvider captures = CapturesThatChange({20, 20}, {{5, 5, 9, 9}});
    cv::Mat last = odd;
    captures.Add(last);
    const Found result = FindContentIn(captures);
    EXPECT_FALSE(result.found);
    EXPECT_EQ(result.messages, NoTopOrLeft(2));
  }
}

TEST(BasicBorderDetectionContentBox, FailsForEmptyCaptures) {
  BasicImageProvider captures;
  cv::Mat empty;
  captures.Add(empty);
  captures.Add(empty);
  EXPECT_EQ(FindContentIn(captures).messages, NoTopOrLeft(1));
}

TEST(BasicBorderDetectionNeighbors, LooksOnlyAtNeighboursInsideTheImage) {
  const cv::Mat changed(3, 3, CV_8UC1, cv::Scalar(200));
  const auto isContent = [&changed](int row, int column, unsigned int neighborThreshold) {
    bool answer = false;
    EXPECT_TRUE(OpenBorderDetection(100, neighborThreshold)
                    .CheckNearestNeighbors(changed, row, column, answer));
    return answer;
  };
  EXPECT_TRUE(isContent(0, 0, 2));
  EXPECT_FALSE(isContent(0, 0, 3));
  EXPECT_TRUE(isContent(2, 1, 4));
  EXPECT_FALSE(isContent(2, 1, 5));
  EXPECT_TRUE(isContent(1, 1, 7));
  EXPECT_FALSE(isContent(1, 1, 8));
}

TEST(BasicBorderDetectionNeighbors, LooksAtTheOtherThreePixelsOfTheSmallestImage) {
  OpenBorderDetection detection(AnyDifference, AnyNeighbor);
  for (const cv::Point& neighbor : {cv::Point(1, 0), cv::Point(0, 1), cv::Point(1, 1)}) {
    cv::Mat difference = cv::Mat::zeros(2, 2, CV_8UC1);
    bool isContent = true;
    EXPECT_TRUE(detection.CheckNearestNeighbors(difference, 0, 0, isContent));
    EXPECT_FALSE(isContent);
    difference.at<uchar>(neighbor) = 1;
    EXPECT_TRUE(detection.CheckNearestNeighbors(difference, 0, 0, isContent));
    EXPECT_TRUE(isContent);
  }
}

TEST(BasicBorderDetectionNeighbors, DoesNotLookAtThePixelItself) {
  cv::Mat difference = cv::Mat::zeros(3, 3, CV_8UC1);
  difference.at<uchar>(1, 1) = 255;
  bool isContent = true;
  EXPECT_TRUE(OpenBorderDetection(AnyDifference, AnyNeighbor)
                  .CheckNearestNeighbors(difference, 1, 1, isContent));
  EXPECT_FALSE(isContent);
}

TEST(BasicBorderDetectionNeighbors, CountsNoNeighbourAtTheThresholdItself) {
  const cv::Mat difference(3, 3, CV_8UC1, cv::Scalar(100));
  bool isContent = true;
  EXPECT_TRUE(
      OpenBorderDetection(100, AnyNeighbor).CheckNearestNeighbors(difference, 1, 1, isContent));
  EXPECT_FALSE(isContent);
}

TEST(BasicBorderDetectionNeighbors, GivesNoAnswerForAnImageTooSmall) {
  OpenBorderDetection detection(AnyDifference, AnyNeighbor);
  for (const cv::Size& size : {cv::Size(5, 1), cv::Size(1, 5)}) {
    bool isContent = true;
    const StreamCapture errors(std::cerr);
    EXPECT_FALSE(detection.CheckNearestNeighbors(cv::Mat::zeros(size, CV_8UC1), 0, 0, isContent));
    EXPECT_TRUE(isContent);
    EXPECT_EQ(errors.Text(), "Error: Image too small to remove border.\n");
  }
}

}  // namespace
}  // namespace ScrollingCapture
