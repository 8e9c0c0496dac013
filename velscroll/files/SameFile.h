#pragma once

#include <string>

namespace ScrollingCapture::Program {

/// Whether two paths name the same file, which need not exist.
bool IsSameFile(const std::string& first, const std::string& second);

}  // namespace ScrollingCapture::Program
