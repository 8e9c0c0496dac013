#pragma once

#include <string_view>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// Tells of an error or a refusal: a line on the standard error stream, flushed, unless the host
/// has a handler of its own. Lines of several threads do not mix, and telling never fails: what
/// cannot be told is lost.
///
/// Exported for the Objective-C front, which may be a library of its own.
/// @param text one line, without its end
VEL_EXPORT void TellError(std::string_view text) noexcept;

/// Like TellError, without a flush: for operations on pixels that a caller may repeat row by row.
void TellErrorWithoutFlush(std::string_view text) noexcept;

/// Like TellError, on the standard output stream.
void TellInformation(std::string_view text) noexcept;

}  // namespace ScrollingCapture
