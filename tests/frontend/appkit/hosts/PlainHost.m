// A host in plain Objective-C: stitches the captures of a page that it draws, and says what is
// wrong unless the page comes out. Exit status: 0 when all is right, else 1.
#include <stdio.h>

#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/VelScrollingCapture.h>

enum { Width = 160, CaptureHeight = 160, Step = 60, Captures = 3, BytesPerPixel = 4 };
enum { PageHeight = CaptureHeight + (Captures - 1) * Step };

@interface Progress : NSObject <ScrollingProgressDelegate> {
 @public
  int reached;
}
@end
@implementation Progress
- (void)setCurrentProgress:(int)progress {
  reached = progress;
}
- (BOOL)continueScrolling {
  return YES;
}
@end

/// The page's byte, which looks like noise; alpha is opaque.
static unsigned char PageByte(unsigned row, unsigned byte) {
  const unsigned place = row * Width * BytesPerPixel + byte;
  const unsigned mixed = (place ^ (place >> 7U)) * 2654435761U;
  return byte % BytesPerPixel == 3 ? 255 : (unsigned char)(mixed >> 24U);
}

static NSImage* CaptureFromRow(unsigned top) {
  NSBitmapImageRep* const bitmap =
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                               pixelsWide:Width
                                               pixelsHigh:CaptureHeight
                                            bitsPerSample:8
                                          samplesPerPixel:BytesPerPixel
                                                 hasAlpha:YES
                                                 isPlanar:NO
                                           colorSpaceName:NSDeviceRGBColorSpace
                                              bytesPerRow:Width * BytesPerPixel
                                             bitsPerPixel:8 * BytesPerPixel] autorelease];
  for (unsigned row = 0; row < CaptureHeight; ++row) {
    for (unsigned byte = 0; byte < Width * BytesPerPixel; ++byte) {
      [bitmap bitmapData][row * Width * BytesPerPixel + byte] = PageByte(top + row, byte);
    }
  }
  NSImage* const image =
      [[[NSImage alloc] initWithSize:NSMakeSize(Width, CaptureHeight)] autorelease];
  [image addRepresentation:bitmap];
  return image;
}

static BOOL ShowsThePage(NSBitmapImageRep* image) {
  if ([image pixelsWide] != Width || [image pixelsHigh] != PageHeight) {
    return NO;
  }
  for (unsigned row = 0; row < PageHeight; ++row) {
    for (unsigned byte = 0; byte < Width * BytesPerPixel; ++byte) {
      if ([image bitmapData][row * Width * BytesPerPixel + byte] != PageByte(row, byte)) {
        return NO;
      }
    }
  }
  return YES;
}

/// What is wrong, or NULL.
static const char* Fault(void) {
  VelScrollingCapture* const capture =
      [[[VelScrollingCapture alloc] initWithExpectConsistentTranslations:NO
                                                          andThreadCount:2] autorelease];
  Progress* const progress = [[[Progress alloc] init] autorelease];
  capture.progressDelegate = progress;
  for (unsigned i = 0; i < Captures; ++i) {
    [capture addImageToAdapter:CaptureFromRow(i * Step)];
  }
  NSBitmapImageRep* const preview = [capture currentImagePreview];
  NSBitmapImageRep* const image = [capture stitchAndReturnFinalImage];
  capture.progressDelegate = nil;
  if (preview == nil) {
    return "There is no preview";
  }
  if (!ShowsThePage(image)) {
    return "The stitched image is not the page";
  }
  if (progress->reached != 100) {
    return "The progress does not end at 100";
  }
  return VelScrollingCaptureVersionNumber < 1 ? "The version is missing" : NULL;
}

int main(void) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  const char* const fault = Fault();
  if (fault != NULL) {
    fprintf(stderr, "%s\n", fault);
  }
  [pool drain];
  return fault == NULL ? 0 : 1;
}
