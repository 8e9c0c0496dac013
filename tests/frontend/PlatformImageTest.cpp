#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/frontend/PlatformImage.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;

cv::Mat GreyNoise(const cv::Size& size) {
  cv::Mat grey(size, CV_8UC1);
  cv::RNG random(3);
  random.fill(grey, cv::RNG::UNIFORM, 0, 256);
  return grey;
}

TEST(PlatformImage, HasNoPixelByDefault) {
  const PlatformImage image;
  EXPECT_EQ(image.size(), (ImageSize{0, 0}));
  EXPECT_EQ(image.pixels(), nullptr);
  EXPECT_TRUE(image.CVMat().empty());
  EXPECT_TRUE(image.CVGrayscaleMat().empty());
}

TEST(PlatformImage, KeepsColourAndAlphaThereAndBack) {
  cv::Mat matrix = NoiseCapture({31, 17}, 1);
  matrix.at<cv::Vec4b>(2, 3) = cv::Vec4b(10, 20, 30, 40);
  matrix.at<cv::Vec4b>(2, 4) = cv::Vec4b(0, 0, 0, 0);
  const PlatformImage image = PlatformImage::imageWithCVMat(matrix);
  EXPECT_EQ(image.size(), (ImageSize{31, 17}));
  EXPECT_FALSE(image.isGrey());
  EXPECT_TRUE(SameBits(image.CVMat(), matrix));
}

TEST(PlatformImage, GivesPixelsInTheOrderRedGreenBlueAlphaWithoutPadding) {
  const cv::Mat matrix(1, 2, CV_8UC4, cv::Scalar(1, 2, 3, 4));
  const PlatformImage image = PlatformImage::imageWithCVMat(matrix);
  ASSERT_EQ(image.bytesPerRow(), 8U);
  EXPECT_EQ(std::vector<int>(image.pixels(), image.pixels() + 8),
            (std::vector<int>{1, 2, 3, 4, 1, 2, 3, 4}));
}

TEST(PlatformImage, ConvertsColourToGreyLikeEveryPartOfTheLibrary) {
  const cv::Mat matrix = NoiseCapture({31, 17}, 2);
  cv::Mat expected;
  cv::cvtColor(matrix, expected, cv::COLOR_RGBA2GRAY);
  EXPECT_TRUE(SameBits(PlatformImage::imageWithCVMat(matrix).CVGrayscaleMat(), expected));
}

TEST(PlatformImage, KeepsGreyThereAndBack) {
  const cv::Mat grey = GreyNoise({13, 11});
  const PlatformImage image = PlatformImage::imageWithCVMat(grey);
  EXPECT_TRUE(image.isGrey());
  EXPECT_EQ(image.bytesPerRow(), 13U);
  EXPECT_TRUE(SameBits(image.CVGrayscaleMat(), grey));
}

TEST(PlatformImage, TurnsGreyIntoOpaqueColour) {
  const cv::Mat grey(2, 3, CV_8UC1, cv::Scalar(77));
  const cv::Mat expected(2, 3, CV_8UC4, cv::Scalar(77, 77, 77, 255));
  EXPECT_TRUE(SameBits(PlatformImage::imageWithCVMat(grey).CVMat(), expected));
}

TEST(PlatformImage, ReadsAMatrixWithPaddedRows) {
  const cv::Mat large = NoiseCapture({40, 30}, 5);
  const cv::Mat region = large(cv::Rect(5, 6, 20, 10));
  ASSERT_FALSE(region.isContinuous());
  EXPECT_TRUE(SameBits(PlatformImage::imageWithCVMat(region).CVMat(), region));
  const cv::Mat largeGrey = GreyNoise({40, 30});
  const cv::Mat greyRegion = largeGrey(cv::Rect(5, 6, 20, 10));
  EXPECT_TRUE(SameBits(PlatformImage::imageWithCVMat(greyRegion).CVGrayscaleMat(), greyRegion));
}

TEST(PlatformImage, IsIndependentOfTheMatrixItCameFrom) {
  cv::Mat matrix = NoiseCapture({8, 8}, 6);
  const cv::Mat before = matrix.clone();
  const PlatformImage image = PlatformImage::imageWithCVMat(matrix);
  matrix.setTo(cv::Scalar::all(0));
  EXPECT_TRUE(SameBits(image.CVMat(), before));
}

TEST(PlatformImage, IsIndependentOfTheMatricesItGives) {
  const cv::Mat matrix = NoiseCapture({8, 8}, 7);
  const cv::Mat grey = GreyNoise({8, 8});
  const PlatformImage image = PlatformImage::imageWithCVMat(matrix);
  const PlatformImage greyImage = PlatformImage::imageWithCVMat(grey);
  image.CVMat().setTo(cv::Scalar::all(0));
  greyImage.CVGrayscaleMat().setTo(cv::Scalar::all(0));
  EXPECT_TRUE(SameBits(image.CVMat(), matrix));
  EXPECT_TRUE(SameBits(greyImage.CVGrayscaleMat(), grey));
}

TEST(PlatformImage, HasNoPixelForWhatItCannotHold) {
  const int sizes[] = {2, 2, 2};
  EXPECT_EQ(PlatformImage::imageWithCVMat(cv::Mat()).pixels(), nullptr);
  EXPECT_EQ(PlatformImage::imageWithCVMat(cv::Mat(2, 2, CV_8UC3, cv::Scalar())).pixels(), nullptr);
  EXPECT_EQ(PlatformImage::imageWithCVMat(cv::Mat(2, 2, CV_64F, cv::Scalar())).pixels(), nullptr);
  EXPECT_EQ(PlatformImage::imageWithCVMat(cv::Mat(3, sizes, CV_8UC4, cv::Scalar())).pixels(),
            nullptr);
}

}  // namespace
}  // namespace ScrollingCapture
