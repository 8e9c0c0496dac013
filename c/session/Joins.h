#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <VelScrollingCapture/c/stitched.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/Join.h>

/// \file
/// Joins as callers know them.

namespace ScrollingCapture::C {

inline vel_verdict VerdictOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Proven:
      return VEL_JOIN_PROVEN;
    case Verdict::Likely:
      return VEL_JOIN_LIKELY;
    case Verdict::Doubtful:
      return VEL_JOIN_DOUBTFUL;
    default:
      return VEL_JOIN_NONE;
  }
}

inline vel_motion MotionOf(const Translation& motion) {
  return {motion.GetRows(), motion.GetCols()};
}

/// -1 for none.
inline std::int64_t IndexOf(const std::optional<std::size_t>& capture) {
  return capture ? static_cast<std::int64_t>(*capture) : -1;
}

/// Fills the fields that tell of a join.
template <typename Struct>
void Tell(const Join& join, const std::optional<std::size_t>& joinedTo, Struct& told) {
  told.verdict = VerdictOf(join.verdict);
  told.motion = MotionOf(join.motion);
  told.compared = join.compared;
  told.equal = join.equal;
  told.joined_to = IndexOf(joinedTo);
  told.alternative_count = join.alternatives.size();
}

}  // namespace ScrollingCapture::C
