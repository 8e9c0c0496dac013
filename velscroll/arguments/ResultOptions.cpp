#include <algorithm>
#include <iostream>
#include <limits>
#include <thread>

#include <velscroll/arguments/OptionValues.h>
#include <velscroll/arguments/ResultOptions.h>
#include <velscroll/names/SettingNames.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned int MostThreads = 1024;

unsigned int DefaultThreadCount() {
  return std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads);
}

}  // namespace

ResultOptions::ResultOptions(CLI::App& app, ResultArguments& arguments)
    : app(app),
      arguments(arguments),
      orientation(NameOf(arguments.session.orientation)),
      fixedParts(NameOf(arguments.session.fixedParts)),
      threads(std::to_string(DefaultThreadCount())),
      jpegQuality(std::to_string(arguments.outputs.encoding.jpegQuality)),
      pngLevel(std::to_string(arguments.outputs.encoding.pngLevel)) {
  app.option_defaults()->take_last();
  app.get_formatter()->column_width(32);
}

void ResultOptions::AddOutput() {
  app.add_option("-o,--output", arguments.outputs.image, "The stitched image to write")
      ->type_name("FILE");
}

void ResultOptions::AddOrientation() {
  app.add_option("--orientation", orientation,
                 "The directions in which the content scrolled:\nvertical, horizontal or both")
      ->type_name("WHICH")
      ->capture_default_str();
}

void ResultOptions::AddThreads() {
  app.add_option("--threads", threads, "The most threads that work at once")
      ->type_name("N")
      ->capture_default_str();
}

void ResultOptions::AddFixedParts() {
  fixedOption = app.add_option("--fixed", fixedParts,
                               "What becomes of toolbars and other parts that stand still:\n"
                               "shown once, or kept as each capture has them")
                    ->type_name("WHICH")
                    ->capture_default_str();
}

void ResultOptions::AddStrict() {
  app.add_flag("--strict", arguments.strict,
               "Fail, and write nothing, when a join is doubtful or\nmissing");
}

void ResultOptions::AddEncoding() {
  splitOption = app.add_option("--split", split,
                               "Cut the image into files of at most that many rows:\n"
                               "page-1.png, page-2.png, ...; next to plain rows if it can")
                    ->type_name("ROWS");
  backgroundOption = app.add_option("--background", background,
                                    "What shows where no capture does: #rrggbb or a basic name")
                         ->type_name("COLOUR");
  app.add_option("--jpeg-quality", jpegQuality, "1 to 100")->type_name("N")->capture_default_str();
  app.add_option("--png-level", pngLevel, "0 (fast) to 9 (small)")
      ->type_name("N")
      ->capture_default_str();
}

void ResultOptions::AddMemory() {
  memoryLimitOption =
      app.add_option("--memory-limit", memoryLimit,
                     "Keep no more captures in memory than this, such as\n200MiB or 1G; the others "
                     "wait in files")
          ->type_name("SIZE");
  app.add_option("--spill-folder", arguments.session.spillFolder,
                 "Where those files go; the system's temporary folder\nunless given")
      ->type_name("DIR")
      ->needs(memoryLimitOption);
}

void ResultOptions::AddPreview() {
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

void ResultOptions::AddReport() {
  app.add_option("--report", arguments.outputs.report,
                 "Write what was found to a JSON file: join and place of\nevery capture, and more")
      ->type_name("FILE");
}

void ResultOptions::AddQuiet() {
  quietFlag = app.add_flag("-q,--quiet",
                           "Print nothing but warnings and errors; twice, as -qq,\n"
                           "nothing but errors");
}

void ResultOptions::Check() {
  if (arguments.outputs.image.empty()) {
    throw BadInput("no output file given; name one with -o FILE");
  }
  SessionSettings& session = arguments.session;
  session.orientation = ParseOrientation(orientation);
  session.fixedParts = ParseFixedParts(fixedParts);
  session.threadCount = ParseNumber("--threads", threads, 1, MostThreads);
  if (memoryLimitOption->count() > 0) {
    session.memoryLimit = ParseMemorySize(memoryLimit);
  }
  CheckOutput();
  const cv::Size previewBox = ParsePreviewSize(previewSize);
  if (!arguments.outputs.preview.empty()) {
    session.previewBox = previewBox;
  }
  arguments.loudness = LoudnessOf(quietFlag->count());
}

void ResultOptions::CheckOutput() {
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

bool ParseCommandLine(CLI::App& app, int argc, const char* const* argv, const std::string& help) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
      throw BadInput(std::string(error.what()) + "; see " + help);
    }
    app.exit(error, std::cout, std::cerr);
    return false;
  }
  return true;
}

}  // namespace ScrollingCapture::Program
