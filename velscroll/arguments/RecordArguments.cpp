#include <charconv>
#include <limits>

#include <CLI/CLI.hpp>
#include <velscroll/arguments/ChoiceValues.h>
#include <velscroll/arguments/OptionValues.h>
#include <velscroll/arguments/RecordArguments.h>
#include <velscroll/arguments/ResultOptions.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr int LongestLimit = std::numeric_limits<int>::max();
constexpr unsigned int LongestDelay = 3600;

const char* const Footer =
    "Without --window, --window-name and --region, click on a window, or drag a rectangle;\n"
    "Escape cancels. Then scroll by hand, or let --auto do it.\n"
    "\n"
    "Enter in the terminal, --stop-key or Ctrl-C ends the recording and writes the picture;\n"
    "Ctrl-C twice discards it.\n"
    "\n"
    "Examples:\n"
    "  velscroll record -o page.png\n"
    "  velscroll record --window-name Manual --auto down -o page.png\n"
    "  velscroll record --region 800x600+100+50 --stop-key F12 --clipboard -o chat.png\n";

double ParseDelay(const std::string& text) {
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || stop != end || !(seconds >= 0) || seconds > LongestDelay) {
    throw BadInput("--delay takes seconds from 0 to " + std::to_string(LongestDelay) + ", not " +
                   Quoted(text));
  }
  return seconds;
}

/// The command line as CLI11 understands it; values are still text.
class CommandLine {
 public:
  CommandLine() {
    results.AddOutput();
    AddChoice();
    AddScrolling();
    AddRecording();
    results.AddOrientation();
    results.AddFixedParts();
    results.AddStrict();
    results.AddEncoding();
    results.AddMemory();
    results.AddPreview();
    results.AddReport();
    results.AddThreads();
    results.AddQuiet();
    app.footer(Footer);
  }

  /// @return whether there is work to do
  bool Parse(int argc, const char* const* argv) {
    return ParseCommandLine(app, argc, argv, "velscroll record --help");
  }

  RecordArguments Checked() {
    results.Check();
    if (windowOption->count() > 0) {
      arguments.window = ParseWindow(window);
    }
    if (regionOption->count() > 0) {
      arguments.region = ParseRegion(region);
    }
    if (autoOption->count() > 0) {
      arguments.autoScroll = ParseDirection(direction);
    }
    if (limitOption->count() > 0) {
      arguments.limit = static_cast<int>(ParseNumber("--limit", limit, 1, LongestLimit));
    }
    arguments.delaySeconds = ParseDelay(delay);
    return arguments;
  }

 private:
  void AddChoice() {
    windowOption =
        app.add_option("--window", window, "The number of the window to capture")->type_name("ID");
    CLI::Option* const name = app.add_option("--window-name", arguments.windowName,
                                             "Capture the window with this text in its title")
                                  ->type_name("TEXT");
    regionOption =
        app.add_option("--region", region, "Capture this part of the screen")->type_name("WxH+X+Y");
    windowOption->excludes(name)->excludes(regionOption);
    name->excludes(regionOption);
  }

  void AddScrolling() {
    autoOption =
        app.add_option("--auto", direction, "Scroll to the end by itself: down, up, right or left")
            ->type_name("WHICH");
    limitOption =
        app.add_option("--limit", limit, "End the scrolling after so many rows, or columns")
            ->type_name("ROWS")
            ->needs(autoOption);
  }

  void AddRecording() {
    app.add_option("--stop-key", arguments.stopKey,
                   "A key that ends the recording wherever it is pressed,\nsuch as F12 or "
                   "Ctrl+Shift+s")
        ->type_name("KEY");
    app.add_option("--delay", delay, "Wait so many seconds before the recording begins")
        ->type_name("S")
        ->capture_default_str();
    app.add_flag("--cursor", arguments.showsPointer, "Draw the mouse pointer in");
    app.add_flag("--clipboard", arguments.toClipboard,
                 "Also put the picture on the clipboard, with wl-copy or\nxclip");
    app.add_option("--keep-captures", arguments.captureFolder,
                   "Also keep the captures, as PNG files in this folder")
        ->type_name("DIR");
  }

  CLI::App app{"Captures a window while it scrolls, and joins the captures into one image.",
               "velscroll record"};
  RecordArguments arguments;
  ResultOptions results{app, arguments};
  std::string window;
  CLI::Option* windowOption = nullptr;
  std::string region;
  CLI::Option* regionOption = nullptr;
  std::string direction;
  CLI::Option* autoOption = nullptr;
  std::string limit;
  CLI::Option* limitOption = nullptr;
  std::string delay = "0";
};

}  // namespace

std::optional<RecordArguments> ParseRecordArguments(int argc, const char* const* argv) {
  CommandLine commandLine;
  if (!commandLine.Parse(argc, argv)) {
    return std::nullopt;
  }
  return commandLine.Checked();
}

}  // namespace ScrollingCapture::Program
