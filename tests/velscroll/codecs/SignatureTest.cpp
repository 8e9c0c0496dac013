#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <velscroll/codecs/Signature.h>

namespace ScrollingCapture {
namespace {

using namespace std::string_literals;
using Program::SignatureOf;
using Bytes = std::vector<unsigned char>;

struct Start {
  const char* name;
  std::string bytes;
  Program::Signature signature;
};
void PrintTo(const Start& start, std::ostream* stream) { *stream << start.name; }

class Signature : public ::testing::TestWithParam<Start> {};

TEST_P(Signature, IsKnownWhateverFollows) {
  const std::string& bytes = GetParam().bytes;
  EXPECT_EQ(SignatureOf({bytes.begin(), bytes.end()}), GetParam().signature);
  const std::string longer = bytes + "more";
  EXPECT_EQ(SignatureOf({longer.begin(), longer.end()}), GetParam().signature);
}

TEST_P(Signature, IsUnknownWhenItIsCutShort) {
  const std::string& bytes = GetParam().bytes;
  EXPECT_EQ(SignatureOf({bytes.begin(), bytes.end() - 1}), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Formats, Signature,
                         ::testing::Values(Start{"Png", "\x89PNG"s, Program::Signature::Png},
                                           Start{"Jpeg", "\xFF\xD8\xFF"s, Program::Signature::Jpeg},
                                           Start{"Tiff", "II*\0"s, Program::Signature::Tiff},
                                           Start{"TiffOfMostSignificantBytesFirst", "MM\0*"s,
                                                 Program::Signature::Tiff},
                                           Start{"BigTiff", "II+\0"s, Program::Signature::Tiff},
                                           Start{"BigTiffOfMostSignificantBytesFirst", "MM\0+"s,
                                                 Program::Signature::Tiff},
                                           Start{"WebP", "RIFF"s, Program::Signature::WebP},
                                           Start{"Bmp", "BM"s, Program::Signature::Bmp}),
                         [](const auto& start) { return start.param.name; });

TEST(Signatures, OfOtherBytesAreUnknown) {
  for (const std::string& text : {""s, "just a text"s, "II"s, "MM and more"s, "xPNG"s}) {
    EXPECT_EQ(SignatureOf({text.begin(), text.end()}), std::nullopt) << text;
  }
}

TEST(Signatures, MayBeLookedForBehindTheStart) {
  const std::string text = "xxRGB ";
  const Bytes bytes(text.begin(), text.end());
  EXPECT_TRUE(Program::HasAt(bytes, 2, "RGB "));
  EXPECT_FALSE(Program::HasAt(bytes, 1, "RGB "));
  EXPECT_FALSE(Program::HasAt(bytes, 3, "GB  "));
  EXPECT_FALSE(Program::HasAt(bytes, 7, ""));
}

}  // namespace
}  // namespace ScrollingCapture
