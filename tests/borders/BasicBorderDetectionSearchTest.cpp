#include <iostream>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/StreamCapture.h>
#include <testkit/references/ReferenceContentBox.h>

namespace ScrollingCapture {
namespace {

using Testing::OpenBorderDetection;
using Testing::ReferenceContentBox;
using Testing::StreamCapture;

constexpr int PatternsOfEachSize = 250;

template <typename Value>
Value OneOf(cv::RNG& random, const std::vector<Value>& values) {
  return values[static_cast<size_t>(random.uniform(0, static_cast<int>(values.size())))];
}

/// Blank, with scattered pixels and blocks of all densities and differences.
cv::Mat RandomDifference(const cv::Size& size, cv::RNG& random) {
  cv::Mat difference = cv::Mat::zeros(size, CV_8UC1);
  const int scattered = OneOf<int>(random, {0, 0, 1, 3, size.area() / 20, size.area()});
  for (int i = 0; i < scattered; ++i) {
    difference.at<uchar>(random.uniform(0, size.height), random.uniform(0, size.width)) =
        static_cast<uchar>(random.uniform(0, 256));
  }
  for (int blocks = random.uniform(0, 3); blocks > 0; --blocks) {
    const cv::Point corner(random.uniform(0, size.width), random.uniform(0, size.height));
    const cv::Size extent(random.uniform(1, size.width + 1), random.uniform(1, size.height + 1));
    cv::Mat block = difference(cv::Rect(corner, extent) & cv::Rect({}, size));
    random.fill(block, cv::RNG::UNIFORM, random.uniform(0, 256), 256);
  }
  return difference;
}

/// Mostly inside out or within the image, as the ranges of a search are; sometimes anything.
cv::Range RandomRange(int length, cv::RNG& random) {
  if (random.uniform(0, 4) == 0) {
    return {length, 0};
  }
  const std::vector<int> odd = {
      std::numeric_limits<int>::min(), -1, 0, length - 1, length, length + 1,
      std::numeric_limits<int>::max()};
  const auto bound = [&] {
    return random.uniform(0, 3) == 0 ? OneOf(random, odd) : random.uniform(0, length + 1);
  };
  const int start = bound();
  return {start, bound()};
}

struct Outcome {
  bool found;
  cv::Range rows;
  cv::Range columns;
  std::string messages;
};

bool operator==(const Outcome& first, const Outcome& second) {
  return first.found == second.found && first.rows == second.rows &&
         first.columns == second.columns && first.messages == second.messages;
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
  return stream << outcome.found << " rows " << outcome.rows.start << " to " << outcome.rows.end
                << " columns " << outcome.columns.start << " to " << outcome.columns.end << " "
                << outcome.messages;
}

template <typename Search>
Outcome OutcomeOf(Search search, cv::Range rows, cv::Range columns) {
  const StreamCapture errors(std::cerr);
  const bool found = search(rows, columns);
  return {found, rows, columns, errors.Text()};
}

class BasicBorderDetectionSearchInSize : public testing::TestWithParam<cv::Size> {};

TEST_P(BasicBorderDetectionSearchInSize, FindsWhatThePixelByPixelSearchFinds) {
  const unsigned int noLimit = std::numeric_limits<unsigned int>::max();
  cv::RNG random(static_cast<std::uint64_t>(GetParam().width * 1000 + GetParam().height));
  for (int pattern = 0; pattern < PatternsOfEachSize; ++pattern) {
    cv::Mat difference = RandomDifference(GetParam(), random);
    const auto differenceThreshold =
        OneOf<unsigned int>(random, {0, 1, 10, 127, 128, 200, 254, 255, 256, noLimit});
    const auto neighborThreshold =
        OneOf<unsigned int>(random, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, noLimit});
    const cv::Range rows = RandomRange(difference.rows, random);
    const cv::Range columns = RandomRange(difference.cols, random);
    const ReferenceContentBox reference(differenceThreshold, neighborThreshold);
    OpenBorderDetection detection(differenceThreshold, neighborThreshold);
    SCOPED_TRACE(testing::Message() << "pattern " << pattern << ", thresholds "
                                    << differenceThreshold << " and " << neighborThreshold);

    EXPECT_EQ(OutcomeOf(
                  [&](cv::Range& r, cv::Range& c) {
                    return detection.FindTopAndLeftContentBoundary(difference, r, c);
                  },
                  rows, columns),
              OutcomeOf(
                  [&](cv::Range& r, cv::Range& c) {
                    return reference.FindTopAndLeftContentBoundary(difference, r, c);
                  },
                  rows, columns));
    EXPECT_EQ(OutcomeOf(
                  [&](cv::Range& r, cv::Range& c) {
                    return detection.FindBottomAndRightContentBoundary(difference, r, c);
                  },
                  rows, columns),
              OutcomeOf(
                  [&](cv::Range& r, cv::Range& c) {
                    return reference.FindBottomAndRightContentBoundary(difference, r, c);
                  },
                  rows, columns));
  }
}

TEST_P(BasicBorderDetectionSearchInSize, CountsTheNeighboursThatThePixelByPixelSearchCounts) {
  cv::RNG random(7);
  const StreamCapture errors(std::cerr);
  for (int pattern = 0; pattern < PatternsOfEachSize; ++pattern) {
    const cv::Mat difference = RandomDifference(GetParam(), random);
    const int row = random.uniform(0, difference.rows);
    const int column = random.uniform(0, difference.cols);
    const auto neighborThreshold = static_cast<unsigned int>(random.uniform(0, 10));
    bool expected = false;
    bool isContent = false;
    const bool checked = ReferenceContentBox(100, neighborThreshold)
                             .CheckNearestNeighbors(difference, row, column, expected);
    EXPECT_EQ(OpenBorderDetection(100, neighborThreshold)
                  .CheckNearestNeighbors(difference, row, column, isContent),
              checked);
    EXPECT_EQ(isContent, expected);
  }
}

std::string NameOfSize(const testing::TestParamInfo<cv::Size>& info) {
  return std::to_string(info.param.width) + "By" + std::to_string(info.param.height);
}

INSTANTIATE_TEST_SUITE_P(Sizes, BasicBorderDetectionSearchInSize,
                         testing::Values(cv::Size(1, 1), cv::Size(40, 1), cv::Size(1, 40),
                                         cv::Size(2, 2), cv::Size(3, 7), cv::Size(31, 17),
                                         cv::Size(255, 6), cv::Size(256, 5), cv::Size(257, 4),
                                         cv::Size(600, 9), cv::Size(6, 300)),
                         NameOfSize);

TEST(BasicBorderDetectionSearch, ReadsAViewOfALargerImage) {
  const cv::Mat whole(40, 50, CV_8UC1, cv::Scalar(255));
  cv::Mat view = whole.clone()(cv::Rect(10, 10, 20, 20));
  view.setTo(0);
  view(cv::Rect(5, 6, 4, 3)).setTo(255);
  OpenBorderDetection detection(0, 2);
  cv::Range rows(20, 0);
  cv::Range columns(20, 0);
  EXPECT_TRUE(detection.FindTopAndLeftContentBoundary(view, rows, columns));
  EXPECT_TRUE(detection.FindBottomAndRightContentBoundary(view, rows, columns));
  EXPECT_EQ(rows, cv::Range(6, 9));
  EXPECT_EQ(columns, cv::Range(5, 9));
}

TEST(BasicBorderDetectionSearch, FindsNothingInAnEmptyImage) {
  cv::Mat empty;
  cv::Range rows(0, 0);
  cv::Range columns(0, 0);
  OpenBorderDetection detection(0, 0);
  EXPECT_FALSE(detection.FindTopAndLeftContentBoundary(empty, rows, columns));
  EXPECT_FALSE(detection.FindBottomAndRightContentBoundary(empty, rows, columns));
}

}  // namespace
}  // namespace ScrollingCapture
