#include <filesystem>
#include <stdexcept>
#include <string>

#include <VelScrollingCapture/session/SpillFileLost.h>
#include <VelScrollingCapture/session/internal/CaptureStore.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>

namespace ScrollingCapture {
namespace {

class SpilledCaptures : public MemoryEfficientImageProvider {
 public:
  using MemoryEfficientImageProvider::MemoryEfficientImageProvider;

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    try {
      return MemoryEfficientImageProvider::GetImageAt(index);
    } catch (const std::runtime_error& error) {
      throw SpillFileLost(error.what());
    }
  }
};

/// With the separator at its end, without which it would be a prefix of file names.
std::string FolderPrefix(const std::string& folder) {
  const std::filesystem::path path =
      folder.empty() ? std::filesystem::temp_directory_path() : std::filesystem::path(folder);
  return (path / "").string();
}

}  // namespace

CaptureStore::CaptureStore(const SessionSettings& settings) {
  if (settings.memoryLimit) {
    limited = std::make_shared<SpilledCaptures>(FolderPrefix(settings.spillFolder),
                                                *settings.memoryLimit);
    captures = limited;
  } else {
    captures = std::make_shared<BasicImageProvider>();
  }
}

bool CaptureStore::ExceedsMemoryLimit() const { return limited && limited->ExceedsMemoryLimit(); }

}  // namespace ScrollingCapture
