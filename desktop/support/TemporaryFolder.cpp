#include <filesystem>
#include <system_error>

#include <desktop/support/TemporaryFolder.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

Program::Failed NotMade(const std::string& why) {
  return Program::Failed("no temporary folder can be made: " + why);
}

}  // namespace

/// Qt by itself would take the root folder where there is no temporary one.
std::unique_ptr<QTemporaryDir> MakeTemporaryFolder() {
  std::error_code error;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
  if (error) {
    throw NotMade(error.message());
  }
  auto folder =
      std::make_unique<QTemporaryDir>(QString::fromStdString(parent / "velscroll-desktop-XXXXXX"));
  if (!folder->isValid()) {
    throw NotMade(folder->errorString().toStdString());
  }
  return folder;
}

}  // namespace ScrollingCapture::Desktop
