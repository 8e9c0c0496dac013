#include <charconv>

#include <CLI/CLI.hpp>
#include <velscroll/arguments/OptionValues.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned int LongestSide = 10000;

}  // namespace

unsigned int ParseNumber(const std::string& option, const std::string& text, unsigned int smallest,
                         unsigned int largest) {
  unsigned int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < smallest || number > largest) {
    throw BadInput(option + " takes a whole number from " + std::to_string(smallest) + " to " +
                   std::to_string(largest) + ", not " + Quoted(text));
  }
  return number;
}

std::uint64_t ParseMemorySize(const std::string& text) {
  const auto complain = [&text] {
    throw BadInput("--memory-limit takes a size such as 200MiB or 1G, not " + Quoted(text));
  };
  std::string bytes = text;
  try {
    CLI::AsSizeValue(false)(bytes);
  } catch (const CLI::ValidationError&) {
    complain();
  }
  std::uint64_t size = 0;
  const char* const end = bytes.data() + bytes.size();
  const auto [stop, error] = std::from_chars(bytes.data(), end, size);
  if (error != std::errc() || stop != end) {
    complain();
  }
  return size;
}

cv::Size ParsePreviewSize(const std::string& text) {
  const size_t separator = text.find('x');
  if (separator == std::string::npos) {
    throw BadInput("--preview-size takes width and height such as 250x250, not " + Quoted(text));
  }
  const auto side = [](const std::string& number) {
    return static_cast<int>(ParseNumber("each side of --preview-size", number, 1, LongestSide));
  };
  return {side(text.substr(0, separator)), side(text.substr(separator + 1))};
}

Loudness LoudnessOf(std::size_t timesQuiet) {
  if (timesQuiet == 0) {
    return Loudness::All;
  }
  return timesQuiet == 1 ? Loudness::Warnings : Loudness::Nothing;
}

}  // namespace ScrollingCapture::Program
