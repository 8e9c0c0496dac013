#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/Place.h>

namespace ScrollingCapture {

/// What becomes of the parts of a window that stand still while its content scrolls.
enum class FixedParts {
  Once,  ///< They appear once, as they would in a window as large as the picture.
  Keep,  ///< They are content like any other: each capture is laid over those before it.
};

/// How a mosaic is made.
struct MosaicSettings {
  FixedParts fixedParts = FixedParts::Once;  ///< What becomes of parts that stand still.

  /// How many threads the analysis may use; 0 counts as 1.
  unsigned threadCount = 1;
};

/// The whole picture that captures of a scrolling window show, given where each of them lies.
///
/// It shows the content as a window large enough for all of it would. Every pixel is one that some
/// capture has at that place; nothing is blended. Where captures disagree, those count that show
/// the place uncovered: not under a toolbar, panel or button that stands still in the window. Of
/// what they show, the value that most of them have is taken, and of equally frequent ones that of
/// the latest capture. A part that differs from capture to capture by itself, such as a video,
/// comes from one capture as a whole. What is never shown uncovered stays covered: a fixed part in
/// the upper or left half of the window as the topmost or leftmost capture has it, one in the other
/// halves as the last one down or to the right has it, and plain background in between. Places that
/// no capture shows are transparent: all channels are 0.
///
/// Captures are fetched from the provider when they are needed, a few at a time, and are never
/// written to. The provider must outlive the mosaic and keep its captures; the mosaic keeps of them
/// only which one shows what. Exceptions of the provider and of allocations pass to the caller.
class VEL_EXPORT Mosaic {
 public:
  /// Analyses the captures.
  ///
  /// Throws std::invalid_argument when there are not as many places as captures, when a capture has
  /// no pixels, not 8 bits a channel, or another size or type than the first one, and
  /// std::length_error when an int cannot hold the rows or columns of the picture.
  /// @param captures of one size and type, with 1 to 4 channels of 8 bits, in the order in which
  ///                 they were taken
  /// @param places   where each capture lies; only their distances count
  Mosaic(IImageProvider& captures, const std::vector<Place>& places,
         const MosaicSettings& settings = {});

  /// Analyses the captures as the constructor does, and tells of progress.
  /// @param listener      hears of progress on the calling thread; may be null, and is not owned.
  ///                      When it asks to stop, it is told IStitcherListener::Cancelled.
  /// @param progressStart progress at the start of the analysis
  /// @param progressEnd   progress at its end
  /// @return null when the listener asked to stop
  static std::unique_ptr<Mosaic> Analyse(IImageProvider& captures, const std::vector<Place>& places,
                                         const MosaicSettings& settings,
                                         IStitcherListener* listener, int progressStart,
                                         int progressEnd);

  Mosaic(const Mosaic&) = delete;
  Mosaic& operator=(const Mosaic&) = delete;
  ~Mosaic();

  /// The bounding box of the captures; empty when there are none.
  cv::Size Size() const;

  /// OpenCV's type code of the captures and of the picture.
  int Type() const;

  /// Gives an area of the picture; what lies outside of the picture is transparent.
  ///
  /// May be called from several threads at once, each with a matrix of its own.
  /// @param area   in pixels of the picture, whose top-left pixel is at (0, 0)
  /// @param pixels receives the area; a matrix of its size and type keeps its buffer
  void Render(const cv::Rect& area, cv::Mat& pixels) const;

  /// Where a capture lies in the picture. The index is not checked.
  cv::Rect AreaOf(size_t capture) const;

  /// Which capture shows a pixel of the picture; nothing where none does.
  std::optional<size_t> CaptureAt(const cv::Point& pixel) const;

 private:
  class Composition;

  explicit Mosaic(std::unique_ptr<const Composition> composition);

  std::unique_ptr<const Composition> composition;
};

}  // namespace ScrollingCapture
