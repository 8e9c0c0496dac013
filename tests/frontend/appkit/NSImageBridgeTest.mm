#include <algorithm>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/faults/FailingAllocator.h>

#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>

#include "AbsurdSizes.h"
#include "PoolTest.h"

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;

constexpr auto PlainFormat = static_cast<NSBitmapFormat>(0);

class NSImageBridge : public Testing::PoolTest {};

/// Colours that never exceed their alpha, which takes every value.
cv::Mat TranslucentPixels() {
  cv::Mat pixels(16, 16, CV_8UC4);
  for (int alpha = 0; alpha < 256; ++alpha) {
    pixels.at<cv::Vec4b>(alpha / 16, alpha % 16) =
        cv::Vec4b(cv::saturate_cast<uchar>(alpha), cv::saturate_cast<uchar>(alpha / 2),
                  cv::saturate_cast<uchar>(alpha / 3), cv::saturate_cast<uchar>(alpha));
  }
  return pixels;
}

cv::Mat GreyPixels() {
  cv::Mat pixels(16, 16, CV_8UC1);
  for (int level = 0; level < 256; ++level) {
    pixels.at<uchar>(level / 16, level % 16) = cv::saturate_cast<uchar>(level);
  }
  return pixels;
}

/// An image with one bitmap of the given layout, filled with `samples` row by row.
NSImage* ImageOf(const cv::Size& size, int samplesPerPixel, BOOL hasAlpha, BOOL isPlanar,
                 NSString* space, NSBitmapFormat format, const std::vector<uchar>& samples) {
  NSBitmapImageRep* const bitmap =
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                               pixelsWide:size.width
                                               pixelsHigh:size.height
                                            bitsPerSample:8
                                          samplesPerPixel:samplesPerPixel
                                                 hasAlpha:hasAlpha
                                                 isPlanar:isPlanar
                                           colorSpaceName:space
                                             bitmapFormat:format
                                              bytesPerRow:0
                                             bitsPerPixel:0] autorelease];
  std::copy(samples.begin(), samples.end(), [bitmap bitmapData]);
  NSImage* const image =
      [[[NSImage alloc] initWithSize:NSMakeSize(size.width, size.height)] autorelease];
  [image addRepresentation:bitmap];
  return image;
}

TEST_F(NSImageBridge, KeepsOpaqueColourThereAndBack) {
  const cv::Mat matrix = NoiseCapture({31, 17}, 1);
  NSImage* const image = [NSImage imageWithCVMat:matrix];
  EXPECT_EQ([image size].width, 31);
  EXPECT_EQ([image size].height, 17);
  EXPECT_TRUE(SameBits([image CVMat], matrix));
}

TEST_F(NSImageBridge, KeepsPremultipliedAlphaThereAndBack) {
  const cv::Mat matrix = TranslucentPixels();
  EXPECT_TRUE(SameBits([[NSImage imageWithCVMat:matrix] CVMat], matrix));
}

TEST_F(NSImageBridge, KeepsGreyThereAndBack) {
  const cv::Mat grey = GreyPixels();
  NSImage* const image = [NSImage imageWithCVMat:grey];
  EXPECT_TRUE(SameBits([image CVGrayscaleMat], grey));
  cv::Mat colour;
  cv::cvtColor(grey, colour, cv::COLOR_GRAY2RGBA);
  EXPECT_TRUE(SameBits([image CVMat], colour));
}

TEST_F(NSImageBridge, ConvertsColourToGrey) {
  const cv::Mat matrix = NoiseCapture({31, 17}, 1);
  cv::Mat grey;
  cv::cvtColor(matrix, grey, cv::COLOR_RGBA2GRAY);
  EXPECT_TRUE(SameBits([[NSImage imageWithCVMat:matrix] CVGrayscaleMat], grey));
}

TEST_F(NSImageBridge, ReadsAMatrixWithPaddedRows) {
  const cv::Mat large = NoiseCapture({40, 30}, 2);
  const cv::Mat region = large(cv::Rect(5, 6, 20, 10));
  EXPECT_TRUE(SameBits([[NSImage imageWithCVMat:region] CVMat], region));
}

TEST_F(NSImageBridge, MakesImagesIndependentOfTheMatrix) {
  cv::Mat matrix = NoiseCapture({8, 8}, 3);
  const cv::Mat before = matrix.clone();
  NSImage* const image = [[[NSImage alloc] initWithCVMat:matrix] autorelease];
  matrix.setTo(cv::Scalar::all(0));
  [image CVMat].setTo(cv::Scalar::all(0));
  EXPECT_TRUE(SameBits([image CVMat], before));
}

TEST_F(NSImageBridge, MakesMatricesThatOwnTheirPixels) {
  cv::Mat kept;
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  kept = [[NSImage imageWithCVMat:GreyPixels()] CVGrayscaleMat];
  [pool drain];
  EXPECT_TRUE(kept.isContinuous());
  EXPECT_TRUE(SameBits(kept, GreyPixels()));
}

