#pragma once

#include <filesystem>
#include <string>

namespace ScrollingCapture::Program {

/// The absolute path of a file, which need not exist, without links: all paths that name the file
/// have the same.
std::filesystem::path ResolvedPath(const std::string& path);

/// Whether two paths name the same file, which need not exist.
bool IsSameFile(const std::string& first, const std::string& second);

}  // namespace ScrollingCapture::Program
