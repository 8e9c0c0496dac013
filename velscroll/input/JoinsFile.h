#pragma once

#include <optional>
#include <string>
#include <vector>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Program {

/// The motions that a report tells, which a person may have corrected: one element a capture, how
/// far the content moved since the capture before. Nothing for the first capture, and where the
/// report knew of none and nobody has put one there.
///
/// Throws BadInput when the file cannot be read, is no report, or is one about other captures.
/// @param captures the files that the report has to be about, in whatever folder
std::vector<std::optional<Translation>> ReadJoins(const std::string& path,
                                                  const std::vector<std::string>& captures);

}  // namespace ScrollingCapture::Program
