#include <algorithm>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/StandingParts.h>

namespace ScrollingCapture {
namespace {

constexpr int Marked = 255;

/// How far apart letters of one part may be, in cells.
constexpr int Reach = 2;

/// Between letters of a bar, and from them to the window's edge, there are at most so many cells.
constexpr int BarReach = 10;

/// Fewer anchors are no part.
constexpr int LeastAnchors = 8;

/// A bar or panel takes at most this share of the window.
constexpr double LargestBar = 0.4;

/// What is seen in one of the two captures.
struct Sightings {
  cv::Mat standing;
  cv::Mat moving;
};

bool IsMarked(const cv::Mat& line) { return cv::countNonZero(line) > 0; }

/// Marks the lines from an edge on as far as something stands there and nothing moves.
/// @param lineAt gives the cells of the line at some distance from the edge
/// @return how many lines it marked
template <typename LineAt>
int MarkBar(Sightings& seen, int lines, LineAt lineAt) {
  int last = -1;
  const int most = static_cast<int>(lines * LargestBar);
  for (int line = 0; line < most && line <= last + BarReach; ++line) {
    if (IsMarked(lineAt(seen.moving, line))) {
      break;
    }
    if (IsMarked(lineAt(seen.standing, line))) {
      last = line;
    }
  }
  for (int line = 0; line <= last; ++line) {
    lineAt(seen.standing, line).setTo(Marked);
  }
  return last + 1;
}

/// Marks a panel at the left or right, as far up and down as anything stands there.
/// @param columns those that the panel may take
/// @param lineAt as for MarkBar
template <typename LineAt>
void MarkPanel(const Sightings& seen, const cv::Range& columns, LineAt lineAt) {
  const cv::Mat part = seen.standing.colRange(columns);
  if (part.empty() || !IsMarked(part)) {
    return;
  }
  const cv::Rect standing = cv::boundingRect(part);
  const cv::Range rows(standing.y, standing.br().y);
  Sightings beside = {seen.standing.rowRange(rows), seen.moving.rowRange(rows)};
  MarkBar(beside, seen.standing.cols, lineAt);
}

/// What stands in a bar above or below is no sign of a panel at the side.
void MarkBars(Sightings& seen) {
  const cv::Size cells = seen.standing.size();
  const int above =
      MarkBar(seen, cells.height, [](cv::Mat& mat, int line) { return mat.row(line); });
  const int below = MarkBar(seen, cells.height,
                            [](cv::Mat& mat, int line) { return mat.row(mat.rows - 1 - line); });
  const Sightings between = {seen.standing.rowRange(above, cells.height - below),
                             seen.moving.rowRange(above, cells.height - below)};
  const int most = static_cast<int>(cells.width * LargestBar);
  MarkPanel(between, {0, most}, [](cv::Mat& mat, int line) { return mat.col(line); });
  MarkPanel(between, {cells.width - most, cells.width},
            [](cv::Mat& mat, int line) { return mat.col(mat.cols - 1 - line); });
}

/// Fills the bounding boxes of what stands close together.
void FillParts(Sightings& seen) {
  cv::Mat joined;
  cv::dilate(seen.standing, joined,
             cv::getStructuringElement(cv::MORPH_RECT, {2 * Reach + 1, 2 * Reach + 1}));
  cv::Mat labels;
  cv::Mat statistics;
  cv::Mat centroids;
  const int parts = cv::connectedComponentsWithStats(joined, labels, statistics, centroids);
  for (int part = 1; part < parts; ++part) {
    const auto* const box = statistics.ptr<int>(part);
    const cv::Rect cells(box[cv::CC_STAT_LEFT] + 1, box[cv::CC_STAT_TOP] + 1,
                         box[cv::CC_STAT_WIDTH] - 2, box[cv::CC_STAT_HEIGHT] - 2);
    seen.standing(cells & cv::Rect({0, 0}, seen.standing.size())).setTo(Marked);
  }
}

/// The motions that parts of the window have besides the content's.
std::vector<cv::Point> MotionsOfParts(const std::vector<Match>& matches, const cv::Point& motion) {
  std::vector<cv::Point> parts;
  if (motion != cv::Point()) {
    for (const cv::Point& part :
         {cv::Point(0, 0), cv::Point(motion.x, 0), cv::Point(0, motion.y)}) {
      const auto isOfPart = [&](const Match& match) { return match.motion == part; };
      if (part != motion &&
          std::count_if(matches.begin(), matches.end(), isOfPart) >= LeastAnchors) {
        parts.push_back(part);
      }
    }
  }
  return parts;
}

cv::Mat Complete(Sightings& seen) {
  if (IsMarked(seen.standing)) {
    FillParts(seen);
    MarkBars(seen);
    seen.standing.setTo(0, seen.moving);
  }
  return seen.standing;
}

}  // namespace

void MarkPatch(cv::Mat& cells, const cv::Point& place) {
  // Three cells along each axis, of which the last two may be one.
  for (const int row : {0, CellSide, PatchSide - 1}) {
    auto* const line = cells.ptr<unsigned char>((place.y + row) / CellSide);
    for (const int column : {0, CellSide, PatchSide - 1}) {
      line[(place.x + column) / CellSide] = Marked;
    }
  }
}

StandingParts FindStandingParts(const std::vector<Match>& matches, const cv::Point& motion,
                                const cv::Size& capture) {
  const cv::Size cells = CellsOf(capture);
  const auto none = [cells] {
    return Sightings{cv::Mat::zeros(cells, CV_8UC1), cv::Mat::zeros(cells, CV_8UC1)};
  };
  Sightings earlier = none();
  Sightings later = none();
  const std::vector<cv::Point> parts = MotionsOfParts(matches, motion);
  if (parts.empty()) {
    return {earlier.standing, later.standing, 0};
  }
  cv::Mat witnesses = cv::Mat::zeros(cells, CV_8UC1);
  for (const Match& match : matches) {
    if (match.motion == motion) {
      MarkPatch(earlier.moving, match.place - match.motion);
      MarkPatch(later.moving, match.place);
    } else if (std::find(parts.begin(), parts.end(), match.motion) != parts.end()) {
      MarkPatch(earlier.standing, match.place - match.motion);
      MarkPatch(later.standing, match.place);
      witnesses.at<unsigned char>(CentreOf(match.place) / CellSide) = Marked;
    }
  }
  return {Complete(earlier), Complete(later), cv::countNonZero(witnesses)};
}

}  // namespace ScrollingCapture
