#include <memory>
#include <tiffio.h>

#include <gmock/gmock.h>
#include <opencv2/core.hpp>
#include <testkit/TemporaryFolder.h>
#include <testkit/output/DrawnPicture.h>
#include <velscroll/output/PictureWriting.h>

namespace ScrollingCapture {
namespace {

using Tiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

/// What libtiff itself reads of a picture with transparent corners.
class TiffWithAlpha : public ::testing::Test {
 protected:
  TiffWithAlpha() {
    Program::PictureOutput output;
    output.path = folder.Prefix() + "p.tif";
    output.metadata.resolution = Program::Resolution{72 / 0.0254, 96 / 0.0254};
    StagePicture(Program::PictureOf(picture), output, [](int) {}).front()->Commit();
    tiff.reset(TIFFOpen(output.path.c_str(), "r"));
  }

  template <typename Value>
  Value Field(std::uint32_t tag) const {
    Value value = {};
    EXPECT_EQ(TIFFGetField(tiff.get(), tag, &value), 1);
    return value;
  }

  const Testing::TemporaryFolder folder;
  const cv::Mat picture = Testing::DrawnPictureWithHoles({301, 400});
  Tiff tiff{nullptr, TIFFClose};
};

TEST_F(TiffWithAlpha, SaysThatItIsStraight) {
  ASSERT_NE(tiff, nullptr);
  std::uint16_t count = 0;
  const std::uint16_t* kinds = nullptr;
  ASSERT_EQ(TIFFGetField(tiff.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds), 1);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(kinds[0], EXTRASAMPLE_UNASSALPHA);
  std::vector<cv::Vec4b> row(301);
  ASSERT_EQ(TIFFReadScanline(tiff.get(), row.data(), 0, 0), 1);
  EXPECT_EQ(row[0], cv::Vec4b(0, 0, 0, 0));
  EXPECT_EQ(row[80], cv::Vec4b(120, 60, 0, 128));
  EXPECT_EQ(row[300], picture.at<cv::Vec4b>(0, 300));
}

TEST_F(TiffWithAlpha, TellsItsResolutionInInches) {
  EXPECT_EQ(Field<std::uint16_t>(TIFFTAG_RESOLUTIONUNIT), RESUNIT_INCH);
  EXPECT_NEAR(Field<float>(TIFFTAG_XRESOLUTION), 72, 0.001);
  EXPECT_NEAR(Field<float>(TIFFTAG_YRESOLUTION), 96, 0.001);
}

}  // namespace
}  // namespace ScrollingCapture
