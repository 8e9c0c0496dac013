#include <system_error>

#include <velscroll/files/SameFile.h>

namespace ScrollingCapture::Program {

namespace fs = std::filesystem;

fs::path ResolvedPath(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  const fs::path resolved = fs::weakly_canonical(absolute, error);
  return error ? absolute.lexically_normal() : resolved;
}

bool IsSameFile(const std::string& first, const std::string& second) {
  std::error_code error;
  return fs::equivalent(first, second, error) || ResolvedPath(first) == ResolvedPath(second);
}

}  // namespace ScrollingCapture::Program
