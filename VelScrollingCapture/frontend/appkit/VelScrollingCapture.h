#pragma once

// OpenCV's headers come first: AppKit defines macros that they do not expect.
#ifdef __cplusplus
#include <VelScrollingCapture/frontend/VelScrollingCapture.h>
#endif

#import <AppKit/AppKit.h>

#import <VelScrollingCapture/frontend/Version.h>
#import <VelScrollingCapture/frontend/appkit/ScrollingProgressDelegate.h>

/// GCC knows no weak properties; see progressDelegate.
#ifdef __clang__
#define VEL_WEAK_PROPERTY weak
#else
#define VEL_WEAK_PROPERTY assign
#endif

struct VelScrollingCaptureState;

/// What has become of a capture when it was added.
typedef enum {
  VelCapturePlaced = 0,    ///< It was added; with exact joins it is known where it lies.
  VelCaptureRepeated = 1,  ///< It shows the same as the last one, and was dropped.
  VelCaptureDoubtful = 2,  ///< It was added, and several places explain it alike.
  VelCaptureTooFast = 3,   ///< It was added, but nothing joins it: scroll back a little.
  VelCaptureUnusable = 4   ///< It was refused.
} VelCaptureOutcome;

/// One scrolling capture, from its first capture to the stitched image.
///
/// Make one, hand it every capture as the window scrolls, show currentImagePreview meanwhile, and
/// send stitchAndReturnFinalImage once at the end. Returned images are autoreleased bitmaps of red,
/// green, blue, alpha, premultiplied, 8 bits each.
///
/// Ownership: the progress listener retains the capture object on purpose, so that a host may let
/// go of it while a stitch runs. The reference ends with the stitch, whether that succeeds, fails
/// or is cancelled. A host that never stitches sends cleanupListener before it lets go; without
/// that the object lives for ever.
///
/// Threads: messages must not overlap, except that progressDelegate and previewImageSize may be
/// read and written at any time, from any thread.
@interface VelScrollingCapture : NSObject {
 @private
  struct VelScrollingCaptureState* _state;
}

/// Who hears of progress and may stop the stitch; not retained. Turns nil with the delegate's end
/// where the runtime has weak references; where it has none (the runtime of GCC), set it to nil
/// before the delegate goes away.
@property(atomic, VEL_WEAK_PROPERTY) id<ScrollingProgressDelegate> progressDelegate;

/// The delegate's answer to continueScrolling; YES without a delegate.
@property(readonly) BOOL continueStitching;

/// Always NO.
@property(readonly) BOOL errorDuringStitching;

/// The box that previews fit into, in pixels; 250 x 250 unless set. The size in force at the first
/// capture is also that of the canvas on which the preview begins. Read and written as a whole.
@property(atomic, assign) NSSize previewImageSize;

#ifdef __cplusplus
/// The captures, the stitcher and the result. Setting neither copies nor frees: the object takes
/// over the new adapter, and the one before belongs to the caller. All operations ask here, so that
/// a subclass can give its own.
@property(nonatomic, assign) StitcherAdapter* stitcherAdapter;

/// The relay to this object, null after the stitch; set like stitcherAdapter. The stitch tells the
/// adapter's listener, which is this one unless the host sets another there.
@property(nonatomic, assign) ScrollingCapture::ProgressListener* progressListener;

/// The live preview, null before the first capture; set and asked like stitcherAdapter.
@property(nonatomic, assign) ScrollingCapture::PreviewImage* previewImageCreator;
#endif

/// A capture object that looks for motion in both directions, on one thread, and expects no
/// consistent translations.
- (id)init;

/// A capture object that looks for motion in both directions.
/// @param expect  whether a pair of captures may be given its second-best translation when that
///                repeats the previous pair's
/// @param threads the most detections that run at once; less than 1 counts as 1
- (id)initWithExpectConsistentTranslations:(BOOL)expect andThreadCount:(int)threads;

/// A capture object that joins captures exactly: addCapture:reason: says of each at once whether it
/// could be placed, and fixed parts of the window appear once. Where captures are missing, the
/// stitch gives the largest part.
/// @param threads the most threads that work at once; less than 1 counts as 1
- (id)initWithExactJoinsAndThreadCount:(int)threads;

/// Makes what is needed for a stitch: an adapter when there is none, and a new progress listener in
/// place of the one before. Sets the preview size to 250 x 250. Done by the initialisers.
- (void)setupStitcher;

/// Adds the next capture and brings the preview up to date. The first capture is always kept, even
/// when it is nil, which counts as empty. A later one is dropped silently when it shows the same as
/// the last one kept, or cannot be compared with it because their sizes differ. Any capture is
/// dropped that has more than 2^30 points or that there is no memory for.
- (void)addImageToAdapter:(NSImage*)image;

/// Does what addImageToAdapter: does, and says what has become of the capture. Without exact joins,
/// that it was placed only means that it was added.
/// @param reason receives why a capture was refused, to go on after "the capture", and nil
///               otherwise; may be NULL
- (VelCaptureOutcome)addCapture:(NSImage*)image reason:(NSString**)reason;

/// The preview as it stands, scaled down to fit into previewImageSize; nil before the first
/// capture, when that size leaves no pixel, and when memory runs out.
- (NSBitmapImageRep*)currentImagePreview;

/// Stitches all captures on the calling thread, with progress to the delegate. Nil when there is
/// no capture, the delegate stopped the work, the stitch failed (with a message on the standard
/// error stream, as for an image of more than 2^30 pixels) or memory ran out, and for any further
/// stitch.
- (NSBitmapImageRep*)stitchAndReturnFinalImage;

/// Relays progress to the delegate. The delegate's answer to continueScrolling; YES without a
/// delegate.
- (BOOL)setCurrentProgress:(int)progress;

/// Told by the progress listener when a stitch has ended: sends cleanupListener.
- (void)stitchingComplete:(BOOL)success;

/// Destroys the progress listener and with it the reference by which this object keeps itself
/// alive. Captures can be added and previewed further, but not stitched, unless the adapter was
/// given a listener of the host's own.
- (void)cleanupListener;

/// `image` rendered as red, green, blue, alpha at its size in whole points; nil for nil, without a
/// point, for more than 2^30 of them, and when memory runs out.
- (NSBitmapImageRep*)bitmapImageRepresentation:(NSImage*)image;

@end
