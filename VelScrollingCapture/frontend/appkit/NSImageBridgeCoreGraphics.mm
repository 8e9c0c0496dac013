#include <VelScrollingCapture/core/internal/Truncation.h>
#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/internal/BitmapRendering.h>

using ScrollingCapture::TruncateToInt;

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

/// The image drawn into a new matrix of `type`. Transparent pixels leave the matrix's zeros.
cv::Mat Drawn(NSImage* image, CGImageRef drawing, int type, CGColorSpaceRef colourSpace) {
  cv::Mat matrix(TruncateToInt([image size].height), TruncateToInt([image size].width), type,
                 cv::Scalar::all(0));
  CGContextRef const context = CGBitmapContextCreate(
      matrix.data, static_cast<std::size_t>(matrix.cols), static_cast<std::size_t>(matrix.rows),
      BitsPerComponent, matrix.step[0], colourSpace, AlphaLast);
  CGContextDrawImage(context, BoundsOf(image), drawing);
  CGContextRelease(context);
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

void RenderIntoBitmap(NSImage* image, NSBitmapImageRep* bitmap) {
  NSGraphicsContext* const context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:context];
  [image drawAtPoint:NSZeroPoint fromRect:NSZeroRect operation:CopyOperation fraction:1.0];
  [context flushGraphics];
  [NSGraphicsContext restoreGraphicsState];
}

}  // namespace ScrollingCapture::AppKit

@implementation NSImage (NSImage_OpenCV)

- (CGImageRef)CGImage {
  const NSSize size = [self size];
  CGContextRef const context = CGBitmapContextCreate(
      NULL, static_cast<std::size_t>(size.width), static_cast<std::size_t>(size.height),
      BitsPerComponent, 0, [[NSColorSpace deviceRGBColorSpace] CGColorSpace], BlueGreenRedAlpha);
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
  CGImageRef const drawing = [self CGImage];
  const cv::Mat matrix = Drawn(self, drawing, CV_8UC4, CGImageGetColorSpace(drawing));
  CGImageRelease(drawing);
  return matrix;
}

- (cv::Mat)CVGrayscaleMat {
  CGImageRef const drawing = [self CGImage];
  CGColorSpaceRef const grey = CGColorSpaceCreateDeviceGray();
  const cv::Mat matrix = Drawn(self, drawing, CV_8UC1, grey);
  CGColorSpaceRelease(grey);
  CGImageRelease(drawing);
  return matrix;
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
