#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <testkit/MatrixTesting.h>

#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>

#include "PoolTest.h"

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;

constexpr auto StraightAlpha = NSAlphaNonpremultipliedBitmapFormat;
constexpr auto AlphaFirst = NSAlphaFirstBitmapFormat;

struct Layout {
  const char* name;
  NSString* space;
  int bitsPerSample;
  int samplesPerPixel;
  BOOL hasAlpha = NO;
  int format = 0;
  BOOL isPlanar = NO;
  int bitsPerPixel = 0;
};
void PrintTo(const Layout& layout, std::ostream* stream) { *stream << layout.name; }

NSBitmapImageRep* BitmapOf(const cv::Size& size, const Layout& layout) {
  return
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                               pixelsWide:size.width
                                               pixelsHigh:size.height
                                            bitsPerSample:layout.bitsPerSample
                                          samplesPerPixel:layout.samplesPerPixel
                                                 hasAlpha:layout.hasAlpha
                                                 isPlanar:layout.isPlanar
                                           colorSpaceName:layout.space
                                             bitmapFormat:static_cast<NSBitmapFormat>(layout.format)
                                              bytesPerRow:0
                                             bitsPerPixel:layout.bitsPerPixel] autorelease];
}

void FillWithNoise(NSBitmapImageRep* bitmap) {
  unsigned char* planes[5] = {};
  [bitmap getBitmapDataPlanes:planes];
  const int bytes = static_cast<int>([bitmap bytesPerRow] * [bitmap pixelsHigh]);
  const int count = [bitmap isPlanar] ? static_cast<int>([bitmap samplesPerPixel]) : 1;
  for (int plane = 0; plane < count; ++plane) {
    cv::Mat noise(1, bytes, CV_8UC1, planes[plane]);
    cv::RNG(static_cast<unsigned>(plane) + 1).fill(noise, cv::RNG::UNIFORM, 0, 256);
  }
}

NSImage* ImageWith(const cv::Size& size, const std::vector<NSBitmapImageRep*>& bitmaps) {
  NSImage* const image =
      [[[NSImage alloc] initWithSize:NSMakeSize(size.width, size.height)] autorelease];
  for (NSBitmapImageRep* const bitmap : bitmaps) {
    [image addRepresentation:bitmap];
  }
  return image;
}

