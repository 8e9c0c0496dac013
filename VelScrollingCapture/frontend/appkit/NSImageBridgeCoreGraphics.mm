#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/internal/BitmapRendering.h>
#import <VelScrollingCapture/frontend/appkit/internal/Conversion.h>

using ScrollingCapture::AppKit::OrEmpty;
using ScrollingCapture::AppKit::WholeSize;

namespace {

constexpr std::size_t BitsPerComponent = 8;
constexpr auto CopyOperation = static_cast<NSCompositingOperation>(1);
constexpr CGBitmapInfo BlueGreenRedAlpha =
    static_cast<CGBitmapInfo>(kCGBitmapByteOrder32Little) |
    static_cast<CGBitmapInfo>(kCGImageAlphaPremultipliedFirst);
constexpr auto AlphaLast = static_cast<CGBitmapInfo>(kCGImageAlphaPremultipliedLast);

CGRect BoundsOf(NSImage* image) {
  return CGRectMake(0, 0, [image size].width, [image size].height);
}

/// Draws over the whole of `matrix`. Transparent pixels leave its zeros.
void Draw(NSImage* image, CGImageRef drawing, CGColorSpaceRef colourSpace, cv::Mat& matrix) {
  CGContextRef const context = CGBitmapContextCreate(
      matrix.data, static_cast<std::size_t>(matrix.cols), static_cast<std::size_t>(matrix.rows),
      BitsPerComponent, matrix.step[0], colourSpace, AlphaLast);
  CGContextDrawImage(context, BoundsOf(image), drawing);
  CGContextRelease(context);
}

cv::Mat ColourOf(NSImage* image) {
  cv::Mat matrix(WholeSize(image), CV_8UC4, cv::Scalar::all(0));
  CGImageRef const drawing = [image CGImage];
  if (drawing == NULL) {
    return {};
  }
  Draw(image, drawing, CGImageGetColorSpace(drawing), matrix);
  CGImageRelease(drawing);
  return matrix;
}

cv::Mat GreyOf(NSImage* image) {
  cv::Mat matrix(WholeSize(image), CV_8UC1, cv::Scalar::all(0));
  CGImageRef const drawing = [image CGImage];
  if (drawing == NULL) {
    return {};
  }
  CGColorSpaceRef const grey = CGColorSpaceCreateDeviceGray();
  Draw(image, drawing, grey, matrix);
  CGColorSpaceRelease(grey);
  CGImageRelease(drawing);
  return matrix;
}

CGColorSpaceRef NewColourSpaceFor(const cv::Mat& matrix) {
  return matrix.elemSize() == 1 ? CGColorSpaceCreateDeviceGray() : CGColorSpaceCreateDeviceRGB();
}

/// A CoreGraphics image with a copy of the matrix's pixels.
CGImageRef NewImageOf(const cv::Mat& matrix) {
  NSData* const pixels = [NSData dataWithBytes:matrix.data
                                        length:matrix.elemSize() * matrix.total()];
  CGColorSpaceRef const colourSpace = NewColourSpaceFor(matrix);
  CGDataProviderRef const provider = CGDataProviderCreateWithCFData((CFDataRef)pixels);
  CGImageRef const image =
      CGImageCreate(static_cast<std::size_t>(matrix.cols), static_cast<std::size_t>(matrix.rows),
                    BitsPerComponent, matrix.elemSize() * BitsPerComponent, matrix.step[0],
                    colourSpace, AlphaLast, provider, NULL, false, kCGRenderingIntentDefault);
  CGDataProviderRelease(provider);
  CGColorSpaceRelease(colourSpace);
  return image;
}

}  // namespace

namespace ScrollingCapture::AppKit {

bool RenderIntoBitmap(NSImage* image, NSBitmapImageRep* bitmap) {
  if (bitmap == nil) {
    return false;
  }
  NSGraphicsContext* const context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:context];
  [image drawAtPoint:NSZeroPoint fromRect:NSZeroRect operation:CopyOperation fraction:1.0];
  [context flushGraphics];
  [NSGraphicsContext restoreGraphicsState];
  return context != nil;
}

}  // namespace ScrollingCapture::AppKit

@implementation NSImage (NSImage_OpenCV)

- (CGImageRef)CGImage {
  if (WholeSize(self).empty()) {
    return NULL;
  }
  const NSSize size = [self size];
  CGContextRef const context = CGBitmapContextCreate(
      NULL, static_cast<std::size_t>(size.width), static_cast<std::size_t>(size.height),
      BitsPerComponent, 0, [[NSColorSpace deviceRGBColorSpace] CGColorSpace], BlueGreenRedAlpha);
  if (context == NULL) {
    return NULL;
  }
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:[NSGraphicsContext graphicsContextWithGraphicsPort:context
                                                                                  flipped:NO]];
  [self drawInRect:NSMakeRect(0, 0, size.width, size.height)
          fromRect:NSZeroRect
         operation:CopyOperation
          fraction:1.0];
  [NSGraphicsContext restoreGraphicsState];
  CGImageRef const image = CGBitmapContextCreateImage(context);
  CGContextRelease(context);
  return image;
}

- (cv::Mat)CVMat {
  return OrEmpty([self] { return ColourOf(self); });
}

- (cv::Mat)CVGrayscaleMat {
  return OrEmpty([self] { return GreyOf(self); });
}

- (id)initWithCVMat:(const cv::Mat&)matrix {
  [self release];
  NSImage* const image = [[NSImage alloc] init];
  // What is copied are the elements without padding between rows.
  CGImageRef const pixels = NewImageOf(matrix.isContinuous() ? matrix : matrix.clone());
  if (pixels != NULL) {
    NSBitmapImageRep* const bitmap = [[NSBitmapImageRep alloc] initWithCGImage:pixels];
    [image addRepresentation:bitmap];
    [bitmap release];
    CGImageRelease(pixels);
  }
  return image;
}

+ (id)imageWithCVMat:(const cv::Mat&)matrix {
  return [[[NSImage alloc] initWithCVMat:matrix] autorelease];
}

@end
