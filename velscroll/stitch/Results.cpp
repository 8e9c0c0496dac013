#include <velscroll/report/Summary.h>
#include <velscroll/stitch/PictureStaging.h>
#include <velscroll/stitch/Results.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchRun.h>

namespace ScrollingCapture::Program {
namespace {

cv::Mat PreviewOf(const CaptureSession& session) {
  cv::Mat preview = session.Preview();
  if (preview.empty()) {
    throw BadInput(
        "--preview-size leaves less than one pixel of the preview's shorter side; choose a larger "
        "box");
  }
  return preview;
}

void RequireSureJoins(const std::vector<std::string>& warnings) {
  if (!warnings.empty()) {
    throw Failed(warnings.front() + "; nothing was written, as --strict asks");
  }
}

}  // namespace

ReportContent StitchAndStage(CaptureSession& session, const SessionSettings& settings, bool strict,
                             const ReadFiles& read, Outputs& outputs, Console& console) {
  ReportContent content;
  content.settings = settings;
  // Before the long work, since the box may turn out too small.
  const cv::Mat preview = outputs.TakesPreview() ? PreviewOf(session) : cv::Mat();
  const Stitched stitched = RunStitch(session, console);
  content.seconds = stitched.seconds;
  content.remarks = read.remarks;
  content.remarks.insert(content.remarks.end(), stitched.remarks.begin(), stitched.remarks.end());
  content.borders = stitched.result.borders;
  content.captures = DescribeCaptures(read.files, stitched.result.captures);
  content.warnings = WarningsAbout(content.captures);
  if (strict) {
    RequireSureJoins(content.warnings);
  }

  StageClock clock;
  RequireWritable(stitched.result.parts, outputs);
  content.parts = StageParts(stitched.result.parts, read.metadata, outputs,
                             [&](int percent) { console.ShowProgress("Writing", percent); });
  if (outputs.TakesPreview()) {
    outputs.StagePreview(preview);
  }
  content.seconds.writing = clock.Lap();
  return content;
}

ExitStatus ShowResults(const ReportContent& content, Outputs& outputs, Console& console) {
  if (outputs.TakesReport()) {
    outputs.StageReport(ReportText(content));
  }
  outputs.Commit();
  for (const std::string& warning : content.warnings) {
    console.Warn(warning);
  }
  console.Summarize(SummaryOf(content));
  return content.parts.size() == 1 ? Done : DoneInParts;
}

}  // namespace ScrollingCapture::Program
