#pragma once

#include <cstddef>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// Rows as they are compressed in a PNG file (ISO/IEC 15948, clause 9): each after a byte that
/// names its filter.
///
/// A page's letters repeat, so rows as they are compress best; photographs take the differences
/// from what the neighbours predict (Paeth). Which of both is smaller is tried on some rows of a
/// block. Against choosing row by row, by the least sum of differences, that takes less than half
/// of the time, and makes smaller files of text.
/// @param above the row above the first one, of the same type; empty at the top of the picture
/// @param rows  CV_8UC3 or CV_8UC4, continuous
std::vector<unsigned char> FilterForPng(const cv::Mat& above, const cv::Mat& rows);

}  // namespace ScrollingCapture::Program
