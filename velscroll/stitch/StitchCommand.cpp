#include <velscroll/input/InputFiles.h>
#include <velscroll/input/JoinsFile.h>
#include <velscroll/stitch/PictureStaging.h>
#include <velscroll/stitch/PrivateSettings.h>
#include <velscroll/stitch/Results.h>
#include <velscroll/stitch/SessionReading.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchCommand.h>

namespace ScrollingCapture::Program {
namespace {

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

/// Reads, stitches and stages everything; only what the report tells outlives it.
ReportContent StageEverything(const Task& task, Outputs& outputs, Console& console) {
  StageClock clock;
  const PrivateSettings settings(task.settings);
  CaptureSession session(settings.Get());
  const ReadFiles read = ReadInto(session, task.captures, task.settings.threadCount, console);
  const double reading = clock.Lap();
  ReportContent content =
      StitchAndStage(session, task.settings, task.strict, read, outputs, console);
  content.seconds.reading = reading;
  return content;
}

}  // namespace

ExitStatus RunStitchCommand(const Arguments& arguments) {
  Outputs outputs(arguments.outputs);
  const Task task = TaskOf(arguments, outputs.Names());
  Console console(arguments.loudness, !outputs.UseStandardOutput());
  const ReportContent content = StageEverything(task, outputs, console);
  if (const auto complaint = OverwriteComplaint(content)) {
    throw Failed(*complaint);
  }
  return ShowResults(content, outputs, console);
}

}  // namespace ScrollingCapture::Program
