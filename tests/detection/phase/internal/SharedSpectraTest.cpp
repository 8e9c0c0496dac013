#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/memory/PeakMemory.h>

#include <VelScrollingCapture/detection/phase/internal/SharedSpectra.h>
#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>

namespace ScrollingCapture {
namespace {

using Testing::SameBits;

const cv::Size DftSize(80, 60);

cv::Mat Grey(std::uint64_t seed) {
  cv::Mat grey(30, 40, CV_8UC1);
  cv::RNG(seed).fill(grey, cv::RNG::UNIFORM, 0, 256);
  return grey;
}

void ExpectPair(SharedSpectra& spectra, size_t pair, const cv::Mat& first, const cv::Mat& second) {
  EXPECT_TRUE(SameBits(*spectra.CorrelatePair(pair, first, second, DftSize),
                       CorrelateImages(first, second, DftSize)))
      << "pair " << pair;
}

TEST(SharedSpectra, GiveTheBitsOfEachPairAlone) {
  SharedSpectra spectra(2);
  for (size_t pair = 0; pair < 5; ++pair) {
    ExpectPair(spectra, pair, Grey(pair), Grey(pair + 1));
  }
}

TEST(SharedSpectra, AreNotThoseOfPixelsThatHaveChanged) {
  SharedSpectra spectra(2);
  ExpectPair(spectra, 0, Grey(0), Grey(1));
  cv::Mat changed = Grey(1);
  changed.at<uchar>(29, 39) ^= 1;
  ExpectPair(spectra, 1, changed, Grey(2));
}

TEST(SharedSpectra, AreNotThoseOfAnotherSizeOrType) {
  SharedSpectra spectra(2);
  ExpectPair(spectra, 0, Grey(0), cv::Mat::zeros(30, 40, CV_8UC1));
  ExpectPair(spectra, 1, cv::Mat::zeros(20, 60, CV_8UC1), cv::Mat::zeros(30, 40, CV_32FC1));
  ExpectPair(spectra, 2, cv::Mat::zeros(30, 40, CV_8UC1), Grey(3));
}

TEST(SharedSpectra, MakeRoomForOthersWhenNobodyAsksForThem) {
  SharedSpectra spectra(2);
  const double onePair = Testing::PeakMiBOf([&] { ExpectPair(spectra, 0, Grey(0), Grey(1)); });
  const double manyPairs = Testing::PeakMiBOf([&] {
    SharedSpectra many(2);
    for (size_t pair = 0; pair < 100; pair += 2) {
      many.CorrelatePair(pair, Grey(pair), Grey(pair + 1), DftSize);
    }
  });
  EXPECT_LT(manyPairs, 4 * onePair);
}

TEST(SharedSpectra, ServeManyThreadsAtOnce) {
  constexpr size_t Pairs = 24;
  SharedSpectra spectra(Pairs + 1);
  std::vector<std::shared_ptr<const cv::Mat>> correlated(Pairs);
  std::vector<std::thread> threads;
  for (size_t pair = 0; pair < Pairs; ++pair) {
    threads.emplace_back([&, pair] {
      correlated[pair] = spectra.CorrelatePair(pair, Grey(pair), Grey(pair + 1), DftSize);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (size_t pair = 0; pair < Pairs; ++pair) {
    EXPECT_TRUE(SameBits(*correlated[pair], CorrelateImages(Grey(pair), Grey(pair + 1), DftSize)))
        << "pair " << pair;
  }
}

}  // namespace
}  // namespace ScrollingCapture
