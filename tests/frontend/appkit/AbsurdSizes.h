#pragma once

#include <limits>
#include <vector>

#import <AppKit/AppKit.h>

namespace ScrollingCapture::Testing {

/// Sizes of more points than any image is converted with.
inline std::vector<NSSize> AbsurdSizes() {
  constexpr double Infinite = std::numeric_limits<double>::infinity();
  return {NSMakeSize(2e9, 1),      NSMakeSize(1, 2e9),       NSMakeSize(2e9, 2e9),
          NSMakeSize(1e300, 1e3),  NSMakeSize(Infinite, 10), NSMakeSize(10, Infinite),
          NSMakeSize(32769, 32768)};
}

}  // namespace ScrollingCapture::Testing
