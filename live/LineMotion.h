#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// A number for every row of pixels, equal for equal rows. A row that repeats the one above it says
/// nothing about motion, and has 0.
/// @param pixels CV_8UC4
std::vector<std::uint64_t> LineNumbers(const cv::Mat& pixels);

/// By how many lines the content moved, as lines tell that occur once before and once now: the
/// motion that most of them speak for. Those that stand still speak for no motion only where hardly
/// any moves.
/// @param before,now what LineNumbers gives, of as many lines
/// @return nothing when too few lines speak, or they speak for several motions
std::optional<int> LineMotion(const std::vector<std::uint64_t>& before,
                              const std::vector<std::uint64_t>& now);

}  // namespace ScrollingCapture::Live
