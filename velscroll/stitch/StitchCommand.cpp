#include <iostream>
#include <optional>

#include <velscroll/input/CaptureReading.h>
#include <velscroll/input/InputFiles.h>
#include <velscroll/output/Outputs.h>
#include <velscroll/report/Report.h>
#include <velscroll/report/Summary.h>
#include <velscroll/stitch/SpillFolder.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchCommand.h>
#include <velscroll/stitch/StitchRun.h>
#include <velscroll/terminal/Console.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/StreamHold.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Program {
namespace {

/// The session's settings, with a folder of the program's own in the place of the spill folder.
class PrivateSettings {
 public:
  explicit PrivateSettings(const SessionSettings& asked) : settings(asked) {
    if (asked.memoryLimit) {
      settings.spillFolder = folder.emplace(asked.spillFolder).Path();
    }
  }

  const SessionSettings& Get() const { return settings; }

 private:
  SessionSettings settings;
  std::optional<SpillFolder> folder;
};

void RequireUsable(const std::string& file, const CaptureOutcome& outcome) {
  if (outcome.state == CaptureOutcome::State::Unusable) {
    throw BadInput(Quoted(file) + " " + outcome.reason);
  }
}

std::vector<CaptureFile> ReadInto(CaptureSession& session, const std::vector<std::string>& files,
                                  Console& console) {
  std::vector<CaptureFile> read;
  console.ShowProgress("Reading", 0);
  ReadCaptures(files, [&](const std::string& file, const cv::Mat& capture) {
    // The preview goes on without a capture that it cannot place, and without telling of it.
    const StreamHold standardError(std::cerr);
    const CaptureOutcome outcome = session.Add(capture);
    RequireUsable(file, outcome);
    read.push_back({file, outcome.state == CaptureOutcome::State::Repeated});
    console.ShowProgress("Reading", static_cast<int>(100 * read.size() / files.size()));
  });
  return read;
}

cv::Mat PreviewOf(CaptureSession& session) {
  const cv::Mat preview = session.Preview();
  if (preview.empty()) {
    throw BadInput(
        "--preview-size leaves less than one pixel of the preview's shorter side; choose a larger "
        "box");
  }
  return preview;
}

/// Reads, stitches and stages everything; only what the report tells outlives it.
ReportContent StageEverything(const SessionSettings& asked, const std::vector<std::string>& files,
                              Outputs& outputs, Console& console) {
  ReportContent content;
  content.settings = asked;
  StageClock clock;
  const PrivateSettings settings(asked);
  CaptureSession session(settings.Get());
  const std::vector<CaptureFile> read = ReadInto(session, files, console);
  // Before the long work, since the box may turn out too small.
  const cv::Mat preview = outputs.TakesPreview() ? PreviewOf(session) : cv::Mat();
  content.seconds.reading = clock.Lap();

  const Stitched stitched = RunStitch(session, console);
  content.seconds.detection = stitched.detectionSeconds;
  content.seconds.composing = stitched.composingSeconds;
  content.remarks = stitched.remarks;
  content.borders = stitched.result.borders;
  content.captures = DescribeCaptures(read, session.Captures(), stitched.result.captures);
  content.warnings = WarningsAbout(content.captures);
  session.Captures().Clear();

  console.ShowProgress("Writing", 0);
  clock.Lap();
  const Picture& picture = *stitched.result.picture;
  content.resultSize = picture.Size();
  outputs.StageImage(picture.Area({{0, 0}, picture.Size()}));
  if (outputs.TakesPreview()) {
    outputs.StagePreview(preview);
  }
  content.seconds.writing = clock.Lap();
  return content;
}

}  // namespace

void RunStitchCommand(const Arguments& arguments) {
  Outputs outputs(arguments.outputs);
  const std::vector<std::string> files = FindCaptureFiles(arguments.captures, outputs.Names());
  Console console(arguments.loudness, true);
  ReportContent content = StageEverything(arguments.session, files, outputs, console);
  content.resultFile = arguments.outputs.image;
  outputs.StageReport(ReportText(content));
  outputs.Commit();
  for (const std::string& warning : content.warnings) {
    console.Warn(warning);
  }
  console.Summarize(SummaryOf(content));
}

}  // namespace ScrollingCapture::Program
