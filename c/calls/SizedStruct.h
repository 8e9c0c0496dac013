#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <c/calls/Failures.h>

/// \file
/// Structures of callers that were compiled against another version of the library: those of an
/// older one are smaller, those of a newer one larger. Each begins with its size.

namespace ScrollingCapture::C {

/// No structure of any version is larger; what is has never been set.
constexpr std::size_t LargestStruct = 4096;

/// Whether there can be a structure of some version with that size. Fields are never cut in two:
/// with its padding, each version's size is a multiple of the alignment.
template <typename Struct>
bool IsSizeOf(std::size_t size) {
  return size >= sizeof(std::size_t) && size <= LargestStruct && size % alignof(Struct) == 0;
}

/// The size that a structure states. Throws InvalidArgument when there is no structure of that
/// size.
/// @param name what the structure is called
template <typename Struct>
std::size_t StatedSize(const Struct* given, const char* name) {
  std::size_t size = 0;
  std::memcpy(&size, Required(given, name), sizeof size);
  if (!IsSizeOf<Struct>(size)) {
    throw InvalidArgument("the struct_size of " + std::string(name) +
                          " is not that of any version of it; set it to sizeof(" + name + ")");
  }
  return size;
}

/// Whether all of some bytes, of which there is at least one, are zeros: the first one is, and each
/// equals the next.
inline bool AreZero(const unsigned char* bytes, std::size_t count) {
  return bytes[0] == 0 && std::memcmp(bytes, bytes + 1, count - 1) == 0;
}

/// What a caller hands over, and what it lacks as in `defaults`. Throws InvalidArgument when it has
/// something set that this version does not know.
/// @param name what the structure is called
template <typename Struct>
Struct Taken(const Struct* given, Struct defaults, const char* name) {
  const std::size_t size = StatedSize(given, name);
  std::memcpy(&defaults, given, std::min(size, sizeof(Struct)));
  const auto* const bytes = reinterpret_cast<const unsigned char*>(given);
  if (size > sizeof(Struct) && !AreZero(bytes + sizeof(Struct), size - sizeof(Struct))) {
    throw InvalidArgument(std::string(name) +
                          " has a field set that this version of the library does not know");
  }
  return defaults;
}

/// Fills the structure of a caller, as far as it goes; its size stays as it states it.
/// @param name what the structure is called
template <typename Struct>
void Give(Struct value, Struct* to, const char* name) {
  value.struct_size = StatedSize(to, name);
  std::memcpy(to, &value, std::min(value.struct_size, sizeof(Struct)));
}

/// Sets the fields of a caller's structure for the first time, and those to 0 that this version
/// does not know. Null is ignored, and so is a size that no version has.
template <typename Struct>
void Initialise(Struct* structure, std::size_t size, Struct defaults) noexcept {
  if (structure == nullptr || !IsSizeOf<Struct>(size)) {
    return;
  }
  defaults.struct_size = size;
  std::memset(static_cast<void*>(structure), 0, size);
  std::memcpy(static_cast<void*>(structure), &defaults, std::min(size, sizeof(Struct)));
}

}  // namespace ScrollingCapture::C
