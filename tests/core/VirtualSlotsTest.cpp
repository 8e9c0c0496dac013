#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/VirtualSlots.h>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/ITranslationDetector.h>

namespace ScrollingCapture {
namespace {

using Testing::SlotOf;

using PairDetection = Translation (ITranslationDetector::*)(const cv::Mat&, const cv::Mat&);
using SequenceDetectionOperation = std::vector<Translation> (ITranslationDetector::*)(
    IImageProvider&, IStitcherListener*, int, int);

// The destructor pair takes the slots 0 and 1.

TEST(VirtualSlots, OfTheProviderAreInTheirOrder) {
  EXPECT_THAT(
      (std::vector<size_t>{SlotOf(&IImageProvider::Count), SlotOf(&IImageProvider::IsEmpty),
                           SlotOf(&IImageProvider::GetImageAt), SlotOf(&IImageProvider::SetImageAt),
                           SlotOf(&IImageProvider::Clear), SlotOf(&IImageProvider::Add),
                           SlotOf(&IImageProvider::GetLastImage)}),
      testing::ElementsAre(2, 3, 4, 5, 6, 7, 8));
}

TEST(VirtualSlots, OfTheStitcherAreInTheirOrder) {
  EXPECT_EQ(SlotOf(&IStitcher::Stitch), 2U);
  EXPECT_EQ(SlotOf(&IStitcher::GetTranslations), 3U);
}

TEST(VirtualSlots, OfTheDetectorAreInTheirOrder) {
  EXPECT_EQ(SlotOf(PairDetection{&ITranslationDetector::DetectTranslation}), 2U);
  EXPECT_EQ(SlotOf(SequenceDetectionOperation{&ITranslationDetector::DetectTranslation}), 3U);
  EXPECT_EQ(SlotOf(&ITranslationDetector::DetectTranslationWithAlternative), 4U);
}

TEST(VirtualSlots, OfTheListenerAreInTheirOrder) {
  EXPECT_EQ(SlotOf(&IStitcherListener::ProgressCallback), 2U);
  EXPECT_EQ(SlotOf(&IStitcherListener::StitchingComplete), 3U);
  EXPECT_EQ(SlotOf(&IStitcherListener::StitchingError), 4U);
}

}  // namespace
}  // namespace ScrollingCapture
