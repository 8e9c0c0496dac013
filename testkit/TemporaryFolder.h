#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace ScrollingCapture::Testing {

/// A fresh folder of its own, removed with all that is in it when this goes out of scope.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "velscroll-test-XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("Could not make a temporary folder.");
    }
    path = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }

  std::filesystem::path Path() const { return path; }

  /// The path with a separator at its end.
  std::string Prefix() const { return path.string() + "/"; }

  /// The paths of everything in the folder, in no particular order.
  std::vector<std::string> Contents() const {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      paths.push_back(entry.path().string());
    }
    return paths;
  }

 private:
  std::filesystem::path path;
};

}  // namespace ScrollingCapture::Testing
