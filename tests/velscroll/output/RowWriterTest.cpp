#include <stdexcept>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/output/ColourProfile.h>
#include <testkit/output/DrawnPicture.h>
#include <testkit/output/MemorySink.h>
#include <velscroll/output/RowWriter.h>
#include <velscroll/pixels/Premultiplication.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Program::EncodingSettings;
using Program::Failed;
using Program::MakeRowWriter;
using Program::PictureFormatOf;
using Program::PictureHeader;
using Program::RowWriter;
using Testing::DrawnPicture;
using Testing::DrawnPictureWithHoles;
using Testing::MemorySink;
using Testing::SameBits;

using Bytes = std::vector<unsigned char>;

const cv::Size Size(301, 900);

void WriteStrips(RowWriter& writer, const cv::Mat& picture, int stripRows) {
  for (int row = 0; row < picture.rows; row += stripRows) {
    writer.Write(picture.rowRange(row, std::min(row + stripRows, picture.rows)));
  }
  writer.Finish();
}

struct Encoding {
  std::string extension;
  EncodingSettings settings = {};
  int stripRows = 100;
  bool opaque = true;
  Program::ImageMetadata metadata = {};
};

void EncodeInto(MemorySink& sink, const cv::Mat& picture, const Encoding& encoding) {
  const PictureHeader header = {"page" + encoding.extension, picture.size(), encoding.opaque,
                                encoding.metadata};
  const auto writer = MakeRowWriter(PictureFormatOf(header.name), header, encoding.settings, sink);
  WriteStrips(*writer, picture, encoding.stripRows);
}

Bytes Encoded(const cv::Mat& picture, const Encoding& encoding) {
  MemorySink sink;
  EncodeInto(sink, picture, encoding);
  return sink.Bytes();
}

/// As OpenCV reads it, but with red first.
cv::Mat Decoded(const Bytes& file) {
  const cv::Mat read = cv::imdecode(file, cv::IMREAD_UNCHANGED);
  cv::Mat picture;
  cv::cvtColor(read, picture, read.channels() == 4 ? cv::COLOR_BGRA2RGBA : cv::COLOR_BGR2RGB);
  return picture;
}

cv::Mat WithoutAlpha(const cv::Mat& picture) {
  cv::Mat colours;
  cv::cvtColor(picture, colours, cv::COLOR_RGBA2RGB);
  return colours;
}

std::string NameOfExtension(const ::testing::TestParamInfo<const char*>& extension) {
  return extension.param + 1;
}

class EveryFormat : public ::testing::TestWithParam<const char*> {};
class LosslessFormat : public EveryFormat {};
class FormatWithAlpha : public EveryFormat {};
class FormatWithoutAlpha : public EveryFormat {};

INSTANTIATE_TEST_SUITE_P(RowWriter, EveryFormat,
                         ::testing::Values(".png", ".tif", ".bmp", ".webp", ".jpg"),
                         NameOfExtension);
INSTANTIATE_TEST_SUITE_P(RowWriter, LosslessFormat,
                         ::testing::Values(".png", ".tif", ".bmp", ".webp"), NameOfExtension);
INSTANTIATE_TEST_SUITE_P(RowWriter, FormatWithAlpha, ::testing::Values(".png", ".webp"),
                         NameOfExtension);
INSTANTIATE_TEST_SUITE_P(RowWriter, FormatWithoutAlpha, ::testing::Values(".bmp", ".jpg"),
                         NameOfExtension);

TEST_P(LosslessFormat, KeepsEveryPixel) {
  const cv::Mat picture = DrawnPicture(Size);
  EXPECT_TRUE(SameBits(Decoded(Encoded(picture, {GetParam()})), WithoutAlpha(picture)));
}

TEST_P(LosslessFormat, KeepsEveryPixelOfOneRowAndOfOneColumn) {
  for (const cv::Size& size : {cv::Size(301, 1), cv::Size(1, 301), cv::Size(1, 1)}) {
    const cv::Mat picture = Testing::NoiseCapture(size, 8);
    EXPECT_TRUE(SameBits(Decoded(Encoded(picture, {GetParam()})), WithoutAlpha(picture))) << size;
  }
}

TEST_P(LosslessFormat, KeepsEveryPixelOfRowsThatAreLongerThanABlock) {
  const cv::Mat picture =
      Testing::NoiseCapture({std::string(GetParam()) == ".webp" ? 16383 : 300000, 5}, 9);
  EXPECT_TRUE(SameBits(Decoded(Encoded(picture, {GetParam()})), WithoutAlpha(picture)));
}

