#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace ScrollingCapture::Program {

/// Which of the common formats a file's first bytes stand for.
enum class Signature {
  Png,
  Jpeg,
  Tiff,  ///< also BigTIFF
  WebP,  ///< or another media file, which starts alike
  Bmp,
};

/// The format that a file starts like, whether it goes on so or not; nothing when it is none of
/// these.
std::optional<Signature> SignatureOf(const std::vector<unsigned char>& file);

/// Whether these characters are at a distance from the start.
bool HasAt(const std::vector<unsigned char>& file, size_t offset, std::string_view characters);

}  // namespace ScrollingCapture::Program
