#include <algorithm>
#include <cstdint>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/core/internal/Narrowing.h>
#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture {
namespace {

constexpr int DefaultCanvasSide = 750;
constexpr int DefaultOrigin = 250;
constexpr int ShrunkWidth = 250;

/// PreviewBackground, for previews that are made before it is: by static initialisers of a host
/// that contains the library.
cv::Scalar Background() { return {0, 0, 0, 255}; }

/// What AddCapture and UpdatePreview answer.
enum AddResult : int { Laid = 0, NotMoved = 1, Failed = 3 };

/// The product of width and height in 32 bits: it wraps around like the size check of the first
/// capture expects, but without overflow of a signed type.
std::int32_t WrappedArea(const cv::Rect& rect) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(rect.width) *
                                   static_cast<std::uint32_t>(rect.height));
}

/// The size to which captures are shrunk: that of the last one, or else a width of its own with the
/// aspect of the first.
cv::Size ShrunkSize(const cv::Rect& last, const cv::Mat& capture) {
  if (WrappedArea(last) >= 1) {
    return last.size();
  }
  return {ShrunkWidth,
          TruncateToInt(static_cast<double>(capture.rows) / static_cast<double>(capture.cols) *
                        static_cast<double>(ShrunkWidth))};
}

/// How one axis of the canvas has to grow for a capture to fit.
class AxisGrowth {
 public:
  /// @param start        where the capture begins on the axis
  /// @param captureLength its length
  /// @param canvasLength  the canvas's present length
  AxisGrowth(int start, int captureLength, int canvasLength)
      : canvasLength(canvasLength),
        shift(start < 0 ? -std::int64_t{start} : 0),
        captureStart(std::max(start, 0)),
        captureEnd(captureStart + captureLength),
        length(canvasLength + shift + std::max<std::int64_t>(captureEnd - canvasLength, 0)) {}

  bool Grows() const { return length > canvasLength; }
  bool GrowsAtItsStart() const { return shift > 0; }

  /// The length of the new canvas.
  int Length() const { return Narrowed(length); }

  /// What the old canvas covers of the new one.
  cv::Range OldCanvas() const { return {Narrowed(shift), Narrowed(shift + canvasLength)}; }

  /// What the capture covers of the new one.
  cv::Range Capture() const { return {Narrowed(captureStart), Narrowed(captureEnd)}; }

 private:
  std::int64_t canvasLength;
  std::int64_t shift;  // by how much the canvas grows before its first element
  std::int64_t captureStart;
  std::int64_t captureEnd;
  std::int64_t length;
};

cv::Mat Grown(const cv::Mat& canvas, const AxisGrowth& rows, const AxisGrowth& columns) {
  cv::Mat grown(rows.Length(), columns.Length(), CV_8UC4, Background());
  cv::Mat block(grown, rows.OldCanvas(), columns.OldCanvas());
  canvas.copyTo(block);
  return grown;
}

/// The canvas, which has pixels, with further rows at its end. Most pages grow this way, capture
/// after capture: room is made for more rows than are asked for, so that the canvas is not copied
/// for each of them.
cv::Mat GrownDown(const cv::Mat& canvas, int rows) {
  cv::Size allocated;
  cv::Point origin;
  canvas.locateROI(allocated, origin);
  cv::Mat grown = canvas;
  if (rows > allocated.height) {
    cv::Mat roomy(Narrowed(std::int64_t{rows} * 3 / 2), canvas.cols, CV_8UC4);
    grown = roomy.rowRange(0, canvas.rows);
    canvas.copyTo(grown);
  }
  grown.adjustROI(0, rows - canvas.rows, 0, 0);
  grown.rowRange(canvas.rows, rows) = Background();
  return grown;
}

/// The canvas with room for a capture; the very same when it has it already.
cv::Mat WithRoom(const cv::Mat& canvas, const AxisGrowth& rows, const AxisGrowth& columns) {
  if (!rows.Grows() && !columns.Grows()) {
    return canvas;
  }
  const bool growsDownOnly = !rows.GrowsAtItsStart() && !columns.Grows();
  return growsDownOnly && !canvas.empty() ? GrownDown(canvas, rows.Length())
                                          : Grown(canvas, rows, columns);
}

/// `size` scaled down to fit into a box. Each step works on the whole pixels of the one before.
cv::Size FittedSize(const cv::Size& size, int maxWidth, int maxHeight) {
  cv::Size fitted = size;
  if (size.height > maxHeight) {
    fitted.height = maxHeight;
    fitted.width = TruncateToInt(maxHeight * (static_cast<double>(size.width) / size.height));
  }
  if (fitted.width > maxWidth) {
    fitted.height = TruncateToInt(maxWidth * (static_cast<double>(fitted.height) / fitted.width));
    fitted.width = maxWidth;
  }
  return fitted;
}

}  // namespace

cv::Mat ResizeImage(const cv::Mat& image, const cv::Size& size) {
  cv::Mat resized;
  cv::resize(image, resized, size, 0, 0, cv::INTER_LINEAR);
  return resized;
}

PreviewImage::PreviewImage()
    : PreviewImage({DefaultCanvasSide, DefaultCanvasSide}, DefaultOrigin, DefaultOrigin) {}

PreviewImage::PreviewImage(cv::Size size, int row, int column)
    : preview(std::make_shared<cv::Mat>(size, CV_8UC4, Background())),
      detector(ScrollOrientation::Both, false, 1),
      placement(std::make_shared<cv::Rect>(column, row, 0, 0)) {}

PreviewImage::~PreviewImage() = default;

int PreviewImage::AddCapture(const cv::Mat& capture) try {
  const cv::Rect last = *placement;
  cv::Rect next(last.tl(), ShrunkSize(last, capture));
  cv::Mat shrunk = ResizeImage(capture, next.size());
  Translation translation;
  if (lastCapture) {
    translation = detector.DetectTranslation(*lastCapture, shrunk);
    if (translation == Translation()) {
      return NotMoved;
    }
    next -= cv::Point(translation.GetCols(), translation.GetRows());
  }
  *placement = next;
  const int result = UpdatePreview(shrunk, next, translation);
  if (result != Laid) {
    *placement = last;
    return result;
  }
  // Shared after the cut: the next detection compares with the capture as it was laid.
  lastCapture = std::make_shared<cv::Mat>(shrunk);
  return Laid;
} catch (const cv::Exception&) {
  return Failed;
}

/// A clone of nothing has neither the canvas's size nor its type.
cv::Mat PreviewImage::GetPreview() { return preview->empty() ? *preview : preview->clone(); }

cv::Mat PreviewImage::GetPreview(int maxWidth, int maxHeight) {
  return ResizeImage(*preview, FittedSize(preview->size(), maxWidth, maxHeight));
}

int PreviewImage::UpdatePreview(cv::Mat& capture, cv::Rect placement,
                                const Translation& translation) try {
  CV_Assert(capture.type() == preview->type());
  const AxisGrowth rows(placement.y, placement.height, preview->rows);
  const AxisGrowth columns(placement.x, placement.width, preview->cols);
  *preview = WithRoom(*preview, rows, columns);
  // Nothing fails from here on, so that a failure leaves the canvas as it was.
  if (rows.GrowsAtItsStart()) {
    this->placement->y = 0;
  }
  if (columns.GrowsAtItsStart()) {
    this->placement->x = 0;
  }
  if (lastCapture) {
    Utilities::CropCaptureImage(capture, translation, placement);
  }
  Utilities::BlendImages(capture, *preview, rows.Capture(), columns.Capture());
  return Laid;
} catch (const cv::Exception&) {
  return Failed;
}

}  // namespace ScrollingCapture
