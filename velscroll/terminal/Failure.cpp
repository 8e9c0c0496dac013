#include <algorithm>
#include <system_error>

#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

/// What a terminal would obey instead of showing it becomes question marks.
std::string WithoutControls(const std::string& text) {
  std::string shown = text;
  const auto isControl = [](char character) {
    constexpr unsigned char FirstPrintable = 0x20;
    constexpr unsigned char Delete = 0x7F;
    const auto value = static_cast<unsigned char>(character);
    return value < FirstPrintable || value == Delete;
  };
  std::replace_if(shown.begin(), shown.end(), isControl, '?');
  return shown;
}

}  // namespace

Failure::Failure(ExitStatus status, const std::string& line)
    : std::runtime_error(WithoutControls(line)), status(status) {}

std::string Quoted(const std::string& name) { return "'" + WithoutControls(name) + "'"; }

std::string SystemMessage(int errorNumber) { return std::generic_category().message(errorNumber); }

}  // namespace ScrollingCapture::Program
