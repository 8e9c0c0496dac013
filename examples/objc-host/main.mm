// A minimal host: stitches captures from image files and prints the progress.
//
//   objc-host [--stop-at PERCENT] OUTPUT.png CAPTURE...
//
// Exit status: 0 done, 1 failed or stopped, 2 wrong usage or a file that cannot be read.
#include <climits>
#include <cstdlib>
#include <cstring>

// [host]
#include <cstdio>

#import <VelScrollingCapture/frontend/appkit/VelScrollingCapture.h>

@interface Progress : NSObject <ScrollingProgressDelegate> {
 @public
  int reached, stopAt;
}
@end
@implementation Progress
- (void)setCurrentProgress:(int)progress {
  printf("%d %%\n", reached = progress);
}
- (BOOL)continueScrolling {
  return reached < stopAt;
}
@end

NSBitmapImageRep* Stitch(NSArray* captures, Progress* progress) {
  VelScrollingCapture* capture =
      [[[VelScrollingCapture alloc] initWithExactJoinsAndThreadCount:2] autorelease];
  capture.progressDelegate = progress;  // not retained
  for (NSUInteger i = 0; i < [captures count]; ++i)
    [capture addImageToAdapter:[captures objectAtIndex:i]];
  NSBitmapImageRep* image = [capture stitchAndReturnFinalImage];
  capture.progressDelegate = nil;
  return image;
}
// [host]

namespace {

constexpr int Failed = 1;
constexpr int WrongUsage = 2;

/// The images of `count` files; nil, with a message, when one cannot be read.
NSArray* Read(char** paths, int count) {
  NSMutableArray* const captures = [NSMutableArray array];
  for (int i = 0; i < count; ++i) {
    NSString* const path = [NSString stringWithUTF8String:paths[i]];
    NSImage* const image = [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
    if (image == nil) {
      fprintf(stderr, "%s: not an image\n", paths[i]);
      return nil;
    }
    [captures addObject:image];
  }
  return captures;
}

int Run(char** arguments, int count) {
  Progress* const progress = [[[Progress alloc] init] autorelease];
  progress->stopAt = INT_MAX;
  if (count > 2 && strcmp(arguments[0], "--stop-at") == 0) {
    progress->stopAt = atoi(arguments[1]);
    arguments += 2;
    count -= 2;
  }
  if (count < 2) {
    fprintf(stderr, "usage: objc-host [--stop-at PERCENT] OUTPUT.png CAPTURE...\n");
    return WrongUsage;
  }
  NSArray* const captures = Read(arguments + 1, count - 1);
  if (captures == nil) {
    return WrongUsage;
  }
  NSBitmapImageRep* const image = Stitch(captures, progress);
  if (image == nil) {
    fprintf(stderr, "no image: the stitch was stopped or failed\n");
    return Failed;
  }
  NSData* const file = [image representationUsingType:NSPNGFileType properties:nil];
  if (![file writeToFile:[NSString stringWithUTF8String:arguments[0]] atomically:YES]) {
    fprintf(stderr, "%s: cannot be written\n", arguments[0]);
    return Failed;
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  const int status = Run(argv + 1, argc - 1);
  [pool drain];
  return status;
}
