#include <future>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/detection/phase/internal/PairInSequence.h>
#include <VelScrollingCapture/detection/phase/internal/SharedSpectra.h>
#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>

namespace ScrollingCapture {
namespace {

class PairInSequenceTest : public testing::Test {
 protected:
  const int detector = 0;
  const int otherDetector = 0;
  SharedSpectra spectra{2};
};

TEST_F(PairInSequenceTest, IsKnownToItsDetectorWhileItLives) {
  EXPECT_EQ(PairInSequence::Of(&detector), nullptr);
  {
    const PairInSequence pair(&detector, spectra, 3);
    EXPECT_EQ(PairInSequence::Of(&detector), &pair);
    EXPECT_EQ(PairInSequence::Of(&otherDetector), nullptr);
  }
  EXPECT_EQ(PairInSequence::Of(&detector), nullptr);
}

TEST_F(PairInSequenceTest, IsNotKnownToOtherThreads) {
  const PairInSequence pair(&detector, spectra, 3);
  auto known =
      std::async(std::launch::async, [&] { return PairInSequence::Of(&detector) != nullptr; });
  EXPECT_FALSE(known.get());
}

TEST_F(PairInSequenceTest, ComesBackAfterOneInside) {
  const PairInSequence outer(&detector, spectra, 3);
  {
    const PairInSequence inner(&otherDetector, spectra, 5);
    EXPECT_EQ(PairInSequence::Of(&detector), nullptr);
    EXPECT_EQ(PairInSequence::Of(&otherDetector), &inner);
  }
  EXPECT_EQ(PairInSequence::Of(&detector), &outer);
}

TEST_F(PairInSequenceTest, CorrelatesAsAPairAloneDoes) {
  cv::Mat first(30, 40, CV_8UC1);
  cv::Mat second = first.clone();
  cv::RNG random(1);
  random.fill(first, cv::RNG::UNIFORM, 0, 256);
  random.fill(second, cv::RNG::UNIFORM, 0, 256);
  const cv::Size dftSize(80, 60);
  const PairInSequence pair(&detector, spectra, 3);
  EXPECT_TRUE(Testing::SameBits(*pair.CorrelateImages(first, second, dftSize),
                                CorrelateImages(first, second, dftSize)));
}

}  // namespace
}  // namespace ScrollingCapture
