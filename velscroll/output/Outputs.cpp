#include <velscroll/files/SameFile.h>
#include <velscroll/output/Outputs.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

/// The file that comes last would replace the others.
void RequireDifferentFiles(const std::vector<std::string>& names) {
  for (size_t i = 0; i < names.size(); ++i) {
    for (size_t j = i + 1; j < names.size(); ++j) {
      if (IsSameFile(names[i], names[j])) {
        throw BadInput("two results would both be written to " + Quoted(names[i]) +
                       "; choose different names");
      }
    }
  }
}

}  // namespace

Outputs::ImageOutput::ImageOutput(const std::string& path)
    : path(path), format(FormatOf(path)), file(path) {}

void Outputs::ImageOutput::Stage(cv::Mat& image) {
  RequireFits(format, image.size(), path);
  const std::vector<unsigned char> encoded = Encode(format, image, path);
  file.Stage(encoded.data(), encoded.size());
}

Outputs::Outputs(const OutputPaths& paths) : image(paths.image), reportPath(paths.report) {
  if (!paths.preview.empty()) {
    preview.emplace(paths.preview);
  }
  if (!paths.report.empty()) {
    report.emplace(paths.report);
  }
  RequireDifferentFiles(Names());
}

std::vector<std::string> Outputs::Names() const {
  std::vector<std::string> names = {image.path};
  if (preview) {
    names.push_back(preview->path);
  }
  if (report) {
    names.push_back(reportPath);
  }
  return names;
}

void Outputs::StageImage(cv::Mat picture) { image.Stage(picture); }

void Outputs::StagePreview(cv::Mat picture) { preview->Stage(picture); }

void Outputs::StageReport(const std::string& text) {
  if (report) {
    report->Stage(text.data(), text.size());
  }
}

void Outputs::Commit() {
  StopIfInterrupted();
  image.file.Commit();
  if (preview) {
    preview->file.Commit();
  }
  if (report) {
    report->Commit();
  }
}

}  // namespace ScrollingCapture::Program