/// Straight alpha in the file, from which the premultiplied colours come back.
TEST_P(FormatWithAlpha, KeepsTransparency) {
  const cv::Mat picture = DrawnPictureWithHoles(Size);
  cv::Mat read = Decoded(Encoded(picture, {GetParam(), {}, 100, false}));
  ASSERT_EQ(read.type(), CV_8UC4);
  EXPECT_EQ(read.at<cv::Vec4b>(0, 0), cv::Vec4b(0, 0, 0, 0));
  EXPECT_EQ(read.at<cv::Vec4b>(0, Size.width / 4), cv::Vec4b(120, 60, 0, 128));
  Program::Premultiply(read);
  EXPECT_TRUE(SameBits(read, picture));
}

TEST_P(FormatWithAlpha, HasNoneOnABackground) {
  const cv::Mat picture = DrawnPictureWithHoles(Size);
  EncodingSettings settings;
  settings.background = Program::Colour{10, 20, 30};
  const cv::Mat read = Decoded(Encoded(picture, {GetParam(), settings, 100, false}));
  EXPECT_TRUE(SameBits(read, Program::LayOn(*settings.background, picture)));
}

TEST_P(FormatWithoutAlpha, IsWhiteWhereThePictureIsTransparent) {
  const cv::Mat read = Decoded(Encoded(DrawnPictureWithHoles(Size), {GetParam(), {}, 100, false}));
  ASSERT_EQ(read.type(), CV_8UC3);
  EXPECT_EQ(read.at<cv::Vec3b>(0, 0), cv::Vec3b(255, 255, 255));
}

TEST_P(FormatWithoutAlpha, ShowsTheBackgroundWhereThePictureIsTransparent) {
  EncodingSettings settings;
  settings.background = Program::Colour{200, 100, 50};
  const cv::Mat read =
      Decoded(Encoded(DrawnPictureWithHoles(Size), {GetParam(), settings, 100, false}));
  EXPECT_LE(cv::norm(read.at<cv::Vec3b>(2, 2), cv::Vec3b(200, 100, 50), cv::NORM_INF), 1);
}

TEST_P(EveryFormat, IsTheSameForAnyNumberOfThreadsAndAnyRowsAtATime) {
  const cv::Mat picture = DrawnPicture({1200, 1500});
  const Bytes file = Encoded(picture, {GetParam()});
  for (const unsigned int threads : {1U, 2U, 5U}) {
    for (const int stripRows : {7, 133, 1500}) {
      EncodingSettings settings;
      settings.threads = threads;
      EXPECT_EQ(Encoded(picture, {GetParam(), settings, stripRows}), file)
          << threads << " threads, " << stripRows << " rows";
    }
  }
}

class Faults : public ::testing::TestWithParam<std::tuple<const char*, unsigned int>> {
 protected:
  Encoding Task() const {
    EncodingSettings settings;
    settings.threads = std::get<1>(GetParam());
    return {std::get<0>(GetParam()),
            settings,
            100,
            true,
            {Program::Resolution{2835, 2835}, Testing::ColourProfile("RGB ", 3000)}};
  }
};

INSTANTIATE_TEST_SUITE_P(RowWriter, Faults,
                         ::testing::Combine(::testing::Values(".png", ".tif", ".bmp", ".webp",
                                                              ".jpg"),
                                            ::testing::Values(1U, 3U)),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param) + 1) + "On" +
                                  std::to_string(std::get<1>(test.param));
                         });

TEST_P(Faults, OfEveryWriteAreThrown) {
  const cv::Mat picture = DrawnPicture({601, 900});
  MemorySink whole;
  EncodeInto(whole, picture, Task());
  ASSERT_GT(whole.Calls(), 0U);
  for (size_t passing = 0; passing < whole.Calls(); ++passing) {
    MemorySink sink(passing);
    EXPECT_THROW(EncodeInto(sink, picture, Task()), Failed) << passing;
    EXPECT_EQ(sink.Calls(), passing + 1) << "nothing is written after a failure";
  }
}

