#pragma once

#include <cstddef>
#include <cstring>

namespace ScrollingCapture::Testing {

/// The slot of a virtual operation in its class's table, as the Itanium C++ ABI keeps it in a
/// pointer to member function: one plus the offset in bytes.
template <typename Operation>
size_t SlotOf(Operation operation) {
  std::ptrdiff_t pointer = 0;
  static_assert(sizeof(operation) >= sizeof(pointer));
  std::memcpy(&pointer, &operation, sizeof(pointer));
  return static_cast<size_t>(pointer - 1) / sizeof(void*);
}

}  // namespace ScrollingCapture::Testing
