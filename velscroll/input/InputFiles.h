#pragma once

#include <string>
#include <vector>

namespace ScrollingCapture::Program {

/// The capture files that the command line names.
///
/// A file stands for itself, also when its name looks like a glob. A folder stands for the image
/// files in it, hidden ones and folders below it aside; a glob for what it matches; both in natural
/// order. Files that are about to be written (`outputs`) are left out of folders and globs, so that
/// the same command can be run again. That is so of names that the user gave: whether page-1.png is
/// a piece of page.png from an earlier run or a capture that happens to be called so, its name does
/// not tell, and a capture that was left out would be lost when the pieces are written.
///
/// Throws BadInput when a name stands for nothing, or when a capture that is given by its own name
/// is also an output.
std::vector<std::string> FindCaptureFiles(const std::vector<std::string>& names,
                                          const std::vector<std::string>& outputs);

}  // namespace ScrollingCapture::Program
