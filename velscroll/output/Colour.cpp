#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include <velscroll/names/LowerCase.h>
#include <velscroll/output/Colour.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr std::array<std::pair<const char*, Colour>, 16> Names = {{
    {"white", White},
    {"silver", {192, 192, 192}},
    {"gray", {128, 128, 128}},
    {"black", {0, 0, 0}},
    {"red", {255, 0, 0}},
    {"maroon", {128, 0, 0}},
    {"yellow", {255, 255, 0}},
    {"olive", {128, 128, 0}},
    {"lime", {0, 255, 0}},
    {"green", {0, 128, 0}},
    {"aqua", {0, 255, 255}},
    {"teal", {0, 128, 128}},
    {"blue", {0, 0, 255}},
    {"navy", {0, 0, 128}},
    {"fuchsia", {255, 0, 255}},
    {"purple", {128, 0, 128}},
}};

/// Each digit of the short form stands for two equal ones.
std::string InLongForm(const std::string& digits) {
  std::string twice;
  for (const char digit : digits) {
    twice.append(2, digit);
  }
  return twice;
}

std::optional<Colour> ParseDigits(const std::string& digits) {
  constexpr size_t ShortForm = 3;
  constexpr size_t LongForm = 6;
  constexpr int Base = 16;
  if (digits.size() == ShortForm) {
    return ParseDigits(InLongForm(digits));
  }
  unsigned int value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, Base);
  if (digits.size() != LongForm || error != std::errc() || stop != end) {
    return std::nullopt;
  }
  const auto channel = [value](unsigned int shift) {
    return static_cast<unsigned char>(value >> shift);
  };
  return Colour{channel(16), channel(8), channel(0)};
}

std::optional<Colour> FindName(const std::string& name) {
  const auto* const found = std::find_if(
      Names.begin(), Names.end(), [&name](const auto& entry) { return entry.first == name; });
  return found == Names.end() ? std::nullopt : std::make_optional(found->second);
}

/// What a colour adds to a channel, for every alpha above it.
std::array<unsigned char, 256> SharesOf(unsigned char background) {
  constexpr unsigned int Opaque = 255;
  std::array<unsigned char, 256> shares = {};
  for (unsigned int alpha = 0; alpha <= Opaque; ++alpha) {
    shares[alpha] =
        static_cast<unsigned char>((background * (Opaque - alpha) + Opaque / 2) / Opaque);
  }
  return shares;
}

}  // namespace

Colour ParseColour(const std::string& option, const std::string& text) {
  const std::string name = LowerCase(text);
  const bool inDigits = !name.empty() && name.front() == '#';
  const std::optional<Colour> colour = inDigits ? ParseDigits(name.substr(1)) : FindName(name);
  if (!colour) {
    throw BadInput(option + " takes a colour such as white, black or #f0f0f0, not " + Quoted(text));
  }
  return *colour;
}

cv::Mat LayOn(const Colour& background, const cv::Mat& rows) {
  const auto red = SharesOf(background.red);
  const auto green = SharesOf(background.green);
  const auto blue = SharesOf(background.blue);
  cv::Mat laid(rows.size(), CV_8UC3);
  for (int row = 0; row < rows.rows; ++row) {
    const auto* const from = rows.ptr<cv::Vec4b>(row);
    auto* const to = laid.ptr<cv::Vec3b>(row);
    for (int column = 0; column < rows.cols; ++column) {
      const cv::Vec4b& pixel = from[column];
      const unsigned char alpha = pixel[3];
      to[column] = {cv::saturate_cast<unsigned char>(pixel[0] + red[alpha]),
                    cv::saturate_cast<unsigned char>(pixel[1] + green[alpha]),
                    cv::saturate_cast<unsigned char>(pixel[2] + blue[alpha])};
    }
  }
  return laid;
}

}  // namespace ScrollingCapture::Program
