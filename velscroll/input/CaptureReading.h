#pragma once

#include <functional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// Takes the capture that was read from a file.
using TakeCapture = std::function<void(const std::string& file, const cv::Mat& capture)>;

/// Reads capture files one after another, as ReadCapture does, and hands each over.
///
/// Throws BadInput when a file is no usable capture, Cancelled when the user stops the work, and
/// what `take` throws.
void ReadCaptures(const std::vector<std::string>& files, const TakeCapture& take);

}  // namespace ScrollingCapture::Program
