// Linked with the library in an archive: what is initialised here is initialised before anything of
// the library's.

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;

PreviewImage& EarlyPreview() {
  static PreviewImage preview;
  return preview;
}

const cv::Size sizeBeforeMain = EarlyPreview().GetPreview().size();
const int answerBeforeMain = EarlyPreview().AddCapture(NoiseCapture({250, 600}, 1));

TEST(EarlyPreview, IsLikeOneThatIsMadeInMain) {
  PreviewImage late;
  ASSERT_EQ(late.AddCapture(NoiseCapture({250, 600}, 1)), 0);
  EXPECT_EQ(sizeBeforeMain, cv::Size(750, 750));
  EXPECT_EQ(answerBeforeMain, 0);
  EXPECT_TRUE(SameBits(EarlyPreview().GetPreview(), late.GetPreview()));
}

}  // namespace
}  // namespace ScrollingCapture
