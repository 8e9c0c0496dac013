#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <velscroll/output/Outputs.h>
#include <velscroll/report/Report.h>

#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture::Program {

using PictureParts = std::vector<std::shared_ptr<const StitchedPicture>>;

/// As Outputs::RequireWritable.
void RequireWritable(const PictureParts& parts, const Outputs& outputs);

/// Writes the parts of the picture, but not yet under their names. Throws BadInput, Failed and
/// Cancelled.
/// @param tell hears how much of all parts has been written, in percent; may throw, which ends it
std::vector<ReportedPart> StageParts(const PictureParts& parts, const ImageMetadata& metadata,
                                     Outputs& outputs, const std::function<void(int)>& tell);

/// The files into which parts were written.
std::vector<std::string> FilesOf(const std::vector<ReportedPart>& parts);

/// Tells in one line that the picture would be written over a capture, if it would: parts and
/// pieces have names that nobody has typed.
std::optional<std::string> OverwriteComplaint(const ReportContent& content);

}  // namespace ScrollingCapture::Program
