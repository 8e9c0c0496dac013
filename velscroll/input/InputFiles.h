#pragma once

#include <string>
#include <vector>

namespace ScrollingCapture::Program {

/// The capture files that the command line names.
///
/// A file stands for itself, also when its name looks like a glob. A folder stands for the image
/// files in it, hidden ones and folders below it aside; a glob for what it matches; both in natural
/// order. Files that are about to be written (`outputs`) are left out of folders and globs, so that
/// the same command can be run again. Throws BadInput when a name stands for nothing, or when a
/// capture that is given by its own name is also an output.
std::vector<std::string> FindCaptureFiles(const std::vector<std::string>& names,
                                          const std::vector<std::string>& outputs);

}  // namespace ScrollingCapture::Program
