#include <functional>
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/pages/ScrolledWindow.h>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::CaptureCount;
using Testing::CaptureSize;
using testing::Contains;
using Testing::ContentBox;
using testing::Each;
using Testing::RecordingListener;
using Testing::SameBits;
using Testing::ScrolledWindow;
using testing::SizeIs;
using Testing::StreamCapture;
using Testing::TemporaryFolder;

constexpr unsigned int DifferenceThreshold = 10;
constexpr unsigned int NeighborThreshold = 2;
std::shared_ptr<IStitcher> MakeStitcher(ScrollOrientation orientation) {
  return StitcherFactory::CreateStitcherWithBasicBorderDetection(
      orientation, false, 2, DifferenceThreshold, NeighborThreshold);
}

struct Storage {
  const char* name;
  std::function<std::shared_ptr<IImageProvider>(const std::string& folder)> make;
};

void PrintTo(const Storage& storage, std::ostream* stream) { *stream << storage.name; }

class BasicBorderDetectionStitch : public testing::TestWithParam<Storage> {
 protected:
  void Fill(const std::vector<cv::Mat>& captures) {
    for (cv::Mat capture : captures) {
      provider->Add(capture);
    }
  }

  /// Stitches the window with a new stitcher, and compares the result with the page as drawn.
  void ExpectBorderedPage(const ScrolledWindow& window, ScrollOrientation orientation) {
    Fill(window.captures);
    EXPECT_TRUE(MakeStitcher(orientation)->Stitch(*provider, result, nullptr, 0, 100, true));
    EXPECT_TRUE(SameBits(result, window.BorderedPage()));
  }

  const TemporaryFolder folder;
  std::shared_ptr<IImageProvider> provider = GetParam().make(folder.Prefix());
  cv::Mat result;
};

TEST_P(BasicBorderDetectionStitch, LaysTheBordersAroundAPageThatScrollsDown) {
  ExpectBorderedPage({ContentBox, {0, 40}}, ScrollOrientation::Vertical);
}

TEST_P(BasicBorderDetectionStitch, LaysTheBordersAroundAPageThatScrollsSideways) {
  ExpectBorderedPage({ContentBox, {30, 0}}, ScrollOrientation::Horizontal);
}

TEST_P(BasicBorderDetectionStitch, LaysToolbarAndStatusBarAlone) {
  ExpectBorderedPage({{0, 20, CaptureSize.width, 120}, {0, 40}}, ScrollOrientation::Both);
}

TEST_P(BasicBorderDetectionStitch, ReplacesTheCapturesByTheirContent) {
  const ScrolledWindow window(ContentBox, {0, 40});
  Fill(window.captures);
  EXPECT_TRUE(MakeStitcher(Vertical)->Stitch(*provider, result, nullptr, 0, 100, true));
  ASSERT_EQ(provider->Count(), CaptureCount);
  EXPECT_TRUE(SameBits(*provider->GetImageAt(0), window.captures[0](ContentBox)));
  for (size_t i = 0; i < CaptureCount; ++i) {
    EXPECT_EQ(provider->GetImageAt(i)->size(), ContentBox.size());
  }
}

TEST_P(BasicBorderDetectionStitch, LeavesTheCallersMatricesAlone) {
  const ScrolledWindow window(ContentBox, {0, 40});
  const ScrolledWindow same(ContentBox, {0, 40});
  Fill(window.captures);
  EXPECT_TRUE(MakeStitcher(Vertical)->Stitch(*provider, result, nullptr, 0, 100, true));
  for (size_t i = 0; i < CaptureCount; ++i) {
    EXPECT_TRUE(SameBits(window.captures[i], same.captures[i]));
  }
}

TEST_P(BasicBorderDetectionStitch, KeepsTheCroppedCapturesWhenItIsCancelled) {
  Fill(ScrolledWindow(ContentBox, {0, 40}).captures);
  RecordingListener refusing(0);
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(MakeStitcher(Vertical)->Stitch(*provider, result, &refusing, 0, 100, true));
  EXPECT_THAT(refusing.calls, Contains("error 4 false").Times(1));
  EXPECT_EQ(refusing.calls.back(), "complete false");
  EXPECT_THAT(refusing.calls, Contains("complete false").Times(1));
  EXPECT_EQ(provider->GetImageAt(2)->size(), ContentBox.size());
  EXPECT_TRUE(result.empty());
}

TEST_P(BasicBorderDetectionStitch, StitchesCapturesWithoutBordersAsTheyAre) {
  const ScrolledWindow window({{0, 0}, CaptureSize}, {0, 40});
  Fill(window.captures);
  RecordingListener listener;
  const StreamCapture output(std::cout);
  const StreamCapture errors(std::cerr);
  EXPECT_TRUE(MakeStitcher(Vertical)->Stitch(*provider, result, &listener, 0, 100, true));
  EXPECT_TRUE(SameBits(result, window.page));
  EXPECT_EQ(listener.calls.back(), "complete true");
  EXPECT_THAT(listener.calls, Contains("complete true").Times(1));
  EXPECT_EQ(output.Text(), "No borders were extracted.\n");
  EXPECT_EQ(errors.Text(), "Error: No border has been extracted.\n");
}

TEST_P(BasicBorderDetectionStitch, StitchesCapturesThatDoNotMoveAsTheyAre) {
  const ScrolledWindow window(ContentBox, {0, 40});
  Fill({window.captures[0], window.captures[0].clone()});
  const StreamCapture output(std::cout);
  const StreamCapture errors(std::cerr);
  EXPECT_TRUE(MakeStitcher(Vertical)->Stitch(*provider, result, nullptr, 0, 100, true));
  EXPECT_TRUE(SameBits(result, window.captures[0]));
  EXPECT_EQ(output.Text(), "No content box was found.\n");
}

