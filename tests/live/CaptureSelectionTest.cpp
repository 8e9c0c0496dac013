#include <cstddef>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <live/CaptureSelection.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Live {
namespace {

using Testing::PlainCapture;
using Testing::SameBits;
using Testing::TextPage;

const cv::Size Window(400, 300);

class Selection : public ::testing::Test {
 protected:
  cv::Mat At(int row) const { return page({{0, row}, Window}).clone(); }

  /// Scrolls without coming to rest.
  void Scroll(int from, int to, int step) {
    for (int row = from; step > 0 ? row <= to : row >= to; row += step) {
      selection.Take(At(row));
    }
  }

  std::vector<cv::Mat> Parts() {
    selection.Finish();
    CaptureSession session{SessionSettings()};
    for (const cv::Mat& capture : kept) {
      session.Add(capture);
    }
    std::vector<cv::Mat> parts;
    const auto result = session.Stitch(nullptr);
    for (const auto& part : result->parts) {
      parts.push_back(part->Area({{}, part->Size()}).clone());
    }
    return parts;
  }

  void ExpectPage(int firstRow, int lastRow) {
    const std::vector<cv::Mat> parts = Parts();
    ASSERT_EQ(parts.size(), 1);
    EXPECT_TRUE(SameBits(parts[0], page.rowRange(firstRow, lastRow).clone()));
  }

  const cv::Mat page = TextPage({400, 3000});
  std::vector<cv::Mat> kept;
  CaptureSelection selection{MatchingSettings(),
                             [this](const cv::Mat& capture) { kept.push_back(capture); }};
};

TEST_F(Selection, BridgesSlowScrollingByFewCaptures) {
  Scroll(0, 1500, 10);
  ExpectPage(0, 1800);
  EXPECT_LE(kept.size(), 13U) << "at half a window each";
}

TEST_F(Selection, BridgesStepsOfMoreThanHalfAWindow) {
  Scroll(0, 1600, 200);
  ExpectPage(0, 1900);
}

TEST_F(Selection, KeepsNothingMoreOfWhatHasBeenSeen) {
  Scroll(0, 1200, 20);
  const std::size_t before = kept.size();
  for (int round = 0; round < 3; ++round) {
    Scroll(1200, 0, -20);
    Scroll(0, 1200, 20);
  }
  EXPECT_LE(kept.size(), before + 1);
  ExpectPage(0, 1500);
}

TEST_F(Selection, KeepsWhatComesToRest) {
  Scroll(0, 50, 10);
  selection.Settle();
  EXPECT_TRUE(SameBits(kept.back(), At(50)));
  EXPECT_EQ(selection.LastStep(), Translation(-50, 0));
  EXPECT_EQ(selection.WhereNow(), (Place{50, 0}));
}

TEST_F(Selection, KeepsTheLastLookOfWhatChangesInItsPlace) {
  const auto withLamp = [this](int shade) {
    cv::Mat window = At(0);
    window(cv::Rect(50, 50, 60, 40)) = cv::Scalar(shade, 0, 0, 255);
    return window;
  };
  for (int shade = 0; shade < 200; shade += 10) {
    selection.Take(withLamp(shade));
    selection.Settle();
  }
  EXPECT_EQ(kept.size(), 1U);
  Scroll(20, 20, 20);
  ASSERT_GE(kept.size(), 2U);
  EXPECT_TRUE(SameBits(kept[1], withLamp(190)));
}

TEST_F(Selection, PassesOverAFrameThatFlashes) {
  Scroll(0, 100, 20);
  selection.Take(PlainCapture(Window, 255));
  Scroll(120, 300, 20);
  ExpectPage(0, 600);
  EXPECT_EQ(selection.TimesLost(), 0U);
}

TEST_F(Selection, KeepsTheWayBackFromScrollingTooFast) {
  Scroll(0, 100, 20);
  selection.Take(At(1000));
  selection.Settle();
  EXPECT_EQ(selection.TimesLost(), 1U);
  Scroll(960, 80, -40);
  ExpectPage(0, 1300);
}

TEST_F(Selection, FollowsContentThatMovesAlongBothAxes) {
  const cv::Mat map = Testing::NoiseCapture({1000, 800}, 3);
  for (int i = 0; i < 12; ++i) {
    selection.Take(map({{30 * i, 20 * i}, Window}).clone());
  }
  EXPECT_EQ(selection.WhereNow(), (Place{220, 330}));
  EXPECT_EQ(selection.TimesLost(), 0U);
  EXPECT_LE(kept.size(), 4U);
}

TEST_F(Selection, KeepsPartsThatNothingJoins) {
  Scroll(0, 100, 20);
  Scroll(1000, 1200, 20);
  const std::vector<cv::Mat> parts = Parts();
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_TRUE(SameBits(parts[0], page.rowRange(0, 400).clone()));
  EXPECT_TRUE(SameBits(parts[1], page.rowRange(1000, 1500).clone()));
}

TEST_F(Selection, KeepsTheLastFrameWhenItEndsInMotion) {
  Scroll(0, 70, 10);
  ExpectPage(0, 370);
}

}  // namespace
}  // namespace ScrollingCapture::Live
