#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <live/Recorder.h>
#include <live/x11/X11CaptureSource.h>
#include <live/x11/XPicker.h>
#include <live/x11/XScreens.h>
#include <live/x11/XWindows.h>
#include <velscroll/output/staging/StagedStandardOutput.h>
#include <velscroll/record/CaptureFolder.h>
#include <velscroll/record/Clipboard.h>
#include <velscroll/record/RecordCommand.h>
#include <velscroll/record/RecordEnding.h>
#include <velscroll/record/StatusLine.h>
#include <velscroll/stitch/PictureStaging.h>
#include <velscroll/stitch/PrivateSettings.h>
#include <velscroll/stitch/Results.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/terminal/Console.h>
#include <velscroll/terminal/HeldMessages.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

/// Shows how the recording stands, keeps captures, and ends it when the user asks.
class Listener : public Live::IRecordingListener {
 public:
  Listener(Console& console, CaptureFolder& folder, RecordEnding& ending)
      : console(console), folder(folder), ending(ending) {}

  bool GoOn(const Live::RecordingStatus& status) override {
    StopIfInterrupted();
    console.ShowStatus(StatusLine(status));
    return !ending.IsAsked();
  }

  void CaptureKept(const cv::Mat& pixels) override { folder.Keep(pixels); }

 private:
  Console& console;
  CaptureFolder& folder;
  RecordEnding& ending;
};

Live::XChoice PickedByUser(Console& console) {
  console.ShowStatus("click on a window, or drag a rectangle; Escape cancels");
  const std::optional<Live::XChoice> picked =
      Live::PickOnScreen([] { return !InterruptionRequested(); });
  if (!picked) {
    throw Cancelled();
  }
  return *picked;
}

Live::XChoice ChoiceOf(const RecordArguments& arguments, Console& console) {
  const Live::XConnection connection;
  if (Live::IsXWayland(connection)) {
    console.Warn(
        "this is a Wayland session: only windows that use X11 can be captured, see "
        "docs/recording.md");
  }
  if (arguments.window) {
    return {*arguments.window, {}};
  }
  if (!arguments.windowName.empty()) {
    return {Live::FindWindow(connection, arguments.windowName), {}};
  }
  if (arguments.region) {
    return {XCB_WINDOW_NONE, *arguments.region};
  }
  return PickedByUser(console);
}

void Wait(double seconds, Console& console) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds Moment(50);
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  while (Clock::now() < end) {
    StopIfInterrupted();
    const auto left = std::chrono::ceil<std::chrono::seconds>(end - Clock::now());
    console.ShowStatus("the recording begins in " + std::to_string(left.count()) + " s");
    std::this_thread::sleep_for(Moment);
  }
}

ReadFiles Describe(const CaptureFolder& folder) {
  ReadFiles read;
  for (std::size_t i = 0; i < folder.Count(); ++i) {
    read.files.push_back({folder.NameOf(i), {}});
  }
  return read;
}

/// Throws Failed when nothing was captured.
void TellEnd(const Live::RecordingEnd& end, Console& console) {
  if (const auto nothing = end.NothingCaptured()) {
    throw Failed(*nothing);
  }
  if (!end.line.empty()) {
    console.Warn(end.line + "; what was captured until then is saved");
  }
}

ReportContent RecordEverything(const RecordArguments& arguments, CaptureFolder& folder,
                               Outputs& outputs, Console& console) {
  const Live::XChoice choice = ChoiceOf(arguments, console);
  Wait(arguments.delaySeconds, console);
  Live::X11CaptureSource source(choice, arguments.showsPointer);
  const PrivateSettings settings(arguments.session);
  CaptureSession session(settings.Get());
  RecordEnding ending(arguments.stopKey);
  Listener listener(console, folder, ending);
  Live::Recorder recorder(source, session, listener, {arguments.session.orientation, false});
  if (arguments.autoScroll) {
    recorder.ScrollBy({*arguments.autoScroll, arguments.limit, source.Region().size()});
  }
  StageClock clock;
  const HeldMessages messages;
  TellEnd(recorder.Run(), console);
  WarnOfFullDisk(session, console);
  if (!folder.Trouble().empty()) {
    console.Warn(folder.Trouble() + "; not all captures are in the folder of --keep-captures");
  }
  const double recording = clock.Lap();
  ReadFiles recorded = Describe(folder);
  recorded.remarks = messages.Lines();
  ReportContent content =
      StitchAndStage(session, arguments.session, arguments.strict, recorded, outputs, console);
  content.seconds.reading = recording;
  return content;
}

std::optional<Clipboard> ClipboardOf(const RecordArguments& arguments) {
  if (!arguments.toClipboard) {
    return std::nullopt;
  }
  if (arguments.outputs.image == StagedStandardOutput::Argument) {
    throw BadInput("--clipboard needs a file to put there; name one with -o FILE");
  }
  return Clipboard();
}

/// A clipboard holds one picture.
void PutFirst(const std::vector<std::string>& files, const Clipboard& clipboard, Console& console) {
  clipboard.Put(files.front());
  if (files.size() > 1) {
    console.Warn("the picture is in " + std::to_string(files.size()) +
                 " files; only the first one, " + Quoted(files.front()) + ", is on the clipboard");
  }
}

}  // namespace

ExitStatus RunRecordCommand(const RecordArguments& arguments) try {
  Outputs outputs(arguments.outputs);
  const std::optional<Clipboard> clipboard = ClipboardOf(arguments);
  Console console(arguments.loudness, !outputs.UseStandardOutput());
  CaptureFolder folder(arguments.captureFolder);
  const ReportContent content = RecordEverything(arguments, folder, outputs, console);
  const ExitStatus status = ShowResults(content, outputs, console);
  if (clipboard) {
    PutFirst(FilesOf(content.parts), *clipboard, console);
  }
  return status;
} catch (const Live::CaptureFailure& failure) {
  throw BadInput(failure.what());
}

}  // namespace ScrollingCapture::Program
