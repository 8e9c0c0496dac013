#include <algorithm>
#include <array>
#include <utility>

#include <velscroll/codecs/Signature.h>

namespace ScrollingCapture::Program {
namespace {

using namespace std::string_view_literals;

constexpr std::array<std::pair<std::string_view, Signature>, 8> Starts = {{
    {"\x89PNG"sv, Signature::Png},
    {"\xFF\xD8\xFF"sv, Signature::Jpeg},
    {"II*\0"sv, Signature::Tiff},
    {"MM\0*"sv, Signature::Tiff},
    {"II+\0"sv, Signature::Tiff},
    {"MM\0+"sv, Signature::Tiff},
    {"RIFF"sv, Signature::WebP},
    {"BM"sv, Signature::Bmp},
}};

}  // namespace

std::optional<Signature> SignatureOf(const std::vector<unsigned char>& file) {
  for (const auto& [start, signature] : Starts) {
    if (HasAt(file, 0, start)) {
      return signature;
    }
  }
  return std::nullopt;
}

bool HasAt(const std::vector<unsigned char>& file, size_t offset, std::string_view characters) {
  return file.size() >= offset + characters.size() &&
         std::equal(characters.begin(), characters.end(),
                    file.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char expected, unsigned char found) {
                      return static_cast<unsigned char>(expected) == found;
                    });
}

}  // namespace ScrollingCapture::Program
