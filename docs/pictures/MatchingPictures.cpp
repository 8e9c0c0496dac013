#include "MatchingPictures.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>
#include <VelScrollingCapture/matching/internal/StandingParts.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

const cv::Scalar Moving(40, 150, 60, 255);
const cv::Scalar Standing(50, 90, 220, 255);
const cv::Scalar Accident(220, 40, 40, 255);
const cv::Scalar Paper(255, 255, 255, 255);

constexpr int Lines = 120;
constexpr int ChartWidth = 260;

std::vector<Match> MatchesOf(const cv::Mat& earlier, const cv::Mat& later) {
  return UniqueMatches(FindAnchors(earlier), FindAnchors(later), Both);
}

cv::Point MostVoted(const std::vector<CountedMotion>& counted) {
  const auto moved = std::find_if(counted.begin(), counted.end(), [](const auto& candidate) {
    return candidate.motion != cv::Point();
  });
  return moved == counted.end() ? cv::Point() : moved->motion;
}

cv::Scalar ColourOf(const cv::Point& motion, const cv::Point& content) {
  return motion == content ? Moving : motion == cv::Point() ? Standing : Accident;
}

cv::Mat Faded(const cv::Mat& capture) {
  cv::Mat faded;
  cv::addWeighted(capture, 0.45, cv::Mat(capture.size(), capture.type(), Paper), 0.55, 0, faded);
  return faded;
}

/// Bars from the left; the one in the middle is for standing still. Their square roots show few
/// votes beside many.
cv::Mat DrawChart(const std::vector<CountedMotion>& counted, int height) {
  cv::Mat chart(height, ChartWidth, CV_8UC4, Paper);
  const cv::Point content = MostVoted(counted);
  const double most = std::sqrt(counted.empty() ? 1 : counted.front().votes);
  for (auto motion = counted.rbegin(); motion != counted.rend(); ++motion) {
    const int row = (height + motion->motion.y) / 2;
    const int length = cvRound((ChartWidth - 1) * std::sqrt(motion->votes) / most);
    cv::line(chart, {0, row}, {length, row}, ColourOf(motion->motion, content), 4);
  }
  return chart;
}

void Tint(cv::Mat& picture, const cv::Rect& area, const cv::Scalar& colour) {
  cv::Mat part = picture(area);
  cv::addWeighted(part, 0.6, cv::Mat(part.size(), part.type(), colour), 0.4, 0, part);
}

}  // namespace

cv::Point MotionOfMostVotes(const cv::Mat& earlier, const cv::Mat& later) {
  return MostVoted(CountMotions(MatchesOf(earlier, later)));
}

cv::Mat DrawVotes(const cv::Mat& earlier, const cv::Mat& later) {
  const std::vector<Match> matches = MatchesOf(earlier, later);
  const std::vector<CountedMotion> counted = CountMotions(matches);
  cv::Mat picture;
  cv::hconcat(std::vector<cv::Mat>{Faded(earlier), Faded(later), DrawChart(counted, later.rows)},
              picture);
  const std::size_t step = std::max<std::size_t>(1, matches.size() / Lines);
  for (std::size_t i = 0; i < matches.size(); i += step) {
    const cv::Point from = CentreOf(matches[i].place - matches[i].motion);
    const cv::Point to = CentreOf(matches[i].place) + cv::Point(earlier.cols, 0);
    cv::line(picture, from, to, ColourOf(matches[i].motion, MostVoted(counted)), 2, cv::LINE_AA);
  }
  return picture;
}

cv::Mat DrawProof(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion) {
  const std::vector<Match> matches = MatchesOf(earlier, later);
  const StandingParts parts =
      FindStandingParts(matches, MostVoted(CountMotions(matches)), later.size());
  const Comparison comparison =
      Compare(PixelKeysOf(earlier, false), PixelKeysOf(later, false), motion, Vectors::Widest);
  cv::Mat picture = later.clone();
  for (int row = 0; row < comparison.unequal.rows; ++row) {
    for (int column = 0; column < comparison.unequal.cols; ++column) {
      const cv::Rect cell =
          cv::Rect(column * CellSide, row * CellSide, CellSide, CellSide) & comparison.overlap;
      if (!cell.empty()) {
        const cv::Point before = (cell.tl() + cell.br()) / 2 - motion;
        const bool stands = parts.later.at<unsigned char>(row, column) != 0 ||
                            parts.earlier.at<unsigned char>(before / CellSide) != 0;
        const bool agrees = comparison.unequal.at<unsigned char>(row, column) == 0;
        Tint(picture, cell, stands ? Standing : agrees ? Moving : Accident);
      }
    }
  }
  return picture;
}

}  // namespace ScrollingCapture
