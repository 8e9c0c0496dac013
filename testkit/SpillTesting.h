#pragma once

#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>

#include "MatrixTesting.h"

namespace ScrollingCapture::Testing {

/// Opens what only the provider itself needs.
class OpenProvider : public MemoryEfficientImageProvider {
 public:
  using MemoryEfficientImageProvider::GetTempFileName;
  using MemoryEfficientImageProvider::LoadMat;
  using MemoryEfficientImageProvider::MemoryEfficientImageProvider;
  using MemoryEfficientImageProvider::SaveMat;
};

/// Captures 0 to count - 1, each with pixels of its own.
inline std::vector<cv::Mat> NoiseCaptures(size_t count, const cv::Size& size = {16, 8}) {
  std::vector<cv::Mat> captures;
  for (size_t i = 0; i < count; ++i) {
    captures.push_back(NoiseCapture(size, i + 1));
  }
  return captures;
}

inline void AddAll(IImageProvider& provider, const std::vector<cv::Mat>& captures) {
  for (cv::Mat capture : captures) {
    provider.Add(capture);
  }
}

inline size_t LoadedCount(MemoryEfficientImageProvider& provider) {
  size_t loaded = 0;
  for (size_t i = 0; i < provider.Count(); ++i) {
    loaded += provider.IsMatLoaded(i) ? 1 : 0;
  }
  return loaded;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

/// The names that will be drawn next, without drawing them.
inline std::vector<std::string> NextNames(size_t count, unsigned int length) {
  const std::minstd_rand engine = Utilities::RANDOM_ENGINE;
  std::vector<std::string> names;
  for (size_t i = 0; i < count; ++i) {
    names.push_back(Utilities::GenerateRandomAlphanumericString(length));
  }
  Utilities::RANDOM_ENGINE = engine;
  return names;
}

/// Lets no file grow beyond a size while it lives: a write beyond it fails as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &original);
    const rlimit limited{bytes, original.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &original);
    std::signal(SIGXFSZ, handler);
  }

 private:
  void (*handler)(int);
  rlimit original{};
};

}  // namespace ScrollingCapture::Testing
