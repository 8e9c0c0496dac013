#include <algorithm>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/frontend/PlatformImage.h>
#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/internal/BitmapPixels.h>
#import <VelScrollingCapture/frontend/appkit/internal/BitmapRendering.h>
#import <VelScrollingCapture/frontend/appkit/internal/Conversion.h>

using ScrollingCapture::PlatformImage;
using ScrollingCapture::AppKit::BestBitmapOf;
using ScrollingCapture::AppKit::IsPlainGrey;
using ScrollingCapture::AppKit::OrEmpty;
using ScrollingCapture::AppKit::PixelsOf;
using ScrollingCapture::AppKit::SamplesOf;
using ScrollingCapture::AppKit::WholeSize;

namespace {

constexpr int GreySamples = 1;
constexpr int ColourSamples = 4;

/// A bitmap may have more or fewer pixels than its image has points.
cv::Mat Fitted(const cv::Mat& pixels, const cv::Size& size) {
  if (pixels.size() == size) {
    return pixels;
  }
  cv::Mat fitted;
  cv::resize(pixels, fitted, size, 0, 0, cv::INTER_AREA);
  return fitted;
}

/// Without a bitmap, an image counts as transparent.
cv::Mat ColourOf(NSImage* image) {
  NSBitmapImageRep* const bitmap = BestBitmapOf(image);
  const cv::Size size = WholeSize(image);
  if (bitmap == nil || size.empty()) {
    return cv::Mat(size, CV_8UC4, cv::Scalar::all(0));
  }
  return Fitted(PixelsOf(bitmap), size);
}

cv::Mat GreyOf(NSImage* image) {
  NSBitmapImageRep* const bitmap = BestBitmapOf(image);
  const cv::Size size = WholeSize(image);
  if (bitmap != nil && !size.empty() && IsPlainGrey(bitmap)) {
    return Fitted(SamplesOf(bitmap), size).clone();
  }
  return PlatformImage::imageWithCVMat(ColourOf(image)).CVGrayscaleMat();
}

NSBitmapImageRep* NewBitmap(const PlatformImage& image) {
  const int samples = image.isGrey() ? GreySamples : ColourSamples;
  NSBitmapImageRep* const bitmap = [[NSBitmapImageRep alloc]
      initWithBitmapDataPlanes:NULL
                    pixelsWide:image.width()
                    pixelsHigh:image.height()
                 bitsPerSample:8
               samplesPerPixel:samples
                      hasAlpha:!image.isGrey()
                      isPlanar:NO
                colorSpaceName:image.isGrey() ? NSDeviceWhiteColorSpace : NSDeviceRGBColorSpace
                   bytesPerRow:static_cast<NSInteger>(image.bytesPerRow())
                  bitsPerPixel:static_cast<NSInteger>(samples) * 8];
  std::copy_n(image.pixels(), image.bytesPerRow() * static_cast<std::size_t>(image.height()),
              [bitmap bitmapData]);
  return bitmap;
}

}  // namespace

namespace ScrollingCapture::AppKit {

bool RenderIntoBitmap(NSImage* image, NSBitmapImageRep* bitmap) {
  const cv::Mat pixels = [image CVMat];
  if (pixels.empty() || [bitmap bitmapData] == NULL) {
    return false;
  }
  pixels.copyTo(SamplesOf(bitmap));
  return true;
}

}  // namespace ScrollingCapture::AppKit

@implementation NSImage (NSImage_OpenCV)

- (cv::Mat)CVMat {
  return OrEmpty([self] { return ColourOf(self); });
}

- (cv::Mat)CVGrayscaleMat {
  return OrEmpty([self] { return GreyOf(self); });
}

- (id)initWithCVMat:(const cv::Mat&)matrix {
  [self release];
  const PlatformImage pixels = PlatformImage::imageWithCVMat(matrix);
  NSImage* const image =
      [[NSImage alloc] initWithSize:NSMakeSize(pixels.size().width, pixels.size().height)];
  if (pixels.pixels() != nullptr) {
    NSBitmapImageRep* const bitmap = NewBitmap(pixels);
    [image addRepresentation:bitmap];
    [bitmap release];
  }
  return image;
}

+ (id)imageWithCVMat:(const cv::Mat&)matrix {
  return [[[NSImage alloc] initWithCVMat:matrix] autorelease];
}

@end
