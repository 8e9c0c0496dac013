#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/frontend/PlatformImage.h>
#include <VelScrollingCapture/frontend/ProgressListener.h>
#include <VelScrollingCapture/frontend/ScrollingProgressDelegate.h>
#include <VelScrollingCapture/frontend/StitcherAdapter.h>
#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/session/CaptureOutcome.h>

namespace ScrollingCapture {

/// One scrolling capture, from its first capture to the stitched image: the class that hosts use.
///
/// Make one, hand it every capture as the window scrolls, show currentImagePreview meanwhile, and
/// call stitchAndReturnFinalImage once at the end. Operations speak of an absent image or object
/// as an empty std::optional or a null pointer.
///
/// Ownership: the progress listener keeps the capture object alive on purpose, so that a host may
/// let go of it while a stitch runs. The reference ends with the stitch, whether that succeeds,
/// fails or is cancelled. A host that never stitches calls cleanupListener before it lets go;
/// without that the object lives for ever.
///
/// Threads: calls must not overlap, except that progressDelegate and previewImageSize may be read
/// and written at any time, from any thread. Exceptions of OpenCV do not leave the operations; but
/// where memory runs out on a worker thread of a stitch, the process ends.
class VEL_EXPORT VelScrollingCapture : public std::enable_shared_from_this<VelScrollingCapture> {
 public:
  /// A capture object that looks for motion in both directions, on one thread, and expects no
  /// consistent translations.
  static std::shared_ptr<VelScrollingCapture> init();

  /// A capture object that looks for motion in both directions.
  /// @param expectConsistentTranslations
  ///        whether a pair of captures may be given its second-best translation when that repeats
  ///        the previous pair's
  /// @param threadCount the most detections that run at once; less than 1 counts as 1
  static std::shared_ptr<VelScrollingCapture> initWithExpectConsistentTranslations(
      bool expectConsistentTranslations, int threadCount);

  /// A capture object that joins captures exactly, see ExactStitcherAdapter: addCapture says of
  /// each at once whether it could be placed, and fixed parts of the window appear once. It refuses
  /// a first capture that has no pixels.
  /// @param threadCount the most threads that work at once; less than 1 counts as 1
  static std::shared_ptr<VelScrollingCapture> initWithExactJoins(int threadCount);

  virtual ~VelScrollingCapture();

  VelScrollingCapture(const VelScrollingCapture&) = delete;
  VelScrollingCapture& operator=(const VelScrollingCapture&) = delete;

  /// Makes what is needed for a stitch: an adapter when there is none, and a new progress listener
  /// in place of the one before. Sets the preview size to 250 x 250. Done by the factories.
  void setupStitcher();

  /// Adds the next capture and brings the preview up to date.
  ///
  /// The first capture is always kept, even when it is absent, which counts as empty. A later one
  /// is dropped silently when it shows the same as the last one kept, or differs from it in size.
  /// Any capture is dropped when memory for it runs out; it may then be added again. The image's
  /// pixels are copied.
  void addImageToAdapter(const std::optional<PlatformImage>& image);

  /// Does what addImageToAdapter does, and says what has become of the capture. Where the joins are
  /// not exact, that it was placed only means that it was added.
  CaptureOutcome addCapture(const std::optional<PlatformImage>& image);

  /// The preview as it stands, scaled down to fit into previewImageSize; absent before the first
  /// capture, when that size leaves no pixel, and when memory runs out. Always red, green, blue,
  /// alpha.
  std::optional<PlatformImage> currentImagePreview();

  /// Stitches all captures on the calling thread, with progress to the delegate.
  ///
  /// Ends the life of the progress listener and takes the adapter's listener from it. A call while
  /// neither is there does nothing and gives no image, and so does any further call unless
  /// setupStitcher comes first. Throws std::system_error when no thread can be started, and
  /// what the delegate throws on the calling thread; the listener's life ends then, too.
  /// @return red, green, blue, alpha; absent when there is no capture, the delegate stopped the
  ///         work, the stitch failed (with a message on the standard error stream), memory ran out,
  ///         or the image has no pixel
  std::optional<PlatformImage> stitchAndReturnFinalImage();

  /// Relays progress to the delegate, which is looked up afresh for every message.
  /// @return the delegate's answer to continueScrolling; true without a delegate, and false when it
  ///         goes away in between
  bool setCurrentProgress(int progress) const;

  /// The delegate's answer to continueScrolling; true without a delegate.
  bool continueStitching() const;

  /// Always false.
  bool errorDuringStitching() const;

  /// Told by the progress listener when a stitch has ended: calls cleanupListener.
  void stitchingComplete(bool success);

  /// Destroys the progress listener and with it the reference by which this object keeps itself
  /// alive. Captures can be added and previewed further, but not stitched, unless the adapter was
  /// given a listener of the host's own.
  void cleanupListener();

  /// `image` rendered as red, green, blue, alpha; absent when it has no pixel, and when memory runs
  /// out.
  std::optional<PlatformImage> bitmapImageRepresentation(const PlatformImage& image) const;

  /// Who hears of progress and may stop the stitch; null when there is none or it is gone.
  std::shared_ptr<ScrollingProgressDelegate> progressDelegate() const;

  /// Sets the delegate, which is not kept alive; null for none.
  void setProgressDelegate(const std::shared_ptr<ScrollingProgressDelegate>& delegate);

  /// The box that previews fit into, in pixels; 250 x 250 unless set. Read as a whole.
  ImageSize previewImageSize() const;

  /// Sets the box that previews fit into; fractions of a pixel are cut off. The size in force at
  /// the first capture is also that of the canvas on which the preview begins. Written as a whole.
  void setPreviewImageSize(const ImageSize& size);

  /// The captures, the stitcher and the result; owned by this object. All operations ask here, so
  /// that a derived class can give its own.
  virtual StitcherAdapter* stitcherAdapter() const;

  /// Takes over `adapter`. The one before is not freed: it now belongs to the caller.
  void setStitcherAdapter(StitcherAdapter* adapter);

  /// The relay to this object, null after the stitch; owned by this object. The stitch tells the
  /// adapter's listener, which is this one unless the host sets another there.
  ProgressListener* progressListener() const;

  /// Takes over `listener`; the adapter keeps the listener that it has. The one before is not
  /// freed: it now belongs to the caller.
  void setProgressListener(ProgressListener* listener);

  /// The live preview, null before the first capture; owned by this object. All operations ask
  /// here, so that a derived class can give its own.
  virtual PreviewImage* previewImageCreator() const;

  /// Takes over `preview`. The one before is not freed: it now belongs to the caller.
  void setPreviewImageCreator(PreviewImage* preview);

 protected:
  /// Makes an object that setupStitcher still has to be called for, once a std::shared_ptr holds
  /// it.
  VelScrollingCapture() = default;

 private:
  void makePreviewWhenAbsent();
  cv::Size wholePreviewSize() const;

  bool _errorDuringStitching = false;
  std::weak_ptr<ScrollingProgressDelegate> _progressDelegate;
  std::unique_ptr<StitcherAdapter> _stitcherAdapter;
  std::unique_ptr<ProgressListener> _progressListener;
  std::unique_ptr<PreviewImage> _previewImageCreator;
  ImageSize _previewImageSize;
  /// Makes reading and writing the delegate and the preview size atomic.
  mutable std::mutex propertyMutex;
};

}  // namespace ScrollingCapture
