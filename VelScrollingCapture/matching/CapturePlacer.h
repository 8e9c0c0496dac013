#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>
#include <VelScrollingCapture/matching/PreparedCapture.h>

namespace ScrollingCapture {

struct PairMatch;

/// Where a capture lies, and how that is known.
struct PlacedCapture {
  /// The part of the picture, from 1 on in the order in which parts begin. Captures that nothing
  /// joins are in different parts.
  int part = 1;

  /// Relative to the first capture of the same part; may be negative.
  Place place;

  /// How the capture is joined. `None` for the first one of a part. Its motion is that since the
  /// capture before, and (0, 0) where that one lies in another part.
  Join join;

  /// The earlier capture that the join was proven against: the one before, or any other one when
  /// the window came back to what was seen long ago. Empty for the first one of a part.
  std::optional<std::size_t> joinedTo;
};

/// How two consecutive captures are joined, not knowing of any others. A handle; copies share what
/// they refer to.
class VEL_EXPORT MatchedPair {
 public:
  /// Finds and proves their motion; any number of threads may do this at once.
  /// @param earlier,later captures of equal size and type, with their preparations;
  ///                      std::invalid_argument is thrown for others
  MatchedPair(const cv::Mat& earlier, const PreparedCapture& earlierPrepared, const cv::Mat& later,
              const PreparedCapture& laterPrepared, const MatchingSettings& settings);

  /// For the library's own use.
  const PairMatch& Match() const { return *match; }

 private:
  std::shared_ptr<const PairMatch> match;
};

/// Places captures one after the other, each against everything seen before: scrolling back,
/// pausing, scrolling too fast and coming back all find their place, and a capture that joins two
/// parts makes them one.
///
/// The work is in two steps. What takes time (PreparedCapture, MatchedPair) is for any thread;
/// placing is quick, in the order of the captures, and by one thread at a time. The placer
/// remembers anchors for every place of the picture, at most two bytes a pixel of the picture's
/// area, however many captures show it; and some hundred bytes a capture.
class VEL_EXPORT CapturePlacer {
 public:
  /// @param captures are read when a capture is proven against another one than that before; must
  ///                 outlive the placer
  CapturePlacer(IImageProvider& captures, const MatchingSettings& settings);
  CapturePlacer(const CapturePlacer&) = delete;
  CapturePlacer& operator=(const CapturePlacer&) = delete;
  ~CapturePlacer();

  /// No prescribed motion is longer than this along an axis, in pixels: no window is as large.
  static constexpr int LongestPrescribed = 1 << 18;

  /// Throws std::invalid_argument for a motion beyond LongestPrescribed.
  static void RequirePrescribable(const Translation& motion);

  /// Places the next capture, matching it with the one before.
  ///
  /// When anything throws (the provider, lack of memory, a capture of another size or type:
  /// std::invalid_argument), nothing has been placed.
  /// @param index its index among the captures of the provider, which has to be Count():
  ///              std::invalid_argument is thrown otherwise
  PlacedCapture Place(std::size_t index, const PreparedCapture& capture);

  /// The same, when the two have been matched already. The first capture has no pair.
  PlacedCapture Place(std::size_t index, const PreparedCapture& capture, const MatchedPair& pair);

  /// The same with a motion since the capture before that somebody prescribes, right or wrong. The
  /// join tells what the pixels say about that place, held against the capture before or else
  /// against others that lie there: none when they contradict it or when no capture lies there,
  /// doubtful when they speak for another one as well. std::invalid_argument is thrown for a motion
  /// beyond LongestPrescribed.
  PlacedCapture PlaceAt(std::size_t index, const PreparedCapture& capture,
                        const Translation& motion);

  /// How many captures have been placed.
  std::size_t Count() const;

  /// What is known now about a capture that was placed. Later captures may join its part with an
  /// earlier one, and may take a proof back, when they show that its content occurs elsewhere as
  /// well.
  PlacedCapture At(std::size_t index) const;

  /// At for all captures.
  std::vector<PlacedCapture> All() const;

  /// How much memory the anchors of everything seen take.
  std::size_t Bytes() const;

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation;
};

}  // namespace ScrollingCapture
