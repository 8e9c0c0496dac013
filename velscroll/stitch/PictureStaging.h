#pragma once

#include <memory>
#include <vector>

#include <velscroll/output/Outputs.h>
#include <velscroll/report/Report.h>
#include <velscroll/terminal/Console.h>

#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture::Program {

/// Writes the parts of the picture, but not yet under their names. Throws Failed and Cancelled.
std::vector<ReportedPart> StageParts(
    const std::vector<std::shared_ptr<const StitchedPicture>>& parts, const ImageMetadata& metadata,
    Outputs& outputs, Console& console);

}  // namespace ScrollingCapture::Program
