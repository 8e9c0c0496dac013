// Loads any bytes as a spill file: that gives a matrix whose pixels are the file's, which can be
// saved and loaded again, or the one documented error.

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fuzz/support/Expect.h>
#include <testkit/MatrixTesting.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

namespace ScrollingCapture::Fuzzing {
namespace {

using Testing::OpenProvider;

constexpr size_t HeaderBytes = 20;

/// A header of elements without size may announce any number of them.
constexpr size_t MostElementsToSave = 1 << 16;

bool Load(OpenProvider& provider, cv::Mat& image, const std::string& path) {
  try {
    provider.LoadMat(image, path);
    return true;
  } catch (const std::runtime_error& error) {
    Expect(error.what() == std::string("Could not open or read file."),
           "a file that makes no sense gives the documented error");
    return false;
  }
}

/// What the header announces lies in the file, but it may be fewer bytes than the matrix has.
void ExpectPixelsAreTheFiles(const cv::Mat& image, const std::string& file) {
  Expect(file.size() >= HeaderBytes, "a matrix has a header");
  std::uint64_t elementSize = 0;
  std::memcpy(&elementSize, file.data() + 8, sizeof(elementSize));
  const size_t announced = image.total() * elementSize;
  Expect(announced <= file.size() - HeaderBytes && announced <= image.total() * image.elemSize(),
         "what is announced lies in the file and fits the matrix");
  Expect(announced == 0 || std::memcmp(image.data, file.data() + HeaderBytes, announced) == 0,
         "the pixels are the file's");
}

void LoadAny(const std::string& bytes) {
  // New files each time: file systems write what replaces a file to the disk at once.
  const Testing::TemporaryFolder folder;
  OpenProvider provider(folder.Prefix());
  const std::string path = folder.Prefix() + "any";
  Testing::WriteFile(path, bytes);

  cv::Mat image;
  if (!Load(provider, image, path)) {
    return;
  }
  ExpectPixelsAreTheFiles(image, bytes);
  if (image.total() > MostElementsToSave) {
    return;
  }
  const std::string again = folder.Prefix() + "again";
  Expect(provider.SaveMat(image, again), "what was loaded can be saved");
  cv::Mat loaded;
  Expect(Load(provider, loaded, again), "what was saved can be loaded");
  Expect(Testing::SameBits(loaded, image), "saving and loading gives the matrix back");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  ScrollingCapture::Fuzzing::LoadAny({reinterpret_cast<const char*>(bytes), count});
  return 0;
}
