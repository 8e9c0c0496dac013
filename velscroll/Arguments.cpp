#include <algorithm>
#include <array>
#include <charconv>
#include <iostream>
#include <thread>
#include <utility>

#include <CLI/CLI.hpp>
#include <velscroll/Arguments.h>
#include <velscroll/Failure.h>
#include <velscroll/OutputFormat.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned int MostThreads = 1024;

const std::array<std::pair<const char*, ScrollOrientation>, 3> Orientations = {{
    {"vertical", ScrollOrientation::Vertical},
    {"horizontal", ScrollOrientation::Horizontal},
    {"both", ScrollOrientation::Both},
}};

unsigned int DefaultThreadCount() {
  return std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads);
}

ScrollOrientation ParseOrientation(const std::string& text) {
  for (const auto& [name, orientation] : Orientations) {
    if (text == name) {
      return orientation;
    }
  }
  throw BadInput("--orientation does not know " + Quoted(text) +
                 "; use vertical, horizontal or both");
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

std::string Footer() {
  return "A folder's images and the files of a quoted glob are taken in natural order, 2 before "
         "10;\nfiles are taken in the order given. All captures must have the same size.\n"
         "\n"
         "The output's format follows its extension: " +
         FormatList() +
         ".\nJPEG and BMP have no transparency: what no capture shows is white there.\n"
         "\n"
         "Exit status: 0 done, 1 failed, 2 wrong usage or bad input, 130 cancelled.\n"
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
    app.add_option("captures", arguments.captures,
                   "Captures in scroll order: image files, folders of them, globs")
        ->type_name("CAPTURE...")
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    app.add_option("-o,--output", arguments.output, "The stitched image to write")
        ->type_name("FILE");
    app.add_option("--orientation", orientation,
                   "The directions in which the content scrolled: vertical, horizontal or both")
        ->type_name("WHICH")
        ->capture_default_str();
    app.add_flag("--consistent", arguments.expectConsistentTranslations,
                 "Expect steps of equal length: where two motions are about equally likely, take "
                 "the one that repeats the step before");
    app.add_option("--threads", threads, "The most threads that work at once")
        ->type_name("N")
        ->capture_default_str();
    app.add_flag("--keep-repeats", arguments.keepRepeats,
                 "Do not drop captures that show the same as the one before");
    app.add_option("--report", arguments.report,
                   "Write what was found to a JSON file: motion and place of every capture")
        ->type_name("FILE");
    app.add_flag("-q,--quiet", arguments.quiet, "Print nothing but errors");
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
    if (arguments.output.empty()) {
      throw BadInput("no output file given; name one with -o FILE");
    }
    arguments.orientation = ParseOrientation(orientation);
    arguments.threadCount = ParseNumber("--threads", threads, 1, MostThreads);
    return arguments;
  }

 private:
  CLI::App app{"Joins the captures of a scrolling window into one image.", "velscroll"};
  Arguments arguments;
  std::string orientation = NameOf(ScrollOrientation::Both);
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

std::string NameOf(ScrollOrientation orientation) {
  const auto* const found =
      std::find_if(Orientations.begin(), Orientations.end(),
                   [orientation](const auto& entry) { return entry.second == orientation; });
  return found->first;
}

}  // namespace ScrollingCapture::Program