/// What AppKit says about each pixel's colour, premultiplied.
cv::Mat ColoursOf(NSBitmapImageRep* bitmap) {
  cv::Mat pixels(static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
                 CV_8UC4);
  for (int row = 0; row < pixels.rows; ++row) {
    for (int column = 0; column < pixels.cols; ++column) {
      NSColor* const colour =
          [[bitmap colorAtX:column y:row] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
      const double alpha = 255 * [colour alphaComponent];
      pixels.at<cv::Vec4b>(row, column) =
          cv::Vec4b(cv::Vec4d(alpha * [colour redComponent], alpha * [colour greenComponent],
                              alpha * [colour blueComponent], alpha));
    }
  }
  return pixels;
}

class BitmapLayouts : public Testing::PoolTest, public testing::WithParamInterface<Layout> {};

TEST_P(BitmapLayouts, GiveTheColoursThatAppKitSees) {
  NSBitmapImageRep* const bitmap = BitmapOf({37, 11}, GetParam());
  ASSERT_TRUE(bitmap != nil);
  FillWithNoise(bitmap);
  const cv::Mat pixels = [ImageWith({37, 11}, {bitmap}) CVMat];
  // Half a level rounds up here, and to the even level there.
  EXPECT_LE(cv::norm(pixels, ColoursOf(bitmap), cv::NORM_INF), 1);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    BitmapPixels, BitmapLayouts,
    testing::Values(
        Layout{"RGBA", NSDeviceRGBColorSpace, 8, 4, YES, StraightAlpha},
        Layout{"ARGB", NSDeviceRGBColorSpace, 8, 4, YES, StraightAlpha | AlphaFirst},
        Layout{"RGB", NSCalibratedRGBColorSpace, 8, 3},
        Layout{"RGBWithAnUnusedByte", NSDeviceRGBColorSpace, 8, 3, NO, 0, NO, 32},
        Layout{"RGBWithAnUnusedSample", NSDeviceRGBColorSpace, 8, 4},
        Layout{"PlanarRGB", NSDeviceRGBColorSpace, 8, 3, NO, 0, YES},
        Layout{"PlanarRGBA", NSDeviceRGBColorSpace, 8, 4, YES, StraightAlpha, YES},
        Layout{"PlanarARGB", NSDeviceRGBColorSpace, 8, 4, YES, StraightAlpha | AlphaFirst, YES},
        Layout{"Grey", NSDeviceWhiteColorSpace, 8, 1},
        Layout{"GreyWithAlpha", NSDeviceWhiteColorSpace, 8, 2, YES, StraightAlpha},
        Layout{"AlphaBeforeGrey", NSCalibratedWhiteColorSpace, 8, 2, YES, StraightAlpha | AlphaFirst},
        Layout{"PlanarGreyWithAlpha", NSDeviceWhiteColorSpace, 8, 2, YES, StraightAlpha, YES},
        Layout{"GreyOf1Bit", NSDeviceWhiteColorSpace, 1, 1},
        Layout{"GreyOf2Bits", NSDeviceWhiteColorSpace, 2, 1},
        Layout{"GreyOf4Bits", NSDeviceWhiteColorSpace, 4, 1},
        Layout{"GreyOf16Bits", NSDeviceWhiteColorSpace, 16, 1},
        Layout{"RGBOf4Bits", NSDeviceRGBColorSpace, 4, 3},
        Layout{"RGBAOf4Bits", NSDeviceRGBColorSpace, 4, 4, YES, StraightAlpha},
        Layout{"RGBOf16Bits", NSDeviceRGBColorSpace, 16, 3},
        Layout{"RGBAOf16Bits", NSDeviceRGBColorSpace, 16, 4, YES, StraightAlpha},
        Layout{"PlanarRGBOf16Bits", NSDeviceRGBColorSpace, 16, 3, NO, 0, YES},
        Layout{"PlanarGreyWithAlphaOf4Bits", NSDeviceWhiteColorSpace, 4, 2, YES, StraightAlpha, YES},
        Layout{"Black", NSDeviceBlackColorSpace, 8, 1},
        Layout{"CMYK", NSDeviceCMYKColorSpace, 8, 4},
        Layout{"CMYKWithAlpha", NSDeviceCMYKColorSpace, 8, 5, YES, StraightAlpha}),
    [](const auto& test) { return test.param.name; });
// clang-format on

class BitmapPixels : public Testing::PoolTest {};

TEST_F(BitmapPixels, KeepPremultipliedColourWithAlphaFirst) {
  const Layout layout = {"ARGB", NSDeviceRGBColorSpace, 8, 4, YES, AlphaFirst};
  NSBitmapImageRep* const bitmap = BitmapOf({2, 1}, layout);
  const uchar samples[] = {200, 10, 20, 30, 0, 0, 0, 0};
  std::copy(std::begin(samples), std::end(samples), [bitmap bitmapData]);
  const cv::Mat pixels = [ImageWith({2, 1}, {bitmap}) CVMat];
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 0), cv::Vec4b(10, 20, 30, 200));
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 1), cv::Vec4b(0, 0, 0, 0));
}

NSBitmapImageRep* BitmapWith(const cv::Mat& matrix) {
  NSImage* const image = [NSImage imageWithCVMat:matrix];
  return static_cast<NSBitmapImageRep*>([[image representations] objectAtIndex:0]);
}

TEST_F(BitmapPixels, ComeFromTheBitmapThatHasAPixelForEachPoint) {
  const cv::Mat matrix = NoiseCapture({30, 20}, 1);
  NSBitmapImageRep* const thumbnail = BitmapWith(NoiseCapture({1, 1}, 2));
  NSBitmapImageRep* const real = BitmapWith(matrix);
  NSBitmapImageRep* const detailed = BitmapWith(NoiseCapture({60, 40}, 3));
  for (const auto& bitmaps :
       {std::vector{thumbnail, real, detailed}, std::vector{detailed, thumbnail, real},
        std::vector{real, detailed}}) {
    EXPECT_TRUE(SameBits([ImageWith({30, 20}, bitmaps) CVMat], matrix));
  }
}

TEST_F(BitmapPixels, ComeFromTheLargestBitmapWhenNoneHasAPixelForEachPoint) {
  const cv::Mat grey(10, 15, CV_8UC1, cv::Scalar(77));
  NSBitmapImageRep* const thumbnail = BitmapWith(NoiseCapture({1, 1}, 2));
  NSImage* const image = ImageWith({30, 20}, {thumbnail, BitmapWith(grey)});
  EXPECT_TRUE(SameBits([image CVGrayscaleMat], cv::Mat(20, 30, CV_8UC1, cv::Scalar(77))));
}

}  // namespace
}  // namespace ScrollingCapture
