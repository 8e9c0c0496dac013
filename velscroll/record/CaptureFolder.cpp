#include <filesystem>
#include <iomanip>
#include <sstream>
#include <system_error>

#include <velscroll/output/PictureWriting.h>
#include <velscroll/record/CaptureFolder.h>
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

void Write(const cv::Mat& capture, const std::string& path) {
  EncodingSettings fast;
  fast.pngLevel = 1;
  for (const auto& file : StagePicture(PictureOf(capture), {path, fast, {}, {}}, [](int) {})) {
    file->Commit();
  }
}

}  // namespace

CaptureFolder::CaptureFolder(const std::string& folder) : folder(folder) {
  if (folder.empty()) {
    return;
  }
  MakeFolder(folder);
  std::error_code ignored;
  if (fs::exists(NameOf(0), ignored)) {
    throw BadInput("the folder " + Quoted(folder) +
                   " of --keep-captures holds captures already; name another one");
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
  } catch (const Failure& failure) {
    trouble = failure.what();
  }
}

}  // namespace ScrollingCapture::Program
