// Memory that runs out, and delegates that throw, while a capture object is at work.

#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/StreamCapture.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/pages/ScrolledCaptures.h>

#include <VelScrollingCapture/frontend/VelScrollingCapture.h>

namespace ScrollingCapture {
namespace {

using Testing::CountFailingAttempts;
using Testing::FailingAllocator;
using Testing::ForEachFailingAllocation;
using Testing::MemoryFault;
using Testing::SameBits;
using Testing::ScrolledCaptures;
using Testing::ScrolledPage;
using Testing::StreamCapture;

constexpr int CaptureCount = 3;

std::vector<PlatformImage> Images() {
  std::vector<PlatformImage> images;
  for (const cv::Mat& capture : ScrolledCaptures(CaptureCount)) {
    images.push_back(PlatformImage::imageWithCVMat(capture));
  }
  return images;
}

void AddAll(VelScrollingCapture& capture, const std::vector<PlatformImage>& images) {
  for (const PlatformImage& image : images) {
    capture.addImageToAdapter(image);
  }
}

cv::Mat WholePreview() {
  const auto capture = VelScrollingCapture::init();
  AddAll(*capture, Images());
  capture->cleanupListener();
  return capture->currentImagePreview()->CVMat();
}

class CaptureObjectAllocations : public testing::TestWithParam<FailingAllocator::Failures> {
 protected:
  const std::vector<PlatformImage> images = Images();
};

TEST_P(CaptureObjectAllocations, KeepACaptureOrLeaveItToBeAddedAgain) {
  for (size_t failing = 0; failing < images.size(); ++failing) {
    ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
      const auto capture = VelScrollingCapture::init();
      for (size_t i = 0; i < failing; ++i) {
        capture->addImageToAdapter(images[i]);
      }
      const bool failed = fault.HitsDuring([&] { capture->addImageToAdapter(images[failing]); });
      EXPECT_FALSE(fault.HasThrown());
      const size_t count = capture->stitcherAdapter()->Count();
      EXPECT_GE(count, failing);
      EXPECT_LE(count, failing + 1);
      EXPECT_TRUE(failed || count == failing + 1);
      for (size_t i = count; i < images.size(); ++i) {
        capture->addImageToAdapter(images[i]);
      }
      const std::optional<PlatformImage> page = capture->stitchAndReturnFinalImage();
      EXPECT_TRUE(page && SameBits(page->CVMat(), ScrolledPage(CaptureCount)));
      EXPECT_EQ(capture.use_count(), 1);
    });
  }
}

TEST_P(CaptureObjectAllocations, GiveTheWholePreviewOrNone) {
  const cv::Mat whole = WholePreview();
  const auto capture = VelScrollingCapture::init();
  AddAll(*capture, images);
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    std::optional<PlatformImage> preview;
    const bool failed = fault.HitsDuring([&] { preview = capture->currentImagePreview(); });
    EXPECT_FALSE(fault.HasThrown());
    EXPECT_EQ(preview.has_value(), !failed);
    EXPECT_TRUE(SameBits(capture->currentImagePreview()->CVMat(), whole));
  });
  capture->cleanupListener();
}

TEST_P(CaptureObjectAllocations, GiveTheWholePageOrNoneAndEndTheReference) {
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    const auto capture = VelScrollingCapture::initWithExpectConsistentTranslations(false, 2);
    AddAll(*capture, images);
    std::optional<PlatformImage> page;
    const bool failed = fault.HitsDuring([&] {
      const StreamCapture errors(std::cerr);
      page = capture->stitchAndReturnFinalImage();
    });
    EXPECT_FALSE(fault.HasThrown());
    EXPECT_EQ(page.has_value(), !failed);
    EXPECT_EQ(capture.use_count(), 1) << "The host's reference";
    EXPECT_EQ(capture->stitcherAdapter()->Count(), images.size());
    if (failed) {
      capture->setupStitcher();
      page = capture->stitchAndReturnFinalImage();
    }
    EXPECT_TRUE(page && SameBits(page->CVMat(), ScrolledPage(CaptureCount)));
  });
}

