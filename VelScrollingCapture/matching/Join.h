#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// How sure it is that a capture was joined rightly.
enum class Verdict {
  /// The motion is the only one that the pixels allow. What disagrees stands still on the window,
  /// moves along one axis only, or is small.
  Proven,
  /// The captures do not agree to the pixel (lossy files, text drawn anew, large parts that
  /// change), but one motion explains them far better than every other.
  Likely,
  /// Several motions explain the pixels alike. One of them was taken, the others are listed.
  Doubtful,
  /// The captures have nothing in common.
  None,
};

/// No join lists more alternatives than this.
constexpr std::size_t MostAlternatives = 1024;

/// How a capture is joined to what was seen before it. A value type.
struct Join {
  Verdict verdict = Verdict::None;  ///< How sure the motion is.

  /// How far the content moved since the capture before, (0, 0) where that is not known.
  Translation motion;

  /// How many pixels were compared under that motion: those of the overlap that it was proven on.
  std::int64_t compared = 0;

  /// How many of the compared pixels are equal.
  std::int64_t equal = 0;

  /// The other motions that explain the pixels as well, the smallest first; of more than
  /// MostAlternatives, the smallest ones. Empty unless doubtful.
  std::vector<Translation> alternatives;
};

}  // namespace ScrollingCapture
