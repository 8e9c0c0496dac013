#pragma once

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// What is known beforehand about how captures were made.
struct MatchingSettings {
  /// The axes along which the content may move; with a value outside the list it never does.
  ScrollOrientation orientation = Both;

  /// Whether steps are expected to be even: of several motions that explain a pair of captures, the
  /// one that repeats the step before is then taken for the right one.
  bool expectConsistentTranslations = false;
};

}  // namespace ScrollingCapture
