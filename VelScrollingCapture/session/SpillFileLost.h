#pragma once

#include <stdexcept>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// A capture that waits in a file cannot be read back.
class VEL_EXPORT SpillFileLost : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace ScrollingCapture
