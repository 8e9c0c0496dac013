#include <algorithm>
#include <exception>
#include <filesystem>
#include <iomanip>
#include <sstream>
#include <system_error>

#include <velscroll/output/PictureWriting.h>
#include <velscroll/record/CaptureFolder.h>
#include <velscroll/terminal/Explanation.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

namespace fs = std::filesystem;

void MakeFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw BadInput("cannot make the folder " + Quoted(folder) +
                   " of --keep-captures: " + error.message());
  }
}

bool IsCapture(const fs::path& file) {
  return file.filename().string().rfind("capture-", 0) == 0 && file.extension() == ".png";
}

void RequireNoCaptures(const std::string& folder) {
  std::error_code error;
  const fs::directory_iterator files(folder, error);
  if (error) {
    throw BadInput("cannot look into the folder " + Quoted(folder) +
                   " of --keep-captures: " + error.message());
  }
  if (std::any_of(fs::begin(files), fs::end(files),
                  [](const fs::directory_entry& file) { return IsCapture(file.path()); })) {
    throw BadInput("the folder " + Quoted(folder) +
                   " of --keep-captures holds captures already; name another one");
  }
}

void Write(const cv::Mat& capture, const std::string& path) {
  EncodingSettings fast;
  fast.pngLevel = 1;
  for (const auto& file : StagePicture(PictureOf(capture), {path, fast, {}, {}}, [](int) {})) {
    file->Commit();
  }
}

}  // namespace

CaptureFolder::CaptureFolder(const std::string& folder) : folder(folder) {
  if (!folder.empty()) {
    MakeFolder(folder);
    RequireNoCaptures(folder);
  }
}

std::string CaptureFolder::NameOf(std::size_t index) const {
  std::ostringstream name;
  name << "capture-" << std::setw(4) << std::setfill('0') << index + 1 << ".png";
  return folder.empty() ? name.str() : (fs::path(folder) / name.str()).string();
}

void CaptureFolder::Keep(const cv::Mat& capture) {
  const std::string path = NameOf(count++);
  if (folder.empty() || !trouble.empty()) {
    return;
  }
  try {
    Write(capture, path);
  } catch (const std::exception&) {
    trouble = ExplanationOf(std::current_exception()).words;
  }
}

}  // namespace ScrollingCapture::Program
