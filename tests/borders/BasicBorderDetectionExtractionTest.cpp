#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/MessageCapture.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/StreamCapture.h>

namespace ScrollingCapture {
namespace {

using Testing::AddWithChange;
using Testing::NoiseCapture;
using Testing::OpenBorderDetection;
using Testing::SameBits;
using Testing::StreamCapture;

const cv::Size CaptureSize(30, 40);

/// Captures of noise that differ from each other inside the box only, in every pixel of it.
BasicImageProvider CapturesWithBox(const cv::Rect& box, size_t count = 3) {
  BasicImageProvider captures;
  cv::Mat first = NoiseCapture(CaptureSize, 5);
  for (cv::Vec4b& pixel : cv::Mat_<cv::Vec4b>(first)) {
    // Not around the middle grey, so that a pixel and its opposite differ.
    for (int channel = 0; channel < 3; ++channel) {
      pixel[channel] %= 64;
    }
  }
  captures.Add(first);
  while (captures.Count() < count) {
    AddWithChange(captures, box);
  }
  return captures;
}

std::vector<cv::Mat> CopiesOf(BasicImageProvider& captures) {
  std::vector<cv::Mat> copies;
  for (size_t i = 0; i < captures.Count(); ++i) {
    copies.push_back(captures.GetImageAt(i)->clone());
  }
  return copies;
}

struct Extraction {
  bool found;
  std::string output;
  std::string errors;
};

Extraction Extract(OpenBorderDetection& detection, BasicImageProvider& captures) {
  const StreamCapture output(std::cout);
  const StreamCapture errors(std::cerr);
  const bool found = detection.ExtractBorders(captures);
  return {found, output.Text(), errors.Text()};
}

TEST(BasicBorderDetectionExtraction, RefusesAProviderWithoutCaptures) {
  BasicImageProvider captures;
  OpenBorderDetection detection(10, 2);
  const Extraction extraction = Extract(detection, captures);
  EXPECT_FALSE(extraction.found);
  EXPECT_EQ(extraction.errors, "Error: Empty image list when extracting common borders.\n");
  EXPECT_EQ(extraction.output, "");
}

TEST(BasicBorderDetectionExtraction, HandsErrorsAndInformationToAHostThatTakesThem) {
  const Testing::MessageCapture messages;
  BasicImageProvider captures = CapturesWithBox(cv::Rect());
  OpenBorderDetection detection(10, 2);
  const Extraction extraction = Extract(detection, captures);
  EXPECT_EQ(extraction.output + extraction.errors, "");
  using testing::Pair;
  constexpr auto NothingFound =
      "Error: Failed to find top or left content boundary for image with index 1.";
  EXPECT_THAT(messages.Messages(),
              testing::ElementsAre(Pair(MessageKind::Error, NothingFound),
                                   Pair(MessageKind::Information, "No content box was found.")));
}

TEST(BasicBorderDetectionExtraction, SaysOnTheStandardOutputThatThereIsNoContentBox) {
  BasicImageProvider captures = CapturesWithBox(cv::Rect());
  const std::vector<cv::Mat> before = CopiesOf(captures);
  OpenBorderDetection detection(10, 2);
  const Extraction extraction = Extract(detection, captures);
  EXPECT_FALSE(extraction.found);
  EXPECT_EQ(extraction.output, "No content box was found.\n");
  EXPECT_EQ(extraction.errors,
            "Error: Failed to find top or left content boundary for image with index 1.\n");
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_TRUE(SameBits(*captures.GetImageAt(i), before[i]));
  }
  EXPECT_TRUE(detection.topBorder->empty());
}

TEST(BasicBorderDetectionExtraction, SaysOnTheStandardOutputThatAFullBoxLeavesNoBorder) {
  BasicImageProvider captures = CapturesWithBox({{0, 0}, CaptureSize});
  const std::vector<cv::Mat> before = CopiesOf(captures);
  OpenBorderDetection detection(10, 2);
  const Extraction extraction = Extract(detection, captures);
  EXPECT_FALSE(extraction.found);
  EXPECT_EQ(extraction.output, "No borders were extracted.\n");
  EXPECT_EQ(extraction.errors, "Error: No border has been extracted.\n");
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_TRUE(SameBits(*captures.GetImageAt(i), before[i]));
  }
}

TEST(BasicBorderDetectionExtraction, KeepsATopBorderAlone) {
  BasicImageProvider captures = CapturesWithBox({0, 7, 30, 33});
  const std::vector<cv::Mat> before = CopiesOf(captures);
  OpenBorderDetection detection(10, 2);
  const Extraction extraction = Extract(detection, captures);
  EXPECT_TRUE(extraction.found);
  EXPECT_EQ(extraction.output + extraction.errors, "");
  EXPECT_TRUE(SameBits(*detection.topBorder, before[0].rowRange(0, 7)));
  EXPECT_TRUE(detection.bottomBorder->empty());
  EXPECT_TRUE(detection.leftBorder->empty());
  EXPECT_TRUE(detection.rightBorder->empty());
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_TRUE(SameBits(*captures.GetImageAt(i), before[i].rowRange(7, 40)));
  }
}

