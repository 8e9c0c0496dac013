#pragma once

#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

/// All that one capture run needs: the captures (it is itself their provider), the stitcher and the
/// result. One thread at a time.
class VEL_EXPORT StitcherAdapter : public ScrollingCapture::BasicImageProvider {
 public:
  /// Looks for motion in both directions, on one thread, and expects no consistent translations.
  StitcherAdapter();

  /// The arguments go to ScrollingCapture::StitcherFactory::CreateBasicStitcher unchanged.
  StitcherAdapter(ScrollingCapture::ScrollOrientation orientation,
                  bool expectConsistentTranslations, int threadCount);

  /// Sets who hears of progress. The listener is not owned and may be null; it must outlive every
  /// stitch that it is set for.
  void setProgressListener(ScrollingCapture::IStitcherListener* listener);

  /// Who hears of progress, or null.
  ScrollingCapture::IStitcherListener* progressListener() const;

  /// Stitches the captures with progress from 0 to 100 and a completion notice.
  /// @return true on success
  bool stitchImages();

  /// The stitched image, sharing its pixels; empty before the first successful stitch.
  cv::Mat getResult();

 protected:
  /// Has another stitcher do the work.
  void useStitcher(std::shared_ptr<ScrollingCapture::IStitcher> other);

 private:
  cv::Mat result;
  std::shared_ptr<ScrollingCapture::IStitcher> stitcher;
  ScrollingCapture::IStitcherListener* listener = nullptr;
};