TEST_P(CaptureObjectAllocations, RenderGreyOrGiveNothing) {
  const auto capture = VelScrollingCapture::init();
  const PlatformImage grey = PlatformImage::imageWithCVMat(images[0].CVGrayscaleMat());
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    bool rendered = false;
    const bool failed =
        fault.HitsDuring([&] { rendered = capture->bitmapImageRepresentation(grey).has_value(); });
    EXPECT_FALSE(fault.HasThrown());
    EXPECT_EQ(rendered, !failed);
  });
  capture->cleanupListener();
}

INSTANTIATE_TEST_SUITE_P(Failures, CaptureObjectAllocations,
                         testing::ValuesIn(Testing::AllFailures), Testing::NameOfFailures);

/// Goes on, and throws at one of the messages that come from the thread that made it.
class ThrowingDelegate : public ScrollingProgressDelegate {
 public:
  explicit ThrowingDelegate(size_t passing) : passing(passing) {}

  void setCurrentProgress(int /*progress*/) override { Count(); }
  bool continueScrolling() override {
    Count();
    return true;
  }

 private:
  void Count() {
    if (std::this_thread::get_id() == thread && messages++ == passing) {
      throw std::runtime_error("The delegate failed.");
    }
  }

  const std::thread::id thread = std::this_thread::get_id();
  const size_t passing;
  size_t messages = 0;
};

TEST(CaptureObjectDelegate, StopsTheStitchByThrowingAndLosesNothing) {
  const std::vector<PlatformImage> images = Images();
  const auto stitch = [&](size_t passing) {
    auto capture = VelScrollingCapture::initWithExpectConsistentTranslations(true, 2);
    AddAll(*capture, images);
    const auto delegate = std::make_shared<ThrowingDelegate>(passing);
    capture->setProgressDelegate(delegate);
    std::optional<PlatformImage> page;
    bool threw = false;
    try {
      page = capture->stitchAndReturnFinalImage();
    } catch (const std::runtime_error&) {
      threw = true;
      EXPECT_EQ(capture.use_count(), 1) << "The host's reference";
      EXPECT_EQ(capture->progressListener(), nullptr);
      EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
      capture->setProgressDelegate(nullptr);
      capture->setupStitcher();
      page = capture->stitchAndReturnFinalImage();
    }
    EXPECT_TRUE(page && SameBits(page->CVMat(), ScrolledPage(CaptureCount)));
    const std::weak_ptr<VelScrollingCapture> watch = capture;
    capture.reset();
    EXPECT_TRUE(watch.expired());
    return threw;
  };
  // The end of the detection, each pair that is composed and the end, with two messages each.
  EXPECT_EQ(CountFailingAttempts(stitch), 2 * (1 + CaptureCount));
}

TEST(CaptureObjectDelegate, StopsTheStitchByThrowingAfterTheHostHasLetGo) {
  auto capture = VelScrollingCapture::init();
  AddAll(*capture, Images());
  const std::weak_ptr<VelScrollingCapture> watch = capture;
  class Delegate : public ScrollingProgressDelegate {
   public:
    explicit Delegate(std::shared_ptr<VelScrollingCapture>& host) : host(host) {}
    void setCurrentProgress(int progress) override {
      host.reset();
      if (progress == 100) {
        throw std::runtime_error("The delegate failed.");
      }
    }
    bool continueScrolling() override { return true; }

   private:
    std::shared_ptr<VelScrollingCapture>& host;
  };
  const auto delegate = std::make_shared<Delegate>(capture);
  capture->setProgressDelegate(delegate);
  VelScrollingCapture* const object = capture.get();
  EXPECT_THROW(object->stitchAndReturnFinalImage(), std::runtime_error);
  EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace ScrollingCapture
