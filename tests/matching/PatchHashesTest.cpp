#include <algorithm>
#include <set>
#include <tuple>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/PatchHashes.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

using Found = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

/// Positions and hashes, in order.
Found FoundIn(const cv::Mat& capture, int zeroBits, Vectors vectors = Vectors::Widest) {
  Found found;
  for (const Anchor& anchor : SelectPatches(capture, zeroBits, vectors).anchors) {
    found.emplace_back(anchor.position, anchor.hash);
  }
  std::sort(found.begin(), found.end());
  return found;
}

class PatchHashesVectors : public testing::TestWithParam<std::tuple<int, int>> {};

/// Widths around those of strips and of vectors.
TEST_P(PatchHashesVectors, AllGiveTheSame) {
  const auto [width, channels] = GetParam();
  cv::Mat capture = DrawPhoto({width, 70}, 2);
  if (channels != 4) {
    cv::cvtColor(capture, capture, channels == 3 ? cv::COLOR_RGBA2RGB : cv::COLOR_RGBA2GRAY);
  }
  const Found plain = FoundIn(capture, 3, Vectors::Plain);
  EXPECT_EQ(plain.empty(), width == 16);
  EXPECT_EQ(FoundIn(capture, 3, Vectors::Widest), plain);
}

INSTANTIATE_TEST_SUITE_P(WidthsAndChannels, PatchHashesVectors,
                         testing::Combine(testing::Values(16, 31, 100, 511, 512, 513, 1024, 1300),
                                          testing::Values(1, 3, 4)));

TEST(PatchHashes, AreTheSameWhereverTheContentLies) {
  const cv::Mat page = DrawPhoto({1100, 200}, 3);
  const cv::Rect part(505, 60, 60, 70);
  const Found whole = FoundIn(page, 2);
  const Found alone = FoundIn(page(part), 2);
  EXPECT_GT(alone.size(), 300U);
  for (const auto& [position, hash] : alone) {
    const int row = static_cast<int>(position) / part.width + part.y;
    const int column = static_cast<int>(position) % part.width + part.x;
    const auto place = static_cast<std::uint32_t>(row * page.cols + column);
    EXPECT_TRUE(std::binary_search(whole.begin(), whole.end(), std::pair(place, hash)));
  }
}

TEST(PatchHashes, TellPatchesApartByASinglePixel) {
  const cv::Mat page = DrawPhoto({60, 60}, 4);
  for (const cv::Scalar& change : {cv::Scalar(1, 0, 0, 0), cv::Scalar(0, 0, 1, 0)}) {
    cv::Mat other = page.clone();
    other(cv::Rect(30, 30, 1, 1)) += change;
    for (const auto& [position, hash] : FoundIn(other, 0)) {
      const cv::Rect patch(static_cast<int>(position) % 60, static_cast<int>(position) / 60, 16,
                           16);
      const Found before = FoundIn(page, 0);
      EXPECT_EQ(std::binary_search(before.begin(), before.end(), std::pair(position, hash)),
                !patch.contains({30, 30}));
    }
  }
}

TEST(PatchHashes, SelectOnePatchInSoMany) {
  const cv::Mat photo = DrawPhoto({700, 500}, 5);
  const std::size_t all = FoundIn(photo, 0).size();
  EXPECT_EQ(all, 684U * 484U);
  for (const int zeroBits : {2, 5}) {
    const double share =
        static_cast<double>(FoundIn(photo, zeroBits).size()) / static_cast<double>(all);
    EXPECT_NEAR(share * (1 << zeroBits), 1, 0.1);
  }
}

TEST(PatchHashes, LeaveOutWhatEqualsItsNeighbours) {
  cv::Mat capture(80, 80, CV_8UC4, cv::Scalar::all(255));
  EXPECT_TRUE(FoundIn(capture, 0).empty());
  capture.row(40).setTo(cv::Scalar(0, 0, 0, 255));
  EXPECT_TRUE(FoundIn(capture, 0).empty()) << "a rule across";
  capture.col(40).setTo(cv::Scalar(0, 0, 0, 255));
  EXPECT_FALSE(FoundIn(capture, 0).empty()) << "a crossing";
}

TEST(PatchHashes, TellOfColouredTransparentPixels) {
  cv::Mat capture = DrawPhoto({90, 40}, 6);
  capture.at<cv::Vec4b>(20, 80) = {0, 0, 0, 0};
  EXPECT_FALSE(SelectPatches(capture, 3, Vectors::Widest).hasColouredTransparentPixels);
  const Found before = FoundIn(capture, 0);
  capture.at<cv::Vec4b>(20, 80) = {0, 9, 0, 0};
  EXPECT_TRUE(SelectPatches(capture, 3, Vectors::Widest).hasColouredTransparentPixels);
  EXPECT_EQ(FoundIn(capture, 0), before);
}

}  // namespace
}  // namespace ScrollingCapture
