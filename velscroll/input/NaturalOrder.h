#pragma once

#include <string>

namespace ScrollingCapture::Program {

/// Whether `first` comes before `second` in natural order: runs of digits count as numbers, so that
/// "capture-2" comes before "capture-10"; everything else is compared byte by byte. Numbers may be
/// of any length; of two that are equal the one with fewer leading zeros comes first.
bool ComesNaturallyBefore(const std::string& first, const std::string& second);

}  // namespace ScrollingCapture::Program