/// As when the source of the rows fails.
TEST_P(Faults, BesideTheWriterEndItWithoutTheRestOfTheFile) {
  const cv::Mat picture = DrawnPicture({601, 900});
  MemorySink whole;
  EncodeInto(whole, picture, Task());
  MemorySink sink;
  const Encoding task = Task();
  const PictureHeader header = {"p", picture.size(), true, task.metadata};
  auto writer = MakeRowWriter(PictureFormatOf("p" + task.extension), header, task.settings, sink);
  writer->Write(picture.rowRange(0, 700));
  writer.reset();
  EXPECT_LT(sink.Calls(), whole.Calls());
}

TEST(RowWriter, OfTiffWritesNothingMoreWhenItIsAbandoned) {
  const cv::Mat picture = DrawnPicture(Size);
  MemorySink sink;
  auto writer = MakeRowWriter(PictureFormatOf("p.tif"), {"p", Size, true, {}}, {}, sink);
  writer->Write(picture.rowRange(0, 100));
  writer->Write(picture.rowRange(100, 200));
  const size_t calls = sink.Calls();
  writer.reset();
  EXPECT_EQ(sink.Calls(), calls);
}

TEST_P(EveryFormat, TakesNoOtherRowsThanThePictureHas) {
  MemorySink sink;
  const auto writer = MakeRowWriter(PictureFormatOf(std::string("p") + GetParam()),
                                    {"p", {10, 10}, true, {}}, {}, sink);
  EXPECT_THROW(writer->Write(cv::Mat(1, 9, CV_8UC4)), std::logic_error);
  EXPECT_THROW(writer->Write(cv::Mat(1, 10, CV_8UC3)), std::logic_error);
  EXPECT_THROW(writer->Write(cv::Mat(11, 10, CV_8UC4)), std::logic_error);
  writer->Write(cv::Mat(9, 10, CV_8UC4, cv::Scalar::all(255)));
  EXPECT_THROW(writer->Finish(), std::logic_error);
  EXPECT_THROW(writer->Write(cv::Mat(2, 10, CV_8UC4)), std::logic_error);
}

TEST(RowWriter, OfBmpWritesWhatOpenCvWrites) {
  for (const int width : {300, 301, 302, 303}) {
    const cv::Mat picture = DrawnPicture({width, 50});
    cv::Mat reversed;
    cv::cvtColor(picture, reversed, cv::COLOR_RGBA2BGR);
    Bytes expected;
    cv::imencode(".bmp", reversed, expected);
    const cv::Mat read = Decoded(Encoded(picture, {".bmp"}));
    EXPECT_EQ(Encoded(picture, {".bmp"}).size(), expected.size());
    EXPECT_TRUE(SameBits(read, WithoutAlpha(picture)));
  }
}

TEST(RowWriter, OfPngMakesSmallerFilesOnHigherLevels) {
  const cv::Mat picture = DrawnPicture(Size);
  size_t previous = static_cast<size_t>(Size.area()) * 4;
  for (const int level : {0, 1, 9}) {
    EncodingSettings settings;
    settings.pngLevel = level;
    const Bytes file = Encoded(picture, {".png", settings});
    EXPECT_TRUE(SameBits(Decoded(file), WithoutAlpha(picture)));
    EXPECT_LT(file.size(), previous);
    previous = file.size();
  }
}

TEST(RowWriter, OfJpegComesNearerToThePictureOnHigherQuality) {
  const cv::Mat picture = DrawnPicture(Size);
  double previous = std::numeric_limits<double>::max();
  for (const int quality : {30, 80, 95, 100}) {
    EncodingSettings settings;
    settings.jpegQuality = quality;
    const double distance =
        cv::norm(Decoded(Encoded(picture, {".jpg", settings})), WithoutAlpha(picture), cv::NORM_L2);
    EXPECT_LT(distance, previous) << quality;
    previous = distance;
  }
}

/// Red and blue of equal brightness in turn, which half of the colour resolution would mix.
TEST(RowWriter, OfJpegKeepsColouredLinesApartAtTheQualityOfTheStart) {
  cv::Mat picture(32, 32, CV_8UC4, cv::Scalar(200, 40, 40, 255));
  for (int column = 0; column < picture.cols; column += 2) {
    picture.col(column).setTo(cv::Scalar(40, 40, 200, 255));
  }
  const cv::Mat read = Decoded(Encoded(picture, {".jpg"}));
  EXPECT_LT(cv::norm(read, WithoutAlpha(picture), cv::NORM_INF), 60);
}

}  // namespace
}  // namespace ScrollingCapture
