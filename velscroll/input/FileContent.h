#pragma once

#include <string>
#include <vector>

namespace ScrollingCapture::Program {

/// All bytes of a file, which may also be a pipe. Throws BadInput when it cannot be read, and
/// Cancelled when the user stops the work.
std::vector<unsigned char> ReadFile(const std::string& path);

}  // namespace ScrollingCapture::Program
