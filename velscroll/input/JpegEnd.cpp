#include <cstddef>

#include <velscroll/input/JpegEnd.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned char MarkerPrefix = 0xFF;
constexpr unsigned char StartOfImage = 0xD8;
constexpr unsigned char EndOfImage = 0xD9;
constexpr unsigned char FirstRestart = 0xD0;
constexpr unsigned char LastRestart = 0xD7;
constexpr unsigned char Temporary = 0x01;
constexpr unsigned char StuffedZero = 0x00;

/// Markers that no length and no parameters follow, and bytes that only look like a marker.
bool StandsAlone(unsigned char marker) {
  return marker == StuffedZero || marker == Temporary || marker == MarkerPrefix ||
         marker == StartOfImage || (marker >= FirstRestart && marker <= LastRestart);
}

}  // namespace

bool IsJpegCutShort(const std::vector<unsigned char>& file) {
  if (file.size() < 2 || file[0] != MarkerPrefix || file[1] != StartOfImage) {
    return false;
  }
  size_t position = 2;
  while (position + 1 < file.size()) {
    if (file[position] != MarkerPrefix || StandsAlone(file[position + 1])) {
      ++position;
    } else if (file[position + 1] == EndOfImage) {
      return false;
    } else if (position + 3 < file.size()) {
      const size_t segment = size_t{file[position + 2]} * 256 + file[position + 3];
      position += 2 + segment;
    } else {
      return true;
    }
  }
  return true;
}

}  // namespace ScrollingCapture::Program
