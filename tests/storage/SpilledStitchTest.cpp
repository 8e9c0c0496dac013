#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;
using Testing::TemporaryFolder;

constexpr unsigned long CaptureBytes = 64UL * 48 * 4;

/// Where a window of 64 x 48 pixels stands on a large picture, capture by capture.
const std::vector<cv::Point> positions = {{20, 0},   {20, 17},  {25, 30},  {20, 47},  {12, 60},
                                          {12, 55},  {12, 75},  {30, 90},  {30, 107}, {30, 107},
                                          {30, 120}, {22, 131}, {22, 150}, {40, 165}};

std::vector<cv::Mat> ScrolledCaptures() {
  const cv::Mat page = NoiseCapture({120, 300}, 5);
  std::vector<cv::Mat> captures;
  captures.reserve(positions.size());
  for (const cv::Point& position : positions) {
    captures.push_back(page(cv::Rect(position, cv::Size(64, 48))).clone());
  }
  return captures;
}

std::vector<Translation> TrueTranslations() {
  std::vector<Translation> translations;
  for (size_t i = 1; i < positions.size(); ++i) {
    const cv::Point motion = positions[i - 1] - positions[i];
    translations.emplace_back(motion.y, motion.x);
  }
  return translations;
}

/// Adds copies, since a stitch writes into its captures.
void AddCopies(IImageProvider& provider, const std::vector<cv::Mat>& captures) {
  for (const cv::Mat& capture : captures) {
    cv::Mat copy = capture.clone();
    provider.Add(copy);
  }
}

class SpilledStitchTest : public testing::TestWithParam<unsigned long> {
 protected:
  TemporaryFolder folder;
  std::vector<cv::Mat> captures = ScrolledCaptures();
  std::shared_ptr<IStitcher> stitcher =
      StitcherFactory::CreateBasicStitcher(ScrollOrientation::Both, false, 3);
};

TEST_P(SpilledStitchTest, GivesTheImageOfAStitchInMemory) {
  BasicImageProvider inMemory;
  AddCopies(inMemory, captures);
  cv::Mat expected;
  ASSERT_TRUE(stitcher->Stitch(inMemory, expected, nullptr, 0, 100, false));
  EXPECT_EQ(stitcher->GetTranslations(), TrueTranslations());

  MemoryEfficientImageProvider spilled(folder.Prefix(), GetParam());
  AddCopies(spilled, captures);
  ASSERT_GE(folder.Contents().size(), captures.size() / 2);
  cv::Mat result;
  ASSERT_TRUE(stitcher->Stitch(spilled, result, nullptr, 0, 100, false));

  EXPECT_EQ(stitcher->GetTranslations(), TrueTranslations());
  EXPECT_TRUE(SameBits(result, expected));
}

INSTANTIATE_TEST_SUITE_P(Limits, SpilledStitchTest,
                         testing::Values(0, 3 * CaptureBytes, 7 * CaptureBytes),
                         [](const auto& param) {
                           return "RoomFor" + std::to_string(param.param / CaptureBytes);
                         });

TEST_F(SpilledStitchTest, ThrowsOnTheCallersThreadWhenASpillFileIsGone) {
  MemoryEfficientImageProvider spilled(folder.Prefix(), 0);
  AddCopies(spilled, captures);
  for (const std::string& path : folder.Contents()) {
    std::filesystem::remove(path);
  }
  cv::Mat result;
  try {
    stitcher->Stitch(spilled, result, nullptr, 0, 100, false);
    FAIL() << "the lost captures went unnoticed";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Could not open or read file.");
  }
  EXPECT_TRUE(result.empty());
}

TEST_F(SpilledStitchTest, CutsNoSeamsIntoSpillFiles) {
  MemoryEfficientImageProvider spilled(folder.Prefix(), 0);
  AddCopies(spilled, captures);
  while (spilled.UnloadMat()) {
  }
  cv::Mat result;
  ASSERT_TRUE(stitcher->Stitch(spilled, result, nullptr, 0, 100, false));
  while (spilled.UnloadMat()) {
  }
  for (size_t i = 0; i < captures.size(); ++i) {
    EXPECT_TRUE(SameBits(*spilled.GetImageAt(i), captures[i])) << i;
  }
  while (spilled.UnloadMat()) {
  }
  cv::Mat again;
  ASSERT_TRUE(stitcher->Stitch(spilled, again, nullptr, 0, 100, false));
  EXPECT_TRUE(SameBits(again, result));
}

TEST_F(SpilledStitchTest, EndsWithTheErrorOfTheFirstCaptureThatIsLost) {
  MemoryEfficientImageProvider spilled(folder.Prefix(), 0);
  AddCopies(spilled, captures);
  for (const std::string& file : folder.Contents()) {
    std::filesystem::remove(file);
  }
  cv::Mat result = NoiseCapture({3, 3}, 1);
  const cv::Mat before = result.clone();
  EXPECT_THROW(stitcher->Stitch(spilled, result, nullptr, 0, 100, false), std::runtime_error);
  EXPECT_TRUE(SameBits(result, before));
}

}  // namespace
}  // namespace ScrollingCapture
