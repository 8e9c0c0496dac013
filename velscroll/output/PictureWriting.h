#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/output/Picture.h>
#include <velscroll/output/RowWriter.h>
#include <velscroll/output/staging/StagedOutput.h>

#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture::Program {

/// Where a picture goes, and how.
struct PictureOutput {
  std::string path;  ///< its extension tells the format; "-" is standard output, in PNG
  EncodingSettings settings;
  ImageMetadata metadata;
  std::optional<int> mostRowsPerFile;  ///< at least 1; cut into pieces that have no more
};

/// Told after every some rows how many of them have been taken. May throw, which ends the writing.
using RowProgress = std::function<void(int rows)>;

/// Throws TooLargeForFormat when the picture, or pieces of as many rows as asked for, cannot be
/// written in the format, and BadInput for pieces on standard output: to be called as soon as the
/// size is known.
void RequireWritable(const PictureOutput& output, const cv::Size& size);

/// Writes a picture into files that are not yet under their names: one, or one for each piece, if
/// there are two or more. Rendering, encoding and writing go on at once on as many threads as the
/// settings say; no more than some strips of rows are in memory, WebP aside.
///
/// Throws BadInput when a file cannot be written where it is asked for, Failed, Cancelled, and what
/// rendering throws; nothing is left behind then.
std::vector<std::unique_ptr<StagedOutput>> StagePicture(const Picture& picture,
                                                        const PictureOutput& output,
                                                        const RowProgress& progress);

/// A picture that is in memory already.
/// @param image CV_8UC4 with the channels red, green, blue and premultiplied alpha; its pixels are
///              shared
Picture PictureOf(const cv::Mat& image);

/// A picture that a stitch has made, which has to live as long.
Picture PictureOf(const StitchedPicture& picture);

}  // namespace ScrollingCapture::Program
