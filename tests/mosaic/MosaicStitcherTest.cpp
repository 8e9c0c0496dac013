#include <memory>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/ScriptedDetector.h>
#include <testkit/StreamCapture.h>
#include <testkit/faults/ThrowingListener.h>
#include <testkit/pages/DrawnScene.h>

#include <VelScrollingCapture/mosaic/MosaicStitcher.h>

namespace ScrollingCapture {
namespace {

using Testing::DifferentPixels;
using Testing::DrawnScene;
using testing::ElementsAre;
using Testing::RecordingListener;
using Testing::ScriptedDetector;

const cv::Size Window(120, 100);

DrawnScene Scene() {
  return {Testing::TextPage({200, 300}, 1), Window, {{40, 30}, {70, 30}, {60, 60}, {130, 20}}};
}

std::vector<Translation> Motions() { return {{-30, 0}, {10, -30}, {-70, 40}}; }

class MosaicStitcherTest : public testing::Test {
 protected:
  MosaicStitcherTest() { Testing::AddAll(captures, Scene().Captures()); }

  BasicImageProvider captures;
  std::shared_ptr<ScriptedDetector> detector = std::make_shared<ScriptedDetector>(Motions());
  MosaicStitcher stitcher = MosaicStitcher(detector);
  Testing::StreamCapture errors{std::cerr};
  cv::Mat result;
};

TEST_F(MosaicStitcherTest, PlacesEachCaptureAgainstTheOneBefore) {
  ASSERT_TRUE(stitcher.Stitch(captures, result, nullptr, 0, 100, true));
  EXPECT_EQ(0, DifferentPixels(Scene().Content(), result));
  EXPECT_EQ(Motions(), stitcher.GetTranslations());
  EXPECT_EQ("", errors.Text());
}

TEST_F(MosaicStitcherTest, GivesTheDetectorNineTenthsOfTheRange) {
  ASSERT_TRUE(stitcher.Stitch(captures, result, nullptr, 10, 60, true));
  EXPECT_THAT(detector->ranges, ElementsAre(std::make_pair(10, 55)));
}

class LostCaptures : public BasicImageProvider {
 public:
  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    if (index == 2) {
      throw std::invalid_argument("The capture is lost.");
    }
    return BasicImageProvider::GetImageAt(index);
  }
};

TEST_F(MosaicStitcherTest, ExceptionsOfTheProviderPassWhateverTheyAre) {
  LostCaptures lost;
  Testing::AddAll(lost, Scene().Captures());
  RecordingListener listener;
  EXPECT_THROW(stitcher.Stitch(lost, result, &listener, 0, 100, true), std::invalid_argument);
  EXPECT_THAT(listener.calls, testing::Not(testing::Contains(testing::HasSubstr("error"))));
}

TEST_F(MosaicStitcherTest, ProgressGrowsToTheEndAndCompletionIsTold) {
  RecordingListener listener;
  ASSERT_TRUE(stitcher.Stitch(captures, result, &listener, 0, 100, true));
  ASSERT_GE(listener.calls.size(), 3U);
  EXPECT_EQ("progress 90", listener.calls.front());
  EXPECT_EQ("progress 100", listener.calls[listener.calls.size() - 2]);
  EXPECT_EQ("complete true", listener.calls.back());
}

TEST_F(MosaicStitcherTest, CompletionIsNotToldUnlessAskedFor) {
  RecordingListener listener;
  ASSERT_TRUE(stitcher.Stitch(captures, result, &listener, 0, 100, false));
  EXPECT_EQ("progress 100", listener.calls.back());
}

TEST_F(MosaicStitcherTest, EveryProgressCallCanCancel) {
  RecordingListener all;
  ASSERT_TRUE(stitcher.Stitch(captures, result, &all, 0, 100, true));
  const cv::Mat before(1, 1, CV_8UC4);
  for (size_t accepted = 0; accepted + 1 < all.calls.size(); ++accepted) {
    RecordingListener listener(accepted);
    cv::Mat kept = before;
    EXPECT_FALSE(stitcher.Stitch(captures, kept, &listener, 0, 100, true));
    EXPECT_EQ(before.data, kept.data);
    ASSERT_EQ(accepted + 3, listener.calls.size());
    EXPECT_EQ("error 4 false", listener.calls[accepted + 1]);
    EXPECT_EQ("complete false", listener.calls[accepted + 2]);
  }
}

TEST_F(MosaicStitcherTest, NoCapturesAreAnError) {
  BasicImageProvider none;
  RecordingListener listener;
  EXPECT_FALSE(stitcher.Stitch(none, result, &listener, 0, 100, true));
  EXPECT_THAT(listener.calls, ElementsAre("error 1 false", "complete false"));
  EXPECT_EQ("Error: No images in provider passed to Stitch().\n", errors.Text());
}

TEST_F(MosaicStitcherTest, SingleCaptureIsCopiedWithoutAskingTheDetector) {
  BasicImageProvider single;
  cv::Mat capture = Testing::NoiseCapture({20, 10}, 1);
  single.Add(capture);
  ASSERT_TRUE(stitcher.Stitch(single, result, nullptr, 0, 100, true));
  EXPECT_TRUE(Testing::SameBits(capture, result));
  EXPECT_NE(capture.data, result.data);
  EXPECT_TRUE(detector->ranges.empty());
}

TEST_F(MosaicStitcherTest, MissingTranslationsAreAFailure) {
  detector->translations.clear();
  RecordingListener listener;
  EXPECT_FALSE(stitcher.Stitch(captures, result, &listener, 0, 100, true));
  EXPECT_THAT(listener.calls, ElementsAre("complete false"));
  EXPECT_EQ("Error: Failed to detect translations.\n", errors.Text());
}

TEST_F(MosaicStitcherTest, CapturesOfDifferentSizesAreAnError) {
  cv::Mat odd = Testing::NoiseCapture({120, 99}, 1);
  captures.Add(odd);
  detector->translations.emplace_back(-5, 0);
  RecordingListener listener;
  EXPECT_FALSE(stitcher.Stitch(captures, result, &listener, 0, 100, true));
  EXPECT_EQ("error 3 false", listener.calls[listener.calls.size() - 2]);
  EXPECT_EQ("complete false", listener.calls.back());
  EXPECT_TRUE(result.empty());
}

TEST_F(MosaicStitcherTest, PictureThatNoMatrixCanHoldIsAnError) {
  detector->translations = {{-2000000000, 0}, {-2000000000, 0}, {0, 0}};
  RecordingListener listener;
  EXPECT_FALSE(stitcher.Stitch(captures, result, &listener, 0, 100, true));
  EXPECT_EQ("error 3 false", listener.calls[listener.calls.size() - 2]);
}

TEST_F(MosaicStitcherTest, ListenersExceptionsPassToTheCaller) {
  for (size_t passing = 0;; ++passing) {
    Testing::ThrowingListener listener(passing);
    cv::Mat kept;
    try {
      stitcher.Stitch(captures, kept, &listener, 0, 100, true);
    } catch (const Testing::ListenerFailure&) {
    }
    if (!listener.HasThrown()) {
      EXPECT_GT(passing, 3U);
      break;
    }
    EXPECT_FALSE(listener.completed);
  }
}

}  // namespace
}  // namespace ScrollingCapture