TEST(BasicBorderDetectionExtraction, GivesTheCornersToTheTopAndBottomBorders) {
  const cv::Rect box(4, 6, 20, 25);
  BasicImageProvider captures = CapturesWithBox(box);
  const std::vector<cv::Mat> before = CopiesOf(captures);
  OpenBorderDetection detection(10, 2);
  EXPECT_TRUE(Extract(detection, captures).found);
  EXPECT_TRUE(SameBits(*detection.topBorder, before[0](cv::Rect(0, 0, 30, 6))));
  EXPECT_TRUE(SameBits(*detection.bottomBorder, before[0](cv::Rect(0, 31, 30, 9))));
  EXPECT_TRUE(SameBits(*detection.leftBorder, before[0](cv::Rect(0, 6, 4, 25))));
  EXPECT_TRUE(SameBits(*detection.rightBorder, before[0](cv::Rect(24, 6, 6, 25))));
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_TRUE(SameBits(*captures.GetImageAt(i), before[i](box)));
  }
}

TEST(BasicBorderDetectionExtraction, TakesCopiesOfTheFirstCapture) {
  BasicImageProvider captures = CapturesWithBox({4, 6, 20, 25});
  cv::Mat first = *captures.GetImageAt(0);
  OpenBorderDetection detection(10, 2);
  EXPECT_TRUE(Extract(detection, captures).found);
  const cv::Mat top = detection.topBorder->clone();
  first.setTo(cv::Scalar::all(1));
  EXPECT_TRUE(SameBits(*detection.topBorder, top));
}

TEST(BasicBorderDetectionExtraction, KeepsABorderThatTheNextSequenceDoesNotHave) {
  OpenBorderDetection detection(10, 2);
  BasicImageProvider withTop = CapturesWithBox({0, 7, 30, 33});
  EXPECT_TRUE(Extract(detection, withTop).found);
  const cv::Mat top = detection.topBorder->clone();

  BasicImageProvider withLeft = CapturesWithBox({3, 0, 27, 40});
  EXPECT_TRUE(Extract(detection, withLeft).found);
  EXPECT_TRUE(SameBits(*detection.topBorder, top));
  EXPECT_EQ(detection.leftBorder->size(), cv::Size(3, 40));

  BasicImageProvider withoutBorder = CapturesWithBox({{0, 0}, CaptureSize});
  EXPECT_TRUE(Extract(detection, withoutBorder).found);
  EXPECT_TRUE(SameBits(*detection.topBorder, top));
}

TEST(BasicBorderDetectionExtraction, ReplacesABorderThatTheNextSequenceHasToo) {
  OpenBorderDetection detection(10, 2);
  BasicImageProvider first = CapturesWithBox({0, 7, 30, 33});
  BasicImageProvider second = CapturesWithBox({0, 12, 30, 28});
  EXPECT_TRUE(Extract(detection, first).found);
  EXPECT_TRUE(Extract(detection, second).found);
  EXPECT_EQ(detection.topBorder->rows, 12);
}

/// A border that has no pixels because the image or the box has none.
struct EmptyBorder {
  const char* name;
  cv::Size image;
  cv::Range rows;
  cv::Range columns;
};

void PrintTo(const EmptyBorder& border, std::ostream* stream) { *stream << border.name; }

class BasicBorderDetectionCopies : public testing::TestWithParam<EmptyBorder> {};

TEST_P(BasicBorderDetectionCopies, FailsWithTheNameOfTheBorder) {
  const EmptyBorder& border = GetParam();
  const cv::Mat image(border.image, CV_8UC4);
  OpenBorderDetection detection(10, 2);
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(detection.CopyBorders(image, border.rows, border.columns));
  EXPECT_EQ(errors.Text(), std::string("Error: Failed to extract ") + border.name + " border.\n");
}

std::string NameOfBorder(const testing::TestParamInfo<EmptyBorder>& border) {
  return border.param.name;
}

INSTANTIATE_TEST_SUITE_P(Borders, BasicBorderDetectionCopies,
                         testing::Values(EmptyBorder{"top", {0, 10}, {3, 10}, {0, 0}},
                                         EmptyBorder{"bottom", {0, 10}, {0, 8}, {0, 0}},
                                         EmptyBorder{"left", {10, 0}, {0, 0}, {4, 10}},
                                         EmptyBorder{"right", {10, 0}, {0, 0}, {0, 6}}),
                         NameOfBorder);

}  // namespace
}  // namespace ScrollingCapture
