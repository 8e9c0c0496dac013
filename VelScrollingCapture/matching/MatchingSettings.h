#pragma once

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// What is known beforehand about how captures were made.
struct MatchingSettings {
  /// The axes along which the content may move; with a value outside the list it never does.
  ScrollOrientation orientation = Both;

  /// Whether steps are expected to be even. Of several motions that explain a pair of captures
  /// alike the one that repeats the step before is taken, and with this the one that repeats the
  /// latest step that any of them repeats: a pause in between does not matter then.
  bool expectConsistentTranslations = false;
};

}  // namespace ScrollingCapture
