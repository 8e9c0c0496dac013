#include <algorithm>
#include <cstddef>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/CorrelationCandidates.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

/// Reduced captures have at most so many pixels a side.
constexpr int ReducedSide = 720;

/// What varies more slowly than this many reduced pixels does not count: shades and gradients.
constexpr int SlowestDetail = 15;

constexpr int PeaksOfSurface = 8;
constexpr int PeaksOfAxis = 6;

/// Around a peak nothing else is a peak.
constexpr int PeakReach = 2;

/// Refinement compares one of so many rows.
constexpr int RefinedRows = 3;

/// The least part of a capture that an overlap has along either axis.
constexpr int LeastOverlap = 16;

cv::Mat ReducedDetails(const cv::Mat& grey, const cv::Size& size) {
  cv::Mat reduced;
  cv::resize(grey, reduced, size, 0, 0, cv::INTER_AREA);
  reduced.convertTo(reduced, CV_32F);
  cv::Mat slow;
  cv::boxFilter(reduced, slow, CV_32F, {SlowestDetail, SlowestDetail});
  return reduced - slow;
}

/// Divides each component by its magnitude.
void Whiten(cv::Mat& spectrum) {
  for (int row = 0; row < spectrum.rows; ++row) {
    auto* const values = spectrum.ptr<cv::Vec2f>(row);
    for (int column = 0; column < spectrum.cols; ++column) {
      const float magnitude = std::sqrt(values[column].dot(values[column]));
      values[column] *= 1.0F / (magnitude + 1e-6F);
    }
  }
}

cv::Mat Spectrum(const cv::Mat& details, const cv::Size& size) {
  cv::Mat padded = cv::Mat::zeros(size, CV_32F);
  details.copyTo(padded(cv::Rect({0, 0}, details.size())));
  cv::Mat spectrum;
  cv::dft(padded, spectrum, cv::DFT_COMPLEX_OUTPUT, details.rows);
  return spectrum;
}

/// Element (row, column) is for the motion by that many rows and columns, modulo the size.
cv::Mat Surface(const cv::Mat& earlier, const cv::Mat& later) {
  const cv::Size size(cv::getOptimalDFTSize(2 * later.cols), cv::getOptimalDFTSize(2 * later.rows));
  cv::Mat product;
  cv::mulSpectrums(Spectrum(later, size), Spectrum(earlier, size), product, 0, true);
  Whiten(product);
  cv::Mat surface;
  cv::dft(product, surface, cv::DFT_INVERSE | cv::DFT_REAL_OUTPUT);
  return surface;
}

/// Takes the highest elements out of some rows and columns of a surface, and their surroundings.
class Peaks {
 public:
  explicit Peaks(const cv::Mat& surface) : surface(surface.clone()) {}

  void Take(const cv::Rect& part, int count, std::vector<cv::Point>& peaks) {
    for (int i = 0; i < count; ++i) {
      cv::Point peak;
      double height = 0;
      cv::minMaxLoc(surface(part), nullptr, &height, nullptr, &peak);
      if (height <= 0) {
        return;
      }
      peak += part.tl();
      peaks.push_back(Unwrapped(peak));
      Clear(peak);
    }
  }

 private:
  cv::Point Unwrapped(const cv::Point& peak) const {
    return {peak.x * 2 < surface.cols ? peak.x : peak.x - surface.cols,
            peak.y * 2 < surface.rows ? peak.y : peak.y - surface.rows};
  }

  void Clear(const cv::Point& peak) {
    for (int y = -PeakReach; y <= PeakReach; ++y) {
      for (int x = -PeakReach; x <= PeakReach; ++x) {
        surface.at<float>((peak.y + y + surface.rows) % surface.rows,
                          (peak.x + x + surface.cols) % surface.cols) = 0;
      }
    }
  }

  cv::Mat surface;
};

std::vector<cv::Point> PeaksOf(const cv::Mat& surface, ScrollOrientation orientation) {
  std::vector<cv::Point> peaks;
  Peaks remaining(surface);
  const cv::Rect rows(0, 0, 1, surface.rows);
  const cv::Rect columns(0, 0, surface.cols, 1);
  if (orientation == Both) {
    remaining.Take({{0, 0}, surface.size()}, PeaksOfSurface, peaks);
  }
  if (orientation != Horizontal) {
    remaining.Take(rows, PeaksOfAxis, peaks);
  }
  if (orientation != Vertical) {
    remaining.Take(columns, PeaksOfAxis, peaks);
  }
  return peaks;
}

/// A view of some of the rows of a part of a capture.
cv::Mat SomeRows(const cv::Mat& grey, const cv::Rect& part) {
  const cv::Mat view = grey(part);
  return {(view.rows + RefinedRows - 1) / RefinedRows, view.cols, CV_8UC1, view.data,
          view.step * RefinedRows};
}

bool OverlapsEnough(const cv::Rect& overlap) {
  return overlap.width >= LeastOverlap && overlap.height >= LeastOverlap;
}

double MeanDifference(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion) {
  const cv::Rect overlap = OverlapOf(later.size(), motion);
  if (!OverlapsEnough(overlap)) {
    return 256;
  }
  const cv::Mat rows = SomeRows(later, overlap);
  return cv::norm(SomeRows(earlier, overlap - motion), rows, cv::NORM_L1) /
         static_cast<double>(rows.total());
}

/// Of the motions that a reduced one may stand for, the one with the least difference.
cv::Point Refine(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& coarse, int reach,
                 ScrollOrientation orientation) {
  cv::Point best = coarse;
  double least = 257;
  for (int y = -reach; y <= reach; ++y) {
    for (int x = -reach; x <= reach; ++x) {
      const cv::Point motion = coarse + cv::Point(x, y);
      if (IsAllowed(motion, orientation)) {
        const double difference = MeanDifference(earlier, later, motion);
        if (difference < least) {
          least = difference;
          best = motion;
        }
      }
    }
  }
  return best;
}

}  // namespace

std::vector<cv::Point> CorrelationCandidates(const cv::Mat& earlier, const cv::Mat& later,
                                             ScrollOrientation orientation) {
  const int factor = (std::max(later.cols, later.rows) + ReducedSide - 1) / ReducedSide;
  const cv::Size reduced(std::max(1, later.cols / factor), std::max(1, later.rows / factor));
  const cv::Mat surface = Surface(ReducedDetails(earlier, reduced), ReducedDetails(later, reduced));
  std::vector<cv::Point> candidates;
  for (const cv::Point& peak : PeaksOf(surface, orientation)) {
    const cv::Point coarse(cvRound(1.0 * peak.x * later.cols / reduced.width),
                           cvRound(1.0 * peak.y * later.rows / reduced.height));
    const cv::Point refined = Refine(earlier, later, coarse, factor, orientation);
    if (IsAllowed(refined, orientation) && OverlapsEnough(OverlapOf(later.size(), refined)) &&
        std::find(candidates.begin(), candidates.end(), refined) == candidates.end()) {
      candidates.push_back(refined);
    }
  }
  return candidates;
}

}  // namespace ScrollingCapture
