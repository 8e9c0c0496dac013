#include <live/x11/LowerCase.h>

namespace ScrollingCapture::Live {

std::string LowerCase(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') {
      letter = static_cast<char>(letter - 'A' + 'a');
    }
  }
  return text;
}

}  // namespace ScrollingCapture::Live
