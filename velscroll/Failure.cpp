#include <algorithm>
#include <system_error>

#include <velscroll/Failure.h>

namespace ScrollingCapture::Program {

std::string Quoted(const std::string& name) {
  std::string shown = name;
  const auto isControl = [](char character) {
    constexpr unsigned char FirstPrintable = 0x20;
    constexpr unsigned char Delete = 0x7F;
    const auto value = static_cast<unsigned char>(character);
    return value < FirstPrintable || value == Delete;
  };
  std::replace_if(shown.begin(), shown.end(), isControl, '?');
  return "'" + shown + "'";
}

std::string SystemMessage(int errorNumber) { return std::generic_category().message(errorNumber); }

}  // namespace ScrollingCapture::Program
