// Images in the caller's memory: every format, into a session and out of a picture.

#include <tuple>

#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>
#include <testkit/memory/PeakMemory.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::Owned;
using Testing::SameBits;

struct Format {
  vel_pixel_format format;
  vel_alpha alpha;
  const char* name;
};

int ChannelsOf(vel_pixel_format format) {
  return format == VEL_GREY ? 1 : format == VEL_RGB || format == VEL_BGR ? 3 : 4;
}

/// What a session makes of a single image.
Owned<vel_picture> Taken(const vel_source_image& image) {
  const auto session = Testing::MakeSession();
  EXPECT_EQ(vel_session_add(session.get(), &image, nullptr, nullptr), VEL_OK);
  return Testing::PartOf(Testing::Stitch(session.get()).get());
}

cv::Mat Noise(int channels) {
  cv::Mat pixels(37, 53, CV_8UC(channels));
  cv::RNG(5).fill(pixels, cv::RNG::UNIFORM, 0, 256);
  return pixels;
}

class ImageFormats : public testing::TestWithParam<Format> {};

TEST_P(ImageFormats, OpaquePixelsComeBackAsTheyWere) {
  const auto [format, alpha, name] = GetParam();
  cv::Mat pixels = Noise(ChannelsOf(format));
  if (pixels.channels() == 4) {
    cv::insertChannel(cv::Mat(pixels.size(), CV_8U, cv::Scalar(255)), pixels, 3);
  }
  const auto picture = Taken(Testing::SourceOf(pixels, format, alpha));
  cv::Mat read(pixels.size(), pixels.type());
  const vel_target_image image = Testing::TargetOf(read, format, alpha);
  ASSERT_EQ(vel_picture_read(picture.get(), 0, 0, &image), VEL_OK);
  EXPECT_TRUE(SameBits(read, pixels));
  int32_t opaque = 0;
  EXPECT_EQ(vel_picture_is_opaque(picture.get(), &opaque), VEL_OK);
  EXPECT_EQ(opaque, 1);
}

TEST_P(ImageFormats, GapsBetweenRowsAreNeitherReadNorWritten) {
  const auto [format, alpha, name] = GetParam();
  const int channels = ChannelsOf(format);
  cv::Mat wide(20, 40, CV_8UC(channels), cv::Scalar::all(255));
  wide.colRange(0, 20).setTo(cv::Scalar(10, 20, 30, 255));
  const auto picture = Taken(Testing::SourceOf(wide.colRange(0, 20), format, alpha));
  cv::Mat read(20, 40, CV_8UC(channels), cv::Scalar::all(7));
  cv::Mat left = read.colRange(0, 20);
  const vel_target_image image = Testing::TargetOf(left, format, alpha);
  ASSERT_EQ(vel_picture_read(picture.get(), 0, 0, &image), VEL_OK);
  EXPECT_TRUE(SameBits(left, wide.colRange(0, 20)));
  EXPECT_EQ(cv::norm(read.colRange(20, 40), cv::Mat(20, 20, CV_8UC(channels), cv::Scalar::all(7)),
                     cv::NORM_INF),
            0);
}

INSTANTIATE_TEST_SUITE_P(, ImageFormats,
                         testing::Values(Format{VEL_RGBA, VEL_PREMULTIPLIED, "Rgba"},
                                         Format{VEL_RGBA, VEL_STRAIGHT, "StraightRgba"},
                                         Format{VEL_RGBA, VEL_UNUSED, "Rgbx"},
                                         Format{VEL_BGRA, VEL_PREMULTIPLIED, "Bgra"},
                                         Format{VEL_BGRA, VEL_STRAIGHT, "StraightBgra"},
                                         Format{VEL_BGRA, VEL_UNUSED, "Bgrx"},
                                         Format{VEL_RGB, VEL_PREMULTIPLIED, "Rgb"},
                                         Format{VEL_BGR, VEL_PREMULTIPLIED, "Bgr"},
                                         Format{VEL_GREY, VEL_PREMULTIPLIED, "Grey"}),
                         [](const auto& test) { return test.param.name; });

/// One pixel: what is read in one format, and what is to be written of it in another.
struct Pixel {
  vel_pixel_format fromFormat;
  vel_alpha fromAlpha;
  cv::Vec4b from;
  vel_pixel_format toFormat;
  vel_alpha toAlpha;
  cv::Vec4b to;
};

class PixelConversion : public testing::TestWithParam<Pixel> {};

TEST_P(PixelConversion, GivesThePixel) {
  const Pixel& pixel = GetParam();
  const vel_source_image source = {sizeof source,    pixel.from.val, 0, 1, 1,
                                   pixel.fromFormat, pixel.fromAlpha};
  const auto picture = Taken(source);
  cv::Vec4b to;
  const vel_target_image target = {sizeof target, to.val, 0, 1, 1, pixel.toFormat, pixel.toAlpha};
  ASSERT_EQ(vel_picture_read(picture.get(), 0, 0, &target), VEL_OK);
  EXPECT_EQ(to, pixel.to);
}

