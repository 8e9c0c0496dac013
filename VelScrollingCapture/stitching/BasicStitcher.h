#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/ITranslationDetector.h>

namespace ScrollingCapture {

/// Lays captures one after another onto a transparent canvas, with hard seams in the middle of
/// their overlaps.
///
/// Each capture sits at the place of the one before it minus their translation. A capture that did
/// not move is left out. Captures are placed with the size of the first; one of another size is
/// left out with a message. Reports the detector's progress over the first nine tenths of the
/// range, and the composing over the rest. One stitcher may run several stitches, one at a time.
///
/// Every failure writes one line to the standard error stream. Exceptions of OpenCV, other than
/// those raised while the result is sized, pass to the caller of Stitch.
class VEL_EXPORT BasicStitcher : public IStitcher {
 public:
  /// @param detector finds the translations; ownership is shared
  explicit BasicStitcher(std::shared_ptr<ITranslationDetector> detector);

  /// Stitches the captures as IStitcher tells.
  ///
  /// With a single capture, `result` shares that capture's pixels and the detector is not asked.
  bool Stitch(IImageProvider& provider, cv::Mat& result, IStitcherListener* listener,
              int progressStart, int progressEnd, bool notifyCompletion) override;

  std::vector<Translation> GetTranslations() const override;

 protected:
  /// Composes `result` from the captures and the translations of the last detection.
  /// @return false when sizing failed or the listener asked to stop; it has then been told why,
  ///         unless it refused the last progress call
  virtual bool BuildResultImage(IImageProvider& provider, cv::Mat& result,
                                IStitcherListener* listener, int progressStart, int progressEnd);

  /// Makes the transparent canvas.
  /// @param image     receives the canvas
  /// @param placement receives the place of the first capture, see CalcResultImage
  /// @return 0, or an IStitcherListener::StitcherErrorCodes value
  int SizeResultImage(cv::Mat& image, cv::Rect& placement);

  /// Finds the size of the result from the translations.
  ///
  /// The extremes grow by a whole step as soon as a capture passes them, so that after scrolling
  /// back and forth the result may be larger than the captures reach. Throws cv::Exception when an
  /// int cannot hold the number of its rows or columns.
  /// @param placement receives the first capture's place: x is its row and y its column in the
  ///                  result, width and height are the capture's columns and rows
  /// @param size      receives the size of the result in pixels
  /// @return false when there are no translations
  bool CalcResultImage(cv::Rect& placement, cv::Size& size);

  /// Cuts the capture that follows translation `index` along its seam.
  void CropSourceImage(cv::Mat& image, int index, const cv::Rect& placement);

 private:
  std::shared_ptr<ITranslationDetector> detector;
  std::vector<Translation> translations;
  std::shared_ptr<cv::Size> captureSize;
  std::int32_t imageType = 0;
};

}  // namespace ScrollingCapture
