#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/Anchors.h>

namespace ScrollingCapture {
namespace {

TEST(Anchors, AreOrderedByHash) {
  const CaptureAnchors found = FindAnchors(Testing::DrawPhoto({300, 200}, 1));
  EXPECT_GT(found.anchors.size(), 1000U);
  EXPECT_TRUE(std::is_sorted(
      found.anchors.begin(), found.anchors.end(),
      [](const Anchor& left, const Anchor& right) { return left.hash < right.hash; }));
  EXPECT_EQ(found.size, cv::Size(300, 200));
  EXPECT_EQ(found.type, CV_8UC4);
}

TEST(Anchors, AreDenserInSmallCaptures) {
  EXPECT_LT(SelectingZeroBits({120, 80}, 4), SelectingZeroBits({400, 300}, 4));
  EXPECT_LT(SelectingZeroBits({400, 300}, 4), SelectingZeroBits({1920, 1080}, 4));
  EXPECT_LT(SelectingZeroBits({1920, 1080}, 4), SelectingZeroBits({1920, 1080}, 1));
}

TEST(Anchors, HaveTheirPlaceInTheCapture) {
  const CaptureAnchors capture{{100, 50}, CV_8UC4, {}, true};
  EXPECT_EQ(capture.PlaceOf({0, 317}), cv::Point(17, 3));
}

TEST(Anchors, AreLookedForInUsableCapturesOnly) {
  EXPECT_NO_THROW(RequireUsableCapture(cv::Mat(1, 1, CV_8UC1)));
  EXPECT_THROW(RequireUsableCapture(cv::Mat(0, 4, CV_8UC4)), std::invalid_argument);
  EXPECT_THROW(RequireUsableCapture(cv::Mat(4, 4, CV_8SC4)), std::invalid_argument);
  const int sizes[] = {3, 3, 3};
  EXPECT_THROW(RequireUsableCapture(cv::Mat(3, sizes, CV_8UC1)), std::invalid_argument);
}

}  // namespace
}  // namespace ScrollingCapture
