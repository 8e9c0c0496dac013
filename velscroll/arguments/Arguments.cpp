#include <algorithm>
#include <charconv>
#include <iostream>
#include <limits>
#include <thread>

#include <CLI/CLI.hpp>
#include <velscroll/arguments/Arguments.h>
#include <velscroll/names/SettingNames.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned int MostThreads = 1024;
constexpr unsigned int LongestSide = 10000;
constexpr unsigned int LargestDifference = 255;
constexpr unsigned int MostNeighbors = 8;

unsigned int DefaultThreadCount() {
  return std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads);
}

unsigned int ParseNumber(const std::string& option, const std::string& text, unsigned int smallest,
                         unsigned int largest) {
  unsigned int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < smallest || number > largest) {
    throw BadInput(option + " takes a whole number from " + std::to_string(smallest) + " to " +
                   std::to_string(largest) + ", not " + Quoted(text));
  }
  return number;
}

/// Such as 200MiB, 1G or a plain number of bytes; K, KB and KiB are all 1024 bytes.
std::uint64_t ParseMemorySize(const std::string& text) {
  const auto complain = [&text] {
    throw BadInput("--memory-limit takes a size such as 200MiB or 1G, not " + Quoted(text));
  };
  std::string bytes = text;
  try {
    CLI::AsSizeValue(false)(bytes);
  } catch (const CLI::ValidationError&) {
    complain();
  }
  std::uint64_t size = 0;
  const char* const end = bytes.data() + bytes.size();
  const auto [stop, error] = std::from_chars(bytes.data(), end, size);
  if (error != std::errc() || stop != end) {
    complain();
  }
  return size;
}

cv::Size ParsePreviewSize(const std::string& text) {
  const size_t separator = text.find('x');
  if (separator == std::string::npos) {
    throw BadInput("--preview-size takes width and height such as 250x250, not " + Quoted(text));
  }
  const auto side = [](const std::string& number) {
    return static_cast<int>(ParseNumber("each side of --preview-size", number, 1, LongestSide));
  };
  return {side(text.substr(0, separator)), side(text.substr(separator + 1))};
}

Loudness LoudnessOf(size_t timesQuiet) {
  if (timesQuiet == 0) {
    return Loudness::All;
  }
  return timesQuiet == 1 ? Loudness::Warnings : Loudness::Nothing;
}

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
         "  velscroll captures/ -o page.webp --orientation vertical --report page.json\n";
}

/// The command line as CLI11 understands it; values are still text.
class CommandLine {
 public:
  CommandLine() {
    app.option_defaults()->take_last();
    app.add_option("CAPTURE", arguments.captures,
                   "Captures in scroll order: image files, folders of them, globs")
        ->type_name("")
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    app.add_option("-o,--output", arguments.outputs.image, "The stitched image to write")
        ->type_name("FILE");
    app.add_option("--engine", engine,
                   "How captures are joined: exact (proven on the pixels) or\nphase-correlation")
        ->type_name("WHICH")
        ->capture_default_str();
    app.add_option("--orientation", orientation,
                   "The directions in which the content scrolled:\nvertical, horizontal or both")
        ->type_name("WHICH")
        ->capture_default_str();
    app.add_flag("--consistent", arguments.session.expectConsistentTranslations,
                 "Expect steps of equal length: of two likely motions, take\n"
                 "the one that repeats the step before");
    app.add_option("--threads", threads, "The most threads that work at once")
        ->type_name("N")
        ->capture_default_str();
    app.add_flag("--keep-repeats", arguments.session.keepRepeats,
                 "Do not drop captures that show the same as the one before");
    AddJoinOptions();
    AddBorderOptions();
    AddOutputOptions();
    AddMemoryOptions();
    AddPreviewOptions();
    app.add_option(
           "--report", arguments.outputs.report,
           "Write what was found to a JSON file: join and place of\nevery capture, and more")
        ->type_name("FILE");
    quietFlag = app.add_flag("-q,--quiet",
                             "Print nothing but warnings and errors; twice, as -qq,\n"
                             "nothing but errors");
    app.set_version_flag("--version", std::string("velscroll ") + VELSCROLL_VERSION,
                         "Print the version and exit");
    app.get_formatter()->column_width(32);
    app.footer(Footer());
  }

