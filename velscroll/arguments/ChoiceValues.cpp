#include <charconv>
#include <map>
#include <string_view>

#include <velscroll/arguments/ChoiceValues.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr int LargestCoordinate = 32767;  // of a screen

/// Takes a number off the front of a text.
/// @return whether there was one within bounds
bool TakeNumber(std::string_view& text, int smallest, int& number) {
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return error == std::errc() && number >= smallest && number <= LargestCoordinate;
}

bool TakeSeparator(std::string_view& text, char separator) {
  const bool isThere = !text.empty() && text.front() == separator;
  text.remove_prefix(isThere ? 1 : 0);
  return isThere;
}

}  // namespace

cv::Rect ParseRegion(const std::string& text) {
  std::string_view left = text;
  cv::Rect region;
  const bool isRegion = TakeNumber(left, 1, region.width) && TakeSeparator(left, 'x') &&
                        TakeNumber(left, 1, region.height) && TakeSeparator(left, '+') &&
                        TakeNumber(left, 0, region.x) && TakeSeparator(left, '+') &&
                        TakeNumber(left, 0, region.y) && left.empty();
  if (!isRegion) {
    throw BadInput("--region takes width, height and place such as 800x600+100+50, not " +
                   Quoted(text));
  }
  return region;
}

std::uint32_t ParseWindow(const std::string& text) {
  const bool isHexadecimal = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
  const char* const begin = text.data() + (isHexadecimal ? 2 : 0);
  const char* const end = text.data() + text.size();
  std::uint32_t number = 0;
  const auto [stop, error] = std::from_chars(begin, end, number, isHexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end || number == 0) {
    throw BadInput("--window takes a window's number such as 0x1400003, not " + Quoted(text));
  }
  return number;
}

Live::ScrollDirection ParseDirection(const std::string& text) {
  static const std::map<std::string, Live::ScrollDirection> directions = {
      {"down", Live::ScrollDirection::Down},
      {"up", Live::ScrollDirection::Up},
      {"right", Live::ScrollDirection::Right},
      {"left", Live::ScrollDirection::Left}};
  const auto found = directions.find(text);
  if (found == directions.end()) {
    throw BadInput("--auto takes down, up, right or left, not " + Quoted(text));
  }
  return found->second;
}

}  // namespace ScrollingCapture::Program
