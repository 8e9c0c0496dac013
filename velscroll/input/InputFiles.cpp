#include <algorithm>
#include <array>
#include <filesystem>
#include <glob.h>
#include <string_view>
#include <system_error>

#include <velscroll/files/SameFile.h>
#include <velscroll/input/InputFiles.h>
#include <velscroll/input/NaturalOrder.h>
#include <velscroll/names/LowerCase.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 20> ImageExtensions = {
    ".png", ".jpg", ".jpeg", ".jpe", ".webp", ".tif", ".tiff", ".bmp",  ".dib", ".jp2",
    ".pbm", ".pgm", ".ppm",  ".pxm", ".pnm",  ".pam", ".gif",  ".avif", ".ras", ".sr"};

bool HasImageExtension(const fs::path& path) {
  const std::string extension = LowerCase(path.extension().string());
  return std::find(ImageExtensions.begin(), ImageExtensions.end(), extension) !=
         ImageExtensions.end();
}

bool IsHidden(const fs::path& path) { return path.filename().string().front() == '.'; }

bool LooksLikeGlob(const std::string& name) {
  return name.find_first_of("*?[") != std::string::npos;
}

bool IsOneOf(const std::string& file, const std::vector<std::string>& outputs) {
  return std::any_of(outputs.begin(), outputs.end(),
                     [&file](const std::string& output) { return IsSameFile(file, output); });
}

std::vector<std::string> ImagesIn(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> images;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    const fs::path& path = entry->path();
    if (!IsHidden(path) && HasImageExtension(path) && !entry->is_directory(ignored)) {
      images.push_back(path.string());
    }
  }
  if (error) {
    throw BadInput("cannot read the folder " + Quoted(folder) + ": " + error.message() +
                   "; check its permissions");
  }
  return images;
}

std::vector<std::string> MatchesOf(const std::string& pattern) {
  glob_t found = {};
  const int status = ::glob(pattern.c_str(), GLOB_NOSORT, nullptr, &found);
  std::vector<std::string> matches(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  ::globfree(&found);
  if (status != 0 && status != GLOB_NOMATCH) {
    throw BadInput("cannot look for files like " + Quoted(pattern) + "; name the files themselves");
  }
  return matches;
}

void SortAndAppend(std::vector<std::string> found, const std::vector<std::string>& outputs,
                   std::vector<std::string>& files) {
  std::sort(found.begin(), found.end(), ComesNaturallyBefore);
  std::copy_if(found.begin(), found.end(), std::back_inserter(files),
               [&outputs](const std::string& file) { return !IsOneOf(file, outputs); });
}

void AppendFolder(const std::string& folder, const std::vector<std::string>& outputs,
                  std::vector<std::string>& files) {
  const size_t countBefore = files.size();
  SortAndAppend(ImagesIn(folder), outputs, files);
  if (files.size() == countBefore) {
    throw BadInput("the folder " + Quoted(folder) + " has no images; name a folder with captures");
  }
}

void AppendGlob(const std::string& pattern, const std::vector<std::string>& outputs,
                std::vector<std::string>& files) {
  std::vector<std::string> matches;
  SortAndAppend(MatchesOf(pattern), outputs, matches);
  if (matches.empty()) {
    throw BadInput("no file matches " + Quoted(pattern) + "; check the pattern");
  }
  for (const std::string& match : matches) {
    std::error_code ignored;
    if (fs::is_directory(match, ignored)) {
      AppendFolder(match, outputs, files);
    } else {
      files.push_back(match);
    }
  }
}

void AppendFile(const std::string& file, const std::vector<std::string>& outputs,
                std::vector<std::string>& files) {
  if (IsOneOf(file, outputs)) {
    throw BadInput(Quoted(file) +
                   " is both a capture and a file to write; choose another name to write to");
  }
  files.push_back(file);
}

}  // namespace

std::vector<std::string> FindCaptureFiles(const std::vector<std::string>& names,
                                          const std::vector<std::string>& outputs) {
  std::vector<std::string> files;
  for (const std::string& name : names) {
    std::error_code error;
    const fs::file_status status = fs::status(name, error);
    if (fs::is_directory(status)) {
      AppendFolder(name, outputs, files);
    } else if (fs::exists(status)) {
      AppendFile(name, outputs, files);
    } else if (LooksLikeGlob(name)) {
      AppendGlob(name, outputs, files);
    } else if (status.type() == fs::file_type::not_found) {
      throw BadInput("there is no file " + Quoted(name) + "; check the name");
    } else {
      throw BadInput("cannot read " + Quoted(name) + ": " + error.message() +
                     "; check the name and the permissions");
    }
  }
  return files;
}

}  // namespace ScrollingCapture::Program
