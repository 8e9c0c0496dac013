#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/PreparedCapture.h>

namespace ScrollingCapture {
namespace {

TEST(PreparedCapture, TakesLessThanATenthOfACapture) {
  for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4}) {
    cv::Mat capture = Testing::DrawPhoto({1280, 720}, 1);
    cv::cvtColor(capture, capture,
                 type == CV_8UC1   ? cv::COLOR_RGBA2GRAY
                 : type == CV_8UC3 ? cv::COLOR_RGBA2RGB
                                   : cv::COLOR_RGBA2BGRA);
    ASSERT_EQ(capture.type(), type);
    const PreparedCapture prepared(capture);
    EXPECT_GT(prepared.Bytes(), 1000);
    EXPECT_LT(prepared.Bytes(), capture.total() * capture.elemSize() / 10);
  }
}

struct SizeAndBytes {
  cv::Size size;
  double mostBytesPerPixel;
};

class PreparedCaptureSizes : public testing::TestWithParam<SizeAndBytes> {};

TEST_P(PreparedCaptureSizes, HaveSoManyBytesForEachPixel) {
  const auto& [size, mostBytesPerPixel] = GetParam();
  const PreparedCapture prepared(Testing::NoiseCapture(size, 5));
  const double bytesPerPixel = static_cast<double>(prepared.Bytes()) / size.area();
  EXPECT_LT(bytesPerPixel, 1.1 * mostBytesPerPixel);
  EXPECT_GT(bytesPerPixel, 0.5 * mostBytesPerPixel);
}

INSTANTIATE_TEST_SUITE_P(, PreparedCaptureSizes,
                         testing::Values(SizeAndBytes{{120, 80}, 2}, SizeAndBytes{{300, 200}, 1},
                                         SizeAndBytes{{600, 400}, 0.5},
                                         SizeAndBytes{{1280, 720}, 0.25},
                                         SizeAndBytes{{1920, 1080}, 0.125}),
                         [](const auto& sizes) {
                           return std::to_string(sizes.param.size.width) + "Columns";
                         });

TEST(PreparedCapture, TakesNothingBeforeThereIsACapture) {
  EXPECT_EQ(PreparedCapture().Bytes(), 0);
}

TEST(PreparedCapture, RefusesWhatIsNoCapture) {
  EXPECT_THROW(PreparedCapture(cv::Mat()), std::invalid_argument);
  EXPECT_THROW(PreparedCapture(cv::Mat(20, 20, CV_32FC1, cv::Scalar())), std::invalid_argument);
}

}  // namespace
}  // namespace ScrollingCapture
