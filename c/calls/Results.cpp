#include <array>
#include <cstddef>

#include <VelScrollingCapture/c/results.h>

const char* vel_result_text(int result) {
  // In the order of vel_result.
  constexpr std::array Texts = {
      "done",
      "an argument cannot be used",
      "not enough memory",
      "cancelled",
      "another call is at work with this handle",
      "there are no captures to stitch",
      "the captures were used up by a stitch",
      "the captures could not be stitched",
      "a file cannot be used",
      "a file could not be written",
      "a capture that waited in a file cannot be read back",
      "unexpected failure",
  };
  static_assert(Texts.size() == VEL_FAILURE + 1);
  const bool isKnown = result >= 0 && static_cast<std::size_t>(result) < Texts.size();
  return isKnown ? Texts[static_cast<std::size_t>(result)] : "unknown result";
}

const char* vel_version() { return VEL_C_VERSION; }
