#pragma once

#include <cstddef>
#include <vector>

namespace ScrollingCapture::Program {

/// Part of a zlib stream (RFC 1950) that was compressed without knowing the parts before it, so
/// that parts can be compressed at once and put one after the other.
///
/// A part ends on a whole byte: with an empty stored block where others follow (zlib's sync flush),
/// or as the stream's last block.
struct DeflatedBlock {
  std::vector<unsigned char> bytes;
  unsigned long checksum;  ///< Adler-32 of what was compressed
  size_t length;           ///< of what was compressed
};

/// Compresses a part. Throws std::bad_alloc.
/// @param level 0 to 9
/// @param last  whether the stream ends here
DeflatedBlock Deflate(const std::vector<unsigned char>& content, int level, bool last);

/// What a stream starts with.
std::vector<unsigned char> ZlibHeader(int level);

/// The checksum of a stream and of another that follows it.
class StreamChecksum {
 public:
  void Add(const DeflatedBlock& block);

  /// The four bytes that a stream ends with.
  std::vector<unsigned char> Trailer() const;

 private:
  unsigned long checksum = 1;
};

}  // namespace ScrollingCapture::Program
