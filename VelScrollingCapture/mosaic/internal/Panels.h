#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/Blame.h>

namespace ScrollingCapture {

/// Finds the cells of panels, which stand at a side of the window all along the scroll direction.
///
/// A panel meets only itself below or above. Its entries contradict each other and its plain
/// background, which agrees with itself wherever it moves, so that evidence makes the background
/// content, and the entries' contradictions nobody's fault. What tells a panel from a margin is
/// that things that stand still contradict each other there: they would not if they were content.
/// @param pixels a capture of the stretch
/// @param cells  of the window
/// @return cells that all captures show covered (CV_8U), not 0
cv::Mat FindPanels(const SequenceEvidence& evidence, const cv::Mat& pixels, const cv::Size& cells,
                   bool vertically, bool sideways);

}  // namespace ScrollingCapture
