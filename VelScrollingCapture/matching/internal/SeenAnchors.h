#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/Anchors.h>
#include <VelScrollingCapture/matching/internal/PictureParts.h>

namespace ScrollingCapture {

/// The anchors of everything seen so far, with their places in the picture.
///
/// Of a capture's anchors a part is remembered, chosen by content again; and of each square of the
/// picture only so many, whatever it has shown: videos and the like give new anchors for ever. That
/// makes at most two bytes a pixel of the picture, and half a byte or less as a rule.
class SeenAnchors {
 public:
  /// A place for the top-left pixel of a capture, and how many anchors vote for it.
  struct Vote {
    int part;         ///< as PictureParts has it
    cv::Point place;  ///< in that part
    int votes;
  };

  explicit SeenAnchors(PictureParts& parts);

  /// Where anchors that were seen at one place only put a capture, ordered by votes.
  std::vector<Vote> PlacesOf(const CaptureAnchors& capture) const;

  /// Remembers the anchors of a capture. What was seen elsewhere in the same part before is known
  /// to be repeated from now on.
  void Add(const CaptureAnchors& capture, int part, const cv::Point& place);

  /// Whether the content was seen at several places of one part.
  bool IsRepeated(std::uint32_t hash) const;

  /// Whether an anchor is of those that are remembered.
  static bool IsRemembered(std::uint32_t hash, const CaptureAnchors& capture);

  std::size_t Bytes() const;

 private:
  struct Sighting {
    std::uint32_t hash;
    std::int32_t row;
    std::int32_t column;
    std::int32_t part;  ///< negative in free slots
  };

  std::size_t SlotOf(std::uint32_t hash) const;
  void Note(std::uint32_t hash, int part, const cv::Point& place, int room);
  void Grow();

  PictureParts& parts;
  std::vector<Sighting> slots;  ///< a hash table, at most three quarters full
  std::vector<bool> repeated;   ///< for each slot
  std::size_t used = 0;
  std::unordered_map<std::uint64_t, std::uint16_t> squares;  ///< how many anchors each one has
};

}  // namespace ScrollingCapture
