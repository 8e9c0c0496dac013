// Reads the metadata of any bytes: what comes out can be written into a file.

#include <cmath>
#include <cstdint>

#include <fuzz/support/Expect.h>
#include <velscroll/metadata/ImageMetadata.h>

namespace ScrollingCapture::Fuzzing {
namespace {

bool IsPlausible(double pixelsPerMetre) {
  return std::isfinite(pixelsPerMetre) && pixelsPerMetre >= 1;
}

void ReadAny(const std::vector<unsigned char>& bytes) {
  constexpr size_t HeaderLength = 128;
  constexpr size_t MostBytes = size_t{4} << 20U;
  const Program::ImageMetadata metadata = Program::MetadataOf(bytes);
  if (metadata.resolution) {
    Expect(IsPlausible(metadata.resolution->horizontal), "there are so many columns in a metre");
    Expect(IsPlausible(metadata.resolution->vertical), "there are so many rows in a metre");
  }
  const size_t length = metadata.colourProfile.size();
  Expect(length == 0 || (length >= HeaderLength && length <= MostBytes),
         "a profile has its length");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  ScrollingCapture::Fuzzing::ReadAny({bytes, bytes + count});
  return 0;
}
