#include <algorithm>
#include <cstdint>
#include <utility>

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

int ShrunkHeight(const cv::Mat& capture) {
  return TruncateToInt(static_cast<double>(capture.rows) / static_cast<double>(capture.cols) *
                       static_cast<double>(ShrunkWidth));
}

/// How one axis of the canvas has to grow for a capture to fit.
struct AxisGrowth {
  /// @param start        where the capture begins on the axis
  /// @param captureLength its length
  /// @param canvasLength  the canvas's present length
  AxisGrowth(int start, int captureLength, int canvasLength)
      : shift(start < 0 ? -std::int64_t{start} : 0),
        end(std::int64_t{captureLength} + (start < 0 ? 0 : start)),
        length(canvasLength + shift + std::max<std::int64_t>(end - canvasLength, 0)),
        grows(length > canvasLength) {}

  /// What the old canvas covers of the new one.
  cv::Range OldCanvas(int canvasLength) const {
    return {Narrowed(shift), Narrowed(shift + canvasLength)};
  }

  std::int64_t shift;   ///< By how much the canvas grows before its first element.
  std::int64_t end;     ///< Where the capture ends on the new canvas.
  std::int64_t length;  ///< The length of the new canvas.
  bool grows;
};

cv::Mat Grown(const cv::Mat& canvas, const AxisGrowth& rows, const AxisGrowth& columns) {
  cv::Mat grown(Narrowed(rows.length), Narrowed(columns.length), CV_8UC4, Background());
  cv::Mat block(grown, rows.OldCanvas(canvas.rows), columns.OldCanvas(canvas.cols));
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
  cv::Rect place = *placement;
  if (WrappedArea(place) < 1) {
    place.width = ShrunkWidth;
    place.height = ShrunkHeight(capture);
  }
  cv::Mat shrunk = ResizeImage(capture, place.size());
  Translation translation;
  if (lastCapture) {
    translation = detector.DetectTranslation(*lastCapture, shrunk);
    if (translation == Translation()) {
      return NotMoved;
    }
    place.x -= translation.GetCols();
    place.y -= translation.GetRows();
  }
  const cv::Rect lastPlace = std::exchange(*placement, place);
  const int result = UpdatePreview(shrunk, place, translation);
  if (result == Laid) {
    // Shared after the cut: the next detection compares with the capture as it was laid.
    lastCapture = std::make_shared<cv::Mat>(shrunk);
  } else {
    *placement = lastPlace;
  }
  return result;
} catch (const cv::Exception&) {
  return Failed;
}

cv::Mat PreviewImage::GetPreview() { return preview->clone(); }

cv::Mat PreviewImage::GetPreview(int maxWidth, int maxHeight) {
  return ResizeImage(*preview, FittedSize(preview->size(), maxWidth, maxHeight));
}

int PreviewImage::UpdatePreview(cv::Mat& capture, cv::Rect placement,
                                const Translation& translation) try {
  CV_Assert(capture.type() == preview->type());
  const AxisGrowth rows(placement.y, placement.height, preview->rows);
  const AxisGrowth columns(placement.x, placement.width, preview->cols);
  const bool growsDownOnly = rows.grows && rows.shift == 0 && !columns.grows;
  if (growsDownOnly && !preview->empty()) {
    *preview = GrownDown(*preview, Narrowed(rows.length));
  } else if (rows.grows || columns.grows) {
    *preview = Grown(*preview, rows, columns);
  }
  // Nothing fails from here on, so that a failure leaves the canvas as it was.
  if (placement.x < 0) {
    placement.x = 0;
    this->placement->x = 0;
  }
  if (placement.y < 0) {
    placement.y = 0;
    this->placement->y = 0;
  }
  if (lastCapture) {
    Utilities::CropCaptureImage(capture, translation, placement);
  }
  Utilities::BlendImages(capture, *preview, {placement.y, Narrowed(rows.end)},
                         {placement.x, Narrowed(columns.end)});
  return Laid;
} catch (const cv::Exception&) {
  return Failed;
}

}  // namespace ScrollingCapture
