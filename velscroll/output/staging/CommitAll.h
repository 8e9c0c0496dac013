#pragma once

#include <memory>
#include <string>
#include <vector>

#include <velscroll/output/staging/StagedOutput.h>

namespace ScrollingCapture::Program {

/// Throws BadInput when two results would have the same file, in which the later one would replace
/// the other.
/// @param names as MakeStagedOutput takes them
void RequireDifferentTargets(const std::vector<std::string>& names);

/// Shows everything that was staged: standard output first, since writing to it is what can fail,
/// and then the files.
///
/// Throws BadInput, with nothing shown, when two of them have the same target, and Failed or
/// Cancelled. The message says which ones were written before the one that failed: they stay.
void CommitAll(const std::vector<std::unique_ptr<StagedOutput>>& outputs);

}  // namespace ScrollingCapture::Program
