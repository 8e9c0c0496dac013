#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/CorrelationCandidates.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

std::vector<cv::Point> Candidates(const cv::Point& to, ScrollOrientation orientation) {
  cv::Mat page;
  cv::cvtColor(DrawArticle({1100, 1200}, 1), page, cv::COLOR_RGBA2GRAY);
  const cv::Size size(800, 500);
  return CorrelationCandidates(Window(page, size, {50, 100}), Window(page, size, to), orientation);
}

class CorrelationCandidatesPlaces : public testing::TestWithParam<cv::Point> {};

TEST_P(CorrelationCandidatesPlaces, HoldTheMotion) {
  EXPECT_THAT(Candidates(GetParam(), Both), testing::Contains(cv::Point(50, 100) - GetParam()));
}

INSTANTIATE_TEST_SUITE_P(All, CorrelationCandidatesPlaces,
                         testing::Values(cv::Point(50, 100), cv::Point(50, 233), cv::Point(50, 451),
                                         cv::Point(50, 3), cv::Point(177, 100),
                                         cv::Point(121, 177)));

TEST(CorrelationCandidates, KeepToTheAxisThatWasAskedFor) {
  for (const cv::Point& candidate : Candidates({50, 233}, Vertical)) {
    EXPECT_EQ(candidate.x, 0);
  }
  EXPECT_THAT(Candidates({50, 233}, Vertical), testing::Contains(cv::Point(0, -133)));
  for (const cv::Point& candidate : Candidates({50, 233}, Horizontal)) {
    EXPECT_EQ(candidate.y, 0);
  }
}

TEST(CorrelationCandidates, AreNoneForBlankCaptures) {
  const cv::Mat blank(100, 100, CV_8UC1, cv::Scalar(9));
  EXPECT_TRUE(CorrelationCandidates(blank, blank, Both).empty());
}

TEST(CorrelationCandidates, TakeASinglePixel) {
  const cv::Mat pixel(1, 1, CV_8UC1, cv::Scalar(9));
  EXPECT_TRUE(CorrelationCandidates(pixel, pixel, Both).empty());
}

}  // namespace
}  // namespace ScrollingCapture
