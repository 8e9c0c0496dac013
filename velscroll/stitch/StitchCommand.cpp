#include <algorithm>
#include <optional>

#include <velscroll/files/SameFile.h>
#include <velscroll/input/InputFiles.h>
#include <velscroll/input/JoinsFile.h>
#include <velscroll/report/Report.h>
#include <velscroll/report/Summary.h>
#include <velscroll/stitch/PictureStaging.h>
#include <velscroll/stitch/SessionReading.h>
#include <velscroll/stitch/SpillFolder.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchCommand.h>
#include <velscroll/stitch/StitchRun.h>

#include <VelScrollingCapture/session/SpillFileLost.h>

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

/// What it takes to make the results.
struct Task {
  SessionSettings settings;
  bool strict;
  CaptureFiles captures;
};

Task TaskOf(const Arguments& arguments, const std::vector<std::string>& outputs) {
  Task task = {arguments.session, arguments.strict, {}};
  task.captures.paths = FindCaptureFiles(arguments.captures, outputs);
  if (!arguments.joins.empty()) {
    task.captures.motions = ReadJoins(arguments.joins, task.captures.paths);
  }
  return task;
}

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

/// Reads, stitches and stages everything; only what the report tells outlives it.
ReportContent StageEverything(const Task& task, Outputs& outputs, Console& console) {
  ReportContent content;
  content.settings = task.settings;
  StageClock clock;
  const PrivateSettings settings(task.settings);
  CaptureSession session(settings.Get());
  const ReadFiles read = ReadInto(session, task.captures, task.settings.threadCount, console);
  // Before the long work, since the box may turn out too small.
  const cv::Mat preview = outputs.TakesPreview() ? PreviewOf(session) : cv::Mat();
  content.seconds.reading = clock.Lap();

  const Stitched stitched = RunStitch(session, console);
  content.seconds.detection = stitched.detectionSeconds;
  content.seconds.composing = stitched.composingSeconds;
  content.remarks = stitched.remarks;
  content.borders = stitched.result.borders;
  content.captures = DescribeCaptures(read.files, stitched.result.captures);
  content.warnings = WarningsAbout(content.captures);
  if (task.strict) {
    RequireSureJoins(content.warnings);
  }

  clock.Lap();
  content.parts = StageParts(stitched.result.parts, read.metadata, outputs, console);
  if (outputs.TakesPreview()) {
    outputs.StagePreview(preview);
  }
  content.seconds.writing = clock.Lap();
  return content;
}

/// Pieces and parts have names that nobody has typed.
void RequireNoCaptureOverwritten(const std::vector<ReportedPart>& parts,
                                 const std::vector<std::string>& captures) {
  for (const ReportedPart& part : parts) {
    for (const std::string& piece : part.pieces) {
      const auto isPiece = [&piece](const std::string& file) { return IsSameFile(file, piece); };
      if (std::any_of(captures.begin(), captures.end(), isPiece)) {
        throw Failed("the result would be written over the capture " + Quoted(piece) +
                     "; choose another name to write to");
      }
    }
  }
}

}  // namespace

ExitStatus RunStitchCommand(const Arguments& arguments) try {
  Outputs outputs(arguments.outputs);
  const Task task = TaskOf(arguments, outputs.Names());
  Console console(arguments.loudness, !outputs.UseStandardOutput());
  const ReportContent content = StageEverything(task, outputs, console);
  RequireNoCaptureOverwritten(content.parts, task.captures.paths);
  if (outputs.TakesReport()) {
    outputs.StageReport(ReportText(content));
  }
  outputs.Commit();
  for (const std::string& warning : content.warnings) {
    console.Warn(warning);
  }
  console.Summarize(SummaryOf(content));
  return content.parts.size() == 1 ? Done : DoneInParts;
} catch (const SpillFileLost&) {
  throw Failed(
      "a capture that was spilled to a file cannot be read back; leave the spill folder "
      "alone, or choose another with --spill-folder");
}

}  // namespace ScrollingCapture::Program
