#include <python/bindings/Saving.h>
#include <velscroll/report/Summary.h>
#include <velscroll/stitch/PictureStaging.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Python {
namespace {

Program::PictureParts PartsOf(const Stitched& stitched) {
  return {stitched.parts.begin(), stitched.parts.end()};
}

}  // namespace

Saving::Saving(const Stitched& stitched, const Program::OutputSettings& settings)
    : stitched(stitched), content(stitched.content), outputs(settings) {
  try {
    Program::RequireWritable(PartsOf(stitched), outputs);
  } catch (const Program::TooLargeForFormat& tooLarge) {
    const std::string cut = tooLarge.HoldsPieces() ? "set split, or " : "";
    throw Program::BadInput(tooLarge.Reason() + "; " + cut + "write a PNG file");
  } catch (const Program::Failed& failed) {
    throw Program::BadInput(failed.what());
  }
}

void Saving::Stage(const TellProgress& tell) {
  const auto goOn = [&tell](int percent) {
    if (!tell(percent)) {
      throw Program::Cancelled();
    }
  };
  Program::StageClock clock;
  content.parts = Program::StageParts(PartsOf(stitched), stitched.metadata, outputs, goOn);
  if (const auto complaint = Program::OverwriteComplaint(content)) {
    throw Program::BadInput(*complaint);
  }
  content.seconds.writing = clock.Lap();
  if (outputs.TakesReport()) {
    outputs.StageReport(Program::ReportText(content));
  }
}

std::vector<std::string> Saving::Files() const { return Program::FilesOf(content.parts); }

std::string Saving::Summary() const { return Program::SummaryOf(content); }

}  // namespace ScrollingCapture::Python
