#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/output/Picture.h>

namespace ScrollingCapture::Program {

/// Where to cut a picture into pieces of at most some rows: from top to bottom, without gaps.
///
/// Among the last quarter of the rows that a piece could have, the lowest cut is taken that has a
/// row of one colour directly above or below it, since no line of text crosses such a row. Without
/// one, a piece has as many rows as it may. Only the rows that a cut is looked for in are rendered.
/// @param mostRows at least 1
std::vector<cv::Range> CutIntoPieces(const Picture& picture, int mostRows);

/// The name of a piece: page-1.png for the first one of page.png.
/// @param number from 1
std::string PieceName(const std::string& path, size_t number);

}  // namespace ScrollingCapture::Program