  /// @return whether there is work to do
  bool Parse(int argc, const char* const* argv) {
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
        throw BadInput(std::string(error.what()) + "; see velscroll --help");
      }
      app.exit(error, std::cout, std::cerr);
      return false;
    }
    return true;
  }

  Arguments Checked() {
    if (arguments.captures.empty()) {
      throw BadInput("no captures given; name image files, folders or globs");
    }
    if (arguments.outputs.image.empty()) {
      throw BadInput("no output file given; name one with -o FILE");
    }
    arguments.session.engine = ParseEngine(engine);
    arguments.session.orientation = ParseOrientation(orientation);
    arguments.session.fixedParts = ParseFixedParts(fixedParts);
    CheckEngine();
    arguments.session.threadCount = ParseNumber("--threads", threads, 1, MostThreads);
    if (borders) {
      arguments.session.borders = BorderThresholds{
          ParseNumber("--difference-threshold", differenceThreshold, 0, LargestDifference),
          ParseNumber("--neighbor-threshold", neighborThreshold, 0, MostNeighbors)};
    }
    if (memoryLimitOption->count() > 0) {
      arguments.session.memoryLimit = ParseMemorySize(memoryLimit);
    }
    CheckOutputOptions();
    const cv::Size previewBox = ParsePreviewSize(previewSize);
    if (!arguments.outputs.preview.empty()) {
      arguments.session.previewBox = previewBox;
    }
    arguments.loudness = LoudnessOf(quietFlag->count());
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
    if (!isExact && fixedOption->count() > 0) {
      throw BadInput("--fixed needs --engine exact; with phase-correlation there is --borders");
    }
  }

  void CheckOutputOptions() {
    EncodingSettings& encoding = arguments.outputs.encoding;
    encoding.threads = arguments.session.threadCount;
    encoding.jpegQuality = static_cast<int>(ParseNumber("--jpeg-quality", jpegQuality, 1, 100));
    encoding.pngLevel = static_cast<int>(ParseNumber("--png-level", pngLevel, 0, 9));
    if (backgroundOption->count() > 0) {
      encoding.background = ParseColour("--background", background);
    }
    if (splitOption->count() > 0) {
      arguments.outputs.mostRowsPerFile =
          static_cast<int>(ParseNumber("--split", split, 1, std::numeric_limits<int>::max()));
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

  void AddJoinOptions() {
    fixedOption = app.add_option("--fixed", fixedParts,
                                 "What becomes of toolbars and other parts that stand still:\n"
                                 "shown once, or kept as each capture has them")
                      ->type_name("WHICH")
                      ->capture_default_str();
    app.add_flag("--strict", arguments.strict,
                 "Fail, and write nothing, when a join is doubtful or\nmissing");
    app.add_option("--joins", arguments.joins,
                   "Take the motions from a report that was corrected by\nhand, and prove them")
        ->type_name("FILE");
  }

  void AddOutputOptions() {
    splitOption = app.add_option("--split", split,
                                 "Cut the image into files of at most that many rows:\n"
                                 "page-1.png, page-2.png, ...; next to plain rows if it can")
                      ->type_name("ROWS");
    backgroundOption = app.add_option("--background", background,
                                      "What shows where no capture does: #rrggbb or a basic name")
                           ->type_name("COLOUR");
    app.add_option("--jpeg-quality", jpegQuality, "1 to 100")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--png-level", pngLevel, "0 (fast) to 9 (small)")
        ->type_name("N")
        ->capture_default_str();
  }

  void AddMemoryOptions() {
    memoryLimitOption =
        app.add_option(
               "--memory-limit", memoryLimit,
               "Keep no more captures in memory than this, such as\n200MiB or 1G; the others "
               "wait in files")
            ->type_name("SIZE");
    app.add_option("--spill-folder", arguments.session.spillFolder,
                   "Where those files go; the system's temporary folder\nunless given")
        ->type_name("DIR")
        ->needs(memoryLimitOption);
  }

  void AddPreviewOptions() {
    CLI::Option* const preview =
        app.add_option("--preview", arguments.outputs.preview,
                       "Also write the small live preview as it stood at the end")
            ->type_name("FILE");
    app.add_option("--preview-size", previewSize,
                   "The box in pixels that the preview fits into. It is a column\nof 250 pixels at "
                   "most, beside which a wider box is black")
        ->type_name("WxH")
        ->capture_default_str()
        ->needs(preview);
  }

  CLI::App app{"Joins the captures of a scrolling window into one image.", "velscroll"};
  Arguments arguments;
  std::string engine = NameOf(SessionSettings().engine);
  std::string fixedParts = NameOf(SessionSettings().fixedParts);
  CLI::Option* fixedOption = nullptr;
  std::string orientation = NameOf(ScrollOrientation::Both);
  bool borders = false;
  // Both leave room on either side for what was measured: anti-aliased text changes by far more
  // than 10 grey levels, and has more than 2 changed neighbours nearly everywhere.
  std::string differenceThreshold = "10";
  std::string neighborThreshold = "2";
  std::string memoryLimit;
  CLI::Option* memoryLimitOption = nullptr;
  std::string previewSize = "250x250";
  std::string split;
  CLI::Option* splitOption = nullptr;
  std::string background;
  CLI::Option* backgroundOption = nullptr;
  std::string jpegQuality = std::to_string(EncodingSettings().jpegQuality);
  std::string pngLevel = std::to_string(EncodingSettings().pngLevel);
  CLI::Option* quietFlag = nullptr;
  std::string threads = std::to_string(DefaultThreadCount());
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
