#include <velscroll/names/LowerCase.h>

namespace ScrollingCapture::Program {

std::string LowerCase(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') {
      letter = static_cast<char>(letter - 'A' + 'a');
    }
  }
  return text;
}

}  // namespace ScrollingCapture::Program
