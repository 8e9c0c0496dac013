#include <limits>

#include <gmock/gmock.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using Program::Failed;
using Program::PictureFormat;
using Program::PictureFormatOf;
using Program::RequireHolds;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int Most = std::numeric_limits<int>::max();

TEST(PictureFormat, FollowsTheExtension) {
  EXPECT_EQ(PictureFormatOf("a/page.PNG").kind, PictureFormat::Png);
  EXPECT_EQ(PictureFormatOf("page.tif").kind, PictureFormat::Tiff);
  EXPECT_EQ(PictureFormatOf("page.tiff").kind, PictureFormat::Tiff);
  EXPECT_EQ(PictureFormatOf("page.bmp").kind, PictureFormat::Bmp);
  EXPECT_EQ(PictureFormatOf("page.webp").kind, PictureFormat::WebP);
  EXPECT_EQ(PictureFormatOf("page.jpg").kind, PictureFormat::Jpeg);
  EXPECT_EQ(PictureFormatOf("page.png.jpeg").kind, PictureFormat::Jpeg);
}

TEST(PictureFormat, OfStandardOutputIsPng) {
  EXPECT_EQ(PictureFormatOf("-").kind, PictureFormat::Png);
}

TEST(PictureFormat, OfAnotherExtensionIsUnknown) {
  EXPECT_THROW(PictureFormatOf("page.gif"), BadInput);
  EXPECT_THROW(PictureFormatOf("page"), BadInput);
}

struct Size {
  const char* name;
  std::string path;
  cv::Size size;
};

void PrintTo(const Size& size, std::ostream* stream) { *stream << size.name; }

class Largest : public ::testing::TestWithParam<Size> {};

TEST_P(Largest, IsHeld) {
  EXPECT_NO_THROW(RequireHolds(PictureFormatOf(GetParam().path), GetParam().size, "p"));
}

INSTANTIATE_TEST_SUITE_P(Formats, Largest,
                         ::testing::Values(Size{"PngRows", "p.png", {64, Most}},
                                           Size{"PngColumns", "p.png", {Most, 1}},
                                           Size{"TiffRows", "p.tif", {64, Most}},
                                           Size{"BmpRows", "p.bmp", {1, 357902976}},
                                           Size{"WebP", "p.webp", {16383, 16383}},
                                           Size{"Jpeg", "p.jpg", {65500, 65500}}),
                         [](const auto& size) { return std::string(size.param.name); });

struct Excess {
  const char* name;
  std::string path;
  cv::Size size;
  const char* limit;
  const char* advice;
};

void PrintTo(const Excess& excess, std::ostream* stream) { *stream << excess.name; }

class TooLarge : public ::testing::TestWithParam<Excess> {
 protected:
  static std::string Complaint() {
    try {
      RequireHolds(PictureFormatOf(GetParam().path), GetParam().size, GetParam().path);
    } catch (const Failed& failure) {
      return failure.what();
    }
    return "";
  }
};

using TooTall = TooLarge;
using TooWide = TooLarge;

TEST_P(TooTall, IsToldWithTheSplitAndTheFormatThatWouldDo) {
  EXPECT_THAT(Complaint(), AllOf(HasSubstr("'" + GetParam().path + "'"),
                                 HasSubstr(GetParam().limit), HasSubstr(GetParam().advice)));
}

INSTANTIATE_TEST_SUITE_P(Formats, TooTall,
                         ::testing::Values(Excess{"Jpeg",
                                                  "p.jpg",
                                                  {100, 65501},
                                                  "at most 65500 rows",
                                                  "--split 65500, or write a PNG file (.png)"},
                                           Excess{"WebP",
                                                  "p.webp",
                                                  {100, 16384},
                                                  "at most 16383 rows",
                                                  "--split 16383, or write a PNG file (.png)"},
                                           Excess{"Bmp",
                                                  "p.bmp",
                                                  {1000, 720000},
                                                  "bytes of pixels",
                                                  "--split 715090, or write a PNG file (.png)"}),
                         [](const auto& excess) { return std::string(excess.param.name); });

TEST_P(TooWide, IsToldWithAFormatThatWouldDoButWithoutASplit) {
  EXPECT_THAT(Complaint(), AllOf(HasSubstr(GetParam().limit), HasSubstr(GetParam().advice),
                                 Not(HasSubstr("--split"))));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, TooWide,
    ::testing::Values(Excess{"Jpeg", "p.jpg", {65501, 1}, "65500 rows or columns", "(.png)"},
                      Excess{"WebP", "p.webp", {16384, 1}, "16383 rows or columns", "(.png)"}),
    [](const auto& excess) { return std::string(excess.param.name); });

}  // namespace
}  // namespace ScrollingCapture
