#pragma once

#include <cstddef>
#include <string>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// \file
/// Matrices in files of their own, which only the user that wrote them may read: they hold what was
/// on a screen. MemoryEfficientImageProvider::SaveMat tells what a file looks like.

/// The size of an element in bytes; 0 for a matrix without dimensions.
size_t ElementSizeOf(const cv::Mat& image);

/// The size of all elements in bytes.
size_t PixelBytesOf(const cv::Mat& image);

/// Whether a spill file can give all of the matrix back: the number of elements that are read is
/// one of 32 bits with a sign, and there are two dimensions.
bool CanBeReadBack(const cv::Mat& image);

/// What a new file does with what already has its name.
enum class Existing {
  Replaced,  ///< overwrites a file, and follows a link
  Refused,   ///< is not written where there is anything, be it a link that leads nowhere
};

/// Writes a matrix, which has to be continuous.
/// @return false when there is no such file afterwards; what was written of it has been deleted
bool WriteSpillFile(const cv::Mat& image, const std::string& path, Existing existing);

/// Reads a matrix back. Throws std::runtime_error when that cannot be done; the matrix may have
/// been resized and partly filled by then.
void ReadSpillFile(cv::Mat& image, const std::string& path);

}  // namespace ScrollingCapture
