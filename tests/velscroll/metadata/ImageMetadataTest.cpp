#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <testkit/output/ColourProfile.h>
#include <testkit/output/DrawnPicture.h>
#include <testkit/output/MemorySink.h>
#include <velscroll/metadata/ImageMetadata.h>
#include <velscroll/output/RowWriter.h>

namespace ScrollingCapture {
namespace {

using Program::ImageMetadata;
using Program::MetadataOf;
using Program::PictureFormatOf;
using Program::Resolution;
using Testing::ColourProfile;
using Testing::MemorySink;

using Bytes = std::vector<unsigned char>;

constexpr double PerMetre = 1 / 0.0254;

Bytes FileWith(const std::string& extension, const ImageMetadata& metadata) {
  const cv::Mat picture = Testing::DrawnPicture({60, 40});
  MemorySink sink;
  const auto writer = MakeRowWriter(PictureFormatOf("p" + extension),
                                    {"p", picture.size(), true, metadata}, {}, sink);
  writer->Write(picture);
  writer->Finish();
  return sink.Bytes();
}

class CarriedOver : public ::testing::TestWithParam<const char*> {};

TEST_P(CarriedOver, IsTheColourProfile) {
  const Bytes file = FileWith(GetParam(), {std::nullopt, ColourProfile("RGB ", 100000)});
  EXPECT_EQ(MetadataOf(file).colourProfile, ColourProfile("RGB ", 100000));
}

TEST_P(CarriedOver, WithoutAnythingIsNothing) {
  const ImageMetadata metadata = MetadataOf(FileWith(GetParam(), {}));
  EXPECT_FALSE(metadata.resolution);
  EXPECT_TRUE(metadata.colourProfile.empty());
}

/// Whatever of a file is missing, what is left is read or is not, but nothing else happens.
TEST_P(CarriedOver, FromAFileThatIsCutShortIsTheWholeProfileOrNone) {
  const Bytes profile = ColourProfile("RGB ", 300);
  const Bytes file = FileWith(GetParam(), {Resolution{2835, 2835}, profile});
  for (size_t length = 0; length < file.size(); ++length) {
    const ImageMetadata metadata =
        MetadataOf({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)});
    EXPECT_TRUE(metadata.colourProfile.empty() || metadata.colourProfile == profile) << length;
  }
}

TEST_P(CarriedOver, IsNoProfileOfAnotherColourSpace) {
  Bytes file = FileWith(GetParam(), {std::nullopt, ColourProfile("GRAY", 300)});
  EXPECT_TRUE(MetadataOf(file).colourProfile.empty());
}

INSTANTIATE_TEST_SUITE_P(Formats, CarriedOver, ::testing::Values(".png", ".jpg", ".tif", ".webp"),
                         [](const auto& format) { return std::string(format.param + 1); });

class DenselyShown : public ::testing::TestWithParam<const char*> {};

TEST_P(DenselyShown, StaysSo) {
  const Resolution resolution = {144 * PerMetre, 96 * PerMetre};
  const ImageMetadata metadata = MetadataOf(FileWith(GetParam(), {resolution, {}}));
  ASSERT_TRUE(metadata.resolution);
  EXPECT_NEAR(metadata.resolution->horizontal, resolution.horizontal, 0.5);
  EXPECT_NEAR(metadata.resolution->vertical, resolution.vertical, 0.5);
}

INSTANTIATE_TEST_SUITE_P(Formats, DenselyShown, ::testing::Values(".png", ".jpg", ".tif", ".bmp"),
                         [](const auto& format) { return std::string(format.param + 1); });

/// Puts bytes in the place of the only ones that are like others.
Bytes Replaced(Bytes file, const Bytes& old, const Bytes& replacement) {
  const auto found = std::search(file.begin(), file.end(), old.begin(), old.end());
  EXPECT_NE(found, file.end());
  std::copy(replacement.begin(), replacement.end(), found);
  return file;
}

TEST(ImageMetadata, OfJpegMayCountPixelsPerCentimetre) {
  const Bytes file = FileWith(".jpg", {Resolution{72 * PerMetre, 72 * PerMetre}, {}});
  const Bytes perInch = {'J', 'F', 'I', 'F', 0, 1, 1, 1, 0, 72, 0, 72};
  const Bytes perCentimetre = {'J', 'F', 'I', 'F', 0, 1, 1, 2, 0, 30, 0, 40};
  const ImageMetadata metadata = MetadataOf(Replaced(file, perInch, perCentimetre));
  ASSERT_TRUE(metadata.resolution);
  EXPECT_EQ(metadata.resolution->horizontal, 3000);
  EXPECT_EQ(metadata.resolution->vertical, 4000);
}

TEST(ImageMetadata, HasNoResolutionWhereJpegTellsTheShapeOfPixelsAlone) {
  const Bytes file = FileWith(".jpg", {Resolution{72 * PerMetre, 72 * PerMetre}, {}});
  const Bytes perInch = {'J', 'F', 'I', 'F', 0, 1, 1, 1, 0, 72, 0, 72};
  const Bytes shape = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 2};
  EXPECT_FALSE(MetadataOf(Replaced(file, perInch, shape)).resolution);
}

TEST(ImageMetadata, OfDamagedPngIsLeftOut) {
  const Bytes profile = ColourProfile("RGB ", 300);
  Bytes file = FileWith(".png", {Resolution{2835, 2835}, profile});
  const std::string name = "iCCP";
  const auto chunk = std::search(file.begin(), file.end(), name.begin(), name.end());
  ASSERT_NE(chunk, file.end());
  chunk[30] = static_cast<unsigned char>(~chunk[30]);
  EXPECT_TRUE(MetadataOf(file).colourProfile.empty());
}

TEST(ImageMetadata, OfOtherBytesIsNothing) {
  for (const std::string& text : {std::string(), std::string("B"), std::string("BM"),
                                  std::string("just a text"), std::string(100, 'I')}) {
    const ImageMetadata metadata = MetadataOf({text.begin(), text.end()});
    EXPECT_FALSE(metadata.resolution) << text;
    EXPECT_TRUE(metadata.colourProfile.empty()) << text;
  }
}

}  // namespace
}  // namespace ScrollingCapture
