#include <algorithm>
#include <iterator>

#include <python/bindings/Saving.h>
#include <velscroll/files/SameFile.h>
#include <velscroll/report/Summary.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Python {
namespace {

std::vector<cv::Size> SizesOf(const Stitched& stitched) {
  std::vector<cv::Size> sizes;
  std::transform(stitched.parts.begin(), stitched.parts.end(), std::back_inserter(sizes),
                 [](const auto& part) { return part->Size(); });
  return sizes;
}

}  // namespace

Saving::Saving(const Stitched& stitched, const Program::OutputSettings& settings)
    : stitched(stitched), content(stitched.content), outputs(settings) {
  try {
    outputs.RequireWritable(SizesOf(stitched));
  } catch (const Program::TooLargeForFormat& tooLarge) {
    const std::string cut = tooLarge.HoldsPieces() ? "set split, or " : "";
    throw Program::BadInput(tooLarge.Reason() + "; " + cut + "write a PNG file");
  } catch (const Program::Failed& failed) {
    throw Program::BadInput(failed.what());
  }
}

void Saving::Stage(const TellProgress& tell) {
  Program::StageClock clock;
  for (std::size_t i = 0; i < stitched.parts.size(); ++i) {
    StagePart(i, tell);
  }
  RequireNoCaptureReplaced();
  content.seconds.writing = clock.Lap();
  if (outputs.TakesReport()) {
    outputs.StageReport(Program::ReportText(content));
  }
}

std::vector<std::string> Saving::Files() const {
  std::vector<std::string> files;
  for (const Program::ReportedPart& part : content.parts) {
    files.insert(files.end(), part.pieces.begin(), part.pieces.end());
  }
  return files;
}

std::string Saving::Summary() const { return Program::SummaryOf(content); }

void Saving::StagePart(std::size_t index, const TellProgress& tell) {
  constexpr std::int64_t Whole = 100;
  const LockedPicture& picture = *stitched.parts[index];
  const auto count = static_cast<std::int64_t>(stitched.parts.size());
  const auto tellRows = [&](int rows) {
    const std::int64_t ofPart = Whole * rows / picture.Size().height;
    if (!tell(static_cast<int>((Whole * static_cast<std::int64_t>(index) + ofPart) / count))) {
      throw Program::Cancelled();
    }
  };
  const std::string name = outputs.NameOfPart(index, stitched.parts.size());
  content.parts.push_back(
      {name, picture.Size(),
       outputs.StagePart(name, Program::PictureOf(picture), stitched.metadata, tellRows)});
}

void Saving::RequireNoCaptureReplaced() const {
  for (const std::string& file : Files()) {
    for (const Program::ReportedCapture& capture : content.captures) {
      if (Program::IsSameFile(file, capture.file)) {
        throw Program::BadInput("the result would be written over the capture " +
                                Program::Quoted(file) + "; choose another name to write to");
      }
    }
  }
}

}  // namespace ScrollingCapture::Python
