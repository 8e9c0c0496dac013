#include <memory>
#include <mutex>
#include <stdexcept>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/pages/DrawnScene.h>

namespace ScrollingCapture {
namespace {

using Testing::DifferentPixels;
using Testing::DrawnScene;
using Testing::FailingAllocator;
using Testing::TextPage;

DrawnScene BarScene() {
  DrawnScene scene(TextPage({120, 260}, 1), {120, 100}, {{0, 0}, {30, 0}, {72, 0}, {101, 0}});
  scene.With([](int, cv::Mat& window) { window(cv::Rect(0, 0, 120, 16)).setTo(Testing::Blue); });
  return scene;
}

cv::Mat RenderAll(const Mosaic& mosaic) {
  cv::Mat picture;
  mosaic.Render({{}, mosaic.Size()}, picture);
  return picture;
}

cv::Mat ComposeOn(IImageProvider& provider, unsigned threads) {
  MosaicSettings settings;
  settings.threadCount = threads;
  return RenderAll(Mosaic(provider, BarScene().Places(), settings));
}

class MosaicMemoryTest : public testing::TestWithParam<FailingAllocator::Failures> {};

TEST_P(MosaicMemoryTest, EveryMissingMatrixPassesToTheCallerAndNothingLeaks) {
  BasicImageProvider provider;
  Testing::AddAll(provider, BarScene().Captures());
  const cv::Mat expected = ComposeOn(provider, 1);
  const size_t before = FailingAllocator::LiveMatrices();
  const size_t attempts = Testing::CountFailingAttempts([&](size_t passing) {
    const FailingAllocator allocator(passing, GetParam());
    try {
      EXPECT_EQ(0, DifferentPixels(expected, ComposeOn(provider, 1)));
    } catch (const cv::Exception&) {
      EXPECT_TRUE(allocator.HasFailed());
    }
    EXPECT_EQ(before, FailingAllocator::LiveMatrices());
    return allocator.HasFailed();
  });
  EXPECT_GT(attempts, 20U);
}

TEST_P(MosaicMemoryTest, RenderingThatLacksMemoryCanBeTriedAgain) {
  BasicImageProvider provider;
  Testing::AddAll(provider, BarScene().Captures());
  const Mosaic mosaic(provider, BarScene().Places());
  const cv::Mat expected = RenderAll(mosaic);
  Testing::ForEachFailingAllocation(GetParam(), [&](Testing::MemoryFault& fault) {
    cv::Mat picture;
    fault.HitsDuring([&] { picture = RenderAll(mosaic); });
    EXPECT_EQ(fault.HasHit(), fault.HasThrown());
    EXPECT_EQ(0, DifferentPixels(expected, RenderAll(mosaic)));
  });
}

INSTANTIATE_TEST_SUITE_P(Faults, MosaicMemoryTest, testing::ValuesIn(Testing::AllFailures),
                         Testing::NameOfFailures);

/// Loses captures from a given request on.
class LosingProvider : public BasicImageProvider {
 public:
  explicit LosingProvider(size_t passing) : passing(passing) {}

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    const std::lock_guard<std::mutex> guard(lock);
    if (requests++ >= passing) {
      throw std::runtime_error("The capture is lost.");
    }
    return BasicImageProvider::GetImageAt(index);
  }

  size_t Requests() const { return requests; }

  /// So many further requests are answered.
  void Allow(size_t further) { passing = requests + further; }

 private:
  size_t passing;
  std::mutex lock;
  size_t requests = 0;
};

class LostCaptureThreadsTest : public testing::TestWithParam<unsigned> {};

TEST_P(LostCaptureThreadsTest, PassesTheProvidersExceptionToTheCaller) {
  LosingProvider complete(1000000);
  Testing::AddAll(complete, BarScene().Captures());
  ComposeOn(complete, GetParam());
  for (size_t passing = 0; passing < complete.Requests(); passing += 3) {
    LosingProvider provider(passing);
    Testing::AddAll(provider, BarScene().Captures());
    EXPECT_THROW(ComposeOn(provider, GetParam()), std::runtime_error);
  }
}

TEST(LostCaptureTest, RenderingPassesTheExceptionOnAndCanBeTriedAgain) {
  LosingProvider provider(1000000);
  Testing::AddAll(provider, BarScene().Captures());
  const Mosaic mosaic(provider, BarScene().Places());
  const cv::Mat expected = RenderAll(mosaic);
  for (size_t passing = 0; passing < BarScene().Places().size(); ++passing) {
    provider.Allow(passing);
    EXPECT_THROW(RenderAll(mosaic), std::runtime_error);
    provider.Allow(1000000);
    EXPECT_EQ(0, DifferentPixels(expected, RenderAll(mosaic)));
  }
}

INSTANTIATE_TEST_SUITE_P(Threads, LostCaptureThreadsTest, testing::Values(1U, 3U));

}  // namespace
}  // namespace ScrollingCapture
