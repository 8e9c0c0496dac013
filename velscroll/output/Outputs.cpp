#include <algorithm>
#include <iterator>
#include <utility>

#include <velscroll/output/Outputs.h>
#include <velscroll/output/Pieces.h>
#include <velscroll/output/staging/CommitAll.h>
#include <velscroll/output/staging/StagedStandardOutput.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

bool IsStandardOutput(const std::string& name) { return name == StagedStandardOutput::Argument; }

}  // namespace

Outputs::Outputs(const OutputSettings& asked) : settings(asked) {
  PictureFormatOf(asked.image);
  if (TakesPreview()) {
    PictureFormatOf(asked.preview);
  }
  const std::vector<std::string> names = Names();
  for (const std::string& name : names) {
    MakeStagedOutput(name, name == asked.report ? "the report" : "the image");
  }
  RequireDifferentTargets(names);
}

std::vector<std::string> Outputs::Names() const {
  std::vector<std::string> names;
  const auto isAsked = [](const std::string& name) { return !name.empty(); };
  const std::initializer_list<std::string> all = {settings.image, settings.preview,
                                                  settings.report};
  std::copy_if(all.begin(), all.end(), std::back_inserter(names), isAsked);
  return names;
}

bool Outputs::UseStandardOutput() const {
  const std::vector<std::string> names = Names();
  return std::any_of(names.begin(), names.end(), IsStandardOutput);
}

std::string Outputs::NameOfPart(size_t part, size_t count) const {
  return count == 1 ? settings.image : PieceName(settings.image, part + 1);
}

void Outputs::RequireWritable(const std::vector<cv::Size>& parts) const {
  if (parts.size() > 1 && IsStandardOutput(settings.image)) {
    throw BadInput("the picture is in " + std::to_string(parts.size()) +
                   " parts, which cannot all go to standard output; name a file with -o FILE");
  }
  for (const cv::Size& size : parts) {
    Program::RequireWritable({settings.image, settings.encoding, {}, settings.mostRowsPerFile},
                             size);
  }
}

std::vector<std::string> Outputs::StagePart(const std::string& name, const Picture& picture,
                                            const ImageMetadata& metadata,
                                            const RowProgress& progress) {
  std::vector<std::string> names;
  for (auto& file : StagePicture(
           picture, {name, settings.encoding, metadata, settings.mostRowsPerFile}, progress)) {
    names.push_back(file->Name());
    staged.push_back(std::move(file));
  }
  return names;
}

void Outputs::StagePreview(const cv::Mat& picture) {
  const auto goOn = [](int /*rows*/) {};
  auto files =
      StagePicture(PictureOf(picture), {settings.preview, settings.encoding, {}, {}}, goOn);
  std::move(files.begin(), files.end(), std::back_inserter(staged));
}

void Outputs::StageReport(const std::string& text) {
  staged.push_back(MakeStagedOutput(settings.report));
  staged.back()->Append(text.data(), text.size());
  staged.back()->Close();
}

void Outputs::Commit() {
  StopIfInterrupted();
  CommitAll(staged);
}

}  // namespace ScrollingCapture::Program
