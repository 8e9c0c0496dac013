#include <CLI/CLI.hpp>
#include <velscroll/arguments/Arguments.h>
#include <velscroll/arguments/OptionValues.h>
#include <velscroll/arguments/ResultOptions.h>
#include <velscroll/names/SettingNames.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned int LargestDifference = 255;
constexpr unsigned int MostNeighbors = 8;

std::string Footer() {
  return "A folder's images and the files of a quoted glob are taken in natural order, 2 before "
         "10;\nfiles are taken in the order given. All captures must have the same size.\n"
         "\n"
         "The output's format follows its extension: " +
         PictureFormatList() +
         ".\n- is standard output, in PNG for images; messages then go to standard error only.\n"
         "JPEG and BMP have no transparency: what no capture shows is white there, or of\n"
         "the colour that --background tells.\n"
         "\n"
         "Exit status: 0 done, 1 failed, 2 wrong usage or bad input, 3 written in several\n"
         "parts since captures are missing in between, 130 cancelled.\n"
         "\n"
         "Examples:\n"
         "  velscroll capture-*.png -o page.png\n"
         "  velscroll captures/ -o page.webp --orientation vertical --report page.json\n"
         "\n"
         "velscroll record captures a window while it scrolls; see velscroll record --help.\n";
}

/// The command line as CLI11 understands it; values are still text.
class CommandLine {
 public:
  CommandLine() {
    app.add_option("CAPTURE", arguments.captures,
                   "Captures in scroll order: image files, folders of them, globs")
        ->type_name("")
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    results.AddOutput();
    app.add_option("--engine", engine,
                   "How captures are joined: exact (proven on the pixels) or\nphase-correlation")
        ->type_name("WHICH")
        ->capture_default_str();
    results.AddOrientation();
    app.add_flag("--consistent", arguments.session.expectConsistentTranslations,
                 "Expect steps of equal length: of two likely motions, take\n"
                 "the one that repeats the step before");
    results.AddThreads();
    app.add_flag("--keep-repeats", arguments.session.keepRepeats,
                 "Do not drop captures that show the same as the one before");
    results.AddFixedParts();
    results.AddStrict();
    app.add_option("--joins", arguments.joins,
                   "Take the motions from a report that was corrected by\nhand, and prove them")
        ->type_name("FILE");
    AddBorderOptions();
    results.AddEncoding();
    results.AddMemory();
    results.AddPreview();
    results.AddReport();
    results.AddQuiet();
    app.set_version_flag("--version", std::string("velscroll ") + VELSCROLL_VERSION,
                         "Print the version and exit");
    app.footer(Footer());
  }

  /// @return whether there is work to do
  bool Parse(int argc, const char* const* argv) {
    return ParseCommandLine(app, argc, argv, "velscroll --help");
  }

  Arguments Checked() {
    if (arguments.captures.empty()) {
      throw BadInput("no captures given; name image files, folders or globs");
    }
    arguments.session.engine = ParseEngine(engine);
    results.Check();
    CheckEngine();
    if (borders) {
      arguments.session.borders = BorderThresholds{
          ParseNumber("--difference-threshold", differenceThreshold, 0, LargestDifference),
          ParseNumber("--neighbor-threshold", neighborThreshold, 0, MostNeighbors)};
    }
    return arguments;
  }

 private:
  void CheckEngine() const {
    const bool isExact = arguments.session.engine == Engine::Exact;
    if (isExact && borders) {
      throw BadInput(
          "--borders needs --engine phase-correlation; without it, --fixed once shows "
          "toolbars once");
    }
    if (!isExact && results.FixedPartsAreGiven()) {
      throw BadInput("--fixed needs --engine exact; with phase-correlation there is --borders");
    }
  }

  void AddBorderOptions() {
    CLI::Option* const switchOn = app.add_flag(
        "--borders", borders,
        "With --engine phase-correlation: find toolbars and other\nborders that stay put, stitch "
        "what scrolls between them,\nand lay them around it once; blank margins of a page\ncount "
        "as "
        "borders too");
    app.add_option("--difference-threshold", differenceThreshold,
                   "The grey-level difference, 0 to 255, above which a pixel\nhas changed from one "
                   "capture to the next")
        ->type_name("N")
        ->capture_default_str()
        ->needs(switchOn);
    app.add_option(
           "--neighbor-threshold", neighborThreshold,
           "The number of changed pixels, 0 to 8, around a changed\npixel above which it is "
           "content and not noise")
        ->type_name("N")
        ->capture_default_str()
        ->needs(switchOn);
  }

  CLI::App app{"Joins the captures of a scrolling window into one image.", "velscroll"};
  Arguments arguments;
  ResultOptions results{app, arguments};
  std::string engine = NameOf(SessionSettings().engine);
  bool borders = false;
  // Both leave room on either side for what was measured: anti-aliased text changes by far more
  // than 10 grey levels, and has more than 2 changed neighbours nearly everywhere.
  std::string differenceThreshold = "10";
  std::string neighborThreshold = "2";
};

}  // namespace

std::optional<Arguments> ParseArguments(int argc, const char* const* argv) {
  CommandLine commandLine;
  if (!commandLine.Parse(argc, argv)) {
    return std::nullopt;
  }
  return commandLine.Checked();
}

}  // namespace ScrollingCapture::Program