TEST_P(BasicBorderDetectionStitch, GivesTheSingleCapture) {
  const ScrolledWindow window(ContentBox, {0, 40});
  Fill({window.captures[0]});
  const StreamCapture output(std::cout);
  const StreamCapture errors(std::cerr);
  EXPECT_TRUE(MakeStitcher(Vertical)->Stitch(*provider, result, nullptr, 0, 100, true));
  EXPECT_TRUE(SameBits(result, window.captures[0]));
}

TEST_P(BasicBorderDetectionStitch, FailsWithoutCaptures) {
  RecordingListener listener;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(MakeStitcher(Vertical)->Stitch(*provider, result, &listener, 0, 100, true));
  EXPECT_EQ(errors.Text(),
            "Error: Empty image list when extracting common borders.\n"
            "Error: No images in provider passed to Stitch().\n"
            "Error: Failed to stitch images.\n");
  EXPECT_THAT(listener.calls, testing::ElementsAre("error 1 false", "complete false"));
}

TEST_P(BasicBorderDetectionStitch, GivesTheTranslationsOfTheContent) {
  Fill(ScrolledWindow(ContentBox, {0, 40}).captures);
  const auto stitcher = MakeStitcher(Vertical);
  EXPECT_TRUE(stitcher->Stitch(*provider, result, nullptr, 0, 100, true));
  EXPECT_THAT(stitcher->GetTranslations(), SizeIs(CaptureCount - 1));
  EXPECT_THAT(stitcher->GetTranslations(), Each(Translation(-40, 0)));
}

std::string NameOfStorage(const testing::TestParamInfo<Storage>& storage) {
  return storage.param.name;
}

std::shared_ptr<IImageProvider> KeepInMemory(const std::string& /*folder*/) {
  return std::make_shared<BasicImageProvider>();
}

/// Keeps two captures at most in memory.
std::shared_ptr<IImageProvider> SpillToFiles(const std::string& folder) {
  return std::make_shared<MemoryEfficientImageProvider>(folder, 1);
}

INSTANTIATE_TEST_SUITE_P(Storages, BasicBorderDetectionStitch,
                         testing::Values(Storage{"InMemory", KeepInMemory},
                                         Storage{"SpilledToFiles", SpillToFiles}),
                         NameOfStorage);

TEST(BasicBorderDetectionStitcher, LaysABorderOfAnEarlierSequenceAround) {
  const ScrolledWindow withToolbar({{0, 20}, CaptureSize - cv::Size(0, 20)}, {0, 40});
  const ScrolledWindow withPanel({{12, 0}, CaptureSize - cv::Size(12, 0)}, {0, 40});
  const auto stitcher = MakeStitcher(Vertical);
  cv::Mat result;
  for (const ScrolledWindow* window : {&withToolbar, &withPanel}) {
    BasicImageProvider captures;
    for (cv::Mat capture : window->captures) {
      captures.Add(capture);
    }
    EXPECT_TRUE(stitcher->Stitch(captures, result, nullptr, 0, 100, true));
  }
  const cv::Mat panelAndPage = withPanel.BorderedPage();
  ASSERT_EQ(result.size(), panelAndPage.size() + cv::Size(0, 20));
  EXPECT_TRUE(SameBits(result.rowRange(0, 20), withToolbar.frame.rowRange(0, 20)));
  EXPECT_TRUE(SameBits(result.rowRange(20, result.rows), panelAndPage));
}

TEST(BasicBorderDetectionFactory, GivesTheOnlyReferenceToABorderDetectingStitcher) {
  const auto stitcher = MakeStitcher(Both);
  EXPECT_EQ(stitcher.use_count(), 1);
  EXPECT_NE(dynamic_cast<BasicBorderDetection*>(stitcher.get()), nullptr);
}

TEST(BasicBorderDetectionFactory, PassesTheThresholdsOn) {
  const auto finds = [](unsigned int differenceThreshold, unsigned int neighborThreshold) {
    BasicImageProvider captures;
    for (cv::Mat capture : ScrolledWindow(ContentBox, {0, 40}).captures) {
      captures.Add(capture);
    }
    cv::Mat result;
    const StreamCapture output(std::cout);
    const StreamCapture errors(std::cerr);
    EXPECT_TRUE(StitcherFactory::CreateStitcherWithBasicBorderDetection(
                    Vertical, false, 1, differenceThreshold, neighborThreshold)
                    ->Stitch(captures, result, nullptr, 0, 100, true));
    return output.Text().empty();
  };
  EXPECT_TRUE(finds(10, 2));
  EXPECT_FALSE(finds(255, 2));
  EXPECT_FALSE(finds(10, 8));
}

TEST(BasicBorderDetectionFactory, PassesTheOrientationOnToTheWrappedStitcher) {
  BasicImageProvider captures;
  for (cv::Mat capture : ScrolledWindow(ContentBox, {0, 40}).captures) {
    captures.Add(capture);
  }
  const auto stitcher = MakeStitcher(static_cast<ScrollOrientation>(3));
  cv::Mat result;
  EXPECT_TRUE(stitcher->Stitch(captures, result, nullptr, 0, 100, true));
  EXPECT_THAT(stitcher->GetTranslations(), Each(Translation(0, 0)));
}

}  // namespace
}  // namespace ScrollingCapture
