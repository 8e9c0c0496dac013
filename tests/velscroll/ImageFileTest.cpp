#include <array>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

class ImageFile : public Testing::ProgramTest {
 protected:
  /// What the program makes of a single capture.
  cv::Mat Converted(const std::string& name) const {
    const Testing::ProgramResult result = Run({name, "-o", "result.png", "-q"});
    EXPECT_EQ(result.status, 0) << result.standardError;
    EXPECT_EQ(result.standardError, "");
    return ReadImage("result.png");
  }

  cv::Mat Colours() const { return page(cv::Rect({0, 0}, Testing::CaptureSize)).clone(); }
};

TEST_F(ImageFile, WithThreeChannelsIsTaken) {
  WriteImage("capture.png", Colours());
  EXPECT_TRUE(Testing::SameBits(Converted("capture.png"), Colours()));
}

TEST_F(ImageFile, InGreyIsTaken) {
  cv::Mat grey;
  cv::cvtColor(Colours(), grey, cv::COLOR_BGR2GRAY);
  WriteImage("capture.png", grey);
  cv::Mat expected;
  cv::cvtColor(grey, expected, cv::COLOR_GRAY2BGR);
  EXPECT_TRUE(Testing::SameBits(Converted("capture.png"), expected));
}

TEST_F(ImageFile, With16BitsIsRoundedToThe8BitValue) {
  cv::Mat deep;
  Colours().convertTo(deep, CV_16U, 257);
  cv::Mat offset = deep.clone();
  offset.rowRange(0, 40) += cv::Scalar::all(128);
  offset.rowRange(40, 80) -= cv::Scalar::all(128);
  WriteImage("exact.png", deep);
  WriteImage("offset.png", offset);
  EXPECT_TRUE(Testing::SameBits(Converted("exact.png"), Colours()));
  EXPECT_TRUE(Testing::SameBits(Converted("offset.png"), Colours()));
}

TEST_F(ImageFile, WithFloatingPointValuesCountsFrom0To1) {
  cv::Mat floating;
  Colours().convertTo(floating, CV_32F, 1.0 / 255);
  ASSERT_TRUE(cv::imwrite(PathOf("capture.tif"), floating,
                          {cv::IMWRITE_TIFF_COMPRESSION, 1}));  // otherwise lossy
  EXPECT_TRUE(Testing::SameBits(Converted("capture.tif"), Colours()));
}

/// Two rows of two pixels: red and green over blue and red.
TEST_F(ImageFile, WithAPaletteIsTaken) {
  constexpr std::array<unsigned char, 92> File = {
      0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48,
      0x44, 0x52, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x02, 0x08, 0x03, 0x00, 0x00,
      0x00, 0x45, 0x68, 0xFD, 0x16, 0x00, 0x00, 0x00, 0x09, 0x50, 0x4C, 0x54, 0x45, 0xFF,
      0x00, 0x00, 0x00, 0x80, 0x40, 0x00, 0x00, 0xFF, 0xCD, 0xDC, 0xE2, 0xA9, 0x00, 0x00,
      0x00, 0x0E, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0x60, 0x60, 0x64, 0x60, 0x62,
      0x00, 0x00, 0x00, 0x0E, 0x00, 0x04, 0xDB, 0xE0, 0x32, 0x8E, 0x00, 0x00, 0x00, 0x00,
      0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
  WriteBytes("capture.png", std::string(File.begin(), File.end()));
  const cv::Mat expected = (cv::Mat_<cv::Vec3b>(2, 2) << cv::Vec3b(0, 0, 255),
                            cv::Vec3b(64, 128, 0), cv::Vec3b(255, 0, 0), cv::Vec3b(0, 0, 255));
  EXPECT_TRUE(Testing::SameBits(Converted("capture.png"), expected));
}

TEST_F(ImageFile, WithAlphaComesBackAsTheNearestPremultipliedColour) {
  cv::Mat straight(256, 256, CV_8UC4);
  for (int alpha = 0; alpha < 256; ++alpha) {
    for (int colour = 0; colour < 256; ++colour) {
      straight.at<cv::Vec4b>(alpha, colour) =
          cv::Vec4b(static_cast<uchar>(colour), static_cast<uchar>(255 - colour),
                    static_cast<uchar>(colour / 2), static_cast<uchar>(alpha));
    }
  }
  WriteImage("capture.png", straight);
  const cv::Mat result = Converted("capture.png");
  ASSERT_EQ(result.type(), CV_8UC4);
  for (int alpha = 1; alpha < 256; ++alpha) {
    for (int colour = 0; colour < 256; ++colour) {
      const int premultiplied = cvRound(colour * alpha / 255.0);
      const int expected = cvFloor(premultiplied * 255.0 / alpha + 0.5);
      ASSERT_EQ(result.at<cv::Vec4b>(alpha, colour)[0], expected) << colour << " at " << alpha;
    }
  }
  EXPECT_EQ(cv::countNonZero(result.row(0).reshape(1)), 0);
}

TEST_F(ImageFile, WithAlphaStaysTheSameFromTheSecondTimeOn) {
  cv::Mat straight(80, 96, CV_8UC4);
  cv::RNG random(5);
  random.fill(straight, cv::RNG::UNIFORM, 0, 256);
  WriteImage("capture.png", straight);
  const cv::Mat once = Converted("capture.png");
  WriteImage("again.png", once);
  EXPECT_TRUE(Testing::SameBits(Converted("again.png"), once));
}

TEST_F(ImageFile, OfEveryKindMayBeMixed) {
  const cv::Mat first = page(cv::Rect({0, 0}, Testing::CaptureSize));
  cv::Mat deep;
  page(cv::Rect({0, 30}, Testing::CaptureSize)).convertTo(deep, CV_16U, 257);
  cv::Mat withAlpha;
  cv::cvtColor(page(cv::Rect({0, 60}, Testing::CaptureSize)), withAlpha, cv::COLOR_BGR2BGRA);
  WriteImage("1.bmp", first);
  WriteImage("2.png", deep);
  WriteImage("3.webp", withAlpha);
  const Testing::ProgramResult result = Run({"1.bmp", "2.png", "3.webp", "-o", "page.png", "-q"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardError, "");
  EXPECT_TRUE(Testing::SameBits(ReadImage("page.png"), page(cv::Rect(0, 0, 96, 140)).clone()));
}

}  // namespace
}  // namespace ScrollingCapture