TEST_F(NSImageBridge, HasNoPixelsForWhatItCannotHold) {
  for (const cv::Mat& matrix : {cv::Mat(), cv::Mat(2, 2, CV_8UC3, cv::Scalar())}) {
    NSImage* const image = [NSImage imageWithCVMat:matrix];
    EXPECT_EQ([image size].width, 0);
    EXPECT_TRUE([image CVMat].empty());
    EXPECT_TRUE([image CVGrayscaleMat].empty());
  }
}

TEST_F(NSImageBridge, HasNoPixelsForAnAbsurdSize) {
  for (const NSSize& size : Testing::AbsurdSizes()) {
    NSImage* const image = [NSImage imageWithCVMat:GreyPixels()];
    [image setSize:size];
    EXPECT_TRUE([image CVMat].empty()) << size.width << " x " << size.height;
    EXPECT_TRUE([image CVGrayscaleMat].empty()) << size.width << " x " << size.height;
  }
}

TEST_F(NSImageBridge, HasNoPixelsWhereMemoryRunsOut) {
  NSImage* const image = [NSImage imageWithCVMat:GreyPixels()];
  const Testing::FailingAllocator memory;
  EXPECT_TRUE([image CVMat].empty());
  EXPECT_TRUE([image CVGrayscaleMat].empty());
}

TEST_F(NSImageBridge, GivesTransparentPixelsForAnImageWithoutRepresentation) {
  NSImage* const image = [[[NSImage alloc] initWithSize:NSMakeSize(3, 2)] autorelease];
  EXPECT_TRUE(SameBits([image CVMat], cv::Mat(2, 3, CV_8UC4, cv::Scalar::all(0))));
}

TEST_F(NSImageBridge, ScalesToTheWholePointsOfTheImage) {
  NSImage* const image =
      [NSImage imageWithCVMat:cv::Mat(20, 40, CV_8UC4, cv::Scalar(9, 8, 7, 255))];
  [image setSize:NSMakeSize(20.9, 10.9)];
  EXPECT_TRUE(SameBits([image CVMat], cv::Mat(10, 20, CV_8UC4, cv::Scalar(9, 8, 7, 255))));
  EXPECT_EQ([image CVGrayscaleMat].size(), cv::Size(20, 10));
}

TEST_F(NSImageBridge, PremultipliesStraightAlpha) {
  NSImage* const image =
      ImageOf({2, 1}, 4, YES, NO, NSDeviceRGBColorSpace, NSAlphaNonpremultipliedBitmapFormat,
              {255, 128, 0, 128, 10, 20, 30, 255});
  const cv::Mat pixels = [image CVMat];
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 0), cv::Vec4b(128, 64, 0, 128));
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 1), cv::Vec4b(10, 20, 30, 255));
}

TEST_F(NSImageBridge, ReadsColourWithoutAlpha) {
  NSImage* const image =
      ImageOf({2, 1}, 3, NO, NO, NSCalibratedRGBColorSpace, PlainFormat, {1, 2, 3, 4, 5, 6});
  const cv::Mat pixels = [image CVMat];
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 0), cv::Vec4b(1, 2, 3, 255));
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 1), cv::Vec4b(4, 5, 6, 255));
}

TEST_F(NSImageBridge, ReadsGreyWithAlpha) {
  NSImage* const image = ImageOf({2, 1}, 2, YES, NO, NSDeviceWhiteColorSpace,
                                 NSAlphaNonpremultipliedBitmapFormat, {200, 255, 100, 0});
  const cv::Mat pixels = [image CVMat];
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 0), cv::Vec4b(200, 200, 200, 255));
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 1), cv::Vec4b(0, 0, 0, 0));
}

TEST_F(NSImageBridge, ReadsPlanarColour) {
  NSImage* const image =
      ImageOf({2, 1}, 3, NO, YES, NSDeviceRGBColorSpace, PlainFormat, {11, 12, 21, 22, 31, 32});
  const cv::Mat pixels = [image CVMat];
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 0), cv::Vec4b(11, 21, 31, 255));
  EXPECT_EQ(pixels.at<cv::Vec4b>(0, 1), cv::Vec4b(12, 22, 32, 255));
}

TEST_F(NSImageBridge, ReadsImagesOfPNGData) {
  const cv::Mat matrix = NoiseCapture({31, 17}, 4);
  NSBitmapImageRep* const bitmap = static_cast<NSBitmapImageRep*>(
      [[[NSImage imageWithCVMat:matrix] representations] objectAtIndex:0]);
  NSData* const data = [bitmap representationUsingType:NSPNGFileType properties:nil];
  NSImage* const image = [[[NSImage alloc] initWithData:data] autorelease];
  EXPECT_TRUE(SameBits([image CVMat], matrix));
}

}  // namespace
}  // namespace ScrollingCapture
