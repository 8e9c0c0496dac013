#include <stdexcept>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;

class BasicImageProviderTest : public testing::Test {
 protected:
  cv::Mat first = NoiseCapture({6, 4}, 1);
  cv::Mat second = NoiseCapture({6, 4}, 2);
  BasicImageProvider provider;
};

TEST_F(BasicImageProviderTest, IsEmptyAtFirst) {
  EXPECT_EQ(provider.Count(), 0U);
  EXPECT_TRUE(provider.IsEmpty());
  EXPECT_THROW(provider.GetImageAt(0), std::out_of_range);
}

TEST_F(BasicImageProviderTest, KeepsCapturesInTheOrderAdded) {
  provider.Add(first);
  provider.Add(second);
  EXPECT_EQ(provider.Count(), 2U);
  EXPECT_FALSE(provider.IsEmpty());
  EXPECT_EQ(provider.GetImageAt(0)->data, first.data);
  EXPECT_EQ(provider.GetImageAt(1)->data, second.data);
  EXPECT_EQ(provider.GetLastImage()->data, second.data);
}

TEST_F(BasicImageProviderTest, ThrowsForAnIndexThatIsNotBelowTheCount) {
  provider.Add(first);
  provider.Add(second);
  EXPECT_THROW(provider.GetImageAt(2), std::out_of_range);
}

TEST_F(BasicImageProviderTest, HoldsANewHeaderOverTheCallersPixels) {
  provider.Add(first);
  const cv::Mat added = first;
  first = second;
  EXPECT_EQ(provider.GetImageAt(0)->data, added.data);
}

TEST_F(BasicImageProviderTest, SharesItsHeaderWithEveryReader) {
  provider.Add(first);
  EXPECT_EQ(provider.GetImageAt(0), provider.GetImageAt(0));
  EXPECT_EQ(provider.GetImageAt(0), provider.GetLastImage());
}

TEST_F(BasicImageProviderTest, ReplacesACapture) {
  provider.Add(first);
  provider.Add(first);
  provider.SetImageAt(0, second);
  EXPECT_EQ(provider.Count(), 2U);
  EXPECT_EQ(provider.GetImageAt(0)->data, second.data);
  EXPECT_EQ(provider.GetImageAt(1)->data, first.data);
}

TEST_F(BasicImageProviderTest, LeavesAReplacedCaptureToThoseWhoHoldIt) {
  const cv::Mat pixels = first.clone();
  provider.Add(first);
  first.release();
  const std::shared_ptr<cv::Mat> held = provider.GetImageAt(0);
  provider.SetImageAt(0, second);
  EXPECT_TRUE(SameBits(*held, pixels));
}

TEST_F(BasicImageProviderTest, LeavesClearedCapturesToThoseWhoHoldThem) {
  const cv::Mat pixels = first.clone();
  provider.Add(first);
  first.release();
  const std::shared_ptr<cv::Mat> held = provider.GetImageAt(0);
  provider.Clear();
  EXPECT_TRUE(provider.IsEmpty());
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_TRUE(SameBits(*held, pixels));
}

TEST_F(BasicImageProviderTest, TakesCapturesAgainAfterAClear) {
  provider.Add(first);
  provider.Clear();
  provider.Add(second);
  EXPECT_EQ(provider.Count(), 1U);
  EXPECT_EQ(provider.GetImageAt(0)->data, second.data);
}

}  // namespace
}  // namespace ScrollingCapture
