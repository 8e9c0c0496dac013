#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {

/// Which cells of two captures do not follow the content's motion, for a reason: they belong to
/// parts that stand still on the window, or (where the content moves along both axes) move along
/// one of them only.
struct StandingParts {
  cv::Mat earlier;  ///< CV_8UC1, one element a cell, not 0 where the part lies in that capture
  cv::Mat later;
  int witnesses = 0;  ///< how many cells of the later capture have anchors that say so
};

/// Finds them by anchors that agree under (0, 0), or under one axis of the motion. What lies
/// between such anchors and the capture's edge belongs to a bar or panel, and what lies among them
/// to a part of rectangular shape, unless it is seen to move with the content.
StandingParts FindStandingParts(const std::vector<Match>& matches, const cv::Point& motion,
                                const cv::Size& capture);

/// Marks the cells of a patch.
void MarkPatch(cv::Mat& cells, const cv::Point& place);

}  // namespace ScrollingCapture
