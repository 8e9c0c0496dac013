// A host whose references are counted by the compiler: compiled, not run.
#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/VelScrollingCapture.h>

#if !__has_feature(objc_arc)
#error "This host is about automatic reference counting"
#endif

@interface Recorder : NSObject <ScrollingProgressDelegate>
@property(nonatomic, strong) VelScrollingCapture* capture;
@property(nonatomic, strong) NSBitmapImageRep* page;
@property(nonatomic) int progress;
@end

@implementation Recorder

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _capture = [[VelScrollingCapture alloc] initWithExpectConsistentTranslations:YES
                                                                  andThreadCount:4];
    _capture.progressDelegate = self;
  }
  return self;
}

- (void)setCurrentProgress:(int)progress {
  self.progress = progress;
}

- (BOOL)continueScrolling {
  return YES;
}

- (NSBitmapImageRep*)previewAfter:(NSImage*)image {
  [self.capture addImageToAdapter:image];
  return [self.capture currentImagePreview];
}

- (void)finish {
  @autoreleasepool {
    self.page = [self.capture stitchAndReturnFinalImage];
    self.capture = nil;
  }
}

@end
