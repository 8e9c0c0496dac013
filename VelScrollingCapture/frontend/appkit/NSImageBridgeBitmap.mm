#include <algorithm>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/frontend/PlatformImage.h>
#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/internal/BitmapRendering.h>
#import <VelScrollingCapture/frontend/appkit/internal/Conversion.h>

using ScrollingCapture::PlatformImage;
using ScrollingCapture::AppKit::OrEmpty;
using ScrollingCapture::AppKit::WholeSize;

namespace {

constexpr int GreySamples = 1;
constexpr int ColourSamples = 4;

NSBitmapImageRep* FirstBitmapOf(NSImage* image) {
  NSArray* const representations = [image representations];
  for (NSUInteger i = 0; i < [representations count]; ++i) {
    NSImageRep* const representation = [representations objectAtIndex:i];
    if ([representation isKindOfClass:[NSBitmapImageRep class]]) {
      return static_cast<NSBitmapImageRep*>(representation);
    }
  }
  return nil;
}

/// A header over the bitmap's own samples.
cv::Mat SamplesOf(NSBitmapImageRep* bitmap) {
  return {static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
          CV_8UC(static_cast<int>([bitmap samplesPerPixel])), [bitmap bitmapData],
          static_cast<std::size_t>([bitmap bytesPerRow])};
}

bool HasGreySpace(NSBitmapImageRep* bitmap) {
  return [[bitmap colorSpaceName] isEqualToString:NSDeviceWhiteColorSpace] ||
         [[bitmap colorSpaceName] isEqualToString:NSCalibratedWhiteColorSpace];
}

bool HasColourSpace(NSBitmapImageRep* bitmap) {
  return [[bitmap colorSpaceName] isEqualToString:NSDeviceRGBColorSpace] ||
         [[bitmap colorSpaceName] isEqualToString:NSCalibratedRGBColorSpace];
}

/// Whether pixels are whole bytes, one after another, alpha last.
bool HasPlainBytes(NSBitmapImageRep* bitmap) {
  return ![bitmap isPlanar] && [bitmap bitsPerSample] == 8 &&
         [bitmap bitsPerPixel] == 8 * [bitmap samplesPerPixel] &&
         ([bitmap bitmapFormat] & ~NSAlphaNonpremultipliedBitmapFormat) == 0;
}

bool IsPlainGrey(NSBitmapImageRep* bitmap) {
  return HasPlainBytes(bitmap) && HasGreySpace(bitmap) && ![bitmap hasAlpha] &&
         [bitmap samplesPerPixel] == GreySamples;
}

cv::Vec4b PremultipliedPixel(NSColor* colour) {
  NSColor* const converted = [colour colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  if (converted == nil) {
    return {};
  }
  const double scale = 255.0 * [converted alphaComponent];
  return {cv::saturate_cast<uchar>(scale * [converted redComponent]),
          cv::saturate_cast<uchar>(scale * [converted greenComponent]),
          cv::saturate_cast<uchar>(scale * [converted blueComponent]),
          cv::saturate_cast<uchar>(scale)};
}

/// Works for every layout of samples, but makes an object for each pixel.
cv::Mat PixelByPixel(NSBitmapImageRep* bitmap) {
  cv::Mat pixels(static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
                 CV_8UC4);
  for (int row = 0; row < pixels.rows; ++row) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    for (int column = 0; column < pixels.cols; ++column) {
      pixels.at<cv::Vec4b>(row, column) = PremultipliedPixel([bitmap colorAtX:column y:row]);
    }
    [pool drain];
  }
  return pixels;
}

/// The bitmap's pixels as red, green, blue, premultiplied alpha.
cv::Mat PixelsOf(NSBitmapImageRep* bitmap) {
  const bool premultiplied = ([bitmap bitmapFormat] & NSAlphaNonpremultipliedBitmapFormat) == 0;
  cv::Mat pixels;
  if (IsPlainGrey(bitmap)) {
    cv::cvtColor(SamplesOf(bitmap), pixels, cv::COLOR_GRAY2RGBA);
  } else if (!HasPlainBytes(bitmap) || !HasColourSpace(bitmap)) {
    pixels = PixelByPixel(bitmap);
  } else if (![bitmap hasAlpha] && [bitmap samplesPerPixel] == ColourSamples - 1) {
    cv::cvtColor(SamplesOf(bitmap), pixels, cv::COLOR_RGB2RGBA);
  } else if ([bitmap hasAlpha] && premultiplied) {
    pixels = SamplesOf(bitmap).clone();
  } else if ([bitmap hasAlpha]) {
    cv::cvtColor(SamplesOf(bitmap), pixels, cv::COLOR_RGBA2mRGBA);
  } else {
    pixels = PixelByPixel(bitmap);
  }
  return pixels;
}

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
  NSBitmapImageRep* const bitmap = FirstBitmapOf(image);
  const cv::Size size = WholeSize(image);
  if (bitmap == nil || size.empty()) {
    return cv::Mat(size, CV_8UC4, cv::Scalar::all(0));
  }
  return Fitted(PixelsOf(bitmap), size);
}

cv::Mat GreyOf(NSImage* image) {
  NSBitmapImageRep* const bitmap = FirstBitmapOf(image);
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