INSTANTIATE_TEST_SUITE_P(
    , PixelConversion,
    testing::Values(
        Pixel{VEL_RGBA,
              VEL_STRAIGHT,
              {200, 100, 50, 128},
              VEL_RGBA,
              VEL_PREMULTIPLIED,
              {100, 50, 25, 128}},
        Pixel{VEL_BGRA,
              VEL_STRAIGHT,
              {200, 100, 50, 128},
              VEL_RGBA,
              VEL_PREMULTIPLIED,
              {25, 50, 100, 128}},
        Pixel{VEL_RGBA,
              VEL_PREMULTIPLIED,
              {100, 50, 25, 128},
              VEL_BGRA,
              VEL_STRAIGHT,
              {50, 100, 199, 128}},
        Pixel{VEL_RGBA,
              VEL_PREMULTIPLIED,
              {100, 50, 25, 128},
              VEL_RGB,
              VEL_PREMULTIPLIED,
              {227, 177, 152, 0}},
        Pixel{VEL_RGBA,
              VEL_PREMULTIPLIED,
              {100, 50, 25, 128},
              VEL_BGRA,
              VEL_UNUSED,
              {152, 177, 227, 255}},
        Pixel{
            VEL_RGBA, VEL_PREMULTIPLIED, {0, 0, 0, 0}, VEL_GREY, VEL_PREMULTIPLIED, {255, 0, 0, 0}},
        Pixel{VEL_RGBA, VEL_UNUSED, {9, 8, 7, 0}, VEL_RGBA, VEL_PREMULTIPLIED, {9, 8, 7, 255}},
        Pixel{
            VEL_GREY, VEL_PREMULTIPLIED, {77, 0, 0, 0}, VEL_BGRA, VEL_STRAIGHT, {77, 77, 77, 255}},
        Pixel{VEL_RGB,
              VEL_PREMULTIPLIED,
              {255, 0, 0, 0},
              VEL_GREY,
              VEL_PREMULTIPLIED,
              {76, 0, 0, 0}}));

struct Refusal {
  vel_source_image image;
  const char* reason;
};

constexpr unsigned char SomePixels[64] = {};

class RefusedImage : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedImage, IsToldAndNotRead) {
  const auto session = Testing::MakeSession();
  EXPECT_EQ(vel_session_add(session.get(), &GetParam().image, nullptr, nullptr),
            VEL_INVALID_ARGUMENT);
  EXPECT_THAT(Testing::MessageOf(session.get()), testing::HasSubstr(GetParam().reason));
}

constexpr size_t Size = sizeof(vel_source_image);
constexpr size_t Huge = ~size_t{0};

INSTANTIATE_TEST_SUITE_P(
    , RefusedImage,
    testing::Values(Refusal{{Size, nullptr, 0, 4, 4, VEL_RGBA, 0}, "pixels of an image is NULL"},
                    Refusal{{Size, SomePixels, 0, 0, 4, VEL_RGBA, 0}, "width"},
                    Refusal{{Size, SomePixels, 0, 4, 0, VEL_RGBA, 0}, "height"},
                    Refusal{{Size, SomePixels, 0, -1, 4, VEL_RGBA, 0}, "width"},
                    Refusal{{Size, SomePixels, 0, 4, INT32_MIN, VEL_RGBA, 0}, "height"},
                    Refusal{{Size, SomePixels, 0, INT32_MAX, 1, VEL_RGBA, 0}, "width"},
                    Refusal{{Size, SomePixels, 0, 1, INT32_MAX, VEL_RGBA, 0}, "height"},
                    Refusal{{Size, SomePixels, 0, 1 << 20, 1 << 20, VEL_GREY, 0}, "height"},
                    Refusal{{Size, SomePixels, 15, 4, 4, VEL_RGBA, 0}, "stride"},
                    Refusal{{Size, SomePixels, Huge, 4, 4, VEL_RGBA, 0}, "stride"},
                    Refusal{{Size, SomePixels, Huge / 4, 4, 4, VEL_RGBA, 0}, "stride"},
                    Refusal{{Size, SomePixels, 0, 4, 4, -1, 0}, "pixel format"},
                    Refusal{{Size, SomePixels, 0, 4, 4, 5, 0}, "pixel format"},
                    Refusal{{Size, SomePixels, 0, 4, 4, VEL_RGBA, 3}, "alpha"},
                    Refusal{{0, SomePixels, 0, 4, 4, VEL_RGBA, 0}, "struct_size"},
                    Refusal{{Huge, SomePixels, 0, 4, 4, VEL_RGBA, 0}, "struct_size"}));

TEST(Image, WithAColourAboveItsPremultipliedAlphaIsRefused) {
  const auto session = Testing::MakeSession();
  cv::Mat pixels(8, 8, CV_8UC4, cv::Scalar(100, 100, 100, 255));
  pixels.at<cv::Vec4b>(7, 7) = {0, 0, 101, 100};
  const vel_source_image image = Testing::SourceOf(pixels);
  EXPECT_EQ(vel_session_add(session.get(), &image, nullptr, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_THAT(Testing::MessageOf(session.get()), testing::HasSubstr("straight, or unused"));
}

TEST(Image, IsCopiedOnce) {
  const cv::Mat pixels(256, 1024, CV_8UC4, cv::Scalar::all(9));
  for (const vel_alpha alpha : {VEL_PREMULTIPLIED, VEL_STRAIGHT, VEL_UNUSED}) {
    const auto session = Testing::MakeSession();
    const vel_source_image image = Testing::SourceOf(pixels, VEL_BGRA, alpha);
    const Testing::PeakMemory memory;
    ASSERT_EQ(vel_session_add(session.get(), &image, nullptr, nullptr), VEL_OK);
    EXPECT_EQ(memory.MiB(), 1);
  }
}

TEST(Image, IsTheCallersAgainAfterTheCall) {
  const cv::Mat pixels = Testing::NoiseCapture({30, 30}, 1);
  const auto session = Testing::MakeSession();
  cv::Mat lent = pixels.clone();
  Testing::Add(session.get(), lent);
  lent.setTo(cv::Scalar::all(0));
  const auto stitched = Testing::Stitch(session.get());
  EXPECT_TRUE(SameBits(Testing::Whole(Testing::PartOf(stitched.get()).get()), pixels));
}

}  // namespace
}  // namespace ScrollingCapture
