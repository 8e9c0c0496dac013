#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/mosaic/Mosaic.h>

namespace ScrollingCapture {

/// How captures are joined.
enum class Engine {
  /// Joins that are proven on the pixels, against everything seen before, and a mosaic of what is
  /// uncovered: see CapturePlacer and Mosaic.
  Exact,
  /// Phase correlation of neighbouring captures, and hard seams: see BasicStitcher.
  PhaseCorrelation,
};

/// When a difference between captures counts as content that moved: see BasicBorderDetection.
struct BorderThresholds {
  unsigned int difference = 10;  ///< The grey-level difference, 0 to 255, that a change exceeds.
  unsigned int neighbors = 2;    ///< The number of changed neighbours, 0 to 8, that it exceeds.
};

/// What a CaptureSession is asked to do.
struct SessionSettings {
  Engine engine = Engine::Exact;  ///< How captures are joined and composed.

  /// The directions in which the content may move.
  ScrollOrientation orientation = Both;

  /// Whether steps are expected to be even: of two likely motions, the one that repeats the step
  /// before is then taken; with exact joins, the one that repeats any step before.
  bool expectConsistentTranslations = false;

  /// The most threads that work at once; 0 counts as 1.
  unsigned int threadCount = 1;

  /// Whether captures that show the same as the one before are kept.
  bool keepRepeats = false;

  /// With exact joins: what becomes of toolbars and other parts that stand still.
  FixedParts fixedParts = FixedParts::Once;

  /// With phase correlation: find what stands still at the edges of the captures, and lay it around
  /// the result once. Nothing: stitch the captures as they are.
  std::optional<BorderThresholds> borders;

  /// Bytes of captures to keep in memory; the others wait in files. Nothing: all stay in memory.
  std::optional<std::uint64_t> memoryLimit;

  /// An existing folder for those files, with or without the separator at its end; empty for the
  /// system's temporary folder.
  std::string spillFolder;

  /// The box in pixels that the live preview fits into. Nothing: there is no preview.
  std::optional<cv::Size> previewBox;
};

}  // namespace ScrollingCapture
