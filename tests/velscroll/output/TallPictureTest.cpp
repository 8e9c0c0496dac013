// Pictures with more rows than readers take unless they are told to, written and read row by row.

#include <csetjmp>
#include <cstdio>
#include <memory>
#include <png.h>
#include <tiffio.h>

#include <gmock/gmock.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/output/MemorySink.h>
#include <velscroll/output/PictureWriting.h>

namespace ScrollingCapture {
namespace {

using Program::Picture;
using Program::PictureOutput;

const cv::Size Tall(64, 1200000);

/// A row's pixels tell its number.
void FillRow(int row, cv::Vec4b* pixels) {
  for (int column = 0; column < Tall.width; ++column) {
    const auto number =
        static_cast<unsigned int>(row) * 31 + static_cast<unsigned int>(column / 16);
    pixels[column] = {static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8U),
                      static_cast<unsigned char>(number >> 16U), 255};
  }
}

cv::Mat RenderNumbers(const cv::Rect& area) {
  cv::Mat rows(area.size(), CV_8UC4);
  for (int row = 0; row < area.height; ++row) {
    FillRow(area.y + row, rows.ptr<cv::Vec4b>(row));
  }
  return rows;
}

void WriteTall(const std::string& path) {
  PictureOutput output;
  output.path = path;
  output.settings.threads = 2;
  const auto files = StagePicture({Tall, true, RenderNumbers}, output, [](int) {});
  ASSERT_EQ(files.size(), 1U);
  files.front()->Commit();
}

class Rows {
 public:
  void Compare(const unsigned char* pixels) {
    FillRow(next++, expected.data());
    for (int column = 0; column < Tall.width; ++column) {
      for (int channel = 0; channel < 3; ++channel) {
        wrong += static_cast<int>(expected[static_cast<size_t>(column)][channel] !=
                                  pixels[3 * column + channel]);
      }
    }
  }
  int Wrong() const { return wrong; }

 private:
  std::vector<cv::Vec4b> expected = std::vector<cv::Vec4b>(static_cast<size_t>(Tall.width));
  int next = 0;
  int wrong = 0;
};

TEST(TallPicture, AsPngIsReadBackRowByRow) {
  const Testing::TemporaryFolder folder;
  const std::string path = folder.Prefix() + "tall.png";
  ASSERT_NO_FATAL_FAILURE(WriteTall(path));
  const std::unique_ptr<std::FILE, decltype(&std::fclose)> file(std::fopen(path.c_str(), "rb"),
                                                                std::fclose);
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  std::vector<unsigned char> row(3 * static_cast<size_t>(Tall.width));
  Rows rows;
  if (setjmp(png_jmpbuf(png)) != 0) {
    FAIL() << "libpng does not read it";
  }
  png_init_io(png, file.get());
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_read_info(png, info);
  EXPECT_EQ(png_get_image_height(png, info), static_cast<png_uint_32>(Tall.height));
  EXPECT_EQ(png_get_color_type(png, info), PNG_COLOR_TYPE_RGB);
  for (int i = 0; i < Tall.height; ++i) {
    png_read_row(png, row.data(), nullptr);
    rows.Compare(row.data());
  }
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  EXPECT_EQ(rows.Wrong(), 0);
}

TEST(TallPicture, AsTiffIsReadBackRowByRow) {
  const Testing::TemporaryFolder folder;
  const std::string path = folder.Prefix() + "tall.tif";
  ASSERT_NO_FATAL_FAILURE(WriteTall(path));
  const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
  ASSERT_NE(tiff, nullptr);
  EXPECT_EQ(TIFFIsBigTIFF(tiff.get()), 0);
  std::vector<unsigned char> row(3 * static_cast<size_t>(Tall.width));
  Rows rows;
  for (int i = 0; i < Tall.height; ++i) {
    ASSERT_EQ(TIFFReadScanline(tiff.get(), row.data(), static_cast<uint32_t>(i), 0), 1);
    rows.Compare(row.data());
  }
  EXPECT_EQ(rows.Wrong(), 0);
}

/// The version in the header: 42, or 43 for BigTIFF.
int TiffVersionFor(const cv::Size& size) {
  Testing::MemorySink sink;
  const auto writer =
      MakeRowWriter(Program::PictureFormatOf("p.tif"), {"p.tif", size, true, {}}, {}, sink);
  return sink.Bytes().at(2);
}

TEST(TallPicture, AsTiffIsABigTiffOnlyWhenItMightNeedToBe) {
  EXPECT_EQ(TiffVersionFor({10000, 80000}), 42);
  EXPECT_EQ(TiffVersionFor({10000, 130000}), 43);
}

}  // namespace
}  // namespace ScrollingCapture
