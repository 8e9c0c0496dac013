#include <filesystem>
#include <system_error>

#include <velscroll/files/SameFile.h>

namespace ScrollingCapture::Program {

namespace fs = std::filesystem;

bool IsSameFile(const std::string& first, const std::string& second) {
  std::error_code error;
  if (fs::equivalent(first, second, error) && !error) {
    return true;
  }
  const fs::path firstPath = fs::weakly_canonical(fs::absolute(first, error), error);
  return !error && firstPath == fs::weakly_canonical(fs::absolute(second, error), error) && !error;
}

}  // namespace ScrollingCapture::Program
